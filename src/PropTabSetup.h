// The Setup tab of the properties window.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct PropTabSetupHelper {
  GtkWidget *copies = nullptr;  // spin button
};
extern std::unique_ptr<PropTabSetupHelper> G_PropTabSetup_helper;

// Builds, fills and appends the tab.
void create_PropTabSetup();

// "clicked" handler of Defaults.
void ButtonSetupDefaultsPressed();

// The number of copies that the tab shows.
int CopiesOfSetupTab();
