// One of the bridge's commands at a time changes queues.
#pragma once

#include <string>

namespace kpx::spooler {

// What a command does when the system refuses the lock.
enum class WithoutLock { Ends, GoesOn };

// Until this process has ended, or LeaveLock, the other commands wait: true. False, after a message
// of `command`, when somebody has had the lock for half a minute, or the system refuses it and the
// command is to end then. For the superuser alone, since whoever can open the file can hold up
// everybody: for others there is no lock, and true.
[[nodiscard]] bool TakeLock(const std::string &command, WithoutLock without = WithoutLock::Ends);

// Lets the other commands go on.
void LeaveLock();

}  // namespace kpx::spooler
