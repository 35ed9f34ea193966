// The handlers that filter what is typed, pasted or dropped into the entries of a queue's name and
// address.
#pragma once

#include <gtk/gtk.h>

// "insert-text" and "delete-text" handlers of a queue name entry.
void G_QueueNameEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data);
void G_QueueNameDeleteText(GtkEditable *entry, gint start, gint end, gpointer data);

// "insert-text" and "delete-text" handlers of a network address entry.
void G_IPAddressEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data);
void G_IPAddressDeleteText(GtkEditable *entry, gint start, gint end, gpointer data);

// Connects the two pairs.
void FilterAsQueueName(GtkWidget *entry);
void FilterAsAddress(GtkWidget *entry);

// A dialog that has these entries ("QueueEntry", "AddressEntry"), "OKButton" and "ApplyButton".
struct QueueDialog {
  const void *record = nullptr;  // its state record; null while it is not open
  GtkWidget *window = nullptr;
  bool has_printer = false;  // a printer is chosen
};

// The two dialogs as they are when asked. Each sets its own when it is built.
struct QueueDialogs {
  QueueDialog (*add_queue)() = nullptr;
  QueueDialog (*properties)() = nullptr;
};
extern QueueDialogs G_QueueDialogs;

// Makes OK and Apply of the open dialog sensitive when its required fields are filled.
void G_Toggle_Ok_Apply_Sensitivity();
