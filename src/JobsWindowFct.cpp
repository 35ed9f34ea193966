#include "JobsWindowFct.h"

#include <glib-unix.h>
#include <unistd.h>

#include <utility>

#include "JobsWindow.h"
#include "MessageDialogs.h"
#include "MoveJobsWindow.h"
#include "QuestionDialog.h"
#include "Support.h"
#include "ViewedList.h"
#include "WhyWindow.h"
#include "cmessages.h"
#include "debug.h"
#include "jobstates.h"
#include "paths.h"
#include "testpage.h"

namespace {

JobsWindowHelper &Helper() { return *G_JobsWindow_helper; }

RowObserver ObserverOf(GtkWidget *list) {
  return {[list](int row) { ViewedRowInserted(list, row); },
          [list](int row) { ViewedRowRemoved(list, row); },
          [list](int row) { ViewedRowChanged(list, row); }};
}

std::vector<SpoolerQueue> SelectedQueues() {
  std::vector<SpoolerQueue> queues;
  for (const int row : ViewedSelection(Helper().queues_list)) {
    queues.push_back(Helper().queues.At(row));
  }
  return queues;
}

std::vector<SpoolerJob> SelectedJobs() {
  std::vector<SpoolerJob> jobs;
  for (const int row : ViewedSelection(Helper().jobs_list)) jobs.push_back(Helper().jobs.At(row));
  return jobs;
}

template <typename Object>
std::vector<Object> Fitting(SpoolerAction action, const std::vector<Object> &objects) {
  std::vector<Object> fitting;
  for (const Object &object : objects) {
    if (Fits(action, object)) fitting.push_back(object);
  }
  return fitting;
}

template <typename Object>
void SetButtons(const std::map<SpoolerAction, GtkWidget *> &buttons,
                const std::vector<Object> &selected) {
  for (const auto &[action, button] : buttons) {
    gtk_widget_set_sensitive(button, Fitting(action, selected).empty() ? FALSE : TRUE);
  }
}

// Of the row that alone is selected.
std::string SelectedReason() {
  const std::vector<SpoolerJob> jobs = SelectedJobs();
  const std::vector<SpoolerQueue> queues = SelectedQueues();
  if (jobs.size() == 1) return JobReasonText(jobs[0], Helper().queues.Find(jobs[0].queue));
  return queues.size() == 1 ? QueueReasonText(queues[0]) : "";
}

// Its name as lp and lpstat have it.
std::string SelectedName() {
  const std::vector<SpoolerJob> jobs = SelectedJobs();
  const std::vector<SpoolerQueue> queues = SelectedQueues();
  if (jobs.size() == 1) return jobs[0].queue + "-" + std::to_string(jobs[0].number);
  return queues.size() == 1 ? queues[0].name : "";
}

// What depends on the selection and on what the selected rows say.
void ShowSelection() {
  const FocusKeeper keeper(Helper().window,
                           SelectedQueues().empty() ? Helper().jobs_list : Helper().queues_list);
  SetButtons(Helper().queue_buttons, SelectedQueues());
  SetButtons(Helper().job_buttons, SelectedJobs());
  gtk_widget_set_sensitive(Helper().why_button, SelectedName().empty() ? FALSE : TRUE);
  const std::string reason = SelectedReason();
  if (reason != gtk_label_get_text(GTK_LABEL(Helper().reason_label))) {
    gtk_label_set_text(GTK_LABEL(Helper().reason_label), reason.c_str());
  }
}

const char *ContactKey(SpoolerContact contact) {
  switch (contact) {
    case SpoolerContact::Asking:
      return "SPOOLER_ASKING";
    case SpoolerContact::Silent:
      return "SPOOLER_SILENT";
    case SpoolerContact::Gone:
      return "SPOOLER_GONE";
    case SpoolerContact::NoLibrary:
      return "SPOOLER_NO_LIBRARY";
    case SpoolerContact::Answering:
      break;
  }
  return nullptr;
}

void ShowContact(SpoolerContact contact) {
  const char *key = ContactKey(contact);
  GtkWidget *label = Helper().contact_label;
  gtk_widget_set_visible(label, key == nullptr ? FALSE : TRUE);
  gtk_label_set_text(GTK_LABEL(label), key == nullptr ? "" : G_Translate(key));
}

// What failed and has not been shown yet.
Owned<CList> L_Failures;

gboolean ShowFailures(gpointer) {
  if (L_Failures == nullptr || G_ErrorWarningWindow_helper != nullptr) return G_SOURCE_REMOVE;
  GtkWidget *window = create_ErrorWarningWindow(L_Failures.get(), kReturn);
  L_Failures.reset();
  // What fails while it is open waits for its end.
  g_signal_connect(window, "destroy", G_CALLBACK(+[] { g_idle_add(ShowFailures, nullptr); }),
                   nullptr);
  gtk_widget_show(window);
  return G_SOURCE_REMOVE;
}

CList *Failures() {
  if (L_Failures == nullptr) L_Failures = CreateList();
  return L_Failures.get();
}

void NoteFailures(const std::vector<SpoolerTaskResult> &results) {
  for (const SpoolerTaskResult &result : results) {
    if (!result.done) ReportTaskFailure(result, Failures());
  }
  ShowFailures(nullptr);
}

gboolean ShowMoreRows(gpointer) {
  if (Helper().jobs.TakeSome(ObserverOf(Helper().jobs_list))) return G_SOURCE_CONTINUE;
  Helper().rows_source = 0;
  ShowSelection();
  return G_SOURCE_REMOVE;
}

void ShowJobs(SpoolerNews *news) {
  if (news->jobs.empty() && news->gone_jobs.empty()) return;
  Helper().jobs.Note(std::move(news->jobs), news->gone_jobs);
  if (Helper().jobs.CanReplace()) {
    Helper().jobs.Replace();
    ViewedRowsReplaced(Helper().jobs_list);
  }
  if (Helper().jobs.HasMore() && Helper().rows_source == 0) {
    Helper().rows_source = g_idle_add(ShowMoreRows, nullptr);
  }
}

gboolean TakeNews(gint, GIOCondition, gpointer) {
  std::optional<SpoolerNews> news = Helper().watch->Take();
  if (!news) return G_SOURCE_CONTINUE;
  ShowContact(news->contact);
  if (news->queues) {
    Helper().queues.Take(*news->queues, ObserverOf(Helper().queues_list));
    gtk_widget_queue_draw(Helper().jobs_list);  // some say why their queue stands still
  }
  ShowJobs(&*news);
  ShowSelection();
  NoteFailures(news->results);
  return G_SOURCE_CONTINUE;
}

SpoolerTask TaskFor(SpoolerAction action, const SpoolerJob &job) {
  return {.action = action, .queue = job.queue, .job = job.number, .target = "", .title = ""};
}

SpoolerTask TaskFor(SpoolerAction action, const SpoolerQueue &queue) {
  return {.action = action, .queue = queue.name, .job = 0, .target = "", .title = ""};
}

template <typename Object>
void DoWith(SpoolerAction action, const std::vector<Object> &objects, const std::string &target) {
  std::vector<SpoolerTask> tasks;
  for (const Object &object : objects) {
    tasks.push_back(TaskFor(action, object));
    tasks.back().target = target;
  }
  Helper().watch->Do(std::move(tasks));
}

// With what fits of the selection, after the question if there is one.
template <typename Object>
void AskAndDo(SpoolerAction action, const std::vector<Object> &selected,
              const std::string &target = "") {
  const std::vector<Object> objects = Fitting(action, selected);
  if (objects.empty()) return;
  const std::string question = QuestionBefore(action, objects);
  if (question.empty()) return DoWith(action, objects, target);
  gtk_widget_show(create_QuestionWindow(
      question, [action, objects, target] { DoWith(action, objects, target); }));
}

void MoveSelectedJobs(const std::string &queue) {
  AskAndDo(SpoolerAction::MoveJob, SelectedJobs(), queue);
}

}  // namespace

