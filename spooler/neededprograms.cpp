#include "neededprograms.h"

#include <unistd.h>

#include "complaint.h"

namespace kpx::spooler {

bool HasProgram(const std::string &command, const std::string &program) {
  if (access(program.c_str(), X_OK) == 0) return true;
  Say(command, program + " is missing; install CUPS's client programs");
  return false;
}

}  // namespace kpx::spooler
