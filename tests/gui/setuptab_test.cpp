// The Setup and Output tabs in their window: what Defaults puts back, in which order, what is drawn
// and filled again and what the log says about it; the copies.
#include <array>

#include "ComboWidget.h"
#include "InstallableLists.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "PropTabOutput.h"
#include "PropTabSetup.h"
#include "cfeature.h"
#include "debug.h"
#include "propertiestest.h"

namespace {

constexpr char kPrinterName[] = "Vek Norvel 4110ES";
constexpr char kSpoilt[] = "cps.xpm";  // no option's picture on these tabs but of a custom size
using Strings = std::vector<std::string>;

// A row in the order in which Defaults goes through them.
struct Row {
  const char *feature;
  const char *usual;    // the printer's default
  const char *other;    // another option
  const char *picture;  // of the default
  const char *log_name;
};

constexpr std::array<Row, 5> kSetup = {{
    {"*PageSize", "A4", "A3", "PageSize_A4.xpm", "Paper size"},
    {"*MediaType", "Plain", "Thick", "MediaType_Plain.xpm", "Paper type"},
    {"*InputSlot", "AutoSelect", "Tray2", "InputSlot_AutoSelect.xpm", "Paper source"},
    {"*Collate", "False", "True", "Collate_False.xpm", "Collation"},
    {"*Duplex", "None", "DuplexTumble", "Duplex_NoneP.xpm", "Duplex"},
}};
constexpr std::array<Row, 6> kOutput = {{
    {"*OutputBin", "OutputTray", "FinisherTray", "OutputBin_OutputTray.xpm", "Output bin"},
    {"*Jog", "None", "EndOfSet", "Jog_None.xpm", "Jog"},
    {"*Orientation", "Portrait", "Landscape", "Orientation_Portrait.xpm", "StaplePunchOrientation"},
    {"*StapleLocation", "None", "SinglePortrait", "StapleLocation_NoneP.xpm", "Staple"},
    {"*Punch", "None", "Punch2Hole", "Punch_NoneP.xpm", "Punch"},
    {"*EdgeToEdge", "False", "True", "EdgeToEdge_False.xpm", "EdgeToEdge"},
}};

template <size_t N>
std::vector<std::pair<const char *, const char *>> AllOther(const std::array<Row, N> &rows) {
  std::vector<std::pair<const char *, const char *>> settings;
  for (const Row &row : rows) settings.emplace_back(row.feature, row.other);
  return settings;
}

class SetupTab : public PropertiesTest {
 protected:
  void SetUp() override {
    PropertiesTest::SetUp();
    TakePrinter("vek41101");
  }
  void TearDown() override {
    G_DebugLevel = 0;
    G_PrinterModel = 0;
    PropertiesTest::TearDown();
  }

  static Strings WorkCopy() {
    Strings settings;
    for (const auto [feature, value] : Pairs<CString>(G_QueueFeatures_hash)) {
      settings.push_back(std::string(feature) + "=" + fGet_CString_Value_Function(value));
    }
    return settings;
  }

  // The printer, which no window may be open on, has no default for the feature any more.
  static void TakeDefaultAway(const char *feature) {
    const CHash *features = HashValue<CPrinter>(G_Printers_hash, kPrinterName)->features.get();
    HashValue<CFeature>(features, feature)->default_option.reset();
  }

  static void Spoil(const char *feature) { change_pixmap(OptionPicture(feature), kSpoilt); }
  static bool Shows(const char *feature, const char *file) {
    return ShowsPicture(OptionPicture(feature), file);
  }

  // Empties a combo, so that filling it is seen.
  static void EmptyCombo() { ComboFill(OptionCombo("*Resolution"), {}); }
  bool IsComboFilled() const { return !Rows("Resolution").empty(); }

