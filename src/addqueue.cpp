#include "addqueue.h"

#include <algorithm>
#include <utility>

#include "cmessages.h"
#include "cprinter.h"
#include "cprintqueue.h"
#include "cprintqueues.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "queuenames.h"
#include "queuetypes.h"

const std::vector<const char *> G_QueueTypes = [] {
  std::vector<const char *> keys;
  for (const QueueType &type : kQueueTypes) {
    if (type.key != nullptr) keys.push_back(type.key);
  }
  return keys;
}();

namespace {

constexpr char L_SeenLater[] = "a queue that lacks something is not written to the list";
constexpr char L_PrintingSystem[] = "SystemV";

// The type whose translation `text` is, or null.
const char *TypeFromText(const std::string &text) {
  for (const char *type : G_QueueTypes) {
    if (text == G_Translate(type)) return type;
  }
  return nullptr;
}

}  // namespace

IdentityFault CheckIdentity(const QueueIdentity &identity) {
  const LogScope log("CheckIdentity");
  if (identity.name.empty()) return IdentityFault::kNoName;
  const Owned<CList> errors = CreateList();
  if (G_CheckUniqueQueueName(identity.name.c_str(), errors.get()) == 0) {
    return IdentityFault::kNameTaken;
  }
  if (identity.transport != G_Translate(kTcpIpTransport)) return IdentityFault::kTransport;
  return identity.address.empty() ? IdentityFault::kNoAddress : IdentityFault::kNone;
}

const char *WarningKey(IdentityFault fault) {
  switch (fault) {
    case IdentityFault::kNoName:
      return "KPXadminWarn003";
    case IdentityFault::kNameTaken:
      return "KPXadminWarn004";
    case IdentityFault::kNoAddress:
      return "KPXadminWarn002";
    case IdentityFault::kNone:
    case IdentityFault::kTransport:
      break;
  }
  return nullptr;
}

bool IsQueueType(const std::string &type) {
  return std::any_of(G_QueueTypes.begin(), G_QueueTypes.end(),
                     [&](const char *known) { return type == known; });
}

Owned<CPrintQueue> NewQueueRecord(const NewQueue &input, const char *type) {
  Owned<CPrintQueue> queue = CreatePrintQueue();
  const auto set = [&queue](int (*setter)(CPrintQueue *, const CString *), const char *text) {
    IgnoreResult(setter(queue.get(), CreateStringWithValue(text).get()), L_SeenLater);
  };
  set(fSet_PrinterName_Function, input.printer.c_str());
  set(fSet_Language_Function, type);
  set(fSet_AddressType_Function, kTcpIpTransport);
  set(fSet_Address_Function, input.address.c_str());
  set(fSet_PrintingSystem_Function, L_PrintingSystem);
  set(fSet_DefFile_Function, (input.name + ".def").c_str());
  const CPrinter *printer = HashValue<CPrinter>(G_Printers_hash, input.printer.c_str());
  IgnoreResult(fSet_PpdFile_Function(queue.get(), fGetPpdFile_Function(printer)), L_SeenLater);
  const Owned<CHash> empty = CreateHash();
  IgnoreResult(fSet_Options_Function(queue.get(), empty.get()), L_SeenLater);
  IgnoreResult(fSet_InstallableFeatures_Function(queue.get(), empty.get()), L_SeenLater);
  IgnoreResult(fSet_CustomPapers_Function(queue.get(), empty.get()), L_SeenLater);
  IgnoreResult(fSet_CustomMedias_Function(queue.get(), empty.get()), L_SeenLater);
  return queue;
}

AddQueueResult AddQueue(const NewQueue &input) {
  const LogScope log("AddQueue");
  const IdentityFault fault = CheckIdentity({input.name, input.transport, input.address});
  // Printer and type are looked at between the name and the other two.
  if (fault == IdentityFault::kNoName || fault == IdentityFault::kNameTaken) {
    return {false, WarningKey(fault)};
  }
  if (input.printer.empty()) return {false, "KPXadminWarn001"};
  const char *type = TypeFromText(input.type);
  if (type == nullptr) return {false, nullptr};
  if (fault != IdentityFault::kNone) return {false, WarningKey(fault)};
  IgnoreResult(HashPut(G_Queues_hash, input.name.c_str(), NewQueueRecord(input, type)),
               "the dictionary is there");
  return {true, nullptr};
}

bool IsQueueInputComplete(const std::string &name, const std::string &address,
                          bool printer_selected) {
  return !name.empty() && !address.empty() && printer_selected;
}

std::string CloneQueue(const char *name) {
  const LogScope log("CloneQueue");
  if (HashFind(G_Queues_hash, name) == nullptr) return "";
  std::string clone_name = BuildCloneName(name);
  return CloneQueueAs(name, clone_name) ? clone_name : "";
}

bool CloneQueueAs(const char *name, const std::string &clone_name) {
  Owned<CPrintQueue> clone = CloneOf(HashValue<CPrintQueue>(G_Queues_hash, name));
  if (clone == nullptr) return false;
  IgnoreResult(fSet_DefFile_Function(clone.get(),
                                     CreateStringWithValue((clone_name + ".def").c_str()).get()),
               "the record is there");
  IgnoreResult(HashPut(G_Queues_hash, clone_name.c_str(), std::move(clone)),
               "the dictionary is there");
  return true;
}

std::vector<std::string> QueueRow(const char *name) {
  const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, name);
  if (queue == nullptr) {
    G_Report(nullptr, "ERR_UNEXPECTED2", {CPrintQueuesClassName});
    return {};
  }
  const char *printer = fGet_CString_Value_Function(fGet_PrinterName_Function(queue));
  const char *language = fGet_CString_Value_Function(fGet_Language_Function(queue));
  const char *address = fGet_CString_Value_Function(fGet_Address_Function(queue));
  if (printer == nullptr || language == nullptr || address == nullptr) {
    G_Report(nullptr, "ERR_UNEXPECTED2", {CPrintQueueClassName});
    return {};
  }
  return {name, printer, G_Translate(language), address};
}

QueueButtons QueueButtonsFor(int selected_rows) {
  return {selected_rows == 1, selected_rows == 1, selected_rows >= 1};
}
