// CPrintQueues: every queue that the program manages, kept in the queue list file.
#pragma once

#include <string>
#include <string_view>

#include "cprintqueue.h"

inline constexpr char CPrintQueuesClassName[] = "CPrintQueues";

struct CPrintQueues : CObject {
  static constexpr int kClassId = 240;
  static const CObjectOps *Ops();

  Owned<CHash> queues;  // queue (spooler destination) name to CPrintQueue
  Owned<CString> paf_file;
};

struct CPrintQueuesOps {
  CObjectOps header;
  int (*WriteToPaf)(const CPrintQueues *collection);
  int (*WriteAllToDef)(const CPrintQueues *collection);
  int (*FillFromPaf)(CPrintQueues *collection, int create);
  int (*FillAllFromDef)(CPrintQueues *collection);
  CHash *(*GetPrintQueues)(const CPrintQueues *collection);
  CString *(*GetPafFile)(const CPrintQueues *collection);
};

// A collection for the list file `path` without a dictionary yet; null when `path` is null.
[[nodiscard]] Owned<CPrintQueues> CreatePrintQueues(const char *path);

int fCPrintQueues_Class_ID_Function();
const char *fCPrintQueues_Class_Name_Function();

// Takes the collection over with all queues; 1, also for null.
int fDelete_CPrintQueues_Function(CPrintQueues *collection);

// A deep copy; null for null and for a collection without a dictionary.
[[nodiscard]] Owned<CPrintQueues> fClone_CPrintQueues_Function(const CPrintQueues *collection);

// Rewrites the list file: 1; 0, reported to `errors` (may be null), when it cannot be written
// whole or there is no dictionary to write.
[[nodiscard]] int fWriteToPaf_Function(const CPrintQueues *collection, CList *errors = nullptr);

// Writes the option file of each queue, durably, and then removes all others from the data
// directory: no queue is ever without its file. 1; 0, reported to `errors` (may be null), when one
// could not be written. A collection without a dictionary ends the process with status 5.
[[nodiscard]] int fWriteAllToDef_Function(const CPrintQueues *collection, CList *errors = nullptr);

// Reads the list file into a new dictionary: 1; 0 and an empty dictionary when it cannot be read
// (a message on standard error, but with `create` 1 a missing file is made, holding its header
// alone). An incomplete entry ends the process with status 3.
[[nodiscard]] int fFillFromPaf_Function_(CPrintQueues *collection, int create);

// The same from `text`, the content of the file `path`; 1.
[[nodiscard]] int FillQueuesFromText(CPrintQueues *collection, std::string_view text,
                                     const std::string &path);

// Overlays the calling user's option files on all queues; 1. A collection without a dictionary
// ends the process with status 5.
int fFillAllFromDef_Function(CPrintQueues *collection);

// The dictionary or the list file's path, lent; null for a null collection.
CHash *fGetPrintQueues_Function(const CPrintQueues *collection);
CString *fGetPafFile_Function(const CPrintQueues *collection);
