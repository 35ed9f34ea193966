#include "unicodecharacters.h"

#include <glib.h>
#include <hb.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "decimal.h"
#include "latinencoding.h"

namespace kpx::filter {

namespace {

constexpr char32_t kCodes = 0x110000;
constexpr char32_t kSoftHyphen = 0xAD;
constexpr int kUnits = 1000;        // that a font size has
constexpr int kUsualAdvance = 600;  // where no font of this host tells
constexpr size_t kMostShaped = 8192, kMostNamed = 5;

// Scripts whose letters stand side by side as they are.
constexpr hb_script_t kPlainScripts[] = {
    HB_SCRIPT_COMMON,   HB_SCRIPT_INHERITED, HB_SCRIPT_UNKNOWN,   HB_SCRIPT_LATIN,
    HB_SCRIPT_GREEK,    HB_SCRIPT_CYRILLIC,  HB_SCRIPT_ARMENIAN,  HB_SCRIPT_GEORGIAN,
    HB_SCRIPT_HAN,      HB_SCRIPT_HIRAGANA,  HB_SCRIPT_KATAKANA,  HB_SCRIPT_HANGUL,
    HB_SCRIPT_BOPOMOFO, HB_SCRIPT_HEBREW,    HB_SCRIPT_ETHIOPIC,  HB_SCRIPT_CHEROKEE,
    HB_SCRIPT_YI,       HB_SCRIPT_BRAILLE,   HB_SCRIPT_RUNIC,     HB_SCRIPT_CANADIAN_SYLLABICS,
    HB_SCRIPT_COPTIC,   HB_SCRIPT_OGHAM,     HB_SCRIPT_GLAGOLITIC};

bool IsPlainScript(char32_t character) {
  const hb_script_t script = hb_unicode_script(hb_unicode_funcs_get_default(), character);
  return std::find(std::begin(kPlainScripts), std::end(kPlainScripts), script) !=
         std::end(kPlainScripts);
}

bool IsBlank(char32_t character) {
  return g_unichar_isspace(character) && !g_unichar_iszerowidth(character);
}

// Marks that choose a form of the letter before them or join others: nothing to be seen.
bool IsSelector(char32_t character) {
  return character == 0x34F || (character >= 0x180B && character <= 0x180F) ||
         (character >= 0xFE00 && character <= 0xFE0F) ||
         (character >= 0xE0100 && character <= 0xE01EF);
}

FontLook LookFor(const TextLayout &layout) {
  FontLook look = LookOf(layout.font);
  if (layout.has_own_encoding) look.family.clear();
  if (layout.is_monospaced) look.generic = "monospace";
  return look;
}

}  // namespace

Characters::Characters(const TextLayout &layout)
    : layout_(layout), fonts_(LookFor(layout)), embedded_(&fonts_), blocks_(kCodes / kBlock) {}

CharacterInfo &Characters::Entry(char32_t character) {
  std::unique_ptr<Block> &block = blocks_[std::min<size_t>(character, kCodes - 1) / kBlock];
  if (block == nullptr) block = std::make_unique<Block>();
  return (*block)[character % kBlock];
}

CharacterInfo Characters::FindOwn(char32_t character, uint8_t byte) {
  CharacterInfo info;
  info.kind = CharacterKind::kOwn;
  info.code = byte;
  info.width = 1;
  if (!layout_.is_monospaced) {
    const int advance = fonts_.AdvanceOf(character).value_or(kUsualAdvance);
    info.width = static_cast<float>(advance * layout_.width_size / kUnits / layout_.unit);
  }
  return info;
}

CharacterInfo Characters::FindEmbedded(char32_t character, CharacterInfo info) {
  const int cells = layout_.is_monospaced ? std::max<int>(info.cells, 1) : 0;
  const std::optional<size_t> face = fonts_.FaceFor({&character, 1});
  info.kind = CharacterKind::kEmbedded;
  EmbeddedGlyph place;
  if (face) {
    const uint32_t glyph = fonts_.GlyphOf(*face, character);
    place = embedded_.Embed(*face, glyph, cells, character);
    if (cells == 0) {
      info.width = static_cast<float>(fonts_.ShapeOf(*face, glyph).advance * layout_.width_size /
                                      kUnits / layout_.unit);
    }
  } else {
    boxes_.insert(character);
    // One more than are named tells that there are others.
    if (boxes_.size() > kMostNamed + 1) boxes_.erase(std::prev(boxes_.end()));
    info.is_box = true;
    place = embedded_.EmbedBox(character, std::max(cells, 1));
    if (cells == 0) info.width = static_cast<float>(0.6 * layout_.width_size / layout_.unit);
  }
  info.font = static_cast<uint16_t>(place.font);
  info.code = place.code;
  return info;
}

CharacterInfo Characters::Find(char32_t character) {
  CharacterInfo info;
  info.kind = CharacterKind::kDropped;
  info.cells = 0;
  if (character < 0x20 || (character >= 0x7F && character < 0xA0) || character == kSoftHyphen ||
      character >= kCodes) {
    return info;
  }
  const std::optional<uint8_t> byte = LatinByte(character);
  if (byte && (!layout_.has_own_encoding || character < 0x7F)) return FindOwn(character, *byte);
  if (g_unichar_ismark(character) && g_unichar_iszerowidth(character)) {
    if (fonts_.FaceFor({&character, 1})) {
      info.kind = CharacterKind::kMark;
    } else if (!IsSelector(character)) {
      info.cells = 1;
      info.width = 1;
      info = FindEmbedded(character, info);
    }
    return info;
  }
  if (g_unichar_iszerowidth(character) && IsPlainScript(character)) return info;
  info.cells = g_unichar_iswide(character) ? 2 : g_unichar_iszerowidth(character) ? 0 : 1;
  info.width = info.cells;
  if (IsBlank(character)) {
    info.kind = CharacterKind::kBlank;
    if (!layout_.is_monospaced) info.width = static_cast<float>(layout_.size * info.cells / 2);
    return info;
  }
  if (IsPlainScript(character) || !fonts_.FaceFor({&character, 1})) {
    return FindEmbedded(character, info);
  }
  info.kind = CharacterKind::kShaped;
  return info;
}

const ShapedText &Characters::Shape(std::u32string_view text, bool is_from_right) {
  std::u32string key(text);
  key += is_from_right ? U'R' : U'L';
  const auto found = shaped_.find(key);
  if (found != shaped_.end()) return found->second;
  if (shaped_.size() >= kMostShaped) shaped_.clear();
  return shaped_.emplace(std::move(key), ShapeAnew(text, is_from_right)).first->second;
}

ShapedText Characters::ShapeAnew(std::u32string_view text, bool is_from_right) {
  std::optional<size_t> face = fonts_.FaceFor(text);
  if (!face) face = fonts_.FaceFor(text.substr(0, 1));
  ShapedText result;
  if (!face) return result;
  const double unit = layout_.width_size / kUnits, height_unit = layout_.size / kUnits;
  const std::vector<ShapedGlyph> glyphs = fonts_.Shaped(*face, text, is_from_right);
  std::vector<EmbeddedGlyph> places;
  for (const ShapedGlyph &glyph : glyphs)
    places.push_back(embedded_.Embed(*face, glyph.glyph, 0, 0));
  for (size_t i = 0; i < glyphs.size();) {
    ShapedText::Piece piece{result.width + glyphs[i].x_offset * unit,
                            glyphs[i].y_offset * height_unit, places[i].font, "("};
    std::string moves;
    for (; i < glyphs.size() && places[i].font == piece.font; ++i) {
      AppendEscaped(places[i].code, &piece.glyphs);
      const ShapedGlyph next = i + 1 < glyphs.size() ? glyphs[i + 1] : ShapedGlyph{};
      moves += DecimalText((glyphs[i].advance + next.x_offset - glyphs[i].x_offset) * unit) + " " +
               DecimalText((next.y_offset - glyphs[i].y_offset) * height_unit) + " ";
      result.width += glyphs[i].advance * unit;
    }
    piece.glyphs += ") [" + moves + "]";
    result.pieces.push_back(std::move(piece));
  }
  return result;
}

std::string Characters::Warning() const {
  if (boxes_set_ == 0) return {};
  std::string names;
  size_t named = 0;
  for (const char32_t character : boxes_) {
    if (named++ == kMostNamed) break;
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(character));
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  if (boxes_.size() > kMostNamed) names += ", ...";
  return (boxes_set_ == 1 ? "1 character that no font of this host has is printed"
                          : std::to_string(boxes_set_) +
                                " characters that no font of this host has are printed") +
         " as a box with its code: " + names + "; install a font that has it";
}

}  // namespace kpx::filter
