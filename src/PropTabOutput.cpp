#include "PropTabOutput.h"

#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "debug.h"
#include "globals.h"

std::unique_ptr<PropTabOutputHelper> G_PropTabOutput_helper;
const PageWidgets kOutputPage = {create_PropTabOutput, [] { G_PropTabOutput_helper.reset(); }};

GtkWidget *create_PropTabOutput() {
  const LogScope log("create_PropTabOutput");
  GtkWidget *window = G_PropertiesWindow_helper->window;
  const OptionTab tab = NewOptionTab("OutputVbox");
  G_PropTabOutput_helper = std::make_unique<PropTabOutputHelper>(PropTabOutputHelper{tab.page});
  GtkGrid *grid = GTK_GRID(tab.grid);
  AddOptionRows(window, grid, Page::kOutput);
  AddDefaultsButton(tab, "DefaultOutputButton", ButtonOutputDefaultsPressed);
  return tab.page;
}

void ButtonOutputDefaultsPressed() {
  const LogScope log("ButtonOutputDefaultsPressed");
  const PageReset result = ResetPage(Page::kOutput);
  if (result != PageReset::kChanged) return;
  G_FillAllComboWithOptions();
  const bool administration = G_ProgName == kModeAdministration;
  Log(2, administration ? "Refill the 2 Installable CLists" : "Refill the Features CList");
  RefillInstallableLists();
}
