// The list "More options" of the Options tab: what the printer offers beyond the tabs' rows.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Adds the list to `page`, under its frame, with a combo box below it for the choices of the
// selected option; nothing for a printer without such options. A choice marks every list anew.
void AddMoreOptions(GtkWidget *window, GtkWidget *page);

// Selects the option's row: the combo box of its choices. Null when the list does not have it.
GtkWidget *ShowMoreOption(const std::string &feature);

// Sets the list's options to the printer's defaults: whether that changed any. The lists are not
// filled anew.
[[nodiscard]] bool ResetMoreOptions();
