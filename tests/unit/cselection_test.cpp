// CSelection: a text with a selected flag.
#include "cselection.h"

#include <gtest/gtest.h>

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
