#include "PropTabOutput.h"

#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropertiesWindow.h"
#include "debug.h"
#include "globals.h"

std::unique_ptr<PropTabOutputHelper> G_PropTabOutput_helper;

GtkWidget *create_PropTabOutput() {
  const LogScope log("create_PropTabOutput");
  GtkWidget *window = G_PropertiesWindow_helper->window;
  const OptionTab tab = NewOptionTab("OutputVbox");
  G_PropTabOutput_helper = std::make_unique<PropTabOutputHelper>(PropTabOutputHelper{tab.page});
  GtkGrid *grid = GTK_GRID(tab.grid);
  AddOptionRow(window, grid, 0, "*OutputBin", "DEF_LBL_OUTPUTBIN", true);
  AddOptionRow(window, grid, 1, "*Jog", "DEF_LBL_JOG", true);
  AddOptionRow(window, grid, 2, "*StapleLocation", "DEF_LBL_STAPLE", true);
  AddOptionRow(window, grid, 3, "*Punch", "DEF_LBL_PUNCH", true);
  AddOptionRow(window, grid, 4, "*Orientation", "DEF_LBL_ORIENTATION", true);
  AddOptionRow(window, grid, 5, "*EdgeToEdge", "DEF_LBL_EDGETOEDGE", true);
  AddDefaultsButton(tab, "DefaultOutputButton", ButtonOutputDefaultsPressed);
  return tab.page;
}

void ButtonOutputDefaultsPressed() {
  const LogScope log("ButtonOutputDefaultsPressed");
  const DefaultsResult result = SetToDefaults({{"*OutputBin", "Output bin"},
                                               {"*Jog", "Jog"},
                                               {"*Orientation", "StaplePunchOrientation"},
                                               {"*StapleLocation", "Staple"},
                                               {"*Punch", "Punch"},
                                               {"*EdgeToEdge", "EdgeToEdge"}});
  if (result != DefaultsResult::kChanged) return;
  G_FillAllComboWithOptions();
  const bool administration = G_ProgName == kModeAdministration;
  Log(2, administration ? "Refill the 2 Installable CLists" : "Refill the Features CList");
  RefillInstallableLists();
}
