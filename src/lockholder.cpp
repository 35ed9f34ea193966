#include "lockholder.h"

#include <sys/stat.h>

#include <charconv>
#include <sstream>

#include "queuelistkeep.h"
#include "textencoding.h"
#include "textfile.h"
#include "textscan.h"
#include "utils.h"

namespace {

// "1: FLOCK  ADVISORY  WRITE 4711 08:01:1234 0 EOF": the process that holds the lock on the file of
// that number; 0 for another line, and for a process that is not seen from here.
pid_t HolderIn(const std::string &line, ino_t file) {
  std::istringstream words(line);
  std::string number, kind, advisory, access, process, place;
  words >> number >> kind >> advisory >> access >> process >> place;
  if (kind != "FLOCK" || place.substr(place.rfind(':') + 1) != std::to_string(file)) return 0;
  pid_t id = 0;
  std::from_chars(process.data(), process.data() + process.size(), id);
  return id > 0 ? id : 0;
}

std::string ProcessFile(pid_t process, const char *name) {
  return "/proc/" + std::to_string(process) + "/" + name;
}

// The user who logged in, which sudo and the like leave as it is.
std::string UserOf(pid_t process) {
  const std::string text = ReadWholeFile(ProcessFile(process, "loginuid")).value_or("");
  uid_t user = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), user);
  if (read.ec == std::errc() && user != static_cast<uid_t>(-1)) return UserNameOf(user);
  struct stat status = {};
  const std::string directory = ProcessFile(process, "");
  return stat(directory.c_str(), &status) == 0 ? UserNameOf(status.st_uid) : "?";
}

}  // namespace

std::optional<LockHolder> HolderOfQueueList(const std::string &list_path) {
  struct stat status = {};
  if (stat(QueueListLockPath(list_path).c_str(), &status) != 0) return std::nullopt;
  std::istringstream locks(ReadWholeFile("/proc/locks").value_or(""));
  for (std::string line; std::getline(locks, line);) {
    const pid_t process = HolderIn(line, status.st_ino);
    if (process == 0) continue;
    // A process that has ended may have left the lock to its children.
    const std::optional<std::string> name = ReadWholeFile(ProcessFile(process, "comm"));
    if (!name) return std::nullopt;
    return LockHolder{process, PlainText(Trimmed(*name)), UserOf(process)};
  }
  return std::nullopt;
}
