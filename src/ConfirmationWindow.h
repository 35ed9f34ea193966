// The question before custom paper sizes or media types are deleted.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct ConfirmationWindowHelper {
  GtkWidget *window;
  GtkWidget *yes_button;
  GtkWidget *no_button;
};
// Null while the dialog is not open.
extern std::unique_ptr<ConfirmationWindowHelper> G_ConfirmationWindow_helper;

// What the open dialog is about: 1 paper sizes, otherwise media types.
extern int Cps_Or_Cmt;

// The dialog about paper sizes (1) or media types, not yet shown.
GtkWidget *create_ConfirmationWindow(int kind);

// "clicked" handlers. YES deletes the selected entries; NO, also pressed by Escape and by closing
// the window, leaves entries and selection as they are.
void ButtonYESConfirmationPressed();
void ButtonNOConfirmationPressed();
