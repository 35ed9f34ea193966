// What the print service says about its queues and jobs: plain values, without words of ours.
#pragma once

#include <ctime>
#include <string>
#include <vector>

// The numbers are those of IPP.
enum class QueueState { Idle = 3, Printing = 4, Stopped = 5 };
enum class JobState {
  Waiting = 3,
  Held = 4,
  Printing = 5,
  Stopped = 6,
  Cancelled = 7,
  Failed = 8,
  Printed = 9,
};

struct SpoolerQueue {
  std::string name;
  QueueState state = QueueState::Idle;
  bool accepts = true;
  bool is_default = false;  // for jobs that name no queue
  int waiting = 0;          // jobs that have not ended
  std::string words;        // the service's last words about it
  std::string reasons;      // keywords, with blanks between
  std::string location;     // may be empty, as the next
  std::string description;

  bool operator==(const SpoolerQueue &) const = default;
};

struct SpoolerJob {
  int number = 0;
  std::string queue;
  std::string title;
  std::string user;
  JobState state = JobState::Waiting;
  std::string words;  // the last words about it
  int kilobytes = 0;
  int pages = 0;          // printed so far; 0 when the printer does not tell
  std::time_t since = 0;  // when it came

  bool operator==(const SpoolerJob &) const = default;
};

// True for a job that still waits, is held or prints.
[[nodiscard]] constexpr bool IsAlive(const SpoolerJob &job) {
  return job.state < JobState::Cancelled;
}

// What can be asked for.
enum class SpoolerAction {
  CancelJob,
  HoldJob,
  ReleaseJob,
  MoveJob,        // to the queue `target`
  PrintJobAgain,  // of a job that has ended
  StopQueue,
  StartQueue,
  RefuseJobs,
  AcceptJobs,
  PrintDocument,  // `target` is its data, on the queue; `title` the job's name
};
struct SpoolerTask {
  SpoolerAction action;
  std::string queue;   // of an action on a queue
  int job = 0;         // of an action on a job
  std::string target;  // see above
  std::string title;
};

// How a task ended.
struct SpoolerTaskResult {
  SpoolerTask task;
  bool done = false;
  std::string words;  // of the service that has refused it; may be empty
};

// How the print service is doing.
enum class SpoolerContact {
  Asking,     // not known yet
  Answering,  // what is shown is right
  Silent,     // it has been asked and does not answer
  Gone,       // it cannot be reached
  NoLibrary,  // this host lacks what it is spoken to with
};
