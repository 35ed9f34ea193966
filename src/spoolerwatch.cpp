#include "spoolerwatch.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "ippclient.h"
#include "spoolerrequests.h"

namespace {

using Clock = std::chrono::steady_clock;

// How often the service is asked whether something has happened, and how often for everything.
constexpr auto L_Pause = std::chrono::milliseconds(1000);
constexpr auto L_WholePause = std::chrono::seconds(60);
// The same for a service that tells of nothing by itself.
constexpr auto L_WholePauseWithoutEvents = std::chrono::seconds(3);
constexpr size_t L_FewJobs = 20;  // so many are asked for one by one

// Signals are the main thread's.
void BlockSignals() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

}  // namespace

class WatchThread {
 public:
  explicit WatchThread(WatchScope scope)
      : scope_(scope), event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread_([this] { Run(); }) {}

  ~WatchThread() {
    stop_ = true;
    {
      const std::lock_guard lock(mutex_);
      wake_ = true;
    }
    condition_.notify_one();
    thread_.join();
    close(event_);
  }
  WatchThread(const WatchThread &) = delete;
  WatchThread &operator=(const WatchThread &) = delete;

  int event() const { return event_; }

  std::optional<SpoolerNews> Take() {
    const std::lock_guard lock(mutex_);
    eventfd_t count = 0;
    eventfd_read(event_, &count);
    return std::exchange(news_, std::nullopt);
  }

  void Do(std::vector<SpoolerTask> tasks) {
    {
      const std::lock_guard lock(mutex_);
      std::move(tasks.begin(), tasks.end(), std::back_inserter(tasks_));
      wake_ = true;
    }
    condition_.notify_one();
  }

 private:
  // The news as they stand, for a change; the reader is woken.
  template <typename Change>
  void Tell(const Change &change) {
    const std::lock_guard lock(mutex_);
    if (!news_) news_.emplace().contact = contact_;
    change(*news_);
    eventfd_write(event_, 1);
  }

  void SetContact(SpoolerContact contact) {
    if (contact == contact_) return;
    contact_ = contact;
    Tell([contact](SpoolerNews &news) { news.contact = contact; });
  }

  void Run() {
    BlockSignals();
    IppClient client(stop_, [this] { SetContact(SpoolerContact::Silent); });
    if (client.cups() == nullptr) {
      SetContact(SpoolerContact::NoLibrary);
      return;
    }
    while (!stop_) {
      DoTasks(client);
      if (!stop_) Look(client);
      std::unique_lock lock(mutex_);
      condition_.wait_for(lock, L_Pause, [this] { return wake_; });
      wake_ = false;
    }
    if (subscription_ != 0) Unsubscribe(client, subscription_);
  }

  void DoTasks(IppClient &client) {
    for (;;) {
      SpoolerTask task;
      {
        const std::lock_guard lock(mutex_);
        if (tasks_.empty() || stop_) return;
        task = std::move(tasks_.front());
        tasks_.erase(tasks_.begin());
      }
      const IppAnswer answer = DoSpoolerTask(client, task);
      const bool done = answer.kind == IppAnswer::Kind::Done;
      whole_needed_ = whole_needed_ || scope_ == WatchScope::Queues;
      if (task.job != 0) touched_.push_back(task.job);
      Tell([&](SpoolerNews &news) {
        news.results.push_back({std::move(task), done, answer.words});
      });
      queues_needed_ = true;
    }
  }

  void Look(IppClient &client) {
    const auto now = Clock::now();
    const auto pause = subscription_ != 0 ? Clock::duration(L_WholePause)
                                          : Clock::duration(L_WholePauseWithoutEvents);
    bool answered = true;
    if (whole_needed_ || now - last_whole_ >= pause) {
      answered = LookAtAll(client);
      whole_needed_ = !answered;
      last_whole_ = Clock::now();
    } else {
      answered = LookAtChanges(client);
    }
    if (!answered) {
      subscription_ = 0;
      whole_needed_ = true;
    }
    SetContact(answered ? SpoolerContact::Answering : SpoolerContact::Gone);
  }

  // Everything; before it, so that nothing is missed, what will tell of later changes is made.
  bool LookAtAll(IppClient &client) {
    if (subscription_ == 0 && scope_ != WatchScope::Queues) {
      subscription_ = Subscribe(client);
      last_event_ = 0;
    }
    touched_.clear();
    if (!LookAtQueues(client)) return false;
    if (scope_ == WatchScope::Queues) return true;
    return LookAtAllJobs(client);
  }

