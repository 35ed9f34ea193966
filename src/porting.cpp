#include "porting.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "debug.h"
#include "filesystem.h"
#include "globals.h"
#include "ignoreresult.h"
#include "paths.h"
#include "seenscripts.h"
#include "textencoding.h"
#include "textfile.h"
#include "textscan.h"
#include "utils.h"
#include "waitingsettings.h"

namespace {

// The entry lets it through, but the shell would put the names of files in its place.
constexpr char L_ShellWildcard = '?';

// The queues of the list that are not shown because their scripts cannot be read.
Owned<CHash> L_SetAside;
std::set<std::string> L_TakenBack;

std::set<std::string> L_Incomplete;

// Only these two say that nothing is there; any other error says nothing about that.
bool MeansMissing(int error) { return error == ENOENT || error == ENOTDIR; }

bool HasMarkerLine(std::string_view script) {
  LineReader lines(script);
  while (std::optional<std::string_view> line = lines.NextView()) {
    if (line->substr(0, line->find_last_not_of(" \t") + 1) == kMarkerLine) return true;
  }
  return false;
}

// Whether the spooler has an entry of the queue; also when the system does not tell.
bool HasEntry(const char *name) {
  struct stat status = {};
  const std::string path = std::string(kSpoolPrintersDir) + "/" + name;
  return lstat(path.c_str(), &status) == 0 || !MeansMissing(errno);
}

// Whether a queue to be removed is one that KPXadmin may remove.
bool MayRemove(const char *name, ScriptState script) {
  return script == ScriptState::Ours || (script == ScriptState::Gone && IsIncompleteQueue(name));
}

void DeleteUsersFiles(const char *name) {
  IgnoreResult(G_DeleteAllUsersDefForQueue(name), "a file that cannot be removed is logged");
  RemoveJobCopiesOfQueue(name);
}

// The queue comes back as it was when the program started.
void RestoreQueue(const char *name) {
  Owned<CPrintQueue> queue = CloneOf(HashValue<CPrintQueue>(G_OrgQueues_hash, name));
  if (queue != nullptr)
    IgnoreResult(HashPut(G_Queues_hash, name, std::move(queue)), "the dictionary is there");
}

}  // namespace

bool IsCommandSafeName(std::string_view name) {
  return !name.empty() && name.front() != '-' && std::none_of(name.begin(), name.end(), [](char c) {
    return IsControlCharacter(c) || c == L_ShellWildcard ||
           kNotInQueueNames.find(c) != std::string_view::npos;
  });
}

bool CheckCommandSafeName(const char *name, CList *errors) {
  if (name != nullptr && IsCommandSafeName(name)) return true;
  G_Report(errors, "ERR_QUEUE_NAME", {name});
  return false;
}

std::string InterfacePath(const std::string &name) {
  return std::string(kSpoolInterfacesDir) + "/" + name;
}

QueueScript LookAtScript(const char *name) {
  if (name == nullptr) return {ScriptState::Gone, ""};
  bool is_file = true;
  std::optional<std::string> script = ReadScript(InterfacePath(name), kMarkerLine, &is_file);
  if (!is_file) return {ScriptState::NotAFile, ""};
  if (!script) return {MeansMissing(errno) ? ScriptState::Gone : ScriptState::Unreadable, ""};
  return {HasMarkerLine(*script) ? ScriptState::Ours : ScriptState::NotOurs, std::move(*script)};
}

QueueScript ReadQueueScript(const char *name, CList *errors) {
  QueueScript script = LookAtScript(name);
  if (script.state == ScriptState::Unreadable || script.state == ScriptState::NotAFile) {
    G_Report(errors, "ERR_UNABLE_TO_READ_FILE", {InterfacePath(name)});
  }
  return script;
}

void MarkIncompleteQueue(const char *name) { L_Incomplete.insert(name); }

bool IsIncompleteQueue(const char *name) { return name != nullptr && L_Incomplete.contains(name); }

void ForgetIncompleteQueues() { L_Incomplete.clear(); }

