// The System V spooler's lpadmin for hosts whose spooler is CUPS.
#pragma once

namespace kpx::spooler {

//   lpadmin -p QUEUE [-v /dev/null] [-I TYPES] [-o nobanner] [-m MODEL]
//   lpadmin -x QUEUE
//   lpadmin -R
//
// -p makes the queue, or changes the model of one that is there: a CUPS queue whose backend kpxlp
// runs the queue's interface script, a copy of the model's. As on System V, a new queue prints only
// after accept and enable. -x removes queue and script. -R is for the start of the system: it gives
// CUPS the queues that a power cut has taken from it, and takes those that the cut brought back.
// See kpxlp(8).
//
// What a command that was killed, or a power cut, left half done is finished by the same command or
// removed by -x.
//
// Returns the exit status: 0; 1 after a message when it could not be done, in which case nothing
// has changed; 2 after wrong usage.
[[nodiscard]] int RunLpadmin(int argc, char **argv);

}  // namespace kpx::spooler
