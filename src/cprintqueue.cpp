#include "cprintqueue.h"

#include <utility>
#include <vector>

#include "cfeature.h"
#include "cmessages.h"
#include "cprinter.h"
#include "debug.h"
#include "ignoreresult.h"
#include "textencoding.h"

namespace {

constexpr CPrintQueueOps L_Ops{
    .header = {.Class_ID = fCPrintQueue_Class_ID_Function,
               .Class_Name = fCPrintQueue_Class_Name_Function,
               .Delete = DeleteAs<CPrintQueue, fDelete_CPrintQueue_Function>,
               .Clone = CloneAs<CPrintQueue, fClone_CPrintQueue_Function>},
    .Get_CustomPapers = fGet_CustomPapers_Function,
    .Set_CustomPapers = fSet_CustomPapers_Function,
    .Get_CustomMedias = fGet_CustomMedias_Function,
    .Set_CustomMedias = fSet_CustomMedias_Function,
    .Get_Options = fGet_Options_Function,
    .Set_Options = fSet_Options_Function,
    .Get_InstallableFeatures = fGet_InstallableFeatures_Function,
    .Set_InstallableFeatures = fSet_InstallableFeatures_Function,
    .Get_PpdFile = fGet_PpdFile_Function,
    .Set_PpdFile = fSet_PpdFile_Function,
    .Get_DefFile = fGet_DefFile_Function,
    .Set_DefFile = fSet_DefFile_Function,
    .Get_PrinterName = fGet_PrinterName_Function,
    .Set_PrinterName = fSet_PrinterName_Function,
    .Get_Language = fGet_Language_Function,
    .Set_Language = fSet_Language_Function,
    .Get_Address = fGet_Address_Function,
    .Set_Address = fSet_Address_Function,
    .Get_AddressType = fGet_AddressType_Function,
    .Set_AddressType = fSet_AddressType_Function,
    .Get_PrintingSystem = fGet_PrintingSystem_Function,
    .Set_PrintingSystem = fSet_PrintingSystem_Function,
    .WriteDefFile = [](const CPrintQueue *queue,
                       int which) { return fWriteDefFile_Function(queue, which); },
    .FillWithDefaultOptions = fFillWithDefaultOptions_Function,
    .FillFromDefFile = fFillFromDefFile_Function,
};

template <class T>
T *Get(const CPrintQueue *queue, Owned<T> CPrintQueue::*member) {
  return queue == nullptr ? nullptr : (queue->*member).get();
}

template <class T>
int Set(CPrintQueue *queue, Owned<T> CPrintQueue::*member, const T *value) {
  if (queue == nullptr || value == nullptr) return 0;
  queue->*member = CloneOf(value);
  return 1;
}

// True when `test` holds for the pointer to each member.
template <class Test>
bool AllMembers(const Test &test) {
  return test(&CPrintQueue::Options) && test(&CPrintQueue::CustomPapers) &&
         test(&CPrintQueue::CustomMedias) && test(&CPrintQueue::InstallableFeatures) &&
         test(&CPrintQueue::PpdFile) && test(&CPrintQueue::DefFile) &&
         test(&CPrintQueue::PrinterName) && test(&CPrintQueue::Language) &&
         test(&CPrintQueue::Address) && test(&CPrintQueue::AddressType) &&
         test(&CPrintQueue::PrintingSystem);
}

// Puts the default of every feature into `settings` and traces it. The trace is kept on purpose:
// it is there in both personalities, whatever the log's level.
void PutDefaults(const CHash *features, CHash *settings) {
  if (features == nullptr) G_Fatal(5, "ERR_UNEXPECTED2", {"CPrintQueue"});
  for (const auto [key, feature] : Pairs<CFeature>(features)) {
    const CString *value = fGet_Default_Function(feature);
    IgnoreResult(HashPut(settings, key, CloneOf(value)), "the dictionary and the key are there");
    PrintError(FormatMessage("Put in queue:%s=%s\n", {key, fGet_CString_Value_Function(value)}));
  }
}

// Kept on purpose: filling with defaults drops the custom papers without deleting them, so who was
// lent the table may go on reading it. They stay reachable here until the process ends.
std::vector<Owned<CHash>> L_DroppedCustomPapers;

}  // namespace

