// Font map: any bytes are read; every entry is found again by font and style.
#include "fontmap.h"
#include "fuzz_support.h"
#include "globals.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  LineReader lines(InputText(data, size));
  G_Fonts_hash = ReadFontmap(lines);
  for (const auto [font, styles] : Pairs<CHash>(G_Fonts_hash.get())) {
    Require(styles != nullptr && !HashIsEmpty(styles));
    for (const auto [style, afm_name] : Pairs<CString>(styles)) {
      Require(GetAfmFontName(font, style) == fGet_CString_Value_Function(afm_name));
      std::string found_font;
      std::string found_style;
      Require(GetGuiFont(afm_name->value.Get(), &found_font, &found_style) == 1);
    }
  }
  G_Fonts_hash.reset();
  return 0;
}
