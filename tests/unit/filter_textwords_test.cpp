// What a job asks of its text pages beyond font and paper: headers, line numbers, columns, pitches,
// margins, lines that are cut.
#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "sheets.h"
#include "textjobtest.h"

namespace {

using TextWordsJob = TextJob;

// The output without the pages' place marks: the document's definitions.
std::string Definitions(const JobSettings &settings) {
  const std::string output = RunOver(FilterText, settings, "x");
  return output.substr(0, output.find("%%EndProlog"));
}

TEST_F(TextWordsJob, NoneOfThemIsDoneUnasked) {
  const std::string output = RunOver(FilterText, settings_, "a\nb\n");
  EXPECT_EQ(CountOf(output, " L\n"), 0u);
  EXPECT_EQ(CountOf(output, "/H "), 0u);
  EXPECT_EQ(CountOf(output, "translate"), 0u);
}

TEST_F(TextWordsJob, LinesAreNumbered) {
  settings_.Apply({{"*TextLineNumbers", "1"}});
  EXPECT_EQ(Pages("a\n\n\fb\n"),
            Page(1, "-2 0 (1) L\n0 0 (a) T\n-2 1 (2) L\n") + Page(2, "-2 0 (3) L\n0 0 (b) T\n"));
  EXPECT_EQ(Pages("a\n\n"), Page(1, "-2 0 (1) L\n0 0 (a) T\n-2 1 (2) L\n"));
  EXPECT_EQ(Pages("жa\r_\nb"), Page(1,
                                    "-2 0 (1) L\n0 0 ( ) 0 Q\n1 0 (a) T\n0 0 (_) T\n"
                                    "-2 1 (2) L\n0 1 (b) T\n"))
      << "what is printed over is the same line";
}

TEST_F(TextWordsJob, ALineThatIsWrappedHasOneNumberAndEightyColumns) {
  settings_.Apply({{"*TextLineNumbers", "1"}});
  EXPECT_EQ(Pages(std::string(81, 'x') + "\ny"),
            Page(1, "-2 0 (1) L\n0 0 (" + std::string(80, 'x') +
                        ") T\n0 1 (x) T\n-2 2 (2) L\n0 2 (y) T\n"));
}

TEST_F(TextWordsJob, NumbersOfAFontWithoutColumnsStandItsSizeBeforeTheLine) {
  settings_.Apply({{"*TextLineNumbers", "1"}, {"*FontName", "Helvetica"}, {"*FontSize", "10"}});
  EXPECT_EQ(CountOf(Pages("a\nb"), "-10 1 (2) L\n"), 1u);
}

TEST_F(TextWordsJob, TextRunsThroughTheColumnsOfAPage) {
  settings_.Apply({{"*TextColumns", "2"}});
  const std::string next = "279.5 0 translate\n";
  EXPECT_EQ(Pages("a\fb\fc"),
            Page(1, "0 0 (a) T\n" + next + "0 0 (b) T\n") + Page(2, "0 0 (c) T\n"));
  EXPECT_EQ(Pages("\fb"), Page(1, next + "0 0 (b) T\n"));
  const std::string pages = Pages(Lines(129));
  EXPECT_EQ(CountOf(pages, next), 1u);
  EXPECT_NE(pages.find("0 63 (x) T\n" + next + "0 0 (x) T\n"), std::string::npos);
  EXPECT_TRUE(pages.ends_with("0 63 (x) T\nshowpage S restore\n" + Page(2, "0 0 (x) T\n")));
}

TEST_F(TextWordsJob, EachColumnWrapsItsOwnLines) {
  settings_.Apply({{"*TextColumns", "2"}});
  EXPECT_EQ(Pages(std::string(37, 'x')),
            Page(1, "0 0 (" + std::string(36, 'x') + ") T\n0 1 (x) T\n"));
}

TEST_F(TextWordsJob, LinesThatAreNotWrappedAreCutAtTheirEnd) {
  settings_.Apply({{"*TextWrap", "0"}});
  const std::string full(80, 'x');
  const std::string cut = "0 0 80 (" + full + ") R\n";
  EXPECT_EQ(Pages(full + "yy\nnext"), Page(1, "0 0 (" + full + ") T\n0 1 (next) T\n"));
  EXPECT_EQ(Pages(full + "yy\ty\by\nnext"), Page(1, cut + "0 1 (next) T\n"));
  EXPECT_EQ(Pages(full + "y\r_\fb"), Page(1, cut + "0 0 (_) T\n") + Page(2, "0 0 (b) T\n"));
  std::string accents, bytes;
  for (int i = 0; i < 80; ++i) accents += "é", bytes += '\xE9';
  EXPECT_EQ(Pages(accents + "éé\nb"), Page(1, "0 0 80 (" + bytes + ") R\n0 1 (b) T\n"));
  settings_.Apply({{"*FontName", "Helvetica"}});
  std::string words;
  for (int i = 0; i < 100; ++i) words += "word ";
  const std::string pages = Pages(words + "\nlast");
  EXPECT_EQ(CountOf(pages, " 0 ("), 1u) << pages;
  EXPECT_NE(pages.find("0 1 (last) T\n"), std::string::npos) << pages;
}

TEST_F(TextWordsJob, CharactersAndLinesPerInchAreWhatTheyAre) {
  settings_.Apply({{"*TextCPI", "12"}, {"*TextLPI", "8"}});
  std::string code = Definitions(settings_);
  EXPECT_EQ(CountOf(code, "/U 6 def\n/N 90 def\n"), 1u) << code;
  EXPECT_EQ(CountOf(code, "/P { 9 mul "), 1u) << code;
  EXPECT_EQ(CountOf(code, "/Z [10 0 0 9 0 0] def\n"), 1u) << "no taller than its lines";
  EXPECT_EQ(CountOf(Pages(Lines(86)), "%%Page:"), 2u);
  settings_.Apply({{"*TextCPI", "10"}, {"*TextLPI", "6"}});
  code = Definitions(settings_);
  EXPECT_EQ(CountOf(code, "/U 7.2 def\n/N 75 def\n"), 1u) << "not narrowed to 80: " << code;
  EXPECT_EQ(CountOf(code, "/Z [12 0 0 12 0 0] def\n"), 1u) << code;
}

TEST_F(TextWordsJob, MarginsAreThoseOfTheJob) {
  settings_.Apply({{"*TextLeft", "100"},
                   {"*TextRight", "135"},
                   {"*TextTop", "72.5"},
                   {"*TextBottom", "169.5"}});
  const std::string code = Definitions(settings_);
  EXPECT_EQ(CountOf(code, "/P { 12 mul 757.5 exch sub exch U mul 100 add exch moveto }"), 1u)
      << code;
  EXPECT_EQ(CountOf(code, "/N 50 def\n"), 1u) << code;
  EXPECT_EQ(CountOf(Pages(Lines(51)), "%%Page:"), 2u);
  EXPECT_EQ(CountOf(Pages(Lines(50)), "%%Page:"), 1u);
}

TEST(TextWords, MarginsEndAtThePrintableArea) {
  const PpdModel model = TestPpd("office.ppd");
  JobSettings settings(model);
  settings.Apply({{"*PageSize", "A4"}, {"*TextLeft", "0"}, {"*TextTop", "0"}});
  const PpdPageSize page = PageInHand(settings, TurnOf(settings));
  ASSERT_GT(page.left, 0);
  const std::string code = Definitions(settings);
  EXPECT_NE(code.find("U mul " + std::to_string(static_cast<int>(page.left)) + " add exch moveto"),
            std::string::npos)
      << code;
}

// The job with its header, as at the beginning of 1970 in Greenwich.
std::string WithHeader(const JobSettings &settings, const std::string &title,
                       const std::string &text) {
  setenv("TZ", "UTC0", 1);
  tzset();
  const JobIdentity identity{title, "Event", "anna"};
  return ResultOver(FilterText, settings, text, 65536, identity).output;
}

TEST_F(TextWordsJob, EachPageHasItsHeader) {
  settings_.Apply({{"*TextHeader", "1"}});
  const std::string output = WithHeader(settings_, "notes (1).txt", "a\fb");
  const auto header = [](const std::string &number) {
    return "gsave 0 24 translate\n/N 57 def\n0 0 (notes \\(1\\).txt) T\n80 0 (1970-01-01 00:00  " +
           number +
           "/2) L\n0 0.5 P 80 U mul 0 rlineto .5 setlinewidth stroke\n/N 80 def\ngrestore\n";
  };
  EXPECT_NE(
      output.find(Page(1, header("1") + "0 0 (a) T\n") + Page(2, header("2") + "0 0 (b) T\n")),
      std::string::npos)
      << output;
}

TEST_F(TextWordsJob, AHeaderTakesTwoLines) {
  settings_.Apply({{"*TextHeader", "1"}});
  const std::string output = WithHeader(settings_, "t", Lines(63));
  EXPECT_EQ(CountOf(output, "%%Page:"), 2u);
  EXPECT_EQ(CountOf(output, "/P { 12 mul 770 exch sub "), 1u) << output;
  EXPECT_EQ(CountOf(WithHeader(settings_, "t", Lines(62)), "%%Page:"), 1u);
}

TEST_F(TextWordsJob, ATitleIsCutBeforeTheDate) {
  settings_.Apply({{"*TextHeader", "1"}});
  const std::string output = WithHeader(settings_, std::string(200, 't'), "x");
  EXPECT_EQ(CountOf(output, "0 0 57 (" + std::string(57, 't') + ") R\n"), 1u) << output;
  EXPECT_EQ(CountOf(WithHeader(settings_, "a\n\fb", "x"), "0 0 (a  b) T\n"), 1u);
}

TEST_F(TextWordsJob, ATitleOfAnyScriptBringsItsCharacters) {
  settings_.Apply({{"*TextHeader", "1"}});
  const std::string output = WithHeader(settings_, "ж", "я");
  const size_t pages = output.find("%%Page: 1 1");
  ASSERT_NE(pages, std::string::npos);
  EXPECT_NE(output.find("/uni0436"), std::string::npos);
  EXPECT_LT(output.find("/uni0436"), pages) << "before the first page";
  EXPECT_LT(output.find("/uni044F"), pages);
}

TEST_F(TextWordsJob, HeadersOfABookletCountItsPages) {
  settings_.Apply({{"*TextHeader", "1"}, {"*Booklet", "1"}});
  const std::string output = WithHeader(settings_, "t", "a\fb\fc");
  const auto at = [&](const char *text) { return output.find(text); };
  ASSERT_EQ(CountOf(output, "/3) L\n"), 3u);
  EXPECT_LT(at("  1/3) L\n"), at("0 0 (a) T\n"));
  EXPECT_LT(at("0 0 (a) T\n"), at("  2/3) L\n"));
  EXPECT_LT(at("  2/3) L\n"), at("0 0 (b) T\n"));
}

TEST_F(TextWordsJob, AFontOfSymbolsIsNotThatOfItsHeader) {
  settings_.Apply({{"*TextHeader", "1"}, {"*FontName", "Symbol"}});
  const std::string output = WithHeader(settings_, "t", "abc");
  EXPECT_EQ(CountOf(output, "/H /Courier E Z makefont def\n"), 1u);
  EXPECT_EQ(CountOf(output, "/B F def /F H def F setfont\n"), 1u);
  EXPECT_LT(output.find("/F B def\ngrestore\n"), output.find("0 0 (abc) T\n"));
}

TEST_F(TextWordsJob, APageWithoutRoomForAHeaderIsPrintedWithoutAndWarns) {
  settings_.Apply(
      {{"*TextHeader", "1"}, {"*FontSize", "72"}, {"*TextTop", "403"}, {"*TextBottom", "403"}});
  EXPECT_EQ(WarningsOver(FilterText, settings_, "x"),
            "the pages have no room for a header: they are printed without\n");
  EXPECT_EQ(Pages("x"), Page(1, "0 0 (x) T\n"));
}

TEST_F(TextWordsJob, ValuesThatAreNotValidAreAWarningEachWithTheirRange) {
  settings_.Apply({{"*TextHeader", "maybe"},
                   {"*TextLineNumbers", "2"},
                   {"*TextWrap", "-"},
                   {"*TextColumns", "1.5"},
                   {"*TextCPI", "31"},
                   {"*TextLPI", "nan"},
                   {"*TextLeft", "-1"},
                   {"*TextRight", "280"},
                   {"*TextTop", "1e2"},
                   {"*TextBottom", "404"}});
  EXPECT_EQ(
      WarningsOver(FilterText, settings_, "x"),
      "\"*TextHeader=maybe\" is not 1 (yes) or 0 (no): 0 is used\n"
      "\"*TextLineNumbers=2\" is not 1 (yes) or 0 (no): 0 is used\n"
      "\"*TextWrap=-\" is not 1 (yes) or 0 (no): 1 is used\n"
      "\"*TextColumns=1.5\" is not a number of columns from 1 to 8: 1 is used\n"
      "\"*TextCPI=31\" is not a number of characters per inch from 2 to 30: the font's size "
      "decides\n"
      "\"*TextLPI=nan\" is not a number of lines per inch from 1 to 24: the font's size decides\n"
      "\"*TextLeft=-1\" is not a margin in points from 0 to 279: the usual one is used\n"
      "\"*TextRight=280\" is not a margin in points from 0 to 279: the usual one is used\n"
      "\"*TextTop=1e2\" is not a margin in points from 0 to 403: the usual one is used\n"
      "\"*TextBottom=404\" is not a margin in points from 0 to 403: the usual one is used\n");
  EXPECT_EQ(Pages("x"), Page(1, "0 0 (x) T\n"));
}

TEST_F(TextWordsJob, ValidValuesAreNoWarning) {
  for (const char *yes : {"1", "true", "Yes", "on"}) {
    settings_.Apply({{"*TextLineNumbers", yes}});
    EXPECT_EQ(WarningsOver(FilterText, settings_, "x"), "");
    EXPECT_EQ(CountOf(Pages("x"), "(1) L\n"), 1u) << yes;
  }
  for (const char *no : {"0", "false", "No", "off", ""}) {
    settings_.Apply({{"*TextLineNumbers", no}});
    EXPECT_EQ(WarningsOver(FilterText, settings_, "x"), "");
    EXPECT_EQ(CountOf(Pages("x"), " L\n"), 0u) << no;
  }
}

TEST_F(TextWordsJob, APageIsTurnedForPrintersWithoutThatOption) {
  settings_.Apply({{"*Orientation", "Landscape"}});
  EXPECT_NE(Pages("x").find("[0 1 -1 0 595 0] concat\n"), std::string::npos) << Pages("x");
}

}  // namespace
