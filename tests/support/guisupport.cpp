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
  GdkDisplay *display = gdk_display_get_default();
  bool more = true;
  while (more) {
    more = false;
    // What is handled may send something that the X server hands back, as dragging does.
    gdk_display_sync(display);
    // GTK denies input that it holds back between two frames, so the X connection is asked too.
    while (gtk_events_pending() != FALSE ||
           XEventsQueued(GDK_DISPLAY_XDISPLAY(display), QueuedAlready) > 0) {
      gtk_main_iteration();
      more = true;
    }
  }
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

std::string CellDescription(AtkObject *list, const std::string &text) {
  std::string result = "(no cell)";
  const int children = atk_object_get_n_accessible_children(list);
  for (int i = 0; i < children; ++i) {
    AtkObject *cell = atk_object_ref_accessible_child(list, i);
    if (cell == nullptr) continue;
    const char *name = atk_object_get_name(cell);
    if (name != nullptr && name == text) {
      const char *description = atk_object_get_description(cell);
      result = description == nullptr ? "" : description;
    }
    g_object_unref(cell);
  }
  return result;
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

void FocusNoWindow() {
  XSetInputFocus(GDK_DISPLAY_XDISPLAY(gdk_display_get_default()), None, RevertToNone, CurrentTime);
}

void Drag(GtkWidget *from, GtkWidget *to) {
  GdkDragContext *drag = nullptr;
  const auto remember = +[](GtkWidget *, GdkDragContext *context, gpointer data) {
    *static_cast<GdkDragContext **>(data) = context;
  };
  const gulong handler = g_signal_connect(from, "drag-begin", G_CALLBACK(remember), &drag);
  const GdkRectangle start = OnScreen(from);
  const GdkRectangle end = OnScreen(to);
  const int x = start.x + start.width / 2;
  const int y = start.y + start.height / 2;
  XInputMove(x, y);
  XInputButton(1, true);
  constexpr int kSteps = 20;
  for (int step = 1; step <= kSteps; ++step) {
    XInputMove(x + (end.x + end.width / 2 - x) * step / kSteps,
               y + (end.y + end.height / 2 - y) * step / kSteps);
    RunPending();
  }
  EXPECT_TRUE(RunUntil([&] {
    return drag != nullptr && gdk_drag_context_get_selected_action(drag) != 0;
  })) << "what is dragged is not taken";
  XInputButton(1, false);
  g_signal_handler_disconnect(from, handler);
}
