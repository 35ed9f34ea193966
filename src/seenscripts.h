// Interface scripts that one change of the queues looks at more than once.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// While one lives, ReadScript takes the text of a script that is still the same file from memory.
class SeenScripts {
 public:
  // `settled_seconds`: how long a script must have stood unchanged for that. The times of files go
  // in steps, so that those of one that has just changed do not tell whether it changes again.
  explicit SeenScripts(int settled_seconds = 3);
  ~SeenScripts();
  SeenScripts(const SeenScripts &) = delete;
  SeenScripts &operator=(const SeenScripts &) = delete;
};

// As ReadRegularFile. What stands in front of `mark`, which scripts of one model have in common, is
// kept once for all of them.
[[nodiscard]] std::optional<std::string> ReadScript(const std::string &path, std::string_view mark,
                                                    bool *is_file);
