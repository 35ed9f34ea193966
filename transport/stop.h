// Orderly end on SIGTERM, SIGINT and SIGHUP.
#pragma once

namespace kpx::transport {

// Installed once, at the start of the program, for as long as it runs. SIGINT and SIGHUP stay
// ignored when the program was started so.
class StopSignals {
 public:
  StopSignals();
  StopSignals(const StopSignals &) = delete;
  StopSignals &operator=(const StopSignals &) = delete;

  // Readable from the first signal on, for poll; nobody reads from it. -1 when it cannot be had.
  int descriptor() const;
};

// While one lives, a signal ends the process at once, with a word on standard error and `status`:
// for calls that cannot be woken, such as the name look-up, with nothing to tidy up.
class StopAtOnce {
 public:
  explicit StopAtOnce(int status);
  ~StopAtOnce();
  StopAtOnce(const StopAtOnce &) = delete;
  StopAtOnce &operator=(const StopAtOnce &) = delete;
};

}  // namespace kpx::transport
