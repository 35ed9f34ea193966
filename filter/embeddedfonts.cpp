#include "embeddedfonts.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "decimal.h"

namespace kpx::filter {

namespace {

constexpr int kCell = 600;              // thousandths of the font size
constexpr size_t kPrintable = 95;       // codes of ASCII
constexpr size_t kGlyphsPerFont = 223;  // no code is a control character

uint8_t CodeOf(size_t glyph) {
  return static_cast<uint8_t>(glyph < kPrintable ? 0x20 + glyph : 0x80 + glyph - kPrintable);
}

// The strokes of the digits 0 to F as on a seven-segment display: top, upper left, upper right,
// middle, lower left, lower right, bottom, from the lowest bit.
constexpr unsigned kDigits[] = {0x77, 0x24, 0x5D, 0x6D, 0x2E, 0x6B, 0x7B, 0x25,
                                0x7F, 0x6F, 0x3F, 0x7A, 0x53, 0x7C, 0x5B, 0x1B};

struct Stroke {
  int x1, y1, x2, y2;  // in widths and half heights of a digit
};
constexpr Stroke kStrokes[] = {{0, 2, 1, 2}, {0, 1, 0, 2}, {1, 1, 1, 2}, {0, 1, 1, 1},
                               {0, 0, 0, 1}, {1, 0, 1, 1}, {0, 0, 1, 0}};

std::string Numbers(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += std::to_string(value) + " ";
  return text;
}

// The name by which programs that read the document know the character; empty for none.
std::string NameOf(char32_t character) {
  if (character == 0) return {};
  char name[16];
  std::snprintf(name, sizeof name, character <= 0xFFFF ? "uni%04X" : "u%05X",
                static_cast<unsigned>(character));
  return name;
}

std::string DigitPath(unsigned digit, int x, int y, int width, int half_height) {
  std::string path;
  for (size_t i = 0; i < std::size(kStrokes); ++i) {
    if ((kDigits[digit] >> i & 1U) == 0) continue;
    const Stroke &stroke = kStrokes[i];
    path += Numbers({x + stroke.x1 * width, y + stroke.y1 * half_height}) + "m " +
            Numbers({x + stroke.x2 * width, y + stroke.y2 * half_height}) + "l\n";
  }
  return path;
}

// The frame and the digits of a box: two rows, of two digits, or three of a longer code.
std::string BoxPath(char32_t character, int width) {
  const int columns = character > 0xFFFF ? 3 : 2;
  const int left = 50, right = width - 50, bottom = -120, top = 720;
  std::string path = Numbers({left, bottom}) + "m " + Numbers({right, bottom}) + "l " +
                     Numbers({right, top}) + "l " + Numbers({left, top}) + "l h\n";
  const int room = (right - left) / columns;
  for (int i = 0; i < 2 * columns; ++i) {
    const unsigned digit = character >> (4 * (2 * columns - 1 - i)) & 0xFU;
    const int column = i % columns, row = i / columns;
    path += DigitPath(digit, left + column * room + room / 4, row == 0 ? 350 : -60, room / 2, 150);
  }
  return path;
}

}  // namespace

EmbeddedGlyph EmbeddedFonts::Add(const std::string &name, const std::string &procedure) {
  const EmbeddedGlyph place = {count_ / kGlyphsPerFont, CodeOf(count_ % kGlyphsPerFont)};
  if (count_ % kGlyphsPerFont == 0) definitions_ += std::to_string(place.font) + " KF\n";
  const std::string code = std::to_string(place.code);
  definitions_ += "true setglobal KA " + std::to_string(place.font) + " get dup /Encoding get " +
                  code + " /" + (name.empty() ? "g" + std::to_string(count_) : name) +
                  " put /G get " + code + " {" + procedure + "} put KG\n";
  ++count_;
  return place;
}

EmbeddedGlyph EmbeddedFonts::Embed(size_t face, uint32_t glyph, int cells, char32_t character) {
  const auto [entry, is_new] = glyphs_.try_emplace({face, glyph, cells});
  if (!is_new) return entry->second;
  const GlyphShape shape = fonts_->ShapeOf(face, glyph);
  const int room = cells == 0 ? shape.advance : cells * kCell;
  const double scale =
      cells > 0 && shape.advance > room ? static_cast<double>(room) / shape.advance : 1;
  const double shift = cells == 0 ? 0 : (room - scale * shape.advance) / 2;
  const auto across = [&](int x) { return static_cast<int>(scale * x + shift); };
  std::string code = Numbers({room, 0, across(shape.box[0]) - 1, shape.box[1],
                              across(shape.box[2]) + 1, shape.box[3]}) +
                     "d\n";
  if (!shape.path.empty()) {
    if (scale != 1 || shift != 0) {
      code += "[" + DecimalText(scale) + " 0 0 1 " + DecimalText(shift) + " 0]concat\n";
    }
    code += shape.path + "f";
  }
  entry->second = Add(NameOf(character), code);
  return entry->second;
}

EmbeddedGlyph EmbeddedFonts::EmbedBox(char32_t character, int cells) {
  const int width = (cells < 1 ? 1 : cells) * kCell;
  return Add("", Numbers({width, 0, 0, -150, width, 750}) + "d 30 setlinewidth\n" +
                     BoxPath(character, width) + "stroke");
}

std::string EmbeddedFonts::TakeDefinitions() { return std::exchange(definitions_, {}); }

std::string EmbeddedFontsCode() {
  return "/m /moveto load def /l /lineto load def /c /curveto load def /h /closepath load def\n"
         "/f /fill load def /d /setcachedevice load def\n"
         "true setglobal\n"
         "/KA 1024 array def\n"
         "/KC { exch /G get exch get exec } bind def\n"
         "false setglobal\n"
         "/KF { true setglobal KA exch 8 dict begin /FontType 3 def\n"
         "/FontMatrix [.001 0 0 .001 0 0] def /FontBBox [0 0 0 0] def\n"
         "/Encoding 256 array def 0 1 255 { Encoding exch /.notdef put } for\n"
         "/G 256 array def /BuildChar /KC load def currentdict end\n"
         "/KPXGlyphs exch definefont Z makefont put false setglobal } bind def\n"
         "/KG { false setglobal } bind def\n";
}

}  // namespace kpx::filter
