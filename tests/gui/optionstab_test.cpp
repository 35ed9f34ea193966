// The Options tab in its window: which rows there are, every way to choose pages a sheet and their
// order, Defaults.
#include "ComboWidget.h"
#include "OptionCombos.h"
#include "PropTabOptions.h"
#include "debug.h"
#include "paths.h"
#include "propertiestest.h"

namespace {

using Settings = std::vector<std::pair<const char *, const char *>>;

class OptionsTab : public PropertiesTest {
 protected:
  void SetUp() override {
    PropertiesTest::SetUp();
    add_pixmap_directory(kPixmapDir);
    TakePrinter("vek41101");
  }
  void TearDown() override {
    G_DebugLevel = 0;
    G_PrinterModel = 0;
    PropertiesTest::TearDown();
  }

  void OpenText(const Settings &settings = {}) { Open(PlaceOf(Page::kOptions), settings, "text"); }

  bool Has(const std::string &name) const {
    return lookup_widget(window_, name.c_str()) != nullptr;
  }

  // "*Booklet", "*Nup" and "*NupOrder" of the work copy, "-" for none.
  static std::string Settled() {
    std::string settled;
    for (const char *key : {"*Booklet", "*Nup", "*NupOrder"}) {
      const char *value = HashText(G_QueueFeatures_hash, key);
      settled += std::string(settled.empty() ? "" : "/") + (value == nullptr ? "-" : value);
    }
    return settled;
  }

  // The active buttons of both groups: "Nup2 NupLeft".
  std::string Active() const {
    std::string active;
    for (const char *name : {"Nup1", "Booklet", "Nup2", "Nup4", "Nup6", "Nup9", "Nup16", "NupLeft",
                             "NupRight", "NupDown", "NupBack"}) {
      GtkWidget *button = Named(std::string(name) + "Radiobutton");
      if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)) == FALSE) continue;
      active += std::string(active.empty() ? "" : " ") + name;
    }
    return active;
  }

  // The page orders that can be seen: "LR", "LRDB" or "".
  std::string Orders() const {
    std::string shown;
    for (const char *name : {"Left", "Right", "Down", "Back"}) {
      GtkWidget *button = Named(std::string("Nup") + name + "Radiobutton");
      GtkWidget *picture = Named(std::string("Nup") + name + "Pixmap");
      EXPECT_EQ(gtk_widget_get_mapped(button), gtk_widget_get_mapped(picture)) << name;
      if (gtk_widget_get_mapped(button) != FALSE) shown += name[0];
    }
    return shown;
  }

  // Until what is shown now has its place.
  void WaitForFrame() const {
    GdkFrameClock *clock = gtk_widget_get_frame_clock(window_);
    bool painted = false;
    const gulong handler = g_signal_connect(
        clock, "after-paint",
        G_CALLBACK(+[](GdkFrameClock *, gpointer done) { *static_cast<bool *>(done) = true; }),
        &painted);
    gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_PAINT);
    EXPECT_TRUE(RunUntil([&] { return painted; }));
    g_signal_handler_disconnect(clock, handler);
  }

  void Press(const std::string &name) const {
    ClickOn(Named(name + "Radiobutton"));
    WaitForFrame();
  }

  // Whether the pages' pictures, or those of the orders, are those files.
  void ExpectPicture(const std::string &name, const std::string &file) const {
    EXPECT_TRUE(ShowsPicture(Named(name + "Pixmap"), file + ".xpm")) << name << " " << file;
  }

  // Chooses an orientation as the user does, and comes back.
  void Turn(const std::string &text) const {
    auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
    gtk_notebook_set_current_page(notebook, PlaceOf(Page::kOutput));
    RunPending();
    Choose("Orientation", "    " + text);
    gtk_notebook_set_current_page(notebook, PlaceOf(Page::kOptions));
    RunPending();
    WaitForFrame();
  }

  static void Set(const char *feature, const char *option) {
    SetQueueValue(G_QueueFeatures_hash, feature, option);
  }

  // What the log says meanwhile.
  static std::string LogOf(int level, const std::function<void()> &action) {
    testing::internal::CaptureStderr();
    G_DebugLevel = level;
    action();
    G_DebugLevel = 0;
    return testing::internal::GetCapturedStderr();
  }
};

}  // namespace

