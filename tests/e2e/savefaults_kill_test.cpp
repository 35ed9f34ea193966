// Wherever a save is killed, one start and one Save later the queues are as they were before it or
// as it would have left them: list, option files, scripts, the spooler's queues. The kill comes
// before each system call with which the save, or a command that it runs, changes a file or speaks
// to the scheduler. (Between two such calls nothing differs, so these are all the states.)
#include <gtest/gtest.h>

#include <iostream>

#include "interruptedsave.h"
#include "privateworld.h"

namespace {

using Kind = CallFate::Kind;

const InterruptedSave &Save() { return InterruptedSave::Shared(); }

// Kills a save before each of `some` of its calls.
void KillEverywhere(const char *name, Kind kind, int some) {
  const std::vector<std::string> calls = CallsOfSave(ChangesSavedState);
  ASSERT_GT(calls.size(), 50U);
  int lost = 0;
  int first_new = 0;
  const std::vector<int> points = SampleOf(static_cast<int>(calls.size()), some);
  for (const int point : points) {
    Save().PutBack();
    const TracedEnd end = InterruptedSave::Save(At(point, ChangesSavedState, {.kind = kind}));
    const std::string where = std::to_string(point) + ", before " + calls[point - 1];
    EXPECT_TRUE(end.killed) << where;
    InterruptedSave::StartAndSave();
    const SaveOutcome outcome = Save().Judge();
    if (outcome.is_new && first_new == 0) first_new = point;
    const bool is_right = outcome.is_new || (outcome.is_old && first_new == 0);
    if (!is_right) ++lost;
    EXPECT_TRUE(is_right) << name << " " << where << "\n" << outcome.differences;
  }
  std::cout << name << ": " << points.size() << " of " << calls.size() << " states, " << lost
            << " with something lost, new from " << first_new << " on\n";
}

class SaveFaultsKill : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "not root: no kill was tried";
  }
};

TEST_F(SaveFaultsKill, AKilledSaveCanBeFinishedWhenItsCommandGoesOn) {
  KillEverywhere("killed alone", Kind::Killed, 45);
}

TEST_F(SaveFaultsKill, AKilledSaveCanBeFinishedWhenItsCommandsDieToo) {
  KillEverywhere("killed with its commands", Kind::CutDown, 45);
}

// The start and the save that finish a killed one are killed too; the next ones finish both.
TEST_F(SaveFaultsKill, AKilledFinishCanBeFinished) {
  const int calls = static_cast<int>(CallsOfSave(ChangesSavedState).size());
  int states = 0;
  int lost = 0;
  for (const int point : SampleOf(calls, 4, 24)) {
    for (int second = 1 + point % 7;; second += 7) {
      Save().PutBack();
      InterruptedSave::Save(At(point, ChangesSavedState, {.kind = Kind::CutDown}));
      const TracedEnd end =
          InterruptedSave::Start(At(second, ChangesSavedState, {.kind = Kind::CutDown}), true);
      if (!end.killed) break;
      ++states;
      InterruptedSave::StartAndSave();
      const SaveOutcome outcome = Save().Judge();
      const bool is_right = outcome.is_new || outcome.is_old;
      if (!is_right) ++lost;
      EXPECT_TRUE(is_right) << "killed at " << point << ", then at " << second << "\n"
                            << outcome.differences;
    }
  }
  std::cout << "killed while finishing: " << states << " states, " << lost
            << " with something lost\n";
}

}  // namespace
