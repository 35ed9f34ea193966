#include "CmtParamWindow.h"

#include <string>

#include "CustomDialog.h"
#include "DialogFrame.h"
#include "FieldGrid.h"
#include "FilteredEntry.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "ccmtparams.h"
#include "debug.h"
#include "entryfilters.h"

std::unique_ptr<CmtParamWindowHelper> G_CmtParamWindow_helper;

namespace {

constexpr int L_Edit = 1;

int L_CmtAddOrEdit = 0;

void AddFields(GtkWidget *box) {
  CmtParamWindowHelper &helper = *G_CmtParamWindow_helper;
  helper.name_entry = NewNameEntry(helper.window, "CmtNameEntry", CmtName_EntryText);
  GetAndPutCmtParams();
  AddField(helper.window, AddFieldGrid(box), 0, {"CmtNameLabel", "DEF_LBL_CMT_NAME"},
           helper.name_entry);
}

}  // namespace

GtkWidget *create_CmtParamWindow(int add_or_edit) {
  const LogScope log("create_CmtParamWindow");
  L_CmtAddOrEdit = add_or_edit;
  const Dialog dialog = NewDialog("CmtParamWindow", "DEF_WND_CMT_PARAM_TITLE");
  G_CmtParamWindow_helper = std::make_unique<CmtParamWindowHelper>();
  G_CmtParamWindow_helper->window = dialog.window;
  AddFields(dialog.box);
  AddOkCancelHelp(dialog, "CmtButtonsHbuttonbox",
                  {ButtonOkCmtPressed, ButtonCancelCmtPressed, ButtonHelpCmtPressed});
  gtk_widget_grab_focus(G_CmtParamWindow_helper->name_entry);
  return dialog.window;
}

void GetAndPutCmtParams() {
  const LogScope log("GetAndPutCmtParams");
  if (L_CmtAddOrEdit != L_Edit) return;
  const std::string name = SelectedCustomName(CustomKind::kMedia);
  const auto *params = HashValue<CCmtParams>(CustomEntries(CustomKind::kMedia), name.c_str());
  const char *shown = fGet_CString_Value_Function(fGetGuiName_Function(params));
  ShowPastFilter(G_CmtParamWindow_helper->name_entry, shown == nullptr ? "" : shown,
                 CmtName_EntryText);
}

int CheckUniqueCmtName(const char *name) {
  const LogScope log("CheckUniqueCmtName");
  return CheckUniqueCustomName(CustomKind::kMedia, name, L_CmtAddOrEdit == L_Edit);
}

int GetAndSaveUserDataCmtParam() {
  const LogScope log("GetAndSaveUserDataCmtParam");
  GtkWidget *entry = G_CmtParamWindow_helper->name_entry;
  const std::string name = gtk_entry_get_text(GTK_ENTRY(entry));
  if (CheckUniqueCmtName(name.c_str()) == 0) {
    gtk_widget_grab_focus(entry);
    return 0;
  }
  if (L_CmtAddOrEdit == L_Edit) G_CustomsTab.remove_edited(CustomKind::kMedia);
  AddCustomMedia(name);
  G_CustomsTab.show_new(CustomKind::kMedia, name);
  return 1;
}

void ButtonOkCmtPressed() {
  const LogScope log("ButtonOkCmtPressed");
  // The tab's buttons are dead while the edited entry is replaced, and Add is with the last one.
  GtkWidget *list = G_CustomsTab.list(CustomKind::kMedia);
  const FocusKeeper keeper(gtk_widget_get_toplevel(list), list);
  if (GetAndSaveUserDataCmtParam() == 0) return;
  ButtonCancelCmtPressed();
  G_CustomsTab.count_new(CustomKind::kMedia);
}

void ButtonCancelCmtPressed() {
  const LogScope log("ButtonCancelCmtPressed");
  if (G_CmtParamWindow_helper == nullptr) return;
  GtkWidget *window = G_CmtParamWindow_helper->window;
  G_CmtParamWindow_helper.reset();
  gtk_widget_destroy(window);
}

void ButtonHelpCmtPressed() {
  const LogScope log("ButtonHelpCmtPressed");
  ShowHelp("KPX_CMT_PARAMS_BEGIN");
}

void CmtName_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                       gpointer data) {
  const LogScope log("CmtName_EntryText");
  InsertFiltered(entry, CmtName_EntryText, FilterCustomMediaName(InsertedText(text, length)),
                 position, data);
}
