#include "PropertiesWindowFct.h"

#include <string>

#include "ConflictDialog.h"
#include "InstallableLists.h"
#include "MessageDialogs.h"
#include "OptionCombos.h"
#include "PropTabDestination.h"
#include "PropTabGeneral.h"
#include "PropTabOptions.h"
#include "PropTabSetup.h"
#include "PropTabSetupFct.h"
#include "PropTabTextOptions.h"
#include "PropertiesPages.h"
#include "PropertiesWindow.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "destination.h"
#include "globals.h"
#include "optionstate.h"
#include "pagetable.h"
#include "properties.h"

namespace {

// Whether nothing in the work copy conflicts; the user is told otherwise.
bool HasNoConflict() {
  return G_CheckLinearConstraints(G_QueueFeatures_hash) == 0 &&
         G_CheckLinearConstraints(G_QueueInstallableOptions_hash) == 0;
}

// The error box whose title and message are those catalogue texts.
void ShowRefusal(const char *title_key, const char *message_key, const std::string &value) {
  GtkWidget *box = create_ErrorWindow(nullptr, G_Message(message_key, {value}));
  gtk_window_set_title(GTK_WINDOW(box), G_Translate(title_key));
  gtk_widget_show(box);
}

int SaveFonts() {
  if (CurrentQueueType().has_fonts) {
    if (G_GetAndSaveUserDataPropTabText() != 0) return 1;
    FocusFontEntry();
    return 0;
  }
  RemoveMultipleUpSettings();
  return 1;
}

int SaveDestination() {
  DestinationEntries entries = ReadDestinationEntries();
  const DestinationFault fault = StoreDestination(entries);
  gtk_entry_set_text(GTK_ENTRY(G_PropTabDestination_helper->email_address),
                     entries.email_address.c_str());
  switch (fault) {
    case DestinationFault::kNone:
      return 1;
    case DestinationFault::kPin:
      FocusPinEntry();
      ShowRefusal("ErrDestPin2", "ErrDestPin1", entries.pin);
      return 0;
    case DestinationFault::kEmail:
      FocusEmailEntry();
      ShowRefusal("ErrDestMail2", "ErrDestMail1", entries.email_address);
      return 0;
  }
  return 0;
}

int SaveIdentity() {
  const QueueIdentity identity = ReadIdentity();
  const IdentityFault fault = CheckIdentity(identity);
  if (fault != IdentityFault::kNone) {
    // Kept on purpose: a transport that is refused shows nothing at all.
    if (WarningKey(fault) == nullptr) return 0;
    FocusIdentity(fault);
    ShowError(WarningKey(fault));
    return 0;
  }
  G_PropertiesOpener.replace_queue(identity);
  return 1;
}

}  // namespace

void ButtonOKPropertiesPressed() {
  const LogScope log("ButtonOKPropertiesPressed");
  NeedAllPropertiesPages();
  if (!HasNoConflict()) return;
  RemoveDefaultSettings();
  if (GetAndSaveUserDataProperties() == 1) {
    ButtonCancelPropertiesPressed();
  } else {
    AddDefaultSettings();
  }
}

void ButtonApplyPropertiesPressed() {
  const LogScope log("ButtonApplyPropertiesPressed");
  NeedAllPropertiesPages();
  if (!HasNoConflict()) return;
  RemoveDefaultSettings();
  if (GetAndSaveUserDataProperties() != 1) {
    Log(2, "Function GetAndSaveUserDataProperties() returns with error");
  }
  AddDefaultSettings();
}

void ButtonCancelPropertiesPressed() {
  const LogScope log("ButtonCancelPropertiesPressed");
  if (G_PropertiesWindow_helper == nullptr) return;
  CloseProperties();
  gtk_widget_destroy(G_PropertiesWindow_helper->window);
  G_PropertiesWindow_helper.reset();
  ForgetOptionRows();
  G_OptionChangeHooks = {};
  G_InstallableLists = {};
  ForgetPropertiesPages();
}

void ButtonHelpPropertiesPressed() {
  const LogScope log("ButtonHelpPropertiesPressed");
  auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
  gtk_widget_show(create_HelpWindow(PropertiesHelp(gtk_notebook_get_current_page(notebook))));
}

void SwitchPageProperties(GtkNotebook *, GtkWidget *, guint number, gpointer) {
  const LogScope log("SwitchPageProperties");
  // Pages are also switched while the window is taken down.
  if (G_PropertiesWindow_helper == nullptr) return;
  NeedPropertiesPage(static_cast<int>(number));
  const std::string key = PropertiesTitleKey(static_cast<int>(number));
  if (key.empty()) return;
  gtk_window_set_title(GTK_WINDOW(G_PropertiesWindow_helper->window), G_Translate(key.c_str()));
  SetAccessibleName(G_PropertiesWindow_helper->notebook, G_Translate(key.c_str()));
}

int GetAndSaveUserDataProperties() {
  const LogScope log("GetAndSaveUserDataProperties");
  NeedAllPropertiesPages();
  if (SaveFonts() == 0 || SaveDestination() == 0) return 0;
  if (G_ProgName == kModePrintTool) {
    PutBackForPrinting(CopiesOfSetupTab());
    return 1;
  }
  return SaveIdentity();
}
