#include "ConflictDialog.h"

#include <gtk/gtk.h>

#include <optional>
#include <string>

#include "AccessKeys.h"
#include "MessageDialogs.h"
#include "MoreOptionsList.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropTabFeatures.h"
#include "PropTabGeneral.h"
#include "PropertiesFrame.h"
#include "Support.h"
#include "cmessages.h"
#include "conflictresolution.h"
#include "constraintmessages.h"
#include "constraints.h"
#include "debug.h"
#include "globals.h"
#include "optionstate.h"

namespace {

constexpr char L_ReasonLabel[] = "ConflictReasonLabel";

SettingsConflict L_Conflict;  // what the open box is about

std::string ResultText(const std::optional<ResolvedConflict> &resolved) {
  if (!resolved) return G_Translate("CONSTR_Unresolved");
  return G_Message("CONSTR_Resolved",
                   {FeatureDisplayText(resolved->feature.c_str()),
                    OptionDisplayText(resolved->feature.c_str(), resolved->option.c_str())});
}

// The list of installed hardware; null without an open properties window.
GtkWidget *ListOfInstalled() {
  if (G_ProgName == kModeAdministration) {
    return G_PropTabFeatures_helper == nullptr ? nullptr : G_PropTabFeatures_helper->installed.list;
  }
  return G_PropTabGenPrntool_helper == nullptr ? nullptr
                                               : G_PropTabGenPrntool_helper->features_list;
}

// Where the user changes it: its combo box, or the list of installed hardware; null when neither is
// there.
GtkWidget *PlaceOf(const std::string &feature) {
  GtkWidget *combo = OptionCombo(feature.c_str());
  if (combo != nullptr) return combo;
  if (GtkWidget *more = ShowMoreOption(feature); more != nullptr) return more;
  if (HashFind(G_PrinterInstallableOptions_hash, feature.c_str()) == nullptr) return nullptr;
  return ListOfInstalled();
}

// The first that has a combo box, else the list.
GtkWidget *PlaceOf(const SettingsConflict &conflict) {
  for (const std::string &feature : {conflict.feature1, conflict.feature2}) {
    GtkWidget *combo = OptionCombo(feature.c_str());
    if (combo != nullptr) return combo;
  }
  return PlaceOf(conflict.feature1);
}

void ShowResolved(const std::string &feature) {
  if (HashFind(G_PrinterInstallableOptions_hash, feature.c_str()) != nullptr) {
    ShowInstallableChange(feature);
    return;
  }
  RedrawOptionPicture(feature.c_str());
  GtkWidget *combo = OptionCombo(feature.c_str());
  // For some printers the resolutions are not filled with the others.
  if (combo != nullptr) {
    G_FillComboWithOptions(combo, OptionComboEntry(feature.c_str()), feature.c_str());
  }
  RefillAfterDefaults();
}

void ResolvePressed(GtkButton *button, gpointer) {
  const LogScope log("ResolvePressed");
  GtkWidget *widget = GTK_WIDGET(button);
  GtkWidget *detail = lookup_widget(widget, "ErrorLabel2");
  GtkWidget *ok = lookup_widget(widget, "OKButton");
  const std::optional<ResolvedConflict> resolved = SettleConflict(L_Conflict);
  gtk_label_set_text(GTK_LABEL(detail), ResultText(resolved).c_str());
  SetAlert(gtk_widget_get_toplevel(widget), ResultText(resolved));
  gtk_widget_hide(widget);
  gtk_widget_grab_focus(ok);
  if (!resolved) return;
  // They told of the conflict, which is gone.
  gtk_window_set_title(GTK_WINDOW(gtk_widget_get_toplevel(widget)),
                       G_Translate("DEF_WND_RESOLVED_TITLE"));
  gtk_widget_hide(lookup_widget(ok, "ErrorLabel1"));
  GtkWidget *reason = lookup_widget(ok, L_ReasonLabel);
  if (reason != nullptr) gtk_widget_hide(reason);
  ShowResolved(resolved->feature);
  FocusInProperties(PlaceOf(resolved->feature));
}

// Two features without a message of their own leave the box's labels without a word about them: the
// reason stands in one of its own.
GtkWidget *NewConflictBox(const SettingsConflict &conflict) {
  const std::string message = ConflictMessage(conflict);
  GtkWidget *window = create_ErrorWindow(message.c_str(), G_Translate("CONSTR_Dlg_Label"));
  if (message.empty()) AddErrorLabel(window, L_ReasonLabel, ConflictReason(conflict));
  return window;
}

}  // namespace

int G_CheckLinearConstraints(const CHash *settings) {
  const LogScope log("G_CheckLinearConstraints");
  const std::optional<SettingsConflict> conflict = FindLinearConflict(settings);
  if (!conflict) return 0;
  L_Conflict = *conflict;
  FocusInProperties(PlaceOf(*conflict));
  GtkWidget *window = NewConflictBox(*conflict);
  if (!MayResolve(*conflict)) {
    gtk_widget_show(window);
    return 1;
  }
  GtkWidget *button = NewButton(window, lookup_widget(window, "DialogHbuttonbox"), "ResolveButton",
                                "DEF_BTN_RESOLVE_TITLE", nullptr);
  g_signal_connect(button, "clicked", G_CALLBACK(ResolvePressed), nullptr);
  gtk_widget_show(button);
  GiveAccessKeys(window);
  gtk_widget_show(window);
  return 1;
}
