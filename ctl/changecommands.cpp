#include "changecommands.h"

#include <unistd.h>

#include <cerrno>
#include <set>

#include "addqueue.h"
#include "assignments.h"
#include "cmessages.h"
#include "deffile.h"
#include "globals.h"
#include "ignoreresult.h"
#include "output.h"
#include "paths.h"
#include "queueedit.h"
#include "queuenames.h"
#include "queuetypes.h"
#include "selection.h"
#include "session.h"
#include "utils.h"

namespace kpx::ctl {

namespace {

Status Told(const Fault &fault) {
  Complain(fault.text);
  return fault.status;
}

// The assignments among the call's words, which are taken out of `words`; nothing, told, when one
// is malformed.
std::optional<Assignments> AssignmentsOf(std::vector<std::string> &words) {
  Assignments assignments;
  const std::optional<std::string> bad = assignments.TakeFrom(words);
  if (!bad) return assignments;
  Complain(G_Message("CTL_SUBSTITUTION_BAD", {*bad}));
  return std::nullopt;
}

// The fault of the name that a queue is to get.
std::optional<Fault> FaultOfNewName(const std::string &name) {
  if (auto fault = FaultOfName(name)) return fault;
  const Owned<CList> errors = CreateList();
  if (G_CheckUniqueQueueName(name.c_str(), errors.get()) == 1) return std::nullopt;
  return Fault{kFailed, G_Message("CTL_QUEUE_TAKEN", {name})};
}

// The facts of a new queue in the call; a fault of the call itself has the status kWrongCall.
std::optional<Fault> ReadNewQueue(const Call &call, const std::string &name, NewQueue *queue) {
  for (const char *option : {"--printer", "--address"}) {
    if (!call.Option(option)) return Fault{kWrongCall, G_Message("CTL_WORD_MISSING", {option})};
  }
  const std::string type = call.Option("--type").value_or(kPostScriptType);
  if (!IsQueueType(type)) {
    return Fault{kWrongCall, G_Message("CTL_CHOICE_UNKNOWN",
                                       {"--type", type,
                                        JoinedWords({G_QueueTypes.begin(), G_QueueTypes.end()})})};
  }
  *queue = {.name = name,
            .printer = *call.Option("--printer"),
            .type = G_Translate(type.c_str()),
            .transport = G_Translate(kTcpIpTransport),
            .address = *call.Option("--address")};
  return std::nullopt;
}

std::optional<Fault> AddAndSet(const NewQueue &queue, const Assignments &assignments,
                               bool resolve) {
  if (auto fault = FaultOfNewName(queue.name)) return fault;
  if (auto fault = FaultOfPrinter(queue.printer)) return fault;
  if (auto fault = FaultOfAddress(queue.address)) return fault;
  const AddQueueResult result = AddQueue(queue);
  if (!result.added) {
    return Fault{kFailed,
                 result.warning_key == nullptr ? queue.name : G_Translate(result.warning_key)};
  }
  if (assignments.IsEmpty()) return std::nullopt;
  return ChangeQueue(queue.name, assignments.ForQueue(queue.name), resolve);
}

Status Add(const Call &call) {
  std::vector<std::string> words = call.words;
  const auto assignments = AssignmentsOf(words);
  if (!assignments) return kWrongCall;
  if (words.size() != 1) return Told({kWrongCall, G_Message("CTL_WORD_MISSING", {"NAME"})});
  NewQueue queue;
  if (const auto fault = ReadNewQueue(call, words[0], &queue)) return Told(*fault);
  if (const Status status = ReadToChange(call); status != kDone) return status;
  // Texts of the catalogue are known since the start; the record's are compared with them.
  if (const auto fault = AddAndSet(queue, *assignments, call.Has("--resolve"))) return Told(*fault);
  return SaveSession(call);
}

Status Set(const Call &call) {
  std::vector<std::string> words = call.words;
  const auto assignments = AssignmentsOf(words);
  if (!assignments) return kWrongCall;
  const bool all_by_chance = words.empty() && call.OptionValues("--where").empty();
  if (assignments->IsEmpty() || all_by_chance) {
    return Told(
        {kWrongCall, G_Message("CTL_WORD_MISSING", {all_by_chance ? "QUEUE" : "KEY=VALUE"})});
  }
  if (const Status status = ReadToChange(call); status != kDone) return status;
  Status status = kDone;
  const auto names = ChosenQueues(call, words, &status);
  if (!names || names->empty()) return status;
  for (const std::string &name : *names) {
    const std::vector<Assignment> changes = assignments->ForQueue(name);
    if (changes.empty()) continue;
    if (const auto fault = ChangeQueue(name, changes, call.Has("--resolve"))) return Told(*fault);
  }
  return SaveSession(call);
}

std::optional<Fault> CloneAndSet(const std::string &name, std::string clone,
                                 const Assignments &assignments, bool resolve) {
  if (HashFind(G_Queues_hash, name.c_str()) == nullptr) {
    return Fault{kFailed, G_Message("CTL_QUEUE_UNKNOWN", {name})};
  }
  if (clone.empty()) clone = BuildCloneName(name.c_str());
  if (auto fault = FaultOfNewName(clone)) return fault;
  if (!CloneQueueAs(name.c_str(), clone)) {
    return Fault{kFailed, G_Message("ERR_UNEXPECTED2", {CPrintQueueClassName})};
  }
  if (assignments.IsEmpty()) return std::nullopt;
  return ChangeQueue(clone, assignments.ForQueue(clone), resolve);
}

Status Clone(const Call &call) {
  std::vector<std::string> words = call.words;
  const auto assignments = AssignmentsOf(words);
  if (!assignments) return kWrongCall;
  if (words.empty() || words.size() > 2) {
    return Told({kWrongCall, G_Message("CTL_WORD_MISSING", {"QUEUE [NAME]"})});
  }
  if (const Status status = ReadToChange(call); status != kDone) return status;
  const std::string clone = words.size() == 2 ? words[1] : "";
  const auto fault = CloneAndSet(words[0], clone, *assignments, call.Has("--resolve"));
  return fault ? Told(*fault) : SaveSession(call);
}

// Gives the users' option files of a queue a second name, that of another queue's; the first goes
// with the queue. False, told, when one could not get it.
bool CopyUsersFiles(const std::string &from, const std::string &to) {
  const std::string ending = ":" + from + kDefExtension;
  const Owned<CList> files = GetFilesFromDir(kUsersDir);
  bool complete = true;
  for (const CString *file : Elements<CString>(files.get())) {
    const std::string name(file->value.View());
    if (!name.ends_with(ending)) continue;
    const std::string user = name.substr(0, name.size() - ending.size());
    const std::string path = UserDefFilePath(UserDefFileName(user, to + kDefExtension));
    if (link(UserDefFilePath(name).c_str(), path.c_str()) == 0 || errno == EEXIST) continue;
    Complain(G_Message("ERR_UNABLE_TO_WRITE_FILE", {path}));
    complete = false;
  }
  return complete;
}

Status Rename(const Call &call) {
  if (const Status status = ReadToChange(call); status != kDone) return status;
  const std::string &from = call.words[0], &to = call.words[1];
  if (from == to) return SaveSession(call);
  if (const auto fault = CloneAndSet(from, to, {}, false)) return Told(*fault);
  HashRemove(G_Queues_hash, from.c_str());
  if (!call.Has("--dry-run") && !CopyUsersFiles(from, to)) return kFailed;
  return SaveSession(call);
}

Status Delete(const Call &call) {
  if (call.words.empty() && call.OptionValues("--where").empty()) {
    return Told({kWrongCall, G_Message("CTL_WORD_MISSING", {"QUEUE"})});
  }
  if (const Status status = ReadToChange(call); status != kDone) return status;
  Status status = kDone;
  const auto names = ChosenQueues(call, call.words, &status);
  if (!names || names->empty()) return status;
  for (const std::string &name : *names) HashRemove(G_Queues_hash, name.c_str());
  return SaveSession(call);
}

}  // namespace

std::vector<Command> ChangeCommands() {
  static constexpr char kChange[] = "--dry-run --json";
  static constexpr char kSet[] = "--dry-run --json --resolve";
  return {
      {"add", "",
       "NAME --printer PRINTER --address ADDRESS [--type TYPE] [KEY=VALUE...] [--resolve] "
       "[--dry-run] "
       "[--json]",
       "CTL_HELP_ADD", kSet, "--printer --address --type", 1, kAnyNumber, false, Add},
      {"set", "",
       "[QUEUE...] [--where KEY=PATTERN]... KEY=VALUE... [--resolve] [--dry-run] [--json]",
       "CTL_HELP_SET", kSet, "--where", 1, kAnyNumber, false, Set},
      {"clone", "", "QUEUE [NAME] [KEY=VALUE...] [--resolve] [--dry-run] [--json]",
       "CTL_HELP_CLONE", kSet, "", 1, kAnyNumber, false, Clone},
      {"rename", "", "QUEUE NAME [--dry-run] [--json]", "CTL_HELP_RENAME", kChange, "", 2, 2, false,
       Rename},
      {"delete", "", "QUEUE... [--where KEY=PATTERN]... [--dry-run] [--json]", "CTL_HELP_DELETE",
       kChange, "--where", 0, kAnyNumber, false, Delete},
  };
}

}  // namespace kpx::ctl
