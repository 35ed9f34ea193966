// The print tool's main window: its handlers.
#pragma once

#include <gtk/gtk.h>

#include <string>

// The name of the queue that the queue combo shows.
std::string ChosenQueue();

// "clicked" handlers of the buttons.
void ButtonPrintPressed();
void ButtonLPRPressed();
void ButtonPropertiesToolPressed();
void ButtonAddFilesPressed();
void ButtonDeleteFilesPressed();
void ButtonHelpToolPressed();

// Also the window's close: removes the captured standard input, gives the window's state up and
// ends the main loop.
void ButtonCancelToolPressed();

// A row of the file list became selected or unselected.
void FilesCListRowSelection(int row);
void FilesCListRowUnSelection(int row);

// The entries of the queue combo; the caller frees texts and list (G_FreeStringsFrom_g_list).
GList *BuildQueuesGList();

// Fills the queue combo and shows its first queue; without any queue nothing can be printed.
void ShowQueues();

// Shows that queue instead; false when there is none of the name.
[[nodiscard]] bool ShowQueue(const std::string &name);

// Appends a file to G_FilesList and a row for it that shows `shown` (UTF-8).
void AddFileRow(const std::string &path, const std::string &shown);

// Appends what the user chose or dropped: a file, or for a path that ends in "/" every plain file
// of that folder.
void AddChosenPath(const std::string &path);

// Files dropped on `window` from a file manager (text/uri-list) are added as chosen ones.
void AcceptDroppedFiles(GtkWidget *window);
