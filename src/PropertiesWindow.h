// The properties window: a notebook over one queue's work copy, shared by both programs.

#pragma once

#include <gtk/gtk.h>

#include "PropertiesFrame.h"

// The window on the queue that the opener has chosen: not yet shown. Null, after an error box where
// the user can do something about it, when it cannot be opened.
GtkWidget *create_PropertiesWindow();
