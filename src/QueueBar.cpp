#include "QueueBar.h"

#include <glib-unix.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "jobstates.h"
#include "paths.h"
#include "spoolerwatch.h"

namespace {

constexpr int L_Spacing = 8;
constexpr int L_ReasonWidth = 40;  // characters

struct Watched {
  SpoolerWatch watch{WatchScope::Queues};
  GtkWidget *parent = nullptr;
  std::string (*chosen)() = nullptr;
  void (*usual)(const std::string &queue) = nullptr;  // null when it is too late for that
  gint64 since = g_get_monotonic_time();              // microseconds
  gulong input_hook = 0;
  guint source = 0;
  std::vector<SpoolerQueue> queues;
  GtkWidget *bar = nullptr;  // only while there is something to say
  GtkWidget *label = nullptr;
};
std::unique_ptr<Watched> L_Watched;

void ButtonJobsPressed() {
  const LogScope log("ButtonJobsPressed");
  gchar *words[] = {g_strdup(kJobsProgram), nullptr};
  GError *error = nullptr;
  if (g_spawn_async(nullptr, words, nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, &error) ==
      FALSE) {
    G_Report(nullptr, "ERR_UNABLE_TO_EXEC_FILE", {kJobsProgram});
    g_error_free(error);
  }
  g_free(words[0]);
}

void RemoveBar() {
  if (L_Watched->bar == nullptr) return;
  GtkWidget *window = gtk_widget_get_toplevel(L_Watched->parent);
  for (const char *name : {"QueueBar", "QueueBarLabel", "QueueBarButtons", "JobsButton"}) {
    g_object_set_data(G_OBJECT(window), name, nullptr);
  }
  gtk_widget_destroy(L_Watched->bar);
  L_Watched->bar = nullptr;
}

void AddBar() {
  GtkWidget *window = gtk_widget_get_toplevel(L_Watched->parent);
  GtkWidget *bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_Spacing);
  L_Watched->bar = StoreWidget(window, bar, "QueueBar");
  L_Watched->label = NewLabel(window, "QueueBarLabel", "", nullptr);
  gtk_label_set_line_wrap(GTK_LABEL(L_Watched->label), TRUE);
  gtk_label_set_width_chars(GTK_LABEL(L_Watched->label), L_ReasonWidth);
  gtk_label_set_max_width_chars(GTK_LABEL(L_Watched->label), L_ReasonWidth);
  gtk_box_pack_start(GTK_BOX(bar), L_Watched->label, TRUE, TRUE, 0);
  GtkWidget *buttons = NewButtonBox(window, GTK_ORIENTATION_VERTICAL, "QueueBarButtons");
  gtk_box_pack_start(GTK_BOX(bar), buttons, FALSE, FALSE, 0);
  NewButton(window, buttons, "JobsButton", "DEF_BTN_JOBS_TITLE", ButtonJobsPressed);
  gtk_box_pack_start(GTK_BOX(L_Watched->parent), bar, FALSE, FALSE, 0);
  gtk_box_reorder_child(GTK_BOX(L_Watched->parent), bar, 0);
  gtk_widget_show_all(bar);
  GiveAccessKeys(window);
}

std::string ChosenReason() {
  const std::string chosen = L_Watched->chosen();
  for (const SpoolerQueue &queue : L_Watched->queues) {
    if (queue.name == chosen) return QueueHindranceText(queue);
  }
  return "";
}

guint EventSignal() { return g_signal_lookup("event", GTK_TYPE_WIDGET); }

// The first key or button that is pressed anywhere: from then on the window is the user's.
gboolean NoteInput(GSignalInvocationHint *, guint, const GValue *values, gpointer) {
  const auto *event = static_cast<const GdkEvent *>(g_value_get_boxed(values + 1));
  const GdkEventType type = event == nullptr ? GDK_NOTHING : event->type;
  if (type != GDK_KEY_PRESS && type != GDK_BUTTON_PRESS && type != GDK_SCROLL) return TRUE;
  L_Watched->usual = nullptr;
  L_Watched->input_hook = 0;
  return FALSE;
}

void ForgetInput() {
  if (L_Watched->input_hook == 0) return;
  g_signal_remove_emission_hook(EventSignal(), L_Watched->input_hook);
  L_Watched->input_hook = 0;
}

void TellUsualQueue() {
  constexpr gint64 kLatest = 2 * G_USEC_PER_SEC;
  const auto usual = std::exchange(L_Watched->usual, nullptr);
  ForgetInput();
  if (usual == nullptr || g_get_monotonic_time() - L_Watched->since > kLatest) return;
  for (const SpoolerQueue &queue : L_Watched->queues) {
    if (queue.is_default) usual(queue.name);
  }
}

gboolean TakeNews(gint, GIOCondition, gpointer) {
  std::optional<SpoolerNews> news = L_Watched->watch.Take();
  if (!news || !news->queues) return G_SOURCE_CONTINUE;
  L_Watched->queues = std::move(*news->queues);
  TellUsualQueue();
  ShowChosenQueue();
  return G_SOURCE_CONTINUE;
}

}  // namespace

void WatchChosenQueue(GtkWidget *parent, std::string (*chosen)(),
                      void (*usual)(const std::string &queue)) {
  L_Watched = std::make_unique<Watched>();
  L_Watched->usual = usual;
  if (usual != nullptr) {
    L_Watched->input_hook =
        g_signal_add_emission_hook(EventSignal(), 0, NoteInput, nullptr, nullptr);
  }
  L_Watched->parent = parent;
  L_Watched->chosen = chosen;
  L_Watched->source = g_unix_fd_add(L_Watched->watch.Descriptor(), G_IO_IN, TakeNews, nullptr);
}

void ShowChosenQueue() {
  if (L_Watched == nullptr) return;
  const std::string reason = ChosenReason();
  if (reason.empty()) return RemoveBar();
  if (L_Watched->bar == nullptr) AddBar();
  if (reason == gtk_label_get_text(GTK_LABEL(L_Watched->label))) return;
  gtk_label_set_text(GTK_LABEL(L_Watched->label), reason.c_str());
}

void ForgetChosenQueue() {
  if (L_Watched == nullptr) return;
  g_source_remove(L_Watched->source);
  ForgetInput();
  L_Watched.reset();
}
