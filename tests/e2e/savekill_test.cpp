// Whatever a killed save leaves can be finished: a save of 20 queues runs in a child process that
// is killed before each system call with which it changes a file, one run each; then a start and a
// Save must leave the files of an uninterrupted save. (Between two such calls nothing on the disk
// differs, so these are all the states that a kill at any other point can leave.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <set>

#include "coresupport.h"
#include "cprintqueues.h"
#include "faultinjection.h"
#include "globals.h"
#include "loadqueues.h"
#include "must.h"
#include "paths.h"
#include "queuesupport.h"
#include "savequeues.h"
#include "spoolerstandin.h"
#include "unfinishedsave.h"

namespace fs = std::filesystem;

namespace {

using Names = std::set<std::string>;

constexpr char kSaved[] = "/run/kpx/saved";
const Names kOldOnly = {"old1", "old2"};

// Runs `body` in a child that is killed before its `last`th file-changing call. False when the
// child ended by itself before.
bool RunUntilKilled(int last, const std::function<void()> &body) {
  int seen = 0;
  const auto plan = [&](const FileCall &call) {
    const bool counts = call.is_own && call.changes && call.path.starts_with('/');
    const bool is_last = counts && ++seen == last;
    return is_last ? CallFate{.kind = CallFate::Kind::Killed} : CallFate{};
  };
  const auto run = [&] {
    body();
    return 0;
  };
  const TracedEnd end = RunTraced([] {}, run, plan);
  EXPECT_TRUE(end.killed || end.status == 0) << end.status;
  return end.killed;
}

// The directories that a save changes.
const std::vector<std::string> kPlaces = {kDataDir, SpoolerStandIn::kSpool};

void CopyPlaces(const std::string &from, const std::string &to) {
  for (const std::string &place : kPlaces) {
    fs::create_directories(to + place);
    for (const auto &entry : fs::directory_iterator(to + place)) {
      if (entry.path().filename() != "nls") fs::remove_all(entry.path());
    }
    for (const auto &entry : fs::directory_iterator(from + place)) {
      if (entry.path().filename() == "nls") continue;
      fs::copy(entry.path(), to + place + "/" + entry.path().filename().string(),
               fs::copy_options::recursive);
    }
  }
}

// Path to mode and content of every file that a save is about.
using State = std::map<std::string, std::string>;

State StateOfPlaces() {
  State state;
  for (const std::string &place : kPlaces) {
    for (auto entry = fs::recursive_directory_iterator(place);
         entry != fs::recursive_directory_iterator(); ++entry) {
      const std::string path = entry->path();
      if (entry->path().filename() == "nls") entry.disable_recursion_pending();
      if (!entry->is_regular_file() || path.ends_with(".lock")) continue;
      state[path] = std::to_string(ModeOf(path)) + " " + ContentOf(path);
    }
  }
  return state;
}

// The paths at which the two differ, and what stands there.
std::string Differences(const State &a, const State &b) {
  std::string text;
  for (const auto &[path, content] : a) {
    const auto other = b.find(path);
    if (other == b.end()) text += path + " is there: " + content + "\n";
    if (other != b.end() && other->second != content) text += path + " differs: " + content + "\n";
  }
  for (const auto &[path, content] : b) {
    if (a.count(path) == 0) text += path + " is missing\n";
  }
  return text;
}

class SaveKill : public testing::Test {
 protected:
  SaveKill() : messages_(std::string(kQueueMessages) + "#WARN_QUEUE_LIST_RESTORED\nrestored %s\n") {
    setenv("LANG", "C", 1);
    G_ProgName = kModeAdministration;
    fs::remove(kQueuesFile);
    Start();
    for (int i = 1; i <= 10; ++i) Put("old" + std::to_string(i), "10.0.0.1");
    Save();
    for (const char *file : {"root:old1.def", "root:old2.def", "root:old5.def"}) {
      std::ofstream(std::string(kUsersDir) + "/" + file) << "*Nup=2\n";
    }
    old_ = Shown();
    old_state_ = StateOfPlaces();
    CopyPlaces("", kSaved);
  }
  ~SaveKill() override {
    Forget();
    G_ProgName = kModeNeither;
    for (const auto &entry : fs::directory_iterator(kUsersDir)) fs::remove(entry.path());
  }

  static void Forget() {
    G_Queues.reset();
    G_OrgQueues.reset();
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
    G_UnfinishedRemovals.reset();
  }

  // What a start of the administration program does with the queues.
  static void Start() {
    Forget();
    const Owned<CList> messages = CreateList();
    G_Queues = CreatePrintQueues(kQueuesFile);
    testing::internal::CaptureStderr();
    LoadQueuesAtStart(messages.get());
    testing::internal::GetCapturedStderr();
  }

  static Names Shown() {
    Names names;
    for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) names.insert(name);
    return names;
  }

  static void Put(const std::string &name, const std::string &address) {
    Must(HashPut(G_Queues_hash, name.c_str(), MakeQueue({.name = name, .address = address})));
  }

