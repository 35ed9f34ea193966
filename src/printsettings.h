// The settings that a job of the print tool is printed with.
#pragma once

#include <string>

#include "cprintqueue.h"

// Stores the options of the queue `name`, whose record is `queue`, for the calling user, as they
// are when the job is sent: true. What cannot be stored is told on standard error. True also then
// when the filter would take the same settings anyway (those of G_OrgQueues_hash, under a file of
// the user's that is there; the copies go on the command). Else the job may not be sent: false,
// and `errors` says what could not be stored, why, and what to do.
[[nodiscard]] bool StoreSettings(const std::string &name, const CPrintQueue *queue, CList *errors);
