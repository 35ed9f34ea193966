// The conversion of a PPD file into a PAF printer description.
#pragma once

#include <string>

namespace kpx::filter {

// Reads `ppd_path` and replaces `paf_path` by its PAF form. Returns an empty text, or what failed,
// naming file, line and reason; then `paf_path` is as it was.
[[nodiscard]] std::string ConvertPpd(const std::string &ppd_path, const std::string &paf_path);

}  // namespace kpx::filter
