#include "cstring.h"

#include <utility>

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
  return text == nullptr ? nullptr : CreateStringWithText(SharedText(text));
}

Owned<CString> CreateStringWithText(SharedText text) {
  Owned<CString> object = CreateString();
  object->value = std::move(text);
  return object;
}

int fCString_Class_ID_Function() { return CString::kClassId; }

const char *fCString_Class_Name_Function() { return CStringClassName; }

int fDelete_CString_Function(CString *object) {
  FreeObject(object);
  return 1;
}

Owned<CString> fClone_CString_Function(const CString *object) {
  // A text of its own: whoever was lent one tells it from that of the clone by its address.
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): the texts count their holders
  return CreateStringWithValue(fGet_CString_Value_Function(object));
}

const char *fGet_CString_Value_Function(const CString *object) {
  return object == nullptr ? nullptr : object->value.Get();
}

std::string TextOf(const CString *object) {
  const char *text = fGet_CString_Value_Function(object);
  return text == nullptr ? "" : text;
}

int fSet_CString_Value_Function(CString *object, const char *text) {
  if (object == nullptr || text == nullptr) return 0;
  object->value = SharedText(text);  // copied first: `text` may point into the value it replaces
  return 1;
}

int fIsEqual_CString_Value_Function(const CString *a, const CString *b) {
  return a != nullptr && b != nullptr && a->value == b->value ? 1 : 0;
}
