// Access keys: Alt and the underlined letter of a text.

#pragma once

#include <gtk/gtk.h>

// Gives each button of `window`, each tab and each label that names a field a letter of its own;
// the pages of a notebook share theirs. The texts that labels and buttons are read out with stay as
// they are. To be called again when widgets were added; what had a letter keeps it if it can.
void GiveAccessKeys(GtkWidget *window);
