#include "strangersfiles.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <optional>
#include <string>

#include "debug.h"
#include "deffile.h"
#include "openfile.h"
#include "paths.h"
#include "textencoding.h"
#include "textfile.h"
#include "waitingdirectory.h"
#include "waitingsettings.h"

namespace {

// A directory may hold what its owner likes: no more than this is removed of it in one go.
constexpr int L_MostNames = 10000;
constexpr int L_DeepestLevel = 32;

std::optional<uid_t> UserId(const std::string &login) {
  const passwd *entry = getpwnam(login.c_str());
  if (entry == nullptr) return std::nullopt;
  return entry->pw_uid;
}

bool IsKnown(uid_t user) { return getpwuid(user) != nullptr; }

// Removes files and directories without following links.
class Remover {
 public:
  explicit Remover(dev_t device) : device_(device) {}

  // False, with errno, when it is not all gone.
  bool Remove(int directory, const std::string &name, int level = 0) {
    if (left_-- <= 0 || level > L_DeepestLevel) {
      errno = ENOTEMPTY;
      return false;
    }
    if (unlinkat(directory, name.c_str(), 0) == 0) return true;
    if (errno != EISDIR) return false;
    const OpenFile inner(
        openat(directory, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!inner.IsOpen() || fstat(inner.Descriptor(), &status) != 0) return false;
    if (status.st_dev == device_) {
      for (const std::string &below : NamesInOpenDirectory(inner.Descriptor())) {
        if (!Remove(inner.Descriptor(), below, level + 1)) return false;
      }
    }
    return unlinkat(directory, name.c_str(), AT_REMOVEDIR) == 0;
  }

 private:
  dev_t device_;
  int left_ = L_MostNames;
};

// The users' directory, entry by entry.
class Sweep {
 public:
  Sweep() : users_(open(kUsersDir, O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

  void Run() {
    struct stat status = {};
    if (!users_.IsOpen() || fstat(users_.Descriptor(), &status) != 0) return;
    device_ = status.st_dev;
    for (const std::string &name : NamesInOpenDirectory(users_.Descriptor())) {
      const size_t colon = name.find(':');
      if (colon == std::string::npos) {
        LookAtDirectory(name);
      } else if (name.ends_with(kDefExtension)) {
        LookAtFile(name, name.substr(0, colon));
      }
    }
  }

 private:
  std::optional<uid_t> UserOf(const std::string &login) {
    const auto known = users_by_login_.find(login);
    if (known != users_by_login_.end()) return known->second;
    return users_by_login_[login] = UserId(login);
  }

  std::optional<struct stat> StatusOf(const std::string &name) const {
    struct stat status = {};
    if (fstatat(users_.Descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      return std::nullopt;
    }
    return status;
  }

  // Why the option file goes; null when it stays.
  const char *WhyFileGoes(const std::string &name, const std::string &login) {
    const std::optional<struct stat> status = StatusOf(name);
    if (!status) return nullptr;
    if (!S_ISREG(status->st_mode)) return "it is not a regular file";
    const std::optional<uid_t> user = UserOf(login);
    const uid_t owner = status->st_uid;
    if (owner != 0 && user && owner != *user) return "it belongs to another user";
    if (owner != 0 && !user && IsKnown(owner)) return "there is no such user";
    return IsLeftoverName(name, kDefExtension) ? "it was never finished" : nullptr;
  }

  void LookAtFile(const std::string &name, const std::string &login) {
    if (WhyFileGoes(name, login) == nullptr) return;
    const WaitingDirectory own = WaitingDirectory::Of(login);
    if (own.IsOpen() && !own.Lock(false)) return;
    // What the user's own print tool may have put there in the meantime stays.
    if (const char *reason = WhyFileGoes(name, login)) Remove(name, reason);
  }

  void LookAtDirectory(const std::string &login) {
    const std::optional<uid_t> user = UserOf(login);
    const std::optional<struct stat> status = StatusOf(login);
    if (!user || !status) return;
    if (status->st_uid != *user && status->st_uid != 0) Remove(login, "it belongs to another user");
    const WaitingDirectory own = WaitingDirectory::Of(login);
    if (own.IsOpen() && own.Lock(false)) RemoveUnsentCopies(own);
  }

  void Remove(const std::string &name, const std::string &reason) const {
    const std::string path = std::string(kUsersDir) + "/" + PlainText(name);
    if (Remover(device_).Remove(users_.Descriptor(), name)) {
      Log(1, "Removed " + path + ": " + reason);
    } else {
      const int error = errno;
      Log(1, "Could not remove " + path + ": " + std::strerror(error) + "; " + reason);
    }
  }

  OpenFile users_;
  dev_t device_ = 0;
  std::map<std::string, std::optional<uid_t>> users_by_login_;
};

}  // namespace

void RemoveStrangersFiles() {
  const LogScope log("RemoveStrangersFiles");
  Sweep().Run();
}
