#include "commandlock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "complaint.h"
#include "openfile.h"

namespace kpx::spooler {

namespace {

constexpr char kLockDir[] = "/usr/spool/lp/admins/lp";
constexpr int kPatience = 30;  // seconds

OpenFile lock_file;

// Has SIGALRM come after `seconds`, and again each second: one that comes before the wait has begun
// does not count.
class Alarm {
 public:
  explicit Alarm(int seconds) {
    struct sigaction action = {};
    action.sa_handler = [](int) {};  // only interrupts the wait
    sigaction(SIGALRM, &action, &before_);
    Set(seconds, 1);
  }
  ~Alarm() {
    Set(0, 0);
    sigaction(SIGALRM, &before_, nullptr);
  }
  Alarm(const Alarm &) = delete;
  Alarm &operator=(const Alarm &) = delete;

 private:
  static void Set(int seconds, int interval) {
    const itimerval times = {.it_interval = {.tv_sec = interval, .tv_usec = 0},
                             .it_value = {.tv_sec = seconds, .tv_usec = 0}};
    setitimer(ITIMER_REAL, &times, nullptr);
  }
  struct sigaction before_ = {};
};

}  // namespace

bool TakeLock(const std::string &command, WithoutLock without) {
  if (access(kLockDir, W_OK) != 0) return true;
  const std::string path = std::string(kLockDir) + "/lock";
  std::string refusal = std::string("cannot write to ") + kLockDir;
  lock_file = OpenFile(open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0600));
  if (lock_file.IsOpen()) {
    const Alarm alarm(kPatience);
    if (flock(lock_file.Descriptor(), LOCK_EX) == 0) return true;
    if (errno == EINTR) {
      Say(command, "another lpadmin, accept or enable has been at work for " +
                       std::to_string(kPatience) + " seconds; try again when it has ended");
      return false;
    }
    refusal = path + " cannot be locked";
  }
  Say(command, refusal);
  return without == WithoutLock::GoesOn;
}

void LeaveLock() { lock_file = OpenFile(); }

}  // namespace kpx::spooler
