#include "FilteredEntry.h"

std::string_view InsertedText(const gchar *text, gint length) {
  return length < 0 ? std::string_view(text) : std::string_view(text, static_cast<size_t>(length));
}

void InsertFiltered(GtkEditable *entry, InsertHandler handler, const std::string &filtered,
                    gint *position, gpointer data) {
  const auto function = reinterpret_cast<gpointer>(handler);
  g_signal_handlers_block_by_func(entry, function, data);
  gtk_editable_insert_text(entry, filtered.c_str(), static_cast<gint>(filtered.size()), position);
  g_signal_handlers_unblock_by_func(entry, function, data);
  g_signal_stop_emission_by_name(entry, "insert-text");
}

void ShowPastFilter(GtkWidget *entry, const std::string &text, InsertHandler handler) {
  const auto function = reinterpret_cast<gpointer>(handler);
  g_signal_handlers_block_by_func(entry, function, nullptr);
  gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
  g_signal_handlers_unblock_by_func(entry, function, nullptr);
}
