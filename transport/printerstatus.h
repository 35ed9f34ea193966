// What a printer says about itself over the connection that takes the job: the status lines of its
// job language (PJL), as jobs that ask for them get them.
#pragma once

#include <string>
#include <string_view>

namespace kpx::transport {

class PrinterStatus {
 public:
  // Takes in what came from the printer, any bytes in pieces of any size. Returns the words for a
  // condition that has begun, "out of paper (code 41213)", or "ready again" when one has ended;
  // empty when nothing has changed or nothing is understood.
  std::string Take(std::string_view bytes);

  // The condition as it is, "out of paper"; empty when the printer has told of none.
  const std::string &Condition() const { return condition_; }

 private:
  std::string TakeLine(std::string_view line);

  std::string line_;       // so far
  bool in_block_ = false;  // behind the line that begins a status
  std::string condition_;
};

}  // namespace kpx::transport
