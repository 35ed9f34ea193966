#include "undocommands.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <ctime>

#include "cmessages.h"
#include "cprintqueues.h"
#include "globals.h"
#include "ignoreresult.h"
#include "output.h"
#include "owners.h"
#include "savedstates.h"
#include "session.h"
#include "usersfiles.h"

namespace kpx::ctl {

namespace {

std::string TimeText(std::time_t time) {
  char text[64];
  std::tm parts = {};
  localtime_r(&time, &parts);
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

// Writes what is listed in the form that the call asks for; a table without rows is the text of
// `none_key`.
void PrintListing(const Call &call, const Json &json,
                  const std::vector<std::vector<std::string>> &rows, const char *none_key) {
  if (call.Has("--json")) {
    PrintJsonText(json);
  } else if (rows.empty()) {
    PrintLine(G_Translate(none_key));
  } else {
    PrintTable(rows);
  }
}

Status ListStates(const Call &call) {
  const std::vector<SavedState> states = SavedStates();
  Json json = Json::array();
  std::vector<std::vector<std::string>> rows;
  for (size_t i = 0; i < states.size(); ++i) {
    const Owned<CHash> queues = QueuesOfState(states[i]);
    const size_t count = queues == nullptr ? 0 : queues->index.size();
    json.push_back({{"undo", i + 1}, {"saved", TimeText(states[i].time)}, {"queues", count}});
    rows.push_back({G_Message("CTL_UNDO_STATE", {static_cast<int>(i + 1), TimeText(states[i].time),
                                                 static_cast<int>(count)})});
  }
  PrintListing(call, json, rows, "CTL_UNDO_NONE");
  return kDone;
}

// Gives the session the queues of the state.
void TakeState(const CHash *queues) {
  const Owned<CList> names = fGetKeys_CHash_Function(G_Queues_hash);
  for (const CString *name : Elements<CString>(names.get())) {
    HashRemove(G_Queues_hash, fGet_CString_Value_Function(name));
  }
  for (const auto [name, queue] : Pairs<CPrintQueue>(queues)) {
    IgnoreResult(HashPut(G_Queues_hash, name, CloneOf(queue)), "the dictionary is there");
  }
}

// The owners of those queues alone that the session has.
Owners OfThere(Owners owners) {
  for (auto &[name, queues] : owners) {
    std::erase_if(queues, [](const std::string &queue) {
      return HashFind(G_Queues_hash, queue.c_str()) == nullptr;
    });
  }
  return owners;
}

// The number of the call; 0, told, when it is not one.
size_t NumberOf(const Call &call, size_t most) {
  if (call.words.empty()) return 1;
  const std::string &word = call.words[0];
  size_t number = 0;
  const auto read = std::from_chars(word.data(), word.data() + word.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == word.data() + word.size();
  if (whole && number >= 1 && number <= std::max<size_t>(most, 1)) return number;
  Complain(G_Message("CTL_WRONG_WORD", {word}));
  return 0;
}

Status Undo(const Call &call) {
  if (call.Has("--list")) return ListStates(call);
  if (const Status status = ReadToChange(call); status != kDone) return status;
  const std::vector<SavedState> states = SavedStates();
  const size_t number = NumberOf(call, states.size());
  if (number == 0) return kWrongCall;
  if (states.empty()) {
    Complain(G_Translate("CTL_UNDO_NONE"));
    return kFailed;
  }
  const SavedState &state = states[number - 1];
  const Owned<CHash> queues = QueuesOfState(state);
  if (queues == nullptr) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {state.list_path}));
    return kFailed;
  }
  TakeState(queues.get());
  // Read now: the save may drop the oldest state.
  const bool saves = !call.Has("--dry-run");
  const std::optional<Owners> owners = ReadOwners(state.owners_path);
  if (!owners) return kFailed;
  const Status status = SaveSession(call);
  if (status != kDone || !saves) return status;
  return WriteOwners(OfThere(*owners)) ? kDone : kFailed;
}

bool IsChosen(const Call &call, const UsersFile &file) {
  const auto user = call.Option("--user");
  if (user && *user != file.user) return false;
  return call.words.empty() ||
         std::find(call.words.begin(), call.words.end(), file.queue) != call.words.end();
}

Status ListUsers(const Call &call) {
  const auto files = UsersFiles();
  if (!files) return kFailed;
  Json json = Json::array();
  std::vector<std::vector<std::string>> rows;
  for (const UsersFile &file : *files) {
    if (!IsChosen(call, file)) continue;
    rows.push_back({file.user, file.queue});
    json.push_back({{"user", file.user}, {"queue", file.queue}});
  }
  PrintListing(call, json, rows, "CTL_USERS_NONE");
  return kDone;
}

Status RemoveUsers(const Call &call) {
  if (call.words.empty() && !call.Option("--user")) {
    Complain(G_Message("CTL_WORD_MISSING", {"QUEUE | --user USER"}));
    return kWrongCall;
  }
  const bool dry_run = call.Has("--dry-run");
  if (!dry_run) {
    if (const Status status = MayChange(); status != kDone) return status;
  }
  const auto files = UsersFiles();
  if (!files) return kFailed;
  Status status = kDone;
  bool any = false;
  for (const UsersFile &file : *files) {
    if (!IsChosen(call, file)) continue;
    if (dry_run && !any) PrintLine(G_Translate("CTL_DRY_RUN"));
    any = true;
    PrintLine("- " + file.user + "  " + file.queue);
    if (dry_run || unlink(file.path.c_str()) == 0) continue;
    Complain(G_Message("ERR_REMOVE", {file.path}));
    status = kFailed;
  }
  if (!any) PrintLine(G_Translate("CTL_NOTHING_TO_DO"));
  return status;
}

}  // namespace

std::vector<Command> UndoCommands() {
  return {
      {"undo", "", "[NUMBER] [--list] [--dry-run] [--json]", "CTL_HELP_UNDO",
       "--list --dry-run --json", "", 0, 1, false, Undo},
      {"users", "list", "[QUEUE...] [--user USER] [--json]", "CTL_HELP_USERS_LIST", "--json",
       "--user", 0, kAnyNumber, false, ListUsers},
      {"users", "remove", "[QUEUE...] [--user USER] [--dry-run]", "CTL_HELP_USERS_REMOVE",
       "--dry-run", "--user", 0, kAnyNumber, false, RemoveUsers},
  };
}

}  // namespace kpx::ctl
