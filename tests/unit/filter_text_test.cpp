// Text jobs as PostScript pages.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "booklet.h"
#include "filterjob.h"
#include "sheets.h"
#include "temporarydirectory.h"
#include "textjob.h"
#include "textjobtest.h"

namespace {

TEST_F(TextJob, LinesStandAtTheirColumnAndLine) {
  EXPECT_EQ(Pages("one\ntwo (x\\)\n"), Page(1, "0 0 (one) T\n0 1 (two \\(x\\\\\\)) T\n"));
}

TEST_F(TextJob, LatinIsAByteACharacterOfThePrintersFont) {
  EXPECT_EQ(Pages("a é“b”"), Page(1,
                                  "0 0 (a \xE9\x93"
                                  "b\x94) T\n"));
}

TEST_F(TextJob, OtherCharactersComeWithTheJob) {
  EXPECT_EQ(Pages("aжb"), Page(1, "0 0 1 (a) R\n1 0 ( ) 0 Q\n2 0 (b) T\n"));
  EXPECT_EQ(Pages("жжя"), Page(1, "0 0 (  !) 0 Q\n"));
}

TEST_F(TextJob, QuotesAndMinusOfAsciiStayAsTheyAre) {
  EXPECT_EQ(Pages("a'b`c-d"), Page(1, "0 0 (a'b`c-d) T\n"));
  const std::string output = RunOver(FilterText, settings_, "x");
  EXPECT_EQ(CountOf(output, "V 39 /quotesingle put V 45 /hyphen put V 96 /grave put\n"), 1u);
}

TEST_F(TextJob, AByteThatIsNotUtf8IsOneOfWindows1252) {
  EXPECT_EQ(Pages("\xE9\né\n"), Page(1, "0 0 (\xE9) T\n0 1 (\xE9) T\n"));
  EXPECT_EQ(Pages("\x93q\x94 \x96"), Page(1, "0 0 (\x93q\x94 \x96) T\n"));
  EXPECT_EQ(Pages("ü\xFCü"), Page(1, "0 0 (\xFC\xFC\xFC) T\n")) << "spoils itself alone";
}

TEST_F(TextJob, Utf16WithItsMarkIsRead) {
  const std::string little(
      "\xFF\xFE"
      "a\0\xE9\0\n\0b\0",
      10),
      big("\xFE\xFF\0a\0\xE9\0\n\0b", 10);
  const std::string page = Page(1, "0 0 (a\xE9) T\n0 1 (b) T\n");
  for (const size_t step : {1u, 2u, 3u, 65536u}) {
    EXPECT_EQ(Pages(little, step), page) << step;
    EXPECT_EQ(Pages(big, step), page) << step;
  }
  EXPECT_EQ(Pages(std::string("\xFF\xFE\x3D\xD8\0\xDE", 6)), Pages("\U0001F600"));
  EXPECT_EQ(Pages(std::string("\xFF\xFE\0\xDE"
                              "a\0",
                              6)),
            Pages("\uFFFD"
                  "a"))
      << "half a pair";
  EXPECT_EQ(Pages(std::string("\xFF\xFE"
                              "a\0b",
                              5)),
            Pages("a\uFFFD"))
      << "half a character";
}

TEST_F(TextJob, LettersAndTheirMarksAreComposed) {
  EXPECT_EQ(Pages("e\u0301 A\u0308"), Page(1, "0 0 (\xE9 \xC4) T\n"));
}

TEST_F(TextJob, AMarkStandsOnItsLetterInOneColumn) {
  const std::string pages = Pages("x\u0302y");
  EXPECT_EQ(CountOf(pages, " X\n"), 1u) << pages;
  EXPECT_NE(pages.find("gsave 0 0 P "), std::string::npos) << pages;
  EXPECT_NE(pages.find("1 0 (y) T\n"), std::string::npos) << pages;
}

TEST_F(TextJob, CharactersWithoutWidthTakeNoColumn) {
  EXPECT_EQ(Pages("a\u00AD\u200B\uFEFF"
                  "b"),
            Page(1, "0 0 (ab) T\n"));
}

TEST_F(TextJob, WideCharactersTakeTwoColumns) {
  const std::string pages = Pages("\u4F60a");
  EXPECT_NE(pages.find("2 0 (a) T\n"), std::string::npos) << pages;
}

TEST_F(TextJob, ACharacterThatNoFontHasIsABoxWithAWarning) {
  EXPECT_EQ(Pages("a\U0010FF00\U0010FF00"), Page(1, "0 0 1 (a) R\n1 0 (  ) 0 Q\n"));
  EXPECT_EQ(WarningsOver(FilterText, settings_, "\U0010FF00\U0010FF01\U0010FF00"),
            "3 characters that no font of this host has are printed as a box with its code: "
            "U+10FF00, U+10FF01; install a font that has it\n");
  EXPECT_EQ(WarningsOver(FilterText, settings_, "a\u4F60"),
            WarningsOver(FilterText, settings_, "\u4F60"));
}

TEST_F(TextJob, ALetterThatNoFontHasIsABoxWithItsMarksBesideIt) {
  const std::string pages = Pages("\U0010FF00\u0301x");
  EXPECT_NE(pages.find("0 0 ( ) 0 Q\n"), std::string::npos) << pages;
  EXPECT_EQ(CountOf(pages, " X\n"), 1u) << pages;
  EXPECT_NE(WarningsOver(FilterText, settings_, "\U0010FF00\u0301x"), "");
}

TEST_F(TextJob, AMarkThatNoFontHasIsABox) {
  // A mark of a script that the fonts of desktops lack, and one that is never to be seen.
  EXPECT_EQ(CountOf(WarningsOver(FilterText, settings_, "a\U0001E8D0"), "U+1E8D0"), 1u);
  EXPECT_EQ(WarningsOver(FilterText, settings_, "a\U000E0100"), "");
}

TEST_F(TextJob, HebrewStandsFromRightToLeft) {
  // alef, bet, gimel: codes in the order in which they were first seen
  EXPECT_EQ(Pages("a \u05D0\u05D1\u05D2 b"),
            Page(1, "0 0 2 (a ) R\n2 0 (\"! ) 0 Q\n5 0 2 ( b) R\n"));
}

TEST_F(TextJob, ALineThatBeginsFromRightToLeftStandsAtTheRight) {
  EXPECT_EQ(Pages("\u05D0\u05D1 1\n"), Page(1, "76 0 2 (1 ) R\n78 0 (! ) 0 Q\n"));
  EXPECT_EQ(Pages("(\u05D0)\n"), Page(1, "77 0 1 (\\() R\n78 0 ( ) 0 Q\n79 0 1 (\\)) R\n"))
      << "brackets are mirrored";
}

TEST_F(TextJob, ACharacterOverItselfIsBold) {
  EXPECT_EQ(Pages("a\ba"), Page(1, "0 0 (a) T\n0.05 0 (a) T\n"));
}

TEST_F(TextJob, AByteOrderMarkAtTheStartIsNotPrinted) {
  EXPECT_EQ(Pages("\xEF\xBB\xBFé\n"), Page(1, "0 0 (\xE9) T\n"));
  EXPECT_EQ(Pages("\xEF\xBB\xBFx", 1), Page(1, "0 0 (x) T\n"));
  EXPECT_EQ(Pages("\xEF\xBB\xBF"), "");
}

TEST_F(TextJob, AFormFeedBeginsANewPage) {
  EXPECT_EQ(Pages("a\fb\n\f"), Page(1, "0 0 (a) T\n") + Page(2, "0 0 (b) T\n"));
}

TEST_F(TextJob, AFormFeedAtTheTopLeavesAnEmptyPage) {
  EXPECT_EQ(Pages("\fb"), Page(1, "") + Page(2, "0 0 (b) T\n"));
}

TEST_F(TextJob, AFullPageBeginsANewOne) {
  const std::string pages = Pages(Lines(65));
  EXPECT_EQ(CountOf(pages, "%%Page:"), 2u);
  EXPECT_NE(pages.find("0 63 (x) T\nshowpage"), std::string::npos);
  EXPECT_TRUE(pages.ends_with(Page(2, "0 0 (x) T\n")));
}

TEST_F(TextJob, AFormFeedBehindAFullPageLeavesNoEmptyPage) {
  EXPECT_EQ(CountOf(Pages(Lines(64) + "\f" + Lines(64)), "%%Page:"), 2u);
}

TEST_F(TextJob, EmptyLinesTakeTheirPlace) {
  EXPECT_EQ(Pages("\n\nx"), Page(1, "0 2 (x) T\n"));
  EXPECT_EQ(CountOf(Pages(std::string(70, '\n') + "x"), "%%Page:"), 2u);
}

TEST_F(TextJob, LongLinesAreWrapped) {
  const std::string pages = Pages(std::string(81, 'x') + "\nnext");
  EXPECT_EQ(pages, Page(1, "0 0 (" + std::string(80, 'x') + ") T\n0 1 (x) T\n0 2 (next) T\n"));
}

TEST_F(TextJob, ALineThatIsWrappedOverPagesHasItsPartsOnEach) {
  std::string line;
  for (int i = 0; i < 80 * 64 + 5; ++i) line += "é";
  const std::string pages = Pages(line);
  const size_t second = pages.find("%%Page: 2 2");
  ASSERT_NE(second, std::string::npos);
  EXPECT_EQ(CountOf(pages.substr(0, second), "\xE9"), 80u * 64);
  EXPECT_EQ(CountOf(pages.substr(second), "\xE9"), 5u);
}

TEST_F(TextJob, TabsGoToEveryEighthColumn) {
  EXPECT_EQ(Pages("a\tb\t\tc"), Page(1, "0 0 (a) T\n8 0 (b) T\n24 0 (c) T\n"));
}

TEST_F(TextJob, CarriageReturnAndBackspacePrintOver) {
  EXPECT_EQ(Pages("ab\b_\rX\r\ny"), Page(1, "0 0 (ab) T\n1 0 (_) T\n0 0 (X) T\n0 1 (y) T\n"));
}

TEST_F(TextJob, OtherControlCharactersAreLeftOut) {
  EXPECT_EQ(Pages(std::string("a\0\033\004b", 5)), Page(1, "0 0 (ab) T\n"));
}

TEST_F(TextJob, ALastLineWithoutLineFeedIsPrinted) {
  EXPECT_EQ(Pages("x"), Page(1, "0 0 (x) T\n"));
}

TEST_F(TextJob, VeryLongLinesKeepTheirCharactersWhole) {
  std::string line;
  for (int i = 0; i < 20000; ++i) line += "é";
  EXPECT_EQ(CountOf(Pages(line), "\xE9"), 20000u);
  EXPECT_EQ(Pages(line, 1), Pages(line));
}

TEST(TextOnPaper, ThatNoPrinterHasIsSetAsOnA4) {
  std::string ppd = ContentOf(std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd");
  const std::string size = "*PaperDimension A4/A4: \"595 842\"";
  ppd.replace(ppd.find(size), size.size(), "*PaperDimension A4/A4: \"1e30 1e30\"");
  PpdError error;
  const PpdModel model = ReadPpd(ppd, &error).value();
  const std::string output = RunOver(FilterText, JobSettings(model), Lines(64));
  EXPECT_EQ(CountOf(output, "%%Page: "), 1u);
  EXPECT_EQ(CountOf(output, "/N 80 def\n"), 1u);
}

TEST_F(TextJob, AnEmptyJobGivesNothing) { EXPECT_EQ(Pages(""), ""); }

TEST_F(TextJob, TheQueuesFontSizeCounts) {
  settings_.Apply({{"*FontSize", "24"}});
  EXPECT_EQ(Pages(std::string(38, 'x')),
            Page(1, "0 0 (" + std::string(37, 'x') + ") T\n0 1 (x) T\n"));
  settings_.Apply({{"*FontSize", "1000"}});
  EXPECT_EQ(CountOf(Pages(std::string(80, 'x')), " T\n"), 1u);
}

TEST_F(TextJob, SettingsThatCannotBeUsedAreAWarningEach) {
  settings_.Apply(
      {{"*FontSize", "73"}, {"*FontName", "Bad Name"}, {"*Nup", "3"}, {"*NupOrder", "Foo"}});
  EXPECT_EQ(WarningsOver(FilterText, settings_, "x"),
            "\"*FontSize=73\" is not a size from 4 to 72 points: 12 is used\n"
            "\"*FontName=Bad Name\" cannot be the name of a font: Courier is used\n"
            "\"*Nup=3\" is not a number of pages per side (1, 2, 4, 6, 8, 9, 16): 1 is used\n"
            "\"*NupOrder=Foo\" is not an order of pages (Left, Right, Down, Back): Left is used\n");
  settings_.Apply(
      {{"*FontSize", "72"}, {"*FontName", "Helvetica"}, {"*Nup", "16"}, {"*NupOrder", "Back"}});
  EXPECT_EQ(WarningsOver(FilterText, settings_, "x"), "");
  settings_.Apply({{"*FontSize", ""}, {"*FontName", ""}, {"*Nup", "1"}, {"*NupOrder", "Left"}});
  EXPECT_EQ(WarningsOver(FilterText, settings_, "x"), "");
}

TEST_F(TextJob, TheQueuesFontCounts) {
  settings_.Apply({{"*FontName", "Helvetica-Bold"}});
  const std::string output = RunOver(FilterText, settings_, "x");
  EXPECT_EQ(CountOf(output, "/F /Helvetica-Bold E Z makefont def\n"), 1u);
  EXPECT_EQ(CountOf(output, "Courier"), 0u);
}

TEST_F(TextJob, AFontThatIsNoPostScriptNameIsCourier) {
  const std::string long_name(128, 'x');
  for (const char *name :
       {"", "Times Roman", "a(b", "x/y", "x%", "caf\xC3\xA9", "x\ny", long_name.c_str()}) {
    settings_.Apply({{"*FontName", name}});
    const std::string output = RunOver(FilterText, settings_, "x");
    EXPECT_EQ(CountOf(output, "/F /Courier E Z makefont def\n"), 1u) << name;
  }
}

// The text of a page that holds one word at its top.
std::string Place(const std::string &matrix, const std::string &word) {
  return "gsave [" + matrix + "] concat\n0 0 (" + word + ") T\ngrestore\n";
}

TEST_F(TextJob, TwoPagesLieAcrossTheSheet) {
  settings_.Apply({{"*Nup", "2"}});
  const std::string left = "0 0.706 -0.706 0 594.726 0.465",
                    right = "0 0.706 -0.706 0 594.726 421.465";
  const std::string pages = Pages("a\fb\fc");
  EXPECT_EQ(pages, Page(1, Place(left, "a") + Place(right, "b")) + Page(2, Place(left, "c")));
}

TEST_F(TextJob, ThePagesOfADocumentAreItsSides) {
  settings_.Apply({{"*Nup", "9"}});
  EXPECT_NE(RunOver(FilterText, settings_, Lines(64 * 19)).find("%%Pages: 3\n%%EOF\n"),
            std::string::npos);
}

TEST_F(TextJob, AnEmptyPageTakesItsPlaceOnTheSheet) {
  settings_.Apply({{"*Nup", "4"}});
  const std::string pages = Pages("\fb");
  EXPECT_EQ(CountOf(pages, "gsave"), 2u);
  EXPECT_TRUE(pages.ends_with(Place("0.5 0 0 0.5 297.5 421", "b") + "showpage S restore\n"));
}

TEST_F(TextJob, AnyOtherNumberOfPagesIsOne) {
  for (const char *number : {"", "0", "1", "3", "02", "2x", "-4", "99999999999999999999"}) {
    settings_.Apply({{"*Nup", number}});
    EXPECT_EQ(Pages("a\fb"), Page(1, "0 0 (a) T\n") + Page(2, "0 0 (b) T\n")) << number;
  }
}

struct OrderCase {
  const char *name;
  std::string pages, order;
  std::vector<std::string> corners;  // of the paper, or its half
};

class SheetOrder : public testing::TestWithParam<OrderCase> {};

// The corner of an upright sheet in whose half the middle of the page at `place` lies: top or
// bottom, left or right.
std::string CornerOf(const SheetPlan &plan, size_t place) {
  const auto m = PlacementOf(plan, place);
  const double x = plan.width / 2, y = plan.length / 2;
  const double to_x = m[0] * x + m[2] * y + m[4], to_y = m[1] * x + m[3] * y + m[5];
  return std::string(to_y > plan.length / 2 + 1   ? "t"
                     : to_y < plan.length / 2 - 1 ? "b"
                                                  : "") +
         (to_x > plan.width / 2 + 1   ? "r"
          : to_x < plan.width / 2 - 1 ? "l"
                                      : "");
}

TEST_P(SheetOrder, PagesStandInTheChosenOrder) {
  const PpdModel model{};
  JobSettings settings(model);
  settings.Apply({{"*Nup", GetParam().pages}, {"*NupOrder", GetParam().order}});
  const SheetPlan plan = PlanOf(settings, TurnOf(settings));
  std::vector<std::string> corners;
  for (size_t i = 0; i < plan.Places(); ++i) corners.push_back(CornerOf(plan, i));
  EXPECT_EQ(corners, GetParam().corners);
}

// A turned sheet's left side is the paper's lower half.
INSTANTIATE_TEST_SUITE_P(
    Orders, SheetOrder,
    testing::Values(OrderCase{"four_left", "4", "Left", {"tl", "tr", "bl", "br"}},
                    OrderCase{"four_right", "4", "Right", {"tr", "tl", "br", "bl"}},
                    OrderCase{"four_down", "4", "Down", {"tl", "bl", "tr", "br"}},
                    OrderCase{"four_back", "4", "Back", {"tr", "br", "tl", "bl"}},
                    OrderCase{"four_without", "4", "", {"tl", "tr", "bl", "br"}},
                    OrderCase{"four_unknown", "4", "Up", {"tl", "tr", "bl", "br"}},
                    OrderCase{"two_left", "2", "Left", {"b", "t"}},
                    OrderCase{"two_right", "2", "Right", {"t", "b"}},
                    OrderCase{"six_has_none", "6", "Back", {"bl", "l", "tl", "br", "r", "tr"}},
                    OrderCase{"four_upwards", "4", "lrbt", {"bl", "br", "tl", "tr"}},
                    OrderCase{"four_upwards_back", "4", "btrl", {"br", "tr", "bl", "tl"}},
                    OrderCase{
                        "six_of_an_application", "6", "rltb", {"tl", "l", "bl", "tr", "r", "br"}}),
    [](const auto &instance) { return instance.param.name; });

TEST(Sheets, PagesStayWhereThePrinterCanPrint) {
  const PpdPageSize papers[] = {
      {595, 842, 18, 36, 577, 830}, {842, 595, 10, 10, 800, 590}, {200, 2000, 5, 5, 195, 1995}};
  for (const PpdPageSize &paper : papers) {
    for (const size_t pages : {2u, 4u, 6u, 9u, 16u}) {
      const SheetPlan plan = PlanFor(paper, pages, "Left");
      ASSERT_EQ(plan.Places(), pages);
      for (size_t place = 0; place < pages; ++place) {
        const auto m = PlacementOf(plan, place);
        for (const double x : {0.0, paper.width}) {
          for (const double y : {0.0, paper.length}) {
            const double to_x = m[0] * x + m[2] * y + m[4], to_y = m[1] * x + m[3] * y + m[5];
            EXPECT_GE(to_x, paper.left);
            EXPECT_LE(to_x, paper.right);
            EXPECT_GE(to_y, paper.bottom);
            EXPECT_LE(to_y, paper.top);
          }
        }
      }
    }
  }
}

TEST(Sheets, TwoPagesThatLieStandAboveEachOther) {
  const SheetPlan plan = PlanFor({842, 595, 0, 0, 842, 595}, 2, "Left");
  EXPECT_EQ(plan.columns, 1u);
  EXPECT_EQ(plan.rows, 2u);
  EXPECT_TRUE(plan.turned);
}

TEST(Sheets, APrintableAreaWithoutRoomIsIgnored) {
  const auto m = PlacementOf(PlanFor({100, 200, 60, 0, 100, 200}, 4, "Left"), 0);
  EXPECT_EQ(m[0], 0.5);
}

TEST(TextJobSettings, TheCodeOfAPageComesOnceASheet) {
  const PpdModel model = TestPpd("office.ppd");
  JobSettings settings(model);
  settings.Apply({{"*Stamp", "Draft"}, {"*Nup", "2"}});
  EXPECT_EQ(CountOf(RunOver(FilterText, settings, "a\fb\fc"), "*Stamp Draft"), 2u);
}

// The pages of all sides, counted from 1, 0 for an empty place.
std::vector<std::pair<size_t, size_t>> BookletOf(size_t pages) {
  std::vector<std::pair<size_t, size_t>> sides;
  for (size_t side = 0; side < SidesOfBooklet(pages); ++side) {
    const auto [left, right] = PagesOfSide(side, pages);
    sides.emplace_back(left ? *left + 1 : 0, right ? *right + 1 : 0);
  }
  return sides;
}

TEST(Booklets, PagesComeInTheOrderOfFoldedSheets) {
  using Sides = std::vector<std::pair<size_t, size_t>>;
  EXPECT_EQ(BookletOf(0), (Sides{}));
  EXPECT_EQ(BookletOf(1), (Sides{{0, 1}, {0, 0}}));
  EXPECT_EQ(BookletOf(4), (Sides{{4, 1}, {2, 3}}));
  EXPECT_EQ(BookletOf(5), (Sides{{0, 1}, {2, 0}, {0, 3}, {4, 5}}));
  EXPECT_EQ(BookletOf(8), (Sides{{8, 1}, {2, 7}, {6, 3}, {4, 5}}));
}

TEST_F(TextJob, ABookletHasTwoPagesASide) {
  settings_.Apply({{"*Booklet", "1"}});
  const std::string left = "0 0.706 -0.706 0 594.726 0.465",
                    right = "0 0.706 -0.706 0 594.726 421.465";
  EXPECT_EQ(Pages("a\fb\fc"),
            Page(1, Place(right, "a")) + Page(2, Place(left, "b") + Place(right, "c")));
  EXPECT_EQ(Pages("a"), Page(1, Place(right, "a")) + Page(2, ""));
  EXPECT_EQ(Pages(""), "");
}

TEST_F(TextJob, ABookletKeepsPagesOfAnyLength) {
  settings_.Apply({{"*Booklet", "1"}});
  std::string line;
  for (int i = 0; i < 20000; ++i) line += "é";
  EXPECT_EQ(CountOf(Pages(line), "\xE9"), 20000u);
}

TEST_F(TextJob, ABookletWhosePagesCannotBeKeptFailsAndGivesNothing) {
  settings_.Apply({{"*Booklet", "1"}});
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const FilteredJob job = ResultOver(FilterText, settings_, "a");
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(job.result.failure, "temporary file: Too many open files");
  EXPECT_TRUE(job.result.warnings.empty());
  EXPECT_EQ(job.output, "");
}

TEST_F(TextJob, OfBookletAndPagesASheetTheLaterCounts) {
  settings_.Apply({{"*Booklet", "1"}, {"*Nup", "1"}});
  EXPECT_EQ(Pages("a"), Page(1, "0 0 (a) T\n"));
}

TEST(TextJobSettings, ABookletIsTurnedOverItsShortEdge) {
  const PpdModel model = TestPpd("office.ppd");
  JobSettings settings(model);
  settings.Apply({{"*Booklet", "1"}, {"*Stamp", "Draft"}});
  const std::string output = RunOver(FilterText, settings, "a\fb\fc\fd\fe");
  EXPECT_EQ(CountOf(output, "*Duplex DuplexTumble\n"), 1u);
  EXPECT_EQ(CountOf(output, "*Duplex "), 1u);
  EXPECT_EQ(CountOf(output, "*Stamp Draft"), 4u);
  EXPECT_NE(output.find("%%Pages: 4\n%%EOF\n"), std::string::npos);
}

TEST(TextJobSettings, ABookletOfAPrinterThatCannotTurnSheetsHasItsOrderAlone) {
  const PpdModel model = TestPpd("office.ppd");
  JobSettings settings(model);
  settings.Apply({{"*Booklet", "1"}, {"*OptionDuplex", "False"}});
  const std::string output = RunOver(FilterText, settings, "a");
  EXPECT_EQ(CountOf(output, "DuplexTumble"), 0u);
  EXPECT_EQ(CountOf(output, "%%Page:"), 2u);
}

TEST(TextJobSettings, TheDocumentCarriesTheOptionsCode) {
  const PpdModel model = TestPpd("office.ppd");
  JobSettings settings(model);
  settings.Apply({{"*InputSlot", "Lower"}, {"*NrCopies", "2"}, {"*Stamp", "Draft"}});
  const std::string output = RunOver(FilterText, settings, "a\fb");
  EXPECT_EQ(CountOf(output, "*InputSlot Lower"), 1u);
  EXPECT_EQ(CountOf(output, "<</NumCopies 2>>setpagedevice"), 1u);
  EXPECT_EQ(CountOf(output, "*Stamp Draft"), 2u);
  EXPECT_NE(output.find("%%Pages: 2\n%%EOF\n"), std::string::npos);
}

}  // namespace
