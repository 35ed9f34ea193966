// The names by which PostScript fonts know characters.
#pragma once

#include <string>

namespace kpx::filter {

// The glyph name of a Unicode character: that of the Adobe Glyph List for the characters that the
// standard Latin fonts have, "uniXXXX" or "uXXXXX" for others. Empty for control characters.
std::string GlyphName(char32_t character);

}  // namespace kpx::filter
