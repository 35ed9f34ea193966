#include "hostrepair.h"

#include <optional>
#include <utility>

#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "debug.h"
#include "dialogoptions.h"
#include "globals.h"
#include "ignoreresult.h"
#include "interfacescript.h"
#include "modelscript.h"
#include "paths.h"
#include "porting.h"
#include "queuelistkeep.h"
#include "queuelistreader.h"
#include "savequeues.h"

namespace {

// The queue as the list has it; null when it has not.
Owned<CPrintQueue> ListedQueue(const std::string &name) {
  const std::optional<std::string> list = ReadLastQueueList(kQueuesFile);
  const Owned<CHash> queues = CreateHash();
  if (!list || ReadQueueList(*list, queues.get())) return nullptr;
  return CloneOf(HashValue<CPrintQueue>(queues.get(), name.c_str()));
}

// Has the save make the queue anew, as the list says.
void MakeAnew(const std::string &name) {
  MarkIncompleteQueue(name.c_str());
  if (HashFind(G_Queues_hash, name.c_str()) != nullptr) return;
  Owned<CPrintQueue> queue = ListedQueue(name);
  if (queue == nullptr) return;
  IgnoreResult(HashPut(G_Queues_hash, name.c_str(), std::move(queue)), "the dictionary is there");
}

void Run(const std::string &name, const std::string &command, CList *errors) {
  if (!CheckCommandSafeName(name.c_str(), errors)) return;
  if (RunCommand(JoinWords({command, kDiscardOutput})) == 0) return;
  G_Report(errors, "ERR_CMD_FOR_QUEUE", {command, name});
}

// What is left to be done for all of them together.
struct Steps {
  bool save = false;
  bool describe = false;
};

void Repair(const HostFault &fault, Steps &steps, CList *errors) {
  const std::string &name = fault.subject;
  switch (fault.kind) {
    case Disagreement::ScriptUnreadable:
      return;
    case Disagreement::ScriptOld:
      steps.describe = true;  // CUPS's description is older than the script then
      return IgnoreResult(UpdateModelPart(name, errors), "what fails is in `errors`");
    case Disagreement::ScriptAccess:
      return Run(name, ScriptOwnerCommand(InterfacePath(name)), errors);
    case Disagreement::DeviceDiffers:
      return Run(name, MendOf(fault), errors);
    case Disagreement::Unknown:
      return IgnoreResult(DeleteQueueSysV(name.c_str(), errors), "what fails is in `errors`");
    case Disagreement::DescriptionMissing:
      steps.describe = true;
      return;
    case Disagreement::NotInSpooler:
    case Disagreement::Incomplete:
    case Disagreement::ScriptForeign:
    case Disagreement::ScriptDiffers:
      MakeAnew(name);
      break;
    default:
      break;
  }
  steps.save = true;
}

bool IsRepaired(const HostFault &fault, const RepairRequest &request) {
  if (fault.kind == Disagreement::ScriptUnreadable || !IsAsked(fault, request)) return false;
  if (!fault.AsksForName() || request.names.contains(fault.subject)) return true;
  return fault.kind == Disagreement::ScriptOld && !request.former_models.empty() &&
         BeginsAsModelIn(request.former_models, LookAtScript(fault.subject.c_str()).text);
}

}  // namespace

bool IsAsked(const HostFault &fault, const RepairRequest &request) {
  if (request.only && fault.kind != *request.only) return false;
  return request.names.empty() || request.names.contains(fault.subject);
}

void RepairHost(const std::vector<HostFault> &faults, const RepairRequest &request, CList *errors) {
  const LogScope log("RepairHost");
  Steps steps;
  for (const HostFault &fault : faults) {
    if (IsRepaired(fault, request)) {
      Repair(fault, steps, errors);
    } else if (fault.kind == Disagreement::ScriptForeign) {
      // The save would forget it, as one that is managed elsewhere now.
      SetAsideQueue(fault.subject.c_str(), ListedQueue(fault.subject));
    }
  }
  if (steps.save) {
    IgnoreResult(SaveQueues(G_UnfinishedRemovals.get(), errors, {}), "what fails is in `errors`");
  } else if (steps.describe) {
    OfferOptions(errors);
  }
}
