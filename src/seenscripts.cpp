#include "seenscripts.h"

#include <sys/stat.h>

#include <ctime>
#include <map>

#include "sharedtext.h"
#include "textfile.h"

namespace {

struct SeenScript {
  struct stat file;  // as it was before its text was read
  SharedText beginning;
  std::string rest;
};

struct Memory {
  int settled_seconds = 0;
  TextPool beginnings;
  std::map<std::string, SeenScript> scripts;
};

std::optional<Memory> L_Memory;
int L_Holders = 0;

bool IsSameTime(const timespec &a, const timespec &b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Nothing can change a file and leave the time of its last change as it was.
bool IsUnchanged(const struct stat &a, const struct stat &b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mode == b.st_mode && IsSameTime(a.st_ctim, b.st_ctim) &&
         IsSameTime(a.st_mtim, b.st_mtim);
}

bool IsSettled(const struct stat &file, int seconds) {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  const time_t since = now.tv_sec - seconds;
  return file.st_ctim.tv_sec < since ||
         (file.st_ctim.tv_sec == since && file.st_ctim.tv_nsec < now.tv_nsec);
}

std::optional<std::string> TextInMemory(const std::string &path) {
  const auto seen = L_Memory->scripts.find(path);
  struct stat file = {};
  if (seen == L_Memory->scripts.end() || stat(path.c_str(), &file) != 0) return std::nullopt;
  if (!IsUnchanged(file, seen->second.file)) return std::nullopt;
  return std::string(seen->second.beginning.View()) + seen->second.rest;
}

void Remember(const std::string &path, const struct stat &file, std::string_view text,
              std::string_view mark) {
  const size_t end = text.find(mark);
  const std::string_view beginning = text.substr(0, end);
  // A SharedText would end at a NUL.
  if (end == std::string_view::npos || beginning.find('\0') != std::string_view::npos) return;
  L_Memory->scripts.insert_or_assign(
      path, SeenScript{file, L_Memory->beginnings.Get(beginning), std::string(text.substr(end))});
}

}  // namespace

SeenScripts::SeenScripts(int settled_seconds) {
  if (L_Holders++ > 0) return;
  L_Memory.emplace();
  L_Memory->settled_seconds = settled_seconds;
}

SeenScripts::~SeenScripts() {
  if (--L_Holders == 0) L_Memory.reset();
}

std::optional<std::string> ReadScript(const std::string &path, std::string_view mark,
                                      bool *is_file) {
  if (!L_Memory) return ReadRegularFile(path, is_file);
  if (std::optional<std::string> text = TextInMemory(path)) {
    *is_file = true;
    return text;
  }
  struct stat file = {};
  std::optional<std::string> text = ReadRegularFile(path, is_file, &file);
  if (text && IsSettled(file, L_Memory->settled_seconds)) Remember(path, file, *text, mark);
  return text;
}
