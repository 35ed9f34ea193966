// All that a save of the administration program leaves behind, queue by queue, and bringing the
// disk and the real spooler back to an earlier state. Only inside the full sandbox.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

// The directories that a save changes, the spooler's own left out.
const std::vector<std::string> &SavePlaces();

// What lies below some directories, texts and messages' files of the installation left out.
struct DiskState {
  struct Entry {
    mode_t mode = 0;  // with the type
    uid_t user = 0;
    gid_t group = 0;
    std::string content;  // of a file; the target of a link
    bool operator==(const Entry &) const = default;
  };
  std::map<std::string, Entry> entries;  // by path; the directories themselves too
};
DiskState TakeDisk(const std::vector<std::string> &places);
// Brings the directories to that state; what did not exist then goes.
void PutDisk(const DiskState &state, const std::vector<std::string> &places);

// What belongs to one queue: name of the thing ("list", "script", "anna:q.def", "cups device-uri")
// to its value, with owner and mode where it is a file.
using QueueThings = std::map<std::string, std::string>;

// By queue. The queue "" has what belongs to none: the list's own lines and all files that do not
// bear a queue's name, such as what an interrupted save left lying.
using World = std::map<std::string, QueueThings>;
World TakeWorld();
World WorldOf(const DiskState &disk, const World &in_cups);
// What CUPS says of its queues: device, accepting, state, policy.
World CupsWorld();

// The differences, one a line, "<queue> <thing>: <got> instead of <expected>"; empty when there are
// none.
std::string Differences(const World &got, const World &expected);

// The scheduler's queues as they are in its files: taken while it stands still, put back by a new
// start.
class SchedulerState {
 public:
  static SchedulerState Taken();
  void PutBack() const;

 private:
  DiskState disk_;
};

// Ends the scheduler as a failing machine does: at once, with nothing written any more.
void KillScheduler();
void StartScheduler();
