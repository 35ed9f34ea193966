// The dialog that adds or renames a custom media type.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct CmtParamWindowHelper {
  GtkWidget *window = nullptr;
  GtkWidget *name_entry = nullptr;
};
// Null while the dialog is not open.
extern std::unique_ptr<CmtParamWindowHelper> G_CmtParamWindow_helper;

// The dialog, not yet shown: 1 edits the type that is selected on the Customs tab, any other value
// adds one.
GtkWidget *create_CmtParamWindow(int add_or_edit);

// While a type is edited: shows its display name as it is.
void GetAndPutCmtParams();

// 1 when a type of the open dialog may have the name; else 0, after an error box where there is
// something to say.
[[nodiscard]] int CheckUniqueCmtName(const char *name);

// Puts what the dialog shows into the work copy and the Customs tab: 1; 0 when the name was
// refused, with the focus on it.
[[nodiscard]] int GetAndSaveUserDataCmtParam();

// "clicked" handlers.
void ButtonOkCmtPressed();
void ButtonCancelCmtPressed();
void ButtonHelpCmtPressed();

// "insert-text" handler of the name.
void CmtName_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                       gpointer data);
