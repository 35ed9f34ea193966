// What the option lists show, and the repairs that filling them makes in the queue's settings.
#include "optionlists.h"

#include <gtest/gtest.h>

#include "childprocess.h"
#include "coresupport.h"
#include "featuretable.h"
#include "ignoreresult.h"
#include "optionsupport.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kMessages[] =
    "#ERR_UNEXPECTED2\nunexpected2 <%s>\n"
    "#CONSTR_Reason\nreason <%s: %s> <%s: %s>\n"
    "#CONSTR_Dlg_Message_PaperType_Duplex\ntype and duplex <%s> <%s>\n"
    "#CONSTR_Dlg_Message_PaperSize_Duplex\nsize and duplex <%s> <%s>\n";

class OptionLists : public testing::Test {
 protected:
  OptionLists() : messages_(kMessages) {
    options_.Feature({"*PageSize", "A4", {{"A4", "A4 sheet"}, {"Letter", "US Letter"}}});
    options_.Feature({"*MediaType", "Plain", {{"Plain", "Plain paper"}, {"Thick", "Thick"}}});
    options_.Feature({"*Duplex", "None", {{"None", "Off"}, {"Long", "Long edge"}}});
    options_.Feature({"*OutputBin", "Top", {{"Top", "Top bin"}, {"Stacker", "Stacker"}}});
    SetCurrentPrinter(options_.Printer());
  }

  static OptionList ListOf(const char *feature) {
    return G_GetOptionsForFeature(G_PrinterFeatures_hash, feature).value();
  }

  ProgramMessages messages_;
  CurrentOptions options_;
};

TEST_F(OptionLists, FreeOptionsHaveFourBlanksBeforeTheirTexts) {
  EXPECT_EQ(RowTexts(ListOf("*Duplex")), (Strings{"    Long edge", "    Off"}));
}

TEST_F(OptionLists, ConflictingOptionsHaveAnExclamationMarkAndThreeBlanks) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(RowTexts(ListOf("*Duplex")), (Strings{"!   Long edge", "    Off"}));
}

TEST_F(OptionLists, OptionsComeInTheOrderOfTheirIdentifiers) {
  options_.Feature({"*Jog", "B", {{"B", "first text"}, {"C", "a text"}, {"A", "z text"}}});
  EXPECT_EQ(RowTexts(ListOf("*Jog")), (Strings{"    z text", "    first text", "    a text"}));
}

TEST_F(OptionLists, TheQueuesChoiceIsCurrent) {
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(ListOf("*Duplex").current_option, "Long");
  EXPECT_EQ(ListOf("*Duplex").current_text, "    Long edge");
}

TEST_F(OptionLists, TheCurrentTextHasTheMarkOfItsRow) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*MediaType", "Thick");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(ListOf("*Duplex").current_text, "!   Long edge");
}

TEST_F(OptionLists, WithoutAChoiceThePrintersDefaultIsCurrentAndNothingIsStored) {
  const OptionList list = ListOf("*Duplex");
  EXPECT_EQ(list.current_option, "None");
  EXPECT_EQ(list.current_text, "    Off");
  EXPECT_EQ(HashFind(G_QueueFeatures_hash, "*Duplex"), nullptr);
}

TEST_F(OptionLists, WithoutChoiceAndDefaultNothingIsCurrent) {
  HashValue<CFeature>(G_PrinterFeatures_hash, "*Duplex")->default_option.reset();
  const OptionList list = ListOf("*Duplex");
  EXPECT_EQ(list.current_option, "");
  EXPECT_EQ(list.current_text, "");
  EXPECT_EQ(list.rows.size(), 2u);
}

TEST_F(OptionLists, AnUnknownOutputBinIsKeptAndNotShown) {
  options_.Set("*OutputBin", "Mailbox");
  const OptionList list = ListOf("*OutputBin");
  EXPECT_EQ(list.current_option, "Mailbox");
  EXPECT_EQ(list.current_text, "");
  EXPECT_EQ(RowTexts(list), (Strings{"    Stacker", "    Top bin"}));
  EXPECT_EQ(QueueFeatureValue("*OutputBin"), "Mailbox");
}

TEST_F(OptionLists, AnUnknownPageSizeBecomesThePrintersDefaultInTheSettings) {
  options_.Set("*PageSize", "Ledger");
  G_CustomPaperIsCurrent = true;
  const OptionList list = ListOf("*PageSize");
  EXPECT_EQ(list.current_option, "A4");
  EXPECT_EQ(list.current_text, "    A4 sheet");
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_FALSE(G_CustomPaperIsCurrent);
}

TEST_F(OptionLists, AnUnknownMediaTypeBecomesThePrintersDefaultInTheSettings) {
  options_.Set("*MediaType", "Papyrus");
  G_CustomMediaIsCurrent = true;
  const OptionList list = ListOf("*MediaType");
  EXPECT_EQ(list.current_option, "Plain");
  EXPECT_EQ(list.current_text, "    Plain paper");
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Plain");
  EXPECT_FALSE(G_CustomMediaIsCurrent);
}

