#include "queuenames.h"

#include <cstring>

#include "cmessages.h"
#include "cprintqueue.h"
#include "debug.h"
#include "globals.h"
#include "optionstate.h"
#include "porting.h"

int G_IsStringInCList(const CList *list, const char *text) {
  const LogScope log("G_IsStringInCList");
  if (list == nullptr || text == nullptr) return 0;
  for (const CString *element : Elements<CString>(list)) {
    const char *value = fGet_CString_Value_Function(element);
    if (value != nullptr && std::strcmp(value, text) == 0) return 1;
  }
  return 0;
}

int G_CheckUniqueQueueName(const char *name, CList *errors) {
  const LogScope log("G_CheckUniqueQueueName");
  if (name == nullptr) return 0;
  const char *current = fGet_CString_Value_Function(G_CurrentQueue_name.get());
  if (current != nullptr && std::strcmp(current, name) == 0) return 1;
  if (HashFind(G_Queues_hash, name) != nullptr) return 0;
  const Owned<CList> spooler_names = GetQueueNamesSysV(nullptr, errors);
  return G_IsStringInCList(spooler_names.get(), name) == 1 ? 0 : 1;
}

TakenQueueNames::TakenQueueNames(CList *errors) {
  const Owned<CList> names = GetQueueNamesSysV(nullptr, errors);
  for (const CString *name : Elements<CString>(names.get())) {
    spooler_names_.emplace(name->value.View());
  }
}

bool TakenQueueNames::Has(const std::string &name) const {
  return HashFind(G_Queues_hash, name.c_str()) != nullptr || spooler_names_.contains(name);
}

std::string BuildCloneName(const char *name) {
  const LogScope log("BuildCloneName");
  const Owned<CList> errors = CreateList();
  std::string clone = std::string("CopyOf_") + name;
  for (int number = 2; G_CheckUniqueQueueName(clone.c_str(), errors.get()) == 0; ++number) {
    clone = "Copy" + std::to_string(number) + "Of_" + name;
  }
  return clone;
}

int G_GetQueuePrnSys(const char *name) {
  const LogScope log("G_GetQueuePrnSys");
  const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, name);
  if (queue == nullptr) queue = HashValue<CPrintQueue>(G_OrgQueues_hash, name);
  if (queue == nullptr) return 0;
  const char *system = fGet_CString_Value_Function(fGet_PrintingSystem_Function(queue));
  if (system == nullptr) {
    G_Report(nullptr, "ERR_UNEXPECTED2", {CPrintQueueClassName});
    return 0;
  }
  if (std::strcmp(system, "CUPS") == 0) return 2;
  return std::strcmp(system, "LPRng") == 0 ? 1 : 0;
}
