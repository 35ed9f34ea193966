// The Options tab of the properties window: print quality and, for text queues, pages a sheet.

#pragma once

#include <gtk/gtk.h>

#include <array>
#include <memory>

// A choice of one of the two groups.
struct NupButton {
  GtkWidget *button = nullptr;   // radio button
  GtkWidget *picture = nullptr;  // above it
  GtkWidget *box = nullptr;      // around both
};

// The buttons are there for text queues only, and null otherwise.
struct PropTabOptionsHelper {
  GtkWidget *page = nullptr;
  std::array<NupButton, 7> pages;   // 1, booklet, 2, 4, 6, 9, 16
  std::array<NupButton, 4> orders;  // Left, Right, Down, Back
};
extern std::unique_ptr<PropTabOptionsHelper> G_PropTabOptions_helper;

// Builds and fills the page; floating.
GtkWidget *create_PropTabOptions();

// "clicked" handlers of the radio buttons, with what a button stands for; only the one that is
// active now does something.
void RadioButtonNupPressed(const char *value);
void RadioButtonNupOrderPressed(const char *order);

// Shows the choice of pages a sheet that the work copy has, where there are the buttons.
void ShowMultipleUp();

// Draw the pictures for the sheet as it lies now. Without "*Nup" those of the orders stay.
void G_RedrawMultipleUpPixmaps();
void G_RedrawMultipleNupOrdersPixmaps();

// "clicked" handler of Defaults.
void ButtonOptionsDefaultsPressed();
