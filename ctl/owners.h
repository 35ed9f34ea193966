// Which queues which declared state owns: those that it had when it was applied last. Only these it
// removes when it has them no longer (D-ctl-1).
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

namespace kpx::ctl {

// By the state's name.
using Owners = std::map<std::string, std::set<std::string>>;

// What kOwnersFile says, or another file of that form; none where there is no file. Nothing, with a
// complaint, when it cannot be read.
[[nodiscard]] std::optional<Owners> ReadOwners(const std::string &path);

// Writes kOwnersFile, durably, unless it says so already; false, with a complaint, when it cannot
// be written.
[[nodiscard]] bool WriteOwners(const Owners &owners);

// The state, other than `state`, that owns the queue; empty when none does.
std::string OtherOwner(const Owners &owners, const std::string &state, const std::string &queue);

}  // namespace kpx::ctl
