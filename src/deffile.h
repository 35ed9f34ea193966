// The option files: "key=value" lines, one file a queue and one a queue and user.
#pragma once

#include <string>
#include <string_view>

#include "cprintqueue.h"

// The lines of the user's file: the options.
std::string UserDefFileText(const CPrintQueue *queue);

// The lines of the queue's own file: options, installable features, custom papers, custom medias.
std::string QueueDefFileText(const CPrintQueue *queue);

// Puts every "key=value" line of `text` into `options`. Comments ("##"), empty lines and lines
// without key or "=" are skipped; a value ends at a second "=". "*Booklet" and "*Nup" put each
// other out.
void OverlayDefFile(std::string_view text, CHash *options);

// The queue's own option file (bare name) and the user's ("<user>:<queue>.def").
std::string QueueDefFilePath(const std::string &def_file);
std::string UserDefFilePath(const std::string &user_def_file);
