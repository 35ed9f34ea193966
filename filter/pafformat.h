// What a line of a PAF printer description can carry. The reader is ReadPaf.
#pragma once

#include <string>
#include <string_view>

namespace kpx::filter {

// `text` (UTF-8 on one line) as a value line: one blank is put before a text that would be a
// keyword or comment, and what goes past the reader's line is cut off between two characters.
// `substitute` (itself a valid value) takes the place of an empty text.
std::string PafValue(std::string_view text, std::string_view substitute);

// The value of a "##Name:" or "##PPD:" line: up to the first ":" or line feed, cut to what the line
// has room for. May be empty.
std::string PafHeaderValue(std::string_view text, std::string_view keyword);

}  // namespace kpx::filter
