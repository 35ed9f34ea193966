// Tooltips of the rows of a list, which assistive technology reads as their description.
#pragma once

#include <gtk/gtk.h>

// A renderer of text with one property more, "tip" (plain text, null for none): the accessible
// description of the cell. The caller packs it into a layout.
GtkCellRenderer *NewTipRenderer();

// Shows the text in the model's column `tip_column` as the tooltip of its row; rows without one
// have no tooltip.
void ShowRowTips(GtkTreeView *list, int tip_column);
