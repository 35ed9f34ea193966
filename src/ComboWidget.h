// The combo box of the windows: an entry that shows the choice and a list-style pop-up.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

struct ComboRow {
  std::string text;
  // Shown as the row's tooltip and, while the row is the choice, as the entry's tooltip and
  // accessible description; empty: none.
  std::string tip = {};
  bool operator==(const ComboRow &other) const = default;
};

// A combo stored as `combo_name` whose entry, not editable, is stored as `entry_name`. `changed`
// (may be null) runs after every choice of the user, however it was made (pop-up, arrow keys,
// wheel, a letter), and never while the program fills or sets the combo. A letter chooses the next
// row whose text, without a conflict mark of the option lists, begins with it.
GtkWidget *NewCombo(GtkWidget *window, const char *combo_name, const char *entry_name,
                    std::function<void()> changed);

// What is typed into the combo's entry becomes its text.
void ComboMakeEditable(GtkWidget *combo);

// Makes these the pop-up's rows (UTF-8). Only rows that differ are written, what is too much or
// missing is removed or added at the end; the entry keeps its text, and the chosen row stays the
// row of that number.
void ComboFillRows(GtkWidget *combo, const std::vector<ComboRow> &rows);

// The same with rows of text alone.
void ComboFill(GtkWidget *combo, const std::vector<std::string> &texts);

// Shows the row in the entry; -1 shows nothing.
void ComboSetRow(GtkWidget *combo, int row);

// No row is the choice, but the entry keeps its text.
void ComboForgetRow(GtkWidget *combo);

// The entry's text.
std::string ComboText(GtkWidget *combo);
