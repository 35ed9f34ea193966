#include "JobsWindow.h"

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "JobsWindowFct.h"
#include "Support.h"
#include "ViewedList.h"
#include "cmessages.h"
#include "debug.h"
#include "jobstates.h"
#include "utils.h"

std::unique_ptr<JobsWindowHelper> G_JobsWindow_helper;

namespace {

constexpr int L_Border = 10;
constexpr int L_Spacing = 8;
constexpr int L_Width = 960;
constexpr int L_Height = 620;
constexpr int L_ReasonWidth = 50;  // characters, in a narrow window
constexpr int L_ReasonUsualWidth = 90;
constexpr int L_ReasonLines = 2;  // what most reasons take; for more the list of jobs gives way

enum class QueueColumn { Name, State, Jobs, Accepts, Words };
enum class JobColumn { Title, Queue, User, Size, When, State, Reason };

const JobsWindowHelper &Helper() { return *G_JobsWindow_helper; }

std::string QueueCell(int row, int column) {
  const SpoolerQueue &queue = Helper().queues.At(row);
  switch (static_cast<QueueColumn>(column)) {
    case QueueColumn::Name:
      return queue.name;
    case QueueColumn::State:
      return QueueStateText(queue);
    case QueueColumn::Jobs:
      return std::to_string(queue.waiting);
    case QueueColumn::Accepts:
      return G_Translate(queue.accepts ? "DEF_BTN_YES_TITLE" : "DEF_BTN_NO_TITLE");
    case QueueColumn::Words:
      break;
  }
  return QueueReasonText(queue);
}

std::string JobReason(int row) {
  const SpoolerJob &job = Helper().jobs.At(row);
  return JobReasonText(job, Helper().queues.Find(job.queue));
}

std::string JobCell(int row, int column) {
  const SpoolerJob &job = Helper().jobs.At(row);
  switch (static_cast<JobColumn>(column)) {
    case JobColumn::Title:
      return JobTitleText(job);
    case JobColumn::Queue:
      return job.queue;
    case JobColumn::User:
      return job.user;
    case JobColumn::Size:
      return JobSizeText(job);
    case JobColumn::When:
      return TimeText(job.since);
    case JobColumn::State:
      return JobStateText(job);
    case JobColumn::Reason:
      break;
  }
  return JobReason(row);
}

// A list below the label that names it.
void AddList(GtkWidget *window, GtkWidget *parent, GtkWidget *list, const char *name,
             const char *title_key, bool grows) {
  const std::string base = name;
  StoreWidget(window, list, (base + "Clist").c_str());
  SetAccessibleName(list, G_Translate(title_key));
  gtk_box_pack_start(GTK_BOX(parent),
                     NewLabel(window, (base + "Label").c_str(), G_Translate(title_key), list),
                     FALSE, FALSE, 0);
  GtkWidget *scrolled = NewScrolledList(window, (base + "Scrolledwindow").c_str(), list);
  gtk_box_pack_start(GTK_BOX(parent), scrolled, grows ? TRUE : FALSE, TRUE, 0);
}

void AddQueues(JobsWindowHelper &helper, GtkWidget *parent) {
  helper.queues_list =
      NewViewedList({{"DEF_LBL_QUEUE_TITLE", 16},
                     {"DEF_LBL_STATE_TITLE", 20},
                     {"DEF_LBL_WAITING_TITLE", 6},
                     {"DEF_LBL_ACCEPTS_TITLE", 6},
                     {"DEF_LBL_REASON_TITLE", 40}},
                    {[] { return Helper().queues.Count(); }, QueueCell,
                     [](int row) { return QueueReasonText(Helper().queues.At(row)); }},
                    QueueSelectionChanged);
  AddList(helper.window, parent, helper.queues_list, "Queues", "DEF_LBL_QUEUES", false);
}

void AddJobs(JobsWindowHelper &helper, GtkWidget *parent) {
  helper.jobs_list = NewViewedList({{"DEF_LBL_DOCUMENT_TITLE", 22},
                                    {"DEF_LBL_QUEUE_TITLE", 12},
                                    {"DEF_LBL_OWNER_TITLE", 9},
                                    {"DEF_LBL_SIZE_TITLE", 9},
                                    {"DEF_LBL_WHEN_TITLE", 15},
                                    {"DEF_LBL_STATE_TITLE", 20},
                                    {"DEF_LBL_REASON_TITLE", 30}},
                                   {[] { return Helper().jobs.Count(); }, JobCell, JobReason},
                                   JobSelectionChanged);
  AddList(helper.window, parent, helper.jobs_list, "Jobs", "DEF_LBL_JOBS", true);
}

void AddReason(JobsWindowHelper &helper, GtkWidget *parent) {
  helper.reason_label = NewLabel(helper.window, "ReasonLabel", "", nullptr);
  auto *label = GTK_LABEL(helper.reason_label);
  gtk_label_set_line_wrap(label, TRUE);
  gtk_label_set_width_chars(label, L_ReasonWidth);
  gtk_label_set_max_width_chars(label, L_ReasonUsualWidth);
  gtk_label_set_yalign(label, 0.0F);
  KeepRoomForLines(helper.reason_label, L_ReasonLines);
  gtk_box_pack_start(GTK_BOX(parent), helper.reason_label, FALSE, FALSE, 0);
}

struct ActionButton {
  SpoolerAction action;
  const char *name;
  const char *title_key;
  void (*pressed)();
};

void AddButtons(GtkWidget *window, GtkWidget *parent, const char *box_name,
                const std::vector<ActionButton> &rows,
                std::map<SpoolerAction, GtkWidget *> *buttons) {
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, box_name);
  gtk_box_pack_start(GTK_BOX(parent), box, FALSE, FALSE, 0);
  for (const ActionButton &row : rows) {
    GtkWidget *button = NewButton(window, box, row.name, row.title_key, row.pressed);
    gtk_widget_set_sensitive(button, FALSE);
    buttons->emplace(row.action, button);
  }
}

