// The Customs tab of the properties window: its handlers.

#pragma once

#include <string>

#include "customentries.h"

// 1: Delete asks first. 0 only while a dialog replaces the entry that it edits.
extern int Confirmation;

// A row became selected or unselected.
void CpsCListRowSelection(int row);
void CpsCListRowUnSelection(int row);
void CmtCListRowSelection(int row);
void CmtCListRowUnSelection(int row);

// "clicked" handlers. With Confirmation 0 Delete removes the selected entries from list and work
// copy at once, counts them as one (kept on purpose) and leaves the Setup tab alone.
void ButtonAddCpsPressed();
void ButtonEditCpsPressed();
void ButtonDeleteCpsPressed();
void ButtonAddCmtPressed();
void ButtonEditCmtPressed();
void ButtonDeleteCmtPressed();

// Appends an unselected row for an entry of the work copy; its number.
[[nodiscard]] int AddItemInCpsCListWidget(const char *name);
[[nodiscard]] int AddItemInCmtCListWidget(const char *name);

// Leave exactly that row selected and in view. Out of range: nothing selected.
void UnselectAllAndSelectOneInCpsCList(int row);
void UnselectAllAndSelectOneInCmtCList(int row);

// Removes the selected entries from list and work copy, one by one, and from the lists of the Setup
// tab; one that is in use there is replaced as if the user had chosen something else. Without a
// list of rows: one line on standard error.
void DeleteSelectedCustomEntries(CustomKind kind);

// For the two dialogs, in this order. Removes the entry that was edited, without a question.
void RemoveEditedCustomEntry(CustomKind kind);
// Gives an entry of the work copy a row and selects that row alone.
void ShowNewCustomEntry(CustomKind kind, const std::string &name);
// Offers it on the Setup tab and counts it.
void CountNewCustomEntry(CustomKind kind);
