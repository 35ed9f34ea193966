// Faults at the system calls of a process: a piece of a test runs in a child that stops before each
// call with which it, or a command that it runs, looks at or changes a file, and the test says what
// becomes of the call and of the process.
#pragma once

#include <sys/types.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

// A call that is about to be made.
struct FileCall {
  pid_t process = 0;
  bool is_own = false;  // by the process itself, not by a command that it runs
  long number = 0;      // SYS_...
  std::array<unsigned long, 6> arguments{};
  std::string path;      // what it is about: a path as /proc shows it, also "socket:[...]"
  bool changes = false;  // it can change what others see: a file, or a server that is spoken to
};

// "<name of the call> <path>", for messages. The name only of the calls that faults are made at.
std::string DescriptionOf(const FileCall &call);

// True when the call is about something below one of the directories.
bool IsBelow(const FileCall &call, const std::vector<std::string> &directories);

// True when the call sends something through a socket.
bool SendsToServer(const FileCall &call);

// True when a call of that kind can fail so on a disk or a network: `error` is ENOSPC, EIO, EACCES
// or EINTR.
bool CanFail(const FileCall &call, int error);

// True when the call may take or bring less than it was asked for.
bool CanBeShort(const FileCall &call);

struct CallFate {
  enum class Kind {
    Made,     // as it is
    Killed,   // SIGKILL to the process, the first one; its commands go on
    CutDown,  // SIGKILL to the process and all its commands at once
    Failed,   // the call is not made and fails with `error`
    Short     // a read or write of half of the bytes, at least one
  };
  Kind kind = Kind::Made;
  int error = 0;  // errno
};
using FatePlan = std::function<CallFate(const FileCall &call)>;

struct TracedEnd {
  bool killed = false;
  int status = 0;  // the exit status; 128 plus the signal's number when a signal ended it
};

// Runs `prepare` and then `body` in a child process and asks `plan`, in the calling process, about
// each file call that `body` and the commands that it runs make; all processes stand still for as
// long as `plan` takes, unless several run at once. Returns when all have ended. The exit status is
// what `body` returns. Its standard error goes to the file `errors_path` when one is named. Throws
// std::runtime_error when the kernel refuses to trace.
TracedEnd RunTraced(const std::function<void()> &prepare, const std::function<int()> &body,
                    const FatePlan &plan, const std::string &errors_path = {});
