#include "SaveWindow.h"

#include <string>

#include "Support.h"
#include "cmessages.h"
#include "debug.h"

namespace {

constexpr gint64 L_QuietTime = 500 * G_TIME_SPAN_MILLISECOND;
constexpr gint64 L_DrawTime = 100 * G_TIME_SPAN_MILLISECOND;
constexpr int L_Border = 16;
constexpr int L_Spacing = 8;

void SetTrue(GtkWidget *, cairo_t *, gpointer flag) { *static_cast<bool *>(flag) = true; }

// Runs the main loop until the widget has been drawn. The window's grab keeps input from the other
// windows; the limit is for a window that nobody can see.
void DrawNow(GtkWidget *widget) {
  bool drawn = false;
  const gulong handler = g_signal_connect_after(widget, "draw", G_CALLBACK(SetTrue), &drawn);
  gtk_widget_queue_draw(widget);
  const gint64 limit = g_get_monotonic_time() + L_DrawTime;
  while (!drawn && g_get_monotonic_time() < limit) {
    if (!g_main_context_iteration(nullptr, FALSE)) g_usleep(1000);
  }
  g_signal_handler_disconnect(widget, handler);
  gdk_display_flush(gtk_widget_get_display(widget));
}

gboolean RefuseClose(GtkWidget *, GdkEvent *, gpointer) { return TRUE; }

}  // namespace

SaveProgressWindow::SaveProgressWindow() : start_(g_get_monotonic_time()) {}

SaveProgressWindow::~SaveProgressWindow() {
  DropInput();
  if (window_ == nullptr) return;
  gtk_grab_remove(window_);
  gtk_widget_destroy(window_);
}

void SaveProgressWindow::Show(const SaveStep &step) {
  const gint64 now = g_get_monotonic_time();
  if (now - start_ < L_QuietTime) return;
  // Drawing waits for the screen, which is worth it only now and then, and for a queue whose
  // command may take long.
  const bool is_awaited = step.runs_command && step.number != number_shown_;
  if (window_ != nullptr && now - drawn_ < L_DrawTime && !is_awaited) return;
  if (window_ == nullptr) Create();
  const std::string text = G_Message(step.text_key, {step.number, step.total, step.queue});
  gtk_label_set_text(GTK_LABEL(label_), text.c_str());
  gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar_),
                                step.total == 0 ? 0.0 : double(step.number) / step.total);
  DrawNow(bar_);
  number_shown_ = step.number;
  drawn_ = g_get_monotonic_time();
}

void SaveProgressWindow::Create() {
  const LogScope log("SaveProgressWindow");
  window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(window_, window_, "SaveProgressWindow");
  gtk_window_set_title(GTK_WINDOW(window_), G_Translate("DEF_WND_SAVE_TITLE"));
  gtk_window_set_resizable(GTK_WINDOW(window_), FALSE);
  MakeModal(window_);
  g_signal_connect(window_, "delete-event", G_CALLBACK(RefuseClose), nullptr);
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(window_), box);
  label_ = NewLabel(window_, "SaveProgressLabel", "", nullptr);
  gtk_label_set_width_chars(GTK_LABEL(label_), 48);
  gtk_box_pack_start(GTK_BOX(box), label_, FALSE, FALSE, 0);
  bar_ = StoreWidget(window_, gtk_progress_bar_new(), "SaveProgressBar");
  LabelBy(bar_, label_);
  gtk_box_pack_start(GTK_BOX(box), bar_, FALSE, FALSE, 0);
  gtk_widget_show_all(box);
  gtk_widget_show(window_);
  gtk_grab_add(window_);
}
