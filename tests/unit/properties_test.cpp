// Opening the properties, defaults, and what OK and Apply store. Runs in the sandbox: a queue's new
// name is looked for in the spooler's own directory.
#include "properties.h"

#include <gtest/gtest.h>

#include <utility>
#include <variant>

#include "chelp.h"
#include "conflictresolution.h"
#include "coresupport.h"
#include "cprinter.h"
#include "cselection.h"
#include "globals.h"
#include "must.h"
#include "optionstate.h"
#include "pafreader.h"
#include "pagetable.h"
#include "queuesupport.h"
#include "spoolerstandin.h"

namespace {

constexpr char kPrinterName[] = "Vek Norvel 4110ES";

constexpr char kMessages[] =
    "#tcpip\nTCP/IP\n#ERR_NO_FONT\nno font\n#PAFNotFoundError\nno <%s>\n"
    "#ERR_UNEXPECTED1\nunexpected1 <%s>\n";

std::string Feature(const std::string &kind, const std::string &id, const std::string &usual,
                    const std::vector<std::string> &options) {
  std::string text = "#" + kind + "\n#id\n" + id + "\n#translation\n" + id.substr(1) +
                     "\n#default\n" + usual + "\n#type\nPickOne\n#_options\n";
  for (const std::string &option : options) {
    text += "#_option\n#id\n" + option + "\n#translation\n" + option + " text\n#end_option\n";
  }
  return text + "#end_options\n#end_ui\n";
}

std::string Constraint(const std::string &f1, const std::string &o1, const std::string &f2,
                       const std::string &o2) {
  return "#ccc\n#f1\n" + f1 + "\n#o1\n" + o1 + "\n#f2\n" + f2 + "\n#o2\n" + o2 + "\n#end_ccc\n";
}

std::string Description() {
  return "##Name:Vek Norvel 4110ES\n##PPD:vek41101.ppd\n##\n" +
         Feature("uio", "*PageSize", "A4", {"A4", "Letter"}) +
         Feature("uio", "*PageRegion", "A4", {"A4", "Letter"}) +
         Feature("uio", "*Duplex", "None", {"None", "DuplexNoTumble"}) +
         Feature("uio", "*MediaType", "Plain", {"Plain", "Thick", "Foil"}) +
         Feature("uiio", "*OptionHCF", "False", {"False", "True"}) +
         Feature("uiio", "*InstalledMemory", "64Meg", {"64Meg"}) +
         Feature("uiio", "*OptionBypass", "False", {"False", "True"}) +
         Feature("uiio", "*OptionShelf", "True", {"True"}) +
         Constraint("*Duplex", "DuplexNoTumble", "*MediaType", "Thick") +
         Constraint("*OptionHCF", "False", "*MediaType", "Foil") +
         Constraint("*MediaType", "Plain", "*PageSize", "Letter") +
         Constraint("*OptionBypass", "True", "*OptionHCF", "True");
}

class Properties : public testing::Test {
 protected:
  Properties() : messages_(kMessages), queues_(CreateHash()), original_(CreateHash()) {
    Describe(Description());
    G_Queues_hash = queues_.get();
    G_OrgQueues_hash = original_.get();
    G_ProgName = kModeAdministration;
    G_PrinterModel = 0;
    Put({});
  }
  ~Properties() override {
    CloseProperties();
    ForgetUserChoices();
    G_Queues_hash = G_OrgQueues_hash = G_Printers_hash = nullptr;
    G_Fonts_hash.reset();
    G_Help.reset();
    G_ProgName = kModeNeither;
    G_PrinterModel = 0;
  }

  // The printer is the one of that description.
  void Describe(const std::string &description) {
    LineReader lines(description);
    auto content = std::get<PafContent>(ReadPaf(lines));
    Owned<CPrinter> printer = CreatePrinter("/nowhere/vek41101.paf");
    printer->features = std::move(content.features);
    printer->installable_options = std::move(content.installable_options);
    printer->constraints = std::move(content.constraints);
    printer->ppd_file = std::move(content.ppd_file);
    printers_ = CreateHash();
    Must(HashPut(printers_.get(), kPrinterName, std::move(printer)));
    G_Printers_hash = printers_.get();
  }
  void PrintsCovers() {
    std::string description = Description();
    for (const char *side : {"*Front", "*Back"}) {
      const std::string cover = side;
      description += Feature("uio", cover, "None", {"None", "Blank"}) +
                     Feature("uio", cover + "Tray", "None", {"None", "Tray1"}) +
                     Constraint(cover, "None", cover + "Tray", "Tray1");
    }
    Describe(description + Constraint("*Front", "Blank", "*Back", "Blank"));
  }

