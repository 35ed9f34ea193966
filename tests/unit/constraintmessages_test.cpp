// The words for two choices that cannot be combined: every pair of features in both orders.
#include "constraintmessages.h"

#include <gtest/gtest.h>

#include "coresupport.h"
#include "must.h"
#include "optionsupport.h"

namespace {

struct Row {
  const char *feature1;
  const char *option1;
  const char *feature2;
  const char *option2;
  const char *message;  // of the display texts "one" and "two"
};

void PrintTo(const Row &row, std::ostream *out) {
  *out << row.feature1 << "=" << row.option1 << " " << row.feature2 << "=" << row.option2;
}

// Each text shows its key and what fills it, up to two.
std::string Catalogue() {
  std::string text;
  for (const char *key :
       {"PaperSize_PaperType", "PaperSize_PaperSource", "PaperSize_Duplex", "PaperSize_Staple",
        "Jog_Staple", "PaperSize_Punch", "PaperType_PaperSource", "PaperType_Duplex",
        "PaperType_Staple", "PaperType_Punch", "OutputTray_Staple", "PaperSource_HCF",
        "PunchOption_Punch", "PunchOption_PunchNone", "OptionTray4_InputSlot",
        "OptionBypassTray_InputSlot", "OptionFinisher_OutputBin", "OptionFinisher_PunchHole",
        "Hct_Tray7"}) {
    text += std::string("#CONSTR_Dlg_Message_") + key + "\n" + key + " <%s> <%s>\n";
  }
  return text + "#CONSTR_Reason\nreason <%s: %s> <%s: %s>\n";
}

class ConstraintMessages : public testing::Test {
 protected:
  ConstraintMessages() : messages_(Catalogue()) {}

