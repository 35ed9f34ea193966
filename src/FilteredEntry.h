// Entries whose text is filtered as it comes in: what their "insert-text" handlers are made of.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <string_view>

using InsertHandler = void (*)(GtkEditable *entry, const gchar *text, gint length, gint *position,
                               gpointer data);

// What an "insert-text" handler was called with; a negative length means up to the NUL.
std::string_view InsertedText(const gchar *text, gint length);

// Replaces the insertion that `handler`, running for "insert-text", was called for by that of
// `filtered`.
void InsertFiltered(GtkEditable *entry, InsertHandler handler, const std::string &filtered,
                    gint *position, gpointer data);

// Shows `text` as it is, though `handler`, connected without data, would drop some of it: what is
// stored or translated may hold what nobody can type.
void ShowPastFilter(GtkWidget *entry, const std::string &text, InsertHandler handler);
