#include "ButtonBox.h"

#include "Support.h"

namespace {

constexpr int L_ButtonSpacing = 6;

GtkWidgetClass *L_BoxParent = nullptr;

void LetBe(GtkWidget *button, gpointer box) {
  gtk_button_box_set_child_non_homogeneous(GTK_BUTTON_BOX(box), button, TRUE);
}

// The toolkit keeps the answer until something in the box changes.
void MeasureWidth(GtkWidget *box, gint *minimum, gint *natural) {
  L_BoxParent->get_preferred_width(box, minimum, natural);
  if (!IsTooWideForScreen(*natural)) return;
  gtk_container_foreach(GTK_CONTAINER(box), LetBe, box);
  L_BoxParent->get_preferred_width(box, minimum, natural);
}

void MeasureWidthForHeight(GtkWidget *box, gint, gint *minimum, gint *natural) {
  MeasureWidth(box, minimum, natural);
}

void InitRowClass(gpointer type_class, gpointer) {
  L_BoxParent = GTK_WIDGET_CLASS(g_type_class_peek_parent(type_class));
  GTK_WIDGET_CLASS(type_class)->get_preferred_width = MeasureWidth;
  GTK_WIDGET_CLASS(type_class)->get_preferred_width_for_height = MeasureWidthForHeight;
}

GType RowType() {
  static const GType type =
      g_type_register_static_simple(GTK_TYPE_BUTTON_BOX, "KpxButtonRow", sizeof(GtkButtonBoxClass),
                                    InitRowClass, sizeof(GtkButtonBox), nullptr, GTypeFlags(0));
  return type;
}

}  // namespace

GtkWidget *NewButtonBox(GtkWidget *window, GtkOrientation orientation, const char *name) {
  const bool vertical = orientation == GTK_ORIENTATION_VERTICAL;
  GtkWidget *box =
      vertical ? gtk_button_box_new(orientation) : GTK_WIDGET(g_object_new(RowType(), nullptr));
  gtk_button_box_set_layout(GTK_BUTTON_BOX(box),
                            vertical ? GTK_BUTTONBOX_START : GTK_BUTTONBOX_SPREAD);
  gtk_box_set_spacing(GTK_BOX(box), L_ButtonSpacing);
  return StoreWidget(window, box, name);
}
