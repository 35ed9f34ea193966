// CHelp: reading the help file and looking blocks up.
#include "chelp.h"

#include <gtest/gtest.h>

#include <random>

#include "childprocess.h"
#include "coresupport.h"
#include "ignoreresult.h"
#include "temporarydirectory.h"

namespace {

constexpr char kMessages[] =
    "#ERR_UNABLE_TO_READ_FROM_FILE\ncannot read %s\n#ERR_FILE_CORRUPTED\n%s: bad block <%s>\n"
    "#ERR_HELP_NOT_FOUND\nno help for %s\n";

Owned<CHelp> Help(const std::string &text) {
  Owned<CHelp> help = CreateHelp("test");
  LineReader lines(text);
  EXPECT_FALSE(ReadHelp(help.get(), lines).has_value()) << text;
  return help;
}

std::string TextOf(const Owned<CHelp> &help, const char *name) {
  const char *text = HashText(help->helps.get(), name);
  return text == nullptr ? "(none)" : text;
}

// How reading a help file with `text` ends the process.
ChildResult ReadingOf(const std::string &path) {
  return RunInChild([&] {
    const ProgramMessages messages(kMessages);
    const Owned<CHelp> help = CreateHelp(path.c_str());
    fFillFromHelp_Function(help.get());
  });
}

}  // namespace

TEST(Help, ABlocksLinesAreEachFollowedByALineFeed) {
  EXPECT_EQ(TextOf(Help("#A_BEGIN\none\ntwo\n#A_END\n"), "A_BEGIN"), "one\ntwo\n");
}

TEST(Help, AnEmptyLineIsKeptInsideABlockAndDroppedOutside) {
  EXPECT_EQ(TextOf(Help("\n\n#A_BEGIN\none\n\ntwo\n#A_END\n\n"), "A_BEGIN"), "one\n\ntwo\n");
}

TEST(Help, TheNameOfTheClosingLineIsNotCompared) {
  const Owned<CHelp> help = Help("#A_BEGIN\ntext\n#B_END\n");
  EXPECT_EQ(Keys(help->helps.get()), (std::vector<std::string>{"A_BEGIN"}));
  EXPECT_EQ(TextOf(help, "A_BEGIN"), "text\n");
}

TEST(Help, LinesOutsideAnyBlockStartTheNextOnesText) {
  EXPECT_EQ(TextOf(Help("outside\n#A_BEGIN\ninside\n#A_END\n"), "A_BEGIN"), "outside\ninside\n");
  EXPECT_EQ(TextOf(Help("#A_BEGIN\n#A_END\nx\n#B_BEGIN\n#B_END\n"), "B_BEGIN"), "x\n");
}

TEST(Help, CommentsAreIgnoredInsideABlockToo) {
  EXPECT_EQ(TextOf(Help("##c\n#A_BEGIN\none\n##c_END\n#A_END\n"), "A_BEGIN"), "one\n");
}

TEST(Help, ALanguageLineInsideABlockIsALanguageLine) {
  const Owned<CHelp> help = Help("#A_BEGIN\none\n#language\nEnglish\ntwo\n#A_END\n");
  EXPECT_EQ(TextOf(help, "A_BEGIN"), "one\ntwo\n");
  EXPECT_STREQ(fGet_CString_Value_Function(help->language.get()), "English");
}

TEST(Help, ALineThatOnlyLooksLikeAMarkerIsText) {
  EXPECT_EQ(TextOf(Help("#A_BEGIN\nA_END\n#A_END \n#\n#A_END\n"), "A_BEGIN"),
            "A_END\n#A_END \n#\n");
}

TEST(Help, TheLaterOfTwoBlocksOfOneNameCounts) {
  EXPECT_EQ(TextOf(Help("#A_BEGIN\none\n#A_END\n#A_BEGIN\ntwo\n#A_END\n"), "A_BEGIN"), "two\n");
}

TEST(Help, ABlockThatIsNotClosedIsDropped) {
  EXPECT_TRUE(HashIsEmpty(Help("#A_BEGIN\none\n")->helps.get()));
}

TEST(Help, AClosingLineWithoutLineFeedAtTheEndOfTheFileLosesACharacterAndIsText) {
  EXPECT_TRUE(HashIsEmpty(Help("#A_BEGIN\none\n#A_END")->helps.get()));
}

