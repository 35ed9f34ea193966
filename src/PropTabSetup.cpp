#include "PropTabSetup.h"

#include <cstdlib>
#include <string>

#include "FieldGrid.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropTabSetupFct.h"
#include "PropertiesWindow.h"
#include "Support.h"
#include "debug.h"
#include "optionstate.h"

std::unique_ptr<PropTabSetupHelper> G_PropTabSetup_helper;

namespace {

constexpr int L_MostCopies = 32767;

void AddCopiesRow(GtkWidget *window, GtkGrid *grid, int row) {
  GtkWidget *spin = gtk_spin_button_new_with_range(1, L_MostCopies, 1);
  StoreWidget(window, spin, "NrCopiesSpinbutton");
  gtk_spin_button_set_increments(GTK_SPIN_BUTTON(spin), 1, 10);
  gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(spin), TRUE);
  const int copies = std::atoi(QueueFeatureValue("*NrCopies").c_str());
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(spin), copies);
  G_PropTabSetup_helper->copies = spin;

  GtkWidget *range = NewLabel(window, "NrCopiesRangeLabel", "( 1 - 32767 )", nullptr);
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
  AddOptionRow(window, grid, 0, "*PageSize", "DEF_LBL_PAPERSIZE", true);
  AddOptionRow(window, grid, 1, "*MediaType", "DEF_LBL_PAPERTYPE", true);
  AddOptionRow(window, grid, 2, "*InputSlot", "DEF_LBL_PAPERSOURCE", true);
  AddOptionRow(window, grid, 3, "*Collate", "DEF_LBL_COLLATE", true);
  AddOptionRow(window, grid, 4, "*Duplex", "DEF_LBL_DUPLEX", true);
  AddCopiesRow(window, grid, 5);
  AddDefaultsButton(tab, "DefaultSetupButton", ButtonSetupDefaultsPressed);
  return tab.page;
}
