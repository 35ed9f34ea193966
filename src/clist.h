// CList: a doubly linked list of owned records, walked by positions (its nodes).
#pragma once

#include "cnodelist.h"

inline constexpr char CListClassName[] = "CList";

struct CList : CObject {
  static constexpr int kClassId = 130;
  static const CObjectOps *Ops();

  Owned<CNodeList> head;
  CNodeList *tail = nullptr;
  int count = 0;  // as the operations keep it, which is not always the number of elements
};

struct CListOps {
  CObjectOps header;
  int (*AddHead)(CList *list, Owned<CObject> &&element);
  int (*AddTail)(CList *list, Owned<CObject> &&element);
  int (*IsEmpty)(const CList *list);
  CNodeList *(*GetHeadPosition)(const CList *list);
  CNodeList *(*GetTailPosition)(const CList *list);
  CObject *(*GetAt)(const CList *list, const CNodeList *position);
  CObject *(*GetNext)(const CList *list, CNodeList **position);
  CObject *(*GetPrev)(const CList *list, CNodeList **position);
  int (*SetAt)(CList *list, CNodeList *position, Owned<CObject> &&element);
  int (*InsertBefore)(CList *list, CNodeList *position, Owned<CObject> &&element);
  int (*InsertAfter)(CList *list, CNodeList *position, Owned<CObject> &&element);
  int (*RemoveAt)(CList *list, CNodeList *position);
  int (*RemoveHead)(CList *list);
  int (*RemoveTail)(CList *list);
  int (*RemoveAll)(CList *list);
  int (*GetCount)(const CList *list);
  Owned<CObject> (*Pop)(CList *list);
  int (*Push)(CList *list, Owned<CObject> &&element);
};

// Everywhere: a null list fails with 0 or null; an element is taken over only on success (a refused
// one stays the caller's) and may be null; a position must belong to the list, which is not
// checked.

[[nodiscard]] Owned<CList> CreateList();
int fCList_Class_ID_Function();
const char *fCList_Class_Name_Function();

// Takes the list over with all its elements; 1, also for null.
int fDelete_CList_Function(CList *list);

// A list of the elements' clones, in order; null for a null list. An element whose clone is null
// is there as null.
[[nodiscard]] Owned<CList> fClone_CList_Function(const CList *list);

[[nodiscard]] int fAddHead_CList_Function(CList *list, Owned<CObject> &&element);
[[nodiscard]] int fAddTail_CList_Function(CList *list, Owned<CObject> &&element);

// 1 for a null or empty list.
[[nodiscard]] int fIsEmpty_CList_Function(const CList *list);

// The first or last node, null when the list is empty.
CNodeList *fGetHeadPosition_CList_Function(const CList *list);
CNodeList *fGetTailPosition_CList_Function(const CList *list);

// The element at `position`, lent.
CObject *fGetAt_CList_Function(const CList *list, const CNodeList *position);

// The element at `*position`, lent; steps `*position` on (null past the end).
CObject *fGetNext_CList_Function(const CList *list, CNodeList **position);
CObject *fGetPrev_CList_Function(const CList *list, CNodeList **position);

// Deletes the element at `position` and puts `element` there.
[[nodiscard]] int fSetAt_CList_Function(CList *list, CNodeList *position, Owned<CObject> &&element);

// Put `element` next to `position`. At the head (before) or tail (after) the count goes up by two.
[[nodiscard]] int fInsertBefore_CList_Function(CList *list, CNodeList *position,
                                               Owned<CObject> &&element);
[[nodiscard]] int fInsertAfter_CList_Function(CList *list, CNodeList *position,
                                              Owned<CObject> &&element);

// Delete nodes with their elements. Removing an end of an empty list succeeds.
[[nodiscard]] int fRemoveAt_CList_Function(CList *list, CNodeList *position);
[[nodiscard]] int fRemoveHead_CList_Function(CList *list);
[[nodiscard]] int fRemoveTail_CList_Function(CList *list);
[[nodiscard]] int fRemoveAll_CList_Function(CList *list);

// The count member; `list` must not be null.
[[nodiscard]] int fGetCount_CList_Function(const CList *list);

// Same as AddHead.
[[nodiscard]] int fPush_CList_Function(CList *list, Owned<CObject> &&element);

// Unlinks the first element and hands it over; the count stays as it is. Null when empty.
[[nodiscard]] Owned<CObject> fPop_CList_Function(CList *list);

// Range over a list for `for (T *element : Elements<T>(list))`; elements of other classes come as
// null. The current element may not be removed during the walk.
template <class T>
struct ListRange {
  struct Iterator {
    CNodeList *node;
    T *operator*() const { return ObjectCast<T>(node->value); }
    Iterator &operator++() {
      node = node->next.get();
      return *this;
    }
    bool operator!=(const Iterator &other) const { return node != other.node; }
  };
  const CList *list;
  Iterator begin() const { return {fGetHeadPosition_CList_Function(list)}; }
  Iterator end() const { return {nullptr}; }
};

template <class T>
ListRange<T> Elements(const CList *list) {
  return {list};
}
