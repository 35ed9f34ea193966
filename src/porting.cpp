#include "porting.h"

#include <sys/stat.h>

#include <algorithm>

#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "debug.h"
#include "filesystem.h"
#include "globals.h"
#include "paths.h"
#include "textencoding.h"
#include "utils.h"

namespace {

// The entry lets it through, but the shell would put the names of files in its place.
constexpr char L_ShellWildcard = '?';

// What the interface script says about a queue.
enum class Script { Gone, Unreadable, NotOurs, Ours };

bool HasMarkerLine(std::string_view script) {
  LineReader lines(script);
  while (std::optional<std::string> line = lines.Next()) {
    line->erase(line->find_last_not_of(" \t") + 1);
    if (*line == kMarkerLine) return true;
  }
  return false;
}

// An unreadable script is reported to `errors`.
Script LookAtScript(const char *name, CList *errors) {
  if (name == nullptr) return Script::Gone;
  const std::string path = InterfacePath(name);
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return Script::Gone;
  // Only a file is opened: a named pipe would hold the program up.
  const std::optional<std::string> script =
      S_ISREG(status.st_mode) ? ReadWholeFile(path) : std::nullopt;
  if (!script) {
    G_Report(errors, "ERR_UNABLE_TO_READ_FILE", {path});
    return Script::Unreadable;
  }
  return HasMarkerLine(*script) ? Script::Ours : Script::NotOurs;
}

// The queue comes back as it was when the program started.
void RestoreQueue(const char *name) {
  Owned<CPrintQueue> queue = CloneOf(HashValue<CPrintQueue>(G_OrgQueues_hash, name));
  if (queue != nullptr) HashPut(G_Queues_hash, name, std::move(queue));
}

}  // namespace

bool IsControlCharacter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}

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

Owned<CList> GetQueueNamesSysV(CList *our_names, CList *errors) {
  const LogScope log("GetQueueNamesSysV");
  struct stat status = {};
  if (stat(kSpoolPrintersDir, &status) != 0) return nullptr;
  const Owned<CList> entries = GetFilesFromDir(kSpoolPrintersDir);
  if (entries == nullptr) {
    G_Report(errors, "ERR_UNABLE_TO_READ_DIR", {kSpoolPrintersDir});
    return nullptr;
  }
  Owned<CList> names = CreateList();
  for (const CString *entry : Elements<CString>(entries.get())) {
    const char *name = fGet_CString_Value_Function(entry);
    fAddHead_CList_Function(names.get(), CreateStringWithValue(name));
    if (our_names != nullptr && OurQueueExistsSysV(name, errors) == 1) {
      fAddHead_CList_Function(our_names, CreateStringWithValue(name));
    }
  }
  return names;
}

int OurQueueExistsSysV(const char *name, CList *errors) {
  const LogScope log("OurQueueExistsSysV");
  return LookAtScript(name, errors) == Script::Ours ? 1 : 0;
}

int RemoveInexistentSystemVQueues(CList *errors) {
  const LogScope log("RemoveInexistentSystemVQueues");
  const Owned<CList> names = fGetKeys_CHash_Function(G_Queues_hash);
  for (const CString *element : Elements<CString>(names.get())) {
    const char *name = fGet_CString_Value_Function(element);
    const Script script = LookAtScript(name, errors);
    if (script == Script::Ours) continue;
    if (script == Script::NotOurs) G_Report(errors, "WARN_QUEUE_SCRIPT_CHANGED", {name});
    HashRemove(G_Queues_hash, name);
  }
  return 1;
}

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
    if (OurQueueExistsSysV(name, errors) == 0) continue;
    if (observer) observer(name, true);
    if (DeleteQueueSysV(name, errors) == 1) {
      G_DeleteAllUsersDefForQueue(name);
    } else {
      RestoreQueue(name);
      result = 0;
    }
  }
  return result;
}
