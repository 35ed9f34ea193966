// The frame of the properties window that its pages build on, and what it asks its opener for.

#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "properties.h"

struct PropertiesWindowHelper {
  GtkWidget *window = nullptr;
  GtkWidget *notebook = nullptr;
  GtkWidget *apply_button = nullptr;
  GtkWidget *ok_button = nullptr;
};
// Null while no properties window is open.
extern std::unique_ptr<PropertiesWindowHelper> G_PropertiesWindow_helper;

// Shows the page that `widget` is on and puts the focus there; nothing for null.
void FocusInProperties(GtkWidget *widget);

// The program's main window, as far as the properties need it.
struct PropertiesOpener {
  // The name of the queue that it is on; empty without one.
  std::string (*chosen_queue)() = nullptr;
  // Administration: stores the work copy under the identity in place of the chosen queue, and shows
  // it as the chosen one.
  void (*replace_queue)(const QueueIdentity &identity) = nullptr;
};
// Set by each main window when it is built.
extern PropertiesOpener G_PropertiesOpener;
