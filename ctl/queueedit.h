// Changing a queue as its properties window does: opened, changed, compared with the printer's
// constraints, stored.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands.h"

namespace kpx::ctl {

// Why something is not done, and how the program then ends.
struct Fault {
  Status status;
  std::string text;
  std::string key = {};  // of the setting that it is about, when it is about one
};

// A setting by its outer key ("PageSize", "address", "paper/NAME", "media/NAME") and the value that
// it is to have; an empty value is the printer's default, or removes a size or media type.
struct Assignment {
  std::string key, value;
};

// The fault of a new queue's name, of a printer's, of an address.
[[nodiscard]] std::optional<Fault> FaultOfName(const std::string &name);
[[nodiscard]] std::optional<Fault> FaultOfPrinter(const std::string &printer);
[[nodiscard]] std::optional<Fault> FaultOfAddress(const std::string &address);

// Changes the queue of G_Queues_hash, or leaves it as it is: nothing, or the first fault. Two
// choices that the printer cannot combine are one, unless `resolve` has one of them set back, as
// the conflict box's button does. The order of the assignments does not matter.
[[nodiscard]] std::optional<Fault> ChangeQueue(const std::string &name,
                                               std::vector<Assignment> assignments, bool resolve);

}  // namespace kpx::ctl
