// The Features tab in its window: the two lists, what moves an option between them, Defaults, and
// the picture of the printer.
#include <algorithm>

#include "InstallableLists.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "PrinterPicture.h"
#include "PropTabFeatures.h"
#include "cfeature.h"
#include "debug.h"
#include "paths.h"
#include "propertiestest.h"

namespace {

using Settings = std::vector<std::pair<const char *, const char *>>;
using Strings = std::vector<std::string>;

class FeaturesTab : public PropertiesTest {
 protected:
  void SetUp() override {
    PropertiesTest::SetUp();
    G_ProgName = kModeAdministration;
    add_pixmap_directory(kPixmapDir);
    TakePrinter("vek41101");
    // Clicks come faster than a user's, and none of them is half of a double click.
    g_object_set(gtk_settings_get_default(), "gtk-double-click-time", 1, nullptr);
  }
  void TearDown() override {
    G_DebugLevel = 0;
    PropertiesTest::TearDown();
    G_PrinterModel = 0;
  }

  void OpenTab(const Settings &installed = {}, const Settings &settings = {}) {
    Open(PlaceOf(Page::kFeatures), settings, "postscript", installed);
  }

  static GtkWidget *Available() { return G_InstallableLists.available; }
  static GtkWidget *Installed() { return G_InstallableLists.installed; }

  static Strings Rows(GtkWidget *list) {
    Strings rows;
    for (int row = 0; row < ListRowCount(list); ++row) rows.push_back(ListCell(list, row, 0));
    return rows;
  }

  // A real click on the row with that text, mark included.
  void ClickRow(GtkWidget *list, const std::string &text) const {
    const Strings rows = Rows(list);
    const auto found = std::find(rows.begin(), rows.end(), text);
    ASSERT_NE(found, rows.end()) << text;
    const int row = static_cast<int>(found - rows.begin());
    ListShowRow(list, row);
    RunPending();
    GdkRectangle area;
    GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
    auto *view = GTK_TREE_VIEW(list);
    gtk_tree_view_get_cell_area(view, path, gtk_tree_view_get_column(view, 0), &area);
    gtk_tree_path_free(path);
    gtk_tree_view_convert_bin_window_to_widget_coords(view, area.x, area.y, &area.x, &area.y);
    area = OnScreen(list, area);
    XInputClick(area.x + 10, area.y + area.height / 2);
    RunPending();
    EXPECT_TRUE(ListIsSelected(list, row)) << text;
  }

  void Add(const std::string &text) const {
    ClickRow(Available(), text);
    ClickOn(Named("AddFeaturesButton"));
  }
  void Remove(const std::string &text) const {
    ClickRow(Installed(), text);
    ClickOn(Named("RemoveFeaturesButton"));
  }
  void Defaults() const { ClickOn(Named("DefaultFeaturesButton")); }

  static std::string Value(const char *feature) {
    const char *value = HashText(G_QueueInstallableOptions_hash, feature);
    return value == nullptr ? "(none)" : value;
  }

  // What is drawn: the base, and "-" for each group without overlay.
  std::string Picture(const Strings &candidates) const {
    std::string drawn;
    for (const char *name :
         {"PrinterFeature1Pixmap", "PrinterFeature2Pixmap", "PrinterFeature3Pixmap"}) {
      std::string file = "-";
      if (gtk_widget_get_mapped(Named(name)) != FALSE) {
        file = "?";
        for (const std::string &candidate : candidates) {
          if (ShowsPicture(Named(name), candidate + ".xpm")) file = candidate;
        }
      }
      drawn += (drawn.empty() ? "" : " ") + file;
    }
    return drawn;
  }
  std::string Picture() const {
    return Picture({"Printer_OptionHCF", "Printer_OptionFinisher", "Printer_OptionTray4",
                    "Printer_OptionBypassTray", "Printer_OptionTray4_OptionBypassTray"});
  }
};

}  // namespace