  void Put(const QueueValues &values) {
    Must(HashPut(G_Queues_hash, values.name.c_str(), MakeQueue(values)));
  }
  CHash *StoredOptions(const char *name) {
    return HashValue<CPrintQueue>(G_Queues_hash, name)->Options.get();
  }
  std::string OpenError(const char *name) {
    std::string error;
    EXPECT_FALSE(OpenProperties(name, &error));
    EXPECT_EQ(G_CurrentQueue, nullptr);
    EXPECT_EQ(G_CurrentPrinter, nullptr);
    return error;
  }
  void Open() {
    std::string error;
    ASSERT_TRUE(OpenProperties("lp1", &error)) << error;
  }
  void Choose(const char *feature, const char *option) {
    SetQueueValue(G_QueueFeatures_hash, feature, option);
    NoteUserChoice(feature);
  }

  SpoolerStandIn spooler_;
  ProgramMessages messages_;
  Owned<CHash> queues_;
  Owned<CHash> original_;
  Owned<CHash> printers_;
};

TEST_F(Properties, TheModelIsThatOfTheFirstRowThatFits) {
  const std::pair<const char *, int> models[] = {
      {"Vek Norvel 4105", 1},   {"Vek Norvel 4120ES", 6}, {"Vek Norvel 4121", 2},
      {"Vek Norvel 4100ES", 3}, {"Vek Norvel 4102ES", 4}, {"Vek Norvel 4110ES PS", 5}};
  for (const auto &[name, model] : models) {
    getPrinterModel(name);
    EXPECT_EQ(G_PrinterModel, model) << name;
  }
}

TEST_F(Properties, APrinterNameThatFitsNoModelLeavesTheNumberAsItWas) {
  getPrinterModel("Vek Norvel 4121");
  getPrinterModel("Vek Norvel 4120");
  EXPECT_EQ(G_PrinterModel, 2);
  getPrinterModel(nullptr);
  EXPECT_EQ(G_PrinterModel, 2);
}

TEST_F(Properties, TheSelectedQueueIsTheFirstSelectedRecord) {
  const Owned<CList> selections = CreateList();
  for (const auto &[name, selected] : {std::pair{"a", 0}, {"b", 1}, {"c", 1}}) {
    Must(fAddTail_CList_Function(selections.get(), CreateSelection(name, selected)));
  }
  EXPECT_EQ(SelectedQueueName(selections.get()), "b");
  EXPECT_EQ(SelectedQueueName(nullptr), "");
}

TEST_F(Properties, OpeningWorksOnACopyWithThePrintersDefaults) {
  Open();
  EXPECT_STREQ(fGet_CString_Value_Function(G_CurrentQueue_name.get()), "lp1");
  EXPECT_EQ(Keys(G_QueueFeatures_hash),
            (std::vector<std::string>{"*Duplex", "*MediaType", "*PageSize"}));
  EXPECT_EQ(Keys(G_QueueInstallableOptions_hash),
            (std::vector<std::string>{"*OptionBypass", "*OptionHCF", "*OptionShelf"}));
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_TRUE(HashIsEmpty(StoredOptions("lp1")));
  EXPECT_EQ(G_PrinterModel, 5);
}

TEST_F(Properties, AnUnknownQueueOpensNothingAndSaysNothing) { EXPECT_EQ(OpenError("none"), ""); }

TEST_F(Properties, ATextQueueNeedsFonts) {
  QueueValues values;
  values.language = "text";
  Put(values);
  EXPECT_EQ(OpenError("lp1"), "no font");
  G_Fonts_hash = CreateHash();
  EXPECT_EQ(OpenError("lp1"), "no font");
  Must(HashPut(G_Fonts_hash.get(), "Courier", CreateHash()));
  Open();
  EXPECT_EQ(CurrentQueueTypeKey(), "text");
}

TEST_F(Properties, AnUnknownPrinterIsReportedByItsDescriptionFile) {
  QueueValues values;
  values.printer = "Vek Norvel 4121";
  Put(values);
  EXPECT_EQ(OpenError("lp1"), "no <vek41101.paf>");
  EXPECT_EQ(G_PrinterModel, 2);
}

TEST_F(Properties, DefaultsThatTheQueueHasStayAsTheyAre) {
  Must(HashPutText(StoredOptions("lp1"), "*PageSize", "Letter"));
  Open();
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "Letter");
}

