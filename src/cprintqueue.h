// CPrintQueue: one print queue - its printer, its place on the network and in the spooler, and the
// option values that jobs sent through it get by default.
#pragma once

#include "chash.h"

inline constexpr char CPrintQueueClassName[] = "CPrintQueue";

struct CPrintQueue : CObject {
  static constexpr int kClassId = 230;
  static const CObjectOps *Ops();

  Owned<CHash> Options;              // main keyword ("*Nup") to CString option keyword
  Owned<CHash> CustomPapers;         // name to CCpsParams
  Owned<CHash> CustomMedias;         // name to CCmtParams
  Owned<CHash> InstallableFeatures;  // keyword ("*OptionHCF") to CString setting
  Owned<CString> PpdFile;            // bare file name
  Owned<CString> DefFile;            // bare file name of the queue's option file
  Owned<CString> PrinterName;        // key of the printer catalogue
  Owned<CString> Language;           // the type: a key of queuetypes.h
  Owned<CString> Address;            // network address of the printer
  Owned<CString> AddressType;        // "tcpip"
  Owned<CString> PrintingSystem;     // "SystemV", "CUPS" or "LPRng"
};

struct CPrintQueueOps {
  CObjectOps header;
  CHash *(*Get_CustomPapers)(const CPrintQueue *queue);
  int (*Set_CustomPapers)(CPrintQueue *queue, const CHash *value);
  CHash *(*Get_CustomMedias)(const CPrintQueue *queue);
  int (*Set_CustomMedias)(CPrintQueue *queue, const CHash *value);
  CHash *(*Get_Options)(const CPrintQueue *queue);
  int (*Set_Options)(CPrintQueue *queue, const CHash *value);
  CHash *(*Get_InstallableFeatures)(const CPrintQueue *queue);
  int (*Set_InstallableFeatures)(CPrintQueue *queue, const CHash *value);
  CString *(*Get_PpdFile)(const CPrintQueue *queue);
  int (*Set_PpdFile)(CPrintQueue *queue, const CString *value);
  CString *(*Get_DefFile)(const CPrintQueue *queue);
  int (*Set_DefFile)(CPrintQueue *queue, const CString *value);
  CString *(*Get_PrinterName)(const CPrintQueue *queue);
  int (*Set_PrinterName)(CPrintQueue *queue, const CString *value);
  CString *(*Get_Language)(const CPrintQueue *queue);
  int (*Set_Language)(CPrintQueue *queue, const CString *value);
  CString *(*Get_Address)(const CPrintQueue *queue);
  int (*Set_Address)(CPrintQueue *queue, const CString *value);
  CString *(*Get_AddressType)(const CPrintQueue *queue);
  int (*Set_AddressType)(CPrintQueue *queue, const CString *value);
  CString *(*Get_PrintingSystem)(const CPrintQueue *queue);
  int (*Set_PrintingSystem)(CPrintQueue *queue, const CString *value);
  int (*WriteDefFile)(const CPrintQueue *queue, int which);
  int (*FillWithDefaultOptions)(CPrintQueue *queue, const CHash *printers);
  int (*FillFromDefFile)(CPrintQueue *queue);
};

// A record with every member null. Out of memory: the catalogue's words, status 3.
[[nodiscard]] Owned<CPrintQueue> CreatePrintQueue();

int fCPrintQueue_Class_ID_Function();
const char *fCPrintQueue_Class_Name_Function();

// Takes the record over with its members; 1, but 0 for null.
int fDelete_CPrintQueue_Function(CPrintQueue *queue);

// A deep copy; null for null and for a record that lacks any of its members.
[[nodiscard]] Owned<CPrintQueue> fClone_CPrintQueue_Function(const CPrintQueue *queue);

// True when the record has all of its members; false for null.
[[nodiscard]] bool IsComplete(const CPrintQueue *queue);

// Getters lend the member (null when the record or the member is null). Setters replace it by a
// clone of `value`: 1; 0 and no change when the record or `value` is null.
CHash *fGet_CustomPapers_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_CustomPapers_Function(CPrintQueue *queue, const CHash *value);
CHash *fGet_CustomMedias_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_CustomMedias_Function(CPrintQueue *queue, const CHash *value);
CHash *fGet_Options_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_Options_Function(CPrintQueue *queue, const CHash *value);
CHash *fGet_InstallableFeatures_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_InstallableFeatures_Function(CPrintQueue *queue, const CHash *value);
CString *fGet_PpdFile_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_PpdFile_Function(CPrintQueue *queue, const CString *value);
CString *fGet_DefFile_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_DefFile_Function(CPrintQueue *queue, const CString *value);
CString *fGet_PrinterName_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_PrinterName_Function(CPrintQueue *queue, const CString *value);
CString *fGet_Language_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_Language_Function(CPrintQueue *queue, const CString *value);
CString *fGet_Address_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_Address_Function(CPrintQueue *queue, const CString *value);
CString *fGet_AddressType_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_AddressType_Function(CPrintQueue *queue, const CString *value);
CString *fGet_PrintingSystem_Function(const CPrintQueue *queue);
[[nodiscard]] int fSet_PrintingSystem_Function(CPrintQueue *queue, const CString *value);

// Writes the options to the queue's own option file (`which` 1: with installable features, custom
// papers and media) or to the calling user's (`which` 0: options only). 1; 0, reported to `errors`
// (may be null), when that fails (silently when the user has no name). Defined in deffile.cpp.
[[nodiscard]] int fWriteDefFile_Function(const CPrintQueue *queue, int which,
                                         CList *errors = nullptr);

// Empties the custom papers and sets options and installable features to the defaults of the
// queue's printer in `printers` (name to CPrinter); each pair is traced on standard error. 1; 0 for
// a null record. An unknown printer ends the process with status 5.
[[nodiscard]] int fFillWithDefaultOptions_Function(CPrintQueue *queue, const CHash *printers);

// Overlays the calling user's option file on the options: 1; 0 when there is none that the user or
// the superuser owns; one that is there all the same is logged. A queue without DefFile ends the
// process with status 5. Defined in deffile.cpp.
[[nodiscard]] int fFillFromDefFile_Function(CPrintQueue *queue);
