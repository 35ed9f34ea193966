// The lists of installable options: Available and Installed of the Features tab, and the print
// tool's list with a status column.

#pragma once

#include <gtk/gtk.h>

#include <string>

#include "installables.h"

// Where the lists are; null while there is none.
struct InstallableListWidgets {
  GtkWidget *available = nullptr;
  GtkWidget *installed = nullptr;
  GtkWidget *features = nullptr;
};
extern InstallableListWidgets G_InstallableLists;

// Refills AvailableClist and InstalledClist: 1. The row's datum is a CString with the identifier of
// its installable option, owned by this module until the next filling.
int G_FillInstallableCLists();

// Appends one row to one of the two lists; nothing when its text is empty.
void G_PutStringInInstallableClists(GtkWidget *list, const InstallableRow &row);

// Refills FeaturesClist.
void G_FillFeaturesCList();

// Appends one row with its status text; nothing when its text is empty.
void G_PutStringInFeaturesClist(GtkWidget *list, const InstallableRow &row,
                                const std::string &status);
