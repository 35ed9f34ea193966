// What a command works on, as the globals of the core hold it, from reading to Save.
#pragma once

#include "commands.h"
#include "queueplan.h"
#include "words.h"

namespace kpx::ctl {

// Whether the caller may change queues now; takes the administrators' lock. kDone, or told: kFailed
// for ordinary users, kRefused when somebody else holds the lock.
[[nodiscard]] Status MayChange();

// Reads the queues as every user's programs do. What is wrong with them is told.
void ReadQueues();

// Reads printers and fonts: what the settings of queues are made of.
void ReadPrinters();

// Reads all of it to compare it: nothing can be saved.
void ReadToLook();

// Whether something of an earlier save is left to be done, by what it left on the disk.
[[nodiscard]] bool IsSaveUnfinished();

// Reads all of it for a command that changes queues, which holds the lock from then on; with
// --dry-run as everybody may. kDone, or told why it cannot be.
[[nodiscard]] Status ReadToChange(const Call &call);

// What has been changed since then.
std::vector<PlanStep> PlanOfSession();

// Shows the plan and saves; with --dry-run it only shows. What an interrupted save has left undone
// is done too. The status to end with.
[[nodiscard]] Status SaveSession(const Call &call);

}  // namespace kpx::ctl