TEST_F(OptionsTab, HasItsRowsAndButtonsUnderTheirNames) {
  OpenText();
  for (const char *row : {"Resolution", "PrintQuality", "Halftone"}) {
    EXPECT_TRUE(IsLabelledBy(std::string(row) + "Combo", std::string(row) + "Label")) << row;
    EXPECT_FALSE(Has(std::string(row) + "Pixmap")) << row;
  }
  EXPECT_EQ(gtk_frame_get_label(GTK_FRAME(Named("NupFrame"))),
            CatalogueText("DEF_LBL_MULTIPLEUP_TITLE"));
  const std::vector<std::pair<std::string, std::string>> buttons = {
      {"Nup1", "1UP"},       {"Booklet", "BOOKLET"}, {"Nup2", "2UP"},    {"Nup4", "4UP"},
      {"Nup6", "6UP"},       {"Nup9", "9UP"},        {"Nup16", "16UP"},  {"NupLeft", "LEFT"},
      {"NupRight", "RIGHT"}, {"NupDown", "DOWN"},    {"NupBack", "BACK"}};
  for (const auto &[name, key] : buttons) {
    const std::string text = CatalogueText("DEF_BTN_" + key + "_TITLE");
    EXPECT_EQ(gtk_button_get_label(GTK_BUTTON(Named(name + "Radiobutton"))), text);
    AtkObject *picture = gtk_widget_get_accessible(Named(name + "Pixmap"));
    EXPECT_EQ(atk_object_get_name(picture), text);
  }
  EXPECT_EQ(gtk_notebook_get_tab_label_text(
                GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook),
                gtk_notebook_get_nth_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook),
                                          PlaceOf(Page::kOptions))),
            CatalogueText("DEF_TAB_OPTIONS"));
}

TEST_F(OptionsTab, ThePictureIsAboveItsButton) {
  OpenText();
  Press("Nup4");
  for (const char *name : {"Nup16", "NupBack"}) {
    const GdkRectangle picture = OnScreen(Named(std::string(name) + "Pixmap"));
    const GdkRectangle button = OnScreen(Named(std::string(name) + "Radiobutton"));
    EXPECT_GE(picture.height, 64) << name;
    EXPECT_LE(picture.y + picture.height, button.y) << name;
  }
}

TEST_F(OptionsTab, OnlyTextQueuesChoosePagesASheetAndPclQueuesNoHalftone) {
  const std::vector<std::pair<std::string, std::pair<bool, bool>>> languages = {
      {"postscript", {false, true}},
      {"text", {true, true}},
      {"pcl6", {false, false}},
      {"raw", {false, true}}};
  for (const auto &[language, has] : languages) {
    Open(PlaceOf(Page::kOptions), {}, language);
    EXPECT_EQ(Has("NupFrame"), has.first) << language;
    EXPECT_EQ(Has("Nup2Radiobutton"), has.first) << language;
    EXPECT_EQ(Has("HalftoneCombo"), has.second) << language;
    EXPECT_TRUE(Has("ResolutionCombo")) << language;
    EXPECT_TRUE(Has("PrintQualityCombo")) << language;
    ButtonCancelPropertiesPressed();
  }
}

TEST_F(OptionsTab, AQueueWithoutSettingsHasOnePageASheet) {
  OpenText();
  EXPECT_EQ(Settled(), "0/1/Left");
  EXPECT_EQ(Active(), "Nup1 NupLeft");
  EXPECT_EQ(Orders(), "");
}

