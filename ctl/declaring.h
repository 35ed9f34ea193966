// Making the queues of the session what a file declares.
#pragma once

#include <optional>

#include "declaredfile.h"
#include "queueedit.h"
#include "queuenames.h"

namespace kpx::ctl {

// Gives G_Queues_hash the queue as it is declared; nothing, or why it cannot have it. One that is
// so already stays untouched.
class Declaring {
 public:
  explicit Declaring(bool resolve);
  [[nodiscard]] std::optional<Fault> Declare(const DeclaredQueue &declared);

 private:
  TakenQueueNames names_;
  bool resolve_;
};

}  // namespace kpx::ctl
