// kpxctl add, set, clone, rename, delete: changing queues.
#pragma once

#include <vector>

#include "commands.h"

namespace kpx::ctl {

std::vector<Command> ChangeCommands();

}  // namespace kpx::ctl
