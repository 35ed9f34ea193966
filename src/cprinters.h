// CPrinters: the catalogue of installed printer models.
#pragma once

#include "chash.h"

inline constexpr char CPrintersClassName[] = "CPrinters";

struct CPrinters : CObject {
  static constexpr int kClassId = 290;
  static const CObjectOps *Ops();

  Owned<CHash> printers;  // printer name to CPrinter; null until built
  Owned<CString> ppd_directory;
  Owned<CString> paf_directory;
};

struct CPrintersOps {
  CObjectOps header;
  CHash *(*GetPrinters)(const CPrinters *catalogue);
  int (*BuildPrinters)(CPrinters *catalogue);
};

// A catalogue of both paths, not built yet; null when either is null. Out of memory: the
// catalogue's words, status 3.
[[nodiscard]] Owned<CPrinters> CreatePrinters(const char *ppd_directory, const char *paf_directory);

int fCPrinters_Class_ID_Function();
const char *fCPrinters_Class_Name_Function();

// Takes the catalogue over with every printer; 1, also for null.
int fDelete_CPrinters_Function(CPrinters *catalogue);

// A catalogue of the same paths with a clone of the printers (none when not built); a printer that
// cannot be cloned is there as null. Null for null.
[[nodiscard]] Owned<CPrinters> fClone_CPrinters_Function(const CPrinters *catalogue);

// The printers, lent; null for a null catalogue and until it is built.
CHash *fGetPrinters_Function(const CPrinters *catalogue);

// Brings the PAF files up to date (CheckPafFiles) and reads those whose names begin with "vek". Of
// two with the same printer name the one read later stays. 1, 0 for null; a directory that cannot
// be read ends the process with status 7, a bad file as fFillFromPaf_Function says.
[[nodiscard]] int fBuildPrinters_Function(CPrinters *catalogue);
