#include "filesystem.h"

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "cmessages.h"
#include "debug.h"
#include "ignoreresult.h"
#include "paths.h"
#include "utils.h"

namespace {

constexpr size_t L_CopyPiece = 2047;
constexpr char L_BlankAndTab[] = " \t";

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

int Fail(CList *errors, const char *key, std::initializer_list<FormatArg> arguments) {
  G_Report(errors, key, arguments);
  return 0;
}

bool CanBeOpened(const char *directory) {
  DIR *opened = opendir(directory);
  if (opened != nullptr) closedir(opened);
  return opened != nullptr;
}

// Copies up to the end of `source`; false when a write fails.
bool CopyContent(std::FILE *source, std::FILE *destination) {
  char piece[L_CopyPiece];
  size_t count = 0;
  while ((count = std::fread(piece, 1, sizeof piece, source)) > 0) {
    if (std::fwrite(piece, 1, count, destination) != count) return false;
  }
  return true;
}

}  // namespace

int G_DeleteDir(const char *path, CList *errors) {
  const LogScope log("G_DeleteDir");
  if (path == nullptr) return 0;
  const Owned<CList> names = GetFilesFromDir(path);
  IgnoreResult(DeleteFilesFromDir(path, names.get(), nullptr), "the directory's own removal tells");
  if (rmdir(path) != 0) return Fail(errors, "ERR_REMOVE", {path});
  return 1;
}

int G_CreateDir(const char *path, const char *owner, CList *errors) {
  const LogScope log("G_CreateDir");
  if (path == nullptr) return 0;
  if (CanBeOpened(path)) return 1;
  if (mkdir(path, S_IRWXU) != 0) return Fail(errors, "ERR_MKDIR", {path});
  if (owner == nullptr) return 1;
  const passwd *user = getpwnam(owner);
  if (user == nullptr) return Fail(errors, "ERR_GETPWNAM", {});
  if (chown(path, user->pw_uid, user->pw_gid) != 0) {
    return Fail(errors, "ERR_CHOWN", {user->pw_uid, user->pw_gid, path});
  }
  return 1;
}

int G_CopyFile(const char *source, const char *destination, CList *errors) {
  const LogScope log("G_CopyFile");
  if (source == nullptr || destination == nullptr) return 0;
  File to(std::fopen(destination, "w+e"));
  if (to == nullptr) return Fail(errors, "ERR_UNABLE_TO_WRITE_FILE", {destination});
  const File from(std::fopen(source, "re"));
  if (from == nullptr) return Fail(errors, "ERR_UNABLE_TO_READ_FILE", {source});
  const bool written = CopyContent(from.get(), to.get());
  const bool closed = std::fclose(to.release()) == 0;
  if (!written || !closed) return Fail(errors, "ERR_UNABLE_TO_WRITE_FILE", {destination});
  if (std::ferror(from.get()) != 0) return Fail(errors, "ERR_UNABLE_TO_READ_FILE", {source});
  return 1;
}

int G_IsExecutable(const char *path) {
  const LogScope log("G_IsExecutable");
  return path != nullptr && access(path, R_OK | X_OK) == 0 ? 1 : 0;
}

int G_GetValidProgramPath(const char *name, std::string *result) {
  const LogScope log("G_GetValidProgramPath");
  if (result == nullptr) return 0;
  result->clear();
  const char *directories = std::getenv("PATH");
  if (name == nullptr || directories == nullptr) return 0;
  std::string_view rest = directories;
  while (true) {
    const size_t colon = rest.find(':');
    const std::string path = std::string(rest.substr(0, colon)) + "/" + name;
    if (G_IsExecutable(path.c_str()) == 1) {
      *result = path;
      return 1;
    }
    if (colon == std::string_view::npos) return 0;
    rest.remove_prefix(colon + 1);
  }
}

int G_EliminateSpacesAndTabs(const char *source, std::string *result, int mode) {
  const LogScope log("G_EliminateSpacesAndTabs");
  if (source == nullptr || result == nullptr) return 0;
  const std::string text = source;
  if (mode == 0) {
    const size_t first = text.find_first_not_of(L_BlankAndTab);
    *result = first == std::string::npos ? "" : text.substr(first);
  } else if (mode == 1) {
    // npos + 1 is 0: nothing but blanks leaves nothing.
    *result = text.substr(0, text.find_last_not_of(L_BlankAndTab) + 1);
  }
  return 1;
}

int G_DeleteAllUsersDefForQueue(const char *queue) {
  const LogScope log("G_DeleteAllUsersDefForQueue");
  if (queue == nullptr) return 0;
  IgnoreResult(DeleteFilesEndingIn(kUsersDir, (std::string(":") + queue + ".def").c_str()),
               "what cannot be removed is logged");
  return 1;
}
