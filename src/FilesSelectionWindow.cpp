#include "FilesSelectionWindow.h"

#include <unistd.h>

#include <string>
#include <vector>

#include "AccessKeys.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "utils.h"

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

// The toolkit highlights the first row of a folder that it has just opened, which may well be a
// folder: nobody has chosen it. What a user does comes with an event.
void UndoOwnChoice(GtkFileChooser *chooser, gpointer) {
  GdkEvent *event = gtk_get_current_event();
  if (event == nullptr) {
    gtk_file_chooser_unselect_all(chooser);
  } else {
    gdk_event_free(event);
  }
}

// What is highlighted or typed.
std::vector<std::string> ChosenPaths() {
  std::vector<std::string> paths;
  GSList *names = gtk_file_chooser_get_filenames(Chooser());
  for (GSList *link = names; link != nullptr; link = link->next) {
    paths.emplace_back(static_cast<const char *>(link->data));
  }
  g_slist_free_full(names, g_free);
  return paths;
}

void Choose(const std::string &path) {
  if (G_FilesSelectionWindow_helper->chosen != nullptr) G_FilesSelectionWindow_helper->chosen(path);
}

// The folder whose files are listed; none while other files are, such as the recent ones.
std::vector<std::string> ShownFolder() {
  gchar *folder = gtk_file_chooser_get_current_folder(Chooser());
  std::vector<std::string> folders;
  if (folder != nullptr) folders.emplace_back(folder);
  g_free(folder);
  return folders;
}

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
  g_signal_connect(window, "selection-changed", G_CALLBACK(UndoOwnChoice), nullptr);
  g_signal_connect(window, "response", G_CALLBACK(HandleResponse), nullptr);
  G_FilesSelectionWindow_helper =
      std::make_unique<FilesSelectionWindow>(FilesSelectionWindow{window});
  return window;
}

void ButtonOkFilesPressed() {
  const LogScope log("ButtonOkFilesPressed");
  for (const std::string &path : ChosenPaths()) {
    Choose(IsDirectory(path) ? path + "/" : path);
  }
  ButtonCancelFilesPressed();
}

void ButtonFolderFilesPressed() {
  const LogScope log("ButtonFolderFilesPressed");
  std::vector<std::string> folders;
  for (const std::string &path : ChosenPaths()) {
    if (IsDirectory(path)) folders.push_back(path);
    if (access(path.c_str(), F_OK) == 0) continue;
    gtk_widget_show(create_ErrorWindow(nullptr, G_Message("ERR_UNABLE_TO_READ_DIR", {path})));
    return;
  }
  if (folders.empty()) folders = ShownFolder();
  if (folders.empty()) {
    ShowError("MSG_NO_FOLDER");
    return;
  }
  for (const std::string &folder : folders) Choose(folder + "/");
  ButtonCancelFilesPressed();
}

void ButtonCancelFilesPressed() {
  const LogScope log("ButtonCancelFilesPressed");
  gtk_widget_destroy(G_FilesSelectionWindow_helper->window);
  G_FilesSelectionWindow_helper.reset();
}