TEST_F(OptionsTab, OpeningShowsWhatIsStoredAndChangesNothing) {
  struct Row {
    Settings stored;
    const char *settled;
    const char *active;
    const char *orders;
    const char *log;
  };
  const Row rows[] = {
      {{{"*Booklet", "1"}}, "1/-/Left", "Booklet NupLeft", "", "BOOKLET"},
      {{{"*Nup", "2"}, {"*NupOrder", "Right"}}, "0/2/Right", "Nup2 NupRight", "LR", "NUP_2"},
      {{{"*Nup", "2"}, {"*Orientation", "Landscape"}}, "0/2/Left", "Nup2 NupLeft", "", "NUP_2"},
      {{{"*Nup", "4"}, {"*NupOrder", "Back"}}, "0/4/Back", "Nup4 NupBack", "LRDB", "NUP_4"},
      {{{"*Nup", "4"}, {"*NupOrder", "Down"}}, "0/4/Down", "Nup4 NupDown", "LRDB", "NUP_DOWN"},
      {{{"*Nup", "6"}}, "0/6/Left", "Nup6 NupLeft", "", "NUP_6"},
      {{{"*Nup", "9"}}, "0/9/Left", "Nup9 NupLeft", "", "NUP_9"},
      {{{"*Nup", "16"}}, "0/16/Left", "Nup16 NupLeft", "", "NUP_16"},
      {{{"*Nup", "3"}, {"*NupOrder", "Up"}}, "0/3/Up", "Nup1 NupLeft", "", ""}};
  for (const Row &row : rows) {
    const std::string log = LogOf(2, [&] { OpenText(row.stored); });
    EXPECT_EQ(Settled(), row.settled);
    EXPECT_EQ(Active(), row.active) << row.settled;
    EXPECT_EQ(Orders(), row.orders) << row.settled;
    const std::string toggling = std::string("Toggling the ") + row.log;
    EXPECT_EQ(log.find(toggling + " radio button\n") != std::string::npos, *row.log != '\0') << log;
    ButtonCancelPropertiesPressed();
  }
}

TEST_F(OptionsTab, EveryChoiceStoresAndShowsWhatBelongsToIt) {
  struct Row {
    const char *button;
    const char *settled;
    const char *orders;
    const char *settled_lying;
    const char *orders_lying;
  };
  const Row rows[] = {
      {"Nup1", "-/1/-", "", "-/1/-", ""},      {"Booklet", "1/-/-", "", "1/-/-", ""},
      {"Nup2", "-/2/Left", "LR", "-/2/-", ""}, {"Nup4", "-/4/Left", "LRDB", "-/4/Left", "LRDB"},
      {"Nup6", "-/6/-", "", "-/6/-", ""},      {"Nup9", "-/9/-", "", "-/9/-", ""},
      {"Nup16", "-/16/-", "", "-/16/-", ""}};
  for (const char *orientation : {"Portrait", "Landscape", "RotLandscape"}) {
    const bool lies = std::string(orientation) != "Portrait";
    OpenText({{"*Orientation", orientation}});
    for (const Row &before : rows) {
      for (const Row &row : rows) {
        const std::string where = std::string(orientation) + " " + before.button + " " + row.button;
        Press(before.button);
        Press(row.button);
        EXPECT_EQ(Settled(), lies ? row.settled_lying : row.settled) << where;
        EXPECT_EQ(Orders(), lies ? row.orders_lying : row.orders) << where;
        EXPECT_EQ(Active(), std::string(row.button) + " NupLeft") << where;
      }
    }
    ButtonCancelPropertiesPressed();
  }
}

TEST_F(OptionsTab, AClickOnAPictureIsOneOnItsButton) {
  OpenText();
  ClickOn(Named("Nup4Pixmap"));
  WaitForFrame();
  EXPECT_EQ(Settled(), "-/4/Left");
  EXPECT_TRUE(HasFocus("Nup4Radiobutton"));
  ClickOn(Named("NupBackPixmap"));
  EXPECT_EQ(Settled(), "-/4/Back");
  EXPECT_EQ(Active(), "Nup4 NupBack");
}

