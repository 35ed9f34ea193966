// The object convention: every record of the system is a plain struct that derives from CObject
// and answers four header operations through its class's constant table.
#pragma once

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

struct CObject;

// Gives a record up through its own Delete operation.
struct ObjectDeleter {
  void operator()(CObject *object) const;
};

// The owner of one record. A plain pointer to a record never owns it.
template <class T>
using Owned = std::unique_ptr<T, ObjectDeleter>;

// The class header: the first four operations of every class table, in this order.
struct CObjectOps {
  int (*Class_ID)();
  const char *(*Class_Name)();
  int (*Delete)(CObject *object);  // takes the record over; 1 also for null, except CHash
  Owned<CObject> (*Clone)(const CObject *object);  // deep copy, or null
};

struct CObject {
  const CObjectOps *ops = nullptr;
};

// Every class whose records stand for a text begins its own operations with this one, so that a
// dictionary can take any of them as key.
struct CTextOps {
  CObjectOps header;
  const char *(*Get)(const CObject *object);  // lent, null when there is none
};

// Whose words report that memory ran out: the object library's constant, or the catalogue's (the
// constant too while no catalogue lends its text).
enum class OnNoMemory { ObjectLibrary, Catalogue };

// Ends the process with status 3 after one line on standard error; allocates nothing.
[[noreturn]] void AllocationFailed(OnNoMemory words);

// Lends the catalogue's out-of-memory text (UTF-8) until it is taken back; taking back another text
// than the one lent last does nothing. Kept ready beforehand because it cannot be looked up when
// memory is gone.
void LendAllocationFailedText(const char *text);
void TakeBackAllocationFailedText(const char *text);

// Makes failing standard-library allocations end the process through AllocationFailed too, with the
// catalogue's words outside any AllocationWords.
void InstallAllocationHandler();

// For its lifetime: the words of failing standard-library allocations.
class AllocationWords {
 public:
  explicit AllocationWords(OnNoMemory words);
  ~AllocationWords();
  AllocationWords(const AllocationWords &) = delete;
  AllocationWords &operator=(const AllocationWords &) = delete;

 private:
  OnNoMemory before_;
};

// Allocates a zeroed record of class T with T's operations; never null.
template <class T, OnNoMemory words = OnNoMemory::ObjectLibrary>
[[nodiscard]] Owned<T> NewObject() {
  // Not through operator new, which would run the allocation handler with words of its own.
  void *memory = std::malloc(sizeof(T));
  if (memory == nullptr) AllocationFailed(words);
  T *object = new (memory) T();
  object->ops = T::Ops();
  return Owned<T>(object);
}

// The end of a record's life, for Delete operations only.
template <class T>
void FreeObject(T *object) {
  if (object == nullptr) return;
  object->~T();
  std::free(object);
}

// Adapters from a class's typed operations to the header's signatures.
template <class T, int (*F)(T *)>
int DeleteAs(CObject *object) {
  return F(static_cast<T *>(object));
}

template <class T, Owned<T> (*F)(const T *)>
[[nodiscard]] Owned<CObject> CloneAs(const CObject *object) {
  return F(static_cast<const T *>(object));
}

// The record's class identifier, 0 for null.
[[nodiscard]] int ClassIdOf(const CObject *object);

// `object` as a T when it is one (by class identifier), else null.
template <class T>
T *ObjectCast(CObject *object) {
  return ClassIdOf(object) == T::kClassId ? static_cast<T *>(object) : nullptr;
}

// A deep copy through the record's own Clone; null for null.
template <class T>
[[nodiscard]] Owned<T> CloneOf(const T *object) {
  if (object == nullptr) return nullptr;
  return Owned<T>(static_cast<T *>(object->ops->Clone(object).release()));
}
