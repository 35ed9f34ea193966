#include "jobrows.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <utility>

#include "cmessages.h"
#include "jobstates.h"
#include "textencoding.h"

namespace {

constexpr size_t L_ATurn = 200;  // rows that a turn changes, so that it stays short

bool IsNamed(const SpoolerQueue &queue, const std::string &name) { return queue.name < name; }

// As strftime(3) has it; empty for no time.
std::string TimeAs(const char *format, std::time_t when) {
  std::tm then = {};
  if (when <= 0 || localtime_r(&when, &then) == nullptr) return "";
  std::array<char, 128> text = {};
  const size_t length = std::strftime(text.data(), text.size(), format, &then);
  return DisplayText({text.data(), length});
}

}  // namespace

const SpoolerQueue *QueueRows::Find(const std::string &name) const {
  const auto found = std::lower_bound(queues_.begin(), queues_.end(), name, IsNamed);
  return found != queues_.end() && found->name == name ? &*found : nullptr;
}

void QueueRows::Take(const std::vector<SpoolerQueue> &queues, const RowObserver &observer) {
  size_t row = 0;
  const auto here = [this](size_t at) { return queues_.begin() + static_cast<std::ptrdiff_t>(at); };
  for (const SpoolerQueue &queue : queues) {
    while (row < queues_.size() && queues_[row].name < queue.name) {
      queues_.erase(here(row));
      observer.removed(static_cast<int>(row));
    }
    if (row == queues_.size() || queues_[row].name != queue.name) {
      queues_.insert(here(row), queue);
      observer.inserted(static_cast<int>(row));
    } else if (queues_[row] != queue) {
      queues_[row] = queue;
      observer.changed(static_cast<int>(row));
    }
    ++row;
  }
  while (queues_.size() > row) {
    queues_.pop_back();
    observer.removed(static_cast<int>(queues_.size()));
  }
}

size_t JobRows::PlaceOf(int number) const {
  const auto place = std::lower_bound(jobs_.begin(), jobs_.end(), number,
                                      [](const SpoolerJob &job, int n) { return job.number < n; });
  return static_cast<size_t>(place - jobs_.begin());
}

void JobRows::Note(std::vector<SpoolerJob> jobs, const std::vector<int> &gone) {
  std::move(jobs.begin(), jobs.end(), std::back_inserter(noted_));
  gone_.insert(gone_.end(), gone.begin(), gone.end());
  if (gone.empty()) return;
  const std::set<int> numbers(gone.begin(), gone.end());
  noted_.erase(noted_.begin(), noted_.begin() + static_cast<std::ptrdiff_t>(taken_));
  taken_ = 0;
  std::erase_if(noted_, [&](const SpoolerJob &job) { return numbers.contains(job.number); });
}

bool JobRows::CanReplace() const { return jobs_.empty() && taken_ == 0 && gone_.empty(); }

void JobRows::Replace() {
  std::stable_sort(noted_.begin(), noted_.end(),
                   [](const SpoolerJob &a, const SpoolerJob &b) { return a.number < b.number; });
  // Of a job that came twice the last counts.
  const auto unique =
      std::unique(noted_.rbegin(), noted_.rend(),
                  [](const SpoolerJob &a, const SpoolerJob &b) { return a.number == b.number; });
  noted_.erase(noted_.begin(), unique.base());
  const auto newest = noted_.end() - static_cast<std::ptrdiff_t>(std::min(noted_.size(), L_ATurn));
  jobs_.assign(std::make_move_iterator(newest), std::make_move_iterator(noted_.end()));
  noted_.erase(newest, noted_.end());
}

void JobRows::Put(SpoolerJob job, const RowObserver &observer) {
  const size_t place = PlaceOf(job.number);
  if (place < jobs_.size() && jobs_[place].number == job.number) {
    jobs_[place] = std::move(job);
    observer.changed(RowOfPlace(place));
    return;
  }
  jobs_.insert(jobs_.begin() + static_cast<std::ptrdiff_t>(place), std::move(job));
  observer.inserted(RowOfPlace(place));
}

