// The file that a command reads.
#pragma once

#include <optional>
#include <string>

namespace kpx::ctl {

// As a file name: standard input, or standard output.
inline constexpr char kStandardInput[] = "-";

// The content of the file, or of standard input; nothing, with errno, when it cannot be read.
[[nodiscard]] std::optional<std::string> TextOfFile(const std::string &path);

}  // namespace kpx::ctl
