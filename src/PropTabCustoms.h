// The Customs tab of the properties window: the queue's own paper sizes and media types.

#pragma once

#include <gtk/gtk.h>

#include <memory>

#include "clist.h"
#include "customentries.h"

// One of the tab's two lists with its buttons and counters.
struct CustomListHelper {
  GtkWidget *list = nullptr;
  GtkWidget *add_button = nullptr;
  GtkWidget *edit_button = nullptr;
  GtkWidget *delete_button = nullptr;
  int number_selected = 0;
  int number_defined = 0;
};

struct PropTabCustomsHelper {
  CustomListHelper papers;
  CustomListHelper medias;
};
extern std::unique_ptr<PropTabCustomsHelper> G_PropTabCustoms_helper;

// CSelection records, one a row in row order; null while there is no tab.
extern Owned<CList> G_CpsSelections;
extern Owned<CList> G_CmtSelections;

// Builds and fills the page; floating.
GtkWidget *create_PropTabCustoms();

// The part of the tab, or the list of rows, that is about the kind. The tab must be there.
CustomListHelper &CustomList(CustomKind kind);
CList *CustomSelections(CustomKind kind);

// Makes the buttons of the kind sensitive as its counters say.
void UpdateCustomButtons(CustomKind kind);
