// No queue is lost, wherever a save is killed: a save of 20 queues runs in a child process that is
// killed before each system call with which it changes a file, one run each; then a start must
// show the old queues or the new ones. (Between two such calls nothing on the disk differs, so
// these are all the states that a kill at any other point can leave.)
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <set>

#include "coresupport.h"
#include "cprintqueues.h"
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

// Whether the call that begins changes a file.
bool ChangesAFile(const __ptrace_syscall_info &call) {
  const auto number = static_cast<long>(call.entry.nr);
  const unsigned long flags = call.entry.args[2];
  switch (number) {
    case SYS_openat:
      return (flags & (O_CREAT | O_TRUNC)) != 0;
    case SYS_write:
      return call.entry.args[0] > STDERR_FILENO;
    case SYS_rename:
    case SYS_renameat:
    case SYS_renameat2:
    case SYS_unlink:
    case SYS_unlinkat:
    case SYS_truncate:
    case SYS_ftruncate:
    case SYS_fsync:
    case SYS_fchmod:
    case SYS_fchown:
    case SYS_mkdir:
    case SYS_rmdir:
      return true;
    default:
      return false;
  }
}

// Runs `body` in a child that is killed before its `last`th file-changing call. False when the
// child ended by itself before.
template <class Body>
bool RunUntilKilled(int last, const Body &body) {
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(99);
    raise(SIGSTOP);
    body();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  int seen = 0;
  int signal = 0;
  for (;;) {
    ptrace(PTRACE_SYSCALL, child, nullptr, signal);
    if (waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid");
    if (WIFEXITED(status)) {
      EXPECT_EQ(WEXITSTATUS(status), 0);
      return false;
    }
    signal = WSTOPSIG(status) == (SIGTRAP | 0x80) ? 0 : WSTOPSIG(status);
    if (signal != 0) continue;
    __ptrace_syscall_info call = {};
    ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof call, &call);
    if (call.op != PTRACE_SYSCALL_INFO_ENTRY || !ChangesAFile(call) || ++seen < last) continue;
    kill(child, SIGKILL);
    // The command that the child had started ends by itself; it is this process's child now.
    while (waitpid(-1, nullptr, 0) > 0) {
    }
    return true;
  }
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
    prctl(PR_SET_CHILD_SUBREAPER, 1);
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
