#include "ListWidget.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "RowTips.h"
#include "Support.h"
#include "cmessages.h"

namespace {

constexpr char L_StateKey[] = "kpx-list-state";

// Model columns: the datum, the texts, the tooltip.
enum { kDataColumn = 0, kFirstTextColumn = 1 };

// Rows by their identity; the iterators of a list store stay good as long as the row is there.
using RowSet = std::map<gpointer, GtkTreeIter>;

struct ListState {
  GtkListStore *store = nullptr;
  int text_columns = 0;
  ListRowHandler selected = nullptr;
  ListRowHandler unselected = nullptr;
  RowSet reported;  // the rows last reported as selected
  std::map<gconstpointer, GtkTreeIter> by_data;
  bool reporting = false;
  bool removing = false;

  ~ListState() { g_object_unref(store); }
};

int TipColumn(const ListState &state) { return kFirstTextColumn + state.text_columns; }

ListState *StateOf(GtkWidget *list) {
  return static_cast<ListState *>(g_object_get_data(G_OBJECT(list), L_StateKey));
}

GtkTreeModel *ModelOf(GtkWidget *list) { return GTK_TREE_MODEL(StateOf(list)->store); }

GtkTreeSelection *SelectionOf(GtkWidget *list) {
  return gtk_tree_view_get_selection(GTK_TREE_VIEW(list));
}

bool RowIter(GtkWidget *list, int row, GtkTreeIter *iter) {
  return row >= 0 && gtk_tree_model_iter_nth_child(ModelOf(list), iter, nullptr, row) != FALSE;
}

std::string TextAt(GtkWidget *list, GtkTreeIter *iter, int model_column) {
  gchar *text = nullptr;
  gtk_tree_model_get(ModelOf(list), iter, model_column, &text, -1);
  std::string result = text == nullptr ? "" : text;
  g_free(text);
  return result;
}

void AddToRowSet(GtkTreeModel *, GtkTreePath *, GtkTreeIter *iter, gpointer data) {
  static_cast<RowSet *>(data)->emplace(iter->user_data, *iter);
}

int RowNumber(GtkTreeModel *model, GtkTreeIter iter) {
  GtkTreePath *path = gtk_tree_model_get_path(model, &iter);
  const int number = gtk_tree_path_get_indices(path)[0];
  gtk_tree_path_free(path);
  return number;
}

// The numbers of the rows of `rows` that are not in `others`, ascending.
std::vector<int> RowNumbersOnlyIn(const RowSet &rows, const RowSet &others, GtkTreeModel *model) {
  std::vector<int> numbers;
  for (const auto &[id, iter] : rows) {
    if (others.count(id) != 0) continue;
    numbers.push_back(RowNumber(model, iter));
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

// Runs the handlers for what changed since the last report; false when nothing had.
bool ReportOnce(GtkWidget *list) {
  ListState *state = StateOf(list);
  RowSet now;
  gtk_tree_selection_selected_foreach(SelectionOf(list), AddToRowSet, &now);
  const std::vector<int> gone = RowNumbersOnlyIn(state->reported, now, ModelOf(list));
  const std::vector<int> come = RowNumbersOnlyIn(now, state->reported, ModelOf(list));
  state->reported = std::move(now);
  for (const int row : gone) {
    if (state->unselected != nullptr) state->unselected(row);
  }
  for (const int row : come) {
    if (state->selected != nullptr) state->selected(row);
  }
  return !gone.empty() || !come.empty();
}

void ReportChanges(GtkTreeSelection *, gpointer data) {
  GtkWidget *list = GTK_WIDGET(data);
  ListState *state = StateOf(list);
  if (state->reporting || state->removing) return;
  state->reporting = true;
  // A handler may change the selection itself; that is reported in the next round.
  while (ReportOnce(list)) {
  }
  state->reporting = false;
}

// Removing the row with the keyboard's cursor moves the cursor; that must not select another row.
gboolean MaySelectionChange(GtkTreeSelection *, GtkTreeModel *, GtkTreePath *, gboolean,
                            gpointer state) {
  return static_cast<ListState *>(state)->removing ? FALSE : TRUE;
}

bool IsFrozen(GtkWidget *list) { return gtk_tree_view_get_model(GTK_TREE_VIEW(list)) == nullptr; }

// Unselects and reports one row without looking at all the others.
void UnselectOne(GtkWidget *list, int row, GtkTreeIter iter) {
  ListState *state = StateOf(list);
  const bool was_reporting = state->reporting;
  state->reporting = true;
  gtk_tree_selection_unselect_iter(SelectionOf(list), &iter);
  state->reporting = was_reporting;
  if (state->reported.erase(iter.user_data) != 0 && state->unselected != nullptr) {
    state->unselected(row);
  }
}

GtkListStore *NewStore(size_t text_columns) {
  std::vector<GType> types(kFirstTextColumn + text_columns + 1, G_TYPE_STRING);
  types[kDataColumn] = G_TYPE_POINTER;
  return gtk_list_store_newv(static_cast<gint>(types.size()), types.data());
}

void AddColumn(GtkWidget *list, const ListColumn &column, int number, int tip_column) {
  GtkCellRenderer *renderer = NewTipRenderer();
  const char *title = column.title_key == nullptr ? "" : G_Translate(column.title_key);
  GtkTreeViewColumn *view = gtk_tree_view_column_new_with_attributes(
      title, renderer, "text", kFirstTextColumn + number, "tip", tip_column, nullptr);
  gtk_tree_view_column_set_resizable(view, TRUE);
  // A label without text would still have the bold font of titles read.
  if (column.title_key == nullptr) {
    gtk_tree_view_column_set_widget(view, gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0));
  }
  if (column.width > 0) gtk_tree_view_column_set_min_width(view, column.width);
  gtk_tree_view_append_column(GTK_TREE_VIEW(list), view);
}

}  // namespace

GtkWidget *NewList(const std::vector<ListColumn> &columns, GtkSelectionMode mode) {
  auto state = std::make_unique<ListState>();
  state->store = NewStore(columns.size());
  state->text_columns = static_cast<int>(columns.size());
  GtkWidget *list = gtk_tree_view_new_with_model(GTK_TREE_MODEL(state->store));
  gtk_tree_view_set_headers_visible(GTK_TREE_VIEW(list), columns.front().title_key != nullptr);
  gtk_tree_view_set_search_column(GTK_TREE_VIEW(list), kFirstTextColumn);
  for (size_t i = 0; i < columns.size(); ++i) {
    AddColumn(list, columns[i], static_cast<int>(i), TipColumn(*state));
  }
  ShowRowTips(GTK_TREE_VIEW(list), TipColumn(*state));
  gtk_tree_selection_set_mode(SelectionOf(list), mode);
  gtk_tree_selection_set_select_function(SelectionOf(list), MaySelectionChange, state.get(),
                                         nullptr);
  g_signal_connect(SelectionOf(list), "changed", G_CALLBACK(ReportChanges), list);
  g_object_set_data_full(G_OBJECT(list), L_StateKey, state.release(), [](gpointer data) {
    std::default_delete<ListState>()(static_cast<ListState *>(data));
  });
  return list;
}

void ListOnSelection(GtkWidget *list, ListRowHandler selected, ListRowHandler unselected) {
  StateOf(list)->selected = selected;
  StateOf(list)->unselected = unselected;
}

int ListAppend(GtkWidget *list, const std::vector<std::string> &cells, gpointer data) {
  GtkListStore *store = StateOf(list)->store;
  GtkTreeIter iter;
  const int row = ListRowCount(list);
  gtk_list_store_insert_with_values(store, &iter, -1, kDataColumn, data, -1);
  StateOf(list)->by_data[data] = iter;
  for (size_t i = 0; i < cells.size(); ++i) {
    gtk_list_store_set(store, &iter, kFirstTextColumn + static_cast<int>(i), cells[i].c_str(), -1);
  }
  return row;
}

void ListSetTip(GtkWidget *list, int row, const std::string &tip) {
  GtkTreeIter iter;
  if (!RowIter(list, row, &iter)) return;
  const char *text = tip.empty() ? nullptr : tip.c_str();
  gtk_list_store_set(StateOf(list)->store, &iter, TipColumn(*StateOf(list)), text, -1);
}

std::string ListTip(GtkWidget *list, int row) {
  GtkTreeIter iter;
  return RowIter(list, row, &iter) ? TextAt(list, &iter, TipColumn(*StateOf(list))) : "";
}

void ListRemove(GtkWidget *list, int row) {
  GtkTreeIter iter;
  if (!RowIter(list, row, &iter)) return;
  if (ListIsSelected(list, row)) {
    UnselectOne(list, row, iter);
    if (!RowIter(list, row, &iter)) return;
  }
  StateOf(list)->reported.erase(iter.user_data);
  StateOf(list)->by_data.erase(ListRowData(list, row));
  StateOf(list)->removing = true;
  gtk_list_store_remove(StateOf(list)->store, &iter);
  StateOf(list)->removing = false;
}

void ListClear(GtkWidget *list) {
  ListState *state = StateOf(list);
  const bool was_reporting = state->reporting;
  state->reporting = true;
  state->reported.clear();
  state->by_data.clear();
  gtk_list_store_clear(state->store);
  state->reporting = was_reporting;
}

int ListRowCount(GtkWidget *list) { return gtk_tree_model_iter_n_children(ModelOf(list), nullptr); }

gpointer ListRowData(GtkWidget *list, int row) {
  GtkTreeIter iter;
  gpointer data = nullptr;
  if (RowIter(list, row, &iter)) gtk_tree_model_get(ModelOf(list), &iter, kDataColumn, &data, -1);
  return data;
}

int ListFindData(GtkWidget *list, gconstpointer data) {
  const auto &by_data = StateOf(list)->by_data;
  const auto found = by_data.find(data);
  return found == by_data.end() ? -1 : RowNumber(ModelOf(list), found->second);
}

std::string ListCell(GtkWidget *list, int row, int column) {
  GtkTreeIter iter;
  if (column < 0 || column >= StateOf(list)->text_columns || !RowIter(list, row, &iter)) return "";
  return TextAt(list, &iter, kFirstTextColumn + column);
}

void ListSelectRow(GtkWidget *list, int row) {
  GtkTreeIter iter;
  if (RowIter(list, row, &iter)) gtk_tree_selection_select_iter(SelectionOf(list), &iter);
}

void ListUnselectRow(GtkWidget *list, int row) {
  GtkTreeIter iter;
  if (RowIter(list, row, &iter)) gtk_tree_selection_unselect_iter(SelectionOf(list), &iter);
}

void ListUnselectAll(GtkWidget *list) { gtk_tree_selection_unselect_all(SelectionOf(list)); }

bool ListIsSelected(GtkWidget *list, int row) {
  GtkTreeIter iter;
  return !IsFrozen(list) && RowIter(list, row, &iter) &&
         gtk_tree_selection_iter_is_selected(SelectionOf(list), &iter) != FALSE;
}

int ListWidthOfLongCells(GtkWidget *list, int characters) {
  int excess = 0;
  for (int column = 0; column < StateOf(list)->text_columns; ++column) {
    std::string longest;
    for (int row = 0; row < ListRowCount(list); ++row) {
      const std::string cell = ListCell(list, row, column);
      if (g_utf8_strlen(cell.c_str(), -1) > g_utf8_strlen(longest.c_str(), -1)) longest = cell;
    }
    if (g_utf8_strlen(longest.c_str(), -1) <= characters) continue;
    const char *end = g_utf8_offset_to_pointer(longest.c_str(), characters);
    excess += TextWidth(list, longest) -
              TextWidth(list, longest.substr(0, static_cast<size_t>(end - longest.c_str())));
  }
  return excess;
}

void ListShowRow(GtkWidget *list, int row) {
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  // The arrow keys go on from it.
  if (ListIsSelected(list, row))
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(list), path, nullptr, FALSE);
  gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(list), path, nullptr, FALSE, 0, 0);
  gtk_tree_path_free(path);
}

void ListFreeze(GtkWidget *list) {
  // The view forgets its selection together with the rows.
  ListUnselectAll(list);
  StateOf(list)->reporting = true;
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), nullptr);
}

void ListThaw(GtkWidget *list) {
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), ModelOf(list));
  gtk_tree_view_set_search_column(GTK_TREE_VIEW(list), kFirstTextColumn);
  StateOf(list)->reporting = false;
  ReportChanges(nullptr, list);
}