TEST_F(OptionLists, UnknownSizesAndTypesAreRepairedWithoutTheirLists) {
  options_.Set("*PageSize", "Ledger");
  options_.Set("*MediaType", "Papyrus");
  options_.Set("*OutputBin", "Mailbox");
  RepairCustomChoices();
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Plain");
  EXPECT_EQ(QueueFeatureValue("*OutputBin"), "Mailbox");
}

TEST_F(OptionLists, KnownSizesAndTypesNeedNoRepairAndAPrinterWithoutThemGivesNone) {
  options_.Paper("Ticket");
  options_.Set("*PageSize", "Ticket");
  options_.Set("*MediaType", "Papyrus");
  HashRemove(G_PrinterFeatures_hash, "*MediaType");
  RepairCustomChoices();
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "Ticket");
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Papyrus");
}

TEST_F(OptionLists, DefaultsSetTheResolutionOfModelsThreeToSix) {
  for (const int model : {3, 4, 5, 6}) {
    G_PrinterModel = model;
    EXPECT_TRUE(IsResetByDefaults("*Resolution")) << model;
  }
  for (const int model : {0, 1, 2, 7}) {
    G_PrinterModel = model;
    EXPECT_FALSE(IsResetByDefaults("*Resolution")) << model;
  }
}

TEST_F(OptionLists, ACustomMediaIsNoPageSizeAndTheOtherWayRound) {
  options_.Media("Ticket");
  options_.Paper("Gloss");
  options_.Set("*PageSize", "Ticket");
  options_.Set("*MediaType", "Gloss");
  ListOf("*PageSize");
  ListOf("*MediaType");
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Plain");
}

TEST_F(OptionLists, TheMarksAreThoseOfTheRepairedSettings) {
  options_.Forbid("*CustomPageSize", "True", "*PageSize", "Letter");
  options_.Forbid("*PageSize", "A4", "*Duplex", "Long");
  options_.Set("*PageSize", "Ledger");
  std::optional<SettingsSnapshot> snapshot;
  EXPECT_EQ(RowTexts(*GetOptionsForFeature(G_PrinterFeatures_hash, "*Duplex", snapshot)),
            (Strings{"    Long edge", "    Off"}));
  EXPECT_EQ(RowTexts(*GetOptionsForFeature(G_PrinterFeatures_hash, "*PageSize", snapshot)),
            (Strings{"    A4 sheet", "    US Letter"}));
  EXPECT_EQ(RowTexts(*GetOptionsForFeature(G_PrinterFeatures_hash, "*Duplex", snapshot)),
            (Strings{"!   Long edge", "    Off"}));
}

TEST_F(OptionLists, CustomPapersFollowThePrintersSizes) {
  options_.Paper("Zettel");
  options_.Paper("Aushang");
  EXPECT_EQ(RowTexts(ListOf("*PageSize")),
            (Strings{"    A4 sheet", "    US Letter", "    Aushang", "    Zettel"}));
}

TEST_F(OptionLists, AllCustomPapersCarryTheMarkOfTheCustomPair) {
  options_.Paper("Zettel");
  options_.Paper("Aushang");
  options_.Forbid("*CustomPageSize", "True", "*Duplex", "Long");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(RowTexts(ListOf("*PageSize")),
            (Strings{"    A4 sheet", "    US Letter", "!   Aushang", "!   Zettel"}));
}

TEST_F(OptionLists, CustomMediasFollowThePrintersTypesWithTheMarkOfTheirPair) {
  options_.Media("Gloss");
  options_.Forbid("*CustomMediaType", "True", "*Duplex", "Long");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(RowTexts(ListOf("*MediaType")), (Strings{"    Plain paper", "    Thick", "!   Gloss"}));
}

TEST_F(OptionLists, CustomPapersAreInNoOtherList) {
  options_.Paper("Zettel");
  options_.Media("Gloss");
  EXPECT_EQ(ListOf("*Duplex").rows.size(), 2u);
}

TEST_F(OptionLists, ACustomPaperThatIsCurrentIsShownAndSetsTheFlag) {
  options_.Paper("Zettel");
  options_.Set("*PageSize", "Zettel");
  const OptionList list = ListOf("*PageSize");
  EXPECT_EQ(list.current_option, "Zettel");
  EXPECT_EQ(list.current_text, "    Zettel");
  EXPECT_TRUE(G_CustomPaperIsCurrent);
  EXPECT_FALSE(G_CustomMediaIsCurrent);
  options_.Set("*PageSize", "Letter");
  ListOf("*PageSize");
  EXPECT_FALSE(G_CustomPaperIsCurrent);
}

TEST_F(OptionLists, ACustomMediaThatIsCurrentIsShownAndSetsTheFlag) {
  options_.Media("Gloss");
  options_.Set("*MediaType", "Gloss");
  EXPECT_EQ(ListOf("*MediaType").current_text, "    Gloss");
  EXPECT_TRUE(G_CustomMediaIsCurrent);
  EXPECT_FALSE(G_CustomPaperIsCurrent);
  options_.Set("*MediaType", "Thick");
  ListOf("*MediaType");
  EXPECT_FALSE(G_CustomMediaIsCurrent);
}

