// What the option combos show: rows, marks and reasons, choice, pictures, rows that are not there.

#include <gtest/gtest.h>

#include "cfeature.h"
#include "constraintmessages.h"
#include "debug.h"
#include "featuretable.h"
#include "optionrows.h"

namespace {

using OptionCombos = OptionRowsTest;

int g_row_changes = 0;
std::vector<std::string> g_filled;

void CountRowChange(GtkTreeModel *, GtkTreePath *, GtkTreeIter *, gpointer) { ++g_row_changes; }

void NoteFilling(GtkTreeModel *, GtkTreePath *, GtkTreeIter *, gpointer feature) {
  const std::string name = static_cast<const char *>(feature);
  if (g_filled.empty() || g_filled.back() != name) g_filled.push_back(name);
}

GtkTreeModel *ModelOf(const char *feature) {
  return gtk_combo_box_get_model(GTK_COMBO_BOX(OptionCombo(feature)));
}

// Counts the rows written from now on, in all combos.
void CountRowChanges() {
  g_row_changes = 0;
  for (const ListedFeature &listed : ListedFeatures()) {
    for (const char *signal : {"row-changed", "row-inserted"}) {
      g_signal_connect(ModelOf(listed.feature), signal, G_CALLBACK(CountRowChange), nullptr);
    }
    g_signal_connect(ModelOf(listed.feature), "row-deleted",
                     G_CALLBACK(+[](GtkTreeModel *, GtkTreePath *, gpointer) { ++g_row_changes; }),
                     nullptr);
  }
}

bool IsSensitive(GtkWidget *widget) { return gtk_widget_is_sensitive(widget) != FALSE; }

}  // namespace

TEST_F(OptionCombos, EveryComboShowsTheListAndTheChoiceOfTheCore) {
  for (const char *printer :
       {"vek41001", "vek41021", "vek41051", "vek41101", "vek41201", "vek41211"}) {
    Use(printer);
    ShowRows();
    for (const ListedFeature &listed : ListedFeatures()) {
      if (HashFind(G_PrinterFeatures_hash, listed.feature) == nullptr) continue;
      EXPECT_EQ(RowsOfCore(listed.feature), RowsOf(listed.feature)) << printer << listed.feature;
      EXPECT_EQ(G_GetOptionsForFeature(G_PrinterFeatures_hash, listed.feature)->current_text,
                Shown(listed.feature))
          << printer << listed.feature;
    }
    ForgetOptionRows();
    gtk_widget_destroy(window_);
  }
}

TEST_F(OptionCombos, TheWidgetsHaveTheNamesOfTheirRow) {
  ShowRows();
  EXPECT_EQ(OptionCombo("*StapleLocation"), lookup_widget(window_, "StapleCombo"));
  EXPECT_EQ(OptionComboEntry("*StapleLocation"), lookup_widget(window_, "StapleComboEntry"));
  EXPECT_EQ(OptionPicture("*StapleLocation"), lookup_widget(window_, "StaplePixmap"));
  EXPECT_EQ(OptionCombo("*StapleLocation"),
            gtk_label_get_mnemonic_widget(GTK_LABEL(lookup_widget(window_, "StapleLabel"))));
  EXPECT_EQ(nullptr, OptionCombo("*NrCopies"));
  EXPECT_EQ(nullptr, OptionPicture("*Delivery"));
}

TEST_F(OptionCombos, AllCombosAreFilledInTheirOrderWhateverTheOrderTheyWereMadeIn) {
  ShowRows();
  for (const ListedFeature &listed : ListedFeatures()) {
    ComboFill(OptionCombo(listed.feature), {});
    g_signal_connect(ModelOf(listed.feature), "row-inserted", G_CALLBACK(NoteFilling),
                     const_cast<char *>(listed.feature));
  }
  g_filled.clear();
  G_FillAllComboWithOptions();
  std::vector<std::string> expected;
  for (const ListedFeature &listed : ListedFeatures()) expected.push_back(listed.feature);
  EXPECT_EQ(expected, g_filled);
}

TEST_F(OptionCombos, TheLogNamesEveryComboThatIsFilledInOrder) {
  ShowRows();
  testing::internal::CaptureStderr();
  G_DebugLevel = 3;
  G_FillAllComboWithOptions();
  G_DebugLevel = 0;
  std::string expected;
  for (const ListedFeature &listed : ListedFeatures()) {
    expected += std::string("Fill the ") + listed.name + " Combo\n";
  }
  EXPECT_EQ(expected, testing::internal::GetCapturedStderr());
}