TEST_F(Properties, WhatEqualsThePrintersDefaultIsNotStored) {
  Open();
  Choose("*Duplex", "DuplexNoTumble");
  Must(HashPutText(G_QueueFeatures_hash, "*JobName", "A4"));
  RemoveDefaultSettings();
  EXPECT_EQ(Keys(G_QueueFeatures_hash), (std::vector<std::string>{"*Duplex", "*JobName"}));
  EXPECT_TRUE(HashIsEmpty(G_QueueInstallableOptions_hash));
}

TEST_F(Properties, AUsersDefaultForWhatTheAdministratorSetIsStored) {
  G_ProgName = kModePrintTool;
  Owned<CPrintQueue> original = MakeQueue();
  Must(HashPutText(original->Options.get(), "*Duplex", "DuplexNoTumble"));
  Must(HashPutText(original->InstallableFeatures.get(), "*OptionHCF", "True"));
  Must(HashPut(G_OrgQueues_hash, "lp1", std::move(original)));
  Open();
  RemoveDefaultSettings();
  EXPECT_EQ(Keys(G_QueueFeatures_hash), (std::vector<std::string>{"*Duplex"}));
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "None");
  EXPECT_TRUE(HashIsEmpty(G_QueueInstallableOptions_hash));
}

TEST_F(Properties, TheAdministratorKeepsNoDefaultWhateverWasSet) {
  Owned<CPrintQueue> original = MakeQueue();
  Must(HashPutText(original->Options.get(), "*Duplex", "DuplexNoTumble"));
  Must(HashPut(G_OrgQueues_hash, "lp1", std::move(original)));
  Open();
  RemoveDefaultSettings();
  EXPECT_TRUE(HashIsEmpty(G_QueueFeatures_hash));
}

TEST_F(Properties, AFeatureIsSetToItsDefaultOnce) {
  Open();
  EXPECT_EQ(ResetFeature("*PageSize"), FeatureReset::kSame);
  Choose("*PageSize", "Letter");
  EXPECT_EQ(ResetFeature("*PageSize"), FeatureReset::kChanged);
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_EQ(ResetFeature("*Collate"), FeatureReset::kNoDefault);
}

TEST_F(Properties, ThePrintToolPutsItsCopyBackWithTheCopies) {
  G_ProgName = kModePrintTool;
  Open();
  Choose("*PageSize", "Letter");
  PutBackForPrinting(7);
  EXPECT_STREQ(HashText(StoredOptions("lp1"), "*NrCopies"), "7");
  EXPECT_STREQ(HashText(StoredOptions("lp1"), "*PageSize"), "Letter");
  Choose("*PageSize", "A4");
  EXPECT_STREQ(HashText(StoredOptions("lp1"), "*PageSize"), "Letter");
}

TEST_F(Properties, OnlyTextQueuesHaveSeveralPagesASheet) {
  Open();
  for (const char *key : {"*Nup", "*NupOrder", "*Booklet"}) {
    Must(HashPutText(G_QueueFeatures_hash, key, "1"));
  }
  RemoveMultipleUpSettings();
  EXPECT_EQ(Keys(G_QueueFeatures_hash),
            (std::vector<std::string>{"*Duplex", "*MediaType", "*PageSize"}));
}

