#include "chash.h"

#include <utility>

#include "ignoreresult.h"

namespace {

constexpr CHashOps L_Ops{
    .header = {.Class_ID = fCHash_Class_ID_Function,
               .Class_Name = fCHash_Class_Name_Function,
               .Delete = DeleteAs<CHash, fDelete_CHash_Function>,
               .Clone = CloneAs<CHash, fClone_CHash_Function>},
    .Add = fAdd_CHash_Function,
    .Remove = fRemove_CHash_Function,
    .IsKey = fIsKey_CHash_Function,
    .GetValue = fGetValue_CHash_Function,
    .GetKeys = fGetKeys_CHash_Function,
};

CPairHash *PairAt(const CNodeList *node) { return static_cast<CPairHash *>(node->value); }

}  // namespace

const CObjectOps *CHash::Ops() { return &L_Ops.header; }

Owned<CHash> CreateHash() {
  Owned<CHash> hash = NewObject<CHash>();
  hash->pairs = CreateList();
  return hash;
}

int fCHash_Class_ID_Function() { return CHash::kClassId; }

const char *fCHash_Class_Name_Function() { return CHashClassName; }

int fDelete_CHash_Function(CHash *hash) {
  // Kept on purpose: unlike the other classes, deleting a null dictionary is a failure.
  if (hash == nullptr) return 0;
  FreeObject(hash);
  return 1;
}

Owned<CHash> fClone_CHash_Function(const CHash *hash) {
  if (hash == nullptr || hash->pairs == nullptr) return nullptr;
  Owned<CHash> clone = NewObject<CHash>();
  clone->pairs = fClone_CList_Function(hash->pairs.get());
  for (CNodeList *node = clone->pairs->head.get(); node != nullptr; node = node->next.get()) {
    if (node->value == nullptr) return nullptr;
    clone->index.emplace_hint(clone->index.end(), KeyText(PairAt(node)->key.get()), node);
  }
  return clone;
}

int fAdd_CHash_Function(CHash *hash, Owned<CObject> &&key, Owned<CObject> &&value) {
  const char *text = KeyText(key.get());
  if (hash == nullptr || hash->pairs == nullptr || text == nullptr) return 0;
  const AllocationWords words(OnNoMemory::ObjectLibrary);
  // The view stays good: the text lives in the key record, which only changes its owner.
  const std::string_view view = text;
  Owned<CObject> pair = CreatePairHashWithKeyAndValue(std::move(key), std::move(value));
  CList *pairs = hash->pairs.get();

  auto at = hash->index.lower_bound(view);
  if (at == hash->index.end()) {
    IgnoreResult(fAddTail_CList_Function(pairs, std::move(pair)), "the list is there");
    hash->index.emplace_hint(at, view, pairs->tail);
  } else if (at->first == view) {
    // The old key's text goes with the old pair, so the index entry is made anew.
    CNodeList *node = at->second;
    const auto next = hash->index.erase(at);
    IgnoreResult(fSetAt_CList_Function(pairs, node, std::move(pair)), "the node is the list's");
    hash->index.emplace_hint(next, view, node);
  } else {
    CNodeList *node = at->second;
    IgnoreResult(fInsertBefore_CList_Function(pairs, node, std::move(pair)),
                 "the node is the list's");
    hash->index.emplace_hint(at, view, node->prev);
  }
  return 1;
}

int fRemove_CHash_Function(CHash *hash, const CObject *key) {
  if (hash == nullptr || hash->pairs == nullptr || key == nullptr) return 0;
  HashRemove(hash, KeyText(key));
  return 1;
}

int fIsKey_CHash_Function(const CHash *hash, const CObject *key) {
  const char *text = KeyText(key);
  return hash != nullptr && text != nullptr && hash->index.count(text) != 0 ? 1 : 0;
}

CObject *fGetValue_CHash_Function(const CHash *hash, const CObject *key) {
  return HashFind(hash, KeyText(key));
}

Owned<CList> fGetKeys_CHash_Function(const CHash *hash) {
  if (hash == nullptr || hash->pairs == nullptr) return nullptr;
  Owned<CList> keys = CreateList();
  for (const CNodeList *node = hash->pairs->head.get(); node != nullptr; node = node->next.get()) {
    IgnoreResult(fAddTail_CList_Function(keys.get(), CloneOf(PairAt(node)->key.get())),
                 "the list is there");
  }
  return keys;
}

CObject *HashFind(const CHash *hash, const char *key) {
  if (hash == nullptr || key == nullptr) return nullptr;
  const auto at = hash->index.find(key);
  return at == hash->index.end() ? nullptr : PairAt(at->second)->value.get();
}

void HashRemove(CHash *hash, const char *key) {
  if (hash == nullptr || key == nullptr) return;
  const auto at = hash->index.find(key);
  if (at == hash->index.end()) return;
  CNodeList *node = at->second;
  hash->index.erase(at);
  IgnoreResult(fRemoveAt_CList_Function(hash->pairs.get(), node), "the node is the list's");
}

const char *HashText(const CHash *hash, const char *key) {
  return fGet_CString_Value_Function(HashValue<CString>(hash, key));
}

int HashPutText(CHash *hash, const char *key, const char *value) {
  if (value == nullptr) return 0;
  return HashPut(hash, key, CreateStringWithValue(value));
}

bool HashIsEmpty(const CHash *hash) {
  return hash == nullptr || fIsEmpty_CList_Function(hash->pairs.get()) == 1;
}
