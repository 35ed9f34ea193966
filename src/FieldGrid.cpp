#include "FieldGrid.h"

#include "Support.h"
#include "cmessages.h"

GtkGrid *NewFieldGrid() {
  auto *grid = GTK_GRID(gtk_grid_new());
  gtk_grid_set_row_spacing(grid, kFieldSpacing);
  gtk_grid_set_column_spacing(grid, kFieldSpacing);
  return grid;
}

GtkWidget *AddField(GtkWidget *window, GtkGrid *grid, int row, const FieldLabel &label,
                    GtkWidget *field, GtkWidget *target) {
  GtkWidget *shown = NewLabel(window, label.name.c_str(), G_Translate(label.key),
                              target == nullptr ? field : target);
  gtk_widget_set_hexpand(field, TRUE);
  gtk_grid_attach(grid, shown, 0, row, 1, 1);
  gtk_grid_attach(grid, field, 1, row, 1, 1);
  return shown;
}

GtkWidget *NewDescribedField(GtkWidget *field, GtkWidget *description) {
  DescribeBy(field, description);
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kFieldSpacing);
  gtk_box_pack_start(GTK_BOX(box), field, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), description, FALSE, FALSE, 0);
  return box;
}