Owned<CList> GetQueueNamesSysV(CList *our_names, CList *errors) {
  const LogScope log("GetQueueNamesSysV");
  struct stat status = {};
  if (stat(kSpoolPrintersDir, &status) != 0 && MeansMissing(errno)) return nullptr;
  const Owned<CList> entries = GetFilesFromDir(kSpoolPrintersDir);
  if (entries == nullptr) {
    G_Report(errors, "ERR_UNABLE_TO_READ_DIR", {kSpoolPrintersDir});
    return nullptr;
  }
  Owned<CList> names = CreateList();
  for (const CString *entry : Elements<CString>(entries.get())) {
    const char *name = fGet_CString_Value_Function(entry);
    IgnoreResult(fAddHead_CList_Function(names.get(), CreateStringWithValue(name)),
                 "the list is there");
    if (our_names != nullptr && OurQueueExistsSysV(name, errors) == 1) {
      IgnoreResult(fAddHead_CList_Function(our_names, CreateStringWithValue(name)),
                   "the list is there");
    }
  }
  return names;
}

int OurQueueExistsSysV(const char *name, CList *errors) {
  const LogScope log("OurQueueExistsSysV");
  return ReadQueueScript(name, errors).state == ScriptState::Ours ? 1 : 0;
}

int RemoveInexistentSystemVQueues(CList *errors, const QueueFilter &stays) {
  const LogScope log("RemoveInexistentSystemVQueues");
  L_SetAside.reset();
  L_TakenBack.clear();
  const Owned<CList> names = fGetKeys_CHash_Function(G_Queues_hash);
  std::vector<std::string> changed;
  for (const CString *element : Elements<CString>(names.get())) {
    const char *name = fGet_CString_Value_Function(element);
    const QueueScript script = ReadQueueScript(name, errors);
    if (script.state == ScriptState::NotOurs) changed.emplace_back(name);
    if (stays && stays(name, script)) continue;
    if (script.state == ScriptState::Ours) continue;
    if (script.state == ScriptState::Unreadable || script.state == ScriptState::NotAFile) {
      SetAsideQueue(name, CloneOf(HashValue<CPrintQueue>(G_Queues_hash, name)));
    }
    HashRemove(G_Queues_hash, name);
  }
  ReportNames(errors, "WARN_QUEUE_SCRIPT_CHANGED", "WARN_QUEUES_SCRIPT_CHANGED", changed);
  return 1;
}

void SetAsideQueue(const char *name, Owned<CPrintQueue> queue) {
  if (L_SetAside == nullptr) L_SetAside = CreateHash();
  if (queue != nullptr)
    IgnoreResult(HashPut(L_SetAside.get(), name, std::move(queue)), "the dictionary is there");
}

bool IsSetAside(const char *name) { return HashFind(L_SetAside.get(), name) != nullptr; }

void TakeBackQueuesSetAside() {
  for (const auto [name, queue] : Pairs<CPrintQueue>(L_SetAside.get())) {
    if (HashFind(G_Queues_hash, name) != nullptr) continue;
    IgnoreResult(HashPut(G_Queues_hash, name, CloneOf(queue)), "the dictionary is there");
    L_TakenBack.insert(name);
  }
}

bool WasSetAside(const char *name) { return L_TakenBack.contains(name); }

std::string DeleteQueueCommand(const std::string &name) {
  return JoinWords({std::string(kLpadmin) + " -x", name, kDiscardOutput});
}

int DeleteQueueSysV(const char *name, CList *errors) {
  const LogScope log("DeleteQueueSysV");
  if (!CheckCommandSafeName(name, errors)) return 0;
  if (RunCommand(DeleteQueueCommand(name)) == 0) return 1;
  G_Report(errors, "ERR_CMD_FOR_QUEUE", {"lpadmin", name});
  return 0;
}

int DeleteQueuesSysV(const CList *names, CList *errors, const QueueObserver &observer) {
  const LogScope log("DeleteQueuesSysV");
  if (names == nullptr) return 0;
  int result = 1;
  for (const CString *element : Elements<CString>(names)) {
    const char *name = fGet_CString_Value_Function(element);
    if (observer) observer(name, false);
    const ScriptState script = ReadQueueScript(name, errors).state;
    if (script == ScriptState::Unreadable) {
      RestoreQueue(name);
      result = 0;
    }
    // It is gone already; what belongs to it goes too.
    if (script == ScriptState::Gone && !HasEntry(name)) DeleteUsersFiles(name);
    if (!MayRemove(name, script)) continue;
    if (observer) observer(name, true);
    if (DeleteQueueSysV(name, errors) == 1) {
      DeleteUsersFiles(name);
    } else {
      RestoreQueue(name);
      result = 0;
    }
  }
  return result;
}
