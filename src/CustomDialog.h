// What the dialogs of custom paper sizes and custom media types have in common.

#pragma once

#include <gtk/gtk.h>

#include <string>

#include "FilteredEntry.h"
#include "clist.h"
#include "customentries.h"

// What the dialogs about the queue's own sizes and media types ask the Customs tab for.
struct CustomsTabCalls {
  CList *(*selections)(CustomKind kind) = nullptr;  // one record a row
  GtkWidget *(*list)(CustomKind kind) = nullptr;
  void (*delete_selected)(CustomKind kind) = nullptr;
  // When an entry was added or edited, in this order:
  void (*remove_edited)(CustomKind kind) = nullptr;  // without a question
  void (*show_new)(CustomKind kind, const std::string &name) = nullptr;
  void (*count_new)(CustomKind kind) = nullptr;  // when the dialog is closed
};
// Set while there is a tab.
extern CustomsTabCalls G_CustomsTab;

// The grid of the dialog's fields, at the start of `box`.
GtkGrid *AddFieldGrid(GtkWidget *box);

// An empty entry stored as `name`; `filter` decides what comes into it.
GtkWidget *NewNameEntry(GtkWidget *window, const char *name, InsertHandler filter);

// The name of the entry that is selected on the Customs tab; empty without one.
std::string SelectedCustomName(CustomKind kind);

// 1 when the entry that is added, or edited, may have the name; else 0, after an error box where
// there is something to say.
[[nodiscard]] int CheckUniqueCustomName(CustomKind kind, const std::string &name, bool editing);
