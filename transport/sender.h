// Sending one job over one connection, up to the printer's orderly close.
#pragma once

#include <cstdint>
#include <string>

#include "input.h"
#include "report.h"
#include "retrytimes.h"

namespace kpx::transport {

enum class SendEnd {
  kAccepted,     // every byte was acknowledged and the printer closed the connection in order
  kBroken,       // the connection failed, or the printer was silent or took nothing for too long
  kInputFailed,  // reading the job failed
  kStopped,      // `stop` became readable
};

struct [[nodiscard]] SendResult {
  SendEnd end = SendEnd::kBroken;
  std::string reason;              // in words, for kBroken and kInputFailed
  std::uint64_t acknowledged = 0;  // bytes that reached the printer
  std::uint64_t sent_back = 0;     // bytes that came from the printer; all but its state is lost
  bool caught_up = false;          // all that went out was acknowledged
  bool whole_job = false;          // the same, and the input was at its end
};

// `socket` is a connected, non-blocking TCP socket with keep-alive on; it is lent, and after the
// call only good for closing. Unless the printer has the whole job, closing it resets the
// connection, so that neither side takes a part of the job for all of it or goes on with it.
SendResult SendJob(int socket, JobInput &input, const Limits &limits, const Report &report,
                   int stop);

}  // namespace kpx::transport
