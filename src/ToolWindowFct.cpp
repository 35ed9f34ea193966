#include "ToolWindowFct.h"

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "ComboWidget.h"
#include "FilesSelectionWindow.h"
#include "ListWidget.h"
#include "LprCmdWindow.h"
#include "MessageDialogs.h"
#include "PropertiesWindow.h"
#include "QueueBar.h"
#include "Support.h"
#include "ToolWindow.h"
#include "cmessages.h"
#include "cselection.h"
#include "debug.h"
#include "filelist.h"
#include "globals.h"
#include "ignoreresult.h"
#include "printcommand.h"
#include "utils.h"

namespace {

CSelection *RecordOfRow(int row) {
  gpointer position = ListRowData(G_QueuesWindow_helper->files_list, row);
  return ObjectCast<CSelection>(
      fGetAt_CList_Function(G_FilesList.get(), static_cast<CNodeList *>(position)));
}

// A path as the window can show it: file names may be in any encoding.
std::string DisplayName(const std::string &path) {
  gchar *name = g_filename_display_name(path.c_str());
  std::string shown = name;
  g_free(name);
  return shown;
}

void TakeDroppedFiles(GtkWidget *, GdkDragContext *context, gint, gint, GtkSelectionData *data,
                      guint, guint time, gpointer) {
  const LogScope log("TakeDroppedFiles");
  const guchar *bytes = gtk_selection_data_get_data(data);
  const gint length = gtk_selection_data_get_length(data);
  const Owned<CList> errors = CreateList();
  std::vector<std::string> paths;
  if (bytes != nullptr && length > 0) {
    paths = DroppedPaths({reinterpret_cast<const char *>(bytes), static_cast<size_t>(length)},
                         errors.get());
  }
  for (const std::string &path : paths) {
    AddChosenPath(IsDirectory(path) && !path.ends_with('/') ? path + "/" : path);
  }
  gtk_drag_finish(context, paths.empty() ? FALSE : TRUE, FALSE, time);
  if (fIsEmpty_CList_Function(errors.get()) == 1) return;
  gtk_widget_show(create_ErrorWarningWindow(errors.get(), kReturn));
}

}  // namespace

std::string ChosenQueue() {
  return QueueNameFromEntry(ComboText(G_QueuesWindow_helper->queue_combo));
}

void ButtonPrintPressed() {
  const LogScope log("ButtonPrintPressed");
  if (fIsEmpty_CList_Function(G_FilesList.get()) == 1) {
    ShowError("MSG1");
    return;
  }
  const Owned<CList> errors = CreateList();
  PrintFiles(ChosenQueue(), errors.get());
  if (fIsEmpty_CList_Function(errors.get()) == 1) {
    ButtonCancelToolPressed();
    return;
  }
  RemoveCapturedFile();
  // Its OK ends the program: what was pressed while lp ran must not press it.
  DropInput();
  gtk_widget_show(create_ErrorWarningWindow(errors.get(), kExit));
}

void ButtonLPRPressed() {
  const LogScope log("ButtonLPRPressed");
  gtk_widget_show(create_LprCmdWindow(DisplayedPrintCommand(ChosenQueue())));
}

void ButtonPropertiesToolPressed() {
  const LogScope log("ButtonPropertiesToolPressed");
  GtkWidget *window = create_PropertiesWindow();
  if (window != nullptr) gtk_widget_show(window);
}

void ButtonAddFilesPressed() {
  const LogScope log("ButtonAddFilesPressed");
  gtk_widget_show(create_FilesSelectionWindow());
  G_FilesSelectionWindow_helper->chosen = AddChosenPath;
}

void ButtonDeleteFilesPressed() {
  const LogScope log("ButtonDeleteFilesPressed");
  GtkWidget *list = G_QueuesWindow_helper->files_list;
  RemoveSelectedFiles(
      [list](const CNodeList *position) { ListRemove(list, ListFindData(list, position)); });
  gtk_widget_grab_focus(list);  // the button that was pressed is dead now
}

