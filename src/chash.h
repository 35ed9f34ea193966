// CHash: a dictionary from text keys to owned records, kept as a list of pairs in ascending byte
// order of the keys.
#pragma once

#include <concepts>
#include <map>
#include <string_view>
#include <utility>

#include "clist.h"
#include "cpairhash.h"
#include "cstring.h"

inline constexpr char CHashClassName[] = "CHash";

struct CHash : CObject {
  static constexpr int kClassId = 140;
  static const CObjectOps *Ops();

  Owned<CList> pairs;  // of CPairHash; changed only through the operations below
  // Key text (lent by the pair) to node, so that no operation walks the list.
  std::map<std::string_view, CNodeList *> index;
};

struct CHashOps {
  CObjectOps header;
  int (*Add)(CHash *hash, Owned<CObject> &&key, Owned<CObject> &&value);
  int (*Remove)(CHash *hash, const CObject *key);
  int (*IsKey)(const CHash *hash, const CObject *key);
  CObject *(*GetValue)(const CHash *hash, const CObject *key);
  Owned<CList> (*GetKeys)(const CHash *hash);
};

[[nodiscard]] Owned<CHash> CreateHash();
int fCHash_Class_ID_Function();
const char *fCHash_Class_Name_Function();

// Takes the dictionary over with all pairs; 1, but 0 for null.
int fDelete_CHash_Function(CHash *hash);

// A dictionary of the pairs' clones; null for null, and when a key cannot be cloned.
[[nodiscard]] Owned<CHash> fClone_CHash_Function(const CHash *hash);

// Takes over key and value (which may be null); a pair with an equal key is deleted with its key
// and value. 1; 0 when the hash or key is null or the key has no text, and then both stay the
// caller's.
[[nodiscard]] int fAdd_CHash_Function(CHash *hash, Owned<CObject> &&key, Owned<CObject> &&value);

template <std::derived_from<CObject> K, std::derived_from<CObject> V>
[[nodiscard]] int fAdd_CHash_Function(CHash *hash, Owned<K> &&key, Owned<V> &&value) {
  Owned<CObject> plain_key = std::move(key);
  Owned<CObject> plain_value = std::move(value);
  const int added = fAdd_CHash_Function(hash, std::move(plain_key), std::move(plain_value));
  key.reset(static_cast<K *>(plain_key.release()));
  value.reset(static_cast<V *>(plain_value.release()));
  return added;
}

// Deletes the pair whose key text equals that of `key` (which stays the caller's): 1, also when
// there is none; 0 for a null hash or key.
[[nodiscard]] int fRemove_CHash_Function(CHash *hash, const CObject *key);

[[nodiscard]] int fIsKey_CHash_Function(const CHash *hash, const CObject *key);

// The value, lent; null when there is none.
CObject *fGetValue_CHash_Function(const CHash *hash, const CObject *key);

// A list of clones of all keys, ascending; null for a null hash.
[[nodiscard]] Owned<CList> fGetKeys_CHash_Function(const CHash *hash);

// The same by plain text (null finds nothing), for callers that hold no key record.
CObject *HashFind(const CHash *hash, const char *key);
void HashRemove(CHash *hash, const char *key);

// The value as a T, lent; null when absent or of another class.
template <class T>
T *HashValue(const CHash *hash, const char *key) {
  return ObjectCast<T>(HashFind(hash, key));
}

// The text of a CString value, lent; null when absent.
const char *HashText(const CHash *hash, const char *key);

// Adds copies of both texts as CStrings; 0 and no change when any argument is null.
[[nodiscard]] int HashPutText(CHash *hash, const char *key, const char *value);

// Adds `value` under a copy of `key`.
template <std::derived_from<CObject> V>
[[nodiscard]] int HashPut(CHash *hash, const char *key, Owned<V> &&value) {
  return fAdd_CHash_Function(hash, CreateStringWithValue(key), std::move(value));
}

[[nodiscard]] bool HashIsEmpty(const CHash *hash);

// Range for `for (auto [key, value] : Pairs<T>(hash))` in key order: key is a const char *, value a
// T * (null when of another class). The dictionary may not be changed during the walk.
template <class T>
struct HashRange {
  struct Entry {
    const char *key;
    T *value;
  };
  struct Iterator {
    CNodeList *node;
    Entry operator*() const {
      const auto *pair = static_cast<const CPairHash *>(node->value);
      return {KeyText(pair->key.get()), ObjectCast<T>(pair->value.get())};
    }
    Iterator &operator++() {
      node = node->next.get();
      return *this;
    }
    bool operator!=(const Iterator &other) const { return node != other.node; }
  };
  const CHash *hash;
  Iterator begin() const {
    return {hash == nullptr ? nullptr : fGetHeadPosition_CList_Function(hash->pairs.get())};
  }
  Iterator end() const { return {nullptr}; }
};

template <class T>
HashRange<T> Pairs(const CHash *hash) {
  return {hash};
}
