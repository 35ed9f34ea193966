// The filtering of one job file.
#pragma once

#include <string>

#include "arguments.h"

namespace kpx::filter {

// Turns standard input into printer data on standard output. Warnings go to standard error. Returns
// an empty text, or what failed.
[[nodiscard]] std::string FilterJob(const FilterArguments &arguments);

}  // namespace kpx::filter
