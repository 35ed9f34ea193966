// Fonts, styles and sizes for printing plain text.
#include "textoptions.h"

#include <gtest/gtest.h>

#include "coresupport.h"
#include "fontmap.h"
#include "must.h"
#include "optionstate.h"
#include "queuesupport.h"

namespace {

using Strings = std::vector<std::string>;

class TextOptions : public testing::Test {
 protected:
  void SetUp() override {
    const std::string map =
        "GUI_Font:Times|GUI_Style:Roman|AFM_FontName:Times-Roman\n"
        "GUI_Font:Courier|GUI_Style:Regular|AFM_FontName:Courier\n"
        "GUI_Font:Courier|GUI_Style:Bold|AFM_FontName:Courier-Bold\n";
    LineReader lines(map);
    G_Fonts_hash = ReadFontmap(lines);
    SetCurrentQueue(Text("lp1"), MakeQueue());
  }
  void TearDown() override {
    SetCurrentQueue(nullptr, nullptr);
    G_Fonts_hash.reset();
  }
};

}  // namespace

TEST_F(TextOptions, FontsAndStylesComeInKeyOrder) {
  EXPECT_EQ(FontNames(), (Strings{"Courier", "Times"}));
  EXPECT_EQ(FontStyles("Courier"), (Strings{"Bold", "Regular"}));
  EXPECT_EQ(FontStyles("Times"), Strings{"Roman"});
}

TEST_F(TextOptions, AnUnknownFontHasNoStyles) {
  EXPECT_EQ(FontStyles("Helvetica"), Strings{});
  EXPECT_EQ(FontStyles(""), Strings{});
}

TEST_F(TextOptions, ThereAreNoFontsWithoutAMap) {
  G_Fonts_hash.reset();
  EXPECT_EQ(FontNames(), Strings{});
  EXPECT_EQ(FontStyles("Courier"), Strings{});
  EXPECT_FALSE(StoreTextOptions("Courier", "Bold", "12"));
}

TEST_F(TextOptions, EighteenSizesAreOffered) {
  EXPECT_EQ(Strings(kFontSizes.begin(), kFontSizes.end()),
            (Strings{"4", "6", "8", "9", "10", "11", "12", "14", "16", "18", "20", "22", "24", "26",
                     "28", "36", "48", "72"}));
}

TEST_F(TextOptions, CourierInTwelvePointsIsWantedUnlessTheQueueSaysOtherwise) {
  EXPECT_EQ(WantedFontName(), "Courier");
  EXPECT_EQ(WantedFontSize(), "12");
  Must(HashPutText(G_QueueFeatures_hash, "*FontName", "Times-Roman"));
  Must(HashPutText(G_QueueFeatures_hash, "*FontSize", "7"));
  EXPECT_EQ(WantedFontName(), "Times-Roman");
  EXPECT_EQ(WantedFontSize(), "7");
}

TEST_F(TextOptions, SizesAreMovedIntoTheRange) {
  for (const auto &[text, size] :
       std::vector<std::pair<std::string, std::string>>{{"3", "4"},
                                                        {"4", "4"},
                                                        {"13", "13"},
                                                        {"72", "72"},
                                                        {"73", "72"},
                                                        {"99", "72"},
                                                        {"012", "12"},
                                                        {"0", "4"},
                                                        {"", "4"},
                                                        {"abc", "4"},
                                                        {"-8", "4"},
                                                        {"99999999999999999999999999", "72"}}) {
    EXPECT_EQ(ClampedFontSize(text), size) << ">>" << text << "<<";
  }
}

TEST_F(TextOptions, FontAndStyleAreStoredByTheirAfmName) {
  EXPECT_TRUE(StoreTextOptions("Courier", "Bold", "14"));
  EXPECT_EQ(QueueFeatureValue("*FontName"), "Courier-Bold");
  EXPECT_EQ(QueueFeatureValue("*FontSize"), "14");
  EXPECT_TRUE(StoreTextOptions("Times", "Roman", "9"));
  EXPECT_EQ(QueueFeatureValue("*FontName"), "Times-Roman");
  EXPECT_EQ(QueueFeatureValue("*FontSize"), "9");
}

TEST_F(TextOptions, TheSizeIsStoredAsItStandsOrMovedIntoTheRange) {
  const struct {
    const char *size;
    const char *stored;
  } rows[] = {{"4", "4"},    {"013", "013"}, {"72", "72"}, {"73", "72"},
              {"099", "72"}, {"3", "4"},     {"", "4"}};
  for (const auto &row : rows) {
    EXPECT_TRUE(StoreTextOptions("Courier", "Bold", row.size));
    EXPECT_EQ(QueueFeatureValue("*FontSize"), row.stored) << row.size;
  }
}

TEST_F(TextOptions, AStyleThatTheFontLacksIsRefusedAndNothingStored) {
  EXPECT_FALSE(StoreTextOptions("Times", "Bold", "14"));
  EXPECT_FALSE(StoreTextOptions("", "", "14"));
  EXPECT_EQ(Keys(G_QueueFeatures_hash), Strings{});
}