  int Copies() const {
    return gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(Named("NrCopiesSpinbutton")));
  }
  void SetCopies(int copies) const {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(Named("NrCopiesSpinbutton")), copies);
  }

  // What the log says while the button is pressed.
  std::string LogOfPressing(const std::string &button, int level) const {
    testing::internal::CaptureStderr();
    G_DebugLevel = level;
    ClickOn(Named(button));
    G_DebugLevel = 0;
    return testing::internal::GetCapturedStderr();
  }

  static bool Says(const std::string &log, const std::string &text) {
    return log.find(text) != std::string::npos;
  }
  static std::string Begin(const std::string &routine) {
    return "BEGIN " + routine + "() function";
  }
  // The log has those texts, in that order.
  static void ExpectInOrder(const std::string &log, const Strings &texts) {
    size_t from = 0;
    for (const std::string &text : texts) {
      const size_t found = log.find(text, from);
      ASSERT_NE(found, std::string::npos) << text << " in " << log;
      from = found + text.size();
    }
  }

  // All rows are put back, drawn and filled.
  template <size_t N>
  void ExpectAllPutBack(int page, const std::array<Row, N> &rows, const std::string &button) {
    Open(page, AllOther(rows));
    for (const Row &row : rows) {
      ASSERT_EQ(QueueFeatureValue(row.feature), row.other);
      Spoil(row.feature);
    }
    EmptyCombo();
    ClickOn(Named(button));
    for (const Row &row : rows) {
      EXPECT_EQ(QueueFeatureValue(row.feature), row.usual);
      EXPECT_TRUE(Shows(row.feature, row.picture)) << row.feature;
      const char *entry = gtk_entry_get_text(GTK_ENTRY(OptionComboEntry(row.feature)));
      EXPECT_EQ(entry, "    " + OptionDisplayText(row.feature, row.usual));
    }
    EXPECT_TRUE(IsComboFilled());
  }

  // Whichever row has no default: those before it are put back, it and those behind are not, and
  // nothing is filled again.
  template <size_t N>
  void ExpectStops(int page, const std::array<Row, N> &rows, const std::string &button) {
    for (size_t without = 0; without < N; ++without) {
      const char *feature = rows.at(without).feature;
      TakePrinter("vek41101");
      TakeDefaultAway(feature);
      Open(page, AllOther(rows));
      EmptyCombo();
      EXPECT_EQ(LogOfPressing(button, 2), std::string("Unable to load the default option for ") +
                                              rows.at(without).log_name + "\n");
      for (size_t i = 0; i < N; ++i) {
        EXPECT_EQ(QueueFeatureValue(rows.at(i).feature),
                  i < without ? rows.at(i).usual : rows.at(i).other)
            << rows.at(i).feature << " without " << feature;
      }
      EXPECT_FALSE(IsComboFilled()) << feature;
      EXPECT_EQ(WindowNamed("ErrorDialog"), nullptr) << feature;
      ButtonCancelPropertiesPressed();
      HashRemove(G_Printers_hash, kPrinterName);
    }
  }

  // Defaults of defaults change no setting, draw nothing and fill no list.
  template <size_t N>
  void ExpectNothingDone(int page, const std::array<Row, N> &rows, const std::string &button) {
    for (const int mode : {kModeAdministration, kModePrintTool}) {
      G_ProgName = mode;
      Open(page, {{"*Resolution", "1200dpi"}});
      const Strings before = WorkCopy();
      for (const Row &row : rows) Spoil(row.feature);
      EmptyCombo();
      const std::string log = LogOfPressing(button, 4);
      EXPECT_EQ(WorkCopy(), before);
      for (const Row &row : rows) EXPECT_TRUE(Shows(row.feature, kSpoilt)) << row.feature;
      EXPECT_FALSE(IsComboFilled());
      for (const char *text : {"G_FillAllComboWithOptions", "G_FillInstallableCLists",
                               "G_FillFeaturesCList", "Refill", "Unable"}) {
        EXPECT_FALSE(Says(log, text)) << text;
      }
      ButtonCancelPropertiesPressed();
    }
  }
};

using OutputTab = SetupTab;

}  // namespace

TEST_F(SetupTab, DefaultsPutEveryRowBackDrawItAndFillEveryCombo) {
  ExpectAllPutBack(PlaceOf(Page::kSetup), kSetup, "DefaultSetupButton");
}

TEST_F(SetupTab, DefaultsOfDefaultsChangeNothingAndRefillNothing) {
  ExpectNothingDone(PlaceOf(Page::kSetup), kSetup, "DefaultSetupButton");
}

TEST_F(SetupTab, DefaultsStopAtTheRowWithoutDefaultWithALineInTheLog) {
  ExpectStops(PlaceOf(Page::kSetup), kSetup, "DefaultSetupButton");
}

TEST_F(SetupTab, WithoutADefaultCollationPaperIsResetAndCollationDuplexAndCopiesAreNot) {
  TakeDefaultAway("*Collate");
  Open(PlaceOf(Page::kSetup), AllOther(kSetup));
  SetCopies(7);
  ClickOn(Named("DefaultSetupButton"));
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Plain");
  EXPECT_EQ(QueueFeatureValue("*InputSlot"), "AutoSelect");
  EXPECT_EQ(QueueFeatureValue("*Collate"), "True");
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "DuplexTumble");
  EXPECT_EQ(Copies(), 7);
  // What was reset is drawn, but no list is filled again.
  EXPECT_TRUE(Shows("*PageSize", "PageSize_A4.xpm"));
  EXPECT_TRUE(Says(Text("PaperSizeComboEntry"), "A3"));
}

