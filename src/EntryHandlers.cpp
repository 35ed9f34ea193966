#include "EntryHandlers.h"

#include <string>

#include "FilteredEntry.h"
#include "Support.h"
#include "addqueue.h"
#include "debug.h"
#include "entryfilters.h"

QueueDialogs G_QueueDialogs;

namespace {

QueueDialog StateOf(QueueDialog (*dialog)()) {
  return dialog == nullptr ? QueueDialog() : dialog();
}

// Carries a deletion out in place of the emission that `handler` was called for.
void DeleteInstead(GtkEditable *entry, GCallback handler, bool allowed, gint start, gint end,
                   gpointer data) {
  const auto function = reinterpret_cast<gpointer>(handler);
  g_signal_handlers_block_by_func(entry, function, data);
  if (allowed) gtk_editable_delete_text(entry, start, end);
  g_signal_handlers_unblock_by_func(entry, function, data);
  g_signal_stop_emission_by_name(entry, "delete-text");
  G_Toggle_Ok_Apply_Sensitivity();
}

std::string EntryText(GtkWidget *window, const char *name) {
  return gtk_entry_get_text(GTK_ENTRY(lookup_widget(window, name)));
}

// Of the dialog's OK and Apply.
void SetSensitivity(GtkWidget *window, bool sensitive) {
  for (const char *name : {"OKButton", "ApplyButton"}) {
    gtk_widget_set_sensitive(lookup_widget(window, name), sensitive ? TRUE : FALSE);
  }
}

}  // namespace

void G_QueueNameEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data) {
  const LogScope log("G_QueueNameEntryText");
  InsertFiltered(entry, G_QueueNameEntryText,
                 FilterQueueName(InsertedText(text, length), *position), position, data);
  G_Toggle_Ok_Apply_Sensitivity();
}

void G_QueueNameDeleteText(GtkEditable *entry, gint start, gint end, gpointer data) {
  const LogScope log("G_QueueNameDeleteText");
  const bool allowed = QueueNameDeletionAllowed(gtk_entry_get_text(GTK_ENTRY(entry)), start, end);
  DeleteInstead(entry, G_CALLBACK(G_QueueNameDeleteText), allowed, start, end, data);
}

void G_IPAddressEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data) {
  const LogScope log("G_IPAddressEntryText");
  InsertFiltered(entry, G_IPAddressEntryText, FilterAddress(InsertedText(text, length)), position,
                 data);
  G_Toggle_Ok_Apply_Sensitivity();
}

void G_IPAddressDeleteText(GtkEditable *entry, gint start, gint end, gpointer data) {
  const LogScope log("G_IPAddressDeleteText");
  DeleteInstead(entry, G_CALLBACK(G_IPAddressDeleteText), true, start, end, data);
}

void FilterAsQueueName(GtkWidget *entry) {
  KeepOneLine(entry);
  g_signal_connect(entry, "insert-text", G_CALLBACK(G_QueueNameEntryText), nullptr);
  g_signal_connect(entry, "delete-text", G_CALLBACK(G_QueueNameDeleteText), nullptr);
}

void FilterAsAddress(GtkWidget *entry) {
  KeepOneLine(entry);
  g_signal_connect(entry, "insert-text", G_CALLBACK(G_IPAddressEntryText), nullptr);
  g_signal_connect(entry, "delete-text", G_CALLBACK(G_IPAddressDeleteText), nullptr);
}

void G_Toggle_Ok_Apply_Sensitivity() {
  const LogScope log("G_Toggle_Ok_Apply_Sensitivity");
  const QueueDialog added = StateOf(G_QueueDialogs.add_queue);
  const QueueDialog edited = StateOf(G_QueueDialogs.properties);
  Log(4, "ADDQUEUEQUEUE=>>>" + PointerText(added.record) + "<<<");
  Log(4, "GENPROPPROP=>>>" + PointerText(edited.record) + "<<<");
  const QueueDialog &open = added.record != nullptr ? added : edited;
  if (open.record == nullptr) return;
  SetSensitivity(open.window,
                 IsQueueInputComplete(EntryText(open.window, "QueueEntry"),
                                      EntryText(open.window, "AddressEntry"), open.has_printer));
}
