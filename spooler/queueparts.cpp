#include "queueparts.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <memory>

#include "ignoreresult.h"
#include "openfile.h"
#include "paths.h"
#include "uninterrupted.h"

namespace kpx::spooler {

namespace {

// The new files. Their names are the same for every queue, so that nobody has to look for what a
// command that was killed has left.
constexpr std::string_view kNewScript = ".lpadmin.new";
constexpr std::string_view kNewEntry = ".lpadmin.entry";

std::string InInterfaces(std::string_view name) {
  return std::string(kSpoolInterfacesDir) + "/" + std::string(name);
}
std::string NewScript() { return InInterfaces(kNewScript); }
std::string NewEntry() { return InInterfaces(kNewEntry); }

// For the handler of signals, which may use nothing else. Empty: nothing to remove.
char script_to_remove[PATH_MAX];
char entry_to_remove[PATH_MAX];

void RemoveAndEnd(int) {
  if (*script_to_remove != '\0') unlink(script_to_remove);
  if (*entry_to_remove != '\0') unlink(entry_to_remove);
  _exit(1);
}

void RemoveAtSignals(const std::string &script, const std::string &entry) {
  script.copy(script_to_remove, sizeof script_to_remove - 1);
  entry.copy(entry_to_remove, sizeof entry_to_remove - 1);
  struct sigaction action = {};
  action.sa_handler = RemoveAndEnd;
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
}

// Makes a file that is not there yet.
bool WriteFile(const std::string &path, std::string_view text, mode_t mode, bool for_spooler) {
  OpenFile file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!file.IsOpen() || !file.Write(text)) return false;
  if (for_spooler) {
    const passwd *user = getpwnam("lp");
    const group *bin = getgrnam("bin");
    if (user != nullptr && bin != nullptr) {
      IgnoreResult(fchown(file.Descriptor(), user->pw_uid, bin->gr_gid),
                   "impossible without the superuser's rights");
    }
  }
  return fchmod(file.Descriptor(), mode) == 0 && file.Close();
}

bool FlushFile(const std::string &path) {
  const OpenFile file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return file.IsOpen() && Uninterrupted(fsync, file.Descriptor()) == 0;
}

bool IsGone(const std::string &path) {
  return unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

struct DirectoryCloser {
  void operator()(DIR *directory) const { closedir(directory); }
};
using OpenDirectory = std::unique_ptr<DIR, DirectoryCloser>;

bool Exists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

}  // namespace

std::string ScriptOf(const std::string &queue) {
  return std::string(kSpoolInterfacesDir) + "/" + queue;
}
std::string EntryOf(const std::string &queue) {
  return std::string(kSpoolPrintersDir) + "/" + queue;
}
bool HasScript(const std::string &queue) { return Exists(ScriptOf(queue)); }
bool HasEntry(const std::string &queue) { return Exists(EntryOf(queue)); }

NewParts::NewParts(const std::string &queue) : queue_(queue) {
  RemoveAtSignals(NewScript(), NewEntry());
}

NewParts::~NewParts() {
  unlink(NewScript().c_str());
  unlink(NewEntry().c_str());
}

bool NewParts::Write(std::string_view script, const std::string &model) const {
  return WriteFile(NewScript(), script, 0755, true) &&
         WriteFile(NewEntry(), "Device: /dev/null\nModel: " + model + "\n", 0644, false);
}

bool NewParts::Flush() const { return FlushFile(NewScript()) && FlushFile(NewEntry()); }

bool NewParts::Install() {
  return rename(NewScript().c_str(), ScriptOf(queue_).c_str()) == 0 &&
         rename(NewEntry().c_str(), EntryOf(queue_).c_str()) == 0 && FlushDirectories();
}

bool RemoveParts(const std::string &queue) {
  return IsGone(EntryOf(queue)) && IsGone(ScriptOf(queue));
}

bool FlushDirectories() { return FlushFile(kSpoolInterfacesDir) && FlushFile(kSpoolPrintersDir); }

std::vector<std::string> NamesOfEntries() {
  std::vector<std::string> names;
  const OpenDirectory directory(opendir(kSpoolPrintersDir));
  while (const dirent *entry = directory ? readdir(directory.get()) : nullptr) {
    if (*entry->d_name != '.') names.emplace_back(entry->d_name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool IsFile(const std::string &path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void RemoveLeftovers() {
  unlink(NewScript().c_str());
  unlink(NewEntry().c_str());
}

}  // namespace kpx::spooler
