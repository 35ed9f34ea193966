// What the dialogs of custom paper sizes and custom media types have in common.

#pragma once

#include <gtk/gtk.h>

#include <string>

#include "customentries.h"

using InsertHandler = void (*)(GtkEditable *entry, const gchar *text, gint length, gint *position,
                               gpointer data);

// A grid for rows of label, field and what describes the field, at the start of `box`.
GtkGrid *NewFieldGrid(GtkWidget *box);

// Attaches such a row; assistive technology reads label and description (a label, or null) with the
// field.
void AttachField(GtkGrid *grid, int row, GtkWidget *label, GtkWidget *field,
                 GtkWidget *description);

// An empty entry stored as `name`; `filter` decides what comes into it.
GtkWidget *NewNameEntry(GtkWidget *window, const char *name, InsertHandler filter);

// Shows an existing name as it is, past `filter`: a queue list may hold what nobody can type.
void ShowName(GtkWidget *entry, const std::string &name, InsertHandler filter);

// The name of the entry that is selected on the Customs tab; empty without one.
std::string SelectedCustomName(CustomKind kind);

// 1 when the entry that is added, or edited, may have the name; else 0, after an error box where
// there is something to say.
int CheckUniqueCustomName(CustomKind kind, const std::string &name, bool editing);
