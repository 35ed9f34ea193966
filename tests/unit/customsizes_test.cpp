// Units of custom paper sizes: rounding, conversion, ranges, what is shown.
#include "customsizes.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

#include "coresupport.h"
#include "cprinter.h"
#include "must.h"
#include "optionstate.h"
#include "temporarydirectory.h"

namespace {

constexpr char kUnitNames[] =
    "#DEF_BTN_PELS_TITLE\npels\n#DEF_BTN_INCHES_TITLE\ninches\n"
    "#DEF_BTN_MILLIMETERS_TITLE\nmillimetres\n";

std::string Range(const char *min, const char *max, int unit) {
  const ProgramMessages messages(kUnitNames);
  std::string text = "left over";
  EXPECT_EQ(1, BuildRange(min, max, unit, text));
  return text;
}

struct Conversion {
  int from;
  int to;
  double value;
  double expected;
};

void ExpectConversions(const std::vector<Conversion> &rows) {
  for (const Conversion &row : rows) {
    EXPECT_DOUBLE_EQ(row.expected, ConvertMetrics(row.from, row.to, row.value))
        << "from unit " << row.from << " to unit " << row.to << ": " << row.value;
  }
}

}  // namespace

TEST(Aproximate, RoundsHalvesUp) {
  EXPECT_EQ(2, Aproximate(1.5));
  EXPECT_EQ(3, Aproximate(2.5));
  EXPECT_EQ(1, Aproximate(0.5));
  EXPECT_EQ(612, Aproximate(611.5));
}

TEST(Aproximate, CutsOffLessThanAHalf) {
  EXPECT_EQ(0, Aproximate(0));
  EXPECT_EQ(0, Aproximate(0.49));
  EXPECT_EQ(1, Aproximate(1.49999));
  EXPECT_EQ(7, Aproximate(7));
}

TEST(Aproximate, CutsTheFractionOffBelowZero) {
  EXPECT_EQ(-2, Aproximate(-2.7));
  EXPECT_EQ(-2, Aproximate(-2.5));
  EXPECT_EQ(-2, Aproximate(-2));
}

TEST(ConvertMetrics, LeavesAValueInItsOwnUnitUnrounded) {
  ExpectConversions({{kPels, kPels, 3.7, 3.7},
                     {kInches, kInches, 8.123456, 8.123456},
                     {kMillimetres, kMillimetres, 209.97, 209.97},
                     {0, 0, 1.25, 1.25}});
}

TEST(ConvertMetrics, GoesThroughWholePels) {
  ExpectConversions({{kInches, kMillimetres, 8.5, 215.9},     // 612 pels
                     {kMillimetres, kInches, 210, 8.26},      // 595 pels, 8.2639 inches
                     {kPels, kInches, 3.7, 0.06},             // 4 pels, 0.0556 inches
                     {kPels, kMillimetres, 3.7, 1.4},         // 4 pels, 1.411 millimetres
                     {kInches, kMillimetres, 8.26, 209.9}});  // 594.72 are 595 pels
}

TEST(ConvertMetrics, GivesPelsAsWholeNumbers) {
  ExpectConversions({{kInches, kPels, 8.5, 612},
                     {kInches, kPels, 8.26, 595},
                     {kInches, kPels, 0.01, 1},
                     {kMillimetres, kPels, 210, 595},
                     {kMillimetres, kPels, 297, 842},
                     {kMillimetres, kPels, 25.4, 72}});
}

TEST(ConvertMetrics, GivesInchesWithTwoDecimalsAndMillimetresWithOne) {
  ExpectConversions({{kPels, kInches, 288, 4},
                     {kPels, kInches, 1008, 14},
                     {kPels, kInches, 595, 8.26},
                     {kPels, kMillimetres, 612, 215.9},
                     {kPels, kMillimetres, 595, 209.9},
                     {kPels, kMillimetres, 842, 297}});
}

TEST(ConvertMetrics, NeedNotComeBackToWhereItStarted) {
  EXPECT_DOUBLE_EQ(
      8.25, ConvertMetrics(kMillimetres, kInches, ConvertMetrics(kInches, kMillimetres, 8.25)));
  EXPECT_DOUBLE_EQ(
      209.9, ConvertMetrics(kInches, kMillimetres, ConvertMetrics(kMillimetres, kInches, 210)));
}

TEST(ConvertMetrics, CountsEveryOtherCodeAsPels) {
  ExpectConversions({{7, kInches, 72, 1}, {kInches, 7, 2, 144}, {0, kPels, 3.7, 4}});
}

