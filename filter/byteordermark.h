// The mark that Windows programs put in front of UTF-8.
#pragma once

#include <string_view>

namespace kpx::filter {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

inline std::string_view WithoutByteOrderMark(std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  return text;
}

}  // namespace kpx::filter
