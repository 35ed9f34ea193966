#include "queuestate.h"

#include "bridgequeues.h"
#include "commandlock.h"
#include "complaint.h"
#include "neededprograms.h"

namespace kpx::spooler {

namespace {

using Action = IppAnswer (BridgeQueues::*)(const std::string &queue);

int Run(const std::string &command, Action action, int argc, char **argv) {
  bool is_good = argc > 1;
  for (int i = 1; i < argc; ++i) is_good = is_good && *argv[i] != '\0' && *argv[i] != '-';
  if (!is_good) {
    std::fputs(("usage: " + command + " QUEUE...\n").c_str(), stderr);
    return kEndWrongUsage;
  }
  const std::string program = "cups" + command;  // by whose name CUPS's users know it
  if (!HasProgram(command, "/usr/sbin/" + program)) return kEndFailed;
  // The scheduler does each of these at once: without the lock a queue that is just being made may
  // be told that it is not there, but none is spoilt.
  if (!TakeLock(command, WithoutLock::GoesOn)) return kEndFailed;
  BridgeQueues queues(Passwords::Asked);  // operators may accept and enable too
  for (int i = 1; i < argc; ++i) {
    const IppAnswer answer = (queues.*action)(argv[i]);
    if (answer.kind == IppAnswer::Kind::Done) continue;
    Say(program, "Operation failed: " + answer.status);
    return kEndFailed;
  }
  return kEndDone;
}

}  // namespace

int RunAccept(int argc, char **argv) { return Run("accept", &BridgeQueues::Accept, argc, argv); }

int RunEnable(int argc, char **argv) { return Run("enable", &BridgeQueues::Enable, argc, argv); }

}  // namespace kpx::spooler
