#include "ViewedList.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "RowTips.h"
#include "Support.h"
#include "cmessages.h"

namespace {

constexpr char L_StateKey[] = "kpx-viewed-list";
constexpr int L_TitleMargin = 20;  // pixels, as the next
constexpr int L_AroundList = 60;   // margins, frame and scroll bar

using Handler = void (*)();

// The toolkit's model of the rows: an iterator holds the number of its row.
struct RowModel {
  GObject parent;
  ViewedRows *rows;  // owned by the list's state
  int columns;
  int count;  // that the view knows of
  int stamp;
};
struct RowModelClass {
  GObjectClass parent;
};

struct ListState {
  ViewedRows rows;
  RowModel *model = nullptr;
  Handler changed = nullptr;
  bool removing = false;

  ~ListState() { g_object_unref(model); }
};

RowModel *Model(gpointer object) { return static_cast<RowModel *>(object); }

ListState *StateOf(GtkWidget *list) {
  return static_cast<ListState *>(g_object_get_data(G_OBJECT(list), L_StateKey));
}

int RowOf(const GtkTreeIter *iter) { return GPOINTER_TO_INT(iter->user_data); }

gboolean SetIter(GtkTreeModel *model, GtkTreeIter *iter, int row) {
  *iter = {};
  if (row < 0 || row >= Model(model)->count) return FALSE;
  iter->stamp = Model(model)->stamp;
  iter->user_data = GINT_TO_POINTER(row);
  return TRUE;
}

GtkTreeModelFlags GetFlags(GtkTreeModel *) { return GTK_TREE_MODEL_LIST_ONLY; }

// Behind the shown texts stands the tip.
gint GetColumns(GtkTreeModel *model) { return Model(model)->columns + 1; }

GType GetColumnType(GtkTreeModel *, gint) { return G_TYPE_STRING; }

gboolean GetIter(GtkTreeModel *model, GtkTreeIter *iter, GtkTreePath *path) {
  return SetIter(model, iter, gtk_tree_path_get_indices(path)[0]);
}

GtkTreePath *GetPath(GtkTreeModel *, GtkTreeIter *iter) {
  return gtk_tree_path_new_from_indices(RowOf(iter), -1);
}

void GetValue(GtkTreeModel *model, GtkTreeIter *iter, gint column, GValue *value) {
  const ViewedRows &rows = *Model(model)->rows;
  const int row = RowOf(iter);
  g_value_init(value, G_TYPE_STRING);
  // The view may look at a row that is just being taken out.
  if (row >= rows.count()) return;
  const std::string text = column < Model(model)->columns ? rows.text(row, column) : rows.tip(row);
  if (column < Model(model)->columns || !text.empty()) g_value_set_string(value, text.c_str());
}

gboolean IterNext(GtkTreeModel *model, GtkTreeIter *iter) {
  return SetIter(model, iter, RowOf(iter) + 1);
}

gboolean IterPrevious(GtkTreeModel *model, GtkTreeIter *iter) {
  return SetIter(model, iter, RowOf(iter) - 1);
}

gboolean IterNthChild(GtkTreeModel *model, GtkTreeIter *iter, GtkTreeIter *parent, gint row) {
  return parent == nullptr ? SetIter(model, iter, row) : FALSE;
}

gboolean IterChildren(GtkTreeModel *model, GtkTreeIter *iter, GtkTreeIter *parent) {
  return IterNthChild(model, iter, parent, 0);
}

gboolean IterHasChild(GtkTreeModel *, GtkTreeIter *) { return FALSE; }

gint IterCountChildren(GtkTreeModel *model, GtkTreeIter *iter) {
  return iter == nullptr ? Model(model)->count : 0;
}

gboolean IterParent(GtkTreeModel *, GtkTreeIter *, GtkTreeIter *) { return FALSE; }

void InitModelInterface(gpointer table, gpointer) {
  auto *functions = static_cast<GtkTreeModelIface *>(table);
  functions->get_flags = GetFlags;
  functions->get_n_columns = GetColumns;
  functions->get_column_type = GetColumnType;
  functions->get_iter = GetIter;
  functions->get_path = GetPath;
  functions->get_value = GetValue;
  functions->iter_next = IterNext;
  functions->iter_previous = IterPrevious;
  functions->iter_children = IterChildren;
  functions->iter_has_child = IterHasChild;
  functions->iter_n_children = IterCountChildren;
  functions->iter_nth_child = IterNthChild;
  functions->iter_parent = IterParent;
}

GType RegisterModelType() {
  const GType type =
      g_type_register_static_simple(G_TYPE_OBJECT, "KpxRowModel", sizeof(RowModelClass), nullptr,
                                    sizeof(RowModel), nullptr, GTypeFlags(0));
  const GInterfaceInfo interface = {InitModelInterface, nullptr, nullptr};
  g_type_add_interface_static(type, GTK_TYPE_TREE_MODEL, &interface);
  return type;
}

GType ModelType() {
  static const GType type = RegisterModelType();
  return type;
}

GtkTreeModel *ModelOf(GtkWidget *list) { return GTK_TREE_MODEL(StateOf(list)->model); }

GtkTreeSelection *SelectionOf(GtkWidget *list) {
  return gtk_tree_view_get_selection(GTK_TREE_VIEW(list));
}

void SelectionChanged(GtkTreeSelection *, gpointer state) {
  const Handler changed = static_cast<ListState *>(state)->changed;
  if (changed != nullptr) changed();
}

// Removing the row with the keyboard's cursor moves the cursor; that must not select another row.
gboolean MaySelectionChange(GtkTreeSelection *, GtkTreeModel *, GtkTreePath *, gboolean,
                            gpointer state) {
  return static_cast<ListState *>(state)->removing ? FALSE : TRUE;
}

// Titles are bolder than other texts, and have a margin and a frame.
int TitleWidth(GtkWidget *list, const ViewedColumn &column) {
  return TextWidth(list, G_Translate(column.title_key)) * 6 / 5 + L_TitleMargin;
}

// In pixels; where the screen is too narrow, the columns that are wider than their titles give way.
std::vector<int> WidthsOf(GtkWidget *list, const std::vector<ViewedColumn> &columns) {
  const int room = RoomOnScreen().width - L_AroundList;
  const int digit = TextWidth(list, "0");
  std::vector<int> widths;
  int titles = 0;
  int whole = 0;
  for (const ViewedColumn &column : columns) {
    titles += TitleWidth(list, column);
    widths.push_back(std::max(TitleWidth(list, column), digit * column.characters));
    whole += widths.back();
  }
  if (whole <= room || whole == titles) return widths;
  const double share = std::max(0.0, static_cast<double>(room - titles) / (whole - titles));
  for (size_t i = 0; i < columns.size(); ++i) {
    const int title = TitleWidth(list, columns[i]);
    widths[i] = title + static_cast<int>((widths[i] - title) * share);
  }
  return widths;
}

void AddColumn(GtkWidget *list, const ViewedColumn &column, int width, int number, int tip_column) {
  GtkCellRenderer *renderer = NewTipRenderer();
  g_object_set(renderer, "ellipsize", PANGO_ELLIPSIZE_END, "single-paragraph-mode", TRUE, nullptr);
  GtkTreeViewColumn *view = gtk_tree_view_column_new_with_attributes(
      G_Translate(column.title_key), renderer, "text", number, "tip", tip_column, nullptr);
  gtk_tree_view_column_set_sizing(view, GTK_TREE_VIEW_COLUMN_FIXED);
  gtk_tree_view_column_set_fixed_width(view, width);
  gtk_tree_view_column_set_resizable(view, TRUE);
  gtk_tree_view_column_set_expand(view, number + 1 == tip_column ? TRUE : FALSE);
  gtk_tree_view_append_column(GTK_TREE_VIEW(list), view);
}

}  // namespace