TEST_F(Properties, TheIdentityIsCheckedInOrder) {
  QueueValues other;
  other.name = "lp2";
  Put(other);
  Open();
  EXPECT_EQ(CheckIdentity({"", "", ""}), IdentityFault::kNoName);
  EXPECT_EQ(CheckIdentity({"lp2", "", ""}), IdentityFault::kNameTaken);
  EXPECT_EQ(CheckIdentity({"lp3", "tcpip", ""}), IdentityFault::kTransport);
  EXPECT_EQ(CheckIdentity({"lp3", "TCP/IP", ""}), IdentityFault::kNoAddress);
  EXPECT_EQ(CheckIdentity({"lp3", "TCP/IP", "h"}), IdentityFault::kNone);
  EXPECT_EQ(CheckIdentity({"lp1", "TCP/IP", "h"}), IdentityFault::kNone) << "its own name";
}

TEST_F(Properties, FaultsHaveTheirWarningsButTheTransportIsSilent) {
  EXPECT_STREQ(WarningKey(IdentityFault::kNoName), "KPXadminWarn003");
  EXPECT_STREQ(WarningKey(IdentityFault::kNameTaken), "KPXadminWarn004");
  EXPECT_STREQ(WarningKey(IdentityFault::kNoAddress), "KPXadminWarn002");
  EXPECT_EQ(WarningKey(IdentityFault::kTransport), nullptr);
  EXPECT_EQ(WarningKey(IdentityFault::kNone), nullptr);
}

TEST_F(Properties, ARenamedQueueIsPutBackUnderItsNewName) {
  Open();
  HashRemove(G_Queues_hash, "lp1");
  PutBackIdentity({"lp9", "TCP/IP", "10.1.1.1"});
  const CPrintQueue *stored = HashValue<CPrintQueue>(G_Queues_hash, "lp9");
  EXPECT_EQ(TextOrNull(stored->Address.get()), "10.1.1.1");
  EXPECT_EQ(TextOrNull(stored->AddressType.get()), "tcpip");
  EXPECT_EQ(TextOrNull(stored->DefFile.get()), "lp9.def");
  EXPECT_EQ(TextOrNull(G_CurrentQueue_name.get()), "lp9");
  EXPECT_EQ(Keys(G_Queues_hash), (std::vector<std::string>{"lp9"}));
}

TEST_F(Properties, TitlesFollowProgramAndPage) {
  EXPECT_EQ(PropertiesTitleKey(0), "DEF_WND_ADMIN_PROP_GENERAL_TITLE");
  EXPECT_EQ(PropertiesTitleKey(1), "DEF_WND_ADMIN_PROP_SETUP_TITLE");
  EXPECT_EQ(PropertiesTitleKey(5), "DEF_WND_ADMIN_PROP_FEATURES_TITLE");
  EXPECT_EQ(PropertiesTitleKey(6), "DEF_WND_ADMIN_PROP_CUSTOMS_TITLE");
  EXPECT_EQ(PropertiesTitleKey(7), "DEF_WND_ADMIN_PROP_FONTS_TITLE");
  EXPECT_EQ(PropertiesTitleKey(8), "");
  EXPECT_EQ(PropertiesTitleKey(-1), "");
  G_ProgName = kModePrintTool;
  EXPECT_EQ(PropertiesTitleKey(5), "DEF_WND_TOOL_PROP_FONTS_TITLE");
  EXPECT_EQ(PropertiesTitleKey(6), "");
}

TEST_F(Properties, EveryPageHasOnePlaceInEachProgramThatHasIt) {
  for (const int program : {kModeAdministration, kModePrintTool}) {
    G_ProgName = program;
    int place = 0;
    for (const PropertyPage &page : PropertyPages()) EXPECT_EQ(PlaceOf(page.page), place++);
    EXPECT_EQ(PropertiesTitleKey(place), "");
  }
  EXPECT_EQ(PlaceOf(Page::kFeatures), -1) << "the print tool has no such page";
  EXPECT_EQ(PlaceOf(Page::kCustoms), -1) << "the print tool has no such page";
}

TEST_F(Properties, APageNeedsOnlyPagesOfItsProgramThatNeedNone) {
  for (const int program : {kModeAdministration, kModePrintTool}) {
    G_ProgName = program;
    for (const PropertyPage &page : PropertyPages()) {
      for (const Page needed : page.needs) {
        ASSERT_GE(PlaceOf(needed), 0) << page.title_word;
        EXPECT_TRUE(PropertyPages()[static_cast<size_t>(PlaceOf(needed))].needs.empty());
      }
    }
  }
}

