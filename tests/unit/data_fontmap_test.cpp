// The shipped font map names the 35 fonts that every PostScript printer has.
#include <gtest/gtest.h>

#include "data_files.h"
#include "fontmap.h"

namespace {

const std::filesystem::path kFontmap = KPX_TEST_DATA "/../data/afm/fontmap";

std::vector<std::string> AfmNames() {
  const std::string text = FileText(kFontmap);
  LineReader lines(text);
  const Owned<CHash> fonts = ReadFontmap(lines);
  std::vector<std::string> names;
  for (const auto [font, styles] : Pairs<CHash>(fonts.get())) {
    for (const auto [style, afm_name] : Pairs<CString>(styles)) {
      names.push_back(fGet_CString_Value_Function(afm_name));
    }
  }
  return names;
}

TEST(ShippedFontmap, GivesAnEntryForEveryLine) {
  size_t lines = 0;
  for (const std::string &line : FileLines(kFontmap)) {
    lines += !line.empty() && !line.starts_with("#");
  }
  EXPECT_EQ(lines, 35u);
  EXPECT_EQ(AfmNames().size(), 35u);
}

TEST(ShippedFontmap, HoldsTheDefaultFont) {
  const std::vector<std::string> names = AfmNames();
  EXPECT_NE(std::find(names.begin(), names.end(), "Courier"), names.end());
}

TEST(ShippedFontmap, NamesOnlyFontsThatAnInterpreterKnows) {
  // An unknown name would silently get another font; the resource status tells.
  std::string program;
  for (const std::string &name : AfmNames()) {
    program +=
        "/" + name + " /Font resourcestatus {pop pop} {(" + name + " is unknown) =} ifelse\n";
  }
  EXPECT_EQ(InterpreterOutput(program), "");
  EXPECT_NE(InterpreterOutput("/NoSuchFont /Font resourcestatus {pop pop} {(unknown) =} ifelse"),
            "");
}

TEST(ShippedFontmap, NamesOnlyFontsThatThePrintersHave) {
  const std::string ppd = FileText(std::filesystem::path(KPX_PPD_DIR) / "vek41201.ppd");
  for (const std::string &name : AfmNames()) {
    EXPECT_NE(ppd.find("*Font " + name + ":"), std::string::npos) << name;
  }
}

}  // namespace
