// CMessages: reading the catalogue and looking texts up.
#include "cmessages.h"

#include <gtest/gtest.h>

#include <random>

#include "childprocess.h"
#include "coresupport.h"
#include "temporarydirectory.h"

namespace {

Owned<CMessages> Catalogue(const std::string &text) {
  Owned<CMessages> catalogue = CreateMessages("test");
  LineReader lines(text);
  ReadMessages(catalogue.get(), lines);
  return catalogue;
}

std::string TextOf(const Owned<CMessages> &catalogue, const char *key) {
  const char *text = HashText(catalogue->messages.get(), key);
  return text == nullptr ? "(none)" : text;
}

}  // namespace

TEST(Messages, CommentsAndBlankLinesBetweenPairsChangeNothing) {
  const Owned<CMessages> plain = Catalogue("#A\none\n#B\ntwo\n");
  const Owned<CMessages> commented = Catalogue("##c\n\n#A\none\n\n##c\n##\n#B\ntwo\n\n");
  EXPECT_EQ(Keys(plain->messages.get()), Keys(commented->messages.get()));
  EXPECT_EQ(TextOf(commented, "A"), "one");
  EXPECT_EQ(TextOf(commented, "B"), "two");
}

TEST(Messages, AnAbsentKeyIsReturnedItselfAndReportedOnce) {
  const ChildResult result = RunInChild([] {
    const Owned<CMessages> catalogue = Catalogue("#ERR_TRANS_NOT_FOUND\nNo text for %s.\n");
    const char *key = "MISSING";
    if (fTranslateMessage_Function(catalogue.get(), key) != key) _exit(1);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "No text for MISSING.\n");
}

TEST(Messages, WithoutTheReportsTextAConstantStandsForIt) {
  const ChildResult result = RunInChild([] {
    const Owned<CMessages> catalogue = Catalogue("");
    fTranslateMessage_Function(catalogue.get(), "MISSING");
  });
  EXPECT_EQ(result.errors, "Translation not found for MISSING\n");
}

TEST(Messages, TheReportsOwnKeyIsNotReported) {
  const ChildResult result = RunInChild([] {
    const Owned<CMessages> catalogue = Catalogue("");
    const char *text = fTranslateMessage_Function(catalogue.get(), "ERR_TRANS_NOT_FOUND");
    if (std::string(text) != "Translation not found for %s") _exit(1);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
}

TEST(Messages, TextsKeepTheirBlanks) {
  EXPECT_EQ(TextOf(Catalogue("#DEF_BTN_OK_TITLE\n  OK  \n"), "DEF_BTN_OK_TITLE"), "  OK  ");
}

TEST(Messages, ATextMayLookLikeAMarkerOrBeEmpty) {
  const Owned<CMessages> catalogue = Catalogue("#A\n##x\n#B\n\n#C\n#end_language\n");
  EXPECT_EQ(TextOf(catalogue, "A"), "##x");
  EXPECT_EQ(TextOf(catalogue, "B"), "");
  EXPECT_EQ(TextOf(catalogue, "C"), "#end_language");
}

TEST(Messages, TheLastTextOfAKeyCounts) {
  EXPECT_EQ(TextOf(Catalogue("#A\none\n#A\ntwo\n"), "A"), "two");
}

TEST(Messages, TheFirstCharacterOfAKeyLineIsAMarkerWhateverItIs) {
  EXPECT_EQ(TextOf(Catalogue("*A\none\n"), "A"), "one");
  EXPECT_EQ(TextOf(Catalogue("\xC2\xA7"
                             "A\none\n"),
                   "A"),
            "one");
}

TEST(Messages, StructureMarkersAreIgnoredAndTheLanguageIsRead) {
  const Owned<CMessages> catalogue = Catalogue(
      "#language\nOther\n#language\nEnglish\n#translation\n#A\none\n#end_translation\n"
      "#end_languages and more\n");
  EXPECT_STREQ(fGet_CString_Value_Function(catalogue->language.get()), "English");
  EXPECT_EQ(Keys(catalogue->messages.get()), (std::vector<std::string>{"A"}));
}

TEST(Messages, AFileThatDoesNotEndInALineFeedLosesItsLastCharacter) {
  EXPECT_EQ(TextOf(Catalogue("#A\none"), "A"), "on");
}

TEST(Messages, AKeyWithoutATextIsDropped) {
  EXPECT_EQ(Keys(Catalogue("#A\none\n#B\n")->messages.get()), (std::vector<std::string>{"A"}));
}

TEST(Messages, LinesThatAreNoUtf8AreReadAsLatin1) {
  EXPECT_EQ(TextOf(Catalogue("#A\n\xE9t\xE9\n"), "A"), "\xC3\xA9t\xC3\xA9");
  EXPECT_EQ(TextOf(Catalogue("#A\n\xC3\xA9\n"), "A"), "\xC3\xA9");
}

TEST(Messages, CarriageReturnsBelongToTheLines) {
  EXPECT_EQ(TextOf(Catalogue("#A\r\none\r\n"), "A\r"), "one\r");
}

TEST(Messages, AnOverLongLineIsReadAsSeveral) {
  const std::string text(kMaxLine, 'x');
  const Owned<CMessages> catalogue = Catalogue("#A\n" + text + "#B\none\n");
  EXPECT_EQ(TextOf(catalogue, "A"), text);
  EXPECT_EQ(TextOf(catalogue, "B"), "one");
}

TEST(Messages, RandomBytesAreRead) {
  std::mt19937 random(9);
  for (int round = 0; round < 200; ++round) {
    std::string bytes(random() % 3000, '\0');
    for (char &byte : bytes)
      byte = random() % 4 == 0 ? "#\n\r\0"[random() % 4] : static_cast<char>(random());
    const Owned<CMessages> catalogue = Catalogue(bytes);
    for (const auto [key, text] : Pairs<CString>(catalogue->messages.get())) {
      ASSERT_TRUE(IsValidUtf8(key));
      ASSERT_TRUE(IsValidUtf8(text->value.View()));
    }
  }
}

TEST(Messages, AFileThatCannotBeOpenedEndsTheProcessWithStatus3) {
  const ChildResult result = RunInChild([] {
    const Owned<CMessages> catalogue = CreateMessages("/nonexistent/messages.paf");
    fFillFromPaf_Function(catalogue.get());
  });
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.errors, "Unable to read file /nonexistent/messages.paf\n");
}

TEST(Messages, FillingAgainMakesANewTable) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("messages.paf", "#A\none\n");
  const Owned<CMessages> catalogue = CreateMessages(path.c_str());
  fFillFromPaf_Function(catalogue.get());
  EXPECT_EQ(TextOf(catalogue, "A"), "one");
  directory.Write("messages.paf", "#B\ntwo\n");
  fFillFromPaf_Function(catalogue.get());
  EXPECT_EQ(Keys(catalogue->messages.get()), (std::vector<std::string>{"B"}));
}

TEST(Messages, CloneHasFileTableAndLanguageOfItsOwn) {
  Owned<CMessages> catalogue = Catalogue("#language\nEnglish\n#A\none\n");
  const Owned<CMessages> clone = fClone_CMessages_Function(catalogue.get());
  catalogue.reset();
  EXPECT_EQ(TextOf(clone, "A"), "one");
  EXPECT_STREQ(fGet_CString_Value_Function(clone->language.get()), "English");
  EXPECT_STREQ(fGet_CString_Value_Function(clone->file_name.get()), "test");
}

TEST(Messages, WithoutLanguageOrTableThereIsNoClone) {
  const Owned<CMessages> catalogue = Catalogue("#A\none\n");
  EXPECT_EQ(fClone_CMessages_Function(catalogue.get()), nullptr);
  EXPECT_EQ(fClone_CMessages_Function(nullptr), nullptr);
}

TEST(Messages, NullArguments) {
  EXPECT_EQ(CreateMessages(nullptr), nullptr);
  EXPECT_EQ(fTranslateMessage_Function(nullptr, "A"), nullptr);
  EXPECT_EQ(fDelete_CMessages_Function(nullptr), 0);
  fFillFromPaf_Function(static_cast<CMessages *>(nullptr));  // does nothing
  EXPECT_EQ(fCMessages_Class_ID_Function(), 200);
  EXPECT_STREQ(fCMessages_Class_Name_Function(), "CMessages");
}

TEST(ProgramMessages, ReportPrintsTheMessageAndAddsItToTheList) {
  const ProgramMessages messages("#ERR_X\n%s failed with %d\n");
  const Owned<CList> errors = CreateList();
  testing::internal::CaptureStderr();
  G_Report(errors.get(), "ERR_X", {"lp", 3});
  G_Report(nullptr, "ERR_X", {"cp", 4});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "lp failed with 3\ncp failed with 4\n");
  EXPECT_EQ(Texts(errors.get()), (std::vector<std::string>{"lp failed with 3"}));
}

TEST(ProgramMessages, FatalPrintsTheMessageAndEndsTheProcess) {
  const ProgramMessages messages("#ERR_X\n%s failed\n");
  const ChildResult result = RunInChild([] { G_Fatal(5, "ERR_X", {"lp"}); });
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.errors, "lp failed\n");
}

TEST(ProgramMessages, AKeyStandsForItselfWhileNoCatalogueIsLoaded) {
  EXPECT_STREQ(G_Translate("ERR_X"), "ERR_X");
}
