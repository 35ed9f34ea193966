// Presets on queues of the shipped printers and of described ones: which fit, what choosing one
// sets and what gives way, and what saving keeps.
#include "presets.h"

#include <gtest/gtest.h>

#include <memory>

#include "globals.h"
#include "ignoreresult.h"
#include "installation.h"
#include "multipleup.h"
#include "optionsupport.h"
#include "printermodels.h"
#include "settingkeys.h"
#include "shippedprinter.h"

namespace {

using Strings = std::vector<std::string>;
using Settings = std::map<std::string, std::string>;

class PresetRules : public testing::Test {
 protected:
  PresetRules() {
    G_ProgName = kModePrintTool;
    Use("vek41201");
  }
  ~PresetRules() override {
    G_OrgQueues_hash = nullptr;
    G_ProgName = kModeNeither;
  }

  // A queue on that printer, of that type, becomes the current one.
  void Use(const std::string &description, const std::string &type = "postscript") {
    current_.reset();
    QueueValues values;
    values.language = type;
    current_ =
        std::make_unique<CurrentPrinterAndQueue>(kInstalledPafs + description + ".paf", values);
  }
  static void Install(const char *part) { CurrentPrinterAndQueue::Install(part, "True"); }

  static std::string Value(const char *key) { return QueueFeatureValue(key); }
  static Settings All() {
    Settings settings;
    for (const auto [key, value] : Pairs<CString>(G_QueueFeatures_hash))
      settings[key] = TextOf(value);
    return settings;
  }
  // Of the built-in one; none when it does not fit.
  static Settings BuiltIn(const char *name_key) {
    const std::vector<Preset> presets = BuiltInPresets();
    const Preset *preset = FindPreset(presets, CatalogueText(name_key));
    return preset == nullptr ? Settings{} : preset->settings;
  }
  static Strings Changed(const PresetResult &result) {
    Strings changed;
    for (const ResolvedConflict &other : result.others)
      changed.push_back(other.feature + "=" + other.option);
    return changed;
  }

  std::unique_ptr<CurrentPrinterAndQueue> current_;