TEST_F(FeaturesTab, ShowsWhatIsInstalledAndWhatIsNot) {
  OpenTab({{"*OptionFinisher", "True"}, {"*OptionPunch", "Punch3Hole"}});
  EXPECT_EQ(Rows(Installed()), (Strings{"    Finisher", "    Three-hole punch unit"}));
  EXPECT_EQ(Rows(Available()),
            (Strings{"    Bypass tray", "    High-capacity feeder", "    Two-hole punch unit",
                     "    Four-hole punch unit", "    Tray 4"}));
  EXPECT_EQ(gtk_label_get_mnemonic_widget(GTK_LABEL(Named("AvailableLabel"))), Available());
  EXPECT_EQ(gtk_label_get_mnemonic_widget(GTK_LABEL(Named("InstalledLabel"))), Installed());
  EXPECT_EQ(Available(), Named("AvailableClist"));
  EXPECT_EQ(Installed(), Named("InstalledClist"));
  Named("AvailableScrolledwindow");
  Named("InstalledScrolledwindow");
  EXPECT_EQ(gtk_label_get_text(GTK_LABEL(Named("FeaturesLabel"))),
            CatalogueText("DEF_TAB_FEATURES"));
}

TEST_F(FeaturesTab, AButtonCanBePressedWhileARowOfItsListIsSelected) {
  OpenTab({{"*OptionFinisher", "True"}});
  EXPECT_FALSE(IsSensitive("AddFeaturesButton"));
  EXPECT_FALSE(IsSensitive("RemoveFeaturesButton"));
  ClickRow(Available(), "    Tray 4");
  EXPECT_EQ(G_PropTabFeatures_helper->available.row, ListRowCount(Available()) - 1);
  EXPECT_EQ(G_PropTabFeatures_helper->installed.row, -1);
  EXPECT_TRUE(IsSensitive("AddFeaturesButton"));
  EXPECT_FALSE(IsSensitive("RemoveFeaturesButton"));
  ClickRow(Installed(), "    Finisher");
  EXPECT_EQ(G_PropTabFeatures_helper->installed.row, 0);
  EXPECT_TRUE(IsSensitive("AddFeaturesButton"));
  EXPECT_TRUE(IsSensitive("RemoveFeaturesButton"));
  ListUnselectRow(Available(), ListRowCount(Available()) - 1);
  EXPECT_EQ(G_PropTabFeatures_helper->available.row, -1);
  EXPECT_FALSE(IsSensitive("AddFeaturesButton"));
  EXPECT_TRUE(IsSensitive("RemoveFeaturesButton"));
}

TEST_F(FeaturesTab, AddingAndRemovingABooleanOptionStoresTrueAndFalse) {
  OpenTab();
  Add("    High-capacity feeder");
  EXPECT_EQ(Value("*OptionHCF"), "True");
  EXPECT_EQ(Rows(Installed()), Strings{"    High-capacity feeder"});
  EXPECT_EQ(ListRowCount(Available()), 6);
  EXPECT_EQ(G_PropTabFeatures_helper->available.row, -1);
  EXPECT_FALSE(IsSensitive("AddFeaturesButton"));
  Remove("    High-capacity feeder");
  EXPECT_EQ(Value("*OptionHCF"), "False");
  EXPECT_TRUE(Rows(Installed()).empty());
  EXPECT_EQ(G_PropTabFeatures_helper->installed.row, -1);
  EXPECT_FALSE(IsSensitive("RemoveFeaturesButton"));
}

TEST_F(FeaturesTab, AddingOneOfSeveralStoresItInPlaceOfTheOther) {
  OpenTab({{"*OptionFinisher", "True"}, {"*OptionPunch", "Punch2Hole"}});
  Add("    Four-hole punch unit");
  EXPECT_EQ(Value("*OptionPunch"), "Punch4Hole");
  EXPECT_EQ(Rows(Installed()), (Strings{"    Finisher", "    Four-hole punch unit"}));
  Remove("    Four-hole punch unit");
  EXPECT_EQ(Value("*OptionPunch"), "None");
  EXPECT_EQ(Rows(Installed()), Strings{"    Finisher"});
}

TEST_F(FeaturesTab, RemovingAnOptionThatHasNoNoneStoresTheFirstOtherOne) {
  OpenTab({{"*OptionFinisher", "True"}, {"*OptionPunch", "Punch2Hole"}});
  CHash *options =
      fGet_Options_Function(HashValue<CFeature>(G_PrinterInstallableOptions_hash, "*OptionPunch"));
  HashRemove(options, "None");
  Remove("    Two-hole punch unit");
  EXPECT_EQ(Value("*OptionPunch"), "Punch3Hole");
  Remove("    Three-hole punch unit");
  EXPECT_EQ(Value("*OptionPunch"), "Punch2Hole");
}

