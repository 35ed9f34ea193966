// What the spooler has at a start of the administration program, and the list does not say.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clist.h"
#include "cprintqueue.h"

// The command that asks the spooler bridge's spooler which queues it has.
std::string SpoolerQuestion();

// The queues of that spooler that the bridge made; nothing when the answer does not say that it is
// running.
[[nodiscard]] std::optional<std::vector<std::string>> BridgeQueuesOf(std::string_view answer);

// The record of the queue `name` as its interface script and its option file say; null when the
// script holds no whole block or names a printer that is not in G_Printers_hash.
[[nodiscard]] Owned<CPrintQueue> QueueFromScript(const char *name, const std::string &script);

// Whether the spooler's entry of the queue is one that the bridge made.
[[nodiscard]] bool HasBridgeEntry(const std::string &name);

// Asks the spooler which queues it has, without waiting for the answer. Where there are thousands
// it is asked when the answer is needed, by a request.
void AskSpooler();

// Compares the working set with the spooler, which is asked now unless that was done before.
// `removed` (CString) is what an unfinished save still has to remove; null when there is none.
//
// Queues of G_Queues_hash that the spooler has only in part are marked as incomplete, so that a
// save makes them anew: those whose script is cut, or that the spooler has lost, or whose script is
// gone while the spooler still has them. So are those of `removed` of which the spooler still has
// something. Without an unfinished save the other queues that the spooler has not are dropped
// (RemoveInexistentSystemVQueues). Queues in the spooler that are ours and in neither set come into
// G_Queues_hash. All but those of `removed` are reported to `messages`, a line a cause, and so is
// what KPXadmin left in the spooler and cannot be understood, with the command that removes it.
void CompareWithSpooler(const CList *removed, CList *messages);
