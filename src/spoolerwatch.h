// Watches the print service from a thread of its own, and does there what its jobs and queues are
// asked for: whoever looks at the result never waits for the service.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "spoolerstate.h"

// What to look at.
enum class WatchScope {
  Queues,   // the queues alone
  OwnJobs,  // and the jobs of the user who runs the program
  AllJobs,
};

// What has changed since the last news.
struct SpoolerNews {
  SpoolerContact contact = SpoolerContact::Asking;
  std::optional<std::vector<SpoolerQueue>> queues;  // all of them, by name; nothing when unchanged
  std::vector<SpoolerJob> jobs;                     // new or changed ones, the newest first
  std::vector<int> gone_jobs;                       // their numbers
  std::vector<SpoolerTaskResult> results;
};

class WatchThread;

class SpoolerWatch {
 public:
  // Starts watching.
  explicit SpoolerWatch(WatchScope scope);
  // Ends it, within half a second whatever the service does; what had not been begun is not done.
  ~SpoolerWatch();
  SpoolerWatch(const SpoolerWatch &) = delete;
  SpoolerWatch &operator=(const SpoolerWatch &) = delete;

  // Becomes readable when there are news. Lent.
  int Descriptor() const;
  // The news, which are then forgotten; nothing when there are none. Never waits.
  [[nodiscard]] std::optional<SpoolerNews> Take();
  // Has the tasks done, in order. Their results are news.
  void Do(std::vector<SpoolerTask> tasks);

 private:
  std::unique_ptr<WatchThread> thread_;
};
