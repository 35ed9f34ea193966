// The options of queues in the print dialogs of other programs.
#pragma once

#include <cstddef>

#include "clist.h"

// Has the spooler bridge give the spooler each queue's printer description, so that print dialogs
// and commands offer the options as they are now. Nothing where the spooler knows no such thing. A
// queue without a description prints all the same; each is reported to `errors`.
void OfferOptions(CList *errors);

// How many milliseconds the bridge may take for that with so many queues. CUPS needs the longer for
// one the more of them it has: some two seconds for the ten thousandth.
[[nodiscard]] int PatienceForOptions(size_t queues);
