// The multi-column list of the windows: numbered rows of texts with a datum each, one callback for
// every row whose selection changes.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

struct ListColumn {
  const char *title_key;  // null: no title
  int width;              // pixels; 0: natural
};

using ListRowHandler = void (*)(int row);

// A list with these columns; titles are shown when the first column has one. The widget is a
// GtkTreeView that owns everything about the list.
GtkWidget *NewList(const std::vector<ListColumn> &columns, GtkSelectionMode mode);

// `selected` and `unselected` run once for each row whose state changed, whoever changed it, in row
// order with the unselected rows first.
void ListOnSelection(GtkWidget *list, ListRowHandler selected, ListRowHandler unselected);

// Return on a row that is selected then runs `activated`; a double click does not.
void ListOnActivation(GtkWidget *list, ListRowHandler activated);

// A click on a title sorts the shown rows by its column, a second one the other way round, a third
// one not at all. The numbers of the rows stay those of their own order.
void ListSortByTitles(GtkWidget *list);

// Shows the rows that have each word of `search` (UTF-8) in one of their cells, in whatever letter
// case; all of them for an empty text. Those that are not shown are unselected, which is reported.
void ListShowMatching(GtkWidget *list, const std::string &search);
[[nodiscard]] bool ListIsShown(GtkWidget *list, int row);

// Appends a row (cells are UTF-8) and returns its number, from 0. `data` is the caller's and is
// never touched.
int ListAppend(GtkWidget *list, const std::vector<std::string> &cells, gpointer data);

// The row's tooltip and accessible description; none for an empty text and at first. Out of range:
// nothing.
void ListSetTip(GtkWidget *list, int row, const std::string &tip);
std::string ListTip(GtkWidget *list, int row);

// Removes the row; when it was selected, the unselection is reported first. Out of range: nothing.
void ListRemove(GtkWidget *list, int row);

// Removes all rows; nothing is reported.
void ListClear(GtkWidget *list);

[[nodiscard]] int ListRowCount(GtkWidget *list);

// The row's datum, null when out of range; the row of a datum (the last one appended with it), -1
// when there is none.
gpointer ListRowData(GtkWidget *list, int row);
[[nodiscard]] int ListFindData(GtkWidget *list, gconstpointer data);

// A cell's text; empty when out of range.
std::string ListCell(GtkWidget *list, int row, int column);
// Another text for the cell; selection and cursor stay. Out of range: nothing.
void ListSetCell(GtkWidget *list, int row, int column, const std::string &text);

// A row that is not shown cannot be selected.
void ListSelectRow(GtkWidget *list, int row);
void ListUnselectRow(GtkWidget *list, int row);
void ListUnselectAll(GtkWidget *list);
[[nodiscard]] bool ListIsSelected(GtkWidget *list, int row);

// By how much, in pixels, cells of more than `characters` characters make the list wider than that.
[[nodiscard]] int ListWidthOfLongCells(GtkWidget *list, int characters);

// Scrolls so far that the row is seen, if it is one of those that are shown.
void ListShowRow(GtkWidget *list, int row);

// Selects the first of the shown rows alone, if there is one; the arrow keys go on from it.
void ListGoToFirst(GtkWidget *list);

// Between the two the view does not follow the rows; for filling many at once. Freezing unselects
// all rows, which is reported; nothing can be selected until the list is thawed.
void ListFreeze(GtkWidget *list);
void ListThaw(GtkWidget *list);