void ButtonHelpToolPressed() {
  const LogScope log("ButtonHelpToolPressed");
  ShowHelp("KPX_TOOL_BEGIN");
}

void ButtonCancelToolPressed() {
  const LogScope log("ButtonCancelToolPressed");
  if (G_QueuesWindow_helper == nullptr) return;
  ForgetChosenQueue();
  RemoveCapturedFile();
  G_QueuesWindow_helper.reset();
  G_FilesList.reset();
  gtk_main_quit();
}

void FilesCListRowSelection(int row) {
  const LogScope log("FilesCListRowSelection");
  gtk_widget_set_sensitive(G_QueuesWindow_helper->delete_button, TRUE);
  CSelection *record = RecordOfRow(row);
  if (record == nullptr) return;
  if (fIsSelected_CSelection_Function(record) == 0) ++G_QueuesWindow_helper->selected_files;
  IgnoreResult(fSet_Selected_Function(record, 1), "the record is there");
}

void FilesCListRowUnSelection(int row) {
  const LogScope log("FilesCListRowUnSelection");
  CSelection *record = RecordOfRow(row);
  if (record == nullptr) return;
  if (fIsSelected_CSelection_Function(record) != 0) --G_QueuesWindow_helper->selected_files;
  IgnoreResult(fSet_Selected_Function(record, 0), "the record is there");
  if (G_QueuesWindow_helper->selected_files == 0) {
    gtk_widget_set_sensitive(G_QueuesWindow_helper->delete_button, FALSE);
  }
}

GList *BuildQueuesGList() {
  const LogScope log("BuildQueuesGList");
  GList *list = nullptr;
  for (const std::string &entry : QueueEntries()) {
    list = g_list_prepend(list, g_strdup(entry.c_str()));
  }
  return g_list_reverse(list);
}

void ShowQueues() {
  const LogScope log("ShowQueues");
  GList *list = BuildQueuesGList();
  std::vector<std::string> entries;
  for (GList *link = list; link != nullptr; link = link->next) {
    entries.emplace_back(static_cast<const char *>(link->data));
  }
  G_FreeStringsFrom_g_list(list);
  g_list_free(list);

  const ToolWindowHelper &helper = *G_QueuesWindow_helper;
  ComboFill(helper.queue_combo, entries);
  ComboSetRow(helper.queue_combo, entries.empty() ? -1 : 0);
  for (GtkWidget *widget :
       {helper.queue_combo, helper.print_button, helper.lpr_button, helper.properties_button}) {
    gtk_widget_set_sensitive(widget, entries.empty() ? FALSE : TRUE);
    gtk_widget_set_tooltip_text(widget, entries.empty() ? G_Translate("TOOL_NO_QUEUE") : nullptr);
  }
}

bool ShowQueue(const std::string &name) {
  const LogScope log("ShowQueue");
  const std::vector<std::string> entries = QueueEntries();
  const auto found = std::find_if(entries.begin(), entries.end(), [&](const std::string &entry) {
    return QueueNameFromEntry(entry) == name;
  });
  if (found == entries.end()) return false;
  ComboSetRow(G_QueuesWindow_helper->queue_combo, static_cast<int>(found - entries.begin()));
  return true;
}

void AddFileRow(const std::string &path, const std::string &shown) {
  const LogScope log("AddFileRow");
  ListAppend(G_QueuesWindow_helper->files_list, {shown}, AppendFile(path));
}

void AddChosenPath(const std::string &path) {
  const LogScope log("AddChosenPath");
  for (const std::string &file : FilesOfSelection(path)) AddFileRow(file, DisplayName(file));
}

void AcceptDroppedFiles(GtkWidget *window) {
  gtk_drag_dest_set(window, GTK_DEST_DEFAULT_ALL, nullptr, 0, GDK_ACTION_COPY);
  gtk_drag_dest_add_uri_targets(window);
  g_signal_connect(window, "drag-data-received", G_CALLBACK(TakeDroppedFiles), nullptr);
}
