#include "cstring.h"

#include <cstring>

namespace {

constexpr CStringOps L_Ops{
    .text = {.header = {.Class_ID = fCString_Class_ID_Function,
                        .Class_Name = fCString_Class_Name_Function,
                        .Delete = DeleteAs<CString, fDelete_CString_Function>,
                        .Clone = CloneAs<CString, fClone_CString_Function>},
             .Get =
                 [](const CObject *object) {
                   return fGet_CString_Value_Function(static_cast<const CString *>(object));
                 }},
    .Set = fSet_CString_Value_Function,
    .IsEqual = fIsEqual_CString_Value_Function,
};

}  // namespace

const CObjectOps *CString::Ops() { return &L_Ops.text.header; }

Owned<CString> CreateString() { return NewObject<CString>(); }

Owned<CString> CreateStringWithValue(const char *text) {
  if (text == nullptr) return nullptr;
  const AllocationWords words(OnNoMemory::ObjectLibrary);
  Owned<CString> object = CreateString();
  object->value = text;
  return object;
}

int fCString_Class_ID_Function() { return CString::kClassId; }

const char *fCString_Class_Name_Function() { return CStringClassName; }

int fDelete_CString_Function(CString *object) {
  FreeObject(object);
  return 1;
}

Owned<CString> fClone_CString_Function(const CString *object) {
  return CreateStringWithValue(fGet_CString_Value_Function(object));
}

const char *fGet_CString_Value_Function(const CString *object) {
  return object == nullptr || !object->value ? nullptr : object->value->c_str();
}

int fSet_CString_Value_Function(CString *object, const char *text) {
  if (object == nullptr || text == nullptr) return 0;
  const AllocationWords words(OnNoMemory::ObjectLibrary);
  // Through a copy: `text` may point into the value it replaces.
  object->value = std::string(text);
  return 1;
}

int fIsEqual_CString_Value_Function(const CString *a, const CString *b) {
  return a != nullptr && b != nullptr && a->value == b->value ? 1 : 0;
}
