// CSelection: a text with a selected flag.
#include "cselection.h"

#include <gtest/gtest.h>

#include "must.h"

TEST(Selection, CloneOfASelectedRecordIsSelected) {
  Owned<CSelection> record = CreateSelection("row", 1);
  const Owned<CSelection> clone = fClone_CSelection_Function(record.get());
  record.reset();
  EXPECT_STREQ(fGet_CSelection_Value_Function(clone.get()), "row");
  EXPECT_EQ(fIsSelected_CSelection_Function(clone.get()), 1);
}

TEST(Selection, ARecordWithoutTextRefusesTheFlag) {
  const Owned<CSelection> record = CreateSelection(nullptr, 0);
  EXPECT_EQ(fGet_CSelection_Value_Function(record.get()), nullptr);
  EXPECT_EQ(fSet_Selected_Function(record.get(), 1), 0);
  EXPECT_EQ(fIsSelected_CSelection_Function(record.get()), 0);
  EXPECT_EQ(fSet_Selected_Function(nullptr, 1), 0);
}

TEST(Selection, StoresTheFlag) {
  const Owned<CSelection> record = CreateSelection("row", 0);
  EXPECT_EQ(fSet_Selected_Function(record.get(), 1), 1);
  EXPECT_EQ(fIsSelected_CSelection_Function(record.get()), 1);
  EXPECT_EQ(fSet_Selected_Function(record.get(), 0), 1);
  EXPECT_EQ(fIsSelected_CSelection_Function(record.get()), 0);
}

TEST(Selection, LendsItsTextRecord) {
  const Owned<CSelection> record = CreateSelection("row", 0);
  EXPECT_EQ(fGet_CSelection_CString_Function(record.get()), record->value.get());
  EXPECT_EQ(fGet_CSelection_CString_Function(nullptr), nullptr);
  EXPECT_EQ(fGet_CSelection_Value_Function(nullptr), nullptr);
}

TEST(Selection, AnswersTheHeaderOperations) {
  const Owned<CSelection> record = CreateSelection("row", 0);
  EXPECT_EQ(record->ops->Class_ID(), 220);
  EXPECT_STREQ(record->ops->Class_Name(), "CSelection");
  EXPECT_EQ(fDelete_CSelection_Function(nullptr), 1);
  EXPECT_EQ(fClone_CSelection_Function(nullptr), nullptr);
}

TEST(Selection, TakesTheSelectedRecordsOutInOrderAndTellsEachBefore) {
  const Owned<CList> list = CreateList();
  for (const auto &[text, flag] : {std::pair("a", 1), {"b", 0}, {"c", 1}, {"d", 1}, {"e", 0}}) {
    Must(fAddTail_CList_Function(list.get(), CreateSelection(text, flag)));
  }
  Must(fAddTail_CList_Function(list.get(), CreateStringWithValue("of another class")));
  std::string told;
  RemoveSelectedRecords(list.get(), [&](const CNodeList *position, const CSelection &record) {
    EXPECT_EQ(fGetAt_CList_Function(list.get(), position), &record);
    told += fGet_CSelection_Value_Function(&record);
  });
  EXPECT_EQ(told, "acd");
  std::string left;
  for (const CSelection *record : Elements<CSelection>(list.get())) {
    left += record == nullptr ? "?" : fGet_CSelection_Value_Function(record);
  }
  EXPECT_EQ(left, "be?");
}

TEST(Selection, TakesNothingOutOfNoList) {
  RemoveSelectedRecords(nullptr, [](const CNodeList *, const CSelection &) { FAIL(); });
}
