#include "inspectchecks.h"

#include <algorithm>
#include <set>

#include "inspectwidgets.h"

namespace {

// Smaller than what it wants to show its text in. What a widget wants has its margins in it, what
// it is given has not.
bool IsTooSmall(GtkWidget *widget) {
  GtkAllocation given;
  gtk_widget_get_allocation(widget, &given);
  given.width += gtk_widget_get_margin_start(widget) + gtk_widget_get_margin_end(widget);
  given.height += gtk_widget_get_margin_top(widget) + gtk_widget_get_margin_bottom(widget);
  int wanted = 0;
  if (GTK_IS_LABEL(widget) && gtk_label_get_line_wrap(GTK_LABEL(widget)) != FALSE) {
    gtk_widget_get_preferred_height_for_width(widget, given.width, &wanted, nullptr);
    return given.height < wanted;
  }
  GtkRequisition natural;
  gtk_widget_get_preferred_size(widget, nullptr, &natural);
  return given.width < natural.width || given.height < natural.height;
}

bool IsOutside(GtkWidget *widget) {
  GtkWidget *window = gtk_widget_get_toplevel(widget);
  GtkAllocation given;
  GtkAllocation room;
  gtk_widget_get_allocation(widget, &given);
  gtk_widget_get_allocation(window, &room);
  int x = 0;
  int y = 0;
  if (gtk_widget_translate_coordinates(widget, window, 0, 0, &x, &y) == FALSE) return false;
  return x < 0 || y < 0 || x + given.width > room.width || y + given.height > room.height;
}

// A column's title that its list shows only when it is scrolled sideways.
bool IsOutsideItsList(GtkWidget *widget) {
  GtkWidget *list = gtk_widget_get_ancestor(widget, GTK_TYPE_TREE_VIEW);
  int x = 0;
  int y = 0;
  if (list == nullptr || gtk_widget_translate_coordinates(widget, list, 0, 0, &x, &y) == FALSE) {
    return false;
  }
  GtkAllocation given;
  GtkAllocation room;
  gtk_widget_get_allocation(widget, &given);
  gtk_widget_get_allocation(list, &room);
  return x + given.width > room.width;
}

bool IsInScrolledWindow(GtkWidget *widget) {
  return gtk_widget_get_ancestor(widget, GTK_TYPE_SCROLLED_WINDOW) != nullptr;
}

bool IsClipped(GtkWidget *widget) {
  if (!GTK_IS_LABEL(widget) && !GTK_IS_BUTTON(widget)) return false;
  const Answer text = Text(widget);
  if (!text || text->empty()) return false;
  if (GTK_IS_LABEL(widget) &&
      pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(widget))) != FALSE) {
    return true;
  }
  return IsTooSmall(widget) || IsOutsideItsList(widget) ||
         (!IsInScrolledWindow(widget) && IsOutside(widget));
}

// Where a text is seen, in its window's coordinates: what a label's letters take, or all of a
// button.
GdkRectangle PlaceOfText(GtkWidget *widget) {
  GtkWidget *window = gtk_widget_get_toplevel(widget);
  GdkRectangle place = {0, 0, gtk_widget_get_allocated_width(widget),
                        gtk_widget_get_allocated_height(widget)};
  gtk_widget_translate_coordinates(widget, window, 0, 0, &place.x, &place.y);
  if (GTK_IS_LABEL(widget)) {
    GtkAllocation given;
    gtk_widget_get_allocation(widget, &given);
    int x = 0;
    int y = 0;
    gtk_label_get_layout_offsets(GTK_LABEL(widget), &x, &y);
    place.x += x - given.x;
    place.y += y - given.y;
    pango_layout_get_pixel_size(gtk_label_get_layout(GTK_LABEL(widget)), &place.width,
                                &place.height);
  }
  for (GtkWidget *parent = gtk_widget_get_parent(widget); parent != nullptr;
       parent = gtk_widget_get_parent(parent)) {
    if (!GTK_IS_SCROLLED_WINDOW(parent)) continue;
    GdkRectangle view = {0, 0, gtk_widget_get_allocated_width(parent),
                         gtk_widget_get_allocated_height(parent)};
    gtk_widget_translate_coordinates(parent, window, 0, 0, &view.x, &view.y);
    gdk_rectangle_intersect(&place, &view, &place);
  }
  return place;
}