 private:
  ProgramMessages messages_{ContentOf(kInstalledCatalogue)};
};

TEST_F(PresetRules, DraftTakesTheDraftQualityAndTheLowestResolution) {
  EXPECT_EQ((Settings{{"*OutputMode", "Draft"}, {"*Resolution", "300dpi"}}),
            BuiltIn("PRESET_DRAFT"));
}

TEST_F(PresetRules, DraftLeavesAResolutionAloneThatTheWindowDoesNotSet) {
  Use("vek41051");
  EXPECT_EQ((Settings{{"*OutputMode", "Draft"}}), BuiltIn("PRESET_DRAFT"));
}

TEST_F(PresetRules, DraftPutsTwoPagesOnASheetWhereTheQueueLaysThemOut) {
  Use("vek41051", "text");
  EXPECT_EQ((Settings{{"*Nup", "2"}, {"*OutputMode", "Draft"}}), BuiltIn("PRESET_DRAFT"));
}

TEST_F(PresetRules, HandoutIsThereOnlyWithAFinisher) {
  EXPECT_EQ(Settings{}, BuiltIn("PRESET_HANDOUT"));
  Install("*OptionFinisher");
  EXPECT_EQ((Settings{{"*Collate", "True"},
                      {"*Duplex", "DuplexNoTumble"},
                      {"*OutputBin", "FinisherTray"},
                      {"*StapleLocation", "SinglePortrait"}}),
            BuiltIn("PRESET_HANDOUT"));
  CurrentPrinterAndQueue::Set("*Orientation", "RotLandscape");
  EXPECT_EQ("SingleLandscape", BuiltIn("PRESET_HANDOUT")["*StapleLocation"]);
}

TEST_F(PresetRules, BuiltInPresetsOfEveryShippedPrinterCanBeChosen) {
  for (const char *printer :
       {"vek41001", "vek41021", "vek41051", "vek41101", "vek41201", "vek41211"}) {
    for (const char *type : {"postscript", "text", "pcl6", "raw"}) {
      Use(printer, type);
      Install("*OptionFinisher");
      const std::vector<Preset> presets = BuiltInPresets();
      EXPECT_EQ(2U, presets.size()) << printer << type;
      for (const Preset &preset : presets) {
        const PresetResult result = ApplyPreset(preset);
        EXPECT_EQ("", result.refusal) << printer << type << preset.name;
        EXPECT_EQ(Strings{}, Changed(result)) << printer << type << preset.name;
        for (const auto &[key, value] : preset.settings)
          EXPECT_EQ(value, Value(key.c_str())) << key;
      }
      EXPECT_FALSE(FindLinearConflict(G_QueueFeatures_hash)) << printer << type;
    }
  }
}

TEST_F(PresetRules, OtherMakersNamesCountForAddedModels) {
  CurrentOptions options;
  G_PrinterModel = kAddedModelNumber;
  options.Feature({"*JCLEconomode", "Off", {{"On", "On"}, {"Off", "Off"}}});
  options.Feature({"*Duplex", "None", {{"None", "Off"}, {"DuplexNoTumble", "Long"}}});
  options.Feature(
      {"*RIStaple", "None", {{"None", "Off"}, {"UpperLeft", "Corner"}, {"Saddle", "Middle"}}});
  EXPECT_EQ((Settings{{"*JCLEconomode", "On"}}), BuiltIn("PRESET_DRAFT"));
  EXPECT_EQ((Settings{{"*Duplex", "DuplexNoTumble"}, {"*RIStaple", "UpperLeft"}}),
            BuiltIn("PRESET_HANDOUT"));
}

TEST_F(PresetRules, NoneIsMadeUpForAPrinterThatHasNothingForIt) {
  CurrentOptions options;
  options.Feature({"*Duplex", "None", {{"None", "Off"}, {"DuplexNoTumble", "Long"}}});
  options.Feature({"*StapleLocation", "None", {{"None", "Off"}, {"Saddle", "Middle"}}});
  options.Feature({"*Resolution", "600dpi", {{"600dpi", "600"}, {"1200dpi", "1200"}}});
  EXPECT_EQ(0U, BuiltInPresets().size());
}

TEST_F(PresetRules, APresetFitsWhereTheQueueHasWhatItNeeds) {
  EXPECT_EQ("", WhyPresetMisfits({"A", {{"*Duplex", "DuplexTumble"}, {"*NrCopies", "9"}}}));
  EXPECT_EQ(CatalogueText("PRESET_FEATURE_LACKING", {"Watermark"}),
            WhyPresetMisfits({"A", {{"*Watermark", "On"}}}));
  EXPECT_EQ(CatalogueText("PRESET_CHOICE_LACKING", {"Two-sided printing", "Three"}),
            WhyPresetMisfits({"A", {{"*Duplex", "Three"}}}));
  EXPECT_EQ(CatalogueText("PRESET_PAGES_LACKING"), WhyPresetMisfits({"A", {{"*Nup", "2"}}}));
  EXPECT_EQ(CatalogueText("PRESET_FEATURE_LACKING", {"OptionFinisher"}),
            WhyPresetMisfits({"A", {{"*OptionFinisher", "True"}}}));
  Use("vek41201", "text");
  EXPECT_EQ("", WhyPresetMisfits({"A", {{"*Nup", "2"}}}));
  Use("vek41201", "pcl6");
  EXPECT_EQ(CatalogueText("PRESET_FEATURE_LACKING", {"HalfTone"}),
            WhyPresetMisfits({"A", {{"*HalfTone", "Fine"}}}));
}

TEST_F(PresetRules, APresetNeedsTheInstalledParts) {
  const Preset preset = {"A", {{"*InputSlot", "Tray4"}}};
  EXPECT_NE("", WhyPresetMisfits(preset));
  Install("*OptionTray4");
  EXPECT_EQ("", WhyPresetMisfits(preset));
}

TEST_F(PresetRules, APresetMayNotExcludeItself) {
  EXPECT_NE("", WhyPresetMisfits({"A", {{"*PageSize", "A6"}, {"*Duplex", "DuplexNoTumble"}}}));
  // What is set beside it does not count.
  CurrentPrinterAndQueue::Set("*PageSize", "A6");
  EXPECT_EQ("", WhyPresetMisfits({"A", {{"*Duplex", "DuplexNoTumble"}}}));
}

TEST_F(PresetRules, ASizeOfTheQueuesOwnIsNeededByName) {
  const Preset preset = {"A", {{"*PageSize", "Ticket"}}};
  EXPECT_EQ(CatalogueText("PRESET_CHOICE_LACKING", {"Paper size", "Ticket"}),
            WhyPresetMisfits(preset));
  CurrentOptions::Paper("Ticket");
  EXPECT_EQ("", WhyPresetMisfits(preset));
  EXPECT_EQ("", ApplyPreset(preset).refusal);
  EXPECT_EQ("Ticket", Value("*PageSize"));
  // It is compared as a custom size: nothing of the kind is printed on both sides.
  EXPECT_NE("", WhyPresetMisfits({"A", {{"*PageSize", "Ticket"}, {"*Duplex", "DuplexTumble"}}}));
}

TEST_F(PresetRules, WhatIsSetBesideAPresetStays) {
  CurrentPrinterAndQueue::Set("*MediaType", "Recycled");
  CurrentPrinterAndQueue::Set("*DeliveryPIN", "1234");
  Settings expected = All();
  expected["*Duplex"] = "DuplexTumble";
  expected["*NrCopies"] = "5";
  const PresetResult result = ApplyPreset({"A", {{"*Duplex", "DuplexTumble"}, {"*NrCopies", "5"}}});
  EXPECT_EQ("", result.refusal);
  EXPECT_EQ(expected, All());
}

TEST_F(PresetRules, WhatExcludesThePresetGivesWay) {
  CurrentPrinterAndQueue::Set("*PageSize", "A6");
  NoteUserChoice("*PageSize");
  const PresetResult result = ApplyPreset({"A", {{"*Duplex", "DuplexTumble"}}});
  EXPECT_EQ("", result.refusal);
  EXPECT_EQ(Strings{"*PageSize=A4"}, Changed(result));
  EXPECT_EQ("A4", Value("*PageSize"));
  EXPECT_EQ("DuplexTumble", Value("*Duplex"));
}

TEST_F(PresetRules, AnOlderConflictOfOthersIsLeftToTheUser) {
  CurrentPrinterAndQueue::Set("*PageSize", "A3");
  CurrentPrinterAndQueue::Set("*InputSlot", "Tray1");
  EXPECT_EQ(Strings{}, Changed(ApplyPreset({"A", {{"*Collate", "True"}}})));
  EXPECT_EQ("A3", Value("*PageSize"));
  EXPECT_EQ("Tray1", Value("*InputSlot"));
}

TEST_F(PresetRules, APresetThatCannotBeHadChangesNothing) {
  CurrentOptions options;
  options.Feature({"*A", "1", {{"1", "One"}, {"2", "Two"}}});
  options.Feature({"*B", "1", {{"1", "One"}, {"2", "Two"}}});
  options.Feature({"*C", "1", {{"1", "One"}}});
  options.Set("*A", "1");
  options.Set("*B", "1");
  options.Set("*C", "1");
  options.Forbid("*A", "2", "*C", "1");  // which has no other choice
  options.Forbid("*B", "1", "*A", "2");
  NoteUserChoice("*B");
  const Settings before = All();
  const PresetResult result = ApplyPreset({"A", {{"*A", "2"}}});
  EXPECT_NE("", result.refusal);
  EXPECT_EQ(Strings{}, Changed(result));
  EXPECT_EQ(before, All());
  EXPECT_EQ(Strings{"*B"}, UserChoices());
  EXPECT_EQ(CatalogueText("PRESET_FEATURE_LACKING", {"D"}),
            ApplyPreset({"A", {{"*D", "1"}, {"*B", "2"}}}).refusal);
  EXPECT_EQ(before, All());
}

TEST_F(PresetRules, PagesOnASheetAreSetAsTheWindowSetsThem) {
  Use("vek41201", "text");
  EXPECT_EQ("", ApplyPreset({"A", {{"*Nup", "4"}, {"*NupOrder", "Down"}}}).refusal);
  EXPECT_EQ("4", Value("*Nup"));
  EXPECT_EQ("Down", Value("*NupOrder"));
  EXPECT_EQ("", ApplyPreset({"A", {{"*Booklet", "1"}}}).refusal);
  EXPECT_EQ("1", Value("*Booklet"));
  EXPECT_EQ("", Value("*Nup"));
  EXPECT_EQ("", ApplyPreset({"A", {{"*Booklet", "0"}}}).refusal);
  EXPECT_EQ("1", Value("*Nup"));
  EXPECT_EQ("", Value("*Booklet"));
  EXPECT_EQ("", ApplyPreset({"A", {{"*Nup", "2"}, {"*Orientation", "Landscape"}}}).refusal);
  EXPECT_EQ("2", Value("*Nup"));
  EXPECT_EQ("", Value("*NupOrder"));
}

TEST_F(PresetRules, SavingKeepsWhatDiffersFromTheQueuesOwn) {
  const Owned<CHash> queues = CreateHash();
  Owned<CPrintQueue> queue = MakeQueue();
  Must(HashPutText(queue->Options.get(), "*Duplex", "DuplexNoTumble"));
  Must(HashPutText(queue->Options.get(), "*NrCopies", "2"));
  Must(HashPut(queues.get(), "lp1", std::move(queue)));
  G_OrgQueues_hash = queues.get();
  CurrentPrinterAndQueue::Set("*Duplex", "DuplexNoTumble");
  EXPECT_EQ(Settings{}, PresetOfSettings("A", 2).settings);
  CurrentPrinterAndQueue::Set("*Duplex", "None");  // the printer's usual, but not the queue's
  CurrentPrinterAndQueue::Set("*Delivery", "HoldJobUntilYouEnterPIN");
  for (const auto &[key, value] : Settings{{"*DeliveryPIN", "1234"},
                                           {"*UserName", "anna"},
                                           {"*JobName", "Letter"},
                                           {"*EmailNotification", "JobFailed"},
                                           {"*EmailAddress", "anna@example.com"},
                                           {"*EmailMessage", "done"},
                                           {"*FontSize", "12"},
                                           {"*Nup", "2"}}) {
    CurrentPrinterAndQueue::Set(key.c_str(), value.c_str());
  }
  const Preset preset = PresetOfSettings("A", 1);
  EXPECT_EQ("A", preset.name);
  EXPECT_EQ(
      (Settings{{"*Delivery", "HoldJobUntilYouEnterPIN"}, {"*Duplex", "None"}, {"*NrCopies", "1"}}),
      preset.settings);
  EXPECT_EQ((Strings{"Delivery: Hold until the PIN is entered", "Two-sided printing: One-sided",
                     "Copies: 1"}),
            PresetWords(preset));
}

TEST_F(PresetRules, SavingKeepsPagesOnASheet) {
  Use("vek41201", "text");
  AddDefaultMultipleUpSettings();
  EXPECT_EQ(Settings{}, PresetOfSettings("A", 1).settings);
  IgnoreResult(ChooseMultipleUp("4"), "the order comes next");
  ChooseNupOrder("Back");
  EXPECT_EQ((Settings{{"*Nup", "4"}, {"*NupOrder", "Back"}}), PresetOfSettings("A", 1).settings);
  EXPECT_EQ((Strings{"Pages per sheet: 4", "Pages per sheet: Down, then left"}),
            PresetWords(PresetOfSettings("A", 1)));
  IgnoreResult(ChooseMultipleUp(kBookletKey), "a booklet has no order");
  EXPECT_EQ((Settings{{"*Booklet", "1"}}), PresetOfSettings("A", 1).settings);
  EXPECT_EQ(Strings{"Pages per sheet: Booklet"}, PresetWords(PresetOfSettings("A", 1)));
}

TEST_F(PresetRules, WhatWasSavedCanBeChosenAgain) {
  CurrentPrinterAndQueue::Set("*PageSize", "A3");
  CurrentPrinterAndQueue::Set("*OutputMode", "High");
  const Preset preset = PresetOfSettings("A", 7);
  Use("vek41101");
  EXPECT_EQ("", ApplyPreset(preset).refusal);
  EXPECT_EQ("A3", Value("*PageSize"));
  EXPECT_EQ("High", Value("*OutputMode"));
  EXPECT_EQ("7", Value("*NrCopies"));
}

}  // namespace