TEST_F(FeaturesTab, TheTextIsComparedWithoutItsMark) {
  OpenTab({{"*OptionPunch", "Punch2Hole"}});
  Add("!   Three-hole punch unit");
  EXPECT_EQ(Value("*OptionPunch"), "Punch3Hole");
  EXPECT_EQ(Rows(Installed()), Strings{"!   Three-hole punch unit"});
}

TEST_F(FeaturesTab, ButtonsWithoutASelectedRowDoNothing) {
  OpenTab({{"*OptionFinisher", "True"}});
  ButtonFeaturesAddPressed();
  ButtonFeaturesRemovePressed();
  EXPECT_EQ(Rows(Installed()), Strings{"    Finisher"});
  EXPECT_EQ(Value("*OptionFinisher"), "True");
}

TEST_F(FeaturesTab, EveryOptionListIsMarkedAnew) {
  OpenTab();
  const auto mark_of = [this](const std::string &list, const std::string &text) {
    for (const std::string &row : PropertiesTest::Rows(list)) {
      if (row.size() > 4 && row.substr(4) == text) return row.substr(0, 1);
    }
    return std::string("no such row");
  };
  EXPECT_EQ(mark_of("PaperSource", "Tray 4"), "!");
  Add("    Tray 4");
  EXPECT_EQ(mark_of("PaperSource", "Tray 4"), " ");
  Remove("    Tray 4");
  EXPECT_EQ(mark_of("PaperSource", "Tray 4"), "!");
}

TEST_F(FeaturesTab, AChoiceOnAnotherTabMarksTheRowsHere) {
  OpenTab();
  gtk_notebook_set_current_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook), 1);
  RunPending();
  Choose("PaperSource", "!   Tray 4");
  const Strings rows = Rows(Available());
  EXPECT_NE(std::find(rows.begin(), rows.end(), "!   Tray 4"), rows.end());
}

TEST_F(FeaturesTab, ThePictureShowsTheModelAndWhatIsInstalled) {
  OpenTab({{"*OptionFinisher", "True"}});
  EXPECT_TRUE(ShowsPicture(Named("PrinterBasePixmap"), "Printer_5.xpm"));
  Named("PrinterPixmapsFixed");
  EXPECT_EQ(Picture(), "- Printer_OptionFinisher -");
  Add("    High-capacity feeder");
  EXPECT_EQ(Picture(), "Printer_OptionHCF Printer_OptionFinisher -");
  Add("    Tray 4");
  EXPECT_EQ(Picture(), "Printer_OptionHCF Printer_OptionFinisher Printer_OptionTray4");
  Remove("    Finisher");
  EXPECT_EQ(Picture(), "Printer_OptionHCF - Printer_OptionTray4");
  Remove("    High-capacity feeder");
  Add("    Bypass tray");
  EXPECT_EQ(Picture(), "- - Printer_OptionTray4_OptionBypassTray");
  Remove("    Tray 4");
  EXPECT_EQ(Picture(), "- - Printer_OptionBypassTray");
}

TEST_F(FeaturesTab, ThePictureIsSaidInWords) {
  OpenTab({{"*OptionTray4", "True"}, {"*OptionBypassTray", "True"}});
  const auto name_of = [this](const char *picture) {
    return std::string(atk_object_get_name(gtk_widget_get_accessible(Named(picture))));
  };
  EXPECT_EQ(name_of("PrinterBasePixmap"), "Vek Norvel 4110ES");
  EXPECT_EQ(name_of("PrinterFeature3Pixmap"), "Tray 4, Bypass tray");
  Remove("    Tray 4");
  EXPECT_EQ(name_of("PrinterFeature3Pixmap"), "Bypass tray");
}

TEST_F(FeaturesTab, OptionsWithoutAPlaceInThePictureDoNotRedrawIt) {
  OpenTab({{"*OptionFinisher", "True"}});
  SetQueueValue(G_QueueInstallableOptions_hash, "*OptionHCF", "True");
  Add("    Two-hole punch unit");
  EXPECT_EQ(Picture(), "- Printer_OptionFinisher -");
  RedrawFeaturesPixmaps();
  EXPECT_EQ(Picture(), "Printer_OptionHCF Printer_OptionFinisher -");
}

