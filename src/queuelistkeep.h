// What keeps the queue list safe while it is saved: one administrator at a time, and a copy of the
// list ("<list>.save") from before it is emptied until everything is written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "clist.h"
#include "cprintqueues.h"

// The file that the administrators' lock is on.
std::string QueueListLockPath(const std::string &list_path);

// Takes the administrators' lock beside the list file, which the kernel releases when the process
// ends: 1; 0 when another process holds it; 1 also where no lock file can be made (the directory is
// read-only, so nothing can be saved either).
[[nodiscard]] int LockQueueList(const char *list_path);

// The place of the kept copy.
std::string KeptQueueListPath(const std::string &list_path);

// Writes the list file's content to the kept copy, with the list's owner and mode, flushed to disk
// before it is renamed into place. A kept copy that a start would still need is left as it is. 1,
// also when there is no list; 0, reported to `errors`, when it cannot be written, or is needed and
// cannot be read.
[[nodiscard]] int KeepQueueList(const std::string &list_path, CList *errors);

// Removes the kept copy. One that cannot be removed is logged; the next save writes it anew.
void DropKeptQueueList(const std::string &list_path);

// True when the text of a list is complete: its last line is whole, and what comes last beside
// comments and empty lines, if anything does, is the end of a queue.
[[nodiscard]] bool IsWholeQueueList(std::string_view text);

// The text of the last list that was whole: the list file's, or else the kept copy's; nothing when
// neither can be had.
[[nodiscard]] std::optional<std::string> ReadLastQueueList(const std::string &list_path);

// Fills the collection as fFillFromPaf_Function_ does, from the kept copy when the last save did
// not end, or still goes on, and there is no whole list. `messages` (may be null) get a line about
// that, with `create` 1 only, and of a kept copy that is there and cannot be read.
[[nodiscard]] int LoadQueueList(CPrintQueues *collection, int create, CList *messages);
