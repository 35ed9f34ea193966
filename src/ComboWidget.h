// The combo box of the windows: an entry that shows the choice and a list-style pop-up.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

// A combo stored as `combo_name` whose entry, not editable, is stored as `entry_name`. `changed`
// (may be null) runs after every choice of the user, however it was made, and never while the
// program fills or sets the combo.
GtkWidget *NewCombo(GtkWidget *window, const char *combo_name, const char *entry_name,
                    void (*changed)());

// Replaces the pop-up's rows (UTF-8); the entry keeps its text.
void ComboFill(GtkWidget *combo, const std::vector<std::string> &texts);

// Shows the row in the entry; -1 shows nothing.
void ComboSetRow(GtkWidget *combo, int row);

// The entry's text.
std::string ComboText(GtkWidget *combo);