bool IsText(GtkWidget *widget) {
  return (GTK_IS_LABEL(widget) || GTK_IS_BUTTON(widget)) && !Text(widget).value_or("").empty();
}

// The labels of a window whose letters lie under another text or a button.
std::set<GtkWidget *> CoveredLabels(GtkWidget *window) {
  std::vector<GtkWidget *> texts;
  Walk(window, [&](GtkWidget *widget) {
    if (IsText(widget)) texts.push_back(widget);
    return true;
  });
  std::set<GtkWidget *> covered;
  for (GtkWidget *text : texts) {
    const GdkRectangle place = PlaceOfText(text);
    for (GtkWidget *other : texts) {
      if (other == text || gtk_widget_is_ancestor(text, other) != FALSE ||
          gtk_widget_is_ancestor(other, text) != FALSE) {
        continue;
      }
      const GdkRectangle others = PlaceOfText(other);
      if (gdk_rectangle_intersect(&place, &others, nullptr) != FALSE) covered.insert(text);
    }
  }
  return covered;
}

// What a user works with or looks at, so that it needs a name.
bool NeedsName(GtkWidget *widget) {
  if (GTK_IS_IMAGE(widget)) {
    // An icon in an entry or a button belongs to it.
    const GtkImageType type = gtk_image_get_storage_type(GTK_IMAGE(widget));
    return type == GTK_IMAGE_PIXBUF || type == GTK_IMAGE_SURFACE;
  }
  // The arrow of a combo box is no object of its own for assistive technology.
  if (GTK_IS_BUTTON(widget)) {
    return gtk_widget_get_ancestor(widget, GTK_TYPE_COMBO_BOX) == nullptr;
  }
  return GTK_IS_WINDOW(widget) || GTK_IS_ENTRY(widget) || GTK_IS_COMBO_BOX(widget) ||
         GTK_IS_TREE_VIEW(widget) || GTK_IS_TEXT_VIEW(widget) || GTK_IS_NOTEBOOK(widget) ||
         GTK_IS_PROGRESS_BAR(widget);
}

bool HasName(AtkObject *object) {
  const char *name = atk_object_get_name(object);
  if (name != nullptr && *name != '\0') return true;
  AtkRelationSet *relations = atk_object_ref_relation_set(object);
  const bool labelled = atk_relation_set_contains(relations, ATK_RELATION_LABELLED_BY) != FALSE;
  g_object_unref(relations);
  return labelled;
}

// Whether the label stands for something that can be pressed, shown or filled in.
bool NamesSomething(GtkWidget *label) {
  GtkWidget *parent = gtk_widget_get_parent(label);
  if (GTK_IS_BUTTON(parent)) return gtk_widget_get_ancestor(label, GTK_TYPE_TREE_VIEW) == nullptr;
  if (GTK_IS_NOTEBOOK(parent)) return true;
  GtkWidget *field = gtk_label_get_mnemonic_widget(GTK_LABEL(label));
  return field != nullptr && (gtk_widget_get_can_focus(field) != FALSE || GTK_IS_COMBO_BOX(field));
}

std::string KeyOf(GtkWidget *label) {
  const guint key = gtk_label_get_mnemonic_keyval(GTK_LABEL(label));
  if (key != GDK_KEY_VoidSymbol) return Taken(g_strdup(gdk_keyval_name(key)));
  GtkWidget *button = gtk_widget_get_parent(label);
  GList *accelerators = GTK_IS_BUTTON(button) ? gtk_widget_list_accel_closures(button) : nullptr;
  const bool has = accelerators != nullptr;
  g_list_free(accelerators);
  return has ? "*" : "-";
}

