// Forms: rows of a label and the field that it names.
#pragma once

#include <gtk/gtk.h>

#include <string>

inline constexpr int kFieldSpacing = 8;  // pixels between labels, fields and rows

// An empty grid for AddField; floating.
GtkGrid *NewFieldGrid();

struct FieldLabel {
  std::string name;  // under which the label is stored
  const char *key;   // of its text
};

// Adds a row: the label, stored on `window`, and `field`, which takes the width that is left.
// Assistive technology reads the label with `target`, or with `field` itself when that is null.
// Returns the label.
GtkWidget *AddField(GtkWidget *window, GtkGrid *grid, int row, const FieldLabel &label,
                    GtkWidget *field, GtkWidget *target = nullptr);

// `field` with a label beside it that describes it, such as its range, which assistive technology
// reads too; floating.
GtkWidget *NewDescribedField(GtkWidget *field, GtkWidget *description);
