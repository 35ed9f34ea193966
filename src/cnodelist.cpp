#include "cnodelist.h"

#include <utility>

#include "ignoreresult.h"

namespace {

constexpr CNodeListOps L_Ops{
    .header = {.Class_ID = fCNodeList_Class_ID_Function,
               .Class_Name = fCNodeList_Class_Name_Function,
               .Delete = DeleteAs<CNodeList, fDelete_CNodeList_Function>,
               .Clone = CloneAs<CNodeList, fClone_CNodeList_Function>},
    .Get = fGet_CNodeList_Function,
    .Set = fSet_CNodeList_Function,
};

}  // namespace

const CObjectOps *CNodeList::Ops() { return &L_Ops.header; }

Owned<CNodeList> CreateNodeList() { return NewObject<CNodeList>(); }

Owned<CNodeList> CreateNodeListWithValue(Owned<CObject> &&value) {
  Owned<CNodeList> node = CreateNodeList();
  IgnoreResult(fSet_CNodeList_Function(node.get(), std::move(value)), "the node is there");
  return node;
}

int fCNodeList_Class_ID_Function() { return CNodeList::kClassId; }

const char *fCNodeList_Class_Name_Function() { return CNodeListClassName; }

int fDelete_CNodeList_Function(CNodeList *node) {
  FreeObject(node);
  return 1;
}

Owned<CNodeList> fClone_CNodeList_Function(const CNodeList *node) {
  if (node == nullptr) return nullptr;
  Owned<CNodeList> clone = CreateNodeList();
  clone->value = node->value;
  return clone;
}

CObject *fGet_CNodeList_Function(const CNodeList *node) {
  return node == nullptr ? nullptr : node->value;
}

int fSet_CNodeList_Function(CNodeList *node, Owned<CObject> &&value) {
  if (node == nullptr) return 0;
  node->owned = std::move(value);
  node->value = node->owned.get();
  return 1;
}
