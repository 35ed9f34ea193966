#include "ToolWindowFct.h"

#include <unistd.h>

#include "ComboWidget.h"
#include "FilesSelectionWindow.h"
#include "ListWidget.h"
#include "LprCmdWindow.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "ToolWindow.h"
#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "cselection.h"
#include "debug.h"
#include "filelist.h"
#include "globals.h"
#include "printcommand.h"

namespace {

CSelection *RecordOfRow(int row) {
  gpointer position = ListRowData(G_QueuesWindow_helper->files_list, row);
  return ObjectCast<CSelection>(
      fGetAt_CList_Function(G_FilesList.get(), static_cast<CNodeList *>(position)));
}

// A path as the window can show it: file names may be in any encoding.
std::string DisplayName(const std::string &path) {
  gchar *name = g_filename_display_name(path.c_str());
  const std::string shown = name;
  g_free(name);
  return shown;
}

void RemoveStdinFile() {
  if (!G_StdinFileName.empty()) unlink(G_StdinFileName.c_str());
}

std::string ChosenQueue() { return QueueNameFromEntry(ComboText(G_QueuesWindow_helper->queue_combo)); }

void TakeDroppedFiles(GtkWidget *, GdkDragContext *context, gint, gint, GtkSelectionData *data,
                      guint, guint time, gpointer) {
  const LogScope log("TakeDroppedFiles");
  const guchar *bytes = gtk_selection_data_get_data(data);
  const gint length = gtk_selection_data_get_length(data);
  std::vector<std::string> paths;
  if (bytes != nullptr && length > 0) {
    paths = PathsFromUriList({reinterpret_cast<const char *>(bytes), static_cast<size_t>(length)});
  }
  for (std::string path : paths) {
    if (g_file_test(path.c_str(), G_FILE_TEST_IS_DIR) != FALSE && !path.ends_with('/')) path += '/';
    AddChosenPath(path);
  }
  gtk_drag_finish(context, paths.empty() ? FALSE : TRUE, FALSE, time);
}

}  // namespace

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
  RemoveStdinFile();
  gtk_widget_show(create_ErrorWarningWindow(errors.get(), kExit));
}

void ButtonLPRPressed() {
  const LogScope log("ButtonLPRPressed");
  gtk_widget_show(create_LprCmdWindow(DecodeLine(DisplayedPrintCommand(ChosenQueue()))));
}

void ButtonAddFilesPressed() {
  const LogScope log("ButtonAddFilesPressed");
  gtk_widget_show(create_FilesSelectionWindow());
}
