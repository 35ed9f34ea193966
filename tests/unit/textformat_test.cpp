// FormatMessage: whatever a translation contains, filling it is safe.
#include "textformat.h"

#include <gtest/gtest.h>

namespace {

struct Case {
  const char *rule;
  std::string format;
  std::string expected;  // with the arguments "one" and 2
};

class Format : public testing::TestWithParam<Case> {};

}  // namespace

TEST_P(Format, IsFilledWithATextAndANumber) {
  EXPECT_EQ(FormatMessage(GetParam().format, {"one", 2}), GetParam().expected)
      << "format: " << GetParam().format;
}

INSTANTIATE_TEST_SUITE_P(
    Rules, Format,
    testing::Values(Case{"TextAndNumber", "%s and %d", "one and 2"},
                    Case{"OtherNumber", "%s and %i", "one and 2"},
                    Case{"KindsDoNotHaveToMatch", "%d and %s", "one and 2"},
                    Case{"PercentSign", "100%% of %s", "100% of one"},
                    Case{"ArgumentsLeftOver", "only %s", "only one"},
                    Case{"NoPlaceholder", "plain", "plain"},
                    Case{"PlaceholdersLeftOver", "%s %d %s%i!", "one 2 !"},
                    Case{"WriteBackIsText", "%n%n%n %s", "%n%n%n one"},
                    Case{"HugeWidthIsText", "%999999999d %s", "%999999999d one"},
                    Case{"StarIsText", "%*d %s", "%*d one"},
                    Case{"PositionIsText", "%1$s %s", "%1$s one"},
                    Case{"PointerIsText", "%p %x %f %ld %s", "%p %x %f %ld one"},
                    Case{"LonelyPercentAtTheEnd", "%s %", "one %"},
                    Case{"PercentBeforePlaceholder", "%%s %s", "%s one"}, Case{"Empty", "", ""},
                    Case{"Utf8", "d\xC3\xA9j\xC3\xA0 %s", "d\xC3\xA9j\xC3\xA0 one"}),
    [](const auto &parameter) { return parameter.param.rule; });

TEST(FormatMessage, AnArgumentIsNeverReadAsAFormat) {
  EXPECT_EQ(FormatMessage("%s|%s", {"%s%n%%", "x"}), "%s%n%%|x");
}

TEST(FormatMessage, ANullTextCountsAsEmpty) {
  const char *none = nullptr;
  EXPECT_EQ(FormatMessage("<%s>", {none}), "<>");
}

TEST(FormatMessage, NumbersKeepTheirRange) {
  EXPECT_EQ(FormatMessage("%d %d %d", {-2147483647, 4294967295U, 9223372036854775807L}),
            "-2147483647 4294967295 9223372036854775807");
}

TEST(FormatMessage, AMillionPlaceholdersAreFilledInOneGo) {
  std::string format;
  for (int i = 0; i < 1'000'000; ++i) format += "%s";
  EXPECT_EQ(FormatMessage(format, {"x"}), "x");
}
