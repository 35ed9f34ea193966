// CPairHash: one key of a dictionary with its value.
#pragma once

#include "cobject.h"

inline constexpr char CPairHashClassName[] = "CPairHash";

struct CPairHash : CObject {
  static constexpr int kClassId = 135;
  static const CObjectOps *Ops();

  Owned<CObject> key;  // a class whose own operations begin with Get (CTextOps)
  Owned<CObject> value;
};

struct CPairHashOps {
  CObjectOps header;
};

// An empty pair.
[[nodiscard]] Owned<CPairHash> CreatePairHash();

// A pair that takes over `key` and `value` (which may be null); null for a null key, and then both
// stay the caller's.
[[nodiscard]] Owned<CPairHash> CreatePairHashWithKey(Owned<CObject> &&key);
[[nodiscard]] Owned<CPairHash> CreatePairHashWithKeyAndValue(Owned<CObject> &&key,
                                                             Owned<CObject> &&value);

int fCPairHash_Class_ID_Function();
const char *fCPairHash_Class_Name_Function();

// Takes the pair over with key and value; 1, but 0 for null.
int fDelete_CPairHash_Function(CPairHash *pair);

// A pair of the key's clone and the value's clone (null stays null); null when the pair or its key
// is null or cannot be cloned.
[[nodiscard]] Owned<CPairHash> fClone_CPairHash_Function(const CPairHash *pair);

// The text of a key, lent; null for a null key or one without text.
const char *KeyText(const CObject *key);
