// Glyphs that a job brings to the printer: fonts of its own, made as characters need them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "fontfaces.h"

namespace kpx::filter {

// Where a glyph stands: in the how-manieth font of the job, under which code.
struct EmbeddedGlyph {
  size_t font = 0;
  uint8_t code = 0;
};

// Gathers glyphs in PostScript fonts (Type 3). They are defined in global memory, so
// that they outlive the page on which they are first used.
class EmbeddedFonts {
 public:
  // `fonts` must outlive this.
  explicit EmbeddedFonts(FontFaces *fonts) : fonts_(fonts) {}

  // The glyph of a face. With `cells` it is put in the middle of that many cells of a typewriter
  // font (600 thousandths of the size each), narrower where it is too wide; without, it keeps its
  // own advance. `character` is what it stands for, 0 for a part of a shaped word.
  EmbeddedGlyph Embed(size_t face, uint32_t glyph, int cells, char32_t character);

  // A box with the character's code in it, for one that no font has; to be called once for each.
  EmbeddedGlyph EmbedBox(char32_t character, int cells);

  // The PostScript that defines what was embedded since the last call. It has to stand before the
  // marks that use it.
  std::string TakeDefinitions();
  [[nodiscard]] bool HasDefinitions() const { return !definitions_.empty(); }

 private:
  EmbeddedGlyph Add(const std::string &name, const std::string &procedure);

  FontFaces *fonts_;
  std::map<std::tuple<size_t, uint32_t, int>, EmbeddedGlyph> glyphs_;
  size_t count_ = 0;  // of glyphs
  std::string definitions_;
};

// The PostScript that the definitions and marks rely on: KA, the job's fonts in its own size. It
// needs Z, the matrix of the job's font.
std::string EmbeddedFontsCode();

}  // namespace kpx::filter
