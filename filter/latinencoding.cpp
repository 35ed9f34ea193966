#include "latinencoding.h"

#include <algorithm>
#include <iterator>

namespace kpx::filter {

namespace {

struct HighCharacter {
  char32_t character;
  uint8_t byte;
};

// Where Windows-1252 has them; ordered by character. The euro is not in every printer's fonts.
constexpr HighCharacter kHighCharacters[] = {
    {0x0152, 0x8C}, {0x0153, 0x9C}, {0x0160, 0x8A}, {0x0161, 0x9A}, {0x0178, 0x9F}, {0x017D, 0x8E},
    {0x017E, 0x9E}, {0x0192, 0x83}, {0x02C6, 0x88}, {0x02DC, 0x98}, {0x2010, 0x2D}, {0x2011, 0x2D},
    {0x2013, 0x96}, {0x2014, 0x97}, {0x2018, 0x91}, {0x2019, 0x92}, {0x201A, 0x82}, {0x201C, 0x93},
    {0x201D, 0x94}, {0x201E, 0x84}, {0x2020, 0x86}, {0x2021, 0x87}, {0x2022, 0x95}, {0x2026, 0x85},
    {0x2030, 0x89}, {0x2039, 0x8B}, {0x203A, 0x9B}, {0x2122, 0x99}};

}  // namespace

std::optional<uint8_t> LatinByte(char32_t character) {
  if ((character >= 0x20 && character < 0x7F) || (character >= 0xA0 && character <= 0xFF)) {
    return static_cast<uint8_t>(character);
  }
  const auto *const found = std::lower_bound(
      std::begin(kHighCharacters), std::end(kHighCharacters), character,
      [](const HighCharacter &entry, char32_t wanted) { return entry.character < wanted; });
  if (found == std::end(kHighCharacters) || found->character != character) return std::nullopt;
  return found->byte;
}

std::string LatinEncodingCode() {
  return "/V ISOLatin1Encoding 256 array copy def\n"
         "V 39 /quotesingle put V 45 /hyphen put V 96 /grave put\n"
         "V 128 [/.notdef/.notdef/quotesinglbase/florin/quotedblbase/ellipsis/dagger/daggerdbl\n"
         "/circumflex/perthousand/Scaron/guilsinglleft/OE/.notdef/Zcaron/.notdef/.notdef\n"
         "/quoteleft/quoteright/quotedblleft/quotedblright/bullet/endash/emdash/tilde/trademark\n"
         "/scaron/guilsinglright/oe/.notdef/zcaron/Ydieresis] putinterval\n";
}

}  // namespace kpx::filter