  // What the window's Save does: what is shown, and what was deleted in the window, `deleted`, or
  // in the save that was interrupted. The number of errors.
  static size_t Save(const std::vector<std::string> &deleted = {}) {
    const Owned<CList> names = ListOf(deleted);
    const CList *removed =
        G_UnfinishedRemovals == nullptr ? names.get() : G_UnfinishedRemovals.get();
    const Owned<CList> errors = CreateList();
    SaveQueues(removed, errors.get(), {});
    return Texts(errors.get()).size();
  }

  // What the administrator does: two queues go, one moves, one changes its settings, ten are new.
  static void ChangeAndSave() {
    for (const std::string &name : kOldOnly) HashRemove(G_Queues_hash, name.c_str());
    Put("old3", "10.0.0.99");
    Must(HashPutText(HashValue<CPrintQueue>(G_Queues_hash, "old4")->Options.get(), "*Nup", "2"));
    for (int i = 1; i <= 10; ++i) Put("new" + std::to_string(i), "10.0.0.2");
    if (Save({kOldOnly.begin(), kOldOnly.end()}) != 0) _exit(1);
  }

  // The state after the save that nothing interrupts.
  State SavedState() {
    CopyPlaces(kSaved, "");
    Start();
    EXPECT_FALSE(RunUntilKilled(1000000, ChangeAndSave));
    return StateOfPlaces();
  }

  // Starts and saves; tells how the files differ from those of the save that was interrupted or,
  // when it had not yet said what it was to do, from those before it.
  std::string FinishedDifferences(const State &saved) {
    const bool was_told = fs::exists(IntentionPath(kQueuesFile));
    const bool is_over = !was_told && HasNewList(saved);
    Start();
    EXPECT_EQ(G_UnfinishedRemovals != nullptr, was_told);
    EXPECT_EQ(Save(), 0U);
    return Differences(StateOfPlaces(), was_told || is_over ? saved : old_state_);
  }

  // Whether the list is that of the save that was not interrupted.
  static bool HasNewList(const State &saved) {
    return ContentOf(kQueuesFile) ==
           saved.at(kQueuesFile).substr(saved.at(kQueuesFile).find(' ') + 1);
  }

  bool IsSubset(const Names &part, const Names &whole) {
    return std::includes(whole.begin(), whole.end(), part.begin(), part.end());
  }

  SpoolerStandIn spooler_;
  ProgramMessages messages_;
  Names old_;
  State old_state_;
};

TEST_F(SaveKill, EveryKilledSaveCanBeFinished) {
  ASSERT_EQ(old_.size(), 10U);
  const State saved = SavedState();
  ASSERT_EQ(saved.count(std::string(kUsersDir) + "/root:old1.def"), 0U);
  ASSERT_EQ(saved.count(std::string(kUsersDir) + "/root:old5.def"), 1U);
  int kills = 0;
  int different = 0;
  for (;; ++kills) {
    CopyPlaces(kSaved, "");
    Start();
    if (!RunUntilKilled(kills + 1, ChangeAndSave)) break;
    const std::string differences = FinishedDifferences(saved);
    if (differences.empty()) continue;
    ++different;
    ADD_FAILURE() << "kill " << kills + 1 << ":\n" << differences;
  }
  EXPECT_GT(kills, 100);
  EXPECT_EQ(Differences(StateOfPlaces(), saved), "");
  std::cout << kills << " kills, " << different << " that could not be finished\n";
}

TEST_F(SaveKill, ASaveThatIsKilledAgainWhileItIsFinishedCanBeFinished) {
  const State saved = SavedState();
  int finished = 0;
  for (int first = 3;; first += 17) {
    CopyPlaces(kSaved, "");
    Start();
    if (!RunUntilKilled(first, ChangeAndSave)) break;
    // Before it has said what it is to do there is nothing to finish: the next saves keep the old.
    if (!fs::exists(IntentionPath(kQueuesFile)) && !HasNewList(saved)) continue;
    ++finished;
    for (int again = 0; again < 3; ++again) {
      Start();
      RunUntilKilled(1 + (first * 5 + again * 37) % 120, [] {
        if (Save() != 0) _exit(1);
      });
    }
    EXPECT_EQ(FinishedDifferences(saved), "") << "first killed before call " << first;
  }
  EXPECT_GT(finished, 10);
}

// Who prints meanwhile sees the old list or the new one, and never asks what was intended.
TEST_F(SaveKill, ThePrintToolFindsTheQueuesOfTheListWhereverASaveIsKilled) {
  Names kept = old_;
  for (const std::string &name : kOldOnly) kept.erase(name);
  const State saved = SavedState();
  const Names all_new = Shown();
  for (int last = 2;; last += 9) {
    CopyPlaces(kSaved, "");
    Start();
    if (!RunUntilKilled(last, ChangeAndSave)) break;
    G_ProgName = kModePrintTool;
    Start();
    G_ProgName = kModeAdministration;
    const Names shown = Shown();
    const bool is_old = IsSubset(kept, shown) && IsSubset(shown, old_);
    const bool is_new = IsSubset(kept, shown) && shown.count("new9") == 1;
    EXPECT_TRUE(is_old || is_new) << last << ": " << testing::PrintToString(shown);
    EXPECT_EQ(G_UnfinishedRemovals, nullptr);
  }
}

}  // namespace
