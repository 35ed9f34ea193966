#include "ConflictDialog.h"

#include <gtk/gtk.h>

#include <string>

#include "MessageDialogs.h"
#include "OptionCombos.h"
#include "PropertiesWindow.h"
#include "Support.h"
#include "cfeature.h"
#include "cmessages.h"
#include "conflictresolution.h"
#include "constraintmessages.h"
#include "constraints.h"
#include "debug.h"
#include "optionstate.h"

namespace {

SettingsConflict L_Conflict;  // what the open box is about

std::string FeatureName(const std::string &feature) {
  const char *name =
      fGet_CString_Value_Function(fGet_Translation_Function(PrinterFeature(feature.c_str())));
  return name == nullptr ? feature : name;
}

std::string ResultText(const std::optional<ResolvedConflict> &resolved) {
  if (!resolved) return G_Translate("CONSTR_Unresolved");
  return G_Message("CONSTR_Resolved",
                   {FeatureName(resolved->feature),
                    OptionDisplayText(resolved->feature.c_str(), resolved->option.c_str())});
}

void ResolvePressed(GtkButton *button, gpointer) {
  const LogScope log("ResolvePressed");
  GtkWidget *widget = GTK_WIDGET(button);
  GtkWidget *detail = lookup_widget(widget, "ErrorLabel2");
  GtkWidget *ok = lookup_widget(widget, "OKButton");
  const std::optional<ResolvedConflict> resolved = ResolveConflict(L_Conflict);
  gtk_label_set_text(GTK_LABEL(detail), ResultText(resolved).c_str());
  gtk_widget_hide(widget);
  gtk_widget_grab_focus(ok);
  if (!resolved) return;
  RedrawOptionPicture(resolved->feature.c_str());
  G_FillAllComboWithOptions();
  if (G_OptionChangeHooks.refill_installables != nullptr) {
    G_OptionChangeHooks.refill_installables();
  }
  FocusInProperties(OptionCombo(resolved->feature.c_str()));
}

}  // namespace

int G_CheckLinearConstraints(const CHash *settings) {
  const LogScope log("G_CheckLinearConstraints");
  const std::optional<SettingsConflict> conflict = FindLinearConflict(settings);
  if (!conflict) return 0;
  L_Conflict = *conflict;
  GtkWidget *shown = OptionCombo(conflict->feature1.c_str());
  FocusInProperties(shown != nullptr ? shown : OptionCombo(conflict->feature2.c_str()));
  GtkWidget *window =
      create_ErrorWindow(ConflictMessage(*conflict).c_str(), G_Translate("CONSTR_Dlg_Label"));
  GtkWidget *button = NewButton(window, lookup_widget(window, "DialogHbuttonbox"), "ResolveButton",
                                "DEF_BTN_RESOLVE_TITLE", nullptr);
  g_signal_connect(button, "clicked", G_CALLBACK(ResolvePressed), nullptr);
  gtk_widget_show(button);
  gtk_widget_show(window);
  return 1;
}
