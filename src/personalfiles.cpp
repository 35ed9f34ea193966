#include "personalfiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "clist.h"
#include "cstring.h"
#include "textfile.h"
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

}  // namespace

std::optional<std::string> ReadPersonalFile(const std::string &name) {
  const std::string path = PathOf(name);
  return path.empty() ? std::nullopt : ReadOwnFile(path);
}

bool WritePersonalFile(const std::string &name, std::string_view text) {
  const std::string path = PathOf(name);
  if (path.empty()) {
    errno = ENOENT;
    return false;
  }
  return MakeDirectories(path) && ReplaceFile(path, text, {.mode = L_FileMode});
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
