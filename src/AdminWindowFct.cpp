#include "AdminWindowFct.h"

#include <string>
#include <utility>
#include <vector>

#include "AddQueueWindow.h"
#include "AddressNotice.h"
#include "AdminWindow.h"
#include "ListWidget.h"
#include "MessageDialogs.h"
#include "PropertiesWindow.h"
#include "QuestionDialog.h"
#include "QueueTips.h"
#include "SaveWindow.h"
#include "Support.h"
#include "addqueue.h"
#include "cmessages.h"
#include "cselection.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "properties.h"
#include "savequeues.h"

namespace {

Owned<CList> L_DeletedQueues_list;  // CString names, the one deleted last first

CSelection *RecordOfRow(int row) {
  gpointer position = ListRowData(G_KPXadminWindow_helper->queues_list, row);
  return ObjectCast<CSelection>(
      fGetAt_CList_Function(G_QueuesSelections.get(), static_cast<CNodeList *>(position)));
}

void UpdateButtons() {
  const KPXadminWindowHelper &helper = *G_KPXadminWindow_helper;
  const QueueButtons buttons = QueueButtonsFor(helper.m_NumberOfQueuesSelected);
  gtk_widget_set_sensitive(helper.clone_button, buttons.clone ? TRUE : FALSE);
  gtk_widget_set_sensitive(helper.properties_button, buttons.properties ? TRUE : FALSE);
  gtk_widget_set_sensitive(helper.delete_button, buttons.remove ? TRUE : FALSE);
}

// The name of the first selected queue; without a selection that of the last row.
std::string FirstSelectedQueue() {
  std::string name;
  for (const CSelection *record : Elements<CSelection>(G_QueuesSelections.get())) {
    name = fGet_CSelection_Value_Function(record);
    if (fIsSelected_CSelection_Function(record) != 0) break;
  }
  return name;
}

std::vector<std::string> SelectedQueues() {
  std::vector<std::string> names;
  for (const CSelection *record : Elements<CSelection>(G_QueuesSelections.get())) {
    if (fIsSelected_CSelection_Function(record) == 0) continue;
    names.emplace_back(fGet_CSelection_Value_Function(record));
  }
  return names;
}

bool IsKey(const GdkEventKey &event, guint key, guint keypad_key) {
  const bool plain = (event.state & gtk_accelerator_get_default_mod_mask()) == 0;
  return plain && (event.keyval == key || event.keyval == keypad_key);
}

SaveResult SaveWithProgress(CList *errors) {
  SaveProgressWindow progress;
  // A signal that is handled while the progress is drawn gives the window's lists up.
  Owned<CList> deleted = std::move(L_DeletedQueues_list);
  const SaveResult result =
      SaveQueues(deleted.get(), errors, [&progress](const SaveStep &step) { progress.Show(step); });
  L_DeletedQueues_list = std::move(deleted);
  return result;
}

// The queue is new in the working set, or its address may be.
void ShowNewQueue(const std::string &name) {
  UnselectAllAndSelectOneInQueuesCList(AddItemInQueuesCListWidget(name.c_str()));
  CheckAddressOfQueue(name);
}

void RememberDeleted(const char *name) {
  if (L_DeletedQueues_list == nullptr) L_DeletedQueues_list = CreateList();
  IgnoreResult(fAddHead_CList_Function(L_DeletedQueues_list.get(), CreateStringWithValue(name)),
               "the list is there");
}

}  // namespace

void ButtonAddPressed() {
  const LogScope log("ButtonAddPressed");
  gtk_widget_show(create_AddQueueWindow());
  G_AddQueueWindow_helper->added = ShowNewQueue;
}

void ButtonClonePressed() {
  const LogScope log("ButtonClonePressed");
  const FocusKeeper keeper(G_KPXadminWindow_helper->window);
  const std::string clone = CloneQueue(FirstSelectedQueue().c_str());
  if (!clone.empty()) ShowNewQueue(clone);
}

void ButtonPropertiesPressed() {
  const LogScope log("ButtonPropertiesPressed");
  GtkWidget *window = create_PropertiesWindow();
  if (window != nullptr) gtk_widget_show(window);
}

void QueueActivated(int) {
  const LogScope log("QueueActivated");
  if (G_KPXadminWindow_helper->m_NumberOfQueuesSelected == 1) ButtonPropertiesPressed();
}

void ButtonHelpPressed() {
  const LogScope log("ButtonHelpPressed");
  ShowHelp("KPX_ADMIN_BEGIN");
}

void ButtonKPXDeletePressed(int flag) {
  const LogScope log("ButtonKPXDeletePressed");
  if (G_QueuesSelections == nullptr) {
    G_Report(nullptr, "ERR_UNEXPECTED2", {CSelectionClassName});
    return;
  }
  GtkWidget *list = G_KPXadminWindow_helper->queues_list;
  RemoveSelectedRecords(G_QueuesSelections.get(),
                        [=](const CNodeList *position, const CSelection &record) {
                          const std::string name = fGet_CSelection_Value_Function(&record);
                          ListRemove(list, ListFindData(list, position));
                          HashRemove(G_Queues_hash, name.c_str());
                          if (flag != 0) RememberDeleted(name.c_str());
                        });
  ShowUnknownAddresses();
  // The button that was pressed is dead now.
  if (flag != 0) gtk_widget_grab_focus(G_KPXadminWindow_helper->queues_list);
}

