#include "CustomDialog.h"

#include "FieldGrid.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "cselection.h"

CustomsTabCalls G_CustomsTab;

namespace {

constexpr int L_NameWidth = 30;

}  // namespace

GtkGrid *AddFieldGrid(GtkWidget *box) {
  GtkGrid *grid = NewFieldGrid();
  gtk_box_pack_start(GTK_BOX(box), GTK_WIDGET(grid), FALSE, FALSE, 0);
  return grid;
}

GtkWidget *NewNameEntry(GtkWidget *window, const char *name, InsertHandler filter) {
  GtkWidget *entry = StoreWidget(window, gtk_entry_new(), name);
  gtk_entry_set_max_length(GTK_ENTRY(entry), kCustomNameLength);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), L_NameWidth);
  // A name is one line of the queue list.
  KeepOneLine(entry);
  g_signal_connect(entry, "insert-text", G_CALLBACK(filter), nullptr);
  return entry;
}

std::string SelectedCustomName(CustomKind kind) {
  return SelectedText(G_CustomsTab.selections(kind));
}

int CheckUniqueCustomName(CustomKind kind, const std::string &name, bool editing) {
  const std::string edited = SelectedCustomName(kind);
  const CustomNameFault fault = CheckCustomName(kind, name, editing ? edited.c_str() : nullptr);
  if (CustomNameMessage(kind, fault) != nullptr) ShowError(CustomNameMessage(kind, fault));
  return fault == CustomNameFault::kNone ? 1 : 0;
}
