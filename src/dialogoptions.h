// The options of queues in the print dialogs of other programs.
#pragma once

#include "clist.h"

// Has the spooler bridge give the spooler each queue's printer description, so that print dialogs
// and commands offer the options as they are now. Nothing where the spooler knows no such thing. A
// queue without a description prints all the same; each is reported to `errors`.
void OfferOptions(CList *errors);
