// The small files that a user keeps for the programs: in the directory "kpx" of $XDG_CONFIG_HOME
// or, without that, of ".config" in $HOME. Where that belongs to somebody else, as it may after a
// change of user, there are none.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "openfile.h"

// The file `name` (which may be in a sub-directory) of the effective user; nothing when there is
// none or it belongs to somebody else.
[[nodiscard]] std::optional<std::string> ReadPersonalFile(const std::string &name);

// Writes it in one step, for nobody else to read, and makes the directories that it needs. False,
// with errno, when that failed.
[[nodiscard]] bool WritePersonalFile(const std::string &name, std::string_view text);

// What ReadPersonalFile does not tell apart: there is no such file, or it cannot be read, since it
// belongs to somebody else, is a link or longer than asked for, or the disk fails.
enum class PersonalFile { Read, Missing, Unreadable };

// The file `name`, of at most `max_bytes`, into `text`, which is empty if it is not read.
[[nodiscard]] PersonalFile ReadPersonalFile(const std::string &name, size_t max_bytes,
                                            std::string *text);

// Where the file `name` is or would be; empty when there is no such place.
std::string PersonalFilePath(const std::string &name);

// WritePersonalFile, flushed to the disk: whatever ends the machine, the old text or the new one is
// there.
[[nodiscard]] bool WritePersonalFileDurably(const std::string &name, std::string_view text);

// For its lifetime no other program of the user's that asks for it too changes personal files. Not
// had, with errno, after a second of waiting or where the directory cannot be made.
class PersonalFilesLock {
 public:
  PersonalFilesLock();
  [[nodiscard]] bool IsHeld() const { return is_held_; }

 private:
  OpenFile directory_;
  bool is_held_ = false;
};

// Removes it. False, with errno, when that failed; true where there is none.
[[nodiscard]] bool RemovePersonalFile(const std::string &name);

// The names of the files of the sub-directory `directory`, sorted.
std::vector<std::string> PersonalFilesIn(const std::string &directory);
