// One setting of the queue that OpenProperties has made current.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "queueedit.h"

namespace kpx::ctl {

inline constexpr std::string_view kPaperPrefix = "paper/";
inline constexpr std::string_view kMediaPrefix = "media/";

// Whether the key is that of one of the queue's own sizes or media types.
[[nodiscard]] bool IsCustomKey(std::string_view key);

// Gives the work copy the value, as Assignment has both; nothing, or why it cannot have it.
[[nodiscard]] std::optional<Fault> SetSetting(const std::string &key, const std::string &value);

}  // namespace kpx::ctl