TEST_F(FeaturesTab, ThePunchUnitRedrawsThePunchPicture) {
  OpenTab({{"*OptionFinisher", "True"}, {"*OptionPunch", "Punch2Hole"}},
          {{"*Punch", "Punch2Hole"}});
  GtkWidget *punch = OptionPicture("*Punch");
  const auto spoil = [&] { change_pixmap(punch, "cps.xpm"); };
  const auto is_drawn = [&] { return !ShowsPicture(punch, "cps.xpm"); };
  spoil();
  Add("    Tray 4");
  EXPECT_FALSE(is_drawn());
  Add("    Three-hole punch unit");
  EXPECT_TRUE(is_drawn());
  spoil();
  Remove("!   Three-hole punch unit");
  EXPECT_TRUE(is_drawn());
  Add("!   Two-hole punch unit");
  spoil();
  Defaults();
  EXPECT_TRUE(is_drawn());
}

TEST_F(FeaturesTab, DefaultsPutEverythingBack) {
  OpenTab({{"*OptionHCF", "True"}, {"*OptionFinisher", "True"}, {"*OptionPunch", "Punch2Hole"}});
  Defaults();
  EXPECT_EQ(Value("*OptionHCF"), "False");
  EXPECT_EQ(Value("*OptionFinisher"), "False");
  EXPECT_EQ(Value("*OptionPunch"), "None");
  EXPECT_TRUE(Rows(Installed()).empty());
  EXPECT_EQ(ListRowCount(Available()), 7);
  EXPECT_EQ(Picture(), "- - -");
}

TEST_F(FeaturesTab, DefaultsThatChangeOnlyTheFinisherLeaveThePictureAsItWas) {
  OpenTab({{"*OptionFinisher", "True"}, {"*OptionTray4", "True"}});
  Defaults();
  EXPECT_EQ(Value("*OptionFinisher"), "False");
  EXPECT_EQ(Picture(), "- Printer_OptionFinisher Printer_OptionTray4");
  EXPECT_TRUE(Rows(Installed()).empty());
}

TEST_F(FeaturesTab, DefaultsOfDefaultsRefillNothing) {
  OpenTab();
  ClickRow(Available(), "    Tray 4");
  Defaults();
  EXPECT_TRUE(ListIsSelected(Available(), ListRowCount(Available()) - 1));
}

TEST_F(FeaturesTab, DefaultsStopAtAnOptionWithoutDefault) {
  OpenTab({{"*OptionBypassTray", "True"}, {"*OptionHCF", "True"}});
  HashRemove(G_PrinterInstallableOptions_hash, "*OptionFinisher");
  testing::internal::CaptureStderr();
  G_DebugLevel = 2;
  ButtonFeaturesDefaultsPressed();
  G_DebugLevel = 0;
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unable to load the default option for *OptionFinisher\n");
  EXPECT_EQ(Value("*OptionBypassTray"), "False");
  EXPECT_EQ(Value("*OptionHCF"), "True");
  EXPECT_EQ(ListRowCount(Installed()), 2);
}

TEST_F(FeaturesTab, OptionsMoveByTheKeyboardAlone) {
  OpenTab();
  Focus("AvailableClist");
  XInputChord("Home");
  XInputChord("space");
  RunPending();
  ASSERT_TRUE(IsSensitive("AddFeaturesButton"));
  XInputChord("Tab");
  RunPending();
  ASSERT_TRUE(HasFocus("AddFeaturesButton"));
  XInputChord("space");
  RunPending();
  EXPECT_EQ(Value("*OptionBypassTray"), "True");
  EXPECT_TRUE(HasFocus("AvailableClist"));
}

TEST_F(FeaturesTab, ThePrintToolHasThePictureAndTheListOnItsFirstTab) {
  G_ProgName = kModePrintTool;
  Open(PlaceOf(Page::kGeneral), {}, "postscript", {{"*OptionHCF", "True"}});
  EXPECT_EQ(Picture(), "Printer_OptionHCF - -");
  EXPECT_EQ(lookup_widget(window_, "AvailableClist"), nullptr);
  EXPECT_EQ(G_PropTabFeatures_helper, nullptr);
}

TEST_F(FeaturesTab, WithoutAWindowThereIsNothingToDraw) {
  RedrawFeaturesPixmaps();
  EXPECT_EQ(G_PropertiesWindow_helper, nullptr);
}
