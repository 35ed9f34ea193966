#include "modelsource.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>

#include "command.h"
#include "openfile.h"
#include "ppdadaptor.h"
#include "textencoding.h"
#include "textfile.h"
#include "textscan.h"

namespace kpx::ctl {

namespace {

constexpr char kCupsDrivers[] = "/usr/lib/cups/daemon/cups-driverd";
constexpr char kCupsModels[] = "/usr/sbin/lpinfo";
constexpr char kCupsChecker[] = "/usr/bin/cupstestppd";
constexpr char kCupsFilters[] = "/usr/lib/cups/filter/";
constexpr char kUnpacker[] = "/bin/gzip";
constexpr int kPatience = 60000;  // milliseconds: CUPS may read thousands of files first

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

// Whether `line` (in small letters) has each of `words`.
bool HasAll(const std::string &line, const std::vector<std::string> &words) {
  return std::all_of(words.begin(), words.end(), [&line](const std::string &word) {
    return line.find(Lower(word)) != std::string::npos;
  });
}

// Remarks that nothing comes of.
constexpr std::string_view kRemarks[] = {"only contains whitespace", "lines ending with only",
                                         "shares a common prefix with",
                                         "should be the Adobe standard name", "should be named"};

bool IsRemark(std::string_view line) {
  return std::any_of(std::begin(kRemarks), std::end(kRemarks), [line](std::string_view remark) {
    return line.find(remark) != std::string_view::npos;
  });
}

// "**FAIL**  Missing REQUIRED ..." or "WARN    ..." as a sentence; empty for another line.
std::string FindingOf(std::string_view line) {
  line = Trimmed(line);
  if (IsRemark(line)) return {};
  for (const std::string_view mark : {std::string_view("**FAIL**"), std::string_view("WARN ")}) {
    if (line.starts_with(mark)) return std::string(Trimmed(line.substr(mark.size())));
  }
  return {};
}

}  // namespace

std::optional<std::string> PpdOfFile(const std::string &path) {
  constexpr std::string_view kPacked = "\x1F\x8B";
  std::optional<std::string> text = ReadWholeFile(path);
  if (!text || !text->starts_with(kPacked)) return text;
  return OutputOf({kUnpacker, "-dc", path}, kPatience);
}

std::optional<std::string> PpdOfCups(const std::string &name) {
  if (name.empty() || name.starts_with('-')) return std::nullopt;
  std::optional<std::string> text = OutputOf({kCupsDrivers, "cat", name}, kPatience);
  return text && !text->empty() ? text : std::nullopt;
}

std::optional<std::vector<CupsModel>> CupsModels(const std::vector<std::string> &words) {
  const std::optional<std::string> answer = OutputOf({kCupsModels, "-m"}, kPatience);
  if (!answer) return std::nullopt;
  std::vector<CupsModel> models;
  LineReader lines(*answer);
  while (const std::optional<std::string> line = lines.Next()) {
    const size_t blank = line->find(' ');
    // What CUPS would ask the printer for is not a file.
    if (blank == std::string::npos || line->starts_with("everywhere ")) continue;
    if (HasAll(Lower(*line), words)) {
      models.push_back({line->substr(0, blank), line->substr(blank + 1)});
    }
  }
  return models;
}

bool HasDriver(const std::string &program) {
  const bool is_path = program.starts_with('/');
  if (!is_path && program.find('/') != std::string::npos) return true;
  return access((is_path ? program : kCupsFilters + program).c_str(), X_OK) == 0;
}

std::vector<std::string> ForgivenFaults(const std::string &ppd) {
  std::vector<std::string> faults;
  const OpenFile file(filter::DescriptorOfText(ppd));
  if (!file.IsOpen() || access(kCupsChecker, X_OK) != 0) return faults;
  const std::string path =
      "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file.Descriptor());
  // Its status tells of the faults too.
  const auto findings = OutputOf(
      {"/bin/sh", "-c", std::string(kCupsChecker) + " -r -W all \"$1\" 2>&1; :", "sh", path},
      kPatience);
  LineReader lines(findings ? *findings : std::string_view());
  while (const std::optional<std::string> line = lines.Next()) {
    const std::string fault = FindingOf(*line);
    if (fault.empty() || std::find(faults.begin(), faults.end(), fault) != faults.end()) continue;
    faults.push_back(fault);
  }
  return faults;
}

}  // namespace kpx::ctl
