// The System V spooler's accept and enable for hosts whose spooler is CUPS.
#pragma once

#include <string>

namespace kpx::spooler {

//   accept QUEUE...    lets queues take requests
//   enable QUEUE...    lets queues print the requests they have
//
// Returns the exit status: 0; 1 after a message when it could not be done, and then the queues
// behind the one that failed are as they were; 2 after wrong usage.
[[nodiscard]] int RunAccept(int argc, char **argv);
[[nodiscard]] int RunEnable(int argc, char **argv);

}  // namespace kpx::spooler
