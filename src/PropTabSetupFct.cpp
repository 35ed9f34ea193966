#include "PropTabSetupFct.h"

#include "OptionDefaults.h"
#include "PropTabSetup.h"
#include "debug.h"
#include "globals.h"

void ButtonSetupDefaultsPressed() {
  const LogScope log("ButtonSetupDefaultsPressed");
  const PageReset result = ResetPage(Page::kSetup);
  if (result == PageReset::kStopped) return;
  if (result == PageReset::kChanged) RefillAfterDefaults();
  if (G_ProgName == kModePrintTool) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(G_PropTabSetup_helper->copies), 1);
  }
}

int CopiesOfSetupTab() {
  auto *spin = GTK_SPIN_BUTTON(G_PropTabSetup_helper->copies);
  // What is still being typed counts too.
  gtk_spin_button_update(spin);
  return gtk_spin_button_get_value_as_int(spin);
}
