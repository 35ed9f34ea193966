// Carrying one job to the printer, with as many attempts as it takes and is allowed.
#pragma once

#include <sysexits.h>

#include "connect.h"
#include "report.h"
#include "retrytimes.h"

namespace kpx::transport {

// The values are exit statuses. A run that is stopped ends with kTryLater or kInDoubt too: what
// counts for the spooler is whether sending the job again may print anything twice.
enum class Outcome {
  kAccepted = EX_OK,        // the printer has the whole job (or there was none), closed in order
  kTryLater = EX_TEMPFAIL,  // the printer took nothing: the job can be sent again
  kInDoubt = EX_PROTOCOL,   // it took the job, or a part, and the end of it is not known
  kInputUnreadable = EX_IOERR,  // the job's data could not be read; nothing was taken
};

// Sends the data of `input` (lent, read from its current position) to `destination`. `stop` is
// lent: a descriptor that becomes readable when the transfer shall end, or -1. The first data is
// awaited before the printer is called, because a printer serves one caller at a time.
[[nodiscard]] Outcome CarryJob(const Destination &destination, int input, const Limits &limits,
                               const Report &report, int stop);

}  // namespace kpx::transport
