// CPrinter: one printer model, as its description file (PAF) describes it.
#pragma once

#include "chash.h"

inline constexpr char CPrinterClassName[] = "CPrinter";

struct CPrinter : CObject {
  static constexpr int kClassId = 280;
  static const CObjectOps *Ops();

  Owned<CHash> features;             // main keyword ("*PageSize") to CFeature
  Owned<CHash> installable_options;  // main keyword ("*OptionHCF") to CFeature
  // "MinWidth", "MaxWidth", "MinLength", "MaxLength" to CString; null without custom sizes.
  Owned<CHash> custom_paper;
  Owned<CList> constraints;  // of CConstrain, in file order
  Owned<CString> paf_file;   // full path
  Owned<CString> ppd_file;   // bare file name
};

struct CPrinterOps {
  CObjectOps header;
  CHash *(*GetFeatures)(const CPrinter *printer);
  CHash *(*GetInstallableOptions)(const CPrinter *printer);
  CHash *(*GetCustomPaper)(const CPrinter *printer);
  CList *(*GetConstraints)(const CPrinter *printer);
  CString *(*GetPpdFile)(const CPrinter *printer);
  Owned<CString> (*FillFromPaf)(CPrinter *printer);
};

// A record for the description file `paf_path`, everything else null until fFillFromPaf_Function;
// null when `paf_path` is null. Out of memory: the catalogue's words, status 3.
[[nodiscard]] Owned<CPrinter> CreatePrinter(const char *paf_path);

int fCPrinter_Class_ID_Function();
const char *fCPrinter_Class_Name_Function();

// Takes the record over with its members; 1, also for null.
int fDelete_CPrinter_Function(CPrinter *printer);

// A deep copy without the PPD file name (kept on purpose: it is required but not copied); null for
// null, for a record that lacks any of its members, and when a feature cannot be cloned.
[[nodiscard]] Owned<CPrinter> fClone_CPrinter_Function(const CPrinter *printer);

// Lend the member; null when the record or the member is null.
CHash *fGetFeatures_Function(const CPrinter *printer);
CHash *fGetInstallableOptions_Function(const CPrinter *printer);
CHash *fGetCustomPaper_Function(const CPrinter *printer);
CList *fGetConstraints_Function(const CPrinter *printer);
CString *fGetPpdFile_Function(const CPrinter *printer);

// Reads the record's description file into it and returns the printer's name; null for null. A file
// that cannot be read or is corrupt ends the process with status 5 after one line on standard
// error.
[[nodiscard]] Owned<CString> fFillFromPaf_Function(CPrinter *printer);

// The same of a description that the programs can do without: false, and the record as it was, for
// null and for a file that cannot be read or is corrupt.
[[nodiscard]] bool FillFromPaf(CPrinter *printer);
