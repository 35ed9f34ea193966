// The file selection of the print tool.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

struct FilesSelectionWindow {
  GtkWidget *window;
  // The opener's: a chosen file, or a folder, whose path ends in "/".
  void (*chosen)(const std::string &path) = nullptr;
};
extern std::unique_ptr<FilesSelectionWindow> G_FilesSelectionWindow_helper;

// A file chooser for several files; its "FolderButton" takes whole folders. Not yet shown.
GtkWidget *create_FilesSelectionWindow();

// Hands the selected files to the opener, then closes the window.
void ButtonOkFilesPressed();

// Hands it the folders that are selected or typed, else the folder shown, then closes the window. A
// typed path that is not there, or no folder at all, is reported instead.
void ButtonFolderFilesPressed();

// Closes the window and forgets it.
void ButtonCancelFilesPressed();
