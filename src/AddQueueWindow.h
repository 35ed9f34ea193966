// The add-queue dialog: builder and state.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

struct AddQueueWindowHelper {
  GtkWidget *window;
  GtkWidget *printer_list;
  int selected_printer;  // row of the printer list, -1 when none
  // The opener's: a queue of that name is new in the working set.
  void (*added)(const std::string &name) = nullptr;
  int proposed_printer = -1;  // the row that a found printer has chosen, -1 when none has
};
extern std::unique_ptr<AddQueueWindowHelper> G_AddQueueWindow_helper;

// Builds the dialog, not yet shown, and fills G_AddQueueWindow_helper.
GtkWidget *create_AddQueueWindow();
