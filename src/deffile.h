// The option files: "key=value" lines, one file a queue and one a queue and user.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cprintqueue.h"

// What the names of option files end in.
inline constexpr char kDefExtension[] = ".def";

// The lines of the user's file: the options.
std::string UserDefFileText(const CPrintQueue *queue);

// The lines of the queue's own file: options, installable features, custom papers, custom medias.
std::string QueueDefFileText(const CPrintQueue *queue);

// Writes the own option file of every queue of `queues`, durably, each in one step over the old
// one: true; false, reported to `errors` (may be null) unless it is `quiet`, when one could not be
// written or a record has no DefFile.
[[nodiscard]] bool WriteQueueDefFiles(const CHash *queues, CList *errors, bool quiet = false);

// Puts every "key=value" line of `text` into `options`. Comments ("##"), empty lines and lines
// without key or "=" are skipped; a value ends at a second "=". "*Booklet" and "*Nup" put each
// other out.
void OverlayDefFile(std::string_view text, CHash *options);

// The queue's own option file (bare name) and the user's ("<user>:<queue>.def").
std::string QueueDefFilePath(const std::string &def_file);
std::string UserDefFilePath(const std::string &user_def_file);

// The calling user's file for a queue; nothing when `def_file` is null or the user has no name.
[[nodiscard]] std::optional<std::string> CallersDefFilePath(const char *def_file);
