#include "cpairhash.h"

#include <utility>

namespace {

constexpr CPairHashOps L_Ops{
    .header = {.Class_ID = fCPairHash_Class_ID_Function,
               .Class_Name = fCPairHash_Class_Name_Function,
               .Delete = DeleteAs<CPairHash, fDelete_CPairHash_Function>,
               .Clone = CloneAs<CPairHash, fClone_CPairHash_Function>},
};

}  // namespace

const CObjectOps *CPairHash::Ops() { return &L_Ops.header; }

Owned<CPairHash> CreatePairHash() { return NewObject<CPairHash>(); }

Owned<CPairHash> CreatePairHashWithKey(Owned<CObject> &&key) {
  return CreatePairHashWithKeyAndValue(std::move(key), nullptr);
}

Owned<CPairHash> CreatePairHashWithKeyAndValue(Owned<CObject> &&key, Owned<CObject> &&value) {
  if (key == nullptr) return nullptr;
  Owned<CPairHash> pair = CreatePairHash();
  pair->key = std::move(key);
  pair->value = std::move(value);
  return pair;
}

int fCPairHash_Class_ID_Function() { return CPairHash::kClassId; }

const char *fCPairHash_Class_Name_Function() { return CPairHashClassName; }

int fDelete_CPairHash_Function(CPairHash *pair) {
  if (pair == nullptr) return 0;
  FreeObject(pair);
  return 1;
}

Owned<CPairHash> fClone_CPairHash_Function(const CPairHash *pair) {
  if (pair == nullptr) return nullptr;
  return CreatePairHashWithKeyAndValue(CloneOf(pair->key.get()), CloneOf(pair->value.get()));
}

const char *KeyText(const CObject *key) {
  // The class header is the first member of CTextOps.
  return key == nullptr ? nullptr : reinterpret_cast<const CTextOps *>(key->ops)->Get(key);
}
