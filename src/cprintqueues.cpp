#include "cprintqueues.h"

#include <cerrno>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "cmessages.h"
#include "debug.h"
#include "deffile.h"
#include "ignoreresult.h"
#include "paths.h"
#include "queuelistreader.h"
#include "queuelistwriter.h"
#include "textencoding.h"
#include "textfile.h"
#include "utils.h"

namespace {

constexpr CPrintQueuesOps L_Ops{
    .header = {.Class_ID = fCPrintQueues_Class_ID_Function,
               .Class_Name = fCPrintQueues_Class_Name_Function,
               .Delete = DeleteAs<CPrintQueues, fDelete_CPrintQueues_Function>,
               .Clone = CloneAs<CPrintQueues, fClone_CPrintQueues_Function>},
    .WriteToPaf = [](const CPrintQueues *collection) { return fWriteToPaf_Function(collection); },
    .WriteAllToDef =
        [](const CPrintQueues *collection) { return fWriteAllToDef_Function(collection); },
    .FillFromPaf = fFillFromPaf_Function_,
    .FillAllFromDef = fFillAllFromDef_Function,
    .GetPrintQueues = fGetPrintQueues_Function,
    .GetPafFile = fGetPafFile_Function,
};

// Kept on purpose: reading the list again drops the old queues without deleting them, so who was
// lent one may go on using it. They stay reachable here until the process ends.
std::vector<Owned<CHash>> L_DroppedQueues;

const char *PathOf(const CPrintQueues *collection) {
  return fGet_CString_Value_Function(fGetPafFile_Function(collection));
}

// The queues, lent; ends the process when there is no dictionary to take them from.
const CHash *ExistingQueues(const CPrintQueues *collection) {
  const CHash *queues = fGetPrintQueues_Function(collection);
  if (queues == nullptr) G_Fatal(5, "ERR_UNEXPECTED2", {"CPrintQueues"});
  return queues;
}

// The old queues go, an empty dictionary comes.
void StartEmpty(CPrintQueues *collection) {
  if (collection->queues != nullptr) L_DroppedQueues.push_back(std::move(collection->queues));
  collection->queues = CreateHash();
}

// Removes the option files in the data directory that belong to none of `queues`. One that cannot
// be removed is in nobody's way, and goes at the next time.
void RemoveOtherDefFiles(const CHash *queues) {
  std::set<std::string> kept;
  for (const auto [name, queue] : Pairs<CPrintQueue>(queues)) {
    const char *def_file = fGet_CString_Value_Function(fGet_DefFile_Function(queue));
    if (def_file != nullptr) kept.insert(def_file);
  }
  const Owned<CList> files = GetFilesFromDir(kDataDir);
  const Owned<CList> stale = CreateList();
  for (const CString *file : Elements<CString>(files.get())) {
    const std::string_view name = file->value.View();
    if (!name.ends_with(".def") || kept.contains(std::string(name))) continue;
    IgnoreResult(fAddTail_CList_Function(stale.get(), CloneOf(file)), "the list is there");
  }
  IgnoreResult(DeleteFilesFromDir(kDataDir, stale.get(), nullptr),
               "one that cannot be removed is logged, and goes at the next time");
}

// What happens when the list cannot be read. The administrator gets a new one, but only when there
// is none: a list that is there and cannot be read just now is not emptied.
void MissingList(const char *path, int create, int error) {
  if (create != 1) {
    G_Report(nullptr, "ERR_UNABLE_TO_READ_FILE", {path});
  } else if (error == ENOENT) {
    IgnoreResult(WriteHeader(path), "a list that cannot be made is reported");
  } else {
    G_Report(nullptr, "ERR_UNABLE_TO_WRITE_FILE", {path});
  }
}

}  // namespace

const CObjectOps *CPrintQueues::Ops() { return &L_Ops.header; }

Owned<CPrintQueues> CreatePrintQueues(const char *path) {
  const LogScope log("CreatePrintQueues");
  if (path == nullptr) return nullptr;
  Owned<CPrintQueues> collection = NewObject<CPrintQueues, OnNoMemory::Catalogue>();
  collection->paf_file = CreateStringWithValue(path);
  return collection;
}

int fCPrintQueues_Class_ID_Function() { return CPrintQueues::kClassId; }

const char *fCPrintQueues_Class_Name_Function() { return CPrintQueuesClassName; }

int fDelete_CPrintQueues_Function(CPrintQueues *collection) {
  FreeObject(collection);
  return 1;
}

Owned<CPrintQueues> fClone_CPrintQueues_Function(const CPrintQueues *collection) {
  const LogScope log("fClone_CPrintQueues_Function");
  Owned<CPrintQueues> clone = CreatePrintQueues(PathOf(collection));
  if (clone == nullptr) return nullptr;
  clone->queues = CloneOf(collection->queues.get());
  return clone->queues == nullptr ? nullptr : std::move(clone);
}

int fWriteToPaf_Function(const CPrintQueues *collection, CList *errors) {
  const LogScope log("fWriteToPaf_Function");
  const CHash *queues = fGetPrintQueues_Function(collection);
  // A collection that was never filled must not empty the list.
  if (queues == nullptr) {
    G_Report(errors, "ERR_UNEXPECTED2", {"CPrintQueues"});
    return 0;
  }
  return WriteQueueList(PathOf(collection), queues, errors) ? 1 : 0;
}

int fWriteAllToDef_Function(const CPrintQueues *collection, CList *errors) {
  const LogScope log("fWriteAllToDef_Function");
  const CHash *queues = ExistingQueues(collection);
  const bool complete = WriteQueueDefFiles(queues, errors);
  RemoveOtherDefFiles(queues);
  return complete ? 1 : 0;
}

int fFillFromPaf_Function_(CPrintQueues *collection, int create) {
  if (collection == nullptr) return 0;
  const char *path = PathOf(collection);
  if (const std::optional<std::string> text = ReadWholeFile(path)) {
    return FillQueuesFromText(collection, *text, path);
  }
  const int error = errno;
  const LogScope log("fFillFromPaf_Function_");
  StartEmpty(collection);
  MissingList(path, create, error);
  return 0;
}

int FillQueuesFromText(CPrintQueues *collection, std::string_view text, const std::string &path) {
  const LogScope log("fFillFromPaf_Function_");  // wherever the text comes from
  StartEmpty(collection);
  if (const auto error = ReadQueueList(text, collection->queues.get())) {
    Log(1, path + ":" + std::to_string(error->line_number) + ": " + error->reason);
    G_Fatal(3, "ERR_FILE_CORRUPTED", {path, error->line});
  }
  return 1;
}

int fFillAllFromDef_Function(CPrintQueues *collection) {
  const LogScope log("fFillAllFromDef_Function");
  for (const auto [name, queue] : Pairs<CPrintQueue>(ExistingQueues(collection))) {
    IgnoreResult(fFillFromDefFile_Function(queue),
                 "a user without settings has no file; one that is refused is logged");
  }
  return 1;
}

CHash *fGetPrintQueues_Function(const CPrintQueues *collection) {
  return collection == nullptr ? nullptr : collection->queues.get();
}

CString *fGetPafFile_Function(const CPrintQueues *collection) {
  return collection == nullptr ? nullptr : collection->paf_file.get();
}
