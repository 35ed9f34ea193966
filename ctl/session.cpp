#include "session.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <set>
#include <string>

#include "clist.h"
#include "cmessages.h"
#include "cprinters.h"
#include "cprintqueues.h"
#include "fontmap.h"
#include "foundqueues.h"
#include "globals.h"
#include "ignoreresult.h"
#include "language.h"
#include "loadprinters.h"
#include "loadqueues.h"
#include "lockholder.h"
#include "output.h"
#include "paths.h"
#include "porting.h"
#include "queuelistkeep.h"
#include "savequeues.h"
#include "textencoding.h"
#include "unfinishedsave.h"

namespace kpx::ctl {

namespace {

void LoadQueues() {
  BuildQueuesPath();
  G_Queues = CreatePrintQueues(queues_path.c_str());
  const Owned<CList> messages = CreateList();
  LoadQueuesAtStart(messages.get());
}

bool IsMissing(const std::string &path) {
  return access(path.c_str(), F_OK) != 0 && errno == ENOENT;
}

void StartEmpty() {
  G_Queues = CreatePrintQueues(kQueuesFile);
  G_OrgQueues = CreatePrintQueues(kQueuesFile);
  G_Queues->queues = CreateHash();
  G_OrgQueues->queues = CreateHash();
  G_Queues_hash = G_Queues->queues.get();
  G_OrgQueues_hash = G_OrgQueues->queues.get();
}

// A queue cannot have another printer or type in the spooler: it is removed and made anew.
bool IsMadeAnew(const CPrintQueue &before, const CPrintQueue &after) {
  return fIsEqual_CString_Value_Function(before.PrinterName.get(), after.PrinterName.get()) == 0 ||
         fIsEqual_CString_Value_Function(before.Language.get(), after.Language.get()) == 0;
}

// The queues that an interrupted save was to make anew: the snapshot has them as they are to be.
std::set<std::string> L_MadeAnew;

void RememberMadeAnew() {
  for (const CString *removed : Elements<CString>(G_UnfinishedRemovals.get())) {
    const char *name = fGet_CString_Value_Function(removed);
    if (HashFind(G_Queues_hash, name) != nullptr) L_MadeAnew.insert(name);
  }
}

Owned<CList> QueuesToRemove() {
  Owned<CList> names = CreateList();
  const auto add = [&names](const char *name) {
    IgnoreResult(fAddTail_CList_Function(names.get(), CreateStringWithValue(name)),
                 "the list is there");
  };
  for (const auto [name, before] : Pairs<CPrintQueue>(G_OrgQueues_hash)) {
    const CPrintQueue *after = HashValue<CPrintQueue>(G_Queues_hash, name);
    const bool is_anew =
        after != nullptr && (IsMadeAnew(*before, *after) || L_MadeAnew.contains(name));
    if (after == nullptr || is_anew) add(name);
  }
  for (const CString *removed : Elements<CString>(G_UnfinishedRemovals.get())) {
    const char *name = fGet_CString_Value_Function(removed);
    if (HashFind(G_OrgQueues_hash, name) == nullptr) add(name);
  }
  return names;
}

// Whether an earlier save is to be finished.
bool HasUnfinished() {
  if (G_UnfinishedRemovals != nullptr || IsSaveUnfinished()) return true;
  const auto queues = Pairs<CPrintQueue>(G_Queues_hash);
  for (const auto [name, queue] : queues) {
    if (IsIncompleteQueue(name)) return true;
  }
  return false;
}

// The line of a save's progress on a terminal, which each step writes over.
class ProgressLine {
 public:
  ~ProgressLine() { Write(""); }
  void Show(const SaveStep &step) {
    Write(G_Message(step.text_key, {step.number, step.total, step.queue}));
  }

 private:
  void Write(const std::string &text) const {
    if (is_terminal_) PrintError("\r" + text + "\x1b[K");
  }
  bool is_terminal_ = isatty(STDERR_FILENO) == 1;
};

Status Save() {
  const Owned<CList> errors = CreateList();
  const Owned<CList> removed = QueuesToRemove();
  ProgressLine progress;
  const SaveResult result =
      SaveQueues(removed.get(), errors.get(), [&](const SaveStep &step) { progress.Show(step); });
  const bool good = result == SaveResult::Ended && fIsEmpty_CList_Function(errors.get()) == 1;
  return good ? kDone : kFailed;
}

}  // namespace

Status MayChange() {
  static bool holds_lock = false;
  if (holds_lock) return kDone;
  if (geteuid() != 0) {
    Complain(G_Translate("CTL_NOT_ROOT"));
    return kFailed;
  }
  holds_lock = LockQueueList(kQueuesFile) == 1;
  if (holds_lock) return kDone;
  const std::optional<LockHolder> holder = HolderOfQueueList(kQueuesFile);
  Complain(holder
               ? G_Message("CTL_LOCK_HELD", {holder->program, int{holder->process}, holder->user})
               : G_Translate("CTL_LOCKED"));
  return kRefused;
}

void ReadQueues() {
  G_ProgName = kModeNeither;
  // Before the first administration there is no list, and nothing is wrong.
  if (IsMissing(kQueuesFile) && IsMissing(KeptQueueListPath(kQueuesFile))) return StartEmpty();
  LoadQueues();
}

void ReadPrinters() {
  if (G_Printers != nullptr) return;
  G_Fonts_hash = ParseFontmap();
  LoadPrinters(nullptr);
}

void ReadToLook() {
  ReadPrinters();
  ReadQueues();
  G_ProgName = kModeAdministration;
}

bool IsSaveUnfinished() {
  return !IsMissing(IntentionPath(kQueuesFile)) || !IsMissing(KeptQueueListPath(kQueuesFile));
}

Status ReadToChange(const Call &call) {
  if (call.Has("--dry-run")) {
    ReadToLook();
    return kDone;
  }
  if (const Status status = MayChange(); status != kDone) return status;
  G_ProgName = kModeAdministration;
  // Its answer comes while the rest is read.
  AskSpooler();
  ReadPrinters();
  LoadQueues();
  RememberMadeAnew();
  return kDone;
}

std::vector<PlanStep> PlanOfSession() { return PlanBetween(G_OrgQueues_hash, G_Queues_hash); }

Status SaveSession(const Call &call) {
  const std::vector<PlanStep> plan = PlanOfSession();
  const bool has_work = !plan.empty() || HasUnfinished();
  const bool saves = has_work && !call.Has("--dry-run");
  if (!call.Has("--json")) {
    if (!has_work) PrintLine(G_Translate("CTL_NOTHING_TO_DO"));
    if (has_work && !saves) PrintLine(G_Translate("CTL_DRY_RUN"));
    PrintPlan(plan);
    std::fflush(stdout);
  }
  const Status status = saves ? Save() : kDone;
  if (call.Has("--json")) {
    PrintJsonText({{"plan", FormOfPlan(plan)}, {"saved", saves && status == kDone}});
  }
  return status;
}

}  // namespace kpx::ctl
