// The Output tab of the properties window.

#pragma once

#include <gtk/gtk.h>

#include <memory>

struct PropTabOutputHelper {
  GtkWidget *page = nullptr;
};
extern std::unique_ptr<PropTabOutputHelper> G_PropTabOutput_helper;

// Builds and fills the page; floating.
GtkWidget *create_PropTabOutput();

// "clicked" handler of Defaults.
void ButtonOutputDefaultsPressed();
