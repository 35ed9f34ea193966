// The rows of the lists of installable options.
#include "installables.h"

#include <gtest/gtest.h>

#include "coresupport.h"
#include "debug.h"
#include "optionsupport.h"
#include "printermodels.h"

namespace {

using Strings = std::vector<std::string>;

class Installables : public testing::Test {
 protected:
  Installables()
      : messages_(
            "#CONSTR_Reason\nreason <%s: %s> <%s: %s>\n"
            "#PRESET_SETTING\n%s: %s\n"
            "#CONSTR_Dlg_Message_OutputTray_Staple\ntray <%s>\n"
            "#CONSTR_Dlg_Message_Hct_Tray7\nfeeder and bypass\n") {}

  void Punch() {
    options_.Installable(
        {"*OptionPunch",
         "None",
         {{"None", "No unit"}, {"Punch2Hole", "Two holes"}, {"Punch3Hole", "Three holes"}}});
  }
  void Feeder(const char *usual = "False") {
    options_.Installable({"*OptionHCF",
                          usual,
                          {{"True", "Fitted"}, {"False", "Missing"}},
                          "Boolean",
                          "High-capacity feeder"});
  }

  // "+" for an installed row, "-" for another, then its text; on models like the window shows them.
  static Strings Rows() {
    Strings rows;
    for (const InstallableRow &row : InstallableRows()) {
      rows.push_back((row.is_installed ? "+" : "-") + row.text);
    }
    return rows;
  }

