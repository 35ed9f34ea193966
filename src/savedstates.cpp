#include "savedstates.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

#include "debug.h"
#include "ignoreresult.h"
#include "paths.h"
#include "queuelistreader.h"
#include "queuelistwriter.h"
#include "textfile.h"
#include "utils.h"

namespace {

constexpr mode_t L_DirectoryMode = 0755;
constexpr std::string_view L_ListSuffix = ".paf";
constexpr std::string_view L_OwnersSuffix = ".json";

std::string PathOf(int number, std::string_view suffix) {
  return std::string(kStatesDir) + "/" + std::to_string(number) + std::string(suffix);
}

// The number of the state whose list has that name; 0 for another name.
int NumberOf(std::string_view name) {
  if (!name.ends_with(L_ListSuffix)) return 0;
  name.remove_suffix(L_ListSuffix.size());
  int number = 0;
  const auto read = std::from_chars(name.data(), name.data() + name.size(), number);
  return read.ec == std::errc() && read.ptr == name.data() + name.size() ? number : 0;
}

// A second name for the file, which is never written again but replaced whole; a copy where that is
// not possible.
bool KeepFile(const std::string &from, const std::string &to) {
  if (link(from.c_str(), to.c_str()) == 0) return true;
  const std::optional<std::string> text = ReadWholeFile(from);
  struct stat status = {};
  return text && stat(from.c_str(), &status) == 0 && ReplaceFileDurably(to, *text, status);
}

void RemoveOldStates(const std::vector<SavedState> &states) {
  for (size_t i = kMostSavedStates - 1; i < states.size(); ++i) {
    RemoveFile(states[i].list_path);
    RemoveFile(states[i].owners_path);
  }
}

}  // namespace

std::vector<SavedState> SavedStates() {
  std::vector<SavedState> states;
  if (access(kStatesDir, F_OK) != 0) return states;
  const Owned<CList> names = GetFilesFromDir(kStatesDir);
  for (const CString *entry : Elements<CString>(names.get())) {
    const int number = NumberOf(entry->value.View());
    if (number <= 0) continue;
    SavedState state{number, 0, PathOf(number, L_ListSuffix), PathOf(number, L_OwnersSuffix)};
    struct stat status = {};
    if (stat(state.list_path.c_str(), &status) == 0) state.time = status.st_mtime;
    states.push_back(std::move(state));
  }
  std::sort(states.begin(), states.end(),
            [](const SavedState &one, const SavedState &two) { return one.number > two.number; });
  return states;
}

void KeepState(const std::string &list_path, const CHash *queues) {
  const LogScope log("KeepState");
  int left_out = 0;
  const std::optional<std::string> before = ReadWholeFile(list_path);
  if (!before || *before == QueueListText(queues, &left_out)) return;
  const std::vector<SavedState> states = SavedStates();
  if (!states.empty() && ReadWholeFile(states.front().list_path) == before) return;
  const int number = states.empty() ? 1 : states.front().number + 1;
  mkdir(kStatesDir, L_DirectoryMode);
  if (access(kOwnersFile, F_OK) == 0 && !KeepFile(kOwnersFile, PathOf(number, L_OwnersSuffix))) {
    Log(1, std::string("the state before the save is not kept: ") + std::strerror(errno));
    return;
  }
  if (!KeepFile(list_path, PathOf(number, L_ListSuffix))) {
    Log(1, std::string("the state before the save is not kept: ") + std::strerror(errno));
    return;
  }
  IgnoreResult(SyncDirectoryOf(PathOf(number, L_ListSuffix)), "it is only kept less safely");
  RemoveOldStates(states);
}

Owned<CHash> QueuesOfState(const SavedState &state) {
  const std::optional<std::string> list = ReadWholeFile(state.list_path);
  Owned<CHash> queues = CreateHash();
  if (!list || ReadQueueList(*list, queues.get())) return nullptr;
  return queues;
}
