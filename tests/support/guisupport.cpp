#include "guisupport.h"

#include <gdk/gdkx.h>

#include <chrono>

#include "xinput.h"

bool RunUntil(const std::function<bool()> &holds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  const guint waker = g_timeout_add(
      10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  while (!holds() && std::chrono::steady_clock::now() < deadline) gtk_main_iteration();
  g_source_remove(waker);
  return holds();
}

void RunPending() {
  gdk_display_sync(gdk_display_get_default());
  while (gtk_events_pending() != FALSE) gtk_main_iteration();
}

GdkRectangle OnScreen(GtkWidget *widget, GdkRectangle area) {
  GtkWidget *window = gtk_widget_get_toplevel(widget);
  int x = 0;
  int y = 0;
  gtk_widget_translate_coordinates(widget, window, area.x, area.y, &x, &y);
  gdk_window_get_origin(gtk_widget_get_window(window), &area.x, &area.y);
  area.x += x;
  area.y += y;
  return area;
}

GdkRectangle OnScreen(GtkWidget *widget) {
  return OnScreen(widget, {0, 0, gtk_widget_get_allocated_width(widget),
                           gtk_widget_get_allocated_height(widget)});
}

void ClickOn(GtkWidget *widget) {
  const GdkRectangle area = OnScreen(widget);
  XInputClick(area.x + area.width / 2, area.y + area.height / 2);
  RunPending();
}

std::string TextOf(GtkWidget *text_view) {
  GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(text_view));
  GtkTextIter start;
  GtkTextIter end;
  gtk_text_buffer_get_bounds(buffer, &start, &end);
  gchar *text = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
  const std::string result = text;
  g_free(text);
  return result;
}

void FocusWindowOf(GtkWidget *widget) {
  XInputFocus(gdk_x11_window_get_xid(gtk_widget_get_window(gtk_widget_get_toplevel(widget))));
}
