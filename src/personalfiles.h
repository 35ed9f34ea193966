// The small files that a user keeps for the programs: in the directory "kpx" of $XDG_CONFIG_HOME
// or, without that, of ".config" in $HOME. Where that belongs to somebody else, as it may after a
// change of user, there are none.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The file `name` (which may be in a sub-directory) of the effective user; nothing when there is
// none or it belongs to somebody else.
[[nodiscard]] std::optional<std::string> ReadPersonalFile(const std::string &name);

// Writes it in one step, for nobody else to read, and makes the directories that it needs. False,
// with errno, when that failed.
[[nodiscard]] bool WritePersonalFile(const std::string &name, std::string_view text);

// Removes it. False, with errno, when that failed; true where there is none.
[[nodiscard]] bool RemovePersonalFile(const std::string &name);

// The names of the files of the sub-directory `directory`, sorted.
std::vector<std::string> PersonalFilesIn(const std::string &directory);
