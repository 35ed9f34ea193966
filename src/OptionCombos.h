// The option lists of the properties window's tabs: one combo box a feature, with the picture of
// its choice beside it where the tab has one.

#pragma once

#include <gtk/gtk.h>

#include "multipleup.h"
#include "page.h"

// A row of `grid`: label, combo and, when `with_picture`, the picture of the current choice. The
// widgets are stored on `window` as "<row>Label", "<row>Combo", "<row>ComboEntry", "<row>Pixmap",
// where <row> is the feature's name in ListedFeatures ("PaperSize"). Filled at once; a choice runs
// G_ComboBoxOptionChanged. A printer without the feature: the row is empty and insensitive.
void AddOptionRow(GtkWidget *window, GtkGrid *grid, int row, const char *feature,
                  const char *label_key, bool with_picture);

// The same as the feature table has it.
void AddOptionRow(GtkWidget *window, GtkGrid *grid, const char *feature);

// The rows of all features of a page; for features that go with halftones, only where the queue's
// type has them. The number of the first free row of `grid`.
int AddOptionRows(GtkWidget *window, GtkGrid *grid, Page page);

// Forgets all rows; for the end of the properties window.
void ForgetOptionRows();

// The combo, its entry, the picture of a feature's row; null when there is no such row (or
// picture).
GtkWidget *OptionCombo(const char *feature);
GtkWidget *OptionComboEntry(const char *feature);
GtkWidget *OptionPicture(const char *feature);

// Fills one combo with the marked options of `feature`; marked rows say why in their tooltip and
// their accessible description. Only rows whose text changed are written. The entry shows the
// current choice; it stays as it is when that is none of the options. Destination rows: what
// depends on the choice becomes sensitive or insensitive.
void G_FillComboWithOptions(GtkWidget *combo, GtkWidget *entry, const char *feature);

// Every combo that is there, in the order of ListedFeatures.
void G_FillAllComboWithOptions();

// Stores what the feature's combo shows now as the queue's choice and brings everything that
// depends on it up to date: pictures, page orders, every list's marks, the installable lists.
void G_ComboBoxOptionChanged(const char *feature);

// Shows the picture of the queue's current choice of the feature; nothing without such a row.
void RedrawOptionPicture(const char *feature);

// Shows on all tabs how the sheet lies after the orientation changed in another way than by its
// combo: the pictures, and the page orders that are offered.
void ShowTurnedSheet();

// What other tabs hang onto a change, in addition; each may be null, and is by default.
struct OptionChangeHooks {
  void (*show_nup_orders)(OrderBoxes boxes) = nullptr;
  void (*redraw_multiple_up)() = nullptr;   // booklet, pages a sheet, page orders
  void (*refill_more_options)() = nullptr;  // the list of the Options tab
  void (*refill_installables)() = nullptr;  // the two lists, or the one of the print tool
  // The delivery's identifier, the notification's identifier: what depends on them.
  void (*delivery_shown)(const char *option) = nullptr;
  void (*notification_shown)(const char *option) = nullptr;
};
extern OptionChangeHooks G_OptionChangeHooks;
