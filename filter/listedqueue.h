// What the queue list says about a queue whose option file holds nothing.
#pragma once

#include <string>

namespace kpx::filter {

// Whether the queue list beside `queue_file` ("<directory>/<queue>.def") has the queue and no
// setting for it, so that an empty option file is as it should be. False as well when no list names
// the queue or can be read: then nobody knows what was in the file.
[[nodiscard]] bool IsListedWithoutSettings(const std::string &queue_file);

}  // namespace kpx::filter