GtkWidget *NewViewedList(const std::vector<ViewedColumn> &columns, ViewedRows rows,
                         Handler changed) {
  auto state = std::make_unique<ListState>();
  state->rows = std::move(rows);
  state->changed = changed;
  state->model = Model(g_object_new(ModelType(), nullptr));
  state->model->rows = &state->rows;
  state->model->columns = static_cast<int>(columns.size());
  GtkWidget *list = gtk_tree_view_new_with_model(GTK_TREE_MODEL(state->model));
  const std::vector<int> widths = WidthsOf(list, columns);
  for (size_t i = 0; i < columns.size(); ++i) {
    AddColumn(list, columns[i], widths[i], static_cast<int>(i), state->model->columns);
  }
  gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(list), TRUE);
  gtk_tree_view_set_search_column(GTK_TREE_VIEW(list), 0);
  ShowRowTips(GTK_TREE_VIEW(list), state->model->columns);
  gtk_tree_selection_set_mode(SelectionOf(list), GTK_SELECTION_MULTIPLE);
  gtk_tree_selection_set_select_function(SelectionOf(list), MaySelectionChange, state.get(),
                                         nullptr);
  g_signal_connect(SelectionOf(list), "changed", G_CALLBACK(SelectionChanged), state.get());
  g_object_set_data_full(G_OBJECT(list), L_StateKey, state.release(), [](gpointer data) {
    std::default_delete<ListState>()(static_cast<ListState *>(data));
  });
  return list;
}

