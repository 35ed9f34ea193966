#include "FilesSelectionWindow.h"

#include "AccessKeys.h"
#include "Support.h"
#include "ToolWindowFct.h"
#include "cmessages.h"
#include "debug.h"

std::unique_ptr<FilesSelectionWindow> G_FilesSelectionWindow_helper;

namespace {

enum { kResponseFolder = 1 };

void HandleResponse(GtkDialog *, gint response, gpointer) {
  if (response == GTK_RESPONSE_OK) {
    ButtonOkFilesPressed();
  } else if (response == kResponseFolder) {
    ButtonFolderFilesPressed();
  } else {
    ButtonCancelFilesPressed();
  }
}

GtkFileChooser *Chooser() { return GTK_FILE_CHOOSER(G_FilesSelectionWindow_helper->window); }

void AddResponse(GtkWidget *window, const char *name, const char *title_key, int response) {
  GtkWidget *button = gtk_dialog_add_button(GTK_DIALOG(window), G_Translate(title_key), response);
  StoreWidget(window, button, name);
}

}  // namespace

GtkWidget *create_FilesSelectionWindow() {
  const LogScope log("create_FilesSelectionWindow");
  GtkWidget *window = gtk_file_chooser_dialog_new(G_Translate("DEF_WND_FILE_TITLE"), nullptr,
                                                  GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr);
  StoreWidget(window, window, "FilesSelectionWindow");
  MakeModal(window);
  // The toolkit's size for it grows with the square of the text size.
  KeepOnScreen(window);
  gtk_file_chooser_set_select_multiple(GTK_FILE_CHOOSER(window), TRUE);
  gtk_file_chooser_set_local_only(GTK_FILE_CHOOSER(window), TRUE);
  // Where the program was started, not the toolkit's list of recent files.
  gchar *folder = g_get_current_dir();
  gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(window), folder);
  g_free(folder);
  AddResponse(window, "FolderButton", "DEF_BTN_FOLDER_TITLE", kResponseFolder);
  AddResponse(window, "CancelButton", "DEF_BTN_CANCEL_TITLE", GTK_RESPONSE_CANCEL);
  AddResponse(window, "OKButton", "DEF_BTN_OK_TITLE", GTK_RESPONSE_OK);
  GiveAccessKeys(window);
  gtk_dialog_set_default_response(GTK_DIALOG(window), GTK_RESPONSE_OK);
  g_signal_connect(window, "response", G_CALLBACK(HandleResponse), nullptr);
  G_FilesSelectionWindow_helper =
      std::make_unique<FilesSelectionWindow>(FilesSelectionWindow{window});
  return window;
}

void ButtonOkFilesPressed() {
  const LogScope log("ButtonOkFilesPressed");
  GSList *paths = gtk_file_chooser_get_filenames(Chooser());
  for (GSList *link = paths; link != nullptr; link = link->next) {
    std::string path = static_cast<const char *>(link->data);
    if (g_file_test(path.c_str(), G_FILE_TEST_IS_DIR) != FALSE) path += '/';
    AddChosenPath(path);
  }
  g_slist_free_full(paths, g_free);
  ButtonCancelFilesPressed();
}

void ButtonFolderFilesPressed() {
  const LogScope log("ButtonFolderFilesPressed");
  gchar *folder = gtk_file_chooser_get_current_folder(Chooser());
  if (folder != nullptr) AddChosenPath(std::string(folder) + "/");
  g_free(folder);
  ButtonCancelFilesPressed();
}

void ButtonCancelFilesPressed() {
  const LogScope log("ButtonCancelFilesPressed");
  gtk_widget_destroy(G_FilesSelectionWindow_helper->window);
  G_FilesSelectionWindow_helper.reset();
}
