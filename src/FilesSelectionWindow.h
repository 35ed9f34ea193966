// The file selection of the print tool.
#pragma once

#include <gtk/gtk.h>

#include <memory>

struct FilesSelectionWindow {
  GtkWidget *window;
};
extern std::unique_ptr<FilesSelectionWindow> G_FilesSelectionWindow_helper;

// A file chooser for several files; its "FolderButton" takes whole folders. Not yet shown.
GtkWidget *create_FilesSelectionWindow();

// Adds the selected files to the list, then closes the window.
void ButtonOkFilesPressed();

// Adds every plain file of the folders that are selected or typed, else of the folder shown, then
// closes the window. A typed path that is not there, and no folder at all, is told instead.
void ButtonFolderFilesPressed();

// Closes the window and forgets it.
void ButtonCancelFilesPressed();