TEST_F(SetupTab, DefaultsFillTheCombosAndThenTheProgramsOwnList) {
  Open(PlaceOf(Page::kSetup), {{"*PageSize", "A3"}});
  std::string log = LogOfPressing("DefaultSetupButton", 4);
  ExpectInOrder(log, {Begin("ButtonSetupDefaultsPressed"), Begin("G_FillAllComboWithOptions"),
                      Begin("G_FillFeaturesCList")});
  EXPECT_FALSE(Says(log, "G_FillInstallableCLists"));
  ButtonCancelPropertiesPressed();
  G_ProgName = kModeAdministration;
  Open(PlaceOf(Page::kSetup), {{"*PageSize", "A3"}});
  log = LogOfPressing("DefaultSetupButton", 4);
  ExpectInOrder(log, {Begin("ButtonSetupDefaultsPressed"), Begin("G_FillAllComboWithOptions"),
                      Begin("G_FillInstallableCLists")});
  EXPECT_FALSE(Says(log, "G_FillFeaturesCList"));
}

TEST_F(SetupTab, DefaultsFillTheInstalledFeaturesOfTheToolAndBothListsOfTheAdministration) {
  Open(PlaceOf(Page::kSetup), {{"*PageSize", "A3"}});
  const int features = ListRowCount(G_InstallableLists.features);
  ASSERT_GT(features, 0);
  ListAppend(G_InstallableLists.features, {"old", "old"}, nullptr);
  ClickOn(Named("DefaultSetupButton"));
  EXPECT_EQ(ListRowCount(G_InstallableLists.features), features);
  ButtonCancelPropertiesPressed();
  G_ProgName = kModeAdministration;
  Open(PlaceOf(Page::kSetup), {{"*PageSize", "A3"}}, "postscript", {{"*OptionHCF", "True"}});
  for (GtkWidget *list : {G_InstallableLists.available, G_InstallableLists.installed}) {
    ListAppend(list, {"old"}, nullptr);
  }
  const int available = ListRowCount(G_InstallableLists.available);
  ClickOn(Named("DefaultSetupButton"));
  EXPECT_EQ(ListRowCount(G_InstallableLists.available), available - 1);
  EXPECT_EQ(ListRowCount(G_InstallableLists.installed), 1);
}

TEST_F(SetupTab, DefaultsSetTheToolsCopiesToOneEvenWhenNothingElseChanges) {
  for (const char *size : {"A4", "A3"}) {
    Open(PlaceOf(Page::kSetup), {{"*PageSize", size}, {"*NrCopies", "7"}});
    ASSERT_EQ(Copies(), 7);
    ClickOn(Named("DefaultSetupButton"));
    EXPECT_EQ(Copies(), 1) << size;
    ButtonCancelPropertiesPressed();
  }
}

TEST_F(SetupTab, DefaultsLeaveTheAdministrationsCopiesAlone) {
  G_ProgName = kModeAdministration;
  for (const char *size : {"A4", "A3"}) {
    Open(PlaceOf(Page::kSetup), {{"*PageSize", size}, {"*NrCopies", "7"}});
    ASSERT_EQ(Copies(), 7);
    ClickOn(Named("DefaultSetupButton"));
    EXPECT_EQ(Copies(), 7) << size;
    ButtonCancelPropertiesPressed();
  }
}

TEST_F(SetupTab, TypedCopiesOutOfRangeComeBackIntoItWhenTheEntryIsLeft) {
  Open(PlaceOf(Page::kSetup));
  const std::vector<std::pair<const char *, int>> typed = {
      {"0", 1},         {"-5", 1},         {"1", 1},     {"32767", 32767},
      {"32768", 32767}, {"999999", 32767}, {"250", 250}, {"0", 1}};
  for (const auto &[keys, copies] : typed) {
    Type("NrCopiesSpinbutton", keys);
    XInputChord("Tab");
    RunPending();
    EXPECT_FALSE(HasFocus("NrCopiesSpinbutton"));
    EXPECT_EQ(Copies(), copies) << keys;
    EXPECT_EQ(Text("NrCopiesSpinbutton"), std::to_string(copies)) << keys;
  }
}

TEST_F(SetupTab, OkStoresTypedCopiesWithinTheRange) {
  const std::vector<std::pair<const char *, const char *>> typed = {
      {"0", "1"}, {"40000", "32767"}, {"12", "12"}};
  for (const auto &[keys, stored] : typed) {
    Open(PlaceOf(Page::kSetup));
    Type("NrCopiesSpinbutton", keys);
    ASSERT_TRUE(PressOk());
    EXPECT_EQ(Stored("*NrCopies"), stored) << keys;
  }
}

