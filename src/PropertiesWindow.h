// The properties window: a notebook over one queue's work copy, shared by both programs.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct PropertiesWindowHelper {
  GtkWidget *window = nullptr;
  GtkWidget *notebook = nullptr;
  GtkWidget *apply_button = nullptr;
  GtkWidget *ok_button = nullptr;
};
// Null while no properties window is open.
extern std::unique_ptr<PropertiesWindowHelper> G_PropertiesWindow_helper;

// The window on the queue that is selected in the administration window, or chosen in the print
// tool's: not yet shown. Null, after an error box where the user can do something about it, when it
// cannot be opened.
GtkWidget *create_PropertiesWindow();

// Shows the page that `widget` is on and puts the focus there; nothing for null.
void FocusInProperties(GtkWidget *widget);
