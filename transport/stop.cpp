#include "stop.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kpx::transport {

namespace {

volatile sig_atomic_t L_at_once = 0;
volatile sig_atomic_t L_status = 0;
std::array<int, 2> L_pipe = {-1, -1};

// Runs as a signal handler: only calls that may be made from one.
void TakeSignal(int) {
  if (L_at_once != 0) {
    constexpr char kText[] =
        "kpxnbtrans: stopped by a signal while looking up the printer's name\n";
    [[maybe_unused]] const ssize_t count = write(STDERR_FILENO, kText, sizeof kText - 1);
    _exit(L_status);
  }
  const int saved = errno;
  [[maybe_unused]] const ssize_t count = write(L_pipe[1], "", 1);
  errno = saved;
}

void Catch(int number, bool unless_ignored) {
  struct sigaction before = {};
  if (unless_ignored && sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) {
    return;
  }
  struct sigaction action = {};
  action.sa_handler = TakeSignal;
  sigemptyset(&action.sa_mask);
  sigaction(number, &action, nullptr);
}

}  // namespace

StopSignals::StopSignals() {
  if (pipe2(L_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  Catch(SIGTERM, false);
  Catch(SIGINT, true);
  Catch(SIGHUP, true);
}

int StopSignals::descriptor() const { return L_pipe[0]; }

StopAtOnce::StopAtOnce(int status) {
  L_status = status;
  L_at_once = 1;
}

StopAtOnce::~StopAtOnce() { L_at_once = 0; }

}  // namespace kpx::transport
