#include "OptionDefaults.h"

#include <cstring>
#include <string>

#include "FieldGrid.h"
#include "OptionCombos.h"
#include "PropertiesFrame.h"
#include "Support.h"
#include "debug.h"
#include "featuretable.h"
#include "moreoptions.h"
#include "optionlists.h"
#include "optionstate.h"
#include "printermodels.h"
#include "properties.h"
#include "settingkeys.h"

OptionTab NewOptionTab(const char *name) {
  GtkWidget *page = gtk_box_new(GTK_ORIENTATION_VERTICAL, kTabSpacing);
  gtk_container_set_border_width(GTK_CONTAINER(page), kTabBorder);
  StoreWidget(G_PropertiesWindow_helper->window, page, name);
  GtkWidget *grid = GTK_WIDGET(NewFieldGrid());
  gtk_box_pack_start(GTK_BOX(page), grid, FALSE, FALSE, 0);
  return {page, grid};
}

void AddDefaultsButton(const OptionTab &tab, const char *name, void (*pressed)()) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *box = gtk_button_box_new(GTK_ORIENTATION_HORIZONTAL);
  gtk_button_box_set_layout(GTK_BUTTON_BOX(box), GTK_BUTTONBOX_END);
  gtk_box_pack_end(GTK_BOX(tab.page), box, FALSE, FALSE, 0);
  NewButton(window, box, name, "DEF_BTN_DEFAULTS_TITLE", pressed);
  gtk_widget_show_all(tab.page);
}

PageReset ResetPage(Page page) {
  PageReset result = PageReset::kSame;
  for (const ListedFeature *listed : DefaultsOfPage(page)) {
    if (!IsResetByDefaults(listed->feature)) continue;
    const FeatureReset one = ResetFeature(ShownFeature(listed->feature).c_str());
    // An added model need not have every feature of the page.
    if (one == FeatureReset::kNoDefault && G_PrinterModel == kAddedModelNumber) continue;
    if (one == FeatureReset::kNoDefault) {
      Log(2, std::string("Unable to load the default option for ") + listed->default_name);
      return PageReset::kStopped;
    }
    if (one == FeatureReset::kSame) continue;
    result = PageReset::kChanged;
    RedrawOptionPicture(listed->feature);
    if (std::strcmp(listed->feature, kOrientationKey) == 0) ShowTurnedSheet();
  }
  return result;
}

void RefillInstallableLists() {
  if (G_OptionChangeHooks.refill_installables != nullptr) {
    G_OptionChangeHooks.refill_installables();
  }
}

void RefillAfterDefaults() {
  G_FillAllComboWithOptions();
  RefillInstallableLists();
}
