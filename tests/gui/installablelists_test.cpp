// The lists of installable options, on an installed printer.

#include "InstallableLists.h"

#include <gtest/gtest.h>

#include "ConflictDialog.h"
#include "ListWidget.h"
#include "constraintmessages.h"
#include "cstring.h"
#include "guisupport.h"
#include "shippedprinter.h"

namespace {

using Cells = std::vector<std::string>;

class InstallableLists : public GuiTest {
 protected:
  void SetUp() override {
    printer_.emplace(std::string(kInstalledPafs) + "vek41101.paf");
    available_ = NewList({{nullptr, 100}}, GTK_SELECTION_SINGLE);
    installed_ = NewList({{nullptr, 100}}, GTK_SELECTION_SINGLE);
    features_ =
        NewList({{"DEF_LBL_FEATURE_TITLE", 0}, {"DEF_LBL_STATUS_TITLE", 0}}, GTK_SELECTION_NONE);
    GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    for (GtkWidget *list : {available_, installed_, features_}) {
      gtk_box_pack_start(GTK_BOX(box), list, TRUE, TRUE, 0);
    }
    window_ = Show(box);
    G_InstallableLists = {available_, installed_, features_};
  }

  void TearDown() override {
    G_InstallableLists = {};
    GuiTest::TearDown();
    printer_.reset();
  }

  static Cells Column(GtkWidget *list, int column = 0) {
    Cells cells;
    for (int row = 0; row < ListRowCount(list); ++row) cells.push_back(ListCell(list, row, column));
    return cells;
  }

  static Cells Data(GtkWidget *list) {
    Cells data;
    for (int row = 0; row < ListRowCount(list); ++row) {
      const auto *id = static_cast<const CString *>(ListRowData(list, row));
      data.emplace_back(fGet_CString_Value_Function(id));
    }
    return data;
  }

  static void Keep(const Cells &ids) {
    for (const std::string &id : Keys(G_PrinterInstallableOptions_hash)) {
      if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
        HashRemove(G_PrinterInstallableOptions_hash, id.c_str());
      }
    }
  }

  std::optional<CurrentPrinterAndQueue> printer_;
  GtkWidget *available_ = nullptr;
  GtkWidget *installed_ = nullptr;
  GtkWidget *features_ = nullptr;
  GtkWidget *window_ = nullptr;
};

}  // namespace

TEST_F(InstallableLists, ANewQueueHasEverythingAvailable) {
  EXPECT_EQ(1, G_FillInstallableCLists());
  EXPECT_EQ((Cells{"    Bypass tray", "    Finisher", "    High-capacity feeder",
                   "    Four-hole punch unit", "    Three-hole punch unit",
                   "    Two-hole punch unit", "    Tray 4"}),
            [&] {
              Cells cells = Column(available_);
              std::sort(cells.begin() + 3, cells.begin() + 6);
              return cells;
            }());
  EXPECT_EQ((Cells{"*OptionBypassTray", "*OptionFinisher", "*OptionHCF", "*OptionPunch",
                   "*OptionPunch", "*OptionPunch", "*OptionTray4"}),
            Data(available_));
  EXPECT_TRUE(Column(installed_).empty());
}

TEST_F(InstallableLists, OnlyMemoryGivesTwoEmptyLists) {
  Keep({"*InstalledMemory"});
  ASSERT_EQ(Cells{"*InstalledMemory"}, Keys(G_PrinterInstallableOptions_hash));
  G_FillInstallableCLists();
  EXPECT_EQ(0, ListRowCount(available_));
  EXPECT_EQ(0, ListRowCount(installed_));
}

TEST_F(InstallableLists, TheInstalledPunchUnitIsInTheOtherListThanItsAlternatives) {
  Keep({"*OptionPunch"});
  printer_->Install("*OptionFinisher", "True");
  printer_->Install("*OptionPunch", "Punch2Hole");
  G_FillInstallableCLists();
  EXPECT_EQ(Cells{"    Two-hole punch unit"}, Column(installed_));
  EXPECT_EQ((Cells{"    Three-hole punch unit", "    Four-hole punch unit"}), Column(available_));
  EXPECT_EQ(Cells{"*OptionPunch"}, Data(installed_));
}

TEST_F(InstallableLists, ABooleanOptionThatIsNeitherIsInNoList) {
  Keep({"*OptionHCF"});
  printer_->Install("*OptionHCF", "Maybe");
  G_FillInstallableCLists();
  EXPECT_EQ(0, ListRowCount(available_) + ListRowCount(installed_));
}

