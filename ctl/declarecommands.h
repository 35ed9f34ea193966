// kpxctl export, diff, apply, import: queues as files declare them.
#pragma once

#include <vector>

#include "commands.h"

namespace kpx::ctl {

std::vector<Command> DeclareCommands();

}  // namespace kpx::ctl
