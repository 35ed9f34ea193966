// How the inspection module walks through the widgets of a program and reads their texts.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

using Answer = std::optional<std::string>;

inline std::string Taken(gchar *text) {
  const std::string result = text == nullptr ? "" : text;
  g_free(text);
  return result;
}

inline std::string OneLine(std::string text) {
  for (char &c : text) {
    if (c == '\n' || c == '\t') c = ' ';
  }
  return text;
}

// The mapped top-level windows, that of the current grab first, then the newest first.
inline std::vector<GtkWidget *> VisibleWindows() {
  std::vector<GtkWidget *> windows;
  GtkWidget *grab = gtk_grab_get_current();
  if (grab != nullptr) windows.push_back(gtk_widget_get_toplevel(grab));
  GList *all = gtk_window_list_toplevels();
  for (GList *link = g_list_last(all); link != nullptr; link = link->prev) {
    GtkWidget *window = GTK_WIDGET(link->data);
    if (gtk_widget_get_mapped(window) != FALSE && (windows.empty() || windows.front() != window)) {
      windows.push_back(window);
    }
  }
  g_list_free(all);
  return windows;
}

// Internal children too.
inline std::vector<GtkWidget *> ChildrenOf(GtkWidget *widget) {
  std::vector<GtkWidget *> children;
  if (!GTK_IS_CONTAINER(widget)) return children;
  gtk_container_forall(
      GTK_CONTAINER(widget),
      [](GtkWidget *child, gpointer data) {
        static_cast<std::vector<GtkWidget *> *>(data)->push_back(child);
      },
      &children);
  return children;
}

// Calls `visit` for the widget and everything mapped in it, parents first, until it returns false.
inline bool Walk(GtkWidget *widget, const std::function<bool(GtkWidget *)> &visit) {
  if (gtk_widget_get_mapped(widget) == FALSE) return true;
  if (!visit(widget)) return false;
  for (GtkWidget *child : ChildrenOf(widget)) {
    if (!Walk(child, visit)) return false;
  }
  return true;
}

inline std::string PathOf(GtkWidget *widget) {
  return std::string(gtk_widget_get_name(gtk_widget_get_toplevel(widget))) + "/" +
         gtk_widget_get_name(widget);
}

inline std::string TextOfArea(GtkTextView *area) {
  GtkTextBuffer *buffer = gtk_text_view_get_buffer(area);
  GtkTextIter start;
  GtkTextIter end;
  gtk_text_buffer_get_bounds(buffer, &start, &end);
  return Taken(gtk_text_buffer_get_text(buffer, &start, &end, TRUE));
}

inline std::string OrEmpty(const char *text) { return text == nullptr ? "" : text; }

inline Answer Text(GtkWidget *widget) {
  if (GTK_IS_LABEL(widget)) return OrEmpty(gtk_label_get_text(GTK_LABEL(widget)));
  if (GTK_IS_ENTRY(widget)) return OrEmpty(gtk_entry_get_text(GTK_ENTRY(widget)));
  if (GTK_IS_BUTTON(widget)) return OrEmpty(gtk_button_get_label(GTK_BUTTON(widget)));
  if (GTK_IS_FRAME(widget)) return OrEmpty(gtk_frame_get_label(GTK_FRAME(widget)));
  if (GTK_IS_WINDOW(widget)) return OrEmpty(gtk_window_get_title(GTK_WINDOW(widget)));
  if (GTK_IS_TEXT_VIEW(widget)) return TextOfArea(GTK_TEXT_VIEW(widget));
  if (GTK_IS_COMBO_BOX(widget)) {
    GtkWidget *child = gtk_bin_get_child(GTK_BIN(widget));
    if (GTK_IS_ENTRY(child)) return OrEmpty(gtk_entry_get_text(GTK_ENTRY(child)));
  }
  return {};
}
