// What is wrong with the windows that a program shows; each answer is lines "<window>/<widget> TAB
// <what>".
#pragma once

#include <gtk/gtk.h>

#include <string>

// The texts that are not shown whole, or that another text or a button covers.
std::string Clipped();

// The controls, lists, pictures and windows that assistive technology has no name for, with their
// roles.
std::string Unnamed();

// Every text and picture that is seen, "<x> <y> <width> <height> <state> <window>/<widget>" in
// pixels of the screen; the state is "text", "dead" for an insensitive text, "chosen" for a
// selected one, or "picture". A list has an entry for each of its cells. What the toolkit's file
// chooser shows is left out.
std::string SeenAreas();

// The access keys of the foremost window, "<window>/<widget> TAB <text> TAB <letter>"; "-" without
// one, "*" for a button that another key presses.
std::string AccessKeys();

// Where the focus of the widget is drawn, in its own coordinates: the cursor's row of a list, else
// all of it.
GdkRectangle FocusRectangle(GtkWidget *focus);
// Whether a part of that is scrolled out of sight.
bool IsScrolledAway(GtkWidget *focus);
