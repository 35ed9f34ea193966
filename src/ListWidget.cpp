#include "ListWidget.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "ArrangedRows.h"
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
  ListRowHandler activated = nullptr;
  std::unique_ptr<ArrangedRows> arranged;  // null: the rows are shown as they are
  int sort_column = -1;                    // none
  GtkSortType sort_order = GTK_SORT_ASCENDING;
  std::string search;
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

// What the view shows while it is not frozen.
GtkTreeModel *ShownModelOf(GtkWidget *list) {
  const ListState *state = StateOf(list);
  return state->arranged == nullptr ? ModelOf(list) : state->arranged->model();
}

// Where the row is in the view; false when it is not shown.
bool ShownIter(GtkWidget *list, int row, GtkTreeIter *shown) {
  GtkTreeIter iter;
  if (!RowIter(list, row, &iter)) return false;
  const ListState *state = StateOf(list);
  if (state->arranged != nullptr) return state->arranged->FindShown(iter, shown);
  *shown = iter;
  return true;
}

std::string TextAt(GtkWidget *list, GtkTreeIter *iter, int model_column) {
  gchar *text = nullptr;
  gtk_tree_model_get(ModelOf(list), iter, model_column, &text, -1);
  std::string result = text == nullptr ? "" : text;
  g_free(text);
  return result;
}

// The row that is shown there.
bool RowOfPath(GtkWidget *list, GtkTreePath *path, GtkTreeIter *row) {
  if (gtk_tree_model_get_iter(ShownModelOf(list), row, path) == FALSE) return false;
  const ListState *state = StateOf(list);
  if (state->arranged != nullptr) *row = state->arranged->RowAt(*row);
  return true;
}

// The selected rows of a list.
struct Selected {
  const ArrangedRows *arranged;
  RowSet rows;
};

void AddToSelected(GtkTreeModel *, GtkTreePath *, GtkTreeIter *shown, gpointer data) {
  auto &selected = *static_cast<Selected *>(data);
  const GtkTreeIter row = selected.arranged == nullptr ? *shown : selected.arranged->RowAt(*shown);
  selected.rows.emplace(row.user_data, row);
}

RowSet SelectedRows(GtkWidget *list) {
  Selected selected{StateOf(list)->arranged.get(), {}};
  gtk_tree_selection_selected_foreach(SelectionOf(list), AddToSelected, &selected);
  return selected.rows;
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
  RowSet now = SelectedRows(list);
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
  ListUnselectRow(list, row);
  state->reporting = was_reporting;
  if (state->reported.erase(iter.user_data) != 0 && state->unselected != nullptr) {
    state->unselected(row);
  }
}

std::unique_ptr<ArrangedRows> NewArrangement(GtkWidget *list) {
  const ListState &state = *StateOf(list);
  if (state.sort_column < 0 && state.search.empty()) return nullptr;
  auto arranged =
      std::make_unique<ArrangedRows>(ModelOf(list), kFirstTextColumn, state.text_columns);
  arranged->ShowMatching(state.search);
  if (state.sort_column >= 0) arranged->SortBy(state.sort_column, state.sort_order);
  return arranged;
}

// The row of the keyboard's cursor, -1 without one.
int CursorRow(GtkWidget *list) {
  GtkTreePath *path = nullptr;
  gtk_tree_view_get_cursor(GTK_TREE_VIEW(list), &path, nullptr);
  GtkTreeIter iter;
  const bool found = path != nullptr && RowOfPath(list, path, &iter);
  if (path != nullptr) gtk_tree_path_free(path);
  return found ? RowNumber(ModelOf(list), iter) : -1;
}

void PutCursor(GtkWidget *list, int row) {
  GtkTreeIter shown;
  if (!ShownIter(list, row, &shown)) return;
  GtkTreePath *path = gtk_tree_model_get_path(ShownModelOf(list), &shown);
  gtk_tree_view_set_cursor(GTK_TREE_VIEW(list), path, nullptr, FALSE);
  gtk_tree_path_free(path);
}

// Shows the rows as the state says; cursor and selection stay with their rows. A list that is in
// its own order and whole is shown directly, which costs least.
void Rearrange(GtkWidget *list) {
  ListState *state = StateOf(list);
  if (IsFrozen(list)) return;
  const RowSet selected = SelectedRows(list);
  const int cursor = CursorRow(list);
  state->reporting = true;
  const std::unique_ptr<ArrangedRows> before = std::move(state->arranged);
  state->arranged = NewArrangement(list);
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), ShownModelOf(list));
  gtk_tree_view_set_search_column(GTK_TREE_VIEW(list), kFirstTextColumn);
  PutCursor(list, cursor);
  ListUnselectAll(list);
  for (const auto &[id, iter] : selected) ListSelectRow(list, RowNumber(ModelOf(list), iter));
  state->reporting = false;
  ReportChanges(nullptr, list);
}

gboolean RearrangeLater(gpointer list) {
  Rearrange(GTK_WIDGET(list));
  return G_SOURCE_REMOVE;
}

int NumberOfColumn(GtkTreeView *list, GtkTreeViewColumn *column) {
  int number = 0;
  while (gtk_tree_view_get_column(list, number) != column) ++number;
  return number;
}

