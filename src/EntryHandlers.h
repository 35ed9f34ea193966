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

// Makes OK and Apply of the open queue dialog sensitive when its required fields are filled.
void G_Toggle_Ok_Apply_Sensitivity();
