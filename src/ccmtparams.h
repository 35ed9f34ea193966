// CCmtParams: one custom media type; its name is the key under which the queue files it.
#pragma once

#include "cstring.h"

// Kept on purpose: without the leading C.
inline constexpr char CCmtParamsClassName[] = "CmtParams";

struct CCmtParams : CObject {
  static constexpr int kClassId = 275;
  static const CObjectOps *Ops();

  Owned<CString> gui_name;  // display name
};

struct CCmtParamsOps {
  CObjectOps header;
  int (*SetGuiName)(CCmtParams *params, Owned<CString> &&name);
  CString *(*GetGuiName)(const CCmtParams *params);
  int (*SetData)(CCmtParams *params, Owned<CString> &&name);
};

// A record that takes `name` over, which may be null. Out of memory: the catalogue's words,
// status 3.
[[nodiscard]] Owned<CCmtParams> CreateCmtParams(Owned<CString> &&name);

int fCCmtParams_Class_ID_Function();
const char *fCCmtParams_Class_Name_Function();

// Takes the record over with its name; 1, also for null.
int fDelete_CCmtParams_Function(CCmtParams *params);

// A record holding a clone of the name; null for null.
[[nodiscard]] Owned<CCmtParams> fClone_CCmtParams_Function(const CCmtParams *params);

// Take `name` over, null included, and do not delete the name it replaces: that one comes back in
// `name` and is the caller's. 1; 0 for a null record, and then `name` stays as it was.
[[nodiscard]] int fSetGuiName_Function(CCmtParams *params, Owned<CString> &&name);
[[nodiscard]] int fSetData_Function(CCmtParams *params, Owned<CString> &&name);

// The name, lent; null when there is none.
CString *fGetGuiName_Function(const CCmtParams *params);
