#include "CustomDialog.h"

#include "MessageDialogs.h"
#include "PropTabCustoms.h"
#include "Support.h"
#include "cselection.h"

namespace {

constexpr int L_Spacing = 8;
constexpr int L_NameLength = 128;  // characters
constexpr int L_NameWidth = 30;

}  // namespace

GtkGrid *NewFieldGrid(GtkWidget *box) {
  GtkWidget *grid = gtk_grid_new();
  gtk_grid_set_row_spacing(GTK_GRID(grid), L_Spacing);
  gtk_grid_set_column_spacing(GTK_GRID(grid), L_Spacing);
  gtk_box_pack_start(GTK_BOX(box), grid, FALSE, FALSE, 0);
  return GTK_GRID(grid);
}

void AttachField(GtkGrid *grid, int row, GtkWidget *label, GtkWidget *field,
                 GtkWidget *description) {
  gtk_grid_attach(grid, label, 0, row, 1, 1);
  gtk_grid_attach(grid, field, 1, row, description == nullptr ? 2 : 1, 1);
  if (description == nullptr) {
    gtk_widget_set_hexpand(field, TRUE);
    return;
  }
  gtk_grid_attach(grid, description, 2, row, 1, 1);
  atk_object_add_relationship(gtk_widget_get_accessible(field), ATK_RELATION_DESCRIBED_BY,
                              gtk_widget_get_accessible(description));
}

GtkWidget *NewNameEntry(GtkWidget *window, const char *name, InsertHandler filter) {
  GtkWidget *entry = StoreWidget(window, gtk_entry_new(), name);
  gtk_entry_set_max_length(GTK_ENTRY(entry), L_NameLength);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), L_NameWidth);
  // A name is one line of the queue list.
  KeepOneLine(entry);
  g_signal_connect(entry, "insert-text", G_CALLBACK(filter), nullptr);
  return entry;
}

void ShowName(GtkWidget *entry, const std::string &name, InsertHandler filter) {
  const auto function = reinterpret_cast<gpointer>(filter);
  g_signal_handlers_block_by_func(entry, function, nullptr);
  gtk_entry_set_text(GTK_ENTRY(entry), name.c_str());
  g_signal_handlers_unblock_by_func(entry, function, nullptr);
}

std::string SelectedCustomName(CustomKind kind) { return SelectedText(CustomSelections(kind)); }

int CheckUniqueCustomName(CustomKind kind, const std::string &name, bool editing) {
  const std::string edited = SelectedCustomName(kind);
  const CustomNameFault fault = CheckCustomName(kind, name, editing ? edited.c_str() : nullptr);
  if (CustomNameMessage(kind, fault) != nullptr) ShowError(CustomNameMessage(kind, fault));
  return fault == CustomNameFault::kNone ? 1 : 0;
}
