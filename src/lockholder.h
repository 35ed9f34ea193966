// Who holds the administrators' lock.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

struct LockHolder {
  pid_t process;
  std::string program;  // its name, plain
  std::string user;     // who logged in and started it, or else whom it runs as
};

// The process that holds the lock beside the list file; nothing when none does or the system does
// not tell.
[[nodiscard]] std::optional<LockHolder> HolderOfQueueList(const std::string &list_path);
