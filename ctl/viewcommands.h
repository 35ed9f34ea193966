// kpxctl list, show, options: looking at queues.
#pragma once

#include <vector>

#include "commands.h"

namespace kpx::ctl {

std::vector<Command> ViewCommands();

}  // namespace kpx::ctl