TEST_F(InstallableLists, EveryRowOfAConflictingOptionIsMarkedAndSaysWhy) {
  Keep({"*OptionPunch", "*OptionFinisher"});
  printer_->Install("*OptionPunch", "Punch2Hole");
  G_FillInstallableCLists();
  EXPECT_EQ(Cells{"!   Two-hole punch unit"}, Column(installed_));
  EXPECT_EQ((Cells{"!   Finisher", "!   Three-hole punch unit", "!   Four-hole punch unit"}),
            Column(available_));
  const std::string why =
      ConflictReason({"*OptionFinisher", "False", "*OptionPunch", "Punch2Hole"});
  EXPECT_EQ(why, ListTip(available_, 0));
  EXPECT_EQ(why, CellDescription(gtk_widget_get_accessible(available_), "!   Finisher"));
  printer_->Install("*OptionFinisher", "True");
  G_FillInstallableCLists();
  EXPECT_EQ("", ListTip(available_, 0));
}

TEST_F(InstallableLists, TheTipOfTheFeederIsAWholeSentenceThatNamesItAndThePaperSource) {
  Keep({"*OptionHCF"});
  printer_->Set("*InputSlot", "HCF");
  G_FillInstallableCLists();
  ASSERT_EQ(Cells{"!   High-capacity feeder"}, Column(available_));
  const std::string why = ListTip(available_, 0);
  EXPECT_NE(std::string::npos, why.find('"' + OptionDisplayText("*InputSlot", "HCF") + '"')) << why;
  EXPECT_NE(std::string::npos, why.find("paper source")) << why;
  EXPECT_TRUE(why.ends_with(".")) << why;
}

TEST_F(InstallableLists, RefillingReplacesRowsAndTheirData) {
  G_FillInstallableCLists();
  ListSelectRow(available_, 1);
  const int rows = ListRowCount(available_);
  printer_->Install("*OptionFinisher", "True");
  G_FillInstallableCLists();
  EXPECT_EQ(rows - 1, ListRowCount(available_));
  EXPECT_EQ(Cells{"*OptionFinisher"}, Data(installed_));
  EXPECT_FALSE(ListIsSelected(available_, 1));
}

TEST_F(InstallableLists, ARowWithoutTextIsLeftOut) {
  G_PutStringInInstallableClists(available_, {});
  G_PutStringInFeaturesClist(features_, {}, "status");
  EXPECT_EQ(0, ListRowCount(available_));
  EXPECT_EQ(0, ListRowCount(features_));
}

TEST_F(InstallableLists, TheFeaturesListSaysWhatIsInstalled) {
  Keep({"*OptionPunch", "*OptionHCF", "*InstalledMemory"});
  printer_->Install("*OptionHCF", "True");
  printer_->Install("*OptionPunch", "Punch3Hole");
  G_FillFeaturesCList();
  const std::string yes = CatalogueText("DEF_STR_INSTALLED");
  const std::string no = CatalogueText("DEF_STR_NOT_INSTALLED");
  EXPECT_EQ((Cells{"    High-capacity feeder", "!   Two-hole punch unit",
                   "!   Three-hole punch unit", "!   Four-hole punch unit"}),
            Column(features_));
  EXPECT_EQ((Cells{yes, no, yes, no}), Column(features_, 1));
  EXPECT_EQ(nullptr, ListRowData(features_, 0));
}

TEST_F(InstallableLists, WithoutListsThereIsNothingToFill) {
  G_InstallableLists = {};
  EXPECT_EQ(1, G_FillInstallableCLists());
  G_FillFeaturesCList();
  EXPECT_EQ(0, ListRowCount(available_) + ListRowCount(features_));
}

TEST_F(InstallableLists, TheirConflictIsToldAndMendedWithoutAPropertiesWindow) {
  for (const int program : {kModeAdministration, kModePrintTool}) {
    printer_->Install("*OptionFinisher", "False");
    G_ProgName = program;
    printer_->Install("*OptionPunch", "Punch2Hole");
    ASSERT_EQ(1, G_CheckLinearConstraints(G_QueueInstallableOptions_hash));
    GtkWidget *box = WindowNamed("ErrorDialog");
    ASSERT_NE(nullptr, box);
    GtkWidget *resolve = lookup_widget(box, "ResolveButton");
    EXPECT_EQ(program == kModeAdministration, resolve != nullptr);
    if (resolve != nullptr) {
      gtk_button_clicked(GTK_BUTTON(resolve));
      EXPECT_EQ(0, G_CheckLinearConstraints(G_QueueInstallableOptions_hash));
    }
    gtk_widget_destroy(box);
  }
  G_ProgName = kModeNeither;
}
