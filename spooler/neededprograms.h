// The programs of CUPS that have to be there.
#pragma once

#include <string>

namespace kpx::spooler {

// Whether the program of CUPS's client programs is there; tells when it is not. The bridge itself
// runs none of them. But KPXadmin and the package look at its queues and stop them with those: a
// host without them would get queues that it cannot look after.
[[nodiscard]] bool HasProgram(const std::string &command, const std::string &program);

}  // namespace kpx::spooler
