// Bringing the spooler in line with the working set of queues.
#pragma once

#include <string>
#include <vector>

#include "clist.h"
#include "command.h"
#include "porting.h"

// The commands that make a spooler queue, in order. When the first fails there is no queue.
std::vector<SpoolerCommand> CreateQueueCommands(const std::string &name, const std::string &model);

// Makes the queue in the spooler from the interface of `model`: 1 once it exists; 0 when the first
// command fails or the name cannot be part of a command. Every failed command is reported to
// `errors`. The `observer` is told of each command.
[[nodiscard]] int AddQueueSysV(const char *name, const char *model, CList *errors,
                               const QueueObserver &observer = {});

// Makes every queue of G_Queues_hash that the spooler does not have as ours, or that is marked as
// incomplete, and puts the queue's
// address into the script of those that it has, when the script sets another one or the address is
// not that of the start. A queue that cannot be made is taken out of G_Queues_hash. Nothing is run
// for a queue whose script cannot be read. 1 when nothing failed; 0 otherwise, reported to
// `errors`. A failed change of an address leaves the result and takes the queue's address back.
[[nodiscard]] int AddQueuesSysV(CList *errors, const QueueObserver &observer = {});
