// What the transport has to say, in English words (D-texts-4); the spooler keeps it in the job's
// log.
#pragma once

#include <chrono>
#include <string>

namespace kpx::transport {

class Report {
 public:
  // `descriptor` is lent and must stay open; the program passes standard error.
  explicit Report(int descriptor) : descriptor_(descriptor) {}

  // Writes "kpxnbtrans: <text>" and a line feed in one piece. That nobody listens is not a failure.
  void Say(const std::string &text) const;

 private:
  int descriptor_;
};

// "250 ms" below a second, otherwise whole seconds: "80 s".
std::string DurationText(std::chrono::milliseconds duration);

// The system's words for an error number, in English.
std::string ErrorText(int error);

}  // namespace kpx::transport
