// The System V spooler: which queues it has, which of them are ours, and how they go.
#pragma once

#include <string>

#include "clist.h"

// The line of an interface script by which a queue is known as ours.
inline constexpr char kMarkerLine[] = "# the following lines are inserted by KPXadmin";

// The interface script of the queue `name`.
std::string InterfacePath(const std::string &name);

// The names of all spooler queues (CString), the last directory entry first; copies of ours are
// put at the head of `our_names`, which may be null. Null when there is no spooler (silently) or
// its directory cannot be read (reported to `errors`).
Owned<CList> GetQueueNamesSysV(CList *our_names, CList *errors);

// 1 when the queue's interface script holds the marker line; 0 when not, when there is no script or
// `name` is null, and, reported to `errors`, when the script cannot be read.
int OurQueueExistsSysV(const char *name, CList *errors);

// Drops from G_Queues_hash every queue that is not ours in the spooler: silently when its script is
// gone, with a report to `errors` when the script has lost the marker or cannot be read. 1.
int RemoveInexistentSystemVQueues(CList *errors);

// Removes the queue from the spooler: 1; 0, reported to `errors`, when the spooler refuses.
int DeleteQueueSysV(const char *name, CList *errors);

// Removes those of `names` (CString) that are ours from the spooler and their users' option files
// from the disk. A queue that the spooler keeps comes back into G_Queues_hash as it was at start.
// 1 when all removals succeeded; 0 after a failure and for a null list.
int DeleteQueuesSysV(const CList *names, CList *errors);