TEST(Help, LinesThatAreNoUtf8AreReadAsLatin1) {
  EXPECT_EQ(TextOf(Help("#A_BEGIN\n\xE9t\xE9\n#A_END\n"), "A_BEGIN"), "\xC3\xA9t\xC3\xA9\n");
}

TEST(Help, ALongBlockIsReadWhole) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "a line of help\n";
  EXPECT_EQ(TextOf(Help("#A_BEGIN\n" + text + "#A_END\n"), "A_BEGIN"), text);
}

TEST(Help, ABlockOpenedInsideAnotherEndsTheProcessWithStatus5AndNamesTheOpenOne) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("h", "#A_BEGIN\n#B_BEGIN\n");
  const ChildResult result = ReadingOf(path);
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.errors, path + ": bad block <A_BEGIN>\n");
}

TEST(Help, ABlockClosedWithoutBeingOpenedEndsTheProcessWithStatus5AndAnEmptyName) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("h", "#A_BEGIN\n#A_END\n#A_END\n");
  const ChildResult result = ReadingOf(path);
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.errors, path + ": bad block <>\n");
}

TEST(Help, TheReaderTellsTheLineOfTheError) {
  const Owned<CHelp> help = CreateHelp("test");
  LineReader lines("##c\n#A_BEGIN\nx\n#B_BEGIN\n");
  const std::optional<HelpError> error = ReadHelp(help.get(), lines);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->line, 4);
  EXPECT_EQ(error->block, "A_BEGIN");
}

TEST(Help, AFileThatCannotBeOpenedEndsTheProcessWithStatus3) {
  const ChildResult result = ReadingOf("/nonexistent/KPX.help");
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.errors, "cannot read /nonexistent/KPX.help\n");
}

TEST(Help, AMissingBlockIsReportedAndItsNameReturned) {
  const ChildResult result = RunInChild([] {
    const ProgramMessages messages(kMessages);
    const Owned<CHelp> help = Help("#A_BEGIN\nx\n#A_END\n");
    const char *name = "KPX_TOOL_BEGIN";
    if (fGetHelp_Function(help.get(), name) != name) _exit(1);
    if (std::string(fGetHelp_Function(help.get(), "A_BEGIN")) != "x\n") _exit(2);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "no help for KPX_TOOL_BEGIN\n");
}

TEST(Help, RandomBytesAreReadOrRefused) {
  std::mt19937 random(10);
  const char *const lines[] = {"#A_BEGIN", "#A_END", "#language", "##", "", "text", "\xE9"};
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (int i = 0; i < 30; ++i) {
      text += lines[random() % 7];
      if (random() % 10 == 0) text += static_cast<char>(random());
      text += random() % 5 == 0 ? "\r\n" : "\n";
    }
    const Owned<CHelp> help = CreateHelp("test");
    LineReader reader(text);
    IgnoreResult(ReadHelp(help.get(), reader), "a faulty text counts up to its fault");
    for (const auto [name, block] : Pairs<CString>(help->helps.get())) {
      ASSERT_TRUE(std::string_view(name).ends_with("_BEGIN"));
      ASSERT_TRUE(IsValidUtf8(block->value.View()));
    }
  }
}

TEST(Help, CloneHasFileTableAndLanguageOfItsOwn) {
  Owned<CHelp> help = Help("#language\nEnglish\n#A_BEGIN\nx\n#A_END\n");
  const Owned<CHelp> clone = fClone_CHelp_Function(help.get());
  help.reset();
  EXPECT_EQ(TextOf(clone, "A_BEGIN"), "x\n");
  EXPECT_STREQ(fGet_CString_Value_Function(clone->language.get()), "English");
  EXPECT_STREQ(fGet_CString_Value_Function(clone->file_name.get()), "test");
}

TEST(Help, WithoutLanguageThereIsNoClone) {
  EXPECT_EQ(fClone_CHelp_Function(Help("#A_BEGIN\n#A_END\n").get()), nullptr);
}

TEST(Help, NullArguments) {
  EXPECT_EQ(CreateHelp(nullptr), nullptr);
  EXPECT_EQ(fGetHelp_Function(nullptr, "A"), nullptr);
  EXPECT_EQ(fDelete_CHelp_Function(nullptr), 0);
  fFillFromHelp_Function(nullptr);  // does nothing
  EXPECT_EQ(fClone_CHelp_Function(nullptr), nullptr);
  EXPECT_EQ(fCHelp_Class_ID_Function(), 210);
  EXPECT_STREQ(fCHelp_Class_Name_Function(), "CHelp");
}
