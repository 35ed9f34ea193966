// Rows and columns of buttons.
#pragma once

#include <gtk/gtk.h>

// A button box stored as `name`: horizontal ones spread their buttons, vertical ones start at the
// top. Its shown buttons are of one size; where the screen is too narrow for a row of them, each
// becomes as wide as its text.
GtkWidget *NewButtonBox(GtkWidget *window, GtkOrientation orientation, const char *name);
