#include "descriptions.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <string_view>

#include "ignoreresult.h"
#include "openfile.h"
#include "paths.h"
#include "porting.h"
#include "queueparts.h"
#include "textencoding.h"
#include "textfile.h"
#include "textscan.h"

namespace kpx::spooler {

namespace {

// Up to so many queues CUPS is asked about each; for more, about all that it has.
constexpr size_t kFewQueues = 200;

std::string SettingsOf(const std::string &queue) {
  return std::string(kDataDir) + "/" + queue + ".def";
}

std::string DescriptionOf(const std::string &queue) {
  return std::string(kCupsDescriptionsDir) + "/" + queue + ".ppd";
}

// Whether `path` was written later than `other`. What is not there is older than anything.
bool IsNewer(const std::string &path, const std::string &other) {
  struct stat a = {}, b = {};
  if (stat(path.c_str(), &a) != 0) return false;
  if (stat(other.c_str(), &b) != 0) return true;
  return std::pair(a.st_mtim.tv_sec, a.st_mtim.tv_nsec) >
         std::pair(b.st_mtim.tv_sec, b.st_mtim.tv_nsec);
}

// What the lines of KPXadmin in the script give the filter behind `word`.
std::string ValueOf(std::string_view word, std::string_view script) {
  bool is_ours = false;
  LineReader lines(script);
  while (const std::optional<std::string> line = lines.Next()) {
    if (!is_ours) {
      is_ours = line->starts_with(kMarkerLine);
      continue;
    }
    const std::string_view rest = Trimmed(*line);
    if (!rest.starts_with(word) || rest.substr(word.size(), 1) != " ") continue;
    const std::string_view value = rest.substr(word.size() + 1);
    if (value.find(' ') != std::string_view::npos)
      return std::string(value.substr(0, value.find(' ')));
  }
  return {};
}

// Whether the path can be that of a model's PPD file. Of the script, which belongs to another user,
// nothing is believed but that.
bool IsModelFile(const std::string &path) {
  const std::string in_data = std::string(kDataDir) + "/";
  const auto is_below = [&](const std::string &directory) {
    return path.starts_with(directory + "/nls/") && path.find("/ppds/") != std::string::npos;
  };
  return path.ends_with(".ppd") && path.find("..") == std::string::npos &&
         (is_below(std::string(kDataDir)) || is_below(kModelsDir));
}

// Has the file stand as one that is newer than script and settings.
void Touch(const std::string &path) {
  IgnoreResult(utimensat(AT_FDCWD, path.c_str(), nullptr, 0),
               "it is made again next time, which changes nothing");
}

// A file in memory, for who takes files by their paths.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view text)
      : file_(memfd_create("ppd", MFD_CLOEXEC)), is_whole_(file_.IsOpen() && file_.Write(text)) {}

  [[nodiscard]] bool IsWhole() const { return is_whole_; }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(file_.Descriptor()); }

 private:
  OpenFile file_;
  bool is_whole_;
};

}  // namespace

bool HasQueues() { return !NamesOfEntries().empty(); }

std::vector<std::string> QueuesToDescribe(bool all) {
  std::vector<std::string> names;
  for (const std::string &name : NamesOfEntries()) {
    if (!IsFile(EntryOf(name)) || !IsFile(ScriptOf(name))) continue;
    const std::string made = DescriptionOf(name);
    if (!all && IsNewer(made, ScriptOf(name)) && IsNewer(made, SettingsOf(name))) continue;
    names.push_back(name);
  }
  return names;
}

std::optional<std::vector<std::string>> OwnQueuesAmong(BridgeQueues &queues,
                                                       const std::vector<std::string> &names,
                                                       std::string *words) {
  std::vector<std::string> own;
  if (names.size() > kFewQueues) {
    const auto all = queues.OwnQueues(words);
    if (!all) return std::nullopt;
    std::set_intersection(names.begin(), names.end(), all->begin(), all->end(),
                          std::back_inserter(own));
    return own;
  }
  for (const std::string &name : names) {
    const std::optional<QueueOwner> owner = queues.OwnerOf(name, words);
    if (!owner) return std::nullopt;
    if (*owner == QueueOwner::Ours) own.push_back(name);
  }
  return own;
}

std::string Descriptions::Give(BridgeQueues &queues, const std::string &queue) {
  bool is_file = true;
  const std::optional<std::string> script = ReadRegularFile(ScriptOf(queue), &is_file);
  if (!script) return ScriptOf(queue) + ": " + std::strerror(errno);
  kpx::filter::FilterArguments arguments;
  arguments.ppd_file = ValueOf("--ppdfile", *script);
  arguments.type = ValueOf("--type", *script);
  arguments.def_file = SettingsOf(queue);
  // An unknown printer, or jobs that are not filtered.
  if (!IsModelFile(arguments.ppd_file) || !IsFile(arguments.def_file)) return {};
  std::string problem;
  const std::optional<std::string> text = maker_.Make(arguments, &problem);
  if (!text) return problem;
  const std::string made = DescriptionOf(queue);
  if (ReadWholeFile(made) == text) {
    Touch(made);
    return {};
  }
  const MemoryFile file(*text);
  if (!file.IsWhole()) return std::string("no room for the description: ") + std::strerror(errno);
  const IppAnswer answer = queues.Describe(queue, file.Path());
  return answer.kind == IppAnswer::Kind::Done ? std::string() : answer.words;
}

}  // namespace kpx::spooler
