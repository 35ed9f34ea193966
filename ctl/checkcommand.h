// kpxctl check: where the parts of the host's queues disagree.
#pragma once

#include "commands.h"

namespace kpx::ctl {

Command CheckCommand();

}  // namespace kpx::ctl
