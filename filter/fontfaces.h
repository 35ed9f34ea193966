// Fonts of this host, for the characters that a printer's own fonts may lack.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kpx::filter {

// What a font is to look like.
struct FontLook {
  std::string family;   // as Fontconfig knows it, may be empty
  std::string generic;  // "monospace", "serif" or "sans-serif", for what the family lacks
  bool is_bold = false, is_slanted = false;
};

// The look of the printer's font with that PostScript name.
FontLook LookOf(std::string_view postscript_name);

// A glyph that stands at a place of a shaped text, in thousandths of the font size.
struct ShapedGlyph {
  uint32_t glyph = 0;              // its number in the face
  int advance = 0;                 // to the next glyph's origin
  int x_offset = 0, y_offset = 0;  // of the glyph from its origin
};

// The shape of a glyph as PostScript, in thousandths of the font size.
struct GlyphShape {
  std::string path;  // m (moveto), l (lineto), c (curveto) and h (closepath); empty for a blank
  std::array<int, 4> box{};  // left, bottom, right, top
  int advance = 0;
};

struct FaceList;

// The fonts of one look, those first that look like it most. Opened when they are first needed.
class FontFaces {
 public:
  explicit FontFaces(FontLook look);
  ~FontFaces();
  FontFaces(const FontFaces &) = delete;
  FontFaces &operator=(const FontFaces &) = delete;

  // The first face that has all characters of `text`; nothing when none has.
  [[nodiscard]] std::optional<size_t> FaceFor(std::u32string_view text);

  // The number of a character's glyph in a face that FaceFor has named; 0 when it lacks it.
  uint32_t GlyphOf(size_t face, char32_t character);

  GlyphShape ShapeOf(size_t face, uint32_t glyph);

  // The glyphs of `text` as its script asks for them, from left to right.
  std::vector<ShapedGlyph> Shaped(size_t face, std::u32string_view text, bool is_from_right);

  // How far the first face that has a character moves for it, in thousandths of its size; nothing
  // when none has it.
  [[nodiscard]] std::optional<int> AdvanceOf(char32_t character);

 private:
  std::unique_ptr<FaceList> faces_;
};

}  // namespace kpx::filter
