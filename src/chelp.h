// CHelp: the help catalogue; the help texts of the windows, by block name.
#pragma once

#include <optional>
#include <string>

#include "chash.h"
#include "textencoding.h"

inline constexpr char CHelpClassName[] = "CHelp";

struct CHelp : CObject {
  static constexpr int kClassId = 210;
  static const CObjectOps *Ops();

  Owned<CHash> helps;  // block name to CString
  Owned<CString> language;
  Owned<CString> file_name;
};

struct CHelpOps {
  CObjectOps header;
  void (*FillFromHelp)(CHelp *help);
  const char *(*GetHelp)(const CHelp *help, const char *name);
};

// An empty catalogue for the file `path`; null when `path` is null.
[[nodiscard]] Owned<CHelp> CreateHelp(const char *path);

int fCHelp_Class_ID_Function();
const char *fCHelp_Class_Name_Function();

// Takes the catalogue over; 1, but 0 for null.
int fDelete_CHelp_Function(CHelp *help);

// A catalogue of the same file with clones of table and language; null when one is missing.
[[nodiscard]] Owned<CHelp> fClone_CHelp_Function(const CHelp *help);

// Reads the file into a new table; nothing for null. The process ends with status 3 when the file
// cannot be opened and with status 5 when its block markers are unbalanced.
void fFillFromHelp_Function(CHelp *help);

// The text of block `name`, lent by the catalogue. A block that is missing is reported on standard
// error and its name returned. Null for a null catalogue.
const char *fGetHelp_Function(const CHelp *help, const char *name);

// A block marker at the wrong place.
struct HelpError {
  int line;           // of the marker, from 1
  std::string block;  // the open block; empty when none is open
};

// Reads blocks and language into `help`, up to the first error.
[[nodiscard]] std::optional<HelpError> ReadHelp(CHelp *help, LineReader &lines);
