// CString: an owned text.
#pragma once

#include <string>

#include "cobject.h"
#include "sharedtext.h"

inline constexpr char CStringClassName[] = "CString";

struct CString : CObject {
  static constexpr int kClassId = 100;
  static const CObjectOps *Ops();

  SharedText value;
};

// The class table's own operations, in their order.
struct CStringOps {
  CTextOps text;  // header and Get
  int (*Set)(CString *object, const char *text);
  int (*IsEqual)(const CString *a, const CString *b);
};

// A record with a null value.
[[nodiscard]] Owned<CString> CreateString();

// A record holding a copy of `text` (UTF-8); null when `text` is null.
[[nodiscard]] Owned<CString> CreateStringWithValue(const char *text);

// A record that shares `text`.
[[nodiscard]] Owned<CString> CreateStringWithText(SharedText text);

int fCString_Class_ID_Function();
const char *fCString_Class_Name_Function();

// Takes the record over; 1, also for null.
int fDelete_CString_Function(CString *object);

// A copy; null for a null record and for one whose value is null.
[[nodiscard]] Owned<CString> fClone_CString_Function(const CString *object);

// The text itself, lent until it is set again or the record goes; null for a null record or value.
const char *fGet_CString_Value_Function(const CString *object);

// A copy of the text; empty for a null record or value.
std::string TextOf(const CString *object);

// Replaces the text by a copy of `text`: 1; 0 and no change when either is null.
[[nodiscard]] int fSet_CString_Value_Function(CString *object, const char *text);

// 1 when both texts are equal byte for byte or both values are null, else 0; 0 for a null record.
[[nodiscard]] int fIsEqual_CString_Value_Function(const CString *a, const CString *b);
