#include "QueueBar.h"

#include <glib-unix.h>

#include <memory>
#include <string>
#include <vector>

#include "AccessKeys.h"
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

gboolean TakeNews(gint, GIOCondition, gpointer) {
  std::optional<SpoolerNews> news = L_Watched->watch.Take();
  if (!news || !news->queues) return G_SOURCE_CONTINUE;
  L_Watched->queues = std::move(*news->queues);
  ShowChosenQueue();
  return G_SOURCE_CONTINUE;
}

}  // namespace

void WatchChosenQueue(GtkWidget *parent, std::string (*chosen)()) {
  L_Watched = std::make_unique<Watched>();
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
  L_Watched.reset();
}
