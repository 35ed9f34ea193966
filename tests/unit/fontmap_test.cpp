// The font map: its lines, its table, and both look-ups.
#include "fontmap.h"

#include <gtest/gtest.h>

#include <random>

#include "childprocess.h"
#include "coresupport.h"
#include "debug.h"

namespace {

using Strings = std::vector<std::string>;

class FontMap : public testing::Test {
 protected:
  void TearDown() override { G_Fonts_hash.reset(); }
  // Makes `text` the program's table.
  static void Read(const std::string &text) {
    LineReader lines(text);
    G_Fonts_hash = ReadFontmap(lines);
  }
  static std::string Afm(const char *font, const char *style) {
    const char *name = GetAfmFontName(font, style);
    return name == nullptr ? "(none)" : name;
  }
};

}  // namespace

TEST_F(FontMap, ALineGivesAFontAStyleAndAnAfmName) {
  Read("GUI_Font:Courier|GUI_Style:Bold|AFM_FontName:Courier-Bold\n");
  EXPECT_EQ(Afm("Courier", "Bold"), "Courier-Bold");
}

TEST_F(FontMap, FieldsMayComeInAnyOrderWithBlanksAndEmptyFieldsBetween) {
  Read("\t ||AFM_FontName:Courier-Bold  || \t GUI_Style:Bold\t|GUI_Font:Courier|\n");
  EXPECT_EQ(Afm("Courier", "Bold"), "Courier-Bold");
}

TEST_F(FontMap, BlanksAfterTheColonBelongToTheValue) {
  Read("GUI_Font: Courier|GUI_Style:Bold|AFM_FontName:Courier-Bold\n");
  EXPECT_EQ(Afm(" Courier", "Bold"), "Courier-Bold");
  EXPECT_EQ(Afm("Courier", "Bold"), "(none)");
}

TEST_F(FontMap, TheValueIsEverythingAfterTheFirstColon) {
  Read("GUI_Font:A:B|GUI_Style::|AFM_FontName:x:y\n");
  EXPECT_EQ(Afm("A:B", ":"), "x:y");
}

TEST_F(FontMap, ACommentBeginsInTheFirstColumn) {
  Read("#GUI_Font:A|GUI_Style:B|AFM_FontName:C\n");
  EXPECT_TRUE(HashIsEmpty(G_Fonts_hash.get()));
}

TEST_F(FontMap, ALineThatBeginsWithBlanksAndASharpIsParsed) {
  Read(
      "  # a remark\n  #|GUI_Font:A|GUI_Style:B|AFM_FontName:C\n  "
      "#GUI_Font:X|GUI_Style:Y|AFM_FontName:Z\n");
  EXPECT_EQ(Keys(G_Fonts_hash.get()), Strings{"A"});
  EXPECT_EQ(Afm("A", "B"), "C");
}

TEST_F(FontMap, AFieldIsKnownByWhatItBeginsWith) {
  Read("GUI_FontName:A|GUI_Style2:B|AFM_FontName.x:C\n");
  EXPECT_EQ(Afm("A", "B"), "C");
}

TEST_F(FontMap, ALaterFieldOfAKindReplacesAnEarlierOne) {
  Read("GUI_Font:A|GUI_Font:B|GUI_Style:S|AFM_FontName:N\n");
  EXPECT_EQ(Keys(G_Fonts_hash.get()), Strings{"B"});
}

TEST_F(FontMap, ALineWithoutOneOfTheValuesIsDropped) {
  Read(
      "GUI_Font:A|GUI_Style:B\nGUI_Font:A|AFM_FontName:C\nGUI_Style:B|AFM_FontName:"
      "C\n\nnonsense\n");
  EXPECT_TRUE(HashIsEmpty(G_Fonts_hash.get()));
}

