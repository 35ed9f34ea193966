#include "ComboWidget.h"

#include "Support.h"

namespace {

using Handler = void (*)();

constexpr char L_HandlerKey[] = "kpx-combo-handler";

GtkWidget *EntryOf(GtkWidget *combo) { return gtk_bin_get_child(GTK_BIN(combo)); }

void RunChanged(GtkComboBox *combo, gpointer handler) {
  if (gtk_combo_box_get_active(combo) >= 0) reinterpret_cast<Handler>(handler)();
}

// Keeps the combo's handler still for its lifetime.
class HandlerPause {
 public:
  explicit HandlerPause(GtkWidget *combo)
      : combo_(combo), id_(GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(combo), L_HandlerKey))) {
    if (id_ != 0) g_signal_handler_block(combo_, id_);
  }
  ~HandlerPause() {
    if (id_ != 0) g_signal_handler_unblock(combo_, id_);
  }
  HandlerPause(const HandlerPause &) = delete;
  HandlerPause &operator=(const HandlerPause &) = delete;

 private:
  GtkWidget *combo_;
  gulong id_;
};

}  // namespace

GtkWidget *NewCombo(GtkWidget *window, const char *combo_name, const char *entry_name,
                    void (*changed)()) {
  GtkWidget *combo = gtk_combo_box_text_new_with_entry();
  GtkWidget *entry = EntryOf(combo);
  gtk_editable_set_editable(GTK_EDITABLE(entry), FALSE);
  // So that the wheel works over the entry too, not only over the arrow.
  gtk_widget_add_events(entry, GDK_SCROLL_MASK);
  if (changed != nullptr) {
    const gulong id = g_signal_connect(combo, "changed", G_CALLBACK(RunChanged),
                                       reinterpret_cast<gpointer>(changed));
    g_object_set_data(G_OBJECT(combo), L_HandlerKey, GSIZE_TO_POINTER(id));
  }
  StoreWidget(window, entry, entry_name);
  return StoreWidget(window, combo, combo_name);
}

void ComboFill(GtkWidget *combo, const std::vector<std::string> &texts) {
  const HandlerPause pause(combo);
  const std::string shown = ComboText(combo);
  GtkTreeModel *old = gtk_combo_box_get_model(GTK_COMBO_BOX(combo));
  GtkListStore *store = GTK_LIST_STORE(g_object_ref(old));
  // Detached, so that the pop-up does not follow row by row.
  gtk_combo_box_set_model(GTK_COMBO_BOX(combo), nullptr);
  gtk_list_store_clear(store);
  for (const std::string &text : texts) {
    gtk_list_store_insert_with_values(store, nullptr, -1, 0, text.c_str(), -1);
  }
  gtk_combo_box_set_model(GTK_COMBO_BOX(combo), GTK_TREE_MODEL(store));
  g_object_unref(store);
  gtk_entry_set_text(GTK_ENTRY(EntryOf(combo)), shown.c_str());
}

void ComboSetRow(GtkWidget *combo, int row) {
  const HandlerPause pause(combo);
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo), row);
  if (row < 0) gtk_entry_set_text(GTK_ENTRY(EntryOf(combo)), "");
}

std::string ComboText(GtkWidget *combo) { return gtk_entry_get_text(GTK_ENTRY(EntryOf(combo))); }
