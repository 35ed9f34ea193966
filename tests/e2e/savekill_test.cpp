// No queue is lost, wherever a save is killed: a save of 20 queues runs in a child process that is
// killed before each system call with which it changes a file, one run each; then a start must
// show the old queues or the new ones. (Between two such calls nothing on the disk differs, so
// these are all the states that a kill at any other point can leave.)
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iostream>
#include <set>

#include "coresupport.h"
#include "cprintqueues.h"
#include "faultinjection.h"
#include "globals.h"
#include "paths.h"
#include "porting.h"
#include "queuelistkeep.h"
#include "queuesupport.h"
#include "savequeues.h"
#include "spoolerstandin.h"

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

class SaveKill : public testing::Test {
 protected:
  SaveKill() : messages_(std::string(kQueueMessages) + "#WARN_QUEUE_LIST_RESTORED\nrestored %s\n") {
    setenv("LANG", "C", 1);
    fs::remove(kQueuesFile);
    Start();
    for (int i = 1; i <= 10; ++i) Put("old" + std::to_string(i), "10.0.0.1");
    Save({});
    old_ = Shown();
    CopyPlaces("", kSaved);
  }
  ~SaveKill() override { Forget(); }

  static void Forget() {
    G_Queues.reset();
    G_OrgQueues.reset();
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
  }

  // What a start of the administration program does with the queues.
  static void Start() {
    Forget();
    const Owned<CList> messages = CreateList();
    G_Queues = CreatePrintQueues(kQueuesFile);
    LoadQueueList(G_Queues.get(), 1, messages.get());
    G_Queues_hash = fGetPrintQueues_Function(G_Queues.get());
    RemoveInexistentSystemVQueues(messages.get());
    G_OrgQueues = CloneOf(G_Queues.get());
    G_OrgQueues_hash = fGetPrintQueues_Function(G_OrgQueues.get());
  }

  static Names Shown() {
    Names names;
    for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) names.insert(name);
    return names;
  }

  static void Put(const std::string &name, const std::string &address) {
    HashPut(G_Queues_hash, name.c_str(), MakeQueue({.name = name, .address = address}));
  }

  static size_t Save(const std::vector<std::string> &deleted) {
    const Owned<CList> names = ListOf(deleted);
    const Owned<CList> errors = CreateList();
    SaveQueues(names.get(), errors.get(), {});
    return Texts(errors.get()).size();
  }

  // What the administrator does: two queues go, one moves, ten are new.
  static void ChangeQueues() {
    for (const std::string &name : kOldOnly) HashRemove(G_Queues_hash, name.c_str());
    Put("old3", "10.0.0.99");
    for (int i = 1; i <= 10; ++i) Put("new" + std::to_string(i), "10.0.0.2");
  }

  bool IsSubset(const Names &part, const Names &whole) {
    return std::includes(whole.begin(), whole.end(), part.begin(), part.end());
  }

  SpoolerStandIn spooler_;
  ProgramMessages messages_;
  Names old_;
};

TEST_F(SaveKill, NoQueueIsLostWhereverASaveIsKilled) {
  ASSERT_EQ(old_.size(), 10U);
  Names kept = old_;
  for (const std::string &name : kOldOnly) kept.erase(name);
  Names all_new = kept;
  for (int i = 1; i <= 10; ++i) all_new.insert("new" + std::to_string(i));

  int kills = 0;
  int lost = 0;
  bool killed = true;
  for (; killed; ++kills) {
    CopyPlaces(kSaved, "");
    Start();
    killed = RunUntilKilled(kills + 1, [] {
      ChangeQueues();
      if (Save({kOldOnly.begin(), kOldOnly.end()}) != 0) _exit(1);
    });
    if (!killed) break;
    Start();
    const Names shown = Shown();
    // The old list less what is already gone from the spooler, or the new one.
    const bool old_list = IsSubset(kept, shown) && IsSubset(shown, old_);
    if (!old_list && shown != all_new) {
      ++lost;
      ADD_FAILURE() << "kill " << kills + 1 << " leaves " << testing::PrintToString(shown);
    }
  }
  EXPECT_GT(kills, 100);
  Start();
  EXPECT_EQ(Shown(), all_new);
  EXPECT_FALSE(fs::exists(KeptQueueListPath(kQueuesFile)));
  std::cout << kills << " kills, " << lost << " queues lost\n";
}

TEST_F(SaveKill, AnInterruptedSaveCanBeDoneAgain) {
  for (const int last : {3, 20, 60, 100}) {
    CopyPlaces(kSaved, "");
    Start();
    ASSERT_TRUE(RunUntilKilled(last, [] {
      ChangeQueues();
      Save({kOldOnly.begin(), kOldOnly.end()});
    }));
    Start();
    const Names deleted = Shown().count("old1") != 0 ? kOldOnly : Names{};
    ChangeQueues();
    EXPECT_EQ(Save({deleted.begin(), deleted.end()}), 0U) << last;
    Start();
    EXPECT_EQ(Shown().size(), 18U) << last;
    EXPECT_FALSE(fs::exists(KeptQueueListPath(kQueuesFile))) << last;
  }
}

}  // namespace