TEST_F(SetupTab, CopiesStepByOneAndByTenWithinTheRange) {
  Open(PlaceOf(Page::kSetup));
  Focus("NrCopiesSpinbutton");
  const std::vector<std::pair<const char *, int>> steps = {{"Down", 1},  {"Up", 2},   {"Prior", 12},
                                                           {"Down", 11}, {"Next", 1}, {"Next", 1}};
  for (const auto &[key, copies] : steps) {
    XInputChord(key);
    RunPending();
    EXPECT_EQ(Copies(), copies) << key;
  }
  SetCopies(32767);
  XInputChord("Up");
  RunPending();
  EXPECT_EQ(Copies(), 32767);
  EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(Named("NrCopiesRangeLabel"))), "( 1 - 32767 )");
}

TEST_F(OutputTab, DefaultsPutEveryRowBackDrawItAndFillEveryCombo) {
  ExpectAllPutBack(PlaceOf(Page::kOutput), kOutput, "DefaultOutputButton");
}

TEST_F(OutputTab, DefaultsOfDefaultsChangeNothingAndRefillNothing) {
  ExpectNothingDone(PlaceOf(Page::kOutput), kOutput, "DefaultOutputButton");
}

TEST_F(OutputTab, DefaultsStopAtTheRowWithoutDefaultWithALineInTheLog) {
  ExpectStops(PlaceOf(Page::kOutput), kOutput, "DefaultOutputButton");
}

TEST_F(OutputTab, TurningTheSheetBackRedrawsStapleAndPunchThoughTheyAreAtTheirDefaults) {
  Open(PlaceOf(Page::kOutput), {{"*Orientation", "Landscape"}});
  ASSERT_TRUE(Shows("*StapleLocation", "StapleLocation_NoneL.xpm"));
  ASSERT_TRUE(Shows("*Punch", "Punch_NoneL.xpm"));
  ClickOn(Named("DefaultOutputButton"));
  EXPECT_TRUE(Shows("*StapleLocation", "StapleLocation_NoneP.xpm"));
  EXPECT_TRUE(Shows("*Punch", "Punch_NoneP.xpm"));
}

TEST_F(OutputTab, StapleAndPunchAtTheirDefaultsAreNotRedrawnWhileTheSheetStaysUpright) {
  Open(PlaceOf(Page::kOutput), {{"*Jog", "EndOfSet"}});
  Spoil("*StapleLocation");
  Spoil("*Punch");
  ClickOn(Named("DefaultOutputButton"));
  EXPECT_EQ(QueueFeatureValue("*Jog"), "None");
  EXPECT_TRUE(Shows("*StapleLocation", kSpoilt));
  EXPECT_TRUE(Shows("*Punch", kSpoilt));
}

// The choices before a missing default are made, so the sheet may have turned.
TEST_F(OutputTab, StapleAndPunchAreRedrawnForTheirOptionsWhenStapleHasNoDefault) {
  TakeDefaultAway("*StapleLocation");
  Open(PlaceOf(Page::kOutput),
       {{"*Orientation", "Landscape"}, {"*StapleLocation", "SinglePortrait"}});
  ASSERT_TRUE(Shows("*StapleLocation", "StapleLocation_SinglePortraitL.xpm"));
  ClickOn(Named("DefaultOutputButton"));
  EXPECT_EQ(QueueFeatureValue("*StapleLocation"), "SinglePortrait");
  EXPECT_TRUE(Shows("*StapleLocation", "StapleLocation_SinglePortraitP.xpm"));
  EXPECT_TRUE(Shows("*Punch", "Punch_NoneP.xpm"));
}

TEST_F(OutputTab, TheLogNamesTheListsThatAreFilledAgain) {
  Open(PlaceOf(Page::kOutput), {{"*Jog", "EndOfSet"}});
  std::string log = LogOfPressing("DefaultOutputButton", 4);
  ExpectInOrder(log,
                {Begin("G_FillAllComboWithOptions"), "END   G_FillAllComboWithOptions() function\n",
                 "Refill the Features CList\n", Begin("G_FillFeaturesCList")});
  EXPECT_FALSE(Says(log, "Installable CLists"));
  ButtonCancelPropertiesPressed();
  G_ProgName = kModeAdministration;
  Open(PlaceOf(Page::kOutput), {{"*Jog", "EndOfSet"}});
  log = LogOfPressing("DefaultOutputButton", 4);
  ExpectInOrder(log,
                {Begin("G_FillAllComboWithOptions"), "END   G_FillAllComboWithOptions() function\n",
                 "Refill the 2 Installable CLists\n", Begin("G_FillInstallableCLists")});
  EXPECT_FALSE(Says(log, "Features CList"));
}

TEST_F(OutputTab, DefaultsLeaveTheCopiesAlone) {
  Open(PlaceOf(Page::kOutput), {{"*Jog", "EndOfSet"}, {"*NrCopies", "7"}});
  ClickOn(Named("DefaultOutputButton"));
  EXPECT_EQ(Copies(), 7);
}
