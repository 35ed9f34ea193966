// The pages of the properties window, each built when it is first needed.

#pragma once

#include <gtk/gtk.h>

// How a page comes and goes.
struct PageWidgets {
  GtkWidget *(*create)();  // builds and fills the page; floating
  void (*forget)();  // gives up what is known of its widgets; also of a page that was not built
};

// Those of each page, which its module defines: kGeneralPage, kSetupPage and so on.
#define PAGE(name, ...) extern const PageWidgets k##name##Page;
#include "pagetable.inc"
#undef PAGE

// Gives the notebook of G_PropertiesWindow_helper all its tabs and builds the page of the first.
// The others are built one a turn of the main loop, in order, once the window has been drawn,
// unless they are needed before. What is not built when the window ends never is.
void AddPropertiesPages();

// Builds the page with that number, and what it works on, unless it is there; nothing for other
// numbers and without an open window.
void NeedPropertiesPage(int number);
void NeedAllPropertiesPages();

[[nodiscard]] bool ArePropertiesPagesBuilt();

// Gives up what the pages know of their widgets, once the window is gone.
void ForgetPropertiesPages();

// What the largest page wants, in pixels, in the current text size. Not asked of the pages, which
// are not there when the window opens.
GtkRequisition LargestPropertiesPage();