TEST(Units, HaveTheirDecimalsAndSteps) {
  EXPECT_EQ(0, UnitDecimals(kPels));
  EXPECT_EQ(2, UnitDecimals(kInches));
  EXPECT_EQ(1, UnitDecimals(kMillimetres));
  EXPECT_EQ(1, UnitStep(kPels));
  EXPECT_EQ(0.01, UnitStep(kInches));
  EXPECT_EQ(0.1, UnitStep(kMillimetres));
}

TEST(BuildRange, ShowsBothLimitsInTheUnitWithItsDecimals) {
  EXPECT_EQ("( 288 - 1008 pels )", Range("288", "1008", kPels));
  EXPECT_EQ("( 4.00 - 14.00 inches )", Range("288", "1008", kInches));
  EXPECT_EQ("( 101.6 - 355.6 millimetres )", Range("288", "1008", kMillimetres));
}

TEST(BuildRange, CountsEveryOtherUnitAsMillimetres) {
  EXPECT_EQ("( 101.6 - 355.6 millimetres )", Range("288", "1008", 0));
  EXPECT_EQ("( 101.6 - 355.6 millimetres )", Range("288", "1008", 9));
}

TEST(BuildRange, ReadsLimitsWithAFractionAndMissingOnesAsZero) {
  EXPECT_EQ("( 4.01 - 14.00 inches )", Range("288.5", "1008.4", kInches));
  EXPECT_EQ("( 0 - 1008 pels )", Range(nullptr, "1008", kPels));
  EXPECT_EQ("( 0 - 0 pels )", Range("", "wide", kPels));
}

TEST(BuildRange, ReadsLimitsAlikeInEveryLocaleAndShowsThemInTheUsers) {
  const TemporaryDirectory directory;
  const std::string make = "localedef -i de_DE -f UTF-8 '" + directory.Path("comma") + "'";
  ASSERT_EQ(0, std::system(make.c_str()));
  setenv("LOCPATH", directory.Path().c_str(), 1);
  const char *set = std::setlocale(LC_NUMERIC, "comma");
  unsetenv("LOCPATH");
  ASSERT_NE(nullptr, set);
  const std::string text = Range("288.5", "1008", kInches);
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ("( 4,01 - 14,00 inches )", text);
}

TEST(RangeIn, ConvertsTheLimitsFromPels) {
  const MeasureRange range = RangeIn(kMillimetres, "288", "1008");
  EXPECT_DOUBLE_EQ(101.6, range.min);
  EXPECT_DOUBLE_EQ(355.6, range.max);
}

TEST(EnterableRange, IsThatOfTheLimitsInTheUnit) {
  const MeasureRange range = EnterableRange(kInches, "288", "1008");
  EXPECT_DOUBLE_EQ(4, range.min);
  EXPECT_DOUBLE_EQ(14, range.max);
}

TEST(EnterableRange, BeginsAtOnePelWhereTheLimitIsLess) {
  for (const char *limit : {"0", "0.3", "-5", "", "wide"}) {
    for (const int unit : {kPels, kInches, kMillimetres}) {
      const MeasureRange range = EnterableRange(unit, limit, "1008");
      EXPECT_EQ(1, ConvertMetrics(unit, kPels, range.min)) << limit << " in unit " << unit;
      EXPECT_DOUBLE_EQ(ConvertMetrics(kPels, unit, 1008), range.max);
    }
  }
}

TEST(EnterableRange, IsNeverUpturned) {
  for (const char *limit : {"0", "0.3", "100"}) {
    const MeasureRange range = EnterableRange(kPels, "288", limit);
    EXPECT_EQ(288, range.min);
    EXPECT_EQ(288, range.max) << limit;
  }
  EXPECT_EQ(1, EnterableRange(kPels, "0", "0").max);
}

TEST(PrinterLimit, ComesFromTheCurrentPrinterAndIsMissingWithoutCustomSizes) {
  const Owned<CPrinter> printer = CreatePrinter("printer.paf");
  SetCurrentPrinter(printer.get());
  EXPECT_EQ(nullptr, PrinterLimit("MinWidth"));
  printer->custom_paper = CreateHash();
  Must(HashPutText(printer->custom_paper.get(), "MinWidth", "288"));
  SetCurrentPrinter(printer.get());
  EXPECT_STREQ("288", PrinterLimit("MinWidth"));
  EXPECT_EQ(nullptr, PrinterLimit("MaxWidth"));
  SetCurrentPrinter(nullptr);
}