  ProgramMessages messages_;
  CurrentOptions options_;
};

class MessageRow : public ConstraintMessages, public testing::WithParamInterface<Row> {};

TEST_P(MessageRow, HasItsKeyAndFillsItInItsOrder) {
  const Row &row = GetParam();
  EXPECT_EQ(
      BuildConstraintMessage(row.feature1, row.option1, "one", row.feature2, row.option2, "two"),
      row.message);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MessageRow,
    testing::Values(
        Row{"*PageSize", "a", "*MediaType", "b", "PaperSize_PaperType <one> <two>"},
        Row{"*MediaType", "a", "*PageSize", "b", "PaperSize_PaperType <two> <one>"},
        Row{"*PageSize", "a", "*InputSlot", "b", "PaperSize_PaperSource <one> <two>"},
        Row{"*InputSlot", "a", "*PageSize", "b", "PaperSize_PaperSource <two> <one>"},
        Row{"*PageSize", "a", "*Duplex", "b", "PaperSize_Duplex <one> <two>"},
        Row{"*Duplex", "a", "*PageSize", "b", "PaperSize_Duplex <two> <one>"},
        Row{"*PageSize", "a", "*StapleLocation", "b", "PaperSize_Staple <one> <two>"},
        Row{"*StapleLocation", "a", "*PageSize", "b", "PaperSize_Staple <two> <one>"},
        Row{"*Jog", "a", "*StapleLocation", "b", "Jog_Staple <one> <two>"},
        Row{"*StapleLocation", "a", "*Jog", "b", "Jog_Staple <two> <one>"},
        Row{"*PageSize", "a", "*Punch", "b", "PaperSize_Punch <one> <two>"},
        Row{"*Punch", "a", "*PageSize", "b", "PaperSize_Punch <two> <one>"},
        Row{"*MediaType", "a", "*InputSlot", "b", "PaperType_PaperSource <one> <two>"},
        Row{"*InputSlot", "a", "*MediaType", "b", "PaperType_PaperSource <two> <one>"},
        Row{"*MediaType", "a", "*Duplex", "b", "PaperType_Duplex <one> <two>"},
        Row{"*Duplex", "a", "*MediaType", "b", "PaperType_Duplex <two> <one>"},
        Row{"*MediaType", "a", "*StapleLocation", "b", "PaperType_Staple <one> <two>"},
        Row{"*StapleLocation", "a", "*MediaType", "b", "PaperType_Staple <two> <one>"},
        Row{"*MediaType", "a", "*Punch", "b", "PaperType_Punch <one> <two>"},
        Row{"*Punch", "a", "*MediaType", "b", "PaperType_Punch <two> <one>"},
        Row{"*OutputBin", "a", "*StapleLocation", "b", "OutputTray_Staple <one> <two>"},
        Row{"*StapleLocation", "a", "*OutputBin", "b", "OutputTray_Staple <two> <one>"},
        Row{"*InputSlot", "a", "*OptionHCF", "b", "PaperSource_HCF <one> <>"},
        // Kept on purpose: not the key of the opposite order.
        Row{"*OptionHCF", "a", "*InputSlot", "b", "OutputTray_Staple <two> <>"},
        Row{"*Punch", "a", "*OptionPunch", "b", "PunchOption_Punch <one> <two>"},
        // Kept on purpose: the texts are not swapped.
        Row{"*OptionPunch", "a", "*Punch", "b", "PunchOption_Punch <one> <two>"},
        Row{"*Punch", "a", "*OptionPunch", "None", "PunchOption_PunchNone <one> <>"},
        Row{"*OptionPunch", "None", "*Punch", "b", "PunchOption_PunchNone <one> <>"},
        Row{"*Punch", "None", "*OptionPunch", "b", "PunchOption_Punch <one> <two>"},
        Row{"*OptionPunch", "a", "*Punch", "None", "PunchOption_Punch <one> <two>"},
        Row{"*InputSlot", "a", "*OptionTray4", "b", "OptionTray4_InputSlot <one> <>"},
        Row{"*OptionTray4", "a", "*InputSlot", "b", "OptionTray4_InputSlot <two> <>"},
        Row{"*InputSlot", "a", "*OptionBypassTray", "b", "OptionBypassTray_InputSlot <one> <>"},
        Row{"*OptionBypassTray", "a", "*InputSlot", "b", "OptionBypassTray_InputSlot <two> <>"},
        Row{"*OutputBin", "a", "*OptionFinisher", "b", "OptionFinisher_OutputBin <one> <>"},
        Row{"*OptionFinisher", "a", "*OutputBin", "b", "OptionFinisher_OutputBin <two> <>"},
        Row{"*OptionPunch", "a", "*OptionFinisher", "b", "OptionFinisher_PunchHole <one> <>"},
        Row{"*OptionFinisher", "a", "*OptionPunch", "b", "OptionFinisher_PunchHole <two> <>"},
        Row{"*OptionBypassTray", "a", "*OptionHCF", "b", "Hct_Tray7 <> <>"},
        Row{"*OptionHCF", "a", "*OptionBypassTray", "b", "Hct_Tray7 <> <>"}));

TEST_F(ConstraintMessages, AnyOtherPairHasNone) {
  EXPECT_EQ(BuildConstraintMessage("*Duplex", "a", "one", "*Jog", "b", "two"), "");
  EXPECT_EQ(BuildConstraintMessage("*PageSize", "a", "one", "*PageSize", "b", "two"), "");
  EXPECT_EQ(BuildConstraintMessage("", "", "", "", "", ""), "");
}

TEST_F(ConstraintMessages, ALongMessageIsCutBetweenCharacters) {
  std::string text = "x";
  for (int i = 0; i < 600; ++i) text += "\xC3\xA9";
  const std::string message = BuildConstraintMessage("*PageSize", "a", text, "*Duplex", "b", "two");
  EXPECT_EQ(message, ("PaperSize_Duplex <" + text).substr(0, message.size()));
  EXPECT_GE(message.size(), 1022u);
  EXPECT_LE(message.size(), 1024u);
  EXPECT_EQ(message.substr(message.size() - 2), "\xC3\xA9");
}

TEST_F(ConstraintMessages, ConflictsAreToldInDisplayTexts) {
  options_.Feature({"*Duplex", "None", {{"None", "Off"}, {"Long", "Long edge"}}});
  options_.Feature({"*MediaType", "Plain", {{"Thick", "Thick paper"}}});
  EXPECT_EQ(ConflictMessage({"*Duplex", "Long", "*MediaType", "Thick"}),
            "PaperType_Duplex <Thick paper> <Long edge>");
}

TEST_F(ConstraintMessages, DuplexAndMediaAreReportedOnceInTheOrderOfTheMessage) {
  options_.Feature({"*Duplex", "None", {{"Long", "Long edge"}}});
  options_.Feature({"*MediaType", "Plain", {{"Thick", "Thick paper"}}});
  options_.Set("*Duplex", "Long");
  options_.Set("*MediaType", "Thick");
  for (const bool swapped : {false, true}) {
    Must(fRemoveAll_CList_Function(options_.Printer()->constraints.get()));
    if (swapped) {
      options_.Forbid("*MediaType", "Thick", "*Duplex", "Long");
    } else {
      options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
    }
    const auto conflict = FindLinearConflict(G_QueueFeatures_hash);
    ASSERT_TRUE(conflict);
    EXPECT_EQ(ConflictMessage(*conflict), "PaperType_Duplex <Thick paper> <Long edge>");
    EXPECT_EQ(ConflictMessage(
                  {conflict->feature2, conflict->option2, conflict->feature1, conflict->option1}),
              "PaperType_Duplex <Thick paper> <Long edge>");
  }
}

TEST_F(ConstraintMessages, TextsOfInstallableOptionsAreFoundToo) {
  options_.Feature({"*Punch", "None", {{"Two", "Two holes"}}});
  options_.Installable({"*OptionPunch", "None", {{"None", "No unit"}, {"Punch3", "Three"}}});
  EXPECT_EQ(ConflictMessage({"*Punch", "Two", "*OptionPunch", "Punch3"}),
            "PunchOption_Punch <Two holes> <Three>");
  EXPECT_EQ(ConflictMessage({"*OptionPunch", "None", "*Punch", "Two"}),
            "PunchOption_PunchNone <No unit> <>");
}

TEST_F(ConstraintMessages, ACustomPaperIsShownByItsName) {
  options_.Feature({"*PageSize", "A4", {{"A4", "A4 sheet"}}});
  options_.Feature({"*Duplex", "None", {{"Long", "Long edge"}}});
  options_.Forbid("*CustomPageSize", "True", "*Duplex", "Long");
  options_.Paper("Ticket");
  options_.Set("*PageSize", "Ticket");
  options_.Set("*Duplex", "Long");
  const auto conflict = FindLinearConflict(G_QueueFeatures_hash);
  ASSERT_TRUE(conflict);
  EXPECT_EQ(ConflictMessage(*conflict), "PaperSize_Duplex <Ticket> <Long edge>");
}

TEST_F(ConstraintMessages, ACustomMediaIsShownByItsName) {
  options_.Feature({"*MediaType", "Plain", {{"Plain", "Plain paper"}}});
  EXPECT_EQ(ConflictMessage({"*MediaType", "Gloss", "*PageSize", "Ticket"}),
            "PaperSize_PaperType <Ticket> <Gloss>");
}

TEST_F(ConstraintMessages, TheReasonOfAMarkIsTheMessageOfThePair) {
  options_.Feature({"*Duplex", "None", {{"Long", "Long edge"}}});
  EXPECT_EQ(ConflictReason({"*Duplex", "Long", "*PageSize", "Ticket"}),
            "PaperSize_Duplex <Ticket> <Long edge>");
}

TEST_F(ConstraintMessages, TheReasonOfAnyOtherPairNamesBothFeaturesAndTexts) {
  options_.Feature({"*StapleLocation", "None", {{"One", "One staple"}}, "PickOne", "Stapling"});
  options_.Installable(
      {"*OptionFinisher", "False", {{"False", "Not installed"}}, "Boolean", "Finisher"});
  EXPECT_EQ(ConflictReason({"*StapleLocation", "One", "*OptionFinisher", "False"}),
            "reason <Stapling: One staple> <Finisher: Not installed>");
}

TEST_F(ConstraintMessages, TheReasonShowsAFeatureThatThePrinterLacksAsItIs) {
  EXPECT_EQ(ConflictReason({"*Jog", "On", "*Duplex", "Long"}), "reason <*Jog: On> <*Duplex: Long>");
}

TEST_F(ConstraintMessages, TheReasonOfFeederAndPaperSourceIsTheSameInBothOrders) {
  options_.Feature({"*InputSlot", "Auto", {{"HCF", "Feeder tray"}}});
  options_.Installable({"*OptionHCF", "False", {{"True", "Yes"}, {"False", "No"}}});
  const std::string reason = "PaperSource_HCF <Feeder tray> <>";
  EXPECT_EQ(ConflictReason({"*InputSlot", "HCF", "*OptionHCF", "False"}), reason);
  EXPECT_EQ(ConflictReason({"*OptionHCF", "False", "*InputSlot", "HCF"}), reason);
  EXPECT_EQ(ConflictMessage({"*OptionHCF", "False", "*InputSlot", "HCF"}),
            "OutputTray_Staple <Feeder tray> <>")
      << "the message of a refused OK stays as it is";
}

}  // namespace
