#include "ComboWidget.h"

#include <memory>
#include <utility>

#include "RowTips.h"
#include "Support.h"
#include "optionlists.h"

namespace {

constexpr char L_StateKey[] = "kpx-combo-state";

// Model columns. The second one is the combo's own.
enum { kTextColumn = 0, kIdColumn = 1, kTipColumn = 2, kColumns = 3 };

struct ComboState {
  std::function<void()> changed;
  int silent = 0;              // the program writes; nested
  std::vector<ComboRow> rows;  // what the model holds
  // Of the model's rows; the iterators of a list store stay good as long as the row is there.
  std::vector<GtkTreeIter> iters;
  std::string shown_tip;
  GtkListStore *store = nullptr;
  GtkWidget *pop_up = nullptr;  // the pop-up's list as far as it was prepared; lent

  ~ComboState() { g_object_unref(store); }
};

ComboState *StateOf(GtkWidget *combo) {
  return static_cast<ComboState *>(g_object_get_data(G_OBJECT(combo), L_StateKey));
}

GtkWidget *EntryOf(GtkWidget *combo) { return gtk_bin_get_child(GTK_BIN(combo)); }

int ChosenRow(GtkWidget *combo) { return gtk_combo_box_get_active(GTK_COMBO_BOX(combo)); }

// Keeps the combo's handler still for its lifetime.
class HandlerPause {
 public:
  explicit HandlerPause(GtkWidget *combo) : state_(StateOf(combo)) { ++state_->silent; }
  ~HandlerPause() { --state_->silent; }
  HandlerPause(const HandlerPause &) = delete;
  HandlerPause &operator=(const HandlerPause &) = delete;

 private:
  ComboState *state_;
};

void ShowTipOfChoice(GtkWidget *combo) {
  ComboState *state = StateOf(combo);
  const int row = ChosenRow(combo);
  const std::string tip = row < 0 ? "" : state->rows[static_cast<size_t>(row)].tip;
  if (tip == state->shown_tip) return;
  state->shown_tip = tip;
  // Assistive technology reads it as the entry's description.
  gtk_widget_set_tooltip_text(EntryOf(combo), tip.empty() ? nullptr : tip.c_str());
}

void RunChanged(GtkComboBox *combo, gpointer data) {
  auto *state = static_cast<ComboState *>(data);
  if (state->silent > 0 || gtk_combo_box_get_active(combo) < 0) return;
  ShowTipOfChoice(GTK_WIDGET(combo));
  if (state->changed) state->changed();
}

// Whether the text, behind its mark if it has one, begins with the lower-case letter.
bool BeginsWith(const std::string &text, gunichar letter) {
  const bool marked = text.rfind(kFreeMark, 0) == 0 || text.rfind(kConflictMark, 0) == 0;
  const char *shown = text.c_str() + (marked ? kMarkLength : 0);
  return g_unichar_tolower(g_utf8_get_char(shown)) == letter;
}

// The next row behind `row`, from the top again after the last, that begins with the letter of the
// key; -1 when there is none or the key is no letter.
int RowForKey(GtkWidget *combo, const GdkEventKey *key, int row) {
  if ((key->state & (GDK_CONTROL_MASK | GDK_MOD1_MASK | GDK_SUPER_MASK)) != 0) return -1;
  const gunichar letter = g_unichar_tolower(gdk_keyval_to_unicode(key->keyval));
  if (letter == 0 || g_unichar_isgraph(letter) == FALSE) return -1;
  const std::vector<ComboRow> &rows = StateOf(combo)->rows;
  const int count = static_cast<int>(rows.size());
  for (int step = 1; step <= count; ++step) {
    const int next = (row + step) % count;
    if (BeginsWith(rows[static_cast<size_t>(next)].text, letter)) return next;
  }
  return -1;
}

gboolean ChooseByLetter(GtkWidget *entry, GdkEventKey *key, gpointer combo) {
  // What is typed into an editable entry is its text.
  if (gtk_editable_get_editable(GTK_EDITABLE(entry)) != FALSE) return FALSE;
  const int row = RowForKey(GTK_WIDGET(combo), key, ChosenRow(GTK_WIDGET(combo)));
  if (row < 0) return FALSE;
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo), row);
  return TRUE;
}

// In the pop-up a letter moves the highlight; Return chooses.
gboolean HighlightByLetter(GtkWidget *, GdkEventKey *key, gpointer combo) {
  GtkWidget *list = StateOf(GTK_WIDGET(combo))->pop_up;
  GtkTreePath *path = nullptr;
  gtk_tree_view_get_cursor(GTK_TREE_VIEW(list), &path, nullptr);
  const int from = path == nullptr ? -1 : gtk_tree_path_get_indices(path)[0];
  gtk_tree_path_free(path);
  const int row = RowForKey(GTK_WIDGET(combo), key, from);
  if (row < 0) return FALSE;
  path = gtk_tree_path_new_from_indices(row, -1);
  gtk_tree_view_set_cursor(GTK_TREE_VIEW(list), path, nullptr, FALSE);
  gtk_tree_path_free(path);
  return TRUE;
}

// The pop-up's list gets its tooltips and keys when it is first shown: until then nobody needs
// them, and the theme may still make it another widget.
void PreparePopUp(GtkComboBox *combo, GParamSpec *, gpointer data) {
  auto *state = static_cast<ComboState *>(data);
  AtkObject *accessible = gtk_combo_box_get_popup_accessible(combo);
  GtkWidget *list = GTK_IS_ACCESSIBLE(accessible)
                        ? gtk_accessible_get_widget(GTK_ACCESSIBLE(accessible))
                        : nullptr;
  if (!GTK_IS_TREE_VIEW(list) || list == state->pop_up) return;
  state->pop_up = list;
  ShowRowTips(GTK_TREE_VIEW(list), kTipColumn);
  g_signal_connect(gtk_widget_get_toplevel(list), "key-press-event", G_CALLBACK(HighlightByLetter),
                   combo);
}

