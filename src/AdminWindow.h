// The administration program's main window: builder.
#pragma once

#include <gtk/gtk.h>

// Builds the window, not yet shown.
GtkWidget *create_AdminWindow();
