// Lines and numbers of the files that the program writes.
#include "textline.h"

#include <gtest/gtest.h>

#include "textencoding.h"

namespace {

std::string Line(std::string_view line) {
  std::string text = "before\n";
  AppendTextLine(text, line);
  EXPECT_TRUE(text.starts_with("before\n"));
  return text.substr(7);
}

TEST(AppendTextLine, EndsTheLineWithALineFeed) {
  EXPECT_EQ(Line("value"), "value\n");
  EXPECT_EQ(Line(""), "\n");
}

TEST(AppendTextLine, WritesALineFeedInsideAsOneBlank) {
  EXPECT_EQ(Line("10.0.0.1\n#end_queue\n"), "10.0.0.1 #end_queue \n");
}

TEST(AppendTextLine, CutsALineAtTheLongestThatReadersTakeAsOne) {
  EXPECT_EQ(Line(std::string(kMaxLine, 'x')), std::string(kMaxLine, 'x') + "\n");
  EXPECT_EQ(Line(std::string(kMaxLine + 1, 'x')), std::string(kMaxLine, 'x') + "\n");
}

TEST(AppendTextLine, NeverCutsInsideACharacter) {
  const std::string head(kMaxLine - 1, 'x');
  EXPECT_EQ(Line(head + "\xC3\xA4" + "tail"), head + "\n");
}

TEST(IsCommentOrEmpty, IsTrueOfNothingAndOfTwoNumberSignsAtTheStart) {
  for (const char *line : {"", "##", "## text"}) EXPECT_TRUE(IsCommentOrEmpty(line)) << line;
  for (const char *line : {" ", " ##", "#", "#queue", "a##"}) {
    EXPECT_FALSE(IsCommentOrEmpty(line)) << line;
  }
}

TEST(WholeNumber, RoundsToTheNearestWholeNumber) {
  EXPECT_EQ(WholeNumber(209.6), "210");
  EXPECT_EQ(WholeNumber(209.4), "209");
  EXPECT_EQ(WholeNumber(-5), "-5");
  EXPECT_EQ(WholeNumber(1e20), "100000000000000000000");
}

TEST(NumberFromText, ReadsTheNumberAtTheStart) {
  EXPECT_EQ(NumberFromText("612"), 612);
  EXPECT_EQ(NumberFromText("  -5 pels"), -5);
  EXPECT_EQ(NumberFromText("209.6"), 209.6);
  EXPECT_EQ(NumberFromText("wide"), 0);
  EXPECT_EQ(NumberFromText(""), 0);
}

std::string Joined(const std::vector<KeyValue> &settings) {
  std::string text;
  for (const KeyValue &setting : settings) text += setting.key + "=" + setting.value + ";";
  return text;
}

TEST(KeyValues, CommentsAndEmptyLinesAreLeftOut) {
  EXPECT_EQ(Joined(KeyValuesOf("## note\n\n*A=1\nno sign\n=x\n*B=2")), "*A=1;*B=2;");
}

TEST(KeyValues, AValueEndsAtASecondEqualsSign) {
  EXPECT_EQ(Joined(KeyValuesOf("*A=a=b\n")), "*A=a;");
}

TEST(KeyValues, LinesAreUtf8OrLatin1) {
  EXPECT_EQ(Joined(KeyValuesOf("*A=\xE9\n*B=é\n")), "*A=é;*B=é;");
}

}  // namespace