// The next of: ascending, descending, unsorted.
void SortByTitle(GtkTreeViewColumn *column, gpointer list) {
  ListState *state = StateOf(GTK_WIDGET(list));
  const int number = NumberOfColumn(GTK_TREE_VIEW(list), column);
  const bool is_sorted = number == state->sort_column;
  const bool ends = is_sorted && state->sort_order == GTK_SORT_DESCENDING;
  if (state->sort_column >= 0) {
    gtk_tree_view_column_set_sort_indicator(
        gtk_tree_view_get_column(GTK_TREE_VIEW(list), state->sort_column), FALSE);
  }
  state->sort_column = ends ? -1 : number;
  state->sort_order = is_sorted ? GTK_SORT_DESCENDING : GTK_SORT_ASCENDING;
  gtk_tree_view_column_set_sort_indicator(column, ends ? FALSE : TRUE);
  gtk_tree_view_column_set_sort_order(column, state->sort_order);
  // In the middle of a click the toolkit would not see the next one.
  g_idle_add_full(G_PRIORITY_HIGH_IDLE, RearrangeLater, g_object_ref(list), g_object_unref);
}

// The space bar and the mouse select a row and do no more.
bool IsSelectionOnly() {
  GdkEvent *event = gtk_get_current_event();
  if (event == nullptr) return false;
  guint button = 0;
  guint key = GDK_KEY_VoidSymbol;
  const bool is_click = gdk_event_get_button(event, &button) != FALSE;
  const bool is_space = gdk_event_get_keyval(event, &key) != FALSE &&
                        (key == GDK_KEY_space || key == GDK_KEY_KP_Space);
  gdk_event_free(event);
  return is_click || is_space;
}

void ReportActivation(GtkTreeView *view, GtkTreePath *path, GtkTreeViewColumn *, gpointer) {
  GtkWidget *list = GTK_WIDGET(view);
  const ListState *state = StateOf(list);
  GtkTreeIter iter;
  if (state->activated == nullptr || IsSelectionOnly() || !RowOfPath(list, path, &iter)) return;
  const int row = RowNumber(ModelOf(list), iter);
  if (ListIsSelected(list, row)) state->activated(row);
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

void ListOnActivation(GtkWidget *list, ListRowHandler activated) {
  StateOf(list)->activated = activated;
  g_signal_connect(list, "row-activated", G_CALLBACK(ReportActivation), nullptr);
}

void ListSortByTitles(GtkWidget *list) {
  for (int i = 0; i < StateOf(list)->text_columns; ++i) {
    GtkTreeViewColumn *column = gtk_tree_view_get_column(GTK_TREE_VIEW(list), i);
    gtk_tree_view_column_set_clickable(column, TRUE);
    g_signal_connect(column, "clicked", G_CALLBACK(SortByTitle), list);
  }
}

void ListShowMatching(GtkWidget *list, const std::string &search) {
  ListState *state = StateOf(list);
  if (search == state->search) return;
  state->search = search;
  Rearrange(list);
}

bool ListIsShown(GtkWidget *list, int row) {
  GtkTreeIter shown;
  return ShownIter(list, row, &shown);
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

void ListSetCell(GtkWidget *list, int row, int column, const std::string &text) {
  GtkTreeIter iter;
  if (column < 0 || column >= StateOf(list)->text_columns || !RowIter(list, row, &iter)) return;
  if (TextAt(list, &iter, kFirstTextColumn + column) == text) return;
  gtk_list_store_set(StateOf(list)->store, &iter, kFirstTextColumn + column, text.c_str(), -1);
}

void ListSelectRow(GtkWidget *list, int row) {
  GtkTreeIter iter;
  if (ShownIter(list, row, &iter)) gtk_tree_selection_select_iter(SelectionOf(list), &iter);
}

void ListUnselectRow(GtkWidget *list, int row) {
  GtkTreeIter iter;
  if (ShownIter(list, row, &iter)) gtk_tree_selection_unselect_iter(SelectionOf(list), &iter);
}

void ListUnselectAll(GtkWidget *list) { gtk_tree_selection_unselect_all(SelectionOf(list)); }

bool ListIsSelected(GtkWidget *list, int row) {
  GtkTreeIter iter;
  return !IsFrozen(list) && ShownIter(list, row, &iter) &&
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
  GtkTreeIter iter;
  if (!ShownIter(list, row, &iter)) return;
  GtkTreePath *path = gtk_tree_model_get_path(ShownModelOf(list), &iter);
  // The arrow keys go on from it.
  if (ListIsSelected(list, row))
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(list), path, nullptr, FALSE);
  gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(list), path, nullptr, FALSE, 0, 0);
  gtk_tree_path_free(path);
}

void ListGoToFirst(GtkWidget *list) {
  GtkTreeIter first;
  if (gtk_tree_model_get_iter_first(ShownModelOf(list), &first) == FALSE) return;
  GtkTreePath *path = gtk_tree_path_new_first();
  gtk_tree_view_set_cursor(GTK_TREE_VIEW(list), path, nullptr, FALSE);
  gtk_tree_path_free(path);
}

void ListFreeze(GtkWidget *list) {
  // The view forgets its selection together with the rows.
  ListUnselectAll(list);
  StateOf(list)->reporting = true;
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), nullptr);
}

void ListThaw(GtkWidget *list) {
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), ShownModelOf(list));
  gtk_tree_view_set_search_column(GTK_TREE_VIEW(list), kFirstTextColumn);
  StateOf(list)->reporting = false;
  ReportChanges(nullptr, list);
}
