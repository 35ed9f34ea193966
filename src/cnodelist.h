// CNodeList: one node of a CList; it owns one element and the node after it.
#pragma once

#include "cobject.h"

inline constexpr char CNodeListClassName[] = "CNodeList";

struct CNodeList : CObject {
  static constexpr int kClassId = 120;
  static const CObjectOps *Ops();

  CObject *value = nullptr;  // the element; owned through `owned` except in a cloned node
  Owned<CObject> owned;
  CNodeList *prev = nullptr;
  Owned<CNodeList> next;
};

struct CNodeListOps {
  CObjectOps header;
  CObject *(*Get)(const CNodeList *node);
  int (*Set)(CNodeList *node, Owned<CObject> &&value);
};

// An empty node.
[[nodiscard]] Owned<CNodeList> CreateNodeList();

// A node holding `value`, which may be null.
[[nodiscard]] Owned<CNodeList> CreateNodeListWithValue(Owned<CObject> &&value);

int fCNodeList_Class_ID_Function();
const char *fCNodeList_Class_Name_Function();

// Takes the node over and deletes its element; 1, also for null.
int fDelete_CNodeList_Function(CNodeList *node);

// An unlinked node that shows the very same element, kept on purpose: the element is not cloned
// and stays with the source node, which must outlive the clone's use. Null for null.
[[nodiscard]] Owned<CNodeList> fClone_CNodeList_Function(const CNodeList *node);

// The element, lent; null for a null node.
CObject *fGet_CNodeList_Function(const CNodeList *node);

// Deletes the old element and takes `value` over: 1; 0 for a null node (`value` stays the
// caller's).
[[nodiscard]] int fSet_CNodeList_Function(CNodeList *node, Owned<CObject> &&value);
