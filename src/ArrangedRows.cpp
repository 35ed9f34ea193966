#include "ArrangedRows.h"

#include <algorithm>
#include <sstream>

namespace {

std::string Taken(gchar *text) {
  std::string result = text == nullptr ? "" : text;
  g_free(text);
  return result;
}

std::string TextAt(GtkTreeModel *model, GtkTreeIter *iter, int column) {
  gchar *text = nullptr;
  gtk_tree_model_get(model, iter, column, &text, -1);
  return Taken(text);
}

std::string Folded(const std::string &text) { return Taken(g_utf8_casefold(text.c_str(), -1)); }

}  // namespace

ArrangedRows::ArrangedRows(GtkTreeModel *rows, int first_column, int columns)
    : first_column_(first_column),
      columns_(columns),
      filtered_(gtk_tree_model_filter_new(rows, nullptr)),
      sorted_(gtk_tree_model_sort_new_with_model(filtered_)) {
  gtk_tree_model_filter_set_visible_func(GTK_TREE_MODEL_FILTER(filtered_), IsShown, this, nullptr);
  for (int i = 0; i < columns; ++i) {
    gtk_tree_sortable_set_sort_func(GTK_TREE_SORTABLE(sorted_), first_column + i, Compare, this,
                                    nullptr);
  }
}

ArrangedRows::~ArrangedRows() {
  g_object_unref(sorted_);
  g_object_unref(filtered_);
}

void ArrangedRows::SortBy(int column, GtkSortType order) {
  sort_column_ = column;
  gtk_tree_sortable_set_sort_column_id(GTK_TREE_SORTABLE(sorted_), first_column_ + column, order);
}

void ArrangedRows::ShowMatching(const std::string &search) {
  words_.clear();
  std::istringstream stream(Folded(search));
  for (std::string word; stream >> word;) words_.push_back(word);
  gtk_tree_model_filter_refilter(GTK_TREE_MODEL_FILTER(filtered_));
}

GtkTreeIter ArrangedRows::RowAt(GtkTreeIter shown) const {
  GtkTreeIter between;
  GtkTreeIter row;
  gtk_tree_model_sort_convert_iter_to_child_iter(GTK_TREE_MODEL_SORT(sorted_), &between, &shown);
  gtk_tree_model_filter_convert_iter_to_child_iter(GTK_TREE_MODEL_FILTER(filtered_), &row,
                                                   &between);
  return row;
}

bool ArrangedRows::FindShown(GtkTreeIter row, GtkTreeIter *shown) const {
  GtkTreeIter between;
  return gtk_tree_model_filter_convert_child_iter_to_iter(GTK_TREE_MODEL_FILTER(filtered_),
                                                          &between, &row) != FALSE &&
         gtk_tree_model_sort_convert_child_iter_to_iter(GTK_TREE_MODEL_SORT(sorted_), shown,
                                                        &between) != FALSE;
}

gboolean ArrangedRows::IsShown(GtkTreeModel *rows, GtkTreeIter *row, gpointer arranged) {
  const auto &self = *static_cast<ArrangedRows *>(arranged);
  if (self.words_.empty()) return TRUE;
  std::string texts;
  for (int i = 0; i < self.columns_; ++i) texts += TextAt(rows, row, self.first_column_ + i) + '\n';
  texts = Folded(texts);
  return std::all_of(self.words_.begin(), self.words_.end(),
                     [&](const std::string &word) { return texts.find(word) != texts.npos; })
             ? TRUE
             : FALSE;
}

gint ArrangedRows::Compare(GtkTreeModel *model, GtkTreeIter *a, GtkTreeIter *b, gpointer arranged) {
  auto &self = *static_cast<ArrangedRows *>(arranged);
  const int column = self.first_column_ + self.sort_column_;
  const std::string &first = self.SortKey(TextAt(model, a, column));
  const std::string &second = self.SortKey(TextAt(model, b, column));
  return first.compare(second);
}

const std::string &ArrangedRows::SortKey(const std::string &text) {
  const auto [place, is_new] = keys_.try_emplace(text);
  if (is_new) {
    const std::string folded = Folded(text);
    place->second = Taken(g_utf8_collate_key_for_filename(folded.c_str(), -1));
  }
  return place->second;
}
