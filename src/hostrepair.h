// Putting right what CheckHost finds, by the functions of a save.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "clist.h"
#include "hostcheck.h"

struct RepairRequest {
  // The queues that are asked about; empty for all. What is mended by name alone needs them.
  std::set<std::string, std::less<>> names;
  std::optional<Disagreement> only;  // the kind that is asked about; nothing for all
  // A directory with the model scripts of the version before, or empty: a script that begins as one
  // of these gets the installed beginning without being named.
  std::string former_models;
};

// Whether the fault is asked about.
[[nodiscard]] bool IsAsked(const HostFault &fault, const RepairRequest &request);

// Puts those of `faults`, which are all of the host, right that are asked about and may be. Others
// are mended with them where one save does so. The queues must have been loaded as for the
// administration, which holds the lock. What fails is reported to `errors` and on standard error.
void RepairHost(const std::vector<HostFault> &faults, const RepairRequest &request, CList *errors);
