#include "usersfiles.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <tuple>

#include "cmessages.h"
#include "deffile.h"
#include "output.h"
#include "paths.h"
#include "queueform.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"

namespace kpx::ctl {

namespace {

constexpr mode_t kMode = 0640;

std::optional<uid_t> UserId(const std::string &user) {
  const passwd *entry = getpwnam(user.c_str());
  return entry == nullptr ? std::nullopt : std::optional(entry->pw_uid);
}

// Whether the file is what its name says.
bool IsUsersOwn(const UsersFile &file) {
  struct stat status = {};
  if (lstat(file.path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const std::optional<uid_t> user = UserId(file.user);
  return status.st_uid == 0 || (user && status.st_uid == *user);
}

}  // namespace

std::optional<std::vector<UsersFile>> UsersFiles() {
  std::vector<UsersFile> files;
  const Owned<CList> names = GetFilesFromDir(kUsersDir);
  if (names == nullptr && access(kUsersDir, F_OK) == 0) {
    Complain(G_Message("ERR_UNABLE_TO_READ_DIR", {kUsersDir}));
    return std::nullopt;
  }
  for (const CString *entry : Elements<CString>(names.get())) {
    const std::string name(entry->value.View());
    const size_t colon = name.find(':');
    if (colon == std::string::npos || colon == 0 || !name.ends_with(kDefExtension)) continue;
    const size_t end = name.size() - (sizeof kDefExtension - 1);
    UsersFile file{name.substr(0, colon), name.substr(colon + 1, end - colon - 1),
                   UserDefFilePath(name)};
    if (IsUsersOwn(file)) files.push_back(std::move(file));
  }
  std::sort(files.begin(), files.end(), [](const UsersFile &one, const UsersFile &two) {
    return std::tie(one.user, one.queue) < std::tie(two.user, two.queue);
  });
  return files;
}

std::optional<std::map<std::string, std::string>> SettingsOf(const UsersFile &file) {
  bool is_file = false;
  const std::optional<std::string> text = ReadRegularFile(file.path, &is_file);
  if (!text) return std::nullopt;
  std::map<std::string, std::string> settings;
  for (const KeyValue &setting : KeyValuesOf(*text)) {
    settings[OuterKey(setting.key)] = setting.value;
  }
  return settings;
}

bool WriteUsersFile(const std::string &user, const std::string &queue,
                    const std::map<std::string, std::string> &settings) {
  const std::optional<uid_t> id = UserId(user);
  if (!id) {
    Complain(G_Message("CTL_USER_UNKNOWN", {user}));
    return false;
  }
  std::string text;
  for (const auto &[key, value] : settings) AppendTextLine(text, "*" + key + "=" + value);
  const std::string path = UserDefFilePath(UserDefFileName(user, queue + kDefExtension));
  const bool written = ReplaceFileDurably(path, text, FileAccess{.mode = kMode}) &&
                       lchown(path.c_str(), *id, static_cast<gid_t>(-1)) == 0;
  if (!written) Complain(G_Message("ERR_UNABLE_TO_WRITE_FILE", {path}));
  return written;
}

}  // namespace kpx::ctl
