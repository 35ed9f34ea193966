// Reading the queue list.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cprintqueue.h"
#include "textencoding.h"

// Why a queue list cannot be used.
struct QueueListError {
  int line_number;     // from 1
  std::string line;    // the line at which the fault was found
  const char *reason;  // in English, for the log
};

// Adds every queue of the list `text` to `queues` under its name (one read later replaces one of
// the same name). Nothing on success; the error of the first incomplete entry, after which no
// further queue is read. A queue that does not end is left out.
[[nodiscard]] std::optional<QueueListError> ReadQueueList(std::string_view text, CHash *queues);

// The line after an option's key, which is its value whatever it looks like; nothing at the end. A
// line that does not end in a line feed loses its last character.
[[nodiscard]] std::optional<std::string> ReadOptionValue(LineReader &lines);

// True when a line holding just `text` is read as a value: not empty, no comment and no keyword.
[[nodiscard]] bool CanStandAsListValue(std::string_view text);
