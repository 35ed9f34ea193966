// Writing the PPD file that the spooler gets for a queue.
#pragma once

#include <string>

#include "arguments.h"

namespace kpx::filter {

// Writes the queue's PPD file, as model, option file and type of the queue make it, with the texts
// of the model's other languages that are installed beside it. Returns an empty text, or what
// failed; then the file is as it was.
[[nodiscard]] std::string WriteQueuePpd(const FilterArguments &arguments);

}  // namespace kpx::filter
