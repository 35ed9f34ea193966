// Gives CUPS the printer description of each of its queues that the bridge has made, so that print
// dialogs and lp know the queue's options: the model's PPD file, without code for the printer, with
// the queue's settings. KPXadmin runs it at the end of each save.
//
// Usage: kpxppd [-a]
//
//   -a  also where neither script nor settings have changed since: another version may make others
//
// A queue without a description works all the same. Prints the names of the queues for which it
// could not be made, a line each, and on standard error why. Ends with 0; 1 when nothing could be
// done; 2 after wrong usage.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bridgequeues.h"
#include "commandlock.h"
#include "complaint.h"
#include "descriptions.h"
#include "paths.h"

using namespace kpx::spooler;

namespace {

constexpr char kCommand[] = "kpxppd";

int Describe(bool all) {
  const std::vector<std::string> names = QueuesToDescribe(all);
  BridgeQueues queues(Passwords::Never);
  std::string words = "cupsd is not running";
  const auto own = queues.IsRunning() ? OwnQueuesAmong(queues, names, &words) : std::nullopt;
  if (!own) {
    Say(kCommand, "print dialogs go on showing the former options: " + words);
    return kEndFailed;
  }
  Descriptions descriptions;
  for (const std::string &name : *own) {
    const std::string problem = descriptions.Give(queues, name);
    if (problem.empty()) continue;
    Say(kCommand, problem);
    Say(kCommand, "the queue \"" + name + "\" prints, but print dialogs do not show its options");
    std::puts(name.c_str());
  }
  return kEndDone;
}

}  // namespace

int main(int argc, char **argv) {
  const bool all = argc == 2 && std::string(argv[1]) == "-a";
  if (argc > 1 && !all) {
    std::fputs("usage: kpxppd [-a]\n", stderr);
    return kEndWrongUsage;
  }
  umask(022);
  setenv("LC_ALL", "C.UTF-8", 1);  // CUPS's words are in the language of these messages
  if (!HasQueues()) return kEndDone;
  if (access(kSpoolInterfacesDir, W_OK) != 0) {
    Say(kCommand, std::string("cannot write to ") + kSpoolInterfacesDir + ": run this as root");
    return kEndFailed;
  }
  if (!TakeLock(kCommand)) return kEndFailed;
  return Describe(all);
}
