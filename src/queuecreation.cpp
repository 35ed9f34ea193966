#include "queuecreation.h"

#include <unistd.h>

#include <optional>
#include <utility>

#include "cmessages.h"
#include "cprintqueue.h"
#include "debug.h"
#include "deffile.h"
#include "globals.h"
#include "ignoreresult.h"
#include "interfacescript.h"
#include "language.h"
#include "paths.h"
#include "porting.h"
#include "printermodels.h"

namespace {

// What the scripts of one save say about the printer. Kept on purpose: a printer of no known model
// leaves the values of the queue before it.
struct ScriptValues {
  std::string ppd_path;
  std::string transport_parameter;
};

std::string PpdPath(const PrinterModel &model) {
  const std::string nls_dir = std::string(model.nls_dir) + "/";
  const std::string file = std::string("/ppds/") + model.ppd_file;
  const std::string path = nls_dir + G_GetNlsDirFromLang() + file;
  // A model may have been added before the language was installed.
  const bool is_added = model.number == kAddedModelNumber;
  return is_added && access(path.c_str(), R_OK) != 0 ? nls_dir + "enu" + file : path;
}

// Rewrites the script when it sets another address than the queue's, or the address is no longer
// that of the start.
void UpdateAddress(const char *name, CPrintQueue *queue, const std::string &script, CList *errors,
                   const QueueObserver &observer) {
  const CString *old_address =
      fGet_Address_Function(HashValue<CPrintQueue>(G_OrgQueues_hash, name));
  const CString *new_address = fGet_Address_Function(queue);
  const bool is_changed =
      old_address != nullptr && fIsEqual_CString_Value_Function(old_address, new_address) == 0;
  const std::optional<std::string> wanted =
      WithNetworkAddress(script, fGet_CString_Value_Function(new_address));
  const bool is_other = wanted && *wanted != script;
  if (!is_changed && !is_other) return;
  if (observer) observer(name, true);
  if (ChangeAddressInInterface(name, fGet_CString_Value_Function(new_address), errors) == 1) return;
  // The save goes on as if nothing had failed, so this is told on standard error alone.
  if (!wanted) G_Report(nullptr, "ERR_ADDRESS_NOT_CHANGED", {name});
  // The saved list tells the address that the spooler really uses.
  if (is_changed) {
    IgnoreResult(fSet_Address_Function(queue, old_address), "queue and address are there");
  } else if (const std::optional<std::string> used = NetworkAddressOf(script)) {
    IgnoreResult(fSet_Address_Function(queue, CreateStringWithValue(used->c_str()).get()),
                 "queue and address are there");
  }
}

// Makes the queue and appends its block: 1, or 0 after any failure. A queue that the spooler has in
// part stays in the working set, whatever fails.
int CreateQueue(const char *name, const CPrintQueue *queue, ScriptValues &values, CList *errors,
                const QueueObserver &observer) {
  const PrinterModel &model =
      FindPrinterModel(fGet_CString_Value_Function(fGet_PrinterName_Function(queue)));
  if (model.ppd_file != nullptr) values.ppd_path = PpdPath(model);
  if (model.transport_parameter != nullptr) values.transport_parameter = model.transport_parameter;
  if (AddQueueSysV(name, model.spooler_model, errors, observer) == 0) {
    if (!IsIncompleteQueue(name)) HashRemove(G_Queues_hash, name);
    return 0;
  }
  return WriteInterfaceBlock(
      InterfacePath(name),
      {fGet_CString_Value_Function(fGet_Language_Function(queue)), values.ppd_path,
       QueueDefFilePath(std::string(name) + ".def"),
       fGet_CString_Value_Function(fGet_Address_Function(queue)), values.transport_parameter,
       model.backend, std::to_string(model.port)},
      errors);
}

// One queue of the working set: 1, or 0 after a failure that the save must tell.
int BringInLine(const char *name, ScriptValues &values, CList *errors,
                const QueueObserver &observer) {
  CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, name);
  if (queue == nullptr) {
    G_Report(errors, "ERR_UNEXPECTED2", {"CPrintQueues"});
    return 0;
  }
  if (fGet_CString_Value_Function(queue->PrinterName.get()) == nullptr ||
      fGet_CString_Value_Function(queue->Language.get()) == nullptr ||
      fGet_CString_Value_Function(queue->Address.get()) == nullptr) {
    G_Report(errors, "ERR_UNEXPECTED2", {"CPrintQueue"});
    return 0;
  }
  if (WasSetAside(name)) return 1;
  const QueueScript script = ReadQueueScript(name, errors);
  if (script.state == ScriptState::Unreadable) return 0;
  if (script.state != ScriptState::Ours || IsIncompleteQueue(name)) {
    return CreateQueue(name, queue, values, errors, observer);
  }
  UpdateAddress(name, queue, script.text, errors, observer);
  return 1;
}

}  // namespace

std::vector<SpoolerCommand> CreateQueueCommands(const std::string &name, const std::string &model) {
  std::vector<SpoolerCommand> commands = {
      {"lpadmin", JoinWords({std::string(kLpadmin) + " -p", name,
                             "-v /dev/null -I any -o nobanner -m", model, kDiscardOutput})}};
  for (SpoolerCommand &step : ScriptOwnerCommands(InterfacePath(name))) {
    commands.push_back(std::move(step));
  }
  for (const char *program : {kAccept, kEnable}) {
    commands.push_back({program, JoinWords({program, name, kDiscardOutput})});
  }
  return commands;
}

int AddQueueSysV(const char *name, const char *model, CList *errors,
                 const QueueObserver &observer) {
  const LogScope log("AddQueueSysV");
  if (model == nullptr || !CheckCommandSafeName(name, errors)) return 0;
  bool exists = false;
  for (const SpoolerCommand &step : CreateQueueCommands(name, model)) {
    if (observer) observer(name, true);
    if (RunCommand(step.command) != 0) {
      G_Report(errors, "ERR_CMD_FOR_QUEUE", {step.reported_name, name});
      if (!exists) return 0;
    }
    exists = true;
  }
  return 1;
}

int AddQueuesSysV(CList *errors, const QueueObserver &observer) {
  const LogScope log("AddQueuesSysV");
  const Owned<CList> names = fGetKeys_CHash_Function(G_Queues_hash);
  if (names == nullptr) {
    G_Report(errors, "ERR_UNEXPECTED2", {"CHash"});
    return 0;
  }
  int result = 1;
  ScriptValues values;
  for (const CString *name : Elements<CString>(names.get())) {
    if (observer) observer(fGet_CString_Value_Function(name), false);
    if (BringInLine(fGet_CString_Value_Function(name), values, errors, observer) == 0) result = 0;
  }
  return result;
}
