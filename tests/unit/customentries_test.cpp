// The rules of a queue's own paper sizes and media types.
#include "customentries.h"

#include <gtest/gtest.h>

#include "cprinter.h"
#include "entryfilters.h"
#include "must.h"
#include "optionstate.h"
#include "pafsupport.h"
#include "queuesupport.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kMediaFeature[] =
    "#uio\n#id\n*MediaType\n#translation\nPaper type\n#default\nPlain\n#type\nPickOne\n"
    "#_options\n#_option\n#id\nPlain\n#translation\nPlain paper\n#end_option\n"
    "#_option\n#id\nThick\n#translation\nCard\n#end_option\n#end_options\n#end_ui\n";

constexpr CustomKind kPaper = CustomKind::kPaper;
constexpr CustomKind kMedia = CustomKind::kMedia;

class CustomEntriesTest : public testing::Test {
 protected:
  // A queue with a paper "Ticket" and a media type "Gloss", on a printer with two paper sizes, two
  // media types and limits for custom papers.
  void SetUp() override {
    const std::string paf = std::string(kFullPaf) + kMediaFeature;
    LineReader lines(paf);
    PafContent content = std::get<PafContent>(ReadPaf(lines));
    printer_ = CreatePrinter("printer.paf");
    printer_->features = std::move(content.features);
    printer_->installable_options = std::move(content.installable_options);
    printer_->constraints = std::move(content.constraints);
    printer_->custom_paper = std::move(content.custom_paper);
    SetCurrentPrinter(printer_.get());
    Owned<CPrintQueue> queue = MakeQueue();
    Must(HashPutText(queue->Options.get(), "*PageSize", "A4"));
    Must(HashPutText(queue->Options.get(), "*MediaType", "Plain"));
    PutPaper(queue.get(), "Ticket", 612, 595);
    PutMedia(queue.get(), "Gloss", "Gloss");
    SetCurrentQueue(Text("lp1"), std::move(queue));
  }
  void TearDown() override {
    SetCurrentQueue(nullptr, nullptr);
    SetCurrentPrinter(nullptr);
  }

  Owned<CPrinter> printer_;
};

}  // namespace

TEST(CustomPaperName, LeavesOutItsThirtyTwoForbiddenCharacters) {
  EXPECT_EQ("A4x", FilterCustomPaperName("A4 x"));
  EXPECT_EQ("", FilterCustomPaperName("'=,!@#$%^&*()-_+[]{}:;\"\\|,.<>/? "));
}

TEST(CustomMediaName, LeavesOutItsThirtyTwoForbiddenCharacters) {
  EXPECT_EQ("", FilterCustomMediaName("'=,!@#$%^&*()+-[]{}\":;.<>?/\\|`~ "));
}

TEST(CustomNames, DifferInUnderscoreBackQuoteAndTilde) {
  EXPECT_EQ("a`b~c", FilterCustomPaperName("a`b~_c"));
  EXPECT_EQ("ab_c", FilterCustomMediaName("a`b~_c"));
}

TEST(CustomNames, KeepLettersDigitsAndCharactersBeyondAsciiWhole) {
  for (const auto filter : {FilterCustomPaperName, FilterCustomMediaName}) {
    EXPECT_EQ("azAZ09", filter("azAZ09"));
    EXPECT_EQ("Büro日本€", filter("Bü-ro 日本.€"));
  }
}

TEST_F(CustomEntriesTest, AnEmptyNameIsRefused) {
  EXPECT_EQ(CustomNameFault::kEmpty, CheckCustomName(kPaper, "", nullptr));
  EXPECT_EQ(CustomNameFault::kEmpty, CheckCustomName(kMedia, "", "Gloss"));
}

TEST_F(CustomEntriesTest, AFreeNameMayBeUsed) {
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kPaper, "Label", nullptr));
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kPaper, "Gloss", nullptr));
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kMedia, "Ticket", nullptr));
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kPaper, "ticket", nullptr));
}

TEST_F(CustomEntriesTest, TheNameOfAnotherEntryIsRefused) {
  EXPECT_EQ(CustomNameFault::kTaken, CheckCustomName(kPaper, "Ticket", nullptr));
  EXPECT_EQ(CustomNameFault::kTaken, CheckCustomName(kMedia, "Gloss", nullptr));
  AddCustomPaper("Label", 300, 400);
  EXPECT_EQ(CustomNameFault::kTaken, CheckCustomName(kPaper, "Ticket", "Label"));
}

TEST_F(CustomEntriesTest, AnEditedEntryMayKeepItsName) {
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kPaper, "Ticket", "Ticket"));
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kMedia, "Gloss", "Gloss"));
}

TEST_F(CustomEntriesTest, DisplayTextsAndIdentifiersOfThePrintersOptionsAreRefused) {
  for (const char *name : {"A4", "A4 sheet", "Letter", "US Letter"}) {
    EXPECT_EQ(CustomNameFault::kStandard, CheckCustomName(kPaper, name, nullptr)) << name;
    EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kMedia, name, nullptr)) << name;
  }
  for (const char *name : {"Plain", "Plain paper", "Thick", "Card"}) {
    EXPECT_EQ(CustomNameFault::kStandard, CheckCustomName(kMedia, name, nullptr)) << name;
    EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kPaper, name, nullptr)) << name;
  }
}