// A rectangle of the window, in its coordinates, as the screen's pixels.
std::string OnScreen(GtkWidget *window, const GdkRectangle &area) {
  const int scale = gtk_widget_get_scale_factor(window);
  int x = 0;
  int y = 0;
  gdk_window_get_origin(gtk_widget_get_window(window), &x, &y);
  return std::to_string(scale * (x + area.x)) + " " + std::to_string(scale * (y + area.y)) + " " +
         std::to_string(scale * area.width) + " " + std::to_string(scale * area.height);
}

std::string SeenLine(GtkWidget *widget, const GdkRectangle &area, const char *state) {
  if (area.width <= 0 || area.height <= 0) return "";
  const bool dead = state == std::string("text") && gtk_widget_is_sensitive(widget) == FALSE;
  return OnScreen(gtk_widget_get_toplevel(widget), area) + " " + (dead ? "dead" : state) + " " +
         PathOf(widget) + "\n";
}

// One line for each cell that has a text and is not scrolled away.
std::string SeenCells(GtkTreeView *list) {
  std::string lines;
  GtkTreePath *path = nullptr;
  GtkTreePath *last = nullptr;
  if (gtk_tree_view_get_visible_range(list, &path, &last) == FALSE) return lines;
  GtkWidget *window = gtk_widget_get_toplevel(GTK_WIDGET(list));
  GdkRectangle view;
  gtk_tree_view_get_visible_rect(list, &view);
  for (; gtk_tree_path_compare(path, last) <= 0; gtk_tree_path_next(path)) {
    GdkRectangle cell;
    // The first column alone always has a text.
    gtk_tree_view_get_cell_area(list, path, gtk_tree_view_get_column(list, 0), &cell);
    int top = 0;
    gtk_tree_view_convert_bin_window_to_tree_coords(list, 0, cell.y, nullptr, &top);
    if (top < view.y || top + cell.height > view.y + view.height) continue;
    gtk_tree_view_convert_bin_window_to_widget_coords(list, cell.x, cell.y, &cell.x, &cell.y);
    gtk_widget_translate_coordinates(GTK_WIDGET(list), window, cell.x, cell.y, &cell.x, &cell.y);
    cell.width = std::min(cell.width, view.width);
    const bool chosen =
        gtk_tree_selection_path_is_selected(gtk_tree_view_get_selection(list), path) != FALSE;
    lines += SeenLine(GTK_WIDGET(list), cell, chosen ? "chosen" : "text");
  }
  gtk_tree_path_free(path);
  gtk_tree_path_free(last);
  return lines;
}

std::string SeenOf(GtkWidget *widget) {
  const bool is_picture =
      GTK_IS_IMAGE(widget) && NeedsName(widget) && gtk_widget_get_allocated_width(widget) > 8;
  if (is_picture) return SeenLine(widget, PlaceOfText(widget), "picture");
  if (GTK_IS_TREE_VIEW(widget)) return SeenCells(GTK_TREE_VIEW(widget));
  const bool has_text = GTK_IS_LABEL(widget) || GTK_IS_ENTRY(widget) || GTK_IS_TEXT_VIEW(widget);
  if (!has_text || Text(widget).value_or("").find_first_not_of(" \n") == std::string::npos)
    return "";
  const bool chosen = GTK_IS_ENTRY(widget) && gtk_editable_get_selection_bounds(
                                                  GTK_EDITABLE(widget), nullptr, nullptr) != FALSE;
  return SeenLine(widget, PlaceOfText(widget), chosen ? "chosen" : "text");
}

}  // namespace

std::string SeenAreas() {
  std::string lines;
  const std::function<void(GtkWidget *)> add = [&](GtkWidget *widget) {
    if (gtk_widget_get_mapped(widget) == FALSE || GTK_IS_FILE_CHOOSER_WIDGET(widget)) return;
    lines += SeenOf(widget);
    for (GtkWidget *child : ChildrenOf(widget)) add(child);
  };
  // Another window may cover what lies behind the foremost.
  const std::vector<GtkWidget *> windows = VisibleWindows();
  if (!windows.empty()) add(windows.front());
  return lines;
}

