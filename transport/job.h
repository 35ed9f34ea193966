// Carrying one job to the printer, with as many attempts as it takes and is allowed.
#pragma once

#include "connect.h"
#include "report.h"
#include "transferlimits.h"

enum class Outcome {
  kAccepted,         // the printer has the whole job (or there was none) and closed in order
  kTryLater,         // not carried, or not surely; the job should stay in the queue
  kInputUnreadable,  // the job's data could not be read
  kStopped,          // `stop` became readable
};

// Sends the data of `input` (lent, read from its current position) to `destination`. `stop` is
// lent: a descriptor that becomes readable when the transfer shall end, or -1. The first data is
// awaited before the printer is called, because a printer serves one caller at a time.
Outcome CarryJob(const Destination &destination, int input, const Limits &limits,
                 const Report &report, int stop);
