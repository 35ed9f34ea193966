// A list for many rows that come and go: it holds no texts but asks for those that are seen.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

struct ViewedColumn {
  const char *title_key;
  int characters;  // that it has room for at first; its title is never cut off
};

// Whose rows a list shows; rows and columns count from 0, texts are UTF-8.
struct ViewedRows {
  std::function<int()> count;
  std::function<std::string(int row, int column)> text;
  std::function<std::string(int row)> tip;  // tooltip and accessible description
};

// A list with titles, of several selectable rows, each of one line; `changed` runs after every
// change of the selection. The last column takes what room is left.
GtkWidget *NewViewedList(const std::vector<ViewedColumn> &columns, ViewedRows rows,
                         void (*changed)());

// To be called right after the change, one row at a time: rows and list never differ by more.
void ViewedRowInserted(GtkWidget *list, int row);
void ViewedRowRemoved(GtkWidget *list, int row);
void ViewedRowChanged(GtkWidget *list, int row);
// After any change; nothing is selected then.
void ViewedRowsReplaced(GtkWidget *list);

// The selected rows, ascending.
std::vector<int> ViewedSelection(GtkWidget *list);
void ViewedSelect(GtkWidget *list, int row);
void ViewedUnselectAll(GtkWidget *list);
