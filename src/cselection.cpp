#include "cselection.h"

#include "ignoreresult.h"

namespace {

constexpr CSelectionOps L_Ops{
    .text = {.header = {.Class_ID = fCSelection_Class_ID_Function,
                        .Class_Name = fCSelection_Class_Name_Function,
                        .Delete = DeleteAs<CSelection, fDelete_CSelection_Function>,
                        .Clone = CloneAs<CSelection, fClone_CSelection_Function>},
             .Get =
                 [](const CObject *object) {
                   return fGet_CSelection_Value_Function(static_cast<const CSelection *>(object));
                 }},
    .GetCString = fGet_CSelection_CString_Function,
    .SetSelected = fSet_Selected_Function,
    .IsSelected = fIsSelected_CSelection_Function,
};

}  // namespace

const CObjectOps *CSelection::Ops() { return &L_Ops.text.header; }

Owned<CSelection> CreateSelection(const char *text, int selected) {
  Owned<CSelection> record = NewObject<CSelection, OnNoMemory::Catalogue>();
  record->value = CreateStringWithValue(text);
  record->selected = selected;
  return record;
}

int fCSelection_Class_ID_Function() { return CSelection::kClassId; }

const char *fCSelection_Class_Name_Function() { return CSelectionClassName; }

int fDelete_CSelection_Function(CSelection *record) {
  FreeObject(record);
  return 1;
}

Owned<CSelection> fClone_CSelection_Function(const CSelection *record) {
  if (record == nullptr) return nullptr;
  return CreateSelection(fGet_CSelection_Value_Function(record), record->selected);
}

const char *fGet_CSelection_Value_Function(const CSelection *record) {
  return fGet_CString_Value_Function(fGet_CSelection_CString_Function(record));
}

CString *fGet_CSelection_CString_Function(const CSelection *record) {
  return record == nullptr ? nullptr : record->value.get();
}

int fSet_Selected_Function(CSelection *record, int flag) {
  if (record == nullptr || record->value == nullptr) return 0;
  record->selected = flag;
  return 1;
}

int fIsSelected_CSelection_Function(const CSelection *record) { return record->selected; }

std::string SelectedText(const CList *selections) {
  for (const CSelection *record : Elements<CSelection>(selections)) {
    if (fIsSelected_CSelection_Function(record) == 0) continue;
    const char *text = fGet_CSelection_Value_Function(record);
    return text == nullptr ? "" : text;
  }
  return "";
}

void RemoveSelectedRecords(CList *selections, const SelectionVisitor &before) {
  CNodeList *position = fGetHeadPosition_CList_Function(selections);
  while (position != nullptr) {
    CNodeList *current = position;
    const auto *record = ObjectCast<CSelection>(fGetNext_CList_Function(selections, &position));
    if (record == nullptr || fIsSelected_CSelection_Function(record) == 0) continue;
    before(current, *record);
    IgnoreResult(fRemoveAt_CList_Function(selections, current), "the position is the walk's");
  }
}
