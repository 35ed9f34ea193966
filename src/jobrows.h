// The queues and jobs that the job window lists, and what can be done with those that are selected.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "clist.h"
#include "spoolerstate.h"
#include "spoolerwatch.h"

// Told after each change of one row; rows count from 0.
struct RowObserver {
  std::function<void(int row)> inserted;
  std::function<void(int row)> removed;
  std::function<void(int row)> changed;
};

// Queues by name.
class QueueRows {
 public:
  int Count() const { return static_cast<int>(queues_.size()); }
  const SpoolerQueue &At(int row) const { return queues_[static_cast<size_t>(row)]; }
  const SpoolerQueue *Find(const std::string &name) const;  // lent until the next change

  // Makes the rows those of `queues`, which are in order.
  void Take(const std::vector<SpoolerQueue> &queues, const RowObserver &observer);

 private:
  std::vector<SpoolerQueue> queues_;
};

// Jobs, the newest first. However many come, a turn takes a few hundred.
class JobRows {
 public:
  int Count() const { return static_cast<int>(jobs_.size()); }
  const SpoolerJob &At(int row) const { return jobs_[jobs_.size() - 1 - static_cast<size_t>(row)]; }

  // Notes what is to change. The jobs are in any order; of one that comes twice the last counts,
  // and one that is gone does not come.
  void Note(std::vector<SpoolerJob> jobs, const std::vector<int> &gone);
  // True when the list is empty, so that the newest of what was noted can become its content at
  // once; what is left is noted still.
  [[nodiscard]] bool CanReplace() const;
  void Replace();
  [[nodiscard]] bool HasMore() const { return !noted_.empty() || !gone_.empty(); }
  // Does a part of what was noted; false when all is done.
  [[nodiscard]] bool TakeSome(const RowObserver &observer);

 private:
  void Put(SpoolerJob job, const RowObserver &observer);
  void Remove(int number, const RowObserver &observer);
  size_t PlaceOf(int number) const;  // in jobs_, where it is or would be
  int RowOfPlace(size_t place) const { return Count() - 1 - static_cast<int>(place); }

  std::vector<SpoolerJob> jobs_;  // the newest last, which costs least to add
  std::vector<SpoolerJob> noted_;
  size_t taken_ = 0;  // of those
  std::vector<int> gone_;
};

// Whether the action does something to the queue or job.
[[nodiscard]] bool Fits(SpoolerAction action, const SpoolerQueue &queue);
[[nodiscard]] bool Fits(SpoolerAction action, const SpoolerJob &job);

// The question to be asked before the action, empty when it can be undone. The jobs or queues are
// those that it is for.
std::string QuestionBefore(SpoolerAction action, const std::vector<SpoolerJob> &jobs);
std::string QuestionBefore(SpoolerAction action, const std::vector<SpoolerQueue> &queues);

// Reports a task that failed, on standard error and to `errors`.
void ReportTaskFailure(const SpoolerTaskResult &result, CList *errors);

// When a job came, as the user's locale writes it: the time, and the day unless it is today.
std::string TimeText(std::time_t when);
// The same, always with the day.
std::string DayAndTimeText(std::time_t when);