TEST_F(OptionsTab, EveryOrderIsStored) {
  OpenText();
  Press("Nup4");
  for (const char *order : {"Right", "Down", "Back", "Left"}) {
    Press(std::string("Nup") + order);
    EXPECT_EQ(Settled(), std::string("-/4/") + order);
  }
  Press("Nup2");
  Press("NupRight");
  EXPECT_EQ(Settled(), "-/2/Right");
  EXPECT_EQ(Active(), "Nup2 NupRight");
}

TEST_F(OptionsTab, FromFourPagesBackwardsToSixTheOrderGoes) {
  OpenText();
  Press("Nup4");
  Press("NupBack");
  EXPECT_EQ(Settled(), "-/4/Back");
  Press("Nup6");
  EXPECT_EQ(Settled(), "-/6/-");
  Press("Nup4");
  EXPECT_EQ(Settled(), "-/4/Left");
  EXPECT_EQ(Active(), "Nup4 NupLeft");
}

TEST_F(OptionsTab, PressingTheActiveButtonAgainStartsWithTheFirstOrder) {
  OpenText({{"*Nup", "4"}, {"*NupOrder", "Back"}});
  Press("Nup4");
  EXPECT_EQ(Settled(), "-/4/Left");
  EXPECT_EQ(Active(), "Nup4 NupLeft");
}

TEST_F(OptionsTab, HandlersOfButtonsThatAreNotActiveDoNothing) {
  OpenText({{"*Nup", "4"}, {"*NupOrder", "Down"}});
  RadioButtonNupPressed("16");
  RadioButtonNupPressed("3");
  RadioButtonNupOrderPressed("Left");
  EXPECT_EQ(Settled(), "0/4/Down");
}

TEST_F(OptionsTab, ArrowKeysChooseLikeClicks) {
  OpenText();
  Focus("Nup1Radiobutton");
  const std::pair<const char *, const char *> steps[] = {{"1/-/-", "Booklet"}, {"-/2/Left", "Nup2"},
                                                         {"-/4/Left", "Nup4"}, {"-/6/-", "Nup6"},
                                                         {"-/9/-", "Nup9"},    {"-/16/-", "Nup16"}};
  for (const auto &[settled, button] : steps) {
    XInputChord("Right");
    RunPending();
    EXPECT_EQ(Settled(), settled);
    EXPECT_TRUE(HasFocus(std::string(button) + "Radiobutton")) << button;
  }
  Press("Nup2");
  Focus("NupLeftRadiobutton");
  XInputChord("Right");
  RunPending();
  EXPECT_EQ(Settled(), "-/2/Right");
  // The orders that are not shown cannot be reached.
  XInputChord("Right");
  RunPending();
  EXPECT_EQ(Settled(), "-/2/Right");
  XInputChord("Left");
  RunPending();
  EXPECT_EQ(Settled(), "-/2/Left");
}

TEST_F(OptionsTab, PicturesFollowPagesAndOrder) {
  OpenText();
  for (const char *name : {"Nup1", "Nup2", "Nup4", "Nup6", "Nup9", "Nup16"}) {
    ExpectPicture(name, "Nup_" + std::string(name).substr(3) + "P");
  }
  ExpectPicture("Booklet", "Booklet_1P");
  Press("Nup2");
  ExpectPicture("NupLeft", "NupOrder_Left2P");
  ExpectPicture("NupRight", "NupOrder_Right2P");
  Press("Nup4");
  for (const char *order : {"Left", "Right", "Down", "Back"}) {
    ExpectPicture(std::string("Nup") + order, std::string("NupOrder_") + order + "4P");
  }
}