TEST_F(FontMap, AKeywordWithoutColonIsIgnoredAndLogged) {
  const ChildResult result = RunInChild([] {
    unsetenv("KPXDEBUG");
    G_DebugLevel = 4;
    Read("GUI_Font|GUI_Font:A|GUI_Style:B|AFM_FontName:C\n");
    G_DebugLevel = 0;
    if (Afm("A", "B") != "C") _exit(1);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors,
            "corrupted line found\n"
            "****************** Debuging fonts_hash ****************\n"
            "GUI_font >>A<<\n"
            "        GUI_Style >>B<< -> AFM_Font_Name >>C<<\n"
            "****************** End Debuging fonts_hash ****************\n");
}

TEST_F(FontMap, StylesOfOneFontAreCollected) {
  Read(
      "GUI_Font:A|GUI_Style:2|AFM_FontName:A2\nGUI_Font:B|GUI_Style:1|AFM_FontName:B1\n"
      "GUI_Font:A|GUI_Style:1|AFM_FontName:A1\n");
  const Owned<CList> names = GetAllFontGuiName();
  EXPECT_EQ(Texts(names.get()), (Strings{"A", "B"}));
  EXPECT_EQ(Keys(HashValue<CHash>(G_Fonts_hash.get(), "A")), (Strings{"1", "2"}));
}

TEST_F(FontMap, TheFirstOfTwoLinesWithOneFontAndStyleCounts) {
  Read("GUI_Font:A|GUI_Style:B|AFM_FontName:first\nGUI_Font:A|GUI_Style:B|AFM_FontName:second\n");
  EXPECT_EQ(Afm("A", "B"), "first");
}

TEST_F(FontMap, ALastLineWithoutLineFeedLosesNothing) {
  Read("GUI_Font:A|GUI_Style:B|AFM_FontName:C");
  EXPECT_EQ(Afm("A", "B"), "C");
}

TEST_F(FontMap, TheReverseLookUpFindsTheFirstFontAndStyleInKeyOrder) {
  Read(
      "GUI_Font:B|GUI_Style:1|AFM_FontName:N\nGUI_Font:A|GUI_Style:2|AFM_FontName:N\n"
      "GUI_Font:A|GUI_Style:1|AFM_FontName:other\n");
  std::string font;
  std::string style;
  EXPECT_EQ(GetGuiFont("N", &font, &style), 1);
  EXPECT_EQ(font, "A");
  EXPECT_EQ(style, "2");
}

TEST_F(FontMap, TheReverseLookUpOfAnUnknownNameEmptiesBothTexts) {
  Read("GUI_Font:A|GUI_Style:B|AFM_FontName:C\n");
  std::string font = "x";
  std::string style = "y";
  EXPECT_EQ(GetGuiFont("c", &font, &style), 0);
  EXPECT_EQ(font, "");
  EXPECT_EQ(style, "");
}

TEST_F(FontMap, TheReverseLookUpTouchesNothingWithoutTableOrArgument) {
  std::string font = "x";
  std::string style = "y";
  EXPECT_EQ(GetGuiFont("C", &font, &style), 0);
  Read("");
  EXPECT_EQ(GetGuiFont(nullptr, &font, &style), 0);
  EXPECT_EQ(GetGuiFont("C", nullptr, &style), 0);
  EXPECT_EQ(GetGuiFont("C", &font, nullptr), 0);
  EXPECT_EQ(font, "x");
  EXPECT_EQ(style, "y");
}

TEST_F(FontMap, TheAfmNameIsNullWithoutTableFontOrStyle) {
  EXPECT_EQ(GetAfmFontName("A", "B"), nullptr);
  EXPECT_EQ(GetAllFontGuiName(), nullptr);
  Read("GUI_Font:A|GUI_Style:B|AFM_FontName:C\n");
  EXPECT_EQ(GetAfmFontName("x", "B"), nullptr);
  EXPECT_EQ(GetAfmFontName("A", "x"), nullptr);
  EXPECT_EQ(GetAfmFontName(nullptr, "B"), nullptr);
  EXPECT_EQ(GetAfmFontName("A", nullptr), nullptr);
}

TEST_F(FontMap, RandomLinesAreRead) {
  std::mt19937 random(12);
  const char *const pieces[] = {"GUI_Font", "GUI_Style", "AFM_FontName", ":", "|", " ", "x", "\t"};
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (int i = 0; i < 200; ++i) {
      text += pieces[random() % 8];
      if (random() % 20 == 0) text += static_cast<char>(random());
    }
    Read(text);
    // Whatever the lines hold: behind every font and style of the table stands a name.
    for (const auto [font, styles] : Pairs<CHash>(G_Fonts_hash.get())) {
      EXPECT_FALSE(HashIsEmpty(styles)) << font;
      for (const auto [style, afm_name] : Pairs<CString>(styles)) {
        EXPECT_EQ(Afm(font, style), fGet_CString_Value_Function(afm_name));
      }
    }
  }
}
