// The lettering of the pictures: letters made of strokes, so that no font of the machine that
// builds them takes part in how they look.

#pragma once

#include <string>
#include <vector>

namespace kpx::pixmaps {

// A glyph on a grid: capitals stand on y = 6 and reach up to y = 0, small letters up to 2, tails
// down to 8.
struct Glyph {
  int width = 0;                     // the largest x
  std::vector<std::string> strokes;  // each "xyxyxy...", one digit a coordinate
};

// The glyph of a character, null when there is none.
const Glyph *GlyphOf(char character);

// Grid units between the left edges of two neighbours, beyond the width of the first.
inline constexpr int kGlyphGap = 2;

// Width of a text in grid units; characters without a glyph count as nothing.
[[nodiscard]] int TextWidth(const std::string &text);

}  // namespace kpx::pixmaps
