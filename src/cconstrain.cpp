#include "cconstrain.h"

#include <cstring>
#include <utility>

namespace {

constexpr CConstrainOps L_Ops{
    .header = {.Class_ID = fCConstrain_Class_ID_Function,
               .Class_Name = fCConstrain_Class_Name_Function,
               .Delete = DeleteAs<CConstrain, fDelete_CConstrain_Function>,
               .Clone = CloneAs<CConstrain, fClone_CConstrain_Function>},
    .SetFeature1 = fSetFeature1_Function,
    .GetFeature1 = fGetFeature1_Function,
    .SetOption1 = fSetOption1_Function,
    .GetOption1 = fGetOption1_Function,
    .SetFeature2 = fSetFeature2_Function,
    .GetFeature2 = fGetFeature2_Function,
    .SetOption2 = fSetOption2_Function,
    .GetOption2 = fGetOption2_Function,
    .SetData = fSetData_Function,
    .IsEqual = fIsEqual_Function,
};

using Member = ConstrainString CConstrain::*;

CString *Get(const CConstrain *constrain, Member member) {
  return constrain == nullptr ? nullptr : (constrain->*member).get();
}

int Set(CConstrain *constrain, Member member, Owned<CString> &&value) {
  if (constrain == nullptr || value == nullptr) return 0;
  constrain->*member = std::move(value);
  return 1;
}

// Clones one member; false when it is missing or cannot be cloned.
bool CloneMember(const CConstrain *from, CConstrain *to, Member member) {
  const CString *string = (from->*member).get();
  if (string == nullptr || !string->value) return false;
  (to->*member).Share(string->value);
  return true;
}

// One end of a constraint; null texts are missing ones.
struct End {
  const char *feature;
  const char *option;
};

End EndOf(const CConstrain *constrain, Member feature, Member option) {
  return {fGet_CString_Value_Function((constrain->*feature).get()),
          fGet_CString_Value_Function((constrain->*option).get())};
}

bool SameText(const char *a, const char *b) {
  return a == nullptr || b == nullptr ? a == b : std::strcmp(a, b) == 0;
}

bool SameEnd(const End &a, const End &b) {
  return SameText(a.feature, b.feature) && SameText(a.option, b.option);
}

}  // namespace

CString *ConstrainString::get() const {
  CString *inside = std::get_if<CString>(&string_);
  return inside != nullptr ? inside : std::get<Owned<CString>>(string_).get();
}

ConstrainString &ConstrainString::operator=(Owned<CString> &&given) {
  string_ = std::move(given);
  return *this;
}

void ConstrainString::Share(SharedText text) {
  CString &inside = string_.emplace<CString>();
  inside.ops = CString::Ops();
  inside.value = std::move(text);
}

const CObjectOps *CConstrain::Ops() { return &L_Ops.header; }

Owned<CConstrain> CreateConstrain() { return NewObject<CConstrain, OnNoMemory::Catalogue>(); }

int fCConstrain_Class_ID_Function() { return CConstrain::kClassId; }

const char *fCConstrain_Class_Name_Function() { return CConstrainClassName; }

int fDelete_CConstrain_Function(CConstrain *constrain) {
  FreeObject(constrain);
  return 1;
}

Owned<CConstrain> fClone_CConstrain_Function(const CConstrain *constrain) {
  if (constrain == nullptr) return nullptr;
  Owned<CConstrain> clone = CreateConstrain();
  const bool complete = CloneMember(constrain, clone.get(), &CConstrain::feature1) &&
                        CloneMember(constrain, clone.get(), &CConstrain::option1) &&
                        CloneMember(constrain, clone.get(), &CConstrain::feature2) &&
                        CloneMember(constrain, clone.get(), &CConstrain::option2);
  return complete ? std::move(clone) : nullptr;
}

int fSetFeature1_Function(CConstrain *constrain, Owned<CString> &&value) {
  return Set(constrain, &CConstrain::feature1, std::move(value));
}

CString *fGetFeature1_Function(const CConstrain *constrain) {
  return Get(constrain, &CConstrain::feature1);
}

int fSetOption1_Function(CConstrain *constrain, Owned<CString> &&value) {
  return Set(constrain, &CConstrain::option1, std::move(value));
}

CString *fGetOption1_Function(const CConstrain *constrain) {
  return Get(constrain, &CConstrain::option1);
}

int fSetFeature2_Function(CConstrain *constrain, Owned<CString> &&value) {
  return Set(constrain, &CConstrain::feature2, std::move(value));
}

CString *fGetFeature2_Function(const CConstrain *constrain) {
  return Get(constrain, &CConstrain::feature2);
}

int fSetOption2_Function(CConstrain *constrain, Owned<CString> &&value) {
  return Set(constrain, &CConstrain::option2, std::move(value));
}

CString *fGetOption2_Function(const CConstrain *constrain) {
  return Get(constrain, &CConstrain::option2);
}

int fSetData_Function(CConstrain *constrain, Owned<CString> &&feature1, Owned<CString> &&option1,
                      Owned<CString> &&feature2, Owned<CString> &&option2) {
  if (constrain == nullptr) return 0;
  constrain->feature1 = std::move(feature1);
  constrain->option1 = std::move(option1);
  constrain->feature2 = std::move(feature2);
  constrain->option2 = std::move(option2);
  return 1;
}

int fIsEqual_Function(const CConstrain *a, const CConstrain *b) {
  if (a == nullptr || b == nullptr) return 0;
  const End a1 = EndOf(a, &CConstrain::feature1, &CConstrain::option1);
  const End a2 = EndOf(a, &CConstrain::feature2, &CConstrain::option2);
  const End b1 = EndOf(b, &CConstrain::feature1, &CConstrain::option1);
  const End b2 = EndOf(b, &CConstrain::feature2, &CConstrain::option2);
  if (a1.feature == nullptr || a2.feature == nullptr) return 0;
  // Kept on purpose: without any option two constraints are never equal.
  if (a1.option == nullptr && a2.option == nullptr) return 0;
  return (SameEnd(a1, b1) && SameEnd(a2, b2)) || (SameEnd(a1, b2) && SameEnd(a2, b1)) ? 1 : 0;
}
