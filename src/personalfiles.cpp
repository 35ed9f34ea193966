#include "personalfiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "clist.h"
#include "cstring.h"
#include "textfile.h"
#include "uninterrupted.h"
#include "utils.h"

namespace {

constexpr mode_t L_DirectoryMode = S_IRWXU;
constexpr mode_t L_FileMode = S_IRUSR | S_IWUSR;

std::string AbsolutePathIn(const char *variable) {
  const char *path = std::getenv(variable);
  return path != nullptr && path[0] == '/' ? path : "";
}

bool BelongsToSomebodyElse(const std::string &path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && status.st_uid != geteuid();
}

// Empty when there is no such place.
std::string PathOf(const std::string &name) {
  const std::string home = AbsolutePathIn("HOME");
  std::string place = AbsolutePathIn("XDG_CONFIG_HOME");
  if (place.empty() && !home.empty()) place = home + "/.config";
  if (place.empty() || BelongsToSomebodyElse(home) || BelongsToSomebodyElse(place)) return "";
  return place + "/kpx/" + name;
}

bool MakeDirectories(const std::string &path) {
  for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    const std::string directory = path.substr(0, end);
    if (mkdir(directory.c_str(), L_DirectoryMode) != 0 && !IsDirectory(directory)) return false;
  }
  return true;
}

// PathOf with its directories made; empty, with errno, when that cannot be.
std::string PathToWrite(const std::string &name) {
  std::string path = PathOf(name);
  if (path.empty()) errno = ENOENT;
  return !path.empty() && MakeDirectories(path) ? path : "";
}

}  // namespace

std::optional<std::string> ReadPersonalFile(const std::string &name) {
  const std::string path = PathOf(name);
  return path.empty() ? std::nullopt : ReadOwnFile(path);
}

PersonalFile ReadPersonalFile(const std::string &name, size_t max_bytes, std::string *text) {
  text->clear();
  const std::string path = PathOf(name);
  struct stat status = {};
  if (path.empty()) return PersonalFile::Missing;
  if (lstat(path.c_str(), &status) != 0) {
    return errno == ENOENT || errno == ENOTDIR ? PersonalFile::Missing : PersonalFile::Unreadable;
  }
  if (status.st_size > static_cast<off_t>(max_bytes)) return PersonalFile::Unreadable;
  std::optional<std::string> content = ReadOwnFile(path);
  if (!content) return PersonalFile::Unreadable;
  *text = std::move(*content);
  return PersonalFile::Read;
}

std::string PersonalFilePath(const std::string &name) { return PathOf(name); }

bool WritePersonalFile(const std::string &name, std::string_view text) {
  const std::string path = PathToWrite(name);
  return !path.empty() && ReplaceFile(path, text, {.mode = L_FileMode});
}

bool WritePersonalFileDurably(const std::string &name, std::string_view text) {
  const std::string path = PathToWrite(name);
  return !path.empty() && ReplaceFileDurably(path, text, {.mode = L_FileMode});
}

PersonalFilesLock::PersonalFilesLock() {
  constexpr auto kPause = std::chrono::milliseconds(20);
  constexpr int kTries = 50;
  const std::string path = PathToWrite("");
  if (path.empty()) return;
  directory_ = OpenFile(Uninterrupted(open, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory_.IsOpen()) return;
  for (int i = 0; i < kTries && !is_held_; ++i) {
    if (i > 0) std::this_thread::sleep_for(kPause);
    is_held_ = flock(directory_.Descriptor(), LOCK_EX | LOCK_NB) == 0;
    // A file system without locks keeps nobody from his own files.
    if (!is_held_ && errno != EWOULDBLOCK && errno != EINTR) is_held_ = true;
  }
}

bool RemovePersonalFile(const std::string &name) {
  const std::string path = PathOf(name);
  return path.empty() || unlink(path.c_str()) == 0 || errno == ENOENT;
}

std::vector<std::string> PersonalFilesIn(const std::string &directory) {
  std::vector<std::string> names;
  const std::string path = PathOf(directory);
  const Owned<CList> entries = path.empty() ? nullptr : GetFilesFromDir(path.c_str());
  for (const CString *entry : Elements<CString>(entries.get())) {
    const char *name = fGet_CString_Value_Function(entry);
    if (name != nullptr) names.emplace_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}