TEST_F(OptionCombos, ARefillLogsTheFillingOfEveryCombo) {
  ShowRows({"*PageSize", "*Jog"});
  testing::internal::CaptureStderr();
  G_DebugLevel = 4;
  G_FillAllComboWithOptions();
  G_DebugLevel = 0;
  const std::string log = testing::internal::GetCapturedStderr();
  int fillings = 0;
  for (size_t at = log.find("BEGIN G_FillComboWithOptions() function"); at != std::string::npos;
       at = log.find("BEGIN G_FillComboWithOptions() function", at + 1)) {
    ++fillings;
  }
  EXPECT_EQ(2, fillings) << log;
  for (const char *routine : {"G_GetPPDDefaultOptionForFeature", "G_SetStringWithConstrain"}) {
    EXPECT_NE(std::string::npos, log.find(std::string("BEGIN ") + routine + "() function"));
    EXPECT_NE(std::string::npos, log.find(std::string("END   ") + routine + "() function"));
  }
}

TEST_F(OptionCombos, AMarkedRowSaysWhyInItsTooltip) {
  printer_->Set("*MediaType", "Transparency");
  ShowRows({"*PageSize", "*InputSlot"});
  const std::string why = ConflictReason({"*PageSize", "A3", "*MediaType", "Transparency"});
  EXPECT_NE(std::string::npos, why.find("Transparencies")) << why;
  Rows sizes = RowsOf("*PageSize");
  EXPECT_EQ((std::pair<std::string, std::string>{"!   A3", why}), sizes[0]);
  EXPECT_EQ((std::pair<std::string, std::string>{"    A4", ""}), sizes[1]);
}

TEST_F(OptionCombos, TheEntryOfAMarkedChoiceSaysWhyToEveryone) {
  printer_->Set("*MediaType", "Transparency");
  printer_->Set("*PageSize", "A3");
  ShowRows();
  EXPECT_EQ("!   A3", Shown("*PageSize"));
  const std::string why = ConflictReason({"*PageSize", "A3", "*MediaType", "Transparency"});
  GtkWidget *entry = OptionComboEntry("*PageSize");
  gchar *tip = gtk_widget_get_tooltip_text(entry);
  EXPECT_EQ(why, tip == nullptr ? "" : tip);
  g_free(tip);
  AtkObject *accessible = gtk_widget_get_accessible(entry);
  EXPECT_EQ(why, atk_object_get_description(accessible));

  Choose("*PageSize", "    A4");
  EXPECT_EQ("    A4", Shown("*PageSize"));
  EXPECT_EQ(FALSE, gtk_widget_get_has_tooltip(entry));
}

