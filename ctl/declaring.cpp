#include "declaring.h"

#include <algorithm>
#include <utility>

#include "addqueue.h"
#include "clist.h"
#include "cmessages.h"
#include "cprinter.h"
#include "globals.h"
#include "ignoreresult.h"
#include "output.h"
#include "queueplan.h"

namespace kpx::ctl {

namespace {

std::optional<Fault> FaultOfFields(const DeclaredQueue &declared) {
  const std::string &printer = declared.fields.at("printer");
  if (auto fault = FaultOfPrinter(printer)) return Fault{kFailed, fault->text, "printer"};
  const std::string &type = declared.fields.at("type");
  if (!IsQueueType(type)) {
    const std::string types = JoinedWords({G_QueueTypes.begin(), G_QueueTypes.end()});
    return Fault{kFailed, G_Message("CTL_CHOICE_UNKNOWN", {"type", type, types}), "type"};
  }
  if (auto fault = FaultOfAddress(declared.fields.at("address"))) {
    return Fault{kFailed, fault->text, "address"};
  }
  return std::nullopt;
}

std::vector<Assignment> AssignmentsOf(const DeclaredQueue &declared) {
  std::vector<Assignment> assignments;
  for (const auto &[key, value] : declared.settings) assignments.push_back({key, value});
  return assignments;
}

}  // namespace

Declaring::Declaring(bool resolve) : names_(nullptr), resolve_(resolve) {}

std::optional<Fault> Declaring::Declare(const DeclaredQueue &declared) {
  const char *name = declared.name.c_str();
  const CPrintQueue *before = HashValue<CPrintQueue>(G_Queues_hash, name);
  if (before != nullptr && IsAs(*before, declared.fields, declared.settings)) return std::nullopt;
  if (before == nullptr) {
    if (auto fault = FaultOfName(declared.name)) return fault;
    if (names_.Has(declared.name)) {
      return Fault{kFailed, G_Message("CTL_QUEUE_TAKEN", {declared.name})};
    }
  }
  if (auto fault = FaultOfFields(declared)) return fault;
  NewQueue values;
  values.name = declared.name;
  values.printer = declared.fields.at("printer");
  values.address = declared.fields.at("address");
  IgnoreResult(
      HashPut(G_Queues_hash, name, NewQueueRecord(values, declared.fields.at("type").c_str())),
      "the dictionary is there");
  if (declared.settings.empty()) return std::nullopt;
  return ChangeQueue(declared.name, AssignmentsOf(declared), resolve_);
}

}  // namespace kpx::ctl
