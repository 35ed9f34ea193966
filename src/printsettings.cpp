#include "printsettings.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <optional>

#include "cmessages.h"
#include "debug.h"
#include "deffile.h"
#include "globals.h"
#include "paths.h"
#include "printcommand.h"
#include "textencoding.h"
#include "textfile.h"

namespace {

using Settings = std::map<std::string, std::string>;

// The options but for the copies, which the print command carries.
Settings SettingsOf(const CHash *options) {
  Settings settings;
  for (const auto [key, value] : Pairs<CString>(options)) {
    const char *text = fGet_CString_Value_Function(value);
    if (text != nullptr && std::string_view(key) != kCopiesKey) settings[key] = text;
  }
  return settings;
}

// What the filter takes when nothing more is stored: the queue's own settings under those of the
// user's file at `path`, when there is one that counts.
Settings SettingsInForce(const std::string &name, const std::optional<std::string> &path) {
  const auto *original = HashValue<CPrintQueue>(G_OrgQueues_hash, name.c_str());
  Owned<CHash> options = CloneOf(fGet_Options_Function(original));
  if (options == nullptr) options = CreateHash();
  const std::optional<std::string> text = path ? ReadOwnFile(*path) : std::nullopt;
  if (text) OverlayDefFile(*text, options.get());
  return SettingsOf(options.get());
}

std::string UserNameOf(uid_t user) {
  const passwd *entry = getpwuid(user);
  return entry == nullptr ? std::to_string(user) : entry->pw_name;
}

// Why the file at `path` (none for a user without a name) could not be written, and what to do.
void ReportObstacle(const std::optional<std::string> &path, int error, CList *errors) {
  struct stat status = {};
  const bool is_there = path && lstat(path->c_str(), &status) == 0;
  if (is_there && status.st_uid != geteuid()) {
    G_Report(errors, "ERR_SETTINGS_FOREIGN", {*path, UserNameOf(status.st_uid)});
  } else if (is_there && S_ISDIR(status.st_mode)) {
    G_Report(errors, "ERR_SETTINGS_IN_THE_WAY", {*path});
  } else {
    G_Report(errors, "ERR_SETTINGS_REASON", {DecodeLine(std::strerror(error))});
  }
}

}  // namespace

bool StoreSettings(const std::string &name, const CPrintQueue *queue, CList *errors) {
  const LogScope log("StoreSettings");
  if (fWriteDefFile_Function(queue, 0) == 1) return true;
  const int error = errno;
  const std::optional<std::string> path =
      CallersDefFilePath(fGet_CString_Value_Function(fGet_DefFile_Function(queue)));
  if (SettingsOf(fGet_Options_Function(queue)) == SettingsInForce(name, path)) return true;
  G_Report(errors, "ERR_SETTINGS_LOST", {name, path.value_or(kUsersDir)});
  ReportObstacle(path, error, errors);
  return false;
}
