// What the filtered entries let in.
#include "entryfilters.h"

#include <gtest/gtest.h>

namespace {

TEST(FilterQueueName, LeavesOutTheForbiddenCharacters) {
  EXPECT_EQ(FilterQueueName("my queue.1", 0), "myqueue1");
  EXPECT_EQ(FilterQueueName("a/\\.,;: '`*@#$=!&|()\"~%^[]{}<>b", 3), "ab");
}

TEST(FilterQueueName, KeepsEveryOtherAsciiCharacter) {
  EXPECT_EQ(FilterQueueName("aZ_-+?09", 1), "aZ_-+?09");
}

TEST(FilterQueueName, DropsLeadingDigitsOnlyAtTheStart) {
  EXPECT_EQ(FilterQueueName("42lp", 0), "lp");
  EXPECT_EQ(FilterQueueName("42lp", 1), "42lp");
  EXPECT_EQ(FilterQueueName("lp42", 0), "lp42");
  EXPECT_EQ(FilterQueueName("4.2lp", 0), "lp");
  EXPECT_EQ(FilterQueueName("42", 0), "");
}

TEST(FilterQueueName, KeepsCharactersBeyondAsciiWhole) {
  EXPECT_EQ(FilterQueueName("Büro 5", 0), "Büro5");
  EXPECT_EQ(FilterQueueName("日本", 0), "日本");
}

TEST(QueueNameDeletion, IsRefusedWhenADigitWouldBecomeTheFirstCharacter) {
  EXPECT_FALSE(QueueNameDeletionAllowed("a9lp", 0, 1));
  EXPECT_TRUE(QueueNameDeletionAllowed("a9lp", 0, 2));
  EXPECT_TRUE(QueueNameDeletionAllowed("ab9", 1, 2));
  EXPECT_TRUE(QueueNameDeletionAllowed("a9", 0, 2));
  EXPECT_TRUE(QueueNameDeletionAllowed("a9", 0, -1));
}

TEST(QueueNameDeletion, CountsCharactersNotBytes) {
  EXPECT_FALSE(QueueNameDeletionAllowed("ü9lp", 0, 1));
  EXPECT_TRUE(QueueNameDeletionAllowed("üä9", 0, 1));
}

TEST(FilterAddress, LeavesOutBlanksAlone) {
  EXPECT_EQ(FilterAddress(" 10.0.0.7 "), "10.0.0.7");
  EXPECT_EQ(FilterAddress("printer-1.example;`$"), "printer-1.example;`$");
}

TEST(FilterDigits, KeepsDigitsAlone) {
  EXPECT_EQ(FilterDigits("0123456789"), "0123456789");
  EXPECT_EQ(FilterDigits("9a9 -+.,"), "99");
  EXPECT_EQ(FilterDigits("\u0663\u00b2"), "") << "digits of other scripts are none";
}

TEST(FilterMeasure, TakesPointAndCommaOnceAsTheLocalesDecimalPoint) {
  EXPECT_EQ(FilterMeasure("210.5", true, ","), "210,5");
  EXPECT_EQ(FilterMeasure("210,5", true, ","), "210,5");
  EXPECT_EQ(FilterMeasure("210,5", true, "."), "210.5");
  EXPECT_EQ(FilterMeasure("1.2,3.4", true, "."), "1.234");
  EXPECT_EQ(FilterMeasure(".5", false, "."), "5");
  EXPECT_EQ(FilterMeasure("-4x 0e1", true, "."), "401");
}

TEST(FilterJobText, LeavesOutApostrophesEqualsSignsAndCommas) {
  EXPECT_EQ(FilterJobText("it's a=b, c"), "its ab c");
  EXPECT_EQ(FilterJobText("',='"), "");
  EXPECT_EQ(FilterJobText("B\u00fcro/\\;:`\"#*@ 5"), "B\u00fcro/\\;:`\"#*@ 5");
}

TEST(FilterEmailAddress, LeavesOutWhatNoAddressHolds) {
  EXPECT_EQ(FilterEmailAddress("a/b\\c,d;e:f'g`h=i"), "abcdefghi");
  EXPECT_EQ(FilterEmailAddress("\u00e4.b+c_d@e-f.gh i@j.kl"), "\u00e4.b+c_d@e-f.gh i@j.kl");
}

}  // namespace
