#include "RowTips.h"

#include <gtk/gtk-a11y.h>

namespace {

struct TipCell {
  GtkTextCellAccessible parent;
};
struct TipCellClass {
  GtkTextCellAccessibleClass parent;
};

GtkCellAccessibleClass *L_CellParent = nullptr;

void UpdateCell(GtkCellAccessible *cell, gboolean emit_signal) {
  L_CellParent->update_cache(cell, emit_signal);
  GtkCellRenderer *renderer = nullptr;
  g_object_get(cell, "renderer", &renderer, nullptr);
  gchar *tip = nullptr;
  g_object_get(renderer, "tip", &tip, nullptr);
  const gchar *description = tip == nullptr ? "" : tip;
  AtkObject *object = ATK_OBJECT(cell);
  if (g_strcmp0(atk_object_get_description(object), description) != 0) {
    atk_object_set_description(object, description);
  }
  g_free(tip);
  g_object_unref(renderer);
}

void InitCellClass(gpointer type_class, gpointer) {
  L_CellParent = GTK_CELL_ACCESSIBLE_CLASS(g_type_class_peek_parent(type_class));
  GTK_CELL_ACCESSIBLE_CLASS(type_class)->update_cache = UpdateCell;
}

GType CellType() {
  static const GType type = g_type_register_static_simple(
      GTK_TYPE_TEXT_CELL_ACCESSIBLE, "KpxTipCellAccessible", sizeof(TipCellClass), InitCellClass,
      sizeof(TipCell), nullptr, GTypeFlags(0));
  return type;
}

struct TipRenderer {
  GtkCellRendererText parent;
  gchar *tip;
};
struct TipRendererClass {
  GtkCellRendererTextClass parent;
};

GObjectClass *L_RendererParent = nullptr;

TipRenderer *Renderer(GObject *object) { return reinterpret_cast<TipRenderer *>(object); }

void SetTip(GObject *object, guint, const GValue *value, GParamSpec *) {
  g_free(Renderer(object)->tip);
  Renderer(object)->tip = g_value_dup_string(value);
}

void GetTip(GObject *object, guint, GValue *value, GParamSpec *) {
  g_value_set_string(value, Renderer(object)->tip);
}

void FreeTip(GObject *object) {
  g_free(Renderer(object)->tip);
  L_RendererParent->finalize(object);
}

void InitRendererClass(gpointer type_class, gpointer) {
  L_RendererParent = G_OBJECT_CLASS(g_type_class_peek_parent(type_class));
  GObjectClass *object_class = G_OBJECT_CLASS(type_class);
  object_class->set_property = SetTip;
  object_class->get_property = GetTip;
  object_class->finalize = FreeTip;
  const auto flags = GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
  g_object_class_install_property(object_class, 1,
                                  g_param_spec_string("tip", "tip", "tip", nullptr, flags));
  gtk_cell_renderer_class_set_accessible_type(GTK_CELL_RENDERER_CLASS(type_class), CellType());
}

GType RendererType() {
  static const GType type = g_type_register_static_simple(
      GTK_TYPE_CELL_RENDERER_TEXT, "KpxTipRenderer", sizeof(TipRendererClass), InitRendererClass,
      sizeof(TipRenderer), nullptr, GTypeFlags(0));
  return type;
}

gboolean QueryTip(GtkWidget *list, gint x, gint y, gboolean keyboard, GtkTooltip *tooltip,
                  gpointer column) {
  GtkTreeModel *model = nullptr;
  GtkTreePath *path = nullptr;
  GtkTreeIter iter;
  if (gtk_tree_view_get_tooltip_context(GTK_TREE_VIEW(list), &x, &y, keyboard, &model, &path,
                                        &iter) == FALSE) {
    return FALSE;
  }
  gchar *tip = nullptr;
  gtk_tree_model_get(model, &iter, GPOINTER_TO_INT(column), &tip, -1);
  const bool shown = tip != nullptr && *tip != '\0';
  if (shown) {
    gtk_tooltip_set_text(tooltip, tip);
    gtk_tree_view_set_tooltip_row(GTK_TREE_VIEW(list), tooltip, path);
  }
  g_free(tip);
  gtk_tree_path_free(path);
  return shown ? TRUE : FALSE;
}

}  // namespace

GtkCellRenderer *NewTipRenderer() {
  return GTK_CELL_RENDERER(g_object_new(RendererType(), nullptr));
}

void ShowRowTips(GtkTreeView *list, int tip_column) {
  gtk_widget_set_has_tooltip(GTK_WIDGET(list), TRUE);
  g_signal_connect(list, "query-tooltip", G_CALLBACK(QueryTip), GINT_TO_POINTER(tip_column));
}