class PropertiesHelpText : public Properties {
 protected:
  PropertiesHelpText() {
    std::string text;
    for (const char *block :
         {"KPX_ADMIN_GEN_TAB", "KPX_TOOL_GEN_TAB", "KPX_TOOL_GEN_TAB_FTRS", "KPX_ABOUT_BTN",
          "KPX_ADMIN_SETUP_TAB", "KPX_TOOL_SETUP_TAB", "KPX_OUTPUT_TAB", "KPX_OPTIONS_TAB",
          "KPX_MULTIPLE_UP", "KPX_DESTINATION_TAB", "KPX_ADMIN_FEATURES_TAB", "KPX_FONTS_TAB",
          "KPX_ADMIN_CUSTOMS_TAB", "KPX_PROPERTIES_DEFAULTS_BUTTON", "KPX_PROPERTIES_BUTTONS"}) {
      text += "#" + std::string(block) + "_BEGIN\n" + block + "\n#" + block + "_END\n";
    }
    G_Help = CreateHelp("test");
    LineReader lines(text);
    EXPECT_EQ(ReadHelp(G_Help.get(), lines), std::nullopt);
    Open();
  }
};

TEST_F(PropertiesHelpText, EachPageHasItsOwnBlocksAndTheSharedOnes) {
  EXPECT_EQ(PropertiesHelp(0), "KPX_ADMIN_GEN_TAB\nKPX_ABOUT_BTN\nKPX_PROPERTIES_BUTTONS\n");
  EXPECT_EQ(PropertiesHelp(1),
            "KPX_ADMIN_SETUP_TAB\nKPX_PROPERTIES_DEFAULTS_BUTTON\nKPX_PROPERTIES_BUTTONS\n");
  EXPECT_EQ(PropertiesHelp(3),
            "KPX_OPTIONS_TAB\nKPX_PROPERTIES_DEFAULTS_BUTTON\nKPX_PROPERTIES_BUTTONS\n");
  EXPECT_EQ(PropertiesHelp(6), "KPX_ADMIN_CUSTOMS_TAB\nKPX_PROPERTIES_BUTTONS\n");
  EXPECT_EQ(PropertiesHelp(7),
            "KPX_FONTS_TAB\nKPX_PROPERTIES_DEFAULTS_BUTTON\nKPX_PROPERTIES_BUTTONS\n");
}

TEST_F(PropertiesHelpText, ThePrintToolHasBlocksOfItsOwn) {
  G_ProgName = kModePrintTool;
  EXPECT_EQ(PropertiesHelp(0),
            "KPX_TOOL_GEN_TAB\nKPX_TOOL_GEN_TAB_FTRS\nKPX_ABOUT_BTN\nKPX_PROPERTIES_BUTTONS\n");
  EXPECT_EQ(PropertiesHelp(5),
            "KPX_FONTS_TAB\nKPX_PROPERTIES_DEFAULTS_BUTTON\nKPX_PROPERTIES_BUTTONS\n");
}

TEST_F(PropertiesHelpText, ATextQueuesOptionsPageExplainsPagesASheet) {
  Must(fSet_Language_Function(G_CurrentQueue.get(), Text("text").get()));
  EXPECT_EQ(PropertiesHelp(3),
            "KPX_OPTIONS_TAB\nKPX_MULTIPLE_UP\nKPX_PROPERTIES_DEFAULTS_BUTTON\n"
            "KPX_PROPERTIES_BUTTONS\n");
}

TEST_F(Properties, OfTwoConflictingChoicesTheLatestStands) {
  Open();
  Choose("*Duplex", "DuplexNoTumble");
  Choose("*MediaType", "Thick");
  std::optional<SettingsConflict> conflict = FindLinearConflict(G_QueueFeatures_hash);
  ASSERT_TRUE(conflict.has_value());
  std::optional<ResolvedConflict> resolved = ResolveConflict(*conflict);
  ASSERT_TRUE(resolved.has_value());
  EXPECT_EQ(resolved->feature, "*Duplex");
  EXPECT_EQ(resolved->option, "None");
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Thick");
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);

  Choose("*Duplex", "DuplexNoTumble");
  conflict = FindLinearConflict(G_QueueFeatures_hash);
  resolved = ResolveConflict(*conflict);
  EXPECT_EQ(resolved->feature, "*MediaType");
  EXPECT_EQ(resolved->option, "Plain");
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "DuplexNoTumble");
}