  // In parts, between which is done what somebody who sees the first of them asks for.
  bool LookAtAllJobs(IppClient &client) {
    std::set<int> gone;
    for (const auto &[number, job] : jobs_) gone.insert(number);
    const bool answered =
        AskForJobs(client, scope_ == WatchScope::OwnJobs, [&](const std::vector<SpoolerJob> &jobs) {
          for (const SpoolerJob &job : jobs) gone.erase(job.number);
          TellOfJobs(jobs, {});
          SetContact(SpoolerContact::Answering);
          DoTasks(client);
          return !stop_;
        });
    if (!answered) return false;
    if (stop_) return true;
    for (const int number : gone) jobs_.erase(number);
    TellOfJobs({}, {gone.begin(), gone.end()});
    return true;
  }

  bool LookAtQueues(IppClient &client) {
    std::optional<std::vector<SpoolerQueue>> queues = AskForQueues(client);
    if (!queues) return false;
    queues_needed_ = false;
    if (*queues == queues_ && queues_told_) return true;
    queues_ = std::move(*queues);
    queues_told_ = true;
    Tell([this](SpoolerNews &news) { news.queues = queues_; });
    return true;
  }

  // What the events say, and what was done from here.
  bool LookAtChanges(IppClient &client) {
    if (subscription_ != 0) {
      std::optional<SpoolerEvents> events = AskForEvents(client, subscription_, last_event_ + 1);
      if (!events) return false;
      if (events->lost) {
        subscription_ = 0;
        return LookAtAll(client);
      }
      last_event_ = std::max(last_event_, events->last);
      queues_needed_ = queues_needed_ || events->any;
      touched_.insert(touched_.end(), events->jobs.begin(), events->jobs.end());
    } else if (touched_.empty() && !queues_needed_) {
      return true;
    }
    if (queues_needed_ && !LookAtQueues(client)) return false;
    return LookAtTouchedJobs(client);
  }

  bool LookAtTouchedJobs(IppClient &client) {
    std::sort(touched_.begin(), touched_.end());
    touched_.erase(std::unique(touched_.begin(), touched_.end()), touched_.end());
    if (touched_.size() > L_FewJobs) return LookAtAll(client);
    std::vector<SpoolerJob> changed;
    for (const int number : touched_) {
      std::vector<SpoolerJob> found;
      if (!AskForJob(client, number, &found)) return false;
      // Somebody else's job is not this user's to see.
      if (found.empty() || (scope_ == WatchScope::OwnJobs && found[0].user != client.User())) {
        continue;
      }
      changed.push_back(std::move(found[0]));
    }
    touched_.clear();
    TellOfJobs(changed, {});
    return true;
  }

  void TellOfJobs(const std::vector<SpoolerJob> &jobs, const std::vector<int> &gone) {
    std::vector<SpoolerJob> changed;
    for (const SpoolerJob &job : jobs) {
      const auto [place, is_new] = jobs_.try_emplace(job.number, job);
      if (!is_new && place->second == job) continue;
      place->second = job;
      changed.push_back(job);
    }
    if (changed.empty() && gone.empty()) return;
    Tell([&](SpoolerNews &news) {
      std::move(changed.begin(), changed.end(), std::back_inserter(news.jobs));
      news.gone_jobs.insert(news.gone_jobs.end(), gone.begin(), gone.end());
    });
  }

  const WatchScope scope_;
  const int event_;
  std::atomic<bool> stop_ = false;

  std::mutex mutex_;  // of what follows
  std::condition_variable condition_;
  bool wake_ = false;
  std::vector<SpoolerTask> tasks_;
  std::optional<SpoolerNews> news_;

  // The thread's own.
  SpoolerContact contact_ = SpoolerContact::Asking;
  std::vector<SpoolerQueue> queues_;
  std::map<int, SpoolerJob> jobs_;
  std::vector<int> touched_;  // jobs that may have changed
  int subscription_ = 0;      // 0: the service tells of nothing by itself
  int last_event_ = 0;
  bool queues_told_ = false;
  bool queues_needed_ = true;
  bool whole_needed_ = true;
  Clock::time_point last_whole_;

  std::thread thread_;  // last: it uses all of the others
};

SpoolerWatch::SpoolerWatch(WatchScope scope) : thread_(std::make_unique<WatchThread>(scope)) {}
SpoolerWatch::~SpoolerWatch() = default;

int SpoolerWatch::Descriptor() const { return thread_->event(); }

std::optional<SpoolerNews> SpoolerWatch::Take() { return thread_->Take(); }

void SpoolerWatch::Do(std::vector<SpoolerTask> tasks) { thread_->Do(std::move(tasks)); }
