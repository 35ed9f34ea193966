// The files of a queue: its interface script, and its entry among the printers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kpx::spooler {

std::string ScriptOf(const std::string &queue);
std::string EntryOf(const std::string &queue);

// Whether something is there.
[[nodiscard]] bool HasScript(const std::string &queue);
[[nodiscard]] bool HasEntry(const std::string &queue);

// The names of what is among the entries, without those that begin with ".", sorted; nothing when
// that cannot be read.
std::vector<std::string> NamesOfEntries();

// Whether a regular file is there, or a link to one.
[[nodiscard]] bool IsFile(const std::string &path);

// A new queue's script and entry, complete and on the disk before they are at their places: then
// two renames are left to do. What is not at its place goes with this record, and with a signal
// that ends the process. Nobody else may be at work.
class NewParts {
 public:
  explicit NewParts(const std::string &queue);
  ~NewParts();
  NewParts(const NewParts &) = delete;
  NewParts &operator=(const NewParts &) = delete;

  // False when they cannot be written.
  [[nodiscard]] bool Write(std::string_view script, const std::string &model) const;
  // False when the disk did not take them.
  [[nodiscard]] bool Flush() const;
  // Puts them in place, durably.
  [[nodiscard]] bool Install();

 private:
  std::string queue_;
};

// Removes both files of the queue, the script last: as long as it is there KPXadmin still knows the
// queue, and can have the rest removed. False when one of them stays.
[[nodiscard]] bool RemoveParts(const std::string &queue);

// Makes durable what was removed or renamed in both directories; false when the disk did not take
// it.
[[nodiscard]] bool FlushDirectories();

// Removes what commands that were killed have left. Nobody else may be at work; no queue's name
// begins with ".".
void RemoveLeftovers();

}  // namespace kpx::spooler