void AddQueueButtons(JobsWindowHelper &helper, GtkWidget *parent) {
  AddButtons(
      helper.window, parent, "QueueHbuttonbox",
      {{SpoolerAction::StopQueue, "StopButton", "DEF_BTN_STOP_TITLE", ButtonStopQueuePressed},
       {SpoolerAction::StartQueue, "StartButton", "DEF_BTN_START_TITLE", ButtonStartQueuePressed},
       {SpoolerAction::RefuseJobs, "RefuseButton", "DEF_BTN_REFUSE_TITLE", ButtonRefusePressed},
       {SpoolerAction::AcceptJobs, "AcceptButton", "DEF_BTN_ACCEPT_TITLE", ButtonAcceptPressed},
       {SpoolerAction::PrintDocument, "TestPageButton", "DEF_BTN_TESTPAGE_TITLE",
        ButtonTestPagePressed}},
      &helper.queue_buttons);
}

void AddJobButtons(JobsWindowHelper &helper, GtkWidget *parent) {
  AddButtons(helper.window, parent, "JobHbuttonbox",
             {{SpoolerAction::CancelJob, "CancelJobButton", "DEF_BTN_CANCELJOB_TITLE",
               ButtonCancelJobPressed},
              {SpoolerAction::HoldJob, "HoldButton", "DEF_BTN_HOLD_TITLE", ButtonHoldJobPressed},
              {SpoolerAction::ReleaseJob, "ReleaseButton", "DEF_BTN_RELEASE_TITLE",
               ButtonReleaseJobPressed},
              {SpoolerAction::MoveJob, "MoveButton", "DEF_BTN_MOVE_TITLE", ButtonMoveJobPressed},
              {SpoolerAction::PrintJobAgain, "AgainButton", "DEF_BTN_AGAIN_TITLE",
               ButtonPrintAgainPressed}},
             &helper.job_buttons);
}

void AddWindowButtons(GtkWidget *window, GtkWidget *parent, GtkWidget **why) {
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "JobsHbuttonbox");
  gtk_box_pack_start(GTK_BOX(parent), box, FALSE, FALSE, 0);
  *why = NewButton(window, box, "WhyButton", "DEF_BTN_WHY_TITLE", ButtonWhyPressed);
  gtk_widget_set_sensitive(*why, FALSE);
  GtkWidget *close =
      NewButton(window, box, "CloseButton", "DEF_BTN_CLOSE_TITLE", ButtonCloseJobsPressed);
  GtkWidget *help =
      NewButton(window, box, "HelpButton", "DEF_BTN_HELP_TITLE", ButtonHelpJobsPressed);
  AddAccelerator(window, close, GDK_KEY_Escape);
  AddAccelerator(window, help, GDK_KEY_F1);
}

void AddContact(JobsWindowHelper &helper, GtkWidget *parent) {
  helper.contact_label = NewLabel(helper.window, "ContactLabel", "", nullptr);
  gtk_label_set_line_wrap(GTK_LABEL(helper.contact_label), TRUE);
  gtk_widget_set_no_show_all(helper.contact_label, TRUE);
  gtk_box_pack_start(GTK_BOX(parent), helper.contact_label, FALSE, FALSE, 0);
}

}  // namespace

GtkWidget *create_JobsWindow() {
  const LogScope log("create_JobsWindow");
  G_JobsWindow_helper = std::make_unique<JobsWindowHelper>();
  JobsWindowHelper &helper = *G_JobsWindow_helper;
  helper.window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(helper.window, helper.window, "JobsWindow");
  gtk_window_set_title(GTK_WINDOW(helper.window), G_Translate("DEF_WND_JOBS_TITLE"));
  OnDeleteEvent(helper.window, ButtonCloseJobsPressed);

  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(helper.window), StoreWidget(helper.window, box, "JobsVbox"));
  AddContact(helper, box);
  AddQueues(helper, box);
  if (IsSuperuser()) AddQueueButtons(helper, box);
  AddJobs(helper, box);
  AddReason(helper, box);
  AddJobButtons(helper, box);
  gtk_box_pack_start(GTK_BOX(box), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL), FALSE, FALSE, 0);
  AddWindowButtons(helper.window, box, &helper.why_button);
  gtk_widget_show_all(box);
  GiveAccessKeys(helper.window);
  SetOpeningSize(helper.window, L_Width, L_Height);
  gtk_widget_grab_focus(helper.jobs_list);
  ShowFocusAtOnce(helper.window);
  WatchSpooler();
  return helper.window;
}
