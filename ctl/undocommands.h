// kpxctl undo, users: taking saves back, the users' option files.
#pragma once

#include <vector>

#include "commands.h"

namespace kpx::ctl {

std::vector<Command> UndoCommands();

}  // namespace kpx::ctl
