// The Fonts tab of the properties window: the font of plain text, for queues of that type.

#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

struct PropTabTextOptionsHelper {
  GtkWidget *font = nullptr;  // combos
  GtkWidget *style = nullptr;
  GtkWidget *size = nullptr;
};
extern std::unique_ptr<PropTabTextOptionsHelper> G_PropTabTextOptions_helper;

// Builds and fills the page; floating. It is hidden when the queue's type is another one.
GtkWidget *create_PropTabTextOptions();

// Fills the list of fonts and shows the one that the work copy asks for, with its styles; the first
// one when the font map lacks that.
void FillFontComboBox();

// Fills the list of styles with those of `font`. The style shown stays when the font has it, else
// its first one is shown. 1; 0 and no change when the font has none.
[[nodiscard]] int FillFontStyleComboBox(const std::string &font);

// Fills the list of sizes and shows the one that the work copy asks for.
void FillFontSizeComboBox();

// Handler of the font's combo.
void FontComboBoxOptionChanged();

// "insert-text" handler of the size's entry: digits alone.
void FontSize_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                        gpointer data);

// "focus-out-event" handler of the size's entry: moves the size into the range.
gboolean FontSizeEntryFocusOut(GtkWidget *entry, GdkEventFocus *event, gpointer data);

// "clicked" handler of Defaults.
void ButtonTextDefaultsPressed();

// Stores the font and the size in the work copy: 1; 0 when the font does not have the style.
[[nodiscard]] int G_GetAndSaveUserDataPropTabText();

// Shows the tab with the focus on what it refused.
void FocusFontEntry();
