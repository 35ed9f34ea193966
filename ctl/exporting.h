// The host's queues as a file that declares them.
#pragma once

#include "jsonoutput.h"

namespace kpx::ctl {

// The queues of G_Queues_hash, with what their printers and types know. A setting that they do not
// know is told and left out: no file could be read that has it.
Json FormOfHost();

// The users' option files of these queues, as the member "users" has them; nothing, told, when one
// cannot be read.
[[nodiscard]] std::optional<Json> FormOfUsers();

}  // namespace kpx::ctl
