#include "QueueTips.h"

#include <glib-unix.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "ListWidget.h"
#include "listedqueues.h"
#include "spoolerwatch.h"

namespace {

constexpr int L_RowsATurn = 200;

struct Watched {
  GtkWidget *list = nullptr;
  ListedQueues queues;
  std::unique_ptr<SpoolerWatch> watch;  // null until the window is shown
  guint start_source = 0;
  guint news_source = 0;
  guint rows_source = 0;
  int next_row = 0;  // whose tip is to be looked at
  int rows = 0;      // that there were when the looking began
};
std::unique_ptr<Watched> L_Watched;

void ShowTip(int row) {
  GtkWidget *list = L_Watched->list;
  const std::string tip = L_Watched->queues.Tip(ListCell(list, row, 0));
  if (tip != ListTip(list, row)) ListSetTip(list, row, tip);
}

// However many rows there are, a turn takes a few of them.
gboolean ShowMoreTips(gpointer) {
  const int rows = ListRowCount(L_Watched->list);
  if (rows != L_Watched->rows) L_Watched->next_row = 0;  // they have other numbers now
  L_Watched->rows = rows;
  const int end = std::min(rows, L_Watched->next_row + L_RowsATurn);
  for (; L_Watched->next_row < end; ++L_Watched->next_row) ShowTip(L_Watched->next_row);
  if (end < rows) return G_SOURCE_CONTINUE;
  L_Watched->rows_source = 0;
  return G_SOURCE_REMOVE;
}

gboolean TakeNews(gint, GIOCondition, gpointer) {
  std::optional<SpoolerNews> news = L_Watched->watch->Take();
  if (!news || !L_Watched->queues.Take(std::move(*news))) return G_SOURCE_CONTINUE;
  L_Watched->next_row = 0;
  if (L_Watched->rows_source == 0) L_Watched->rows_source = g_idle_add(ShowMoreTips, nullptr);
  return G_SOURCE_CONTINUE;
}

gboolean StartWatching(gpointer) {
  L_Watched->start_source = 0;
  L_Watched->watch = std::make_unique<SpoolerWatch>(WatchScope::Queues);
  L_Watched->news_source =
      g_unix_fd_add(L_Watched->watch->Descriptor(), G_IO_IN, TakeNews, nullptr);
  return G_SOURCE_REMOVE;
}

void ForgetGoneList(GtkWidget *list, gpointer) {
  if (L_Watched != nullptr && L_Watched->list == list) ForgetListedQueues();
}

}  // namespace

void WatchListedQueues(GtkWidget *list) {
  ForgetListedQueues();
  g_signal_connect(list, "destroy", G_CALLBACK(ForgetGoneList), nullptr);
  L_Watched = std::make_unique<Watched>();
  L_Watched->list = list;
  L_Watched->start_source = g_idle_add_full(G_PRIORITY_LOW, StartWatching, nullptr, nullptr);
}

void ShowQueueTip(int row) {
  if (L_Watched != nullptr) ShowTip(row);
}

std::string QuestionBeforeDeletion(const std::vector<std::string> &names) {
  return L_Watched == nullptr ? "" : L_Watched->queues.QuestionBeforeDeletion(names);
}

void ForgetListedQueues() {
  if (L_Watched == nullptr) return;
  for (const guint source :
       {L_Watched->start_source, L_Watched->news_source, L_Watched->rows_source}) {
    if (source != 0) g_source_remove(source);
  }
  L_Watched.reset();
}
