// SharedText and TextPool: one copy of a text for all who say it.
#include "sharedtext.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(SharedText, WithoutTextIsNotTheEmptyText) {
  const SharedText none;
  const SharedText empty("");
  EXPECT_FALSE(none);
  EXPECT_EQ(none.Get(), nullptr);
  EXPECT_EQ(none.View(), "");
  EXPECT_TRUE(empty);
  EXPECT_STREQ(empty.Get(), "");
  EXPECT_FALSE(none == empty);
  EXPECT_TRUE(none == SharedText());
}

TEST(SharedText, IsACopyOfWhatItIsMadeFromUpToTheFirstNul) {
  std::string source = "a text of some length";
  const SharedText text(source);
  source[0] = 'x';
  EXPECT_EQ(text.View(), "a text of some length");
  EXPECT_EQ(SharedText(std::string_view("a\0b", 3)).View(), "a");
}

TEST(SharedText, CopiesShareTheTextAndOutliveTheFirst) {
  SharedText first("kept by the last");
  SharedText second = first;
  EXPECT_EQ(second.Get(), first.Get());
  const SharedText third = std::move(second);
  EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move): tells who holds it
  first = SharedText("another");
  EXPECT_EQ(third.View(), "kept by the last");
  EXPECT_EQ(first.View(), "another");
}

TEST(SharedText, TakesItselfAgain) {
  SharedText text("itself");
  const SharedText &same = text;
  text = same;
  EXPECT_EQ(text.View(), "itself");
}

TEST(SharedText, EqualityIsByteForByte) {
  EXPECT_TRUE(SharedText("a") == SharedText("a"));
  EXPECT_FALSE(SharedText("a") == SharedText("A"));
  EXPECT_FALSE(SharedText("a") == SharedText("ab"));
}

TEST(TextPool, GivesTheSameCopyForTheSameTextAlsoPastItsOwnEnd) {
  SharedText kept;
  {
    TextPool pool;
    kept = pool.Get("*PageSize");
    EXPECT_EQ(pool.Get(std::string("*PageSize")).Get(), kept.Get());
    EXPECT_NE(pool.Get("*PageRegion").Get(), kept.Get());
    for (int i = 0; i < 1000; ++i) pool.Get(std::to_string(i));
    EXPECT_EQ(pool.Get("*PageSize").Get(), kept.Get());
  }
  EXPECT_EQ(kept.View(), "*PageSize");
}

}  // namespace