const char *TipOrNull(const ComboRow &row) { return row.tip.empty() ? nullptr : row.tip.c_str(); }

void WriteRow(ComboState *state, GtkTreeIter *iter, const ComboRow &row) {
  gtk_list_store_set(state->store, iter, kTextColumn, row.text.c_str(), kTipColumn, TipOrNull(row),
                     -1);
}

void AppendRow(ComboState *state, const ComboRow &row) {
  GtkTreeIter iter;
  gtk_list_store_insert_with_values(state->store, &iter, -1, kTextColumn, row.text.c_str(),
                                    kTipColumn, TipOrNull(row), -1);
  state->iters.push_back(iter);
}

void WriteDifferences(ComboState *state, const std::vector<ComboRow> &rows) {
  while (state->iters.size() > rows.size()) {
    gtk_list_store_remove(state->store, &state->iters.back());
    state->iters.pop_back();
  }
  for (size_t i = 0; i < rows.size(); ++i) {
    if (i >= state->iters.size()) {
      AppendRow(state, rows[i]);
    } else if (rows[i] != state->rows[i]) {
      WriteRow(state, &state->iters[i], rows[i]);
    }
  }
  state->rows = rows;
}

}  // namespace

GtkWidget *NewCombo(GtkWidget *window, const char *combo_name, const char *entry_name,
                    std::function<void()> changed) {
  GtkWidget *combo = gtk_combo_box_text_new_with_entry();
  auto state = std::make_unique<ComboState>();
  state->changed = std::move(changed);
  state->store = gtk_list_store_new(kColumns, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
  gtk_combo_box_set_model(GTK_COMBO_BOX(combo), GTK_TREE_MODEL(state->store));
  GtkCellRenderer *renderer = NewTipRenderer();
  gtk_cell_layout_clear(GTK_CELL_LAYOUT(combo));
  gtk_cell_layout_pack_start(GTK_CELL_LAYOUT(combo), renderer, TRUE);
  gtk_cell_layout_set_attributes(GTK_CELL_LAYOUT(combo), renderer, "text", kTextColumn, "tip",
                                 kTipColumn, nullptr);
  GtkWidget *entry = EntryOf(combo);
  gtk_editable_set_editable(GTK_EDITABLE(entry), FALSE);
  gtk_style_context_add_class(gtk_widget_get_style_context(entry), kNotEditableClass);
  // So that the wheel works over the entry too, not only over the arrow.
  gtk_widget_add_events(entry, GDK_SCROLL_MASK);
  g_signal_connect(entry, "key-press-event", G_CALLBACK(ChooseByLetter), combo);
  g_signal_connect(combo, "changed", G_CALLBACK(RunChanged), state.get());
  g_signal_connect(combo, "notify::popup-shown", G_CALLBACK(PreparePopUp), state.get());
  g_object_set_data_full(G_OBJECT(combo), L_StateKey, state.release(), [](gpointer data) {
    std::default_delete<ComboState>()(static_cast<ComboState *>(data));
  });
  StoreWidget(window, entry, entry_name);
  return StoreWidget(window, combo, combo_name);
}

void ComboMakeEditable(GtkWidget *combo) {
  GtkWidget *entry = EntryOf(combo);
  gtk_editable_set_editable(GTK_EDITABLE(entry), TRUE);
  gtk_style_context_remove_class(gtk_widget_get_style_context(entry), kNotEditableClass);
}

void ComboFillRows(GtkWidget *combo, const std::vector<ComboRow> &rows) {
  const HandlerPause pause(combo);
  ComboState *state = StateOf(combo);
  if (rows == state->rows) return;
  const std::string shown = ComboText(combo);
  // For many new rows detached, so that the pop-up does not follow row by row.
  const bool first_filling = state->rows.empty();
  if (first_filling) gtk_combo_box_set_model(GTK_COMBO_BOX(combo), nullptr);
  WriteDifferences(state, rows);
  if (first_filling) gtk_combo_box_set_model(GTK_COMBO_BOX(combo), GTK_TREE_MODEL(state->store));
  if (ComboText(combo) != shown) gtk_entry_set_text(GTK_ENTRY(EntryOf(combo)), shown.c_str());
  ShowTipOfChoice(combo);
}

void ComboFill(GtkWidget *combo, const std::vector<std::string> &texts) {
  std::vector<ComboRow> rows;
  rows.reserve(texts.size());
  for (const std::string &text : texts) rows.push_back({text});
  ComboFillRows(combo, rows);
}

void ComboSetRow(GtkWidget *combo, int row) {
  const HandlerPause pause(combo);
  const ComboState *state = StateOf(combo);
  if (row < 0 || row >= static_cast<int>(state->rows.size())) {
    ComboForgetRow(combo);
    gtk_entry_set_text(GTK_ENTRY(EntryOf(combo)), "");
    return;
  }
  if (ChosenRow(combo) != row) {
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), row);
  } else if (ComboText(combo) != state->rows[static_cast<size_t>(row)].text) {
    // The entry follows the choice only when that changes.
    g_signal_emit_by_name(combo, "changed");
  }
  ShowTipOfChoice(combo);
}

void ComboForgetRow(GtkWidget *combo) {
  const HandlerPause pause(combo);
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo), -1);
  ShowTipOfChoice(combo);
}

std::string ComboText(GtkWidget *combo) { return gtk_entry_get_text(GTK_ENTRY(EntryOf(combo))); }
