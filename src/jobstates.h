// The words for states of queues and jobs, and for what keeps a job from being printed, in the
// user's language.
#pragma once

#include <string>
#include <string_view>

#include "spoolerstate.h"

// What keeps a job, as the last words about it tell.
enum class Trouble {
  None,         // nothing that is known here
  Unreachable,  // the printer does not answer
  UnknownName,  // its name is not known
  TakesNoData,  // it answers and takes nothing: out of paper, paused
  SaysItself,   // it has said what it lacks
  InDoubt,      // all or a part of the job may have been printed
  NoSpace,      // on this host
  NotSetUp,     // the queue is incomplete
  BadPin,       // it is to wait for a PIN and has none that counts
  Failed,       // one of the programs that prepare the job
};
struct TroubleReading {
  Trouble kind = Trouble::None;
  std::string printer;                // its address, if the words name it
  std::string cause;                  // the words without what the bridge adds to them
  const char *printer_key = nullptr;  // of what the printer has said itself
};

// What words of the bridge, its filter and its transport mean; other words mean nothing.
TroubleReading ReadTrouble(std::string_view words);

// One or two words each.
std::string QueueStateText(const SpoolerQueue &queue);
std::string JobStateText(const SpoolerJob &job);

// The document's name; data from standard input, which lp knows by the file that it was kept in, is
// called so.
std::string JobTitleText(const SpoolerJob &job);

// Pages when the printer has told them, else the size.
std::string JobSizeText(const SpoolerJob &job);

// Why the queue or the job is where it is, and what its user can do; empty when there is nothing to
// say. `queue` is the job's, null when it is not known.
std::string QueueReasonText(const SpoolerQueue &queue);
std::string JobReasonText(const SpoolerJob &job, const SpoolerQueue *queue);

// Why a new job on the queue would not be printed now: it is stopped, refuses jobs, or its printer
// does not answer; empty otherwise.
std::string QueueHindranceText(const SpoolerQueue &queue);

// The text of a system error ("No route to host") in the language of the locale, as far as its
// catalogue of system errors is installed; any other text as it is.
[[nodiscard]] std::string SystemErrorInLocale(const std::string &english);

// A trouble and what mends it, as sentences; empty for none.
std::string TroubleText(const TroubleReading &trouble);

// What the printer itself reports of its paper, doors and toner (`reasons` as IPP has them), in
// words; empty when it reports nothing.
std::string PrinterReasonsText(std::string_view reasons);

// True when all or a part of the job may have been printed already.
[[nodiscard]] bool MayHaveBeenPrinted(const SpoolerJob &job);