class UnmarkedList : public OptionLists, public testing::WithParamInterface<const char *> {};

TEST_P(UnmarkedList, NeverCarriesAMarkThoughThePrinterHasConstraints) {
  options_.Feature({GetParam(), "One", {{"One", "First"}, {"Two", "Second"}}});
  options_.Forbid(GetParam(), "One", "*Duplex", "Long");
  options_.Forbid("*Duplex", "Long", GetParam(), "Two");
  options_.Set("*Duplex", "Long");
  options_.Set(GetParam(), "Two");
  EXPECT_EQ(RowTexts(ListOf(GetParam())), (Strings{"    First", "    Second"}));
  EXPECT_EQ(RowTexts(ListOf("*Duplex")), (Strings{"    Long edge", "    Off"}));
}

INSTANTIATE_TEST_SUITE_P(Each, UnmarkedList, testing::ValuesIn(kExemptFeatures),
                         [](const auto &each) { return std::string(each.param + 1); });

TEST_F(OptionLists, AMarkedRowSaysWhyAndAFreeOneNothing) {
  options_.Paper("Zettel");
  options_.Forbid("*Duplex", "Long", "*PageSize", "A4");
  options_.Forbid("*CustomPageSize", "True", "*OutputBin", "Top");
  options_.Set("*Duplex", "Long");
  options_.Set("*OutputBin", "Top");
  const OptionList list = ListOf("*PageSize");
  EXPECT_EQ(list.rows[0].reason, "size and duplex <A4 sheet> <Long edge>");
  EXPECT_EQ(list.rows[1].reason, "");
  EXPECT_EQ(list.rows[2].reason, "reason <*PageSize: Zettel> <*OutputBin: Top bin>");
}

TEST_F(OptionLists, AnUnknownFeatureIsReportedAndHasNoList) {
  const ChildResult result = RunInChild([] {
    if (G_GetOptionsForFeature(G_PrinterFeatures_hash, "*Watermark")) _exit(9);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "unexpected2 <CPrinter>\n");
}

TEST_F(OptionLists, AMissingArgumentEndsTheProcessWith5) {
  EXPECT_EQ(RunInChild([] {
              IgnoreResult(G_GetOptionsForFeature(nullptr, "*Duplex"), "ends the process");
            }).status,
            5);
  EXPECT_EQ(RunInChild([] {
              IgnoreResult(G_GetOptionsForFeature(G_PrinterFeatures_hash, nullptr),
                           "ends the process");
            }).status,
            5);
}

TEST_F(OptionLists, TheDefaultIsTheStoredRecord) {
  const CString *usual = G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, "*PageSize");
  EXPECT_EQ(usual, HashValue<CFeature>(G_PrinterFeatures_hash, "*PageSize")->default_option.get());
  EXPECT_EQ(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, nullptr), nullptr);
  EXPECT_EQ(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, "*Watermark"), nullptr);
}

TEST_F(OptionLists, ResolutionsAreLeftAloneOnModels1And2) {
  for (const int model : {0, 1, 2, 3, 6}) {
    G_PrinterModel = model;
    EXPECT_EQ(IsListFilled("*Resolution"), model != 1 && model != 2) << model;
    EXPECT_TRUE(IsListFilled("*Duplex")) << model;
  }
}

TEST_F(OptionLists, ListsAreFilledInTheOrderOfTheTabs) {
  std::string features;
  for (const ListedFeature &listed : ListedFeatures()) {
    features += std::string(listed.name) + listed.feature + " ";
  }
  EXPECT_EQ(features,
            "PaperSize*PageSize PaperType*MediaType PaperSource*InputSlot Collate*Collate "
            "Duplex*Duplex OutputBin*OutputBin Jog*Jog Staple*StapleLocation Punch*Punch "
            "Orientation*Orientation EdgeToEdge*EdgeToEdge Resolution*Resolution "
            "PrintQuality*OutputMode Halftone*HalfTone Delivery*Delivery "
            "EmailNotifType*EmailNotification ");
}

TEST_F(OptionLists, MarksReplaceWhatTheBufferHoldsAnyOtherValueAppends) {
  std::string out = "old";
  EXPECT_EQ(G_SetStringWithConstrain("text", out, 0), 1);
  EXPECT_EQ(out, "    text");
  EXPECT_EQ(G_SetStringWithConstrain("text", out, 1), 1);
  EXPECT_EQ(out, "!   text");
  EXPECT_EQ(G_SetStringWithConstrain(" more", out, 2), 1);
  EXPECT_EQ(out, "!   text more");
  EXPECT_EQ(G_SetStringWithConstrain("!", out, -1), 1);
  EXPECT_EQ(out, "!   text more!");
}

TEST_F(OptionLists, ADisplayStringLosesItsMark) {
  EXPECT_EQ(TextWithoutMark("!   A4"), "A4");
  EXPECT_EQ(TextWithoutMark("     A4"), " A4");
  EXPECT_EQ(TextWithoutMark("!   "), "");
  EXPECT_EQ(TextWithoutMark("A4"), "");
  EXPECT_EQ(TextWithoutMark(""), "");
}

}  // namespace
