#include "utils.h"

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "cstring.h"
#include "debug.h"
#include "ignoreresult.h"
#include "textencoding.h"
#include "uninterrupted.h"

namespace {

struct DirectoryCloser {
  void operator()(DIR *directory) const { closedir(directory); }
};

const passwd *FindUser(const char *user) {
  return user == nullptr ? getpwuid(geteuid()) : getpwnam(user);
}

// `path` and what is wrong with it, with the system's words for errno.
void LogFailure(const std::string &path, const char *fault) {
  Log(1, path + " " + fault + ": " + DecodeLine(std::strerror(errno)));
}

}  // namespace

const char *GetUserName(const char *user) {
  const LogScope log("GetUserName");
  const passwd *entry = FindUser(user);
  return entry == nullptr ? nullptr : entry->pw_name;
}

std::string UserNameOf(uid_t user) {
  const passwd *entry = getpwuid(user);
  return entry == nullptr ? std::to_string(user) : entry->pw_name;
}

const char *GetHomeDir(const char *user) {
  const LogScope log("GetHomeDir");
  const passwd *entry = FindUser(user);
  return entry == nullptr ? nullptr : entry->pw_dir;
}

int BuildUserDefFileName(const char *user, const char *queue, std::string *out) {
  const LogScope log("BuildUserDefFileName");
  if (queue == nullptr || out == nullptr) return 0;
  const char *name = GetUserName(user);
  if (name == nullptr) return 0;
  *out = UserDefFileName(name, queue);
  return 1;
}

std::string UserDefFileName(std::string_view login, std::string_view def_file) {
  return std::string(login).append(":").append(def_file);
}

std::string UsersDirectoryBeside(std::string_view queue_file) {
  return std::string(queue_file.substr(0, queue_file.rfind('/') + 1)) + "users";
}

Owned<CList> GetFilesFromDir(const char *path) {
  const LogScope log("GetFilesFromDir");
  if (path == nullptr) return nullptr;
  const std::unique_ptr<DIR, DirectoryCloser> directory(Uninterrupted(opendir, path));
  if (directory == nullptr) return nullptr;
  Owned<CList> names = CreateList();
  for (;;) {
    errno = 0;
    const dirent *entry = readdir(directory.get());
    if (entry == nullptr) break;
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    IgnoreResult(fAddTail_CList_Function(names.get(), CreateStringWithValue(entry->d_name)),
                 "the list is there");
  }
  return errno == 0 ? std::move(names) : nullptr;
}

bool IsDirectory(const std::string &path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void RemoveFile(const std::string &path) {
  if (unlink(path.c_str()) != 0 && errno != ENOENT) LogFailure(path, "cannot be removed");
}

int DeleteFilesFromDir(const char *dir, const CList *names, const char *pattern) {
  const LogScope log("DeleteFilesFromDir");
  if (dir == nullptr || names == nullptr) return 0;
  for (const CString *element : Elements<CString>(names)) {
    const char *name = fGet_CString_Value_Function(element);
    if (name == nullptr) continue;
    const std::string path = std::string(dir) + "/" + name;
    if (IsDirectory(path)) continue;
    if (pattern != nullptr && std::strstr(name, pattern) == nullptr) continue;
    RemoveFile(path);
  }
  return 1;
}

int DeleteFilesEndingIn(const char *dir, const char *suffix) {
  const LogScope log("DeleteFilesEndingIn");
  if (dir == nullptr || suffix == nullptr) return 0;
  const Owned<CList> all = GetFilesFromDir(dir);
  if (all == nullptr) {
    LogFailure(dir, "cannot be read");
    return 0;
  }
  const Owned<CList> names = CreateList();
  for (const CString *element : Elements<CString>(all.get())) {
    if (!element->value.View().ends_with(suffix)) continue;
    IgnoreResult(fAddTail_CList_Function(names.get(), CloneOf(element)), "the list is there");
  }
  return DeleteFilesFromDir(dir, names.get(), suffix);
}
