// CSelection: a text with a selected flag, the record of a list row.
#pragma once

#include <functional>
#include <string>

#include "clist.h"
#include "cstring.h"

inline constexpr char CSelectionClassName[] = "CSelection";

struct CSelection : CObject {
  static constexpr int kClassId = 220;
  static const CObjectOps *Ops();

  Owned<CString> value;
  int selected = 0;
};

struct CSelectionOps {
  CTextOps text;  // header and Get
  CString *(*GetCString)(const CSelection *record);
  int (*SetSelected)(CSelection *record, int flag);
  int (*IsSelected)(const CSelection *record);
};

// A record with a copy of `text` (a null text gives a null value) and the flag. Out of memory: the
// catalogue's words, status 3.
[[nodiscard]] Owned<CSelection> CreateSelection(const char *text, int selected);

int fCSelection_Class_ID_Function();
const char *fCSelection_Class_Name_Function();

// Takes the record over; 1, also for null.
int fDelete_CSelection_Function(CSelection *record);

// A copy that keeps the flag; null for null.
[[nodiscard]] Owned<CSelection> fClone_CSelection_Function(const CSelection *record);

// The text or the record that holds it, lent; null for a null record.
const char *fGet_CSelection_Value_Function(const CSelection *record);
CString *fGet_CSelection_CString_Function(const CSelection *record);

// Stores the flag: 1; 0 and no change for a null record or one without a value.
[[nodiscard]] int fSet_Selected_Function(CSelection *record, int flag);

// The flag; `record` must not be null.
[[nodiscard]] int fIsSelected_CSelection_Function(const CSelection *record);

// The text of the first selected record of `selections`; empty without one.
std::string SelectedText(const CList *selections);

// Takes every selected record out of `selections` (may be null), in order, each after `before` was
// called with its position and the record, which must stay in the list.
using SelectionVisitor = std::function<void(const CNodeList *position, const CSelection &record)>;
void RemoveSelectedRecords(CList *selections, const SelectionVisitor &before);
