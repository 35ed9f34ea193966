// Writing the queue list.
#pragma once

#include <string>

#include "cprintqueue.h"

// The four comment lines at the top of a queue list.
std::string QueueListHeader();

// The whole list: header and every complete queue of `queues` in key order. `left_out` counts the
// queues that lack a member: their entries would make the list unreadable.
std::string QueueListText(const CHash *queues, int *left_out);

// Write the header alone, or the list of `queues`, over the file `path`: true; false, reported to
// `errors` (may be null), when it does not hold all of it.
[[nodiscard]] bool WriteHeader(const char *path, CList *errors = nullptr);
[[nodiscard]] bool WriteQueueList(const char *path, const CHash *queues, CList *errors = nullptr);
