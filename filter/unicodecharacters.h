// What a text job does with each character.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embeddedfonts.h"
#include "fontfaces.h"
#include "textlayout.h"

namespace kpx::filter {

// How a character comes onto the page.
enum class CharacterKind : uint8_t {
  kUnknown,
  kDropped,   // has no width and no mark: a control, a soft hyphen
  kBlank,     // has a width alone
  kOwn,       // of the printer's font
  kEmbedded,  // a glyph of a host's font by itself
  kShaped,    // of a script whose letters depend on their neighbours
  kMark,      // stands on the character before it
};

struct CharacterInfo {
  CharacterKind kind = CharacterKind::kUnknown;
  uint8_t cells = 1;    // of a typewriter font that it takes: 0, 1 or 2
  uint8_t code = 0;     // of kOwn and kEmbedded
  bool is_box = false;  // no font has it
  uint16_t font = 0;    // of kEmbedded: which of the job's fonts
  float width = 0;      // units of the layout
};

// A word that is shaped as a whole.
struct ShapedText {
  // Glyphs of one font that follow each other.
  struct Piece {
    double x = 0, y = 0;  // where the first one's origin stands, points from that of the word
    size_t font = 0;      // of the job's fonts
    std::string glyphs;   // their codes and ways to each other, for xyshow
  };
  std::vector<Piece> pieces;
  double width = 0;  // points
};

// The characters of one job. What they look like is found once and kept.
class Characters {
 public:
  explicit Characters(const TextLayout &layout);

  const CharacterInfo &InfoOf(char32_t character) {
    CharacterInfo &info = Entry(character);
    if (info.kind == CharacterKind::kUnknown) info = Find(character);
    return info;
  }

  // `text` set as its script asks for it, from the font that has most of it. Lent until the next
  // call.
  const ShapedText &Shape(std::u32string_view text, bool is_from_right);

  // The PostScript that has to stand before the marks of what was asked for since the last call.
  std::string TakeDefinitions() { return embedded_.TakeDefinitions(); }
  [[nodiscard]] bool HasDefinitions() const { return embedded_.HasDefinitions(); }

  // A warning about the characters that print as boxes because no font has them; empty without.
  [[nodiscard]] std::string Warning() const;
  void CountBox() { ++boxes_set_; }

 private:
  static constexpr size_t kBlock = 256;
  using Block = std::array<CharacterInfo, kBlock>;

  CharacterInfo &Entry(char32_t character);
  CharacterInfo Find(char32_t character);
  CharacterInfo FindEmbedded(char32_t character, CharacterInfo info);
  CharacterInfo FindOwn(char32_t character, uint8_t byte);
  ShapedText ShapeAnew(std::u32string_view text, bool is_from_right);

  const TextLayout &layout_;
  FontFaces fonts_;  // like the printer's font; the first one has its widths
  EmbeddedFonts embedded_;
  std::vector<std::unique_ptr<Block>> blocks_;
  std::unordered_map<std::u32string, ShapedText> shaped_;
  std::set<char32_t> boxes_;  // the lowest ones
  size_t boxes_set_ = 0;
};

}  // namespace kpx::filter