TEST_F(OptionCombos, AMarkedEntryCanBeChosen) {
  printer_->Set("*MediaType", "Transparency");
  ShowRows();
  Choose("*PageSize", "!   A3");
  EXPECT_EQ("A3", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("!   A3", Shown("*PageSize"));
  EXPECT_EQ("!   Transparencies", Shown("*MediaType"));
}

TEST_F(OptionCombos, RefillingWritesOnlyTheRowsWhoseTextChanged) {
  ShowRows();
  CountRowChanges();
  G_FillAllComboWithOptions();
  EXPECT_EQ(0, g_row_changes);

  Rows before = RowsOf("*PageSize");
  printer_->Set("*MediaType", "Transparency");
  GtkWidget *combo = OptionCombo("*PageSize");
  G_FillComboWithOptions(combo, OptionComboEntry("*PageSize"), "*PageSize");
  int different = 0;
  const Rows after = RowsOf("*PageSize");
  for (size_t i = 0; i < before.size(); ++i) different += before[i] != after[i] ? 1 : 0;
  EXPECT_GT(different, 2);
  // Text and tooltip of a row are one change.
  EXPECT_EQ(different, g_row_changes);
}

TEST_F(OptionCombos, CustomSizesThatComeAndGoChangeTheEndOfTheList) {
  ShowRows();
  const Rows plain = RowsOf("*PageSize");
  PutPaper(G_CurrentQueue.get(), "Ticket", 200, 400);
  CountRowChanges();
  G_FillAllComboWithOptions();
  ASSERT_EQ(plain.size() + 1, RowsOf("*PageSize").size());
  EXPECT_EQ("    Ticket", RowsOf("*PageSize").back().first);
  EXPECT_EQ(1, g_row_changes);
  HashRemove(G_QueueCustomPapers_hash, "Ticket");
  G_FillAllComboWithOptions();
  EXPECT_EQ(plain, RowsOf("*PageSize"));
}

TEST_F(OptionCombos, AnUnknownPageSizeShowsThePrintersDefault) {
  printer_->Set("*PageSize", "Gone");
  ShowRows({"*PageSize"});
  EXPECT_EQ("    A4", Shown("*PageSize"));
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
}

TEST_F(OptionCombos, AChoiceThatIsNoOptionLeavesTheEntryAsItWas) {
  ShowRows();
  EXPECT_EQ("    Output tray", Shown("*OutputBin"));
  printer_->Set("*OutputBin", "Gone");
  G_FillAllComboWithOptions();
  EXPECT_EQ("    Output tray", Shown("*OutputBin"));
  EXPECT_EQ(-1, gtk_combo_box_get_active(GTK_COMBO_BOX(OptionCombo("*OutputBin"))));
  EXPECT_EQ("Gone", QueueFeatureValue("*OutputBin"));
}

TEST_F(OptionCombos, AChoiceThatIsNoOptionShowsNothingAtFirst) {
  printer_->Set("*OutputBin", "Gone");
  ShowRows({"*OutputBin"});
  EXPECT_EQ("", Shown("*OutputBin"));
  EXPECT_EQ(RowsOfCore("*OutputBin"), RowsOf("*OutputBin"));
}

TEST_F(OptionCombos, ResolutionsStayAsTheyAreOnModelsOneAndTwo) {
  ShowRows();
  printer_->Set("*Resolution", "1200dpi");
  for (const int model : {1, 2}) {
    G_PrinterModel = model;
    G_FillAllComboWithOptions();
    EXPECT_EQ("    600 dpi", Shown("*Resolution")) << model;
  }
  G_PrinterModel = 5;
  G_FillAllComboWithOptions();
  EXPECT_EQ("    1200 dpi", Shown("*Resolution"));
}

TEST_F(OptionCombos, ARowOfAFeatureThatThePrinterLacksIsEmptyAndInsensitive) {
  HashRemove(G_PrinterFeatures_hash, "*Jog");
  testing::internal::CaptureStderr();
  ShowRows({"*Jog", "*Punch"});
  EXPECT_EQ(CatalogueText("ERR_UNEXPECTED2", {"CPrinter"}) + "\n",
            testing::internal::GetCapturedStderr());
  EXPECT_EQ("", Shown("*Jog"));
  EXPECT_TRUE(RowsOf("*Jog").empty());
  for (GtkWidget *widget :
       {OptionCombo("*Jog"), OptionPicture("*Jog"), lookup_widget(window_, "JogLabel")}) {
    EXPECT_FALSE(IsSensitive(widget)) << gtk_widget_get_name(widget);
  }
  EXPECT_TRUE(IsSensitive(OptionCombo("*Punch")));
}

TEST_F(OptionCombos, FillingSaysWhichDeliveryAndNotificationAreShown) {
  static std::vector<std::string> shown;
  shown.clear();
  G_OptionChangeHooks.delivery_shown = [](const char *option) { shown.emplace_back(option); };
  G_OptionChangeHooks.notification_shown = [](const char *option) { shown.emplace_back(option); };
  ShowRows({"*Delivery", "*EmailNotification"});
  EXPECT_EQ((std::vector<std::string>{"None", "PrintImmediately"}), shown);
  shown.clear();
  Choose("*Delivery", "    Hold until the PIN is entered");
  EXPECT_EQ((std::vector<std::string>{"HoldJobUntilYouEnterPIN", "None"}), shown);
}

TEST_F(OptionCombos, AMissingDeliveryFeatureSetsNothing) {
  static int calls;
  calls = 0;
  HashRemove(G_PrinterFeatures_hash, "*Delivery");
  G_OptionChangeHooks.delivery_shown = [](const char *) { ++calls; };
  testing::internal::CaptureStderr();
  ShowRows({"*Delivery"});
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(0, calls);
}
