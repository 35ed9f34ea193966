#include "declarecommands.h"

#include <cerrno>
#include <filesystem>

#include "cmessages.h"
#include "declaredfile.h"
#include "declaring.h"
#include "exporting.h"
#include "globals.h"
#include "inputfile.h"
#include "output.h"
#include "owners.h"
#include "paths.h"
#include "seenscripts.h"
#include "session.h"
#include "textfile.h"
#include "usersfiles.h"

namespace kpx::ctl {

namespace {

constexpr mode_t kExportMode = 0600;  // it may hold PINs

// A file that declares queues, read.
struct DeclaringFile {
  std::string path;
  std::string text;
  DeclaredState state;

  // The name that the state has among those that own queues.
  [[nodiscard]] std::string StateName() const {
    return state.name.empty() ? std::filesystem::path(path).filename().string() : state.name;
  }

  // "hosts.json:12: REASON".
  [[nodiscard]] std::string At(int line, const std::string &reason) const {
    return path + ":" + std::to_string(line) + ": " + reason;
  }
};

// The file that the call names; nothing, told, when it cannot be read or is wrong.
std::optional<DeclaringFile> FileOfCall(const Call &call) {
  DeclaringFile file{call.words[0], "", {}};
  std::optional<std::string> text = TextOfFile(file.path);
  if (!text) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {file.path}));
    return std::nullopt;
  }
  file.text = std::move(*text);
  auto read = ReadDeclared(file.text);
  if (const auto *fault = std::get_if<DeclaredFault>(&read)) {
    Complain(file.At(fault->line, fault->reason));
    return std::nullopt;
  }
  file.state = std::move(std::get<DeclaredState>(read));
  return file;
}

// Where the file says what the fault is about; what a group says is found at the queue.
int LineOfFault(const DeclaringFile &file, const std::string &queue, const std::string &key) {
  const int entry = LineOfMember(file.text, {"queues", queue});
  for (const std::vector<std::string> &path :
       {std::vector<std::string>{"queues", queue, "options", key},
        {"queues", queue, "options", "*" + key},
        {"queues", queue, key}}) {
    const int line = LineOfMember(file.text, path);
    if (line != entry) return line;
  }
  return entry;
}

// Gives the session the queues that the file declares. The status, told, when one is not possible.
Status DeclareAll(const Call &call, const DeclaringFile &file) {
  Declaring declaring(call.Has("--resolve"));
  Status status = kDone;
  for (const DeclaredQueue &queue : file.state.queues) {
    const std::optional<Fault> fault = declaring.Declare(queue);
    if (!fault) continue;
    Complain(file.At(LineOfFault(file, queue.name, fault->key), fault->text));
    status = fault->status;
  }
  return status;
}

// Drops from the session what the state owns and has no longer. The owners as they are to be.
std::optional<Owners> DropOwned(const DeclaringFile &file, Owners owners, bool take_over,
                                Status *status) {
  const std::string state = file.StateName();
  std::set<std::string> declared;
  for (const DeclaredQueue &queue : file.state.queues) {
    declared.insert(queue.name);
    const std::string other = OtherOwner(owners, state, queue.name);
    if (other.empty()) continue;
    if (!take_over) {
      Complain(file.At(LineOfMember(file.text, {"queues", queue.name}),
                       G_Message("CTL_OWNED", {queue.name, other})));
      *status = kRefused;
      return std::nullopt;
    }
    owners[other].erase(queue.name);
  }
  for (const std::string &queue : owners[state]) {
    if (!declared.contains(queue)) HashRemove(G_Queues_hash, queue.c_str());
  }
  owners[state] = declared;
  return owners;
}

// Reads the owners and has the session, which is read, be as declared; the owners as they are to
// be, or nothing, told.
std::optional<Owners> Prepare(const Call &call, const DeclaringFile &file, Status *status) {
  *status = kFailed;
  const std::optional<Owners> before = ReadOwners(kOwnersFile);
  if (!before) return std::nullopt;
  const auto owners = DropOwned(file, *before, call.Has("--take-over"), status);
  if (!owners) return std::nullopt;
  *status = DeclareAll(call, file);
  return *status == kDone ? owners : std::nullopt;
}

