// The General tab of the properties window, one layout for each program.

#pragma once

#include <gtk/gtk.h>

#include <memory>

#include "properties.h"

struct PropTabGenNpmenuHelper {
  GtkWidget *queue_entry = nullptr;
  GtkWidget *transport_combo = nullptr;
  GtkWidget *address_entry = nullptr;
};
// The administration's.
extern std::unique_ptr<PropTabGenNpmenuHelper> G_PropTabGenNpmenu_helper;

struct PropTabGenPrntoolHelper {
  GtkWidget *features_list = nullptr;
};
// The print tool's.
extern std::unique_ptr<PropTabGenPrntoolHelper> G_PropTabGenPrntool_helper;

// Build and fill the page; floating.
GtkWidget *create_PropTabGenAdmin();
GtkWidget *create_PropTabGenTool();

// What the administration's tab holds.
QueueIdentity ReadIdentity();

// Shows that tab with the focus where the fault is.
void FocusIdentity(IdentityFault fault);
