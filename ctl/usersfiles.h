// The option files of users: their own settings for the queues of this host.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kpx::ctl {

struct UsersFile {
  std::string user, queue, path;
};

// Those of the users' directory, by user and queue. What does not belong to the user whom its name
// tells, nor to the superuser, is left out. Nothing, told, when the directory cannot be read.
[[nodiscard]] std::optional<std::vector<UsersFile>> UsersFiles();

// What a file says, by outer key; nothing when it cannot be read.
[[nodiscard]] std::optional<std::map<std::string, std::string>> SettingsOf(const UsersFile &file);

// Writes the settings as the user's for the queue; false, told, when there is no such user here or
// the file cannot be written.
[[nodiscard]] bool WriteUsersFile(const std::string &user, const std::string &queue,
                                  const std::map<std::string, std::string> &settings);

}  // namespace kpx::ctl
