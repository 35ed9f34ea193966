#include "PropTabCustomsFct.h"

#include <functional>

#include "CmtParamWindow.h"
#include "ConfirmationWindow.h"
#include "CpsParamWindow.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropTabCustoms.h"
#include "cmessages.h"
#include "cselection.h"
#include "debug.h"
#include "ignoreresult.h"
#include "optionlists.h"
#include "optionstate.h"

int Confirmation = 1;

namespace {

void SetRowSelected(CustomKind kind, int row, bool selected) {
  CustomListHelper &helper = CustomList(kind);
  auto *record = static_cast<CSelection *>(ListRowData(helper.list, row));
  if (record == nullptr) return;
  const bool was_selected = fIsSelected_CSelection_Function(record) != 0;
  if (selected && !was_selected) ++helper.number_selected;
  if (!selected && was_selected) --helper.number_selected;
  IgnoreResult(fSet_Selected_Function(record, selected ? 1 : 0), "the record is there");
  UpdateCustomButtons(kind);
}

int AddItem(CustomKind kind, const char *name) {
  CList *selections = CustomSelections(kind);
  IgnoreResult(fAddTail_CList_Function(selections, CreateSelection(name, 0)), "the list is there");
  CObject *record = fGetAt_CList_Function(selections, fGetTailPosition_CList_Function(selections));
  return ListAppend(CustomList(kind).list, CustomRow(kind, name), record);
}

void SelectOne(CustomKind kind, int row) {
  GtkWidget *list = CustomList(kind).list;
  ListUnselectAll(list);
  if (row < 0 || row >= ListRowCount(list)) return;
  ListSelectRow(list, row);
  ListShowRow(list, row);
}

// Removes the selected entries, in row order, from list and work copy; `removed` hears of each
// while its record is still there. False without a list of rows.
bool RemoveSelected(CustomKind kind, const std::function<void(const std::string &)> &removed) {
  CList *selections = CustomSelections(kind);
  if (selections == nullptr) {
    G_Report(nullptr, "ERR_UNEXPECTED2", {CSelectionClassName});
    return false;
  }
  GtkWidget *list = CustomList(kind).list;
  RemoveSelectedRecords(selections, [&](const CNodeList *, const CSelection &record) {
    const std::string name = fGet_CSelection_Value_Function(&record);
    ListRemove(list, ListFindData(list, &record));
    HashRemove(CustomEntries(kind), name.c_str());
    removed(name);
  });
  return true;
}

void PressDelete(CustomKind kind) {
  if (Confirmation != 0) {
    gtk_widget_show(create_ConfirmationWindow(kind == CustomKind::kPaper ? 1 : 0));
    return;
  }
  if (!RemoveSelected(kind, [](const std::string &) {})) return;
  // Kept on purpose: one less, however many rows went.
  --CustomList(kind).number_defined;
  UpdateCustomButtons(kind);
}

// Refills the Setup tab's list of the kind.
void RefillSetupList(CustomKind kind) {
  const char *feature = CustomFeature(kind);
  if (OptionCombo(feature) == nullptr) return;
  G_FillComboWithOptions(OptionCombo(feature), OptionComboEntry(feature), feature);
}

std::string ShownOnSetupTab(CustomKind kind) {
  GtkWidget *entry = OptionComboEntry(CustomFeature(kind));
  return entry == nullptr ? "" : TextWithoutMark(gtk_entry_get_text(GTK_ENTRY(entry)));
}

}  // namespace

void CpsCListRowSelection(int row) {
  const LogScope log("CpsCListRowSelection");
  SetRowSelected(CustomKind::kPaper, row, true);
}

void CpsCListRowUnSelection(int row) {
  const LogScope log("CpsCListRowUnSelection");
  SetRowSelected(CustomKind::kPaper, row, false);
}

void CmtCListRowSelection(int row) {
  const LogScope log("CmtCListRowSelection");
  SetRowSelected(CustomKind::kMedia, row, true);
}

void CmtCListRowUnSelection(int row) {
  const LogScope log("CmtCListRowUnSelection");
  SetRowSelected(CustomKind::kMedia, row, false);
}

void ButtonAddCpsPressed() {
  const LogScope log("ButtonAddCpsPressed");
  gtk_widget_show(create_CpsParamWindow(0));
}

void ButtonEditCpsPressed() {
  const LogScope log("ButtonEditCpsPressed");
  gtk_widget_show(create_CpsParamWindow(1));
}

void ButtonDeleteCpsPressed() {
  const LogScope log("ButtonDeleteCpsPressed");
  PressDelete(CustomKind::kPaper);
}

void ButtonAddCmtPressed() {
  const LogScope log("ButtonAddCmtPressed");
  gtk_widget_show(create_CmtParamWindow(0));
}

void ButtonEditCmtPressed() {
  const LogScope log("ButtonEditCmtPressed");
  gtk_widget_show(create_CmtParamWindow(1));
}

void ButtonDeleteCmtPressed() {
  const LogScope log("ButtonDeleteCmtPressed");
  PressDelete(CustomKind::kMedia);
}

int AddItemInCpsCListWidget(const char *name) {
  const LogScope log("AddItemInCpsCListWidget");
  return AddItem(CustomKind::kPaper, name);
}

int AddItemInCmtCListWidget(const char *name) {
  const LogScope log("AddItemInCmtCListWidget");
  return AddItem(CustomKind::kMedia, name);
}

void UnselectAllAndSelectOneInCpsCList(int row) {
  const LogScope log("UnselectAllAndSelectOneInCpsCList");
  SelectOne(CustomKind::kPaper, row);
}

void UnselectAllAndSelectOneInCmtCList(int row) {
  const LogScope log("UnselectAllAndSelectOneInCmtCList");
  SelectOne(CustomKind::kMedia, row);
}

void DeleteSelectedCustomEntries(CustomKind kind) {
  const bool done = RemoveSelected(kind, [kind](const std::string &name) {
    --CustomList(kind).number_defined;
    if (ShownOnSetupTab(kind) == name) G_ComboBoxOptionChanged(CustomFeature(kind));
    RefillSetupList(kind);
  });
  if (done) UpdateCustomButtons(kind);
  gtk_widget_grab_focus(CustomList(kind).list);  // the button that asked may be dead now
}

void RemoveEditedCustomEntry(CustomKind kind) {
  Confirmation = 0;
  PressDelete(kind);
  Confirmation = 1;
}

void ShowNewCustomEntry(CustomKind kind, const std::string &name) {
  SelectOne(kind, AddItem(kind, name.c_str()));
}

void CountNewCustomEntry(CustomKind kind) {
  const char *feature = CustomFeature(kind);
  const std::string before = QueueFeatureValue(feature);
  RefillSetupList(kind);
  G_ComboBoxOptionChanged(feature);
  if (QueueFeatureValue(feature) != before) {
    // The list was filled without the old name of an entry in use and stored the default in its
    // place, so that the change handling found nothing to do.
    RedrawOptionPicture(feature);
    RefillAfterDefaults();
  }
  ++CustomList(kind).number_defined;
  UpdateCustomButtons(kind);
}
