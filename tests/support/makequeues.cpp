// Makes print queues the way the administration program's Save does, without its window.
//
// Usage: makequeues NAME=LANGUAGE=PRINTER...
//
//   NAME      name of the new queue
//   LANGUAGE  "postscript", "text", "pcl6" or "raw"
//   PRINTER   name of the printer model as the printer catalogue has it
//
// Every queue gets the address 127.0.0.1, joins those of the queue list, is made in the spooler and
// is saved. Ends with 0 when all of that worked (a script's owner apart, which only root can set),
// with 1 after messages on standard error, with 2 after wrong usage.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "adminsession.h"
#include "cprintqueues.h"
#include "globals.h"
#include "queuecreation.h"

namespace {

bool Add(const std::string &argument) {
  const size_t first = argument.find('=');
  const size_t second = argument.find('=', first + 1);
  if (first == std::string::npos || second == std::string::npos) return false;
  const std::string type = argument.substr(first + 1, second - first - 1);
  return AddQueueToSession(argument.substr(0, first), type, argument.substr(second + 1),
                           "127.0.0.1");
}

}  // namespace

int main(int argc, char **argv) {
  LoadCatalogues();
  const Owned<CList> errors = CreateList();
  LoadQueues(errors.get());
  for (int i = 1; i < argc; ++i) {
    if (!Add(argv[i])) {
      std::fprintf(stderr, "%s is no new queue; usage: %s NAME=LANGUAGE=PRINTER...\n", argv[i],
                   argv[0]);
      return 2;
    }
  }
  const bool made = AddQueuesSysV(errors.get()) == 1;
  const bool saved = fWriteToPaf_Function(G_Queues.get(), errors.get()) == 1 &&
                     fWriteAllToDef_Function(G_Queues.get(), errors.get()) == 1;
  return made && saved ? 0 : 1;
}
