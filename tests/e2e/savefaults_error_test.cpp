// A file call that fails during a save or a start ends in an error that is told or has no effect,
// and never in a file that is empty, half or another's; afterwards a start and a Save bring every
// queue whole to where it was or to where it was to be.
#include <gtest/gtest.h>

#include <cerrno>
#include <iostream>
#include <memory>

#include "interruptedsave.h"
#include "privateworld.h"

namespace {

using Kind = CallFate::Kind;

const InterruptedSave &Save() { return InterruptedSave::Shared(); }

struct Fault {
  const char *name;
  CallFate fate;
  bool is_invisible = false;  // the program is to go on as if nothing had been
  bool lasts = false;         // from the first call on that meets it
};

constexpr Fault kUnreadable = {.name = "EIO", .fate = {Kind::Failed, EIO}};
constexpr Fault kForbidden = {.name = "EACCES", .fate = {Kind::Failed, EACCES}};
constexpr Fault kNoRoom = {.name = "ENOSPC", .fate = {Kind::Failed, ENOSPC}};
constexpr Fault kDiskFull = {.name = "DiskFull", .fate = {Kind::Failed, ENOSPC}, .lasts = true};
constexpr Fault kInterrupted = {
    .name = "EINTR", .fate = {Kind::Failed, EINTR}, .is_invisible = true};
constexpr Fault kShort = {.name = "Short", .fate = {Kind::Short}, .is_invisible = true};

// The calls that meet the fault: about the saved files, and of programs of ours where the fault is
// one that each program has to expect itself.
CallFilter Meeting(const Fault &fault) {
  return [=](const FileCall &call) {
    if (!IsBelow(call, SavePlaces()) || (fault.is_invisible && !call.is_own)) return false;
    return fault.fate.kind == Kind::Short ? CanBeShort(call) : CanFail(call, fault.fate.error);
  };
}

FatePlan PlanOf(const Fault &fault, int point) {
  if (!fault.lasts) return At(point, Meeting(fault), fault.fate);
  return [seen = std::make_shared<int>(0), point, meets = Meeting(fault), fate = fault.fate](
             const FileCall &call) { return meets(call) && ++*seen >= point ? fate : CallFate{}; };
}

// Counts the states and those that are wrong.
class Tally {
 public:
  void Note(const std::string &wrong, const std::string &where) {
    ++states_;
    if (!wrong.empty()) ++lost_;
    EXPECT_TRUE(wrong.empty()) << where << "\n" << wrong;
  }
  void Print(const std::string &name, size_t all) const {
    std::cout << name << ": " << states_ << " of " << all << " states, " << lost_
              << " with something lost\n";
  }

 private:
  int states_ = 0;
  int lost_ = 0;
};

// What is wrong after a save that met the fault; empty when nothing is. One that was not told must
// have no effect that lasts: the next start and save leave nothing of it.
std::string AfterSave(const Fault &fault, const TracedEnd &end) {
  std::string wrong;
  if (end.status > 1) wrong += "status " + std::to_string(end.status) + "\n";
  const bool was_told = end.status == 1 && !InterruptedSave::Errors().empty();
  wrong += Save().SpoiltFiles();
  if (fault.is_invisible && (was_told || !Save().Judge().is_new)) {
    wrong += "noticed: " + InterruptedSave::Errors() + Save().Judge().differences;
  }
  InterruptedSave::StartAndSave();
  const SaveOutcome outcome = Save().Judge();
  if (!outcome.is_whole || (!outcome.is_new && !was_told)) {
    wrong += (was_told ? "after another save:\n" : "not told:\n") + outcome.differences;
  }
  return wrong;
}

void FailEverywhereInSave(const Fault &fault, int some) {
  const std::vector<std::string> calls = CallsOfSave(Meeting(fault));
  ASSERT_FALSE(calls.empty());
  Tally tally;
  for (const int point : SampleOf(static_cast<int>(calls.size()), some)) {
    Save().PutBack();
    const TracedEnd end = InterruptedSave::Save(PlanOf(fault, point));
    tally.Note(AfterSave(fault, end), std::string(fault.name) + " in a save at " +
                                          std::to_string(point) + ", " + calls[point - 1]);
  }
  tally.Print(std::string(fault.name) + " in a save", calls.size());
}

// `and_save`: Save is pressed although the start met the fault.
void FailEverywhereInStart(const Fault &fault, bool and_save, int some) {
  Save().PutBack();
  const std::vector<std::string> calls = CallsOfStart(Meeting(fault));
  ASSERT_FALSE(calls.empty());
  Tally tally;
  for (const int point : SampleOf(static_cast<int>(calls.size()), some)) {
    Save().PutBack();
    const TracedEnd end = InterruptedSave::Start(PlanOf(fault, point), and_save);
    std::string wrong = Save().SpoiltFiles();
    if (end.status != 0 && InterruptedSave::Errors().empty()) wrong += "ended without words\n";
    if (end.status != 0 && fault.is_invisible) wrong += "told: " + InterruptedSave::Errors();
    InterruptedSave::StartAndSave();
    if (!Save().Judge().is_old) wrong += Save().Judge().differences;
    tally.Note(wrong, std::string(fault.name) + " in a start at " + std::to_string(point) + ", " +
                          calls[point - 1]);
  }
  tally.Print(std::string(fault.name) + (and_save ? " in a start, then Save" : " in a start"),
              calls.size());
}

std::string NameOf(const testing::TestParamInfo<Fault> &info) { return info.param.name; }

class FaultInSave : public testing::TestWithParam<Fault> {
 protected:
  void SetUp() override {
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "not root: no fault was tried";
  }
};

TEST_P(FaultInSave, IsToldOrHasNoEffect) { FailEverywhereInSave(GetParam(), 8); }

INSTANTIATE_TEST_SUITE_P(SaveFaults, FaultInSave,
                         testing::Values(kUnreadable, kForbidden, kNoRoom, kDiskFull, kInterrupted,
                                         kShort),
                         NameOf);

class FaultInStart : public FaultInSave {};

TEST_P(FaultInStart, ChangesNothing) { FailEverywhereInStart(GetParam(), false, 5); }

TEST_P(FaultInStart, LosesNothingInASaveThatFollows) { FailEverywhereInStart(GetParam(), true, 5); }

INSTANTIATE_TEST_SUITE_P(SaveFaults, FaultInStart,
                         testing::Values(kUnreadable, kForbidden, kInterrupted, kShort), NameOf);

}  // namespace