TEST_F(OptionsTab, PicturesTurnWithTheSheet) {
  OpenText();
  Press("Nup4");
  Turn("Landscape");
  ExpectPicture("Nup2", "Nup_2L");
  ExpectPicture("Nup16", "Nup_16L");
  ExpectPicture("Booklet", "Booklet_1L");
  ExpectPicture("NupLeft", "NupOrder_Left4L");
  ExpectPicture("NupBack", "NupOrder_Back4L");
  Turn("Portrait");
  ExpectPicture("Nup2", "Nup_2P");
  ExpectPicture("NupBack", "NupOrder_Back4P");
}

TEST_F(OptionsTab, WithoutANumberOfPagesTheOrdersPicturesStay) {
  OpenText();
  Press("Nup4");
  Press("Booklet");
  Set("*Orientation", "Landscape");
  const std::string log = LogOf(2, [] { G_RedrawMultipleNupOrdersPixmaps(); });
  EXPECT_EQ(log, "NUP not defined! There is no need for redrawing!\n");
  ExpectPicture("NupDown", "NupOrder_Down4P");
  G_RedrawMultipleUpPixmaps();
  ExpectPicture("Nup4", "Nup_4L");
}

TEST_F(OptionsTab, TurningTheSheetHidesTheOrdersOfTwoPagesAndStoresOne) {
  OpenText();
  Press("Nup2");
  Press("NupRight");
  Turn("Landscape");
  EXPECT_EQ(Settled(), "-/2/Left");
  EXPECT_EQ(Orders(), "");
  Turn("Portrait");
  EXPECT_EQ(Settled(), "-/2/Left");
  EXPECT_EQ(Orders(), "LR");
  EXPECT_EQ(Active(), "Nup2 NupLeft");
  ExpectPicture("NupLeft", "NupOrder_Left2P");
  Turn("Rotated landscape");
  EXPECT_EQ(Settled(), "-/2/Right");
  EXPECT_EQ(Orders(), "");
  Turn("Portrait");
  EXPECT_EQ(Settled(), "-/2/Right");
  EXPECT_EQ(Orders(), "LR");
  EXPECT_EQ(Active(), "Nup2 NupRight");
}

TEST_F(OptionsTab, TurningASheetOfTwoPagesThatWasChosenLyingShowsTheFirstOrder) {
  OpenText({{"*Orientation", "Landscape"}});
  Press("Nup2");
  EXPECT_EQ(Settled(), "-/2/-");
  Turn("Portrait");
  EXPECT_EQ(Settled(), "-/2/-");
  EXPECT_EQ(Orders(), "LR");
  EXPECT_EQ(Active(), "Nup2 NupLeft");
  Press("NupLeft");
  EXPECT_EQ(Settled(), "-/2/Left");
}

TEST_F(OptionsTab, TurningTheSheetLeavesOtherChoicesAlone) {
  OpenText({{"*Nup", "4"}, {"*NupOrder", "Back"}});
  Turn("Landscape");
  EXPECT_EQ(Settled(), "0/4/Back");
  EXPECT_EQ(Orders(), "LRDB");
  Press("Nup9");
  Turn("Portrait");
  EXPECT_EQ(Settled(), "-/9/-");
  EXPECT_EQ(Orders(), "");
}

TEST_F(OptionsTab, OrdersThatComeAndGoMoveNothing) {
  OpenText();
  const int before = OnScreen(Named("DefaultOptionsButton")).y;
  const GdkRectangle frame = OnScreen(Named("NupFrame"));
  Press("Nup4");
  EXPECT_EQ(OnScreen(Named("DefaultOptionsButton")).y, before);
  EXPECT_EQ(OnScreen(Named("NupFrame")).height, frame.height);
}

