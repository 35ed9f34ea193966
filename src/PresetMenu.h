// The presets of the print tool's properties window: a button with a menu, and what was done last.
#pragma once

#include <gtk/gtk.h>

// Adds the row "PresetsHbox" with the button "PresetsButton" above what stands at the end of `box`
// in the properties window, and shows it. Its menu has the presets that fit the queue and keeps and
// deletes the user's own.
void AddPresets(GtkWidget *box);

// "clicked" handler of the button: opens the menu, made of what there is now.
void ButtonPresetsPressed();
