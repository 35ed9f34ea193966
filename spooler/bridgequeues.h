// The queues of the bridge as CUPS has them.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "ippclient.h"
#include "spoolerrequests.h"

namespace kpx::spooler {

// Whose queue of a name CUPS has.
enum class QueueOwner { None, Ours, Other };

// Whether a queue that is made takes jobs and prints.
enum class NewQueueState { Stopped, Ready };

// Speaks with CUPS. What it asks for belongs to the administrators of queues.
class BridgeQueues {
 public:
  // `passwords`: whether the user may be asked for the password that CUPS wants.
  explicit BridgeQueues(Passwords passwords);

  // Whether CUPS is there. What asks or changes something, but for Accept and Enable, may be called
  // only when it has been.
  [[nodiscard]] bool IsRunning() { return client_.IsThere(); }

  // Nothing, with `*words`, when CUPS does not say. A name that differs in capitals alone is
  // another queue's, and CUPS cannot have both.
  [[nodiscard]] std::optional<QueueOwner> OwnerOf(const std::string &queue, std::string *words);

  // The names of the bridge's queues, sorted; nothing, with `*words`, when CUPS does not say.
  [[nodiscard]] std::optional<std::vector<std::string>> OwnQueues(std::string *words);

  // Makes the queue. Should the backend ever be killed, the job is kept too.
  IppAnswer Make(const std::string &queue, NewQueueState state);
  IppAnswer Remove(const std::string &queue);
  IppAnswer Accept(const std::string &queue);
  IppAnswer Enable(const std::string &queue);
  // Gives the queue the printer description in the file `ppd`.
  IppAnswer Describe(const std::string &queue, const std::string &ppd);

 private:
  IppAnswer Ask(ipp_op_t operation, const std::string &queue);

  std::atomic<bool> stop_ = false;
  IppClient client_;
};

}  // namespace kpx::spooler