bool IsSuperuser() { return geteuid() == 0; }

void WatchSpooler() {
  JobsWindowHelper &helper = Helper();
  ShowContact(SpoolerContact::Asking);
  helper.watch =
      std::make_unique<SpoolerWatch>(IsSuperuser() ? WatchScope::AllJobs : WatchScope::OwnJobs);
  helper.watch_source = g_unix_fd_add(helper.watch->Descriptor(), G_IO_IN, TakeNews, nullptr);
}

void QueueSelectionChanged() {
  const LogScope log("QueueSelectionChanged");
  if (!SelectedQueues().empty()) ViewedUnselectAll(Helper().jobs_list);
  ShowSelection();
}

void JobSelectionChanged() {
  const LogScope log("JobSelectionChanged");
  if (!SelectedJobs().empty()) ViewedUnselectAll(Helper().queues_list);
  ShowSelection();
}

void ButtonStopQueuePressed() {
  const LogScope log("ButtonStopQueuePressed");
  AskAndDo(SpoolerAction::StopQueue, SelectedQueues());
}

void ButtonStartQueuePressed() {
  const LogScope log("ButtonStartQueuePressed");
  AskAndDo(SpoolerAction::StartQueue, SelectedQueues());
}

void ButtonRefusePressed() {
  const LogScope log("ButtonRefusePressed");
  AskAndDo(SpoolerAction::RefuseJobs, SelectedQueues());
}

