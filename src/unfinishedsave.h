// What a save intends, kept beside the list ("<list>.next") from before it changes anything until
// everything is written, so that an interrupted save can be finished (D-save-2).
//
// The file is the list as it is to be, in the form of the list, and after it, in lines that the
// readers of lists skip, one "##remove NAME" for each queue that is to leave the spooler and
// "##complete" at the end.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clist.h"
#include "cprintqueues.h"

// The place of the intention.
std::string IntentionPath(const std::string &list_path);

// The text of an intention: `queues` are to be there and the `removed` (CString, may be null) not.
std::string IntentionText(const CHash *queues, const CList *removed);

// The names that an intention's text removes; nothing when it is not whole.
[[nodiscard]] std::optional<std::vector<std::string>> RemovalsOf(std::string_view intention);

// Writes the intention, with the list's owner and mode, flushed to the disk: true; false, reported
// to `errors`, when it cannot be written. Then an older one is still there.
[[nodiscard]] bool KeepIntention(const std::string &list_path, const CHash *queues,
                                 const CList *removed, CList *errors);

// Removes the intention.
void DropIntention(const std::string &list_path);

// Fills the collection with the queues of the intention beside its list, says so to `messages`, and
// returns the names to remove (CString, not null): an interrupted save is to be finished. Null,
// with the collection as it was, when there is none or it cannot be used, which `messages` get a
// line about.
[[nodiscard]] Owned<CList> LoadIntention(CPrintQueues *collection, CList *messages);
