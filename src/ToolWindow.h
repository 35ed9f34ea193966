// The print tool's main window: builder and widget set.
#pragma once

#include <gtk/gtk.h>

#include <memory>

struct ToolWindowHelper {
  GtkWidget *window;
  GtkWidget *queue_combo;
  GtkWidget *files_list;
  GtkWidget *delete_button;
  GtkWidget *print_button;
  GtkWidget *lpr_button;
  GtkWidget *properties_button;
  int selected_files;  // number of selected rows of the file list
};
extern std::unique_ptr<ToolWindowHelper> G_QueuesWindow_helper;

// Builds the window, not yet shown, with the queues of G_Queues_hash; makes G_FilesList anew and
// fills G_QueuesWindow_helper.
GtkWidget *create_ToolWindow();