void ButtonAcceptPressed() {
  const LogScope log("ButtonAcceptPressed");
  AskAndDo(SpoolerAction::AcceptJobs, SelectedQueues());
}

void ButtonTestPagePressed() {
  const LogScope log("ButtonTestPagePressed");
  std::vector<SpoolerTask> tasks;
  for (const SpoolerQueue &queue : Fitting(SpoolerAction::PrintDocument, SelectedQueues())) {
    const std::optional<std::string> data = TestPageData(TestPageFactsOf(queue.name));
    if (!data) {
      G_Report(Failures(), "ERR_UNABLE_TO_READ_FILE", {kTestPageFile});
      ShowFailures(nullptr);
      return;
    }
    tasks.push_back(TaskFor(SpoolerAction::PrintDocument, queue));
    tasks.back().target = *data;
    tasks.back().title = G_Translate("DEF_BTN_TESTPAGE_TITLE");
  }
  Helper().watch->Do(std::move(tasks));
}

void ButtonCancelJobPressed() {
  const LogScope log("ButtonCancelJobPressed");
  AskAndDo(SpoolerAction::CancelJob, SelectedJobs());
}

void ButtonHoldJobPressed() {
  const LogScope log("ButtonHoldJobPressed");
  AskAndDo(SpoolerAction::HoldJob, SelectedJobs());
}

void ButtonReleaseJobPressed() {
  const LogScope log("ButtonReleaseJobPressed");
  AskAndDo(SpoolerAction::ReleaseJob, SelectedJobs());
}

void ButtonMoveJobPressed() {
  const LogScope log("ButtonMoveJobPressed");
  std::vector<std::string> queues;
  for (int row = 0; row < Helper().queues.Count(); ++row) {
    queues.push_back(Helper().queues.At(row).name);
  }
  gtk_widget_show(create_MoveJobsWindow(queues, MoveSelectedJobs));
}

void ButtonPrintAgainPressed() {
  const LogScope log("ButtonPrintAgainPressed");
  AskAndDo(SpoolerAction::PrintJobAgain, SelectedJobs());
}

void ButtonWhyPressed() {
  const LogScope log("ButtonWhyPressed");
  const std::string name = SelectedName();
  if (!name.empty()) gtk_widget_show(create_WhyWindow(name));
}

void ButtonHelpJobsPressed() {
  const LogScope log("ButtonHelpJobsPressed");
  ShowHelp("KPX_JOBS_BEGIN");
}

void ButtonCloseJobsPressed() {
  const LogScope log("ButtonCloseJobsPressed");
  if (G_JobsWindow_helper == nullptr) return;
  gtk_widget_hide(Helper().window);
  for (const guint source : {Helper().watch_source, Helper().rows_source}) {
    if (source != 0) g_source_remove(source);
  }
  Helper().watch.reset();
  // The lists ask for their rows as long as they are there.
  gtk_widget_destroy(Helper().window);
  G_JobsWindow_helper.reset();
  gtk_main_quit();
}
