// The rows of a list as they are shown: sorted by a column, and without those that a search leaves
// out. The rows themselves stay where they are.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <unordered_map>
#include <vector>

class ArrangedRows {
 public:
  // Of `rows`, whose `columns` model columns from `first_column` on are texts; all of them and in
  // their own order at first.
  ArrangedRows(GtkTreeModel *rows, int first_column, int columns);
  ~ArrangedRows();
  ArrangedRows(const ArrangedRows &) = delete;
  ArrangedRows &operator=(const ArrangedRows &) = delete;

  // What a view shows; lent.
  GtkTreeModel *model() const { return sorted_; }

  // By a column, from 0. Digits count as numbers, letter case does not matter.
  void SortBy(int column, GtkSortType order);

  // Leaves out the rows that lack one of the words of `search` (UTF-8; upper and lower case are
  // the same); an empty text leaves none out.
  void ShowMatching(const std::string &search);

  // The row that is shown at `shown`; where `row` is shown, false when it is left out.
  GtkTreeIter RowAt(GtkTreeIter shown) const;
  [[nodiscard]] bool FindShown(GtkTreeIter row, GtkTreeIter *shown) const;

 private:
  static gboolean IsShown(GtkTreeModel *rows, GtkTreeIter *row, gpointer arranged);
  static gint Compare(GtkTreeModel *model, GtkTreeIter *a, GtkTreeIter *b, gpointer arranged);
  const std::string &SortKey(const std::string &text);

  int first_column_;
  int columns_;
  GtkTreeModel *filtered_;
  GtkTreeModel *sorted_;
  int sort_column_ = 0;
  std::vector<std::string> words_;                     // with their letter case folded
  std::unordered_map<std::string, std::string> keys_;  // what texts are compared by
};
