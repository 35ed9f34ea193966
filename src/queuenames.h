// Names of queues: are they free, what is a clone called.
#pragma once

#include <set>
#include <string>

#include "chash.h"
#include "clist.h"

// 1 when some CString of the list equals `text` exactly, else 0; 0 for null arguments.
[[nodiscard]] int G_IsStringInCList(const CList *list, const char *text);

// 1 when no queue of the working set and none of the spooler, ours or not, has the name, or when it
// is that of the queue whose properties are open; else 0. What the spooler's directory refuses is
// reported to `errors`.
[[nodiscard]] int G_CheckUniqueQueueName(const char *name, CList *errors);

// The same for many names: the spooler is looked at once.
class TakenQueueNames {
 public:
  explicit TakenQueueNames(CList *errors);
  // Whether a queue of the working set or one of the spooler has the name.
  [[nodiscard]] bool Has(const std::string &name) const;

 private:
  std::set<std::string> spooler_names_;
};

// A free name for a clone of the queue: "CopyOf_<name>", else "Copy2Of_<name>" and so on.
std::string BuildCloneName(const char *name);

// The spooler kind of a queue of the working set, or else of the set found at start: 2 "CUPS",
// 1 "LPRng", 0 anything else and an unknown queue. A record without one is reported.
[[nodiscard]] int G_GetQueuePrnSys(const char *name);
