// The Setup tab of the properties window.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct PropTabSetupHelper {
  GtkWidget *copies = nullptr;  // spin button
};
extern std::unique_ptr<PropTabSetupHelper> G_PropTabSetup_helper;

// Builds and fills the page; floating.
GtkWidget *create_PropTabSetup();