const CObjectOps *CPrintQueue::Ops() { return &L_Ops.header; }

Owned<CPrintQueue> CreatePrintQueue() { return NewObject<CPrintQueue, OnNoMemory::Catalogue>(); }

int fCPrintQueue_Class_ID_Function() { return CPrintQueue::kClassId; }

const char *fCPrintQueue_Class_Name_Function() { return CPrintQueueClassName; }

int fDelete_CPrintQueue_Function(CPrintQueue *queue) {
  if (queue == nullptr) return 0;
  FreeObject(queue);
  return 1;
}

Owned<CPrintQueue> fClone_CPrintQueue_Function(const CPrintQueue *queue) {
  if (queue == nullptr) return nullptr;
  Owned<CPrintQueue> clone = CreatePrintQueue();
  const bool complete = AllMembers([&](auto member) {
    clone.get()->*member = CloneOf((queue->*member).get());
    return clone.get()->*member != nullptr;
  });
  return complete ? std::move(clone) : nullptr;
}

bool IsComplete(const CPrintQueue *queue) {
  return queue != nullptr && AllMembers([&](auto member) { return queue->*member != nullptr; });
}

CHash *fGet_CustomPapers_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::CustomPapers);
}

int fSet_CustomPapers_Function(CPrintQueue *queue, const CHash *value) {
  return Set(queue, &CPrintQueue::CustomPapers, value);
}

CHash *fGet_CustomMedias_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::CustomMedias);
}

int fSet_CustomMedias_Function(CPrintQueue *queue, const CHash *value) {
  return Set(queue, &CPrintQueue::CustomMedias, value);
}

CHash *fGet_Options_Function(const CPrintQueue *queue) { return Get(queue, &CPrintQueue::Options); }

int fSet_Options_Function(CPrintQueue *queue, const CHash *value) {
  return Set(queue, &CPrintQueue::Options, value);
}

CHash *fGet_InstallableFeatures_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::InstallableFeatures);
}

int fSet_InstallableFeatures_Function(CPrintQueue *queue, const CHash *value) {
  return Set(queue, &CPrintQueue::InstallableFeatures, value);
}

CString *fGet_PpdFile_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::PpdFile);
}

int fSet_PpdFile_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::PpdFile, value);
}

CString *fGet_DefFile_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::DefFile);
}

int fSet_DefFile_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::DefFile, value);
}

CString *fGet_PrinterName_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::PrinterName);
}

int fSet_PrinterName_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::PrinterName, value);
}

CString *fGet_Language_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::Language);
}

int fSet_Language_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::Language, value);
}

CString *fGet_Address_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::Address);
}

int fSet_Address_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::Address, value);
}

CString *fGet_AddressType_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::AddressType);
}

int fSet_AddressType_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::AddressType, value);
}

CString *fGet_PrintingSystem_Function(const CPrintQueue *queue) {
  return Get(queue, &CPrintQueue::PrintingSystem);
}

int fSet_PrintingSystem_Function(CPrintQueue *queue, const CString *value) {
  return Set(queue, &CPrintQueue::PrintingSystem, value);
}

int fFillWithDefaultOptions_Function(CPrintQueue *queue, const CHash *printers) {
  const LogScope log("fFillWithDefaultOptions_Function");
  if (queue == nullptr) return 0;
  queue->Options = CreateHash();
  queue->InstallableFeatures = CreateHash();
  if (queue->CustomPapers != nullptr) {
    L_DroppedCustomPapers.push_back(std::move(queue->CustomPapers));
  }
  queue->CustomPapers = CreateHash();

  const char *name = fGet_CString_Value_Function(queue->PrinterName.get());
  const CPrinter *printer = HashValue<CPrinter>(printers, name);
  PutDefaults(fGetFeatures_Function(printer), queue->Options.get());
  PutDefaults(fGetInstallableOptions_Function(printer), queue->InstallableFeatures.get());
  return 1;
}
