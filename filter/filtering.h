// The filtering of one job file.
#pragma once

#include <string>

#include "arguments.h"

// Turns standard input into printer data on standard output. Returns an empty text, or what failed.
std::string FilterJob(const FilterArguments &arguments);