// The status to end with when all is as declared and owned so, or cannot be: then the spooler need
// not be asked; the next change finds what it has lost. Nothing when there is work.
std::optional<Status> EndWithoutWork(const Call &call, const DeclaringFile &file) {
  if (IsSaveUnfinished()) return std::nullopt;
  ReadToLook();
  Status status = kDone;
  const std::optional<Owners> owners = Prepare(call, file, &status);
  if (!owners) return status;
  if (!PlanOfSession().empty() || owners != ReadOwners(kOwnersFile)) return std::nullopt;
  return SaveSession(call);
}

Status Apply(const Call &call) {
  const std::optional<DeclaringFile> file = FileOfCall(call);
  if (!file) return kFailed;
  const SeenScripts seen;  // looked at to compare, to change and to save
  const bool dry_run = call.Has("--dry-run");
  Status status = dry_run ? kDone : MayChange();
  if (status != kDone) return status;
  if (!dry_run) {
    if (const std::optional<Status> end = EndWithoutWork(call, *file)) return *end;
  }
  status = ReadToChange(call);
  if (status != kDone) return status;
  const std::optional<Owners> owners = Prepare(call, *file, &status);
  if (!owners) return status;
  if (dry_run) return SaveSession(call);
  // Until the queues are there, it owns both those of before and the new ones: whatever ends this,
  // the next call goes on.
  Owners both = *owners;
  for (const auto &[state, queues] : ReadOwners(kOwnersFile).value_or(Owners())) {
    both[state].insert(queues.begin(), queues.end());
  }
  const bool changes = !PlanOfSession().empty();
  if (changes && !WriteOwners(both)) return kFailed;
  status = SaveSession(call);
  return status == kDone && !WriteOwners(*owners) ? kFailed : status;
}

Status Diff(const Call &call) {
  const std::optional<DeclaringFile> file = FileOfCall(call);
  if (!file) return kFailed;
  ReadToLook();
  Status status = kDone;
  if (!Prepare(call, *file, &status)) return status;
  const std::vector<PlanStep> plan = PlanOfSession();
  if (call.Has("--json")) {
    PrintJsonText({{"plan", FormOfPlan(plan)}});
  } else {
    PrintPlan(plan);
  }
  return plan.empty() ? kDone : kChanges;
}

Status Import(const Call &call) {
  const std::optional<DeclaringFile> file = FileOfCall(call);
  if (!file) return kFailed;
  if (const Status status = ReadToChange(call); status != kDone) return status;
  if (const Status status = DeclareAll(call, *file); status != kDone) return status;
  Status status = SaveSession(call);
  if (!call.Has("--users") || call.Has("--dry-run")) return status;
  for (const DeclaredUserFile &users : file->state.user_files) {
    if (HashFind(G_Queues_hash, users.queue.c_str()) == nullptr) continue;
    if (!WriteUsersFile(users.user, users.queue, users.settings)) status = kFailed;
  }
  return status;
}

Status Export(const Call &call) {
  ReadPrinters();
  ReadQueues();
  Json form = FormOfHost();
  if (call.Has("--users")) {
    const std::optional<Json> users = FormOfUsers();
    if (!users) return kFailed;
    form["users"] = *users;
  }
  if (call.words.empty() || call.words[0] == kStandardInput) {
    PrintJsonText(form);
    return kDone;
  }
  const std::string &path = call.words[0];
  if (ReplaceFileDurably(path, JsonText(form), FileAccess{.mode = kExportMode})) return kDone;
  Complain(G_Message("ERR_UNABLE_TO_WRITE_FILE", {path}));
  return kFailed;
}

}  // namespace

std::vector<Command> DeclareCommands() {
  static constexpr char kApply[] = "--dry-run --json --resolve --take-over";
  return {
      {"export", "", "[FILE] [--users]", "CTL_HELP_EXPORT", "--users", "", 0, 1, false, Export},
      {"diff", "", "FILE [--resolve] [--take-over] [--json]", "CTL_HELP_DIFF",
       "--json --resolve --take-over", "", 1, 1, false, Diff},
      {"apply", "", "FILE [--resolve] [--take-over] [--dry-run] [--json]", "CTL_HELP_APPLY", kApply,
       "", 1, 1, false, Apply},
      {"import", "", "FILE [--users] [--resolve] [--dry-run] [--json]", "CTL_HELP_IMPORT",
       "--users --resolve --dry-run --json", "", 1, 1, false, Import},
  };
}

}  // namespace kpx::ctl