TEST_F(Properties, BesideInstalledHardwareTheOtherSettingGivesWay) {
  Open();
  Choose("*MediaType", "Foil");
  const std::optional<SettingsConflict> conflict =
      FindLinearConflict(G_QueueInstallableOptions_hash);
  ASSERT_TRUE(conflict.has_value());
  const std::optional<ResolvedConflict> resolved = ResolveConflict(*conflict);
  EXPECT_EQ(resolved->feature, "*MediaType");
  EXPECT_EQ(resolved->option, "Plain");
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*OptionHCF"), "False");
}

TEST_F(Properties, AValueThatConflictsElsewhereIsNotChosen) {
  Open();
  Choose("*PageSize", "Letter");
  Choose("*Duplex", "DuplexNoTumble");
  Must(HashPutText(G_QueueInstallableOptions_hash, "*OptionHCF", "True"));
  Choose("*MediaType", "Thick");
  NoteUserChoice("*Duplex");
  const std::optional<ResolvedConflict> resolved =
      ResolveConflict({"*Duplex", "DuplexNoTumble", "*MediaType", "Thick"});
  EXPECT_EQ(resolved->feature, "*MediaType");
  EXPECT_EQ(resolved->option, "Foil") << "Plain conflicts with Letter";
}

TEST_F(Properties, WithoutAnyValueThatFitsNothingChanges) {
  Open();
  SetQueueValue(G_QueueInstallableOptions_hash, "*InstalledMemory", "64Meg");
  const std::optional<ResolvedConflict> resolved =
      SettleConflict({"*OptionShelf", "True", "*InstalledMemory", "64Meg"});
  EXPECT_EQ(resolved, std::nullopt);
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*InstalledMemory"), "64Meg");
}

// Two covers that do not go together, each with a tray that asks for it.
TEST_F(Properties, WhereNoValueFitsTheDefaultComesFirstAndThenWhatAsksForTheOther) {
  PrintsCovers();
  Open();
  Choose("*Front", "Blank");
  Choose("*FrontTray", "Tray1");
  Choose("*Back", "Blank");
  Choose("*BackTray", "Tray1");
  const SettingsConflict conflict = {"*Back", "Blank", "*Front", "Blank"};
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), conflict);
  EXPECT_EQ(ResolveConflict(conflict), std::nullopt);
  EXPECT_EQ(SettleConflict(conflict), (ResolvedConflict{"*Front", "None"}));
  const SettingsConflict next = {"*Front", "None", "*FrontTray", "Tray1"};
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), next);
  EXPECT_EQ(SettleConflict(next), (ResolvedConflict{"*FrontTray", "None"}));
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);
  EXPECT_EQ(QueueFeatureValue("*BackTray"), "Tray1");
}

TEST_F(Properties, OfTwoPartsThatDoNotGoTogetherTheOneAddedLastStaysInTheAdministration) {
  Open();
  for (const char *part : {"*OptionHCF", "*OptionBypass"}) {
    SetQueueValue(G_QueueInstallableOptions_hash, part, "True");
    NoteUserChoice(part);
  }
  const SettingsConflict conflict = {"*OptionBypass", "True", "*OptionHCF", "True"};
  EXPECT_TRUE(MayResolve(conflict));
  EXPECT_EQ(ResolveConflict(conflict), (ResolvedConflict{"*OptionHCF", "False"}));
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*OptionHCF"), "False");
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*OptionBypass"), "True");
}

TEST_F(Properties, AUserOfThePrintToolCannotChangeWhatIsInstalled) {
  Open();
  G_ProgName = kModePrintTool;
  for (const char *part : {"*OptionHCF", "*OptionBypass"}) {
    SetQueueValue(G_QueueInstallableOptions_hash, part, "True");
  }
  const SettingsConflict conflict = {"*OptionBypass", "True", "*OptionHCF", "True"};
  EXPECT_FALSE(MayResolve(conflict));
  EXPECT_EQ(ResolveConflict(conflict), std::nullopt);
  EXPECT_STREQ(HashText(G_QueueInstallableOptions_hash, "*OptionHCF"), "True");
}

}  // namespace
