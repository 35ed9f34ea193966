// The administration program's main window: builder and state.
#pragma once

#include <gtk/gtk.h>

#include <memory>

#include "clist.h"

struct KPXadminWindowHelper {
  GtkWidget *window;
  GtkWidget *queues_list;
  GtkWidget *clone_button;
  GtkWidget *properties_button;
  GtkWidget *delete_button;
  int m_NumberOfQueuesSelected;
  GtkWidget *search_entry;
};
extern std::unique_ptr<KPXadminWindowHelper> G_KPXadminWindow_helper;

// One CSelection (queue name, selected) for each row, in row order; the rows' data are its
// positions.
extern Owned<CList> G_QueuesSelections;

// Builds the window, not yet shown, with a row for every queue of the working set.
GtkWidget *create_AdminWindow();
