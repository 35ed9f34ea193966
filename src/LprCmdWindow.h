// The window that shows the print command.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Shows nothing yet; "OKButton" destroys it.
GtkWidget *create_LprCmdWindow(const std::string &text);
