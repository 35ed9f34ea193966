#include "glyphnames.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace kpx::filter {

namespace {

// Names of the Adobe Glyph List, in the order of the characters.
// In lines rather than columns.
// clang-format off
constexpr std::string_view kAscii[] = {
    "space", "exclam", "quotedbl", "numbersign", "dollar", "percent", "ampersand", "quotesingle",
    "parenleft", "parenright", "asterisk", "plus", "comma", "hyphen", "period", "slash", "zero",
    "one", "two", "three", "four", "five", "six", "seven", "eight", "nine", "colon", "semicolon",
    "less", "equal", "greater", "question", "at", "A", "B", "C", "D", "E", "F", "G", "H", "I", "J",
    "K", "L", "M", "N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z", "bracketleft",
    "backslash", "bracketright", "asciicircum", "underscore", "grave", "a", "b", "c", "d", "e",
    "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p", "q", "r", "s", "t", "u", "v", "w", "x",
    "y", "z", "braceleft", "bar", "braceright", "asciitilde"};

constexpr std::string_view kLatin1[] = {
    "space", "exclamdown", "cent", "sterling", "currency", "yen", "brokenbar", "section",
    "dieresis", "copyright", "ordfeminine", "guillemotleft", "logicalnot", "hyphen", "registered",
    "macron", "degree", "plusminus", "twosuperior", "threesuperior", "acute", "mu", "paragraph",
    "periodcentered", "cedilla", "onesuperior", "ordmasculine", "guillemotright", "onequarter",
    "onehalf", "threequarters", "questiondown", "Agrave", "Aacute", "Acircumflex", "Atilde",
    "Adieresis", "Aring", "AE", "Ccedilla", "Egrave", "Eacute", "Ecircumflex", "Edieresis",
    "Igrave", "Iacute", "Icircumflex", "Idieresis", "Eth", "Ntilde", "Ograve", "Oacute",
    "Ocircumflex", "Otilde", "Odieresis", "multiply", "Oslash", "Ugrave", "Uacute", "Ucircumflex",
    "Udieresis", "Yacute", "Thorn", "germandbls", "agrave", "aacute", "acircumflex", "atilde",
    "adieresis", "aring", "ae", "ccedilla", "egrave", "eacute", "ecircumflex", "edieresis",
    "igrave", "iacute", "icircumflex", "idieresis", "eth", "ntilde", "ograve", "oacute",
    "ocircumflex", "otilde", "odieresis", "divide", "oslash", "ugrave", "uacute", "ucircumflex",
    "udieresis", "yacute", "thorn", "ydieresis"};

constexpr std::string_view kLatinExtendedA[] = {
    "Amacron", "amacron", "Abreve", "abreve", "Aogonek", "aogonek", "Cacute", "cacute",
    "Ccircumflex", "ccircumflex", "Cdotaccent", "cdotaccent", "Ccaron", "ccaron", "Dcaron",
    "dcaron", "Dcroat", "dcroat", "Emacron", "emacron", "Ebreve", "ebreve", "Edotaccent",
    "edotaccent", "Eogonek", "eogonek", "Ecaron", "ecaron", "Gcircumflex", "gcircumflex", "Gbreve",
    "gbreve", "Gdotaccent", "gdotaccent", "Gcommaaccent", "gcommaaccent", "Hcircumflex",
    "hcircumflex", "Hbar", "hbar", "Itilde", "itilde", "Imacron", "imacron", "Ibreve", "ibreve",
    "Iogonek", "iogonek", "Idotaccent", "dotlessi", "IJ", "ij", "Jcircumflex", "jcircumflex",
    "Kcommaaccent", "kcommaaccent", "kgreenlandic", "Lacute", "lacute", "Lcommaaccent",
    "lcommaaccent", "Lcaron", "lcaron", "Ldot", "ldot", "Lslash", "lslash", "Nacute", "nacute",
    "Ncommaaccent", "ncommaaccent", "Ncaron", "ncaron", "napostrophe", "Eng", "eng", "Omacron",
    "omacron", "Obreve", "obreve", "Ohungarumlaut", "ohungarumlaut", "OE", "oe", "Racute",
    "racute", "Rcommaaccent", "rcommaaccent", "Rcaron", "rcaron", "Sacute", "sacute",
    "Scircumflex", "scircumflex", "Scedilla", "scedilla", "Scaron", "scaron", "Tcommaaccent",
    "tcommaaccent", "Tcaron", "tcaron", "Tbar", "tbar", "Utilde", "utilde", "Umacron", "umacron",
    "Ubreve", "ubreve", "Uring", "uring", "Uhungarumlaut", "uhungarumlaut", "Uogonek", "uogonek",
    "Wcircumflex", "wcircumflex", "Ycircumflex", "ycircumflex", "Ydieresis", "Zacute", "zacute",
    "Zdotaccent", "zdotaccent", "Zcaron", "zcaron", "longs"};

struct NamedCharacter {
  char32_t character;
  std::string_view name;
};

// Ordered by character.
constexpr NamedCharacter kOthers[] = {
    {0x0192, "florin"}, {0x0218, "Scommaaccent"}, {0x0219, "scommaaccent"},
    {0x021A, "Tcommaaccent"}, {0x021B, "tcommaaccent"}, {0x02C6, "circumflex"}, {0x02C7, "caron"},
    {0x02D8, "breve"}, {0x02D9, "dotaccent"}, {0x02DA, "ring"}, {0x02DB, "ogonek"},
    {0x02DC, "tilde"}, {0x02DD, "hungarumlaut"}, {0x2010, "hyphen"}, {0x2011, "hyphen"},
    {0x2012, "endash"}, {0x2013, "endash"}, {0x2014, "emdash"}, {0x2018, "quoteleft"},
    {0x2019, "quoteright"}, {0x201A, "quotesinglbase"}, {0x201C, "quotedblleft"},
    {0x201D, "quotedblright"}, {0x201E, "quotedblbase"}, {0x2020, "dagger"}, {0x2021, "daggerdbl"},
    {0x2022, "bullet"}, {0x2026, "ellipsis"}, {0x2030, "perthousand"}, {0x2039, "guilsinglleft"},
    {0x203A, "guilsinglright"}, {0x2044, "fraction"}, {0x20AC, "Euro"}, {0x2122, "trademark"},
    {0x2202, "partialdiff"}, {0x2206, "Delta"}, {0x2211, "summation"}, {0x2212, "minus"},
    {0x221A, "radical"}, {0x2260, "notequal"}, {0x2264, "lessequal"}, {0x2265, "greaterequal"},
    {0x25CA, "lozenge"}, {0xFB01, "fi"}, {0xFB02, "fl"}};
// clang-format on

template <size_t kCount>
const std::string_view *InTable(const std::string_view (&table)[kCount], char32_t first,
                                char32_t character) {
  return character >= first && character - first < kCount ? &table[character - first] : nullptr;
}

}  // namespace

std::string GlyphName(char32_t character) {
  if (character < 0x20 || (character >= 0x7F && character < 0xA0)) return {};
  for (const std::string_view *name :
       {InTable(kAscii, 0x20, character), InTable(kLatin1, 0xA0, character),
        InTable(kLatinExtendedA, 0x100, character)}) {
    if (name != nullptr) return std::string(*name);
  }
  const auto *other = std::lower_bound(
      std::begin(kOthers), std::end(kOthers), character,
      [](const NamedCharacter &entry, char32_t wanted) { return entry.character < wanted; });
  if (other != std::end(kOthers) && other->character == character) return std::string(other->name);
  char name[16];
  std::snprintf(name, sizeof name, character <= 0xFFFF ? "uni%04X" : "u%05X",
                static_cast<unsigned>(character));
  return name;
}

}  // namespace kpx::filter