TEST_F(OptionsTab, DefaultsResetQualityAndPagesASheet) {
  OpenText({{"*Resolution", "1200dpi"}, {"*Booklet", "1"}});
  ASSERT_EQ(Text("ResolutionComboEntry"), "    1200 dpi");
  ClickOn(Named("DefaultOptionsButton"));
  EXPECT_EQ(QueueFeatureValue("*Resolution"), "600dpi");
  EXPECT_EQ(Text("ResolutionComboEntry"), "    600 dpi");
  EXPECT_EQ(Settled(), "-/1/-");
  EXPECT_EQ(Active(), "Nup1 NupLeft");
  Press("Nup4");
  Press("NupBack");
  ClickOn(Named("DefaultOptionsButton"));
  EXPECT_EQ(Settled(), "-/1/-");
  EXPECT_EQ(Orders(), "");
}

TEST_F(OptionsTab, DefaultsTouchTheResolutionOfModelsThreeToSixOnly) {
  const std::vector<std::pair<int, std::string>> models = {
      {0, "1200dpi"}, {1, "1200dpi"}, {2, "1200dpi"}, {3, "600dpi"},
      {4, "600dpi"},  {5, "600dpi"},  {6, "600dpi"},  {7, "1200dpi"}};
  OpenText();
  for (const auto &[model, expected] : models) {
    G_PrinterModel = model;
    Set("*Resolution", "1200dpi");
    ClickOn(Named("DefaultOptionsButton"));
    EXPECT_EQ(QueueFeatureValue("*Resolution"), expected) << model;
  }
}

TEST_F(OptionsTab, DefaultsOfDefaultsRefillNothing) {
  OpenText();
  ComboFill(OptionCombo("*PageSize"), {});
  ClickOn(Named("DefaultOptionsButton"));
  EXPECT_TRUE(Rows("PaperSize").empty());
  Set("*Resolution", "1200dpi");
  ClickOn(Named("DefaultOptionsButton"));
  EXPECT_FALSE(Rows("PaperSize").empty());
}

TEST_F(OptionsTab, DefaultsStopAtAFeatureWithoutDefault) {
  OpenText({{"*Resolution", "1200dpi"}, {"*Nup", "4"}});
  HashRemove(G_PrinterFeatures_hash, "*OutputMode");
  const std::string log = LogOf(2, [] { ButtonOptionsDefaultsPressed(); });
  EXPECT_EQ(log, "Unable to load the default option for Print quality\n");
  EXPECT_EQ(LogOf(1, [] { ButtonOptionsDefaultsPressed(); }), "") << "the level of start-up steps";
  EXPECT_EQ(QueueFeatureValue("*Resolution"), "600dpi");
  EXPECT_EQ(Text("ResolutionComboEntry"), "    1200 dpi");
  EXPECT_EQ(Settled(), "0/4/Left");
}

TEST_F(OptionsTab, DefaultsOfAQueueWithoutButtonsResetThePagesToo) {
  Open(PlaceOf(Page::kOptions), {{"*Nup", "2"}}, "postscript");
  EXPECT_EQ(Settled(), "0/2/Left");
  ClickOn(Named("DefaultOptionsButton"));
  EXPECT_EQ(Settled(), "-/1/-");
  RadioButtonNupPressed("2");
  RadioButtonNupOrderPressed("Left");
  G_RedrawMultipleUpPixmaps();
  G_RedrawMultipleNupOrdersPixmaps();
  EXPECT_EQ(Settled(), "-/1/-");
}

TEST_F(OptionsTab, OkStoresTheChoiceOfATextQueue) {
  OpenText();
  Press("Nup2");
  Press("NupRight");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*Nup"), "2");
  EXPECT_EQ(Stored("*NupOrder"), "Right");
  EXPECT_EQ(Stored("*Booklet"), "(none)");
}

TEST_F(OptionsTab, OkStoresNoPagesASheetForOtherQueues) {
  Open(PlaceOf(Page::kOptions), {{"*Nup", "2"}, {"*NupOrder", "Right"}}, "postscript");
  ASSERT_TRUE(PressOk());
  for (const char *key : {"*Nup", "*NupOrder", "*Booklet"}) EXPECT_EQ(Stored(key), "(none)") << key;
}