void ViewedRowInserted(GtkWidget *list, int row) {
  GtkTreeModel *model = ModelOf(list);
  ++Model(model)->count;
  ++Model(model)->stamp;
  GtkTreeIter iter;
  if (SetIter(model, &iter, row) == FALSE) return;
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  gtk_tree_model_row_inserted(model, path, &iter);
  gtk_tree_path_free(path);
}

void ViewedRowRemoved(GtkWidget *list, int row) {
  GtkTreeModel *model = ModelOf(list);
  --Model(model)->count;
  ++Model(model)->stamp;
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  StateOf(list)->removing = true;
  gtk_tree_model_row_deleted(model, path);
  StateOf(list)->removing = false;
  gtk_tree_path_free(path);
}

void ViewedRowChanged(GtkWidget *list, int row) {
  GtkTreeModel *model = ModelOf(list);
  GtkTreeIter iter;
  if (SetIter(model, &iter, row) == FALSE) return;
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  gtk_tree_model_row_changed(model, path, &iter);
  gtk_tree_path_free(path);
}

void ViewedRowsReplaced(GtkWidget *list) {
  GtkTreeModel *model = ModelOf(list);
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), nullptr);
  Model(model)->count = StateOf(list)->rows.count();
  ++Model(model)->stamp;
  gtk_tree_view_set_model(GTK_TREE_VIEW(list), model);
  gtk_tree_view_set_search_column(GTK_TREE_VIEW(list), 0);
}

std::vector<int> ViewedSelection(GtkWidget *list) {
  std::vector<int> rows;
  gtk_tree_selection_selected_foreach(
      SelectionOf(list),
      [](GtkTreeModel *, GtkTreePath *path, GtkTreeIter *, gpointer data) {
        static_cast<std::vector<int> *>(data)->push_back(gtk_tree_path_get_indices(path)[0]);
      },
      &rows);
  return rows;
}

void ViewedSelect(GtkWidget *list, int row) {
  GtkTreeIter iter;
  if (SetIter(ModelOf(list), &iter, row) != FALSE) {
    gtk_tree_selection_select_iter(SelectionOf(list), &iter);
  }
}

void ViewedUnselectAll(GtkWidget *list) { gtk_tree_selection_unselect_all(SelectionOf(list)); }
