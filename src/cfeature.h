// CFeature: one feature or installable option of a printer, with the options it offers.
#pragma once

#include "chash.h"

inline constexpr char CFeatureClassName[] = "CFeature";

struct CFeature : CObject {
  static constexpr int kClassId = 250;
  static const CObjectOps *Ops();

  Owned<CString> translation;     // display text
  Owned<CString> default_option;  // identifier of the default option
  Owned<CString> type;            // as the description has it; "Boolean" means installed or not
  Owned<CHash> options;           // option identifier to CString display text
};

struct CFeatureOps {
  CObjectOps header;
  CString *(*Get_Translation)(const CFeature *feature);
  int (*Set_Translation)(CFeature *feature, const CString *value);
  CString *(*Get_Default)(const CFeature *feature);
  int (*Set_Default)(CFeature *feature, const CString *value);
  CString *(*Get_Type)(const CFeature *feature);
  int (*Set_Type)(CFeature *feature, const CString *value);
  CHash *(*Get_Options)(const CFeature *feature);
  int (*Set_Options)(CFeature *feature, const CHash *value);
};

// A record with every member null. Out of memory: the catalogue's words, status 3.
[[nodiscard]] Owned<CFeature> CreateFeature();

int fCFeature_Class_ID_Function();
const char *fCFeature_Class_Name_Function();

// Takes the record over with its members; 1, also for null.
int fDelete_CFeature_Function(CFeature *feature);

// A deep copy; null for null and for a record that lacks any of its members.
[[nodiscard]] Owned<CFeature> fClone_CFeature_Function(const CFeature *feature);

// Getters lend the member (null when the record or the member is null). Setters replace it by a
// clone of `value`, which stays the caller's: 1; 0 and no change when the record or `value` is
// null.
CString *fGet_Translation_Function(const CFeature *feature);
[[nodiscard]] int fSet_Translation_Function(CFeature *feature, const CString *value);
CString *fGet_Default_Function(const CFeature *feature);
[[nodiscard]] int fSet_Default_Function(CFeature *feature, const CString *value);
CString *fGet_Type_Function(const CFeature *feature);
[[nodiscard]] int fSet_Type_Function(CFeature *feature, const CString *value);
CHash *fGet_Options_Function(const CFeature *feature);
[[nodiscard]] int fSet_Options_Function(CFeature *feature, const CHash *value);
