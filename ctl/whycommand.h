// kpxctl why: what keeps a queue or a job.
#pragma once

#include "commands.h"

namespace kpx::ctl {

Command WhyCommand();

}  // namespace kpx::ctl