TEST_F(CustomEntriesTest, EveryNameIsRefusedInSilenceWhileTheQueueLacksTheSetting) {
  HashRemove(G_QueueFeatures_hash, "*PageSize");
  EXPECT_EQ(CustomNameFault::kNoSetting, CheckCustomName(kPaper, "Label", nullptr));
  EXPECT_EQ(CustomNameFault::kTaken, CheckCustomName(kPaper, "Ticket", nullptr));
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kMedia, "Label", nullptr));
  HashRemove(G_QueueFeatures_hash, "*MediaType");
  EXPECT_EQ(CustomNameFault::kNoSetting, CheckCustomName(kMedia, "Label", nullptr));
  EXPECT_EQ(nullptr, CustomNameMessage(kPaper, CustomNameFault::kNoSetting));
  EXPECT_EQ(nullptr, CustomNameMessage(kMedia, CustomNameFault::kNoSetting));
}

TEST_F(CustomEntriesTest, AnOptionWithoutDisplayTextIsKnownByItsIdentifier) {
  CHash *options =
      fGet_Options_Function(HashValue<CFeature>(printer_->features.get(), "*PageSize"));
  Must(HashPut(options, "A6", CreateString()));
  EXPECT_EQ(CustomNameFault::kStandard, CheckCustomName(kPaper, "A6", nullptr));
  EXPECT_EQ(CustomNameFault::kNone, CheckCustomName(kPaper, "A7", nullptr));
}

TEST(CustomNameMessage, NamesTheFaultInTheWordsOfItsKind) {
  EXPECT_STREQ("DCPS_Dlg_Paper_Error1", CustomNameMessage(kPaper, CustomNameFault::kEmpty));
  EXPECT_STREQ("DCPS_Dlg_Paper_Error2", CustomNameMessage(kPaper, CustomNameFault::kTaken));
  EXPECT_STREQ("DCPS_Dlg_Paper_Error3", CustomNameMessage(kPaper, CustomNameFault::kStandard));
  EXPECT_STREQ("DCMT_Dlg_Media_Error1", CustomNameMessage(kMedia, CustomNameFault::kEmpty));
  EXPECT_STREQ("DCMT_Dlg_Media_Error2", CustomNameMessage(kMedia, CustomNameFault::kTaken));
  EXPECT_STREQ("DCMT_Dlg_Media_Error3", CustomNameMessage(kMedia, CustomNameFault::kStandard));
  EXPECT_EQ(nullptr, CustomNameMessage(kPaper, CustomNameFault::kNone));
}

TEST_F(CustomEntriesTest, ButtonsFollowTheNumbersOfEntriesAndOfSelectedOnes) {
  struct Row {
    CustomKind kind;
    int defined;
    int selected;
    CustomButtons expected;
  };
  for (const Row &row : {Row{kPaper, 0, 0, {true, false, false}},
                         {kPaper, 7, 1, {true, true, true}},
                         {kPaper, 7, 2, {true, false, true}},
                         {kPaper, 8, 1, {false, true, true}},
                         {kPaper, 9, 0, {false, false, false}},
                         {kMedia, 8, 0, {true, false, false}},
                         {kMedia, 99, 100, {true, false, true}},
                         {kMedia, 100, 1, {false, true, true}}}) {
    const CustomButtons buttons = CustomButtonsFor(row.kind, row.defined, row.selected);
    const std::string shown = std::to_string(row.defined) + ", " + std::to_string(row.selected);
    EXPECT_EQ(row.expected.add, buttons.add) << shown;
    EXPECT_EQ(row.expected.edit, buttons.edit) << shown;
    EXPECT_EQ(row.expected.remove, buttons.remove) << shown;
  }
}

TEST_F(CustomEntriesTest, APrinterWithoutLimitsTakesNoCustomPapers) {
  printer_->custom_paper.reset();
  SetCurrentPrinter(printer_.get());
  const CustomButtons paper = CustomButtonsFor(kPaper, 1, 1);
  EXPECT_FALSE(paper.add);
  EXPECT_FALSE(paper.edit);
  EXPECT_TRUE(paper.remove);
  EXPECT_TRUE(CustomButtonsFor(kMedia, 1, 1).add);
}

TEST_F(CustomEntriesTest, AListShowsNameAndSizeOfAPaperAndTheNameOfAMediaType) {
  EXPECT_EQ((Strings{"Ticket", "215.9 × 209.9", "8.50 × 8.26"}), CustomRow(kPaper, "Ticket"));
  EXPECT_EQ(Strings{"Gloss"}, CustomRow(kMedia, "Gloss"));
}

TEST_F(CustomEntriesTest, AnAddedEntryIsFiledUnderItsName) {
  AddCustomPaper("Label", 300, 400);
  const auto *paper = HashValue<CCpsParams>(G_QueueCustomPapers_hash, "Label");
  ASSERT_NE(nullptr, paper);
  EXPECT_EQ(300, paper->width);
  EXPECT_EQ(400, paper->length);
  AddCustomMedia("Foil");
  const auto *media = HashValue<CCmtParams>(G_QueueCustomMedias_hash, "Foil");
  ASSERT_NE(nullptr, media);
  EXPECT_EQ("Foil", TextOrNull(fGetGuiName_Function(media)));
}

TEST_F(CustomEntriesTest, APaperIsNeverFiledWithLessThanOnePel) {
  AddCustomPaper("Nothing", 0, 0.4);
  const auto *paper = HashValue<CCpsParams>(G_QueueCustomPapers_hash, "Nothing");
  ASSERT_NE(nullptr, paper);
  EXPECT_EQ(1, paper->width);
  EXPECT_EQ(1, paper->length);
}
