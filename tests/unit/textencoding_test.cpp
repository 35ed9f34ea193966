// Text at the edges: UTF-8, ISO-8859-1, line cutting, standard error in the locale's encoding.
#include "textencoding.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <clocale>
#include <random>

#include "childprocess.h"
#include "temporarydirectory.h"
#include "textfile.h"

namespace {

using Strings = std::vector<std::string>;

Strings AllLines(const std::string &text, LineReader::Form form = LineReader::Form::Text) {
  LineReader reader(text, form);
  Strings lines;
  while (const std::optional<std::string> line = reader.Next()) lines.push_back(*line);
  return lines;
}

std::string RandomBytes(std::mt19937 &random, size_t size) {
  std::string bytes(size, '\0');
  for (char &byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

}  // namespace

TEST(Utf8, WellFormedSequencesAreAccepted) {
  for (const char *text : {"", "plain", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x96\xA8",
                           "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(IsValidUtf8(text)) << testing::PrintToString(std::string(text));
  }
}

TEST(Utf8, IllFormedSequencesAreRefused) {
  for (const char *text :
       {"\x80", "\xC3", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xED\xA0\x80",
        "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "a\xE9z"}) {
    EXPECT_FALSE(IsValidUtf8(text)) << testing::PrintToString(std::string(text));
  }
}

TEST(Utf8, EveryLatin1ByteBecomesItsCharacter) {
  for (int code = 1; code < 256; ++code) {
    const std::string text = Utf8FromLatin1(std::string(1, static_cast<char>(code)));
    ASSERT_TRUE(IsValidUtf8(text)) << code;
    ASSERT_EQ(text.size(), code < 128 ? 1U : 2U) << code;
  }
  EXPECT_EQ(Utf8FromLatin1("\xE9\xFF"), "\xC3\xA9\xC3\xBF");
}

TEST(Utf8, ALineIsDecodedAsLatin1OnlyWhenItIsNotUtf8) {
  EXPECT_EQ(DecodeLine("\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(DecodeLine("\xE9t\xE9"), "\xC3\xA9t\xC3\xA9");
}

TEST(Utf8, ShownTextKeepsItsUtf8BesideAFileNameInLatin1) {
  EXPECT_EQ(DisplayText("Gr\xC3\xB6\xC3\x9F"
                        "e: caf\xE9"),
            "Gr\xC3\xB6\xC3\x9F"
            "e: caf\xC3\xA9");
  EXPECT_EQ(DisplayText("\xC3"), "\xC3\x83");
  EXPECT_EQ(DisplayText(""), "");
}

TEST(Utf8Prefix, NeverSplitsASequence) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x96\xA8z";
  for (size_t max = 0; max <= text.size() + 1; ++max) {
    const std::string_view prefix = Utf8Prefix(text, max);
    EXPECT_LE(prefix.size(), max);
    EXPECT_TRUE(IsValidUtf8(prefix)) << "cut at " << max;
    EXPECT_GT(prefix.size() + 4, std::min(max, text.size())) << "cut at " << max;
  }
}

TEST(Utf8Prefix, BytesThatAreNoUtf8AreCutAtTheLimit) {
  EXPECT_EQ(Utf8Prefix("\xA9\xA9\xA9\xA9\xA9\xA9", 4).size(), 4U);
  EXPECT_EQ(Utf8Prefix("abc\xA9\xA9", 4).size(), 4U);
  EXPECT_EQ(Utf8Prefix("abc\xA9", 3).size(), 3U);
}

TEST(LineReader, HandsOutLinesWithoutTheirFeed) {
  EXPECT_EQ(AllLines("one\n\ntwo\n"), (Strings{"one", "", "two"}));
}

TEST(LineReader, LosesNothingOfALastLineWithoutFeed) {
  EXPECT_EQ(AllLines("one\ntwo"), (Strings{"one", "two"}));
}

TEST(LineReader, AnEmptyBufferHasNoLine) { EXPECT_EQ(AllLines(""), Strings{}); }

TEST(LineReader, ACarriageReturnStays) {
  EXPECT_EQ(AllLines("one\r\ntwo\r\n"), (Strings{"one\r", "two\r"}));
}

TEST(LineReader, ALineOfTheLimitIsOneLine) {
  const std::string line(kMaxLine, 'x');
  EXPECT_EQ(AllLines(line + "\nnext\n"), (Strings{line, "next"}));
}

TEST(LineReader, TheRestOfALongerLineIsTheNextLine) {
  const std::string line(2 * kMaxLine + 5, 'x');
  EXPECT_EQ(AllLines(line + "\nnext\n"),
            (Strings{std::string(kMaxLine, 'x'), std::string(kMaxLine, 'x'), "xxxxx", "next"}));
}

TEST(LineReader, ALongLineIsCutBetweenCharacters) {
  const std::string text = std::string(kMaxLine - 1, 'x') + "\xC3\xA9z\n";
  EXPECT_EQ(AllLines(text), (Strings{std::string(kMaxLine - 1, 'x'), "\xC3\xA9z"}));
}

TEST(LineReader, PiecesOfALongLineShareItsNumber) {
  const std::string text = "a\n" + std::string(kMaxLine + 1, 'x') + "\nb\n";
  LineReader reader(text);
  std::vector<int> numbers;
  while (reader.Next()) numbers.push_back(reader.LineNumber());
  EXPECT_EQ(numbers, (std::vector<int>{1, 2, 2, 3}));
}

TEST(LineReader, ATextEndsAtItsFirstNulByte) {
  const std::string text("one\0more\ntwo\n", 13);
  EXPECT_EQ(AllLines(text), (Strings{"one", "two"}));
  EXPECT_EQ(AllLines(text, LineReader::Form::Bytes), (Strings{std::string("one\0more", 8), "two"}));
}

TEST(LineReader, Latin1LinesAreDecodedOneByOne) {
  EXPECT_EQ(AllLines("\xE9\n\xC3\xA9\n"), (Strings{"\xC3\xA9", "\xC3\xA9"}));
  EXPECT_EQ(AllLines("\xE9\n", LineReader::Form::Bytes), (Strings{"\xE9"}));
}

TEST(LineReader, RandomBytesAreReadToTheEndAsValidText) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    const std::string bytes = RandomBytes(random, random() % 5000);
    for (const std::string &line : AllLines(bytes)) ASSERT_TRUE(IsValidUtf8(line));
    std::string joined;
    LineReader reader(bytes, LineReader::Form::Bytes);
    while (const std::optional<std::string> line = reader.Next()) {
      ASSERT_LE(line->size(), kMaxLine);
      joined += *line;
      if (reader.HadLineFeed()) joined += '\n';
    }
    ASSERT_EQ(joined, bytes);
  }
}

TEST(LineReader, DroppingLastTakesTheLastCharacterOfALastLineWithoutFeed) {
  LineReader reader("one\ntw\xC3\xA9");
  EXPECT_EQ(reader.NextDroppingLast(), "one");
  EXPECT_EQ(reader.NextDroppingLast(), "tw");
  EXPECT_EQ(reader.NextDroppingLast(), std::nullopt);
}

TEST(ReadWholeFile, ReadsAnyBytes) {
  std::mt19937 random(8);
  const TemporaryDirectory directory;
  const std::string bytes = RandomBytes(random, 100'000);
  EXPECT_EQ(ReadWholeFile(directory.Write("f", bytes)), bytes);
  EXPECT_EQ(ReadWholeFile(directory.Write("empty", "")), "");
}

TEST(ReadFileStart, ReadsNoMoreThanAsked) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("f", std::string(20000, 'a') + "b");
  EXPECT_EQ(ReadFileStart(path, 0), "");
  EXPECT_EQ(ReadFileStart(path, 7), "aaaaaaa");
  EXPECT_EQ(ReadFileStart(path, 20000), std::string(20000, 'a'));
  EXPECT_EQ(ReadFileStart(path, 30000), std::string(20000, 'a') + "b");
  EXPECT_EQ(ReadFileStart(directory.Path("none"), 7), std::nullopt);
  EXPECT_EQ(ReadFileStart(directory.Path(), 7), std::nullopt);
}

TEST(LineReader, LendsTheSameLinesAsItHandsOut) {
  const std::string buffer =
      "one\n\xE9t\xE9\n\n" + std::string(1030, 'x') + "\nlast" + std::string("\0z", 2);
  for (const auto form : {LineReader::Form::Text, LineReader::Form::Bytes}) {
    LineReader handing(buffer, form);
    LineReader lending(buffer, form);
    while (const std::optional<std::string> line = handing.Next()) {
      const std::optional<std::string_view> lent = lending.NextView();
      ASSERT_TRUE(lent);
      EXPECT_EQ(*lent, *line);
      EXPECT_EQ(lending.LineNumber(), handing.LineNumber());
    }
    EXPECT_EQ(lending.NextView(), std::nullopt);
  }
}

TEST(Utf8, IsJudgedRightWhereverABadByteStands) {
  for (size_t length = 1; length < 40; ++length) {
    EXPECT_TRUE(IsValidUtf8(std::string(length, 'a'))) << length;
    for (size_t at = 0; at < length; ++at) {
      std::string text(length, 'a');
      text[at] = '\xE9';
      EXPECT_FALSE(IsValidUtf8(text)) << at << " of " << length;
      EXPECT_TRUE(IsValidUtf8(text.replace(at, 1, "\xC3\xA9"))) << at << " of " << length;
    }
  }
}

TEST(ReadWholeFile, FailsForAMissingFileAndForADirectory) {
  const TemporaryDirectory directory;
  EXPECT_EQ(ReadWholeFile(directory.Path("none")), std::nullopt);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(ReadWholeFile(directory.Path()), std::nullopt);
  EXPECT_EQ(errno, EISDIR);
}

namespace {

// What PrintError writes for `text` under a locale, which must exist.
std::string PrintedUnder(const char *locale, const std::string &text) {
  const ChildResult result = RunInChild([&] {
    if (std::setlocale(LC_ALL, locale) == nullptr) _exit(99);
    PrintError(text);
  });
  EXPECT_EQ(result.status, 0) << "locale " << locale;
  return result.errors;
}

// The encoded form of the euro sign and of "é".
constexpr char kEuroAndE[] = "\xE2\x82\xAC\xC3\xA9!";

}  // namespace

TEST(PrintError, WritesUtf8UnderAUtf8Locale) {
  EXPECT_EQ(PrintedUnder("C.UTF-8", kEuroAndE), kEuroAndE);
}

TEST(PrintError, WritesAQuestionMarkForWhatTheLocaleLacks) {
  EXPECT_EQ(PrintedUnder("C", kEuroAndE),
            "?"
            "?!");
}

TEST(PrintError, WritesPlainQuotationMarksAndBlanksWhereTheLocaleHasNoOthers) {
  EXPECT_EQ(PrintedUnder("C", "\u00ABfile\u00BB\u00A0!"), "\"file\" !");
  EXPECT_EQ(PrintedUnder("C.UTF-8", "\u00ABfile\u00BB\u00A0!"), "\u00ABfile\u00BB\u00A0!");
}

TEST(PrintError, WritesLatin1UnderALatin1Locale) {
  const TemporaryDirectory directory;
  const std::string make = "localedef -i de_DE -f ISO-8859-1 '" + directory.Path("latin1") + "'";
  ASSERT_EQ(std::system(make.c_str()), 0) << make;
  ASSERT_EQ(setenv("LOCPATH", directory.Path().c_str(), 1), 0);
  const std::string printed = PrintedUnder("latin1", kEuroAndE);
  unsetenv("LOCPATH");
  EXPECT_EQ(printed, "?\xE9!");
}

TEST(PrintError, LongTextsAreConvertedWhole) {
  std::string text;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    text += "ab\xC3\xA9";
    expected += "ab?";
  }
  EXPECT_EQ(PrintedUnder("C", text), expected);
  EXPECT_EQ(PrintedUnder("C", "broken \xC3"), "broken ?");
}

TEST(PrintError, TheLineFormAddsALineFeed) {
  EXPECT_EQ(RunInChild([] { PrintErrorLine("text"); }).errors, "text\n");
}
