#include "printsettings.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "cmessages.h"
#include "cselection.h"
#include "debug.h"
#include "deffile.h"
#include "globals.h"
#include "ignoreresult.h"
#include "paths.h"
#include "requestfile.h"
#include "settingkeys.h"
#include "spooljobs.h"
#include "textencoding.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"
#include "waitingsettings.h"

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

// What the files to print are called, for the printer: each by its own name, standard input as the
// window has it.
std::string FileNameLines() {
  std::string lines;
  if (fGetCount_CList_Function(G_FilesList.get()) > kMostNamedFiles) return lines;
  for (const CSelection *file : Elements<CSelection>(G_FilesList.get())) {
    const char *text = fGet_CSelection_Value_Function(file);
    const std::string path = text == nullptr ? "" : text;
    const std::string name = path == G_StdinFileName && !path.empty()
                                 ? G_Translate("MSG3")
                                 : PlainText(path.substr(path.rfind('/') + 1));
    AppendTextLine(lines, std::string(kFileNameLine) + name);
  }
  return lines;
}

// Why the file at `path` (none for a user without a name) could not be written, and what to do.
void ReportObstacle(const std::optional<std::string> &path, int error, CList *errors) {
  struct stat status = {};
  const bool is_there = path && lstat(path->c_str(), &status) == 0;
  // A directory in the place of the file, or something else in the place of the directory.
  const bool is_wrong =
      error == EISDIR || error == ENOTDIR || error == EEXIST || error == ENOTEMPTY;
  if (is_there && status.st_uid != geteuid()) {
    G_Report(errors, "ERR_SETTINGS_FOREIGN", {*path, UserNameOf(status.st_uid)});
  } else if (is_there && is_wrong) {
    G_Report(errors, "ERR_SETTINGS_IN_THE_WAY", {*path});
  } else {
    G_Report(errors, "ERR_SETTINGS_REASON", {DecodeLine(std::strerror(error))});
  }
}

// The unfinished option files of the calling user, whose name is `login`.
std::vector<std::string> OwnLeftovers(const std::string &login) {
  std::vector<std::string> leftovers;
  const Owned<CList> names = GetFilesFromDir(kUsersDir);
  for (const CString *element : Elements<CString>(names.get())) {
    const std::string name = fGet_CString_Value_Function(element);
    struct stat status = {};
    // A queue's name has no dot: no finished file has such a name.
    if (name.starts_with(login + ":") && IsLeftoverName(name, kDefExtension) &&
        lstat(UserDefFilePath(name).c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_uid == geteuid()) {
      leftovers.push_back(name);
    }
  }
  return leftovers;
}

}  // namespace

PrintSettings::~PrintSettings() {
  if (!unsent_.empty()) IgnoreResult(own_.Remove(unsent_), "the next start removes it");
}

bool PrintSettings::Store(const std::string &name, const CPrintQueue *queue, CList *errors) {
  const LogScope log("PrintSettings::Store");
  // The copy comes first: a job that is not sent leaves the option file as it was.
  return StoreCopy(name, queue, errors) && StoreFile(name, queue, errors);
}

bool PrintSettings::StoreCopy(const std::string &name, const CPrintQueue *queue, CList *errors) {
  if (queue == nullptr) return true;
  own_ = WaitingDirectory::MakeOwn();
  int error = own_.Error();
  if (own_.IsOpen()) {
    IgnoreResult(own_.Lock(true), "a file system without locks keeps nobody from printing");
    unsent_ = WriteUnsentCopy(own_, UserDefFileText(queue) + FileNameLines());
    error = errno;
  }
  if (!unsent_.empty()) return true;
  // Without a copy a later print of the user's would change this job.
  G_Report(nullptr, "ERR_UNABLE_TO_WRITE_FILE", {own_.Path()});
  if (SettingsOf(queue->Options.get()) == SettingsInForce(name, std::nullopt)) return true;
  G_Report(errors, "ERR_SETTINGS_LOST", {name, own_.Path()});
  ReportObstacle(own_.Path(), error, errors);
  return false;
}

bool PrintSettings::StoreFile(const std::string &name, const CPrintQueue *queue, CList *errors) {
  if (fWriteDefFile_Function(queue, 0) == 1) return true;
  const int error = errno;
  const std::optional<std::string> path =
      CallersDefFilePath(fGet_CString_Value_Function(fGet_DefFile_Function(queue)));
  if (SettingsOf(fGet_Options_Function(queue)) == SettingsInForce(name, path)) return true;
  G_Report(errors, "ERR_SETTINGS_LOST", {name, path.value_or(kUsersDir)});
  ReportObstacle(path, error, errors);
  return false;
}

void PrintSettings::Sent(const std::string &name, const std::string &output) {
  const LogScope log("PrintSettings::Sent");
  if (unsent_.empty()) return;
  const std::string request = RequestIn(output, name);
  if (!request.empty() && own_.Rename(unsent_, request)) {
    unsent_.clear();
    return;
  }
  Log(3, "No request id for the copy of the settings in: " + output);
  if (!output.empty()) G_Report(nullptr, "WARN_SETTINGS_SHARED", {name});
}

void TidyUsersFiles() {
  const LogScope log("TidyUsersFiles");
  const char *name = GetUserName(nullptr);
  if (name == nullptr) return;
  const std::string login = name;
  const std::vector<std::string> leftovers = OwnLeftovers(login);
  // Without the directory nobody is at work; it is made for its lock.
  const WaitingDirectory own =
      leftovers.empty() ? WaitingDirectory::Of(login) : WaitingDirectory::MakeOwn();
  if (!own.IsOpen() || !own.Lock(false)) return;
  for (const std::string &leftover : leftovers) unlink(UserDefFilePath(leftover).c_str());
  RemoveUnsentCopies(own);
  if (!HasJobCopies(own)) return;
  const std::optional<std::set<std::string>> waiting = WaitingRequests();
  if (!waiting) return;
  RemoveJobCopies(own, [&](const std::string &request) { return !waiting->contains(request); });
}
