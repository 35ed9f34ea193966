// Whenever the power fails during a save or behind it, one start and one Save later the queues are
// as they were before the save or as it left them; and when the save had ended, as it left them.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <set>
#include <span>
#include <thread>

#include "interruptedsave.h"
#include "powercut.h"
#include "privateworld.h"

namespace {

constexpr char kImage[] = "/run/kpx/machine.img";
constexpr char kDisk[] = "/run/kpx/machine";

struct Cut {
  std::string image;  // path
  std::string where;
  bool is_after_save = false;
};

// The machine after the power has come back: start, Save; what is wrong then, empty for nothing.
std::string AfterCut(const InterruptedSave &save, const Cut &cut) {
  const MountedImage disk(cut.image, "/run/kpx/restarted");
  const RunningOnDisk running(disk.Place());
  InterruptedSave::StartAndSave();
  const SaveOutcome outcome = save.Judge();
  const bool is_right = outcome.is_new || (outcome.is_old && !cut.is_after_save);
  return is_right ? "" : outcome.differences;
}

class SaveFaultsPowercut : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!HasOrdinaryUsers() || !CanMountImages()) return;
    InterruptedSave::Shared().PutBack();
    MakeImage(kImage);
    disk = std::make_unique<MountedImage>(kImage, kDisk);
    CopyPlacesTo(kDisk);
  }
  static void TearDownTestSuite() { disk.reset(); }

  void SetUp() override {
    if (disk == nullptr) GTEST_SKIP() << "this machine mounts no files: no power cut was tried";
  }

  // Cuts the power before each of a save's calls and behind it; cuts that leave the same disk count
  // once.
  static std::vector<Cut> CutsOfSave(DiskProgress progress) {
    std::vector<Cut> cuts;
    std::set<size_t> seen;
    const RunningOnDisk running(kDisk);
    InterruptedSave::Shared().PutBack();
    LetDiskProgress(kDisk, DiskProgress::Written);
    const auto cut = [&](const std::string &where, bool is_after_save) {
      LetDiskProgress(kDisk, progress);
      const std::string copy = "/run/kpx/cut" + std::to_string(cuts.size()) + ".img";
      if (seen.insert(CutPower(kImage, copy)).second) cuts.push_back({copy, where, is_after_save});
    };
    InterruptedSave::Save([&](const FileCall &call) {
      if (ChangesSavedState(call)) cut("before " + DescriptionOf(call), false);
      return CallFate{};
    });
    cut("behind the save", true);
    return cuts;
  }

  static void TryCuts(const std::string &name, const std::vector<Cut> &cuts, int some) {
    int lost = 0;
    const std::vector<int> sample = SampleOf(static_cast<int>(cuts.size()), some);
    for (const int number : sample) {
      const Cut &cut = cuts[number - 1];
      const std::string wrong = AfterCut(InterruptedSave::Shared(), cut);
      if (!wrong.empty()) ++lost;
      EXPECT_TRUE(wrong.empty()) << name << ", " << cut.where << "\n" << wrong;
    }
    std::cout << name << ": " << sample.size() << " of " << cuts.size() << " states, " << lost
              << " with something lost\n";
  }

  static inline std::unique_ptr<MountedImage> disk;
};

TEST_F(SaveFaultsPowercut, ADiskThatDoesOnlyWhatItIsAskedFor) {
  TryCuts("power cut", CutsOfSave(DiskProgress::AsAsked), 12);
}

TEST_F(SaveFaultsPowercut, ADiskThatHasCommittedNamesBeforeData) {
  TryCuts("power cut behind a commit", CutsOfSave(DiskProgress::Committed), 12);
}

TEST_F(SaveFaultsPowercut, ADiskThatHasWrittenEverything) {
  TryCuts("power cut, all written", CutsOfSave(DiskProgress::Written), 8);
}

// What the file system and the scheduler do of themselves by and by; that takes its time.
TEST_F(SaveFaultsPowercut, SecondsBehindASave) {
  const bool is_long = std::getenv("KPX_LONG") != nullptr;
  std::vector<Cut> cuts;
  {
    const RunningOnDisk running(kDisk);
    InterruptedSave::Shared().PutBack();
    LetDiskProgress(kDisk, DiskProgress::Written);
    InterruptedSave::Save([](const FileCall &) { return CallFate{}; });
    const auto end = std::chrono::steady_clock::now();
    const std::vector<int> times = {0, 1, 3, 6, 10, 20, 40};
    for (const int seconds : std::span(times).first(is_long ? times.size() : 2)) {
      std::this_thread::sleep_until(end + std::chrono::seconds(seconds));
      const std::string copy = "/run/kpx/later" + std::to_string(seconds) + ".img";
      CutPower(kImage, copy);
      cuts.push_back({copy, std::to_string(seconds) + " s behind the save", true});
    }
  }
  TryCuts("power cut in real time", cuts, 7);
}

}  // namespace
