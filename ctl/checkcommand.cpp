#include "checkcommand.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "cmessages.h"
#include "hostcheck.h"
#include "hostrepair.h"
#include "jsonoutput.h"
#include "output.h"
#include "session.h"
#include "words.h"

namespace kpx::ctl {

namespace {

// What a call asks about. False when the value of an option is none.
bool ReadRequest(const Call &call, RepairRequest *request) {
  request->names = {call.words.begin(), call.words.end()};
  request->former_models = call.Option("--former").value_or("");
  const std::optional<std::string> word = call.Option("--only");
  if (!word) return true;
  request->only = DisagreementOf(*word);
  if (request->only) return true;
  Complain(G_Message("CTL_WRONG_VALUE", {"--only", *word}));
  return false;
}

// All faults. False in `*complete`, told, when CUPS does not answer.
std::vector<HostFault> Faults(bool *complete) {
  std::string words;
  std::vector<HostFault> faults = CheckHost(&words);
  *complete = words.empty();
  if (!*complete) Complain(G_Message("CHECK_NO_ANSWER", {words}));
  return faults;
}

std::vector<HostFault> AskedOf(std::vector<HostFault> faults, const RepairRequest &request) {
  std::erase_if(faults, [&](const HostFault &fault) { return !IsAsked(fault, request); });
  return faults;
}

Json FormOf(const std::vector<HostFault> &faults) {
  Json form = Json::array();
  for (const HostFault &fault : faults) {
    form.push_back({{"cause", WordFor(fault.kind)},
                    {"subject", fault.subject},
                    {"text", TextOf(fault)},
                    {"mend", MendOf(fault)}});
  }
  return form;
}

void Show(const Call &call, const std::vector<HostFault> &faults,
          const std::vector<HostFault> &repaired, bool complete) {
  if (call.Has("--json")) {
    Json form = {{"faults", FormOf(faults)}};
    if (call.Has("--repair")) form["repaired"] = FormOf(repaired);
    return PrintJsonText(form);
  }
  for (const HostFault &fault : repaired) {
    PrintLine(G_Message("CHECK_REPAIRED", {TextOf(fault)}));
  }
  for (const HostFault &fault : faults) PrintLine(TextOf(fault) + " -> " + MendOf(fault));
  if (faults.empty() && repaired.empty() && complete) PrintLine(G_Translate("CHECK_GOOD"));
}

bool IsAmong(const HostFault &fault, const std::vector<HostFault> &faults) {
  return std::any_of(faults.begin(), faults.end(), [&](const HostFault &other) {
    return other.kind == fault.kind && other.subject == fault.subject;
  });
}

// Mends what can be mended. False, told, when something failed.
bool Mend(const std::vector<HostFault> &faults, const RepairRequest &request) {
  const Owned<CList> errors = CreateList();
  RepairHost(faults, request, errors.get());
  return fIsEmpty_CList_Function(errors.get()) == 1;
}

Status Check(const Call &call) {
  RepairRequest request;
  if (!ReadRequest(call, &request)) return kWrongCall;
  const bool repairs = call.Has("--repair");
  if (repairs) {
    if (const Status status = ReadToChange(call); status != kDone) return status;
  } else {
    ReadPrinters();
  }
  bool complete = true;
  const std::vector<HostFault> found = Faults(&complete);
  std::vector<HostFault> faults = AskedOf(found, request);
  // Scripts change without the print service, all else with it alone.
  const bool can_repair = complete || request.only == Disagreement::ScriptOld;
  std::vector<HostFault> repaired;
  bool good = complete;
  if (repairs && can_repair && !faults.empty()) {
    good = Mend(found, request) && good;
    repaired = std::move(faults);
    faults = AskedOf(Faults(&complete), request);
    std::erase_if(repaired, [&](const HostFault &fault) { return IsAmong(fault, faults); });
  }
  Show(call, faults, repaired, complete);
  if (!good) return kFailed;
  return faults.empty() ? kDone : kChanges;
}

}  // namespace

Command CheckCommand() {
  return {"check",
          "",
          "[QUEUE...] [--only CAUSE] [--repair [--former DIRECTORY]] [--json]",
          "CTL_HELP_CHECK",
          "--repair --json",
          "--only --former",
          0,
          kAnyNumber,
          false,
          Check};
}

}  // namespace kpx::ctl
