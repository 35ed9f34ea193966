// kpxctl model: printers of other makers.
#pragma once

#include <vector>

#include "commands.h"

namespace kpx::ctl {

// The commands of the subject.
std::vector<Command> ModelCommands();

}  // namespace kpx::ctl
