// kpxctl preset: the caller's presets of job settings, as the print tool's properties have them.
#pragma once

#include <vector>

#include "commands.h"

namespace kpx::ctl {

std::vector<Command> PresetCommands();

}  // namespace kpx::ctl
