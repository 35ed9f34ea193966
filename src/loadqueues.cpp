#include "loadqueues.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cprintqueues.h"
#include "debug.h"
#include "foundqueues.h"
#include "globals.h"
#include "ignoreresult.h"
#include "interfacescript.h"
#include "paths.h"
#include "porting.h"
#include "queuelistkeep.h"
#include "queuelistreader.h"
#include "unfinishedsave.h"
#include "utils.h"

namespace {

// What stands in a temporary file's name for the six letters that the system chose.
constexpr size_t L_ChosenLetters = 6;

bool IsLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// True for "<base>.XXXXXX<extension>".
bool IsTemporaryName(std::string_view name, std::string_view extension) {
  if (!name.ends_with(extension)) return false;
  name.remove_suffix(extension.size());
  if (name.size() < L_ChosenLetters + 2) return false;
  const std::string_view letters = name.substr(name.size() - L_ChosenLetters);
  return name[name.size() - L_ChosenLetters - 1] == '.' &&
         std::all_of(letters.begin(), letters.end(), IsLetterOrDigit);
}

bool IsDataLeftover(std::string_view name) {
  if (IsTemporaryName(name, ".def")) return true;
  if (!name.starts_with("queues.")) return false;
  return IsTemporaryName(name, ".paf") || IsTemporaryName(name, ".save") ||
         IsTemporaryName(name, ".next");
}

bool IsScriptLeftover(std::string_view name) { return name.ends_with(kTemporaryScriptSuffix); }

void RemoveFiles(const char *directory, bool (*is_leftover)(std::string_view name)) {
  const Owned<CList> all = GetFilesFromDir(directory);
  const Owned<CList> leftovers = CreateList();
  for (const CString *name : Elements<CString>(all.get())) {
    if (is_leftover(name->value.View()))
      IgnoreResult(fAddTail_CList_Function(leftovers.get(), CloneOf(name)), "the list is there");
  }
  IgnoreResult(DeleteFilesFromDir(directory, leftovers.get(), nullptr),
               "one that cannot be removed is logged, and goes at the next time");
}

// The snapshot of an unfinished save has the queues that are to go, so that one that the spooler
// keeps can come back.
void AddRemovedToSnapshot(const std::string &list_path) {
  const std::optional<std::string> list = ReadLastQueueList(list_path);
  const Owned<CHash> queues = CreateHash();
  if (!list || ReadQueueList(*list, queues.get())) return;
  for (const CString *element : Elements<CString>(G_UnfinishedRemovals.get())) {
    const char *name = fGet_CString_Value_Function(element);
    Owned<CPrintQueue> queue = CloneOf(HashValue<CPrintQueue>(queues.get(), name));
    if (queue == nullptr || HashFind(G_OrgQueues_hash, name) != nullptr) continue;
    IgnoreResult(HashPut(G_OrgQueues_hash, name, std::move(queue)), "the dictionary is there");
  }
}

void TakeSnapshot() {
  G_OrgQueues = CloneOf(G_Queues.get());
  G_OrgQueues_hash = fGetPrintQueues_Function(G_OrgQueues.get());
}

void LoadForAdministration(CList *messages) {
  RemoveFiles(kDataDir, IsDataLeftover);
  RemoveFiles(kSpoolInterfacesDir, IsScriptLeftover);
  G_UnfinishedRemovals = LoadIntention(G_Queues.get(), messages);
  if (G_UnfinishedRemovals == nullptr)
    IgnoreResult(LoadQueueList(G_Queues.get(), 1, messages),
                 "a list that cannot be read is reported");
  G_Queues_hash = fGetPrintQueues_Function(G_Queues.get());
  CompareWithSpooler(G_UnfinishedRemovals.get(), messages);
  TakeSnapshot();
  if (G_UnfinishedRemovals == nullptr) return;
  AddRemovedToSnapshot(fGet_CString_Value_Function(fGetPafFile_Function(G_Queues.get())));
}

}  // namespace

void LoadQueuesAtStart(CList *messages) {
  const LogScope log("LoadQueuesAtStart");
  if (G_ProgName == kModeAdministration) return LoadForAdministration(messages);
  IgnoreResult(LoadQueueList(G_Queues.get(), 0, nullptr), "a list that cannot be read is reported");
  G_Queues_hash = fGetPrintQueues_Function(G_Queues.get());
  RemoveInexistentSystemVQueues(messages);
  TakeSnapshot();
}
