// What the administration shows of the print service's queues, beside its own list.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "spoolerstate.h"
#include "spoolerwatch.h"

class ListedQueues {
 public:
  // Takes the news over; true when a tip may be another one now.
  [[nodiscard]] bool Take(SpoolerNews news);

  // State, default mark, location and description of the queue, one a line, in the user's
  // language; empty for a queue that the service has not or has not told of.
  std::string Tip(const std::string &name) const;

  // What to ask before the Delete key takes these queues off the list; empty when they may go at
  // once: a single one without waiting jobs. A queue of which the service does not tell whether
  // jobs wait counts as one that has some, unless it is a new one.
  std::string QuestionBeforeDeletion(const std::vector<std::string> &names) const;

 private:
  std::map<std::string, SpoolerQueue> queues_;
  SpoolerContact contact_ = SpoolerContact::Asking;
};
