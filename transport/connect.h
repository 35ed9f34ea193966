// Reaching the printer: name look-up and connection.
#pragma once

#include <string>

#include "descriptor.h"
#include "retrytimes.h"

namespace kpx::transport {

struct Destination {
  std::string address;  // name, IPv4 or IPv6 address
  std::string port;     // decimal, 1 to 65535
};

enum class ConnectEnd {
  kConnected,
  kUnreachable,  // refused or no answer: worth another attempt
  kNoLookUp,     // the name could not be looked up for now: worth another attempt
  kUnknownName,  // the name services know no such name
  kStopped,      // the stop request came
};

struct [[nodiscard]] ConnectResult {
  ConnectEnd end = ConnectEnd::kUnreachable;
  Descriptor socket;   // connected, non-blocking, with keep-alive on; none unless kConnected
  std::string peer;    // the numeric address connected to
  std::string reason;  // in words, unless kConnected or kStopped
};

struct StopRequest {
  int descriptor = -1;  // lent: readable when the run shall end; -1: never
  int status = 0;       // the process's exit status when a signal ends it during the look-up
};

// Tries every address of `destination` in the resolver's order until one accepts.
ConnectResult ConnectTo(const Destination &destination, const Limits &limits,
                        const StopRequest &stop);

}  // namespace kpx::transport
