#include "ppdconversion.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "cmessages.h"
#include "debug.h"
#include "pafreader.h"
#include "paths.h"
#include "textencoding.h"
#include "textfile.h"
#include "utils.h"

namespace {

// The second of the pieces of `name` between dots, empty pieces not counted; empty when there is
// none.
std::string SecondPiece(const std::string &name) {
  const size_t first = name.find_first_not_of('.');
  const size_t dot = name.find('.', first);
  const size_t second = name.find_first_not_of('.', dot);
  if (dot == std::string::npos || second == std::string::npos) return "";
  return name.substr(second, name.find('.', second) - second);
}

constexpr size_t kHeaderBytes = 2048;

// What the first "##PPD:" line of a description says; nothing when there is none. Of a file that
// may go on (`is_start`) only whole lines count.
std::optional<std::string> PpdLineText(const std::optional<std::string> &file, bool is_start) {
  if (!file) return std::nullopt;
  LineReader lines(*file);
  while (const std::optional<std::string_view> line = lines.NextView()) {
    if (is_start && !lines.HadLineFeed()) return std::nullopt;
    if (line->starts_with("##PPD:")) return PafHeaderText(*line);
  }
  return std::nullopt;
}

// Never returns. Only calls that are safe between fork and exec.
[[noreturn]] void RunFilterInChild(const char *ppd_path, const char *paf_path) {
  // Kept on purpose: the message key as program name, and redirections that nothing carries out
  // because no shell is between.
  const char *const arguments[] = {"DEF_KPXFILTER", "--ppdfile",         ppd_path, "--paffile",
                                   paf_path,        "2>&1 & >/dev/null", nullptr};
  execv(kFilterProgram, const_cast<char *const *>(arguments));
  _exit(0);  // kept on purpose: a conversion that failed shows when the PAF file is read
}

}  // namespace

void CheckPafFiles(const std::string &ppd_directory, const std::string &paf_directory) {
  const LogScope log("CheckPafFiles");
  const Owned<CList> names = GetFilesFromDir(ppd_directory.c_str());
  if (names == nullptr) G_Fatal(7, "ERR_UNABLE_TO_READ_DIR", {ppd_directory});
  if (!IsDirectory(paf_directory)) G_Fatal(7, "ERR_UNABLE_TO_READ_DIR", {paf_directory});

  for (const CString *entry : Elements<CString>(names.get())) {
    const std::string name = fGet_CString_Value_Function(entry);
    if (CheckIfPpdOrPaf(name, kPpdFile) == 0) continue;
    const std::string ppd_path = PathIn(ppd_directory, name);
    const std::string paf_path = PathIn(paf_directory, PafNameOfPpd(name));
    if (VerifyPafFile(name, paf_path) == 1) continue;
    BuildPafFromPpd(ppd_path, paf_path);
    const int current = VerifyPafFile(name, paf_path);
    Log(4, paf_path + (current == 1 ? " is current" : " is still not current"));
  }
}

int CheckIfPpdOrPaf(const std::string &name, int kind) {
  const LogScope log("CheckIfPpdOrPaf");
  const std::string piece = SecondPiece(name);
  return (kind == kPpdFile && piece == "ppd") || (kind == kPafFile && piece == "paf") ? 1 : 0;
}

std::string PathIn(const std::string &directory, const std::string &name) {
  return directory + "/" + name;
}

std::string PafNameOfPpd(const std::string &ppd_name) {
  constexpr size_t kSuffixLength = 4;
  const size_t base = ppd_name.size() < kSuffixLength ? 0 : ppd_name.size() - kSuffixLength;
  return ppd_name.substr(0, base) + ".paf";
}

int VerifyPafFile(const std::string &ppd_name, const std::string &paf_path) {
  const LogScope log("VerifyPafFile");
  // The line stands among the first of what the filter writes, but it may stand anywhere.
  std::optional<std::string> made_from = PpdLineText(ReadFileStart(paf_path, kHeaderBytes), true);
  if (!made_from) made_from = PpdLineText(ReadWholeFile(paf_path), false);
  return made_from == DecodeLine(ppd_name) ? 1 : 0;
}

int BuildPafFromPpd(const std::string &ppd_path, const std::string &paf_path) {
  const LogScope log("BuildPafFromPpd");
  if (access(kFilterProgram, X_OK) != 0) {
    G_Fatal(7, "ERR_UNABLE_TO_EXEC_FILE", {kFilterProgram});
  }
  const pid_t child = fork();
  if (child < 0) G_Fatal(7, "ERR_FORK");
  if (child == 0) RunFilterInChild(ppd_path.c_str(), paf_path.c_str());
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  return 1;
}
