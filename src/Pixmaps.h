// XPM pictures: finding, loading, replacing.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Adds a copy of `dir` to the front of the search list.
void add_pixmap_directory(const char *dir);

// "<dir>/<file>" if that names a regular file (or a link to one), else an empty text.
std::string check_file_exists(const std::string &dir, const std::string &file);

// A picture widget for the XPM file `file`, searched in the directories of the list and then in
// "../pixmaps". The placeholder when the name is null or empty, and, after one line on standard
// error, when there is no such file or it is not an XPM. `widget` is where it will be shown. On a
// display of scale 2 or more, the file of that name in the sub-directory "2x" beside it is shown
// instead, twice as fine and as large on the screen; one that is not an XPM is reported, and the
// other shown.
GtkWidget *create_pixmap(GtkWidget *widget, const char *file);

// Replaces the image of a picture widget made by create_pixmap, with the same search and messages.
void change_pixmap(GtkWidget *picture, const char *file);

// The placeholder.
GtkWidget *create_dummy_pixmap(GtkWidget *widget);
