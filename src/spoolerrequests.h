// What the program asks the print service for, as IPP requests. Each waits for the answer.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ippclient.h"
#include "spoolerstate.h"

// All queues by name; nothing without an answer.
[[nodiscard]] std::optional<std::vector<SpoolerQueue>> AskForQueues(IppClient &client);
// Tells of all jobs, or of the user's own, in parts, which `take` may end by false: that of the
// newest comes first, then the others, the oldest first. False without an answer.
using JobsTaker = std::function<bool(std::vector<SpoolerJob> jobs)>;
[[nodiscard]] bool AskForJobs(IppClient &client, bool own, const JobsTaker &take);
// Appends that job to `found` if there is one. False without an answer.
[[nodiscard]] bool AskForJob(IppClient &client, int number, std::vector<SpoolerJob> *found);

// The device of every queue of the spooler bridge, whose backend knows a queue by its name.
inline constexpr char kBridgeDevice[] = "kpxlp:/interface";
// The devices of all queues by the queues' names; nothing, with `*words`, when the service does not
// say.
[[nodiscard]] std::optional<std::map<std::string, std::string>> AskForDevices(IppClient &client,
                                                                              std::string *words);

// Has the service keep the events of its queues and jobs from now on: the subscription's number, 0
// when it does not.
[[nodiscard]] int Subscribe(IppClient &client);
// Gives the subscription up; one that nobody gives up ends by itself after some minutes.
void Unsubscribe(IppClient &client, int subscription);

struct SpoolerEvents {
  bool lost = false;      // there is no such subscription any more
  bool any = false;       // something happened
  int last = 0;           // the number of the last event
  std::vector<int> jobs;  // that they are about
};
// The events from that number on; nothing without an answer.
[[nodiscard]] std::optional<SpoolerEvents> AskForEvents(IppClient &client, int subscription,
                                                        int first);

[[nodiscard]] IppAnswer DoSpoolerTask(IppClient &client, const SpoolerTask &task);