gboolean DeleteByKey(GtkWidget *, GdkEventKey *event, gpointer) {
  if (G_KPXadminWindow_helper == nullptr || !IsKey(*event, GDK_KEY_Delete, GDK_KEY_KP_Delete)) {
    return FALSE;
  }
  const LogScope log("DeleteByKey");
  const std::vector<std::string> names = SelectedQueues();
  if (names.empty()) return TRUE;
  const std::string question = QuestionBeforeDeletion(names);
  if (question.empty()) {
    ButtonKPXDeletePressed(1);
  } else {
    gtk_widget_show(create_QuestionWindow(question, [] { ButtonKPXDeletePressed(1); }));
  }
  return TRUE;
}

void ShowSearchedQueues() {
  const LogScope log("ShowSearchedQueues");
  const KPXadminWindowHelper &helper = *G_KPXadminWindow_helper;
  ListShowMatching(helper.queues_list, gtk_entry_get_text(GTK_ENTRY(helper.search_entry)));
}

void LeaveSearch() {
  const LogScope log("LeaveSearch");
  gtk_widget_grab_focus(G_KPXadminWindow_helper->queues_list);
  ListGoToFirst(G_KPXadminWindow_helper->queues_list);
}

gboolean EndSearchByEscape(GtkWidget *, GdkEventKey *event, gpointer) {
  if (G_KPXadminWindow_helper == nullptr) return FALSE;  // it is ending
  GtkWidget *entry = G_KPXadminWindow_helper->search_entry;
  const bool searches =
      gtk_widget_has_focus(entry) != FALSE && gtk_entry_get_text_length(GTK_ENTRY(entry)) != 0;
  if (!searches || !IsKey(*event, GDK_KEY_Escape, GDK_KEY_Escape)) return FALSE;
  gtk_entry_set_text(GTK_ENTRY(entry), "");
  gtk_widget_grab_focus(G_KPXadminWindow_helper->queues_list);
  return TRUE;
}

void ReplaceSelectedQueue(const QueueIdentity &identity) {
  // The button that opened the properties is dead without a selected queue.
  const FocusKeeper keeper(G_KPXadminWindow_helper->window);
  ButtonKPXDeletePressed(0);
  PutBackIdentity(identity);
  ShowNewQueue(identity.name);
}

void RememberUnfinishedRemovals() {
  const LogScope log("RememberUnfinishedRemovals");
  if (G_UnfinishedRemovals != nullptr) L_DeletedQueues_list = CloneOf(G_UnfinishedRemovals.get());
}

void ButtonSavePressed() {
  const LogScope log("ButtonSavePressed");
  const Owned<CList> errors = CreateList();
  const SaveResult result = SaveWithProgress(errors.get());
  if (result == SaveResult::ListNotWritable) {
    Log(2, "Cannot open for writting the queues.paf file");
    ButtonCancelPressed();
  } else if (fIsEmpty_CList_Function(errors.get()) == 1) {
    ButtonCancelPressed();
  } else {
    gtk_widget_show(create_ErrorWarningWindow(errors.get(), kExit));
  }
}

void ButtonCancelPressed() {
  const LogScope log("ButtonCancelPressed");
  if (G_KPXadminWindow_helper == nullptr) return;
  ForgetListedQueues();
  ForgetAddresses();
  G_KPXadminWindow_helper.reset();
  G_QueuesSelections.reset();
  L_DeletedQueues_list.reset();
  gtk_main_quit();
}

void QueuesCListRowSelection(int row) {
  const LogScope log("QueuesCListRowSelection");
  CSelection *record = RecordOfRow(row);
  if (record == nullptr) return;
  if (fIsSelected_CSelection_Function(record) == 0) {
    ++G_KPXadminWindow_helper->m_NumberOfQueuesSelected;
  }
  IgnoreResult(fSet_Selected_Function(record, 1), "the record is there");
  UpdateButtons();
}

void QueuesCListRowUnSelection(int row) {
  const LogScope log("QueuesCListRowUnSelection");
  CSelection *record = RecordOfRow(row);
  if (record == nullptr) return;
  if (fIsSelected_CSelection_Function(record) != 0) {
    --G_KPXadminWindow_helper->m_NumberOfQueuesSelected;
  }
  IgnoreResult(fSet_Selected_Function(record, 0), "the record is there");
  UpdateButtons();
}

gboolean LogMultipleClick(GtkWidget *, GdkEventButton *event, gpointer) {
  if (event->type == GDK_2BUTTON_PRESS) Log(4, "2-button press");
  if (event->type == GDK_3BUTTON_PRESS) Log(4, "3-button press");
  return FALSE;
}

int AddItemInQueuesCListWidget(const char *name) {
  const LogScope log("AddItemInQueuesCListWidget");
  const std::vector<std::string> row = QueueRow(name);
  if (row.empty()) return -1;
  IgnoreResult(fAddTail_CList_Function(G_QueuesSelections.get(), CreateSelection(name, 0)),
               "the list is there");
  const int number = ListAppend(G_KPXadminWindow_helper->queues_list, row,
                                fGetTailPosition_CList_Function(G_QueuesSelections.get()));
  ShowQueueTip(number);
  return number;
}

void UnselectAllAndSelectOneInQueuesCList(int row) {
  const LogScope log("UnselectAllAndSelectOneInQueuesCList");
  GtkWidget *list = G_KPXadminWindow_helper->queues_list;
  ListUnselectAll(list);
  for (CSelection *record : Elements<CSelection>(G_QueuesSelections.get())) {
    IgnoreResult(fSet_Selected_Function(record, 0), "the record is there");
  }
  if (row < 0) return;
  GtkWidget *search = G_KPXadminWindow_helper->search_entry;
  if (!ListIsShown(list, row)) gtk_entry_set_text(GTK_ENTRY(search), "");
  ListSelectRow(list, row);
  ListShowRow(list, row);
}
