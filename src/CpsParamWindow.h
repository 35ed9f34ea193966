// The dialog that adds or edits a custom paper size.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct CpsParamWindowHelper {
  GtkWidget *window = nullptr;
  GtkWidget *name_entry = nullptr;
  GtkWidget *width_spin = nullptr;
  GtkWidget *length_spin = nullptr;
  GtkWidget *width_range = nullptr;  // labels
  GtkWidget *length_range = nullptr;
};
// Null while the dialog is not open.
extern std::unique_ptr<CpsParamWindowHelper> G_CpsParamWindow_helper;

// The dialog, not yet shown: 1 edits the size that is selected on the Customs tab, any other value
// adds one. Sizes are shown in pels at first. The current printer must have limits for custom
// sizes.
GtkWidget *create_CpsParamWindow(int add_or_edit);

// 1 when a size of the open dialog may have the name; else 0, after an error box where there is
// something to say.
[[nodiscard]] int CheckUniqueCpsName(const char *name);

// Puts what the dialog shows into the work copy and the Customs tab: 1; 0 when the name was
// refused, with the focus on it.
[[nodiscard]] int GetAndSaveUserDataCpsParam();

// "clicked" handlers.
void ButtonOkCpsPressed();
void ButtonCancelCpsPressed();
void ButtonHelpCpsPressed();

// A unit was chosen: what is shown is converted.
void RadioButtonPelsPressed();
void RadioButtonInchesPressed();
void RadioButtonMillimetersPressed();

// "insert-text" handler of the name.
void CpsName_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                       gpointer data);
