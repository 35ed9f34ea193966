#include "waitingdirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

#include "debug.h"
#include "paths.h"
#include "requestfile.h"
#include "utils.h"

namespace {

// The spooler's group, which the users' directory hands down, reads; nobody else does.
constexpr mode_t L_DirectoryMode = 0750;
constexpr mode_t L_FileMode = 0640;

struct DirectoryCloser {
  void operator()(DIR *directory) const { closedir(directory); }
};

OpenFile OpenDirectory(const std::string &path) {
  return OpenFile(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Whether the open directory is as MakeDirectory leaves it: its group the one that the users'
// directory hands down.
bool IsAsMade(int descriptor) {
  struct stat status = {};
  struct stat above = {};
  if (fstat(descriptor, &status) != 0 || stat(kUsersDir, &above) != 0) return false;
  const bool has_group = (above.st_mode & S_ISGID) == 0 ||
                         ((status.st_mode & S_ISGID) != 0 && status.st_gid == above.st_gid);
  return status.st_uid == geteuid() && (status.st_mode & 0777) == L_DirectoryMode && has_group;
}

// With the mode set from the start: changing it later would take the set-group-ID bit away, which
// only a member of the group may give.
bool MakeDirectory(const std::string &path) {
  const mode_t before = umask(0777 & ~L_DirectoryMode);
  const bool made = mkdir(path.c_str(), L_DirectoryMode) == 0;
  const int error = errno;
  umask(before);
  errno = error;
  return made;
}

}  // namespace

WaitingDirectory WaitingDirectory::MakeOwn() {
  const LogScope log("WaitingDirectory::MakeOwn");
  const char *login = GetUserName(nullptr);
  WaitingDirectory own(login == nullptr ? std::string() : RequestDirectory(kUsersDir, login));
  if (own.path_.empty()) {
    own.path_ = kUsersDir;
    own.error_ = ENOENT;
    return own;
  }
  for (const bool again : {true, false}) {
    if (!MakeDirectory(own.path_) && errno != EEXIST) break;
    OpenFile opened = OpenDirectory(own.path_);
    if (!opened.IsOpen()) break;
    if (IsAsMade(opened.Descriptor())) {
      own.directory_ = std::move(opened);
      return own;
    }
    // An empty one of another mode is made anew.
    errno = EEXIST;
    if (!again || rmdir(own.path_.c_str()) != 0) break;
  }
  own.error_ = errno;
  return own;
}

WaitingDirectory WaitingDirectory::Of(const std::string &login) {
  const LogScope log("WaitingDirectory::Of");
  WaitingDirectory directory(RequestDirectory(kUsersDir, login));
  const passwd *user = directory.path_.empty() ? nullptr : getpwnam(login.c_str());
  if (user == nullptr) return directory;
  OpenFile opened = OpenDirectory(directory.path_);
  struct stat status = {};
  if (opened.IsOpen() && fstat(opened.Descriptor(), &status) == 0 &&
      status.st_uid == user->pw_uid) {
    directory.directory_ = std::move(opened);
  }
  return directory;
}

bool WaitingDirectory::Lock(bool wait) const {
  int result = 0;
  do {
    result = flock(directory_.Descriptor(), LOCK_EX | (wait ? 0 : LOCK_NB));
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

std::vector<std::string> WaitingDirectory::Names() const {
  return NamesInOpenDirectory(directory_.Descriptor());
}

std::string WaitingDirectory::WriteNew(const std::string &prefix, std::string_view text) const {
  std::string path = path_ + "/" + prefix + "XXXXXX";
  OpenFile file(mkostemp(path.data(), O_CLOEXEC));
  if (!file.IsOpen()) return {};
  if (file.Write(text) && fchmod(file.Descriptor(), L_FileMode) == 0 &&
      fsync(file.Descriptor()) == 0 && file.Close()) {
    return path.substr(path_.size() + 1);
  }
  const int error = errno;
  unlink(path.c_str());
  errno = error;
  return {};
}

bool WaitingDirectory::Rename(const std::string &from, const std::string &to) const {
  const int directory = directory_.Descriptor();
  return renameat(directory, from.c_str(), directory, to.c_str()) == 0;
}

bool WaitingDirectory::Remove(const std::string &name) const {
  return unlinkat(directory_.Descriptor(), name.c_str(), 0) == 0;
}

std::vector<std::string> NamesInOpenDirectory(int descriptor) {
  std::vector<std::string> names;
  // A description of its own: reading moves the place in the directory.
  const int fresh = openat(descriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, DirectoryCloser> directory(fresh == -1 ? nullptr : fdopendir(fresh));
  if (directory == nullptr) {
    if (fresh != -1) close(fresh);
    return names;
  }
  while (const dirent *entry = readdir(directory.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return names;
}
