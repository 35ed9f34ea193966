// The frame of the small dialogs: a modal window, a box for the content, one button below it.
#pragma once

#include <gtk/gtk.h>

struct Dialog {
  GtkWidget *window;
  GtkWidget *box;  // vertical; the content goes to its start
};

// A modal window of that widget name, titled by the catalogue text.
Dialog NewDialog(const char *name, const char *title_key);

// Puts the one button, stored as `name`, below the content and shows the content; Return and Escape
// press it, Return unless the focus is on a button added beside it. A null handler destroys the
// dialog.
GtkWidget *AddOkButton(const Dialog &dialog, const char *name, void (*pressed)());

// Puts the buttons "OKButton", "CancelButton" and "HelpButton" below the content, in a box stored
// as `box_name`, and shows all but the window. Return presses the button that has the focus, else
// OK; F1 presses Help; Escape and closing the window press Cancel.
struct DialogHandlers {
  void (*ok)();
  void (*cancel)();
  void (*help)();
};
void AddOkCancelHelp(const Dialog &dialog, const char *box_name, const DialogHandlers &handlers);
