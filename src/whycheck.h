// Why a queue or a job does not get on: each thing that has to be right, looked at in order.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "interfacescript.h"
#include "spoolerstate.h"

// What is looked at.
enum class WhyCheck {
  Spooler,  // does the print service answer, print and take jobs
  Script,   // is the queue's interface script whole
  Name,     // is the printer's name known
  Host,     // does the printer answer
  Port,     // does it take connections
  Data,     // does it keep one open
  Status,   // what does the printer say about itself
  Words,    // what did the programs of the last job say
  Options,  // can the queue's and the user's settings be read
  Pin,      // does the printer wait for a PIN
  Room,     // is there room on the disks
};

enum class WhyResult {
  Good,
  Bad,
  Unknown,  // it could not be looked at
};

struct WhyStep {
  WhyCheck check;
  WhyResult result;
  const char *text_key;    // of the catalogue: what was found
  const char *mend_key;    // what to do; null unless it is bad
  std::string words = {};  // what the texts take, in their order
  std::string more_words = {};
};

// Sentences in the user's language; what to do is empty when nothing is.
std::string WhyText(const WhyStep &step);
std::string WhyMend(const WhyStep &step);

// What is asked about.
struct WhySubject {
  std::string queue;
  std::string user;   // whose settings count
  std::string words;  // the last words about the job or, without one, the queue
  SpoolerQueue state;
  SpoolerContact contact = SpoolerContact::Gone;  // `state` holds when it is Answering
};

// The subject "QUEUE" or "QUEUE-NUMBER", a job, as the print service tells it; `user` is that of
// the job, else as given. Waits at most some seconds for the service.
WhySubject AskForSubject(const std::string &name, const std::string &user);

// Looks at everything, which may take a minute where a name service or a printer hangs; `found` is
// called with each step, in the order above, from the thread that calls this. Asks the printer for
// its state, but sends it nothing to print. Uses nothing of the process that others change, so that
// it may run in any thread.
void CheckWhy(const WhySubject &subject, const std::function<void(const WhyStep &)> &found);

// Of that, looks at the printer alone: `block` says where it is and what carries the data. The
// first step that is bad is the last.
void CheckPrinter(const InterfaceBlock &block, const std::function<void(const WhyStep &)> &found);

// Of that, looks up the printer's name alone; a numeric address is one that is known.
WhyStep CheckPrinterName(const InterfaceBlock &block);

// Where a printer of the model `printer_name` (empty: not known) is, for these two.
InterfaceBlock PrinterPlace(const std::string &printer_name, const std::string &address);

// What CheckPrinter has found, in a sentence for the administrator who is choosing the address, and
// what to do if something is wrong.
std::string AddressFinding(const std::vector<WhyStep> &steps);

// A step as lines of text: what was found and, indented, what to do.
std::string WhyLines(const WhyStep &step);

// The first step that is bad, as a line; that all is well when there is none.
std::string WhyConclusion(const std::vector<WhyStep> &steps);
