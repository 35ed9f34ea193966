// The settings that a job keeps while it waits: a copy of its user's option file as it was when the
// job was sent (requestfile.h says where).
//
// A copy gets its name a moment after the spooler has taken the job. Until then the user's option
// file holds the same settings. So a reader reads that file first, and then looks for the copy.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "waitingdirectory.h"

// Whether `request` (IsRequestName) is that of a job of `queue`.
[[nodiscard]] bool IsRequestOf(std::string_view request, std::string_view queue);

// Writes the settings of a job that is about to be sent to `own`: the name to rename when it has
// been; empty, with errno, when that failed.
[[nodiscard]] std::string WriteUnsentCopy(const WaitingDirectory &own, std::string_view settings);

// Whether there is a copy of a job that was sent.
[[nodiscard]] bool HasJobCopies(const WaitingDirectory &directory);

// Removes the copies whose request id `has_ended`.
void RemoveJobCopies(const WaitingDirectory &directory,
                     const std::function<bool(const std::string &request)> &has_ended);

// Removes the copies that were never sent. Only with the directory's lock: another program of the
// user's may just be sending one.
void RemoveUnsentCopies(const WaitingDirectory &own);

// Removes every user's copies for jobs of `queue`.
void RemoveJobCopiesOfQueue(const char *queue);
