// How long the helpers of the tests wait for what others are to do. Every wait that could be for
// ever goes through here and tells what it was for.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace deadline {

// How much slower than usual this run may be.
inline int Slowness() {
#ifdef __SANITIZE_ADDRESS__
  constexpr int kSanitizers = 4;
#else
  constexpr int kSanitizers = 1;
#endif
  return std::getenv("KPX_LONG") != nullptr ? 20 : kSanitizers;
}

}  // namespace deadline

// For one event of another process.
inline std::chrono::milliseconds EventPatience() {
  return std::chrono::seconds(60) * deadline::Slowness();
}

// For a whole run of a program.
inline std::chrono::milliseconds RunPatience() {
  return std::chrono::minutes(4) * deadline::Slowness();
}

class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds patience)
      : patience_(patience), end_(std::chrono::steady_clock::now() + patience) {}

  // For poll: milliseconds, 0 when it is over.
  int Left() const {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end_ - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
  }
  // "waited 60 s in vain for <what>"
  std::runtime_error Missed(const std::string &what) const {
    return std::runtime_error("waited " + std::to_string(patience_.count() / 1000) +
                              " s in vain for " + what);
  }

 private:
  std::chrono::milliseconds patience_;
  std::chrono::steady_clock::time_point end_;
};

// True once `descriptor` has one of `events` (or an error, or a hang-up); false when the deadline
// passed before.
inline bool HasEvents(int descriptor, short events, const Deadline &deadline) {
  pollfd waited{descriptor, events, 0};
  for (;;) {
    const int count = poll(&waited, 1, deadline.Left());
    if (count > 0) return true;
    if (count == 0 || errno != EINTR) return false;
  }
}

// The wait status of the child `process`, which is gone then, and what it used. One that does not
// end in time is killed, and std::runtime_error names it as `what`.
inline int AwaitChild(pid_t process, const std::string &what, rusage *usage = nullptr,
                      std::chrono::milliseconds patience = RunPatience()) {
  const Deadline deadline(patience);
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  const bool ended = handle < 0 || HasEvents(handle, POLLIN, deadline);
  if (handle >= 0) close(handle);
  if (!ended) kill(process, SIGKILL);
  int status = 0;
  wait4(process, &status, 0, usage);
  if (!ended) throw deadline.Missed("the end of " + what);
  return status;
}
