// Ending the program from any place.
#include "endprogram.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "childprocess.h"

namespace {

void Say(const char *text) {
  if (write(STDERR_FILENO, text, 1) != 1) _exit(120);
}

}  // namespace

TEST(EndProgram, EndsWithItsStatusAsExitDoes) {
  const ChildResult result = RunInChild([] {
    std::atexit([] { Say("x"); });
    EndProgram(7);
  });
  EXPECT_EQ(7, result.status);
  EXPECT_EQ("x", result.errors);
}

TEST(EndProgram, FirstDoesWhatWasNamedLast) {
  const ChildResult result = RunInChild([] {
    std::atexit([] { Say("x"); });
    SetBeforeEnd([] { Say("1"); });
    SetBeforeEnd([] { Say("2"); });
    EndProgram(0);
  });
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("2x", result.errors);
}

TEST(EndProgram, DoesNothingFirstWhenNothingIsNamedAnyMore) {
  const ChildResult result = RunInChild([] {
    SetBeforeEnd([] { Say("1"); });
    SetBeforeEnd(nullptr);
    EndProgram(3);
  });
  EXPECT_EQ(3, result.status);
  EXPECT_EQ("", result.errors);
}
