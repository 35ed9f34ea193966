// CString: an owned text that may be null.
#include "cstring.h"

#include <gtest/gtest.h>

TEST(CString, MadeFromNullIsNull) { EXPECT_EQ(CreateStringWithValue(nullptr), nullptr); }

TEST(CString, MadeFromTheEmptyTextHoldsTheEmptyText) {
  const Owned<CString> string = CreateStringWithValue("");
  ASSERT_NE(string, nullptr);
  EXPECT_STREQ(fGet_CString_Value_Function(string.get()), "");
}

TEST(CString, FreshRecordHasANullValue) {
  const Owned<CString> string = CreateString();
  EXPECT_EQ(fGet_CString_Value_Function(string.get()), nullptr);
  EXPECT_EQ(fGet_CString_Value_Function(nullptr), nullptr);
}

TEST(CString, SetReplacesTheTextByACopy) {
  const Owned<CString> string = CreateStringWithValue("old");
  std::string text = "new";
  EXPECT_EQ(fSet_CString_Value_Function(string.get(), text.c_str()), 1);
  text = "xxx";
  EXPECT_STREQ(fGet_CString_Value_Function(string.get()), "new");
}

TEST(CString, SetTakesAPartOfItsOwnText) {
  const Owned<CString> string = CreateStringWithValue("prefix and a rest that is not short");
  EXPECT_EQ(fSet_CString_Value_Function(string.get(), string->value.Get() + 7), 1);
  EXPECT_STREQ(fGet_CString_Value_Function(string.get()), "and a rest that is not short");
}

TEST(CString, SetRefusesNullWithoutChange) {
  const Owned<CString> string = CreateStringWithValue("kept");
  EXPECT_EQ(fSet_CString_Value_Function(string.get(), nullptr), 0);
  EXPECT_EQ(fSet_CString_Value_Function(nullptr, "x"), 0);
  EXPECT_STREQ(fGet_CString_Value_Function(string.get()), "kept");
}

TEST(CString, EqualityIsByteForByteAndNullEqualsNull) {
  const Owned<CString> null_a = CreateString();
  const Owned<CString> null_b = CreateString();
  const Owned<CString> lower = CreateStringWithValue("a");
  const Owned<CString> same = CreateStringWithValue("a");
  const Owned<CString> upper = CreateStringWithValue("A");
  EXPECT_EQ(fIsEqual_CString_Value_Function(null_a.get(), null_b.get()), 1);
  EXPECT_EQ(fIsEqual_CString_Value_Function(null_a.get(), lower.get()), 0);
  EXPECT_EQ(fIsEqual_CString_Value_Function(lower.get(), null_a.get()), 0);
  EXPECT_EQ(fIsEqual_CString_Value_Function(lower.get(), same.get()), 1);
  EXPECT_EQ(fIsEqual_CString_Value_Function(lower.get(), upper.get()), 0);
  EXPECT_EQ(fIsEqual_CString_Value_Function(nullptr, nullptr), 0);
  EXPECT_EQ(fIsEqual_CString_Value_Function(lower.get(), nullptr), 0);
}

TEST(CString, CloneIsIndependentAndThatOfANullValueIsNull) {
  Owned<CString> string = CreateStringWithValue("text");
  const Owned<CString> clone = fClone_CString_Function(string.get());
  string.reset();
  EXPECT_STREQ(fGet_CString_Value_Function(clone.get()), "text");
  const Owned<CString> empty = CreateString();
  EXPECT_EQ(fClone_CString_Function(empty.get()), nullptr);
  EXPECT_EQ(fClone_CString_Function(nullptr), nullptr);
}

TEST(CString, CloneHasATextOfItsOwnAlsoWhenTheTextIsShared) {
  const SharedText shared("shared");
  const Owned<CString> one = CreateStringWithText(shared);
  const Owned<CString> other = CreateStringWithText(shared);
  const Owned<CString> clone = fClone_CString_Function(one.get());
  EXPECT_NE(fGet_CString_Value_Function(clone.get()), fGet_CString_Value_Function(one.get()));
  EXPECT_EQ(fSet_CString_Value_Function(one.get(), "changed"), 1);
  EXPECT_STREQ(fGet_CString_Value_Function(other.get()), "shared");
  EXPECT_STREQ(fGet_CString_Value_Function(clone.get()), "shared");
}

TEST(CString, DeleteAcceptsNull) {
  EXPECT_EQ(fDelete_CString_Function(nullptr), 1);
  EXPECT_EQ(fDelete_CString_Function(CreateStringWithValue("x").release()), 1);
}

TEST(CString, AnswersTheHeaderOperationsThroughItsTable) {
  const Owned<CString> string = CreateStringWithValue("text");
  EXPECT_EQ(string->ops->Class_ID(), 100);
  EXPECT_STREQ(string->ops->Class_Name(), "CString");
  const Owned<CObject> clone = string->ops->Clone(string.get());
  EXPECT_STREQ(fGet_CString_Value_Function(ObjectCast<CString>(clone.get())), "text");
  const auto *table = reinterpret_cast<const CStringOps *>(string->ops);
  EXPECT_STREQ(table->text.Get(string.get()), "text");
  EXPECT_EQ(table->Set(string.get(), "other"), 1);
  EXPECT_EQ(table->IsEqual(string.get(), string.get()), 1);
  EXPECT_EQ(string->ops->Delete(nullptr), 1);
}
