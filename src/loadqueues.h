// The queues at a start: list, spooler, and a save that was interrupted.
#pragma once

#include "clist.h"

// Fills G_Queues, which has its path, and takes the snapshot G_OrgQueues. What is wrong with the
// queues is reported to `messages`.
//
// The administration program, which must hold the administrators' lock, gets the queues of an
// unfinished save as that save was to leave them, and the names that it still has to remove in
// G_UnfinishedRemovals, which is null otherwise. It compares the queues with the spooler and
// removes what killed administration programs left on the disk. Every other program gets the queues
// of the list that the spooler has.
void LoadQueuesAtStart(CList *messages);
