// What tests may do only inside the private world of the sandbox.
#pragma once

#include <grp.h>
#include <pwd.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "childprocess.h"

// Ends the test program unless it runs in the sandbox: the tests write to the installation's own
// directories and replace system commands.
inline void RequirePrivateWorld() {
  if (std::getenv("KPX_OUTSIDE_UID") == nullptr) {
    throw std::runtime_error("run this test through tests/support/sandbox");
  }
}

// True when the sandbox has the ordinary users anna and bob, which it lacks without root.
inline bool HasOrdinaryUsers() { return getpwnam("anna") != nullptr && getpwnam("bob") != nullptr; }

// RunInChild as the user `name`, with that user's groups alone.
inline ChildResult RunAsUser(const char *name, const std::function<void()> &body) {
  const passwd *entry = getpwnam(name);
  if (entry == nullptr) throw std::runtime_error(std::string("no user ") + name);
  const uid_t user = entry->pw_uid;
  const gid_t group = entry->pw_gid;
  return RunInChild([&] {
    if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0) _exit(125);
    body();
  });
}

// For its lifetime a file system of `bytes` bytes (whole pages) covers the directory `path`.
class SmallDisk {
 public:
  SmallDisk(const std::string &path, size_t bytes) : path_(path) {
    RequirePrivateWorld();
    const std::string options = "mode=755,size=" + std::to_string(bytes);
    if (mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) != 0) {
      throw std::runtime_error("cannot mount over " + path);
    }
  }
  ~SmallDisk() { umount(path_.c_str()); }
  SmallDisk(const SmallDisk &) = delete;
  SmallDisk &operator=(const SmallDisk &) = delete;

 private:
  std::string path_;
};

inline mode_t ModeOf(const std::string &path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) throw std::runtime_error("no " + path);
  return status.st_mode & 07777;
}

// The name of the group that a file belongs to.
inline std::string GroupOf(const std::string &path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) throw std::runtime_error("no " + path);
  const group *entry = getgrgid(status.st_gid);
  return entry == nullptr ? std::to_string(status.st_gid) : entry->gr_name;
}

// The names in a directory, sorted.
inline std::vector<std::string> NamesIn(const std::string &path) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(path)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}
