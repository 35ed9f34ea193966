// Which queues a call means: names, patterns and conditions.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "words.h"

namespace kpx::ctl {

// The names, ascending, of the queues of G_Queues_hash that one of `words` (names, or patterns of
// glob(7); none: all) and every --where condition of the call (KEY=PATTERN) picks. Nothing, told
// and with the status to end with, when a condition is malformed or a name is not there. When
// nothing fits, that is told and the result is empty.
[[nodiscard]] std::optional<std::vector<std::string>> ChosenQueues(
    const Call &call, const std::vector<std::string> &words, Status *status);

}  // namespace kpx::ctl
