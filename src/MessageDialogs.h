// The four dialogs that every window uses. Each builder returns the top-level widget, not yet
// shown; the dialog destroys itself.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "clist.h"

// The about box with the help text of "KPX_ABOUT_BEGIN".
GtkWidget *create_AboutWindow();

// Builds the about box and shows it.
void G_ButtonAboutPressed();

// The error box: `text`, and below it `detail` unless that is null.
GtkWidget *create_ErrorWindow(const char *detail, const std::string &text);

// Adds a label of that name below the texts of an error box.
void AddErrorLabel(GtkWidget *window, const char *name, const std::string &text);

// Takes the word "error" from the title of a box or list that only informs.
void CallNote(GtkWidget *window);

// Builds the error box on one catalogue text and shows it.
void ShowError(const char *key);

// The help box with `text`.
GtkWidget *create_HelpWindow(const std::string &text);

// Builds the help box on the text of one help block and shows it.
void ShowHelp(const char *block);

// What the OK button of the error-and-warning list does.
enum ExitOrReturn { kReturn = 0, kExit = 1 };

struct ErrorWarningWindow {
  GtkWidget *window;
  GtkWidget *text;
};
extern std::unique_ptr<ErrorWarningWindow> G_ErrorWarningWindow_helper;

// The list of `messages` (CString records, lent for the call) in order, one a line. OK ends the
// program with status 1 (kExit) or closes the list (kReturn).
GtkWidget *create_ErrorWarningWindow(const CList *messages, int exit_or_return);

// Handler of its OK button.
void ButtonOkErrorWarningPressed();
