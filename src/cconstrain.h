// CConstrain: option 1 of feature 1 cannot be combined with option 2 of feature 2.
#pragma once

#include <variant>

#include "cstring.h"

inline constexpr char CConstrainClassName[] = "CConstrain";

// One of the texts of a constraint: a CString that was handed in, or one that is part of the
// record, which is smaller. A printer has thousands of them.
class ConstrainString {
 public:
  // The text, lent until it is replaced; null when it is missing.
  CString *get() const;

  // Takes `given` over and deletes what was there.
  ConstrainString &operator=(Owned<CString> &&given);

  // Puts a CString that shares `text` in the place of what was there.
  void Share(SharedText text);

 private:
  mutable std::variant<Owned<CString>, CString> string_;
};

struct CConstrain : CObject {
  static constexpr int kClassId = 260;
  static const CObjectOps *Ops();

  ConstrainString feature1;
  ConstrainString option1;
  ConstrainString feature2;
  ConstrainString option2;
};

struct CConstrainOps {
  CObjectOps header;
  int (*SetFeature1)(CConstrain *constrain, Owned<CString> &&value);
  CString *(*GetFeature1)(const CConstrain *constrain);
  int (*SetOption1)(CConstrain *constrain, Owned<CString> &&value);
  CString *(*GetOption1)(const CConstrain *constrain);
  int (*SetFeature2)(CConstrain *constrain, Owned<CString> &&value);
  CString *(*GetFeature2)(const CConstrain *constrain);
  int (*SetOption2)(CConstrain *constrain, Owned<CString> &&value);
  CString *(*GetOption2)(const CConstrain *constrain);
  int (*SetData)(CConstrain *constrain, Owned<CString> &&feature1, Owned<CString> &&option1,
                 Owned<CString> &&feature2, Owned<CString> &&option2);
  int (*IsEqual)(const CConstrain *a, const CConstrain *b);
};

// A record with every member null. Out of memory: the catalogue's words, status 3.
[[nodiscard]] Owned<CConstrain> CreateConstrain();

int fCConstrain_Class_ID_Function();
const char *fCConstrain_Class_Name_Function();

// Takes the record over with its members; 1, also for null.
int fDelete_CConstrain_Function(CConstrain *constrain);

// A deep copy; null for null and for a record that lacks any of its members.
[[nodiscard]] Owned<CConstrain> fClone_CConstrain_Function(const CConstrain *constrain);

// Getters lend the member (null when the record or the member is null). Setters take `value` over
// and delete the one it replaces: 1; 0 and no change when the record or `value` is null, and then
// `value` stays the caller's.
[[nodiscard]] int fSetFeature1_Function(CConstrain *constrain, Owned<CString> &&value);
CString *fGetFeature1_Function(const CConstrain *constrain);
[[nodiscard]] int fSetOption1_Function(CConstrain *constrain, Owned<CString> &&value);
CString *fGetOption1_Function(const CConstrain *constrain);
[[nodiscard]] int fSetFeature2_Function(CConstrain *constrain, Owned<CString> &&value);
CString *fGetFeature2_Function(const CConstrain *constrain);
[[nodiscard]] int fSetOption2_Function(CConstrain *constrain, Owned<CString> &&value);
CString *fGetOption2_Function(const CConstrain *constrain);

// Takes all four over, null ones included, and deletes those they replace: 1; 0 for a null record,
// and then they stay the caller's.
[[nodiscard]] int fSetData_Function(CConstrain *constrain, Owned<CString> &&feature1,
                                    Owned<CString> &&option1, Owned<CString> &&feature2,
                                    Owned<CString> &&option2);

// 1 when both name the same two (feature, option) ends, in either order, else 0. A missing option
// matches only a missing one. 0 when a record or a feature is missing and, kept on purpose, when
// both records lack both options.
[[nodiscard]] int fIsEqual_Function(const CConstrain *a, const CConstrain *b);
