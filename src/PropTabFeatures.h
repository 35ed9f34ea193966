// The Features tab of the properties window, the administration's alone: which of the printer's
// installable options it has.

#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

// One of the two lists with the button that moves its selected row to the other.
struct FeaturesListHelper {
  GtkWidget *list = nullptr;
  GtkWidget *button = nullptr;
  int row = -1;  // selected; -1: none
};

struct PropTabFeaturesHelper {
  FeaturesListHelper available;
  FeaturesListHelper installed;
};
extern std::unique_ptr<PropTabFeaturesHelper> G_PropTabFeatures_helper;

// Builds and fills the page; floating.
GtkWidget *create_PropTabFeatures();

// Shows, on all tabs, that the value of an installable option has changed.
void ShowInstallableChange(const std::string &feature);

// Handlers of the lists' rows.
void AvailableRowSelect(int row);
void AvailableRowUnSelect(int row);
void InstalledRowSelect(int row);
void InstalledRowUnSelect(int row);

// "clicked" handlers.
void ButtonFeaturesAddPressed();
void ButtonFeaturesRemovePressed();
void ButtonFeaturesDefaultsPressed();