  ProgramMessages messages_;
  CurrentOptions options_;
};

TEST_F(Installables, MemoryAloneGivesEmptyLists) {
  options_.Installable({"*InstalledMemory", "64Meg", {{"64Meg", "64 MB"}, {"128Meg", "128 MB"}}});
  options_.SetInstalled("*InstalledMemory", "128Meg");
  EXPECT_EQ(Rows(), Strings{});
}

TEST_F(Installables, WithoutPrinterTheListsAreEmpty) {
  SetCurrentPrinter(nullptr);
  EXPECT_EQ(Rows(), Strings{});
}

TEST_F(Installables, TheInstalledPunchUnitIsInOneListTheOtherInTheOther) {
  Punch();
  options_.SetInstalled("*OptionPunch", "Punch2Hole");
  EXPECT_EQ(Rows(), (Strings{"+    Two holes", "-    Three holes"}));
}

TEST_F(Installables, WithoutPunchUnitBothAreAvailable) {
  Punch();
  options_.SetInstalled("*OptionPunch", "None");
  EXPECT_EQ(Rows(), (Strings{"-    Two holes", "-    Three holes"}));
}

TEST_F(Installables, AnUnknownValueOfAChoiceInstallsNone) {
  Punch();
  options_.SetInstalled("*OptionPunch", "Punch9Hole");
  EXPECT_EQ(Rows(), (Strings{"-    Two holes", "-    Three holes"}));
}

TEST_F(Installables, ABooleanIsOneRowWithTheTextOfTheFeature) {
  Feeder();
  options_.SetInstalled("*OptionHCF", "True");
  EXPECT_EQ(Rows(), (Strings{"+    High-capacity feeder"}));
  options_.SetInstalled("*OptionHCF", "False");
  EXPECT_EQ(Rows(), (Strings{"-    High-capacity feeder"}));
}

TEST_F(Installables, ABooleanWithAnyOtherValueIsInNeitherList) {
  Feeder();
  for (const char *value : {"", "None", "true", "TRUE", "Maybe"}) {
    options_.SetInstalled("*OptionHCF", value);
    EXPECT_EQ(Rows(), Strings{}) << value;
  }
}

TEST_F(Installables, AnOptionThatTheQueueLacksHasItsDefaultAndIsLogged) {
  Feeder("True");
  G_DebugLevel = 4;
  testing::internal::CaptureStderr();
  const Strings rows = Rows();
  const std::string log = testing::internal::GetCapturedStderr();
  G_DebugLevel = 0;
  EXPECT_EQ(rows, (Strings{"+    High-capacity feeder"}));
  EXPECT_NE(
      log.find("The feature >>*OptionHCF<< was not founded in G_QueueInstallableOptions_hash"),
      std::string::npos)
      << log;
  EXPECT_EQ(HashFind(G_QueueInstallableOptions_hash, "*OptionHCF"), nullptr);
}

TEST_F(Installables, RowsComeInTheOrderOfTheOptionsAndKnowWhoseTheyAre) {
  Punch();
  Feeder();
  Strings features;
  for (const InstallableRow &row : InstallableRows()) features.push_back(row.feature);
  EXPECT_EQ(features, (Strings{"*OptionHCF", "*OptionPunch", "*OptionPunch"}));
}

TEST_F(Installables, EveryRowOfAnOptionHasTheMarkOfTheQueuesValue) {
  Punch();
  options_.Feature({"*PageSize", "A4", {{"A4", "A4 sheet"}}});
  options_.Forbid("*OptionPunch", "Punch2Hole", "*PageSize", "A4");
  options_.Set("*PageSize", "A4");
  options_.SetInstalled("*OptionPunch", "Punch2Hole");
  EXPECT_EQ(Rows(), (Strings{"+!   Two holes", "-!   Three holes"}));
  for (const InstallableRow &row : InstallableRows()) {
    EXPECT_EQ(row.reason, "reason <*OptionPunch: Two holes> <*PageSize: A4 sheet>");
  }
}

TEST_F(Installables, ARowIsFreeThoughInstallingItWouldConflict) {
  Punch();
  options_.Forbid("*OptionPunch", "Punch2Hole", "*PageSize", "A4");
  options_.Set("*PageSize", "A4");
  options_.SetInstalled("*OptionPunch", "None");
  EXPECT_EQ(Rows(), (Strings{"-    Two holes", "-    Three holes"}));
  EXPECT_EQ(InstallableRows()[0].reason, "");
}

TEST_F(Installables, TheDefaultIsMarkedLikeAValueOfTheQueue) {
  Feeder();
  options_.Forbid("*OptionHCF", "False", "*InputSlot", "HCF");
  options_.Set("*InputSlot", "HCF");
  EXPECT_EQ(Rows(), (Strings{"-!   High-capacity feeder"}));
}

TEST_F(Installables, AnInstallableOptionConflictsWithAnother) {
  Feeder();
  options_.Forbid("*OptionHCF", "True", "*OptionBypassTray", "True");
  options_.SetInstalled("*OptionHCF", "True");
  options_.SetInstalled("*OptionBypassTray", "True");
  EXPECT_EQ(Rows(), (Strings{"+!   High-capacity feeder"}));
}

TEST_F(Installables, DefaultsChangeWhatDiffersAndSayWhat) {
  Feeder();
  Punch();
  options_.SetInstalled("*OptionHCF", "True");
  options_.SetInstalled("*OptionPunch", "None");
  const InstallableDefaults defaults = SetInstallablesToDefaults();
  EXPECT_TRUE(defaults.is_complete);
  EXPECT_EQ(defaults.changed, Strings{"*OptionHCF"});
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*OptionHCF"), "False");
  EXPECT_EQ(SetInstallablesToDefaults().changed, Strings{});
}

TEST_F(Installables, DefaultsStopAtAnOptionThatThePrinterDoesNotKnow) {
  Feeder();
  Punch();
  options_.SetInstalled("*OptionHCF", "True");
  options_.SetInstalled("*OptionOld", "True");
  options_.SetInstalled("*OptionPunch", "Punch2Hole");
  G_DebugLevel = 2;
  testing::internal::CaptureStderr();
  const InstallableDefaults defaults = SetInstallablesToDefaults();
  G_DebugLevel = 0;
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unable to load the default option for *OptionOld\n");
  EXPECT_FALSE(defaults.is_complete);
  EXPECT_EQ(defaults.changed, Strings{"*OptionHCF"});
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*OptionPunch"), "Punch2Hole");
}

TEST_F(Installables, ValuesThatInstallAndRemove) {
  Feeder();
  Punch();
  options_.Installable({"*OptionTrays", "Two", {{"Two", "Two trays"}, {"Four", "Four trays"}}});
  EXPECT_EQ(ValueThatInstalls("*OptionHCF", "High-capacity feeder"), "True");
  EXPECT_EQ(ValueThatRemoves("*OptionHCF", "High-capacity feeder"), "False");
  EXPECT_EQ(ValueThatInstalls("*OptionPunch", "Three holes"), "Punch3Hole");
  EXPECT_EQ(ValueThatRemoves("*OptionPunch", "Three holes"), "None");
  EXPECT_EQ(ValueThatInstalls("*OptionTrays", "Four trays"), "Four");
  EXPECT_EQ(ValueThatRemoves("*OptionTrays", "Four trays"), "Two");
  EXPECT_EQ(ValueThatInstalls("*OptionPunch", "Nine holes"), "");
  EXPECT_EQ(ValueThatInstalls("*Unknown", "Nine holes"), "");
  EXPECT_EQ(ValueThatRemoves("*Unknown", "Nine holes"), "");
}

// Their options are "Installed" and "Not installed", which says nothing without the feature.
TEST_F(Installables, OtherMakersPartsAreNamedByTheirFeatures) {
  G_PrinterModel = kAddedModelNumber;
  options_.Installable({"*Duplexer",
                        "NotInstalled",
                        {{"NotInstalled", "Not installed"}, {"Installed", "Installed"}},
                        "PickOne",
                        "Duplex unit"});
  options_.Installable({"*HardDisk",
                        "None",
                        {{"None", "None"}, {"20GB", "20 GB"}, {"40GB", "40 GB"}},
                        "PickOne",
                        "Hard disk"});
  options_.Installable({"*Stacker",
                        "False",
                        {{"False", "No"}, {"InstalledA", "Installed"}, {"InstalledB", "Installed"}},
                        "PickOne",
                        "Stacker"});
  options_.Installable(
      {"*Trays", "Two", {{"Two", "Two"}, {"Four", "Four"}}, "PickOne", "Number of trays"});
  options_.Installable(
      {"*Feeder", "None", {{"None", "No"}, {"True", "Yes"}}, "Boolean", "Paper feeder"});
  EXPECT_EQ(ValueThatInstalls("*Feeder", "Paper feeder"), "True");
  EXPECT_EQ(ValueThatRemoves("*Feeder", "Paper feeder"), "None");
  options_.SetInstalled("*HardDisk", "40GB");
  EXPECT_EQ(Rows(),
            (Strings{"-    Duplex unit", "-    Paper feeder", "-    Hard disk: 20 GB",
                     "+    Hard disk: 40 GB", "-    Stacker: Installed", "-    Stacker: Installed",
                     "-    Number of trays: Four", "+    Number of trays: Two"}));
  EXPECT_EQ(ValueThatInstalls("*Duplexer", "Duplex unit"), "Installed");
  EXPECT_EQ(ValueThatRemoves("*Duplexer", "Duplex unit"), "NotInstalled");
  EXPECT_EQ(ValueThatInstalls("*HardDisk", "Hard disk: 20 GB"), "20GB");
  EXPECT_EQ(ValueThatRemoves("*HardDisk", "Hard disk: 40 GB"), "None");
  EXPECT_EQ(ValueThatRemoves("*Stacker", "Stacker: Installed"), "False");
  EXPECT_EQ(ValueThatRemoves("*Trays", "Number of trays: Two"), "Four");
}

}  // namespace
