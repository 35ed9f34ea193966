// The printer descriptions that CUPS has of the bridge's queues.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bridgequeues.h"
#include "queueppdfile.h"

namespace kpx::spooler {

// Whether the bridge has any queues.
[[nodiscard]] bool HasQueues();

// The queues with an entry and a script, sorted, whose script or settings have changed since CUPS
// got their description; with `all`, all of them.
std::vector<std::string> QueuesToDescribe(bool all);

// Those of `names` that CUPS has as queues of the bridge; nothing, with `*words`, when it does not
// say.
[[nodiscard]] std::optional<std::vector<std::string>> OwnQueuesAmong(
    BridgeQueues &queues, const std::vector<std::string> &names, std::string *words);

// Makes descriptions and gives them to CUPS.
class Descriptions {
 public:
  // Empty when CUPS has the queue's description, or it is of a kind that has none; else what
  // failed.
  [[nodiscard]] std::string Give(BridgeQueues &queues, const std::string &queue);

 private:
  kpx::filter::QueuePpdMaker maker_;
};

}  // namespace kpx::spooler
