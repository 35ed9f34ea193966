#include "PropTabSetup.h"

#include <cstdlib>
#include <string>

#include "FieldGrid.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropTabSetupFct.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "copies.h"
#include "debug.h"
#include "optionstate.h"
#include "settingkeys.h"

std::unique_ptr<PropTabSetupHelper> G_PropTabSetup_helper;
const PageWidgets kSetupPage = {create_PropTabSetup, [] { G_PropTabSetup_helper.reset(); }};

namespace {

void AddCopiesRow(GtkWidget *window, GtkGrid *grid, int row) {
  GtkWidget *spin = gtk_spin_button_new_with_range(1, kMostCopies, 1);
  StoreWidget(window, spin, "NrCopiesSpinbutton");
  gtk_spin_button_set_increments(GTK_SPIN_BUTTON(spin), 1, 10);
  gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(spin), TRUE);
  const int copies = std::atoi(QueueFeatureValue(kCopiesKey).c_str());
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(spin), copies);
  G_PropTabSetup_helper->copies = spin;

  const std::string range_text = "( 1 - " + std::to_string(kMostCopies) + " )";
  GtkWidget *range = NewLabel(window, "NrCopiesRangeLabel", range_text.c_str(), nullptr);
  AddField(window, grid, row, {"NrCopiesLabel", "DEF_LBL_COPIES"}, NewDescribedField(spin, range),
           spin);
}

}  // namespace

GtkWidget *create_PropTabSetup() {
  const LogScope log("create_PropTabSetup");
  G_PropTabSetup_helper = std::make_unique<PropTabSetupHelper>();
  GtkWidget *window = G_PropertiesWindow_helper->window;
  const OptionTab tab = NewOptionTab("SetupVbox");
  GtkGrid *grid = GTK_GRID(tab.grid);
  const int copies_row = AddOptionRows(window, grid, Page::kSetup);
  AddCopiesRow(window, grid, copies_row);
  AddDefaultsButton(tab, "DefaultSetupButton", ButtonSetupDefaultsPressed);
  return tab.page;
}