std::string Clipped() {
  std::string lines;
  for (GtkWidget *window : VisibleWindows()) {
    const std::set<GtkWidget *> covered = CoveredLabels(window);
    Walk(window, [&](GtkWidget *widget) {
      if (IsClipped(widget) || covered.contains(widget)) {
        lines += PathOf(widget) + "\t" + OneLine(*Text(widget)) + "\n";
      }
      return true;
    });
  }
  return lines;
}

std::string Unnamed() {
  std::string lines;
  for (GtkWidget *window : VisibleWindows()) {
    // Of a pop-up the widget that it belongs to tells.
    if (!GTK_IS_WINDOW(window) ||
        gtk_window_get_window_type(GTK_WINDOW(window)) != GTK_WINDOW_TOPLEVEL) {
      continue;
    }
    const std::function<void(GtkWidget *)> add = [&](GtkWidget *widget) {
      if (gtk_widget_get_mapped(widget) == FALSE || GTK_IS_FILE_CHOOSER_WIDGET(widget)) return;
      AtkObject *object = gtk_widget_get_accessible(widget);
      if (NeedsName(widget) && !HasName(object)) {
        lines += PathOf(widget) + "\t" + atk_role_get_name(atk_object_get_role(object)) + "\n";
      }
      for (GtkWidget *child : ChildrenOf(widget)) add(child);
    };
    add(window);
  }
  return lines;
}

std::string AccessKeys() {
  std::string lines;
  const std::function<void(GtkWidget *)> add = [&](GtkWidget *widget) {
    if (gtk_widget_get_mapped(widget) == FALSE || GTK_IS_FILE_CHOOSER_WIDGET(widget)) return;
    if (GTK_IS_LABEL(widget) && NamesSomething(widget)) {
      lines += PathOf(widget) + "\t" + OneLine(*Text(widget)) + "\t" + KeyOf(widget) + "\n";
    }
    for (GtkWidget *child : ChildrenOf(widget)) add(child);
  };
  const std::vector<GtkWidget *> windows = VisibleWindows();
  if (!windows.empty()) add(windows.front());
  return lines;
}

GdkRectangle FocusRectangle(GtkWidget *focus) {
  GdkRectangle area = {0, 0, gtk_widget_get_allocated_width(focus),
                       gtk_widget_get_allocated_height(focus)};
  if (!GTK_IS_TREE_VIEW(focus)) return area;
  GtkTreeView *list = GTK_TREE_VIEW(focus);
  GtkTreePath *path = nullptr;
  gtk_tree_view_get_cursor(list, &path, nullptr);
  if (path == nullptr) return area;
  GdkRectangle row;
  gtk_tree_view_get_background_area(list, path, nullptr, &row);
  gtk_tree_path_free(path);
  gtk_tree_view_convert_bin_window_to_widget_coords(list, 0, row.y, &area.x, &area.y);
  area.height = row.height;
  return area;
}

bool IsScrolledAway(GtkWidget *focus) {
  const GdkRectangle area = FocusRectangle(focus);
  for (GtkWidget *parent = gtk_widget_get_parent(focus); parent != nullptr;
       parent = gtk_widget_get_parent(parent)) {
    if (!GTK_IS_SCROLLED_WINDOW(parent)) continue;
    int x = 0;
    int y = 0;
    gtk_widget_translate_coordinates(focus, parent, area.x, area.y, &x, &y);
    // The columns of a list may be wider than it is.
    const bool is_list = GTK_IS_TREE_VIEW(focus);
    if (y < 0 || y + area.height > gtk_widget_get_allocated_height(parent)) return true;
    if (!is_list && (x < 0 || x + area.width > gtk_widget_get_allocated_width(parent))) return true;
  }
  return false;
}
