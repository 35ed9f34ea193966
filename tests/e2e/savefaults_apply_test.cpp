// Wherever "kpxctl apply" is killed, the next apply of the same file makes the queues just what one
// that nothing interrupted would have made them: list, option files, scripts, the spooler's queues,
// and which of them the file owns. The kill comes before each system call with which kpxctl, or a
// command that it runs, changes a file of its own or speaks to the scheduler.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "interruptedsave.h"
#include "models.h"
#include "paths.h"
#include "privateworld.h"

namespace {

using Kind = CallFate::Kind;

constexpr char kBefore[] = R"({
  "defaults": {"printer": "Vek Norvel 4110ES", "address": "10.0.0.1", "options": {"PageSize": "A4"}},
  "queues": {"qaddress": {}, "qdeleted": {}, "qkept": {}, "qoptions": {}, "qprinter": {}}
})";
constexpr char kAfter[] = R"({
  "defaults": {"printer": "Vek Norvel 4110ES", "address": "10.0.0.1", "options": {"PageSize": "A4"}},
  "queues": {
    "qaddress": {"address": "10.9.9.9"},
    "qkept": {},
    "qnew": {"type": "text", "options": {"Delivery": "HoldJobUntilYouEnterPIN", "DeliveryPIN": "4711"}},
    "qoptions": {"options": {"PageSize": "Letter"}},
    "qprinter": {"printer": "Vek Norvel 4105"}
  }
})";

const std::vector<std::string> &Places() {
  static const std::vector<std::string> places = [] {
    std::vector<std::string> all = SavePlaces();
    all.emplace_back(kStatesDir);
    return all;
  }();
  return places;
}

bool ChangesAppliedState(const FileCall &call) {
  return call.changes && (IsBelow(call, Places()) || SendsToServer(call));
}

// The host before an apply, and after one that nothing interrupts.
class InterruptedApply {
 public:
  InterruptedApply() {
    RequirePrivateWorld();
    std::filesystem::create_directory(kStatesDir);
    Apply(kBefore);
    disk_ = TakeDisk(Places());
    scheduler_ = SchedulerState::Taken();
    Apply(kAfter);
    new_ = TakeWorld();
    owners_ = ContentOf(kOwnersFile);
  }

  static const InterruptedApply &Shared() {
    static const InterruptedApply apply;
    return apply;
  }

  void PutBack() const {
    PutDisk(disk_, Places());
    scheduler_.PutBack();
  }

  // Applies the file that declares this, as an administrator does; throws when it fails.
  static void Apply(const char *declared) {
    std::ofstream(kFile) << declared;
    const CommandResult result = Kpxctl({"apply", kFile});
    if (result.status != 0) throw std::runtime_error("kpxctl apply: " + result.output);
  }

  static TracedEnd ApplyWithFaults(const FatePlan &plan) {
    const auto body = [] {
      const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
      dup2(nowhere, STDOUT_FILENO);
      // A sanitizer's look for leaks would trace a program that has its tracer.
      setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
      execl("/usr/sbin/kpxctl", "kpxctl", "apply", kFile, nullptr);
      return 127;
    };
    return RunTraced([] {}, body, plan, "/run/kpx/errors");
  }

  // What is not as after the apply that nothing interrupted; empty when all is.
  [[nodiscard]] std::string Differences() const {
    std::string differences = ::Differences(TakeWorld(), new_);
    if (ContentOf(kOwnersFile) != owners_) differences += "the file owns other queues\n";
    return differences;
  }

 private:
  static constexpr char kFile[] = "/run/kpx/site.json";
  DiskState disk_;
  SchedulerState scheduler_;
  World new_;
  std::string owners_;
};

// Kills an apply before each of `some` of its calls, and applies again.
void KillEverywhere(const char *name, Kind kind, int some) {
  const InterruptedApply &apply = InterruptedApply::Shared();
  std::vector<std::string> calls;
  apply.PutBack();
  const TracedEnd whole = InterruptedApply::ApplyWithFaults(Noting(ChangesAppliedState, calls));
  ASSERT_EQ(0, whole.status) << InterruptedSave::Errors();
  ASSERT_EQ("", apply.Differences());
  ASSERT_GT(calls.size(), 50U);
  int wrong = 0;
  const std::vector<int> points = SampleOf(static_cast<int>(calls.size()), some);
  for (const int point : points) {
    apply.PutBack();
    const TracedEnd end =
        InterruptedApply::ApplyWithFaults(At(point, ChangesAppliedState, {.kind = kind}));
    const std::string where = std::to_string(point) + ", before " + calls[point - 1];
    EXPECT_TRUE(end.killed) << where;
    const CommandResult again = Kpxctl({"apply", "/run/kpx/site.json"});
    EXPECT_EQ(0, again.status) << where << "\n" << again.output;
    const std::string differences = apply.Differences();
    if (!differences.empty() || again.status != 0) ++wrong;
    EXPECT_EQ("", differences) << name << " " << where;
  }
  std::cout << name << ": " << points.size() << " of " << calls.size() << " states, " << wrong
            << " not as they should be\n";
}

class SaveFaultsApply : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "not root: no kill was tried";
  }
};

TEST_F(SaveFaultsApply, AKilledApplyIsFinishedByTheNextWhenItsCommandGoesOn) {
  KillEverywhere("killed alone", Kind::Killed, 12);
}

TEST_F(SaveFaultsApply, AKilledApplyIsFinishedByTheNextWhenItsCommandsDieToo) {
  KillEverywhere("killed with its commands", Kind::CutDown, 12);
}

}  // namespace