void JobRows::Remove(int number, const RowObserver &observer) {
  const size_t place = PlaceOf(number);
  if (place == jobs_.size() || jobs_[place].number != number) return;
  const int row = RowOfPlace(place);
  jobs_.erase(jobs_.begin() + static_cast<std::ptrdiff_t>(place));
  observer.removed(row);
}

bool JobRows::TakeSome(const RowObserver &observer) {
  size_t left = L_ATurn;
  for (; !gone_.empty() && left > 0; --left) {
    Remove(gone_.back(), observer);
    gone_.pop_back();
  }
  for (; taken_ < noted_.size() && left > 0; --left) Put(std::move(noted_[taken_++]), observer);
  if (taken_ == noted_.size()) {
    noted_.clear();
    taken_ = 0;
  }
  return HasMore();
}

bool Fits(SpoolerAction action, const SpoolerQueue &queue) {
  switch (action) {
    case SpoolerAction::StopQueue:
      return queue.state != QueueState::Stopped;
    case SpoolerAction::StartQueue:
      return queue.state == QueueState::Stopped;
    case SpoolerAction::RefuseJobs:
      return queue.accepts;
    case SpoolerAction::AcceptJobs:
      return !queue.accepts;
    case SpoolerAction::PrintDocument:
      return queue.accepts;
    default:
      return false;
  }
}

bool Fits(SpoolerAction action, const SpoolerJob &job) {
  switch (action) {
    case SpoolerAction::CancelJob:
    case SpoolerAction::MoveJob:
      return IsAlive(job);
    case SpoolerAction::HoldJob:
      return IsAlive(job) && job.state != JobState::Held;
    case SpoolerAction::ReleaseJob:
      return job.state == JobState::Held;
    case SpoolerAction::PrintJobAgain:
      return !IsAlive(job);
    default:
      return false;
  }
}

std::string QuestionBefore(SpoolerAction action, const std::vector<SpoolerJob> &jobs) {
  if (action == SpoolerAction::CancelJob) {
    return jobs.size() == 1 ? G_Message("ASK_CANCEL_JOB", {jobs[0].title})
                            : G_Message("ASK_CANCEL_JOBS", {static_cast<long>(jobs.size())});
  }
  const bool prints = action == SpoolerAction::ReleaseJob || action == SpoolerAction::MoveJob;
  const bool twice = prints && std::any_of(jobs.begin(), jobs.end(), MayHaveBeenPrinted);
  return twice ? G_Translate("ASK_PRINT_TWICE") : "";
}

std::string QuestionBefore(SpoolerAction action, const std::vector<SpoolerQueue> &queues) {
  const bool one = queues.size() == 1;
  const long count = static_cast<long>(queues.size());
  if (action == SpoolerAction::StopQueue) {
    return one ? G_Message("ASK_STOP_QUEUE", {queues[0].name})
               : G_Message("ASK_STOP_QUEUES", {count});
  }
  if (action == SpoolerAction::RefuseJobs) {
    return one ? G_Message("ASK_REFUSE_QUEUE", {queues[0].name})
               : G_Message("ASK_REFUSE_QUEUES", {count});
  }
  return "";
}

void ReportTaskFailure(const SpoolerTaskResult &result, CList *errors) {
  const SpoolerTask &task = result.task;
  const std::string object = task.queue + (task.job == 0 ? "" : "-" + std::to_string(task.job));
  if (result.words.empty()) {
    G_Report(errors, "ERR_TASK", {object});
  } else {
    G_Report(errors, "ERR_TASK_WORDS", {object, PlainText(result.words)});
  }
}

std::string TimeText(std::time_t when) {
  const std::time_t now = std::time(nullptr);
  std::tm then = {};
  std::tm today = {};
  if (localtime_r(&when, &then) == nullptr || localtime_r(&now, &today) == nullptr) return "";
  const bool same_day = then.tm_yday == today.tm_yday && then.tm_year == today.tm_year;
  return TimeAs(same_day ? "%R" : "%x %R", when);
}

std::string DayAndTimeText(std::time_t when) { return TimeAs("%x %R", when); }
