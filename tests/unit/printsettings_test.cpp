// What the print tool does about settings that it cannot store for a job.
#include "printsettings.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "cselection.h"
#include "globals.h"
#include "must.h"
#include "paths.h"
#include "printcommand.h"
#include "privateworld.h"
#include "queuesupport.h"
#include "temporarydirectory.h"
#include "waitingsettings.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

constexpr char kBobsFile[] = "/opt/orlan/data/users/bob:lp1.def";
constexpr char kBobsDirectory[] = "/opt/orlan/data/users/bob";
constexpr char kPin[] = "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=2468\n";

// What became of a print.
struct Sent {
  Strings told;        // the list of errors
  std::string errors;  // standard error
  bool lp_ran = false;
};

class StoredSettings : public testing::Test {
 protected:
  StoredSettings() {
    RequirePrivateWorld();
    fs::permissions(directory_.Path(), fs::perms(0777));
    RemoveUsersFiles();
    InstallLp("");
    InstallLpstat("exit 1");
    for (CHash *queues : {window_.get(), original_.get()}) {
      Must(HashPut(queues, "lp1", MakeQueue()));
    }
    G_Queues_hash = window_.get();
    G_OrgQueues_hash = original_.get();
    G_FilesList = CreateList();
    Must(fAddTail_CList_Function(G_FilesList.get(), CreateSelection("/etc/motd", 0)));
  }
  ~StoredSettings() override {
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
    G_FilesList.reset();
    RemoveUsersFiles();
  }

  // lp and lpstat do this, in a shell; lp leaves a sign that it was run.
  void InstallLp(const std::string &action) const {
    Install(kLp, ": >" + directory_.Path("lp-ran") + "\n" + action);
  }
  static void InstallLpstat(const std::string &action) { Install(kLpstat, action); }
  static void Install(const std::string &path, const std::string &action) {
    std::ofstream(path) << "#!/bin/sh\n" << action << "\n";
    fs::permissions(path, fs::perms(0755));
  }
  static std::string LpSays(const std::string &request) {
    return "echo 'request id is " + request + " (1 file(s))'";
  }

  static void RemoveUsersFiles() {
    for (const std::string &name : NamesIn(kUsersDir)) {
      fs::remove_all(std::string(kUsersDir) + "/" + name);
    }
  }

  // The window shows this option for the queue, the queue itself has the other.
  void Show(const char *key, const char *value) const {
    Must(HashPutText(HashValue<CPrintQueue>(window_.get(), "lp1")->Options.get(), key, value));
  }
  void QueueHas(const char *key, const char *value) const {
    Must(HashPutText(HashValue<CPrintQueue>(original_.get(), "lp1")->Options.get(), key, value));
  }
  void ShowPin() const {
    Show("*Delivery", "HoldJobUntilYouEnterPIN");
    Show("*DeliveryPIN", "2468");
  }

  // Prints as `user`.
  Sent PrintAs(const char *user) const {
    const std::string report = directory_.Path("told");
    const ChildResult result = RunAsUser(user, [&] {
      const Owned<CList> errors = CreateList();
      PrintFiles("lp1", errors.get());
      std::ofstream told(report);
      for (const std::string &text : Texts(errors.get())) told << text << '\n';
    });
    EXPECT_EQ(0, result.status) << result.errors;
    return {SplitLines(ContentOf(report)), result.errors, fs::exists(directory_.Path("lp-ran"))};
  }

  // What the directory of bob's own holds.
  static Strings BobsCopies() { return NamesIn(kBobsDirectory); }
  static std::string BobsCopy(const std::string &request) {
    return std::string(kBobsDirectory) + "/" + request;
  }
  // Made as bob's print tool makes it.
  static void MakeBobsDirectory() {
    const ChildResult result = RunAsUser("bob", [] {
      umask(0027);
      if (mkdir(kBobsDirectory, 0750) != 0) _exit(1);
    });
    ASSERT_EQ(0, result.status);
  }
  static void AsBob(const std::function<void()> &body) {
    const ChildResult result = RunAsUser("bob", body);
    EXPECT_EQ(0, result.status) << result.errors;
    EXPECT_EQ("", result.errors);
  }

  static void GiveTo(const char *user, const std::string &path) {
    ASSERT_EQ(0, lchown(path.c_str(), getpwnam(user)->pw_uid, static_cast<gid_t>(-1)));
  }

  TemporaryDirectory directory_;

 private:
  const ProgramMessages messages_{kQueueMessages};
  const Owned<CHash> window_ = CreateHash();
  const Owned<CHash> original_ = CreateHash();
};

// The tests play users against each other.
#define NEEDS_USERS() \
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root"

const std::string kNoDirectory = std::string("lost <lp1> <") + kBobsDirectory + ">";
const std::string kLost = std::string("lost <lp1> <") + kBobsFile + ">";
const std::string kAnnas = std::string("foreign <") + kBobsFile + "> <anna>";

}  // namespace

TEST_F(StoredSettings, NothingIsSentWithoutThePinWhenSomebodyElsesFileIsInTheWay) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kLost, kAnnas}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(StoredSettings, ADirectoryAFifoAndALinkOfSomebodyElseAreNamedToo) {
  NEEDS_USERS();
  ShowPin();
  const std::function<void()> obstacles[] = {
      [] { fs::create_directory(kBobsFile); },
      [] { ASSERT_EQ(0, mkfifo(kBobsFile, 0666)); },
      [] { fs::create_symlink("/etc/motd", kBobsFile); },
  };
  for (const auto &place : obstacles) {
    place();
    GiveTo("anna", kBobsFile);
    const Sent sent = PrintAs("bob");
    EXPECT_EQ((Strings{kLost, kAnnas}), sent.told);
    EXPECT_FALSE(sent.lp_ran);
    fs::remove(kBobsFile);
  }
}

TEST_F(StoredSettings, ADirectoryOfTheUsersOwnIsToBeRemoved) {
  NEEDS_USERS();
  fs::create_directory(kBobsFile);
  GiveTo("bob", kBobsFile);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kLost, std::string("in the way <") + kBobsFile + ">"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(StoredSettings, WhatTheUserMayReplaceIsReplaced) {
  NEEDS_USERS();
  fs::create_symlink("/etc/motd", kBobsFile);
  GiveTo("bob", kBobsFile);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ(Strings{}, sent.told);
  EXPECT_TRUE(sent.lp_ran);
  EXPECT_EQ(std::string(kPin) + "*NrCopies=1\n", ContentOf(kBobsFile));
}

TEST_F(StoredSettings, AFullDiskStopsThePrintWithTheSystemsWords) {
  NEEDS_USERS();
  const SmallDisk disk(kUsersDir, 4096);
  fs::permissions(kUsersDir, fs::perms(01777));
  std::ofstream(std::string(kUsersDir) + "/filler") << std::string(4096, 'x');
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kNoDirectory, "reason <No space left on device>"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
  EXPECT_EQ(Strings{}, BobsCopies());
}

TEST_F(StoredSettings, ADirectoryThatCannotBeWrittenStopsThePrint) {
  NEEDS_USERS();
  MakeBobsDirectory();
  fs::permissions(kUsersDir, fs::perms(0755));
  ShowPin();
  const Sent sent = PrintAs("bob");
  fs::permissions(kUsersDir, fs::perms(03777));
  EXPECT_EQ((Strings{kLost, "reason <Permission denied>"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
  EXPECT_EQ(Strings{}, BobsCopies());
}

TEST_F(StoredSettings, AJobWithTheQueuesOwnSettingsIsPrintedAndTheFileToldOnStandardError) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  QueueHas("*Duplex", "None");
  Show("*Duplex", "None");
  const Sent sent = PrintAs("bob");
  EXPECT_EQ(Strings{}, sent.told);
  EXPECT_TRUE(sent.lp_ran);
  EXPECT_EQ(std::string("write <") + kBobsFile + ">\n", sent.errors);
}

TEST_F(StoredSettings, TheNumberOfCopiesAloneStopsNothing) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  QueueHas("*NrCopies", "1");
  Show("*NrCopies", "7");
  EXPECT_TRUE(PrintAs("bob").lp_ran);
}

TEST_F(StoredSettings, AnOlderFileOfTheUsersCountsAsWhatTheFilterTakes) {
  NEEDS_USERS();
  std::ofstream(kBobsFile) << kPin;
  GiveTo("bob", kBobsFile);
  MakeBobsDirectory();
  fs::permissions(kUsersDir, fs::perms(0755));
  ShowPin();
  const bool ran_with_pin = PrintAs("bob").lp_ran;
  fs::remove(directory_.Path("lp-ran"));
  Show("*DeliveryPIN", "1357");
  const bool ran_with_another = PrintAs("bob").lp_ran;
  fs::permissions(kUsersDir, fs::perms(03777));
  EXPECT_TRUE(ran_with_pin);
  EXPECT_FALSE(ran_with_another);
}

TEST_F(StoredSettings, ASettingThatTheWindowDroppedStopsThePrintToo) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  QueueHas("*Nup", "2");
  EXPECT_FALSE(PrintAs("bob").lp_ran);
}

// The copy that a job keeps: the settings, and under which name each file prints.

const std::string kKeptSettings = std::string(kPin) + "*NrCopies=1\n##File: motd\n";

TEST_F(StoredSettings, AJobKeepsACopyUnderItsRequestIdForItsUserAndTheSpoolerAlone) {
  NEEDS_USERS();
  InstallLp(LpSays("lp1-7"));
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_TRUE(sent.lp_ran);
  EXPECT_EQ("", sent.errors);
  EXPECT_EQ(Strings{"lp1-7"}, BobsCopies());
  EXPECT_EQ(kKeptSettings, ContentOf(BobsCopy("lp1-7")));
  EXPECT_EQ(mode_t{0640}, ModeOf(BobsCopy("lp1-7")));
  EXPECT_EQ("lp", GroupOf(BobsCopy("lp1-7")));
  EXPECT_EQ(mode_t{02750}, ModeOf(kBobsDirectory));
  EXPECT_EQ("lp", GroupOf(kBobsDirectory));
}

TEST_F(StoredSettings, TheNextPrintLeavesTheCopyOfTheFirstAlone) {
  NEEDS_USERS();
  InstallLp(LpSays("lp1-7"));
  ShowPin();
  PrintAs("bob");
  InstallLp(LpSays("lp1-8"));
  Show("*Delivery", "PrintImmediately");
  PrintAs("bob");
  EXPECT_EQ((Strings{"lp1-7", "lp1-8"}), BobsCopies());
  EXPECT_EQ(kKeptSettings, ContentOf(BobsCopy("lp1-7")));
  EXPECT_NE(std::string::npos, ContentOf(BobsCopy("lp1-8")).find("*Delivery=PrintImmediately\n"));
}

TEST_F(StoredSettings, AllOfTheCopyIsThereBeforeLpRuns) {
  NEEDS_USERS();
  InstallLp("cat " + std::string(kBobsDirectory) + "/* >" + directory_.Path("seen"));
  ShowPin();
  PrintAs("bob");
  EXPECT_EQ(kKeptSettings, ContentOf(directory_.Path("seen")));
}

TEST_F(StoredSettings, AJobThatLpDoesNotTakeLeavesNoCopy) {
  NEEDS_USERS();
  InstallLp(LpSays("lp1-7") + "; exit 1");
  ShowPin();
  PrintAs("bob");
  EXPECT_EQ(Strings{}, BobsCopies());
}

TEST_F(StoredSettings, AJobWhoseRequestIdIsNotToldIsWarnedOf) {
  NEEDS_USERS();
  InstallLp("echo 'request id is another-7 (1 file(s))'");
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ(Strings{}, sent.told);
  EXPECT_EQ("shared <lp1>\n", sent.errors);
  EXPECT_EQ(Strings{}, BobsCopies());
}

TEST_F(StoredSettings, SomebodyElsesFileInThePlaceOfTheDirectoryStopsThePrint) {
  NEEDS_USERS();
  ShowPin();
  const std::function<void()> obstacles[] = {
      [] { std::ofstream(kBobsDirectory).close(); },
      [] { fs::create_directory(kBobsDirectory); },
      [] { fs::create_directory_symlink("/tmp", kBobsDirectory); },
  };
  for (const auto &place : obstacles) {
    place();
    GiveTo("anna", kBobsDirectory);
    const Sent sent = PrintAs("bob");
    EXPECT_EQ((Strings{kNoDirectory, std::string("foreign <") + kBobsDirectory + "> <anna>"}),
              sent.told);
    EXPECT_FALSE(sent.lp_ran);
    EXPECT_FALSE(fs::exists(kBobsFile)) << "the settings of a job that was not sent";
    fs::remove(kBobsDirectory);
  }
}

TEST_F(StoredSettings, ALinkOfTheUsersOwnInThePlaceOfTheDirectoryStopsThePrint) {
  NEEDS_USERS();
  fs::create_directory_symlink("/tmp", kBobsDirectory);
  GiveTo("bob", kBobsDirectory);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kNoDirectory, std::string("in the way <") + kBobsDirectory + ">"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(StoredSettings, AnEmptyDirectoryWithAnotherModeIsMadeAnew) {
  NEEDS_USERS();
  AsBob([] {
    umask(0);
    if (mkdir(kBobsDirectory, 0777) != 0) _exit(1);
  });
  InstallLp(LpSays("lp1-7"));
  ShowPin();
  EXPECT_TRUE(PrintAs("bob").lp_ran);
  EXPECT_EQ(mode_t{02750}, ModeOf(kBobsDirectory));
  EXPECT_EQ(Strings{"lp1-7"}, BobsCopies());
}

TEST_F(StoredSettings, ADirectoryThatOthersMayWriteIsNotUsed) {
  NEEDS_USERS();
  AsBob([] {
    umask(0);
    if (mkdir(kBobsDirectory, 0777) != 0) _exit(1);
  });
  std::ofstream(BobsCopy("lp1-7")).close();
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kNoDirectory, std::string("in the way <") + kBobsDirectory + ">"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(StoredSettings, WithoutACopyAJobWithTheQueuesOwnSettingsIsPrinted) {
  NEEDS_USERS();
  std::ofstream(kBobsDirectory).close();
  GiveTo("anna", kBobsDirectory);
  const Sent sent = PrintAs("bob");
  EXPECT_TRUE(sent.lp_ran);
  EXPECT_EQ(Strings{}, sent.told);
  EXPECT_EQ(std::string("write <") + kBobsDirectory + ">\n", sent.errors);
}

// Two print tools of one user.

TEST_F(StoredSettings, ASecondPrintStoresNothingBeforeTheFirstHasItsCopy) {
  NEEDS_USERS();
  const std::string gate = directory_.Path("gate");
  const std::string started = directory_.Path("started");
  for (const std::string &pipe : {gate, started}) {
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0666));
    ASSERT_EQ(0, chmod(pipe.c_str(), 0666));
  }
  // The first lp holds until the test lets it go on, and then looks at what the option file says.
  InstallLp("mkdir " + directory_.Path("first") + " 2>/dev/null || { " + LpSays("lp1-2") +
            "; exit; }\necho >" + started + "; read line <" + gate + "; cat " + kBobsFile + " >" +
            directory_.Path("seen") + "; " + LpSays("lp1-1"));
  ShowPin();
  std::thread first(
      [] { EXPECT_EQ(0, RunAsUser("bob", [] { PrintFiles("lp1", nullptr); }).status); });
  std::string line;
  std::getline(std::ifstream(started), line);
  std::atomic<bool> second_ended = false;
  std::thread second([&] {
    EXPECT_EQ(0, RunAsUser("bob", [&] {
                   Show("*DeliveryPIN", "1357");
                   PrintFiles("lp1", nullptr);
                 }).status);
    second_ended = true;
  });
  const auto waits = [] { return ContentOf("/proc/locks").find("-> FLOCK") != std::string::npos; };
  while (!second_ended && !waits()) poll(nullptr, 0, 10);
  std::ofstream(gate) << "go\n";
  first.join();
  second.join();
  EXPECT_EQ(std::string(kPin) + "*NrCopies=1\n", ContentOf(directory_.Path("seen")));
  EXPECT_EQ((Strings{"lp1-1", "lp1-2"}), BobsCopies());
}

// What nobody needs any more.

TEST_F(StoredSettings, CopiesOfJobsThatHaveEndedAreRemoved) {
  NEEDS_USERS();
  MakeBobsDirectory();
  for (const char *name : {"lp1-1", "lp1-2", "other-3", "unsent.abcdef", "notes"}) {
    std::ofstream(BobsCopy(name)).close();
    GiveTo("bob", BobsCopy(name));
  }
  InstallLpstat("echo 'lp1-2   bob   1024   Sat 21 Nov 2026'");
  AsBob(TidyUsersFiles);
  EXPECT_EQ((Strings{"lp1-2", "notes"}), BobsCopies());
}

TEST_F(StoredSettings, CopiesStayWhenTheSpoolerDoesNotTellItsJobs) {
  NEEDS_USERS();
  MakeBobsDirectory();
  std::ofstream(BobsCopy("lp1-1")).close();
  for (const char *doubt : {"exit 1", "echo 'no scheduler'", "exec tail -f /dev/null"}) {
    InstallLpstat(doubt);
    AsBob(TidyUsersFiles);
    EXPECT_EQ(Strings{"lp1-1"}, BobsCopies()) << doubt;
  }
}

TEST_F(StoredSettings, AfterAPrintTheCopiesOfEndedJobsAreRemoved) {
  NEEDS_USERS();
  MakeBobsDirectory();
  std::ofstream(BobsCopy("lp1-1")).close();
  InstallLp(LpSays("lp1-7"));
  InstallLpstat("echo 'lp1-7   bob   1024   Sat 21 Nov 2026'");
  PrintAs("bob");
  EXPECT_EQ(Strings{"lp1-7"}, BobsCopies());
}

TEST_F(StoredSettings, UnfinishedOptionFilesOfKilledProgramsAreRemoved) {
  NEEDS_USERS();
  const std::string users = std::string(kUsersDir) + "/";
  for (const char *name : {"bob:lp1.def", "bob:lp1.aB3xYz.def", "bob:lp1.toolong.def",
                           "bobby:lp1.aB3xYz.def", "anna:lp1.aB3xYz.def"}) {
    std::ofstream(users + name).close();
    GiveTo("bob", users + name);
  }
  std::ofstream(users + "bob:lp2.aB3xYz.def").close();
  GiveTo("anna", users + "bob:lp2.aB3xYz.def");
  AsBob(TidyUsersFiles);
  EXPECT_EQ((Strings{"anna:lp1.aB3xYz.def", "bob", "bob:lp1.def", "bob:lp1.toolong.def",
                     "bob:lp2.aB3xYz.def", "bobby:lp1.aB3xYz.def"}),
            NamesIn(kUsersDir));
}

TEST_F(StoredSettings, NothingIsRemovedWhileAnotherPrintToolOfTheUsersIsAtWork) {
  NEEDS_USERS();
  MakeBobsDirectory();
  const std::string leftover = std::string(kUsersDir) + "/bob:lp1.aB3xYz.def";
  std::ofstream(leftover).close();
  GiveTo("bob", leftover);
  std::ofstream(BobsCopy("unsent.abcdef")).close();
  {
    const WaitingDirectory directory = WaitingDirectory::Of("bob");
    ASSERT_TRUE(directory.Lock(true));
    AsBob(TidyUsersFiles);
    EXPECT_EQ(Strings{"unsent.abcdef"}, BobsCopies());
    EXPECT_TRUE(fs::exists(leftover));
  }
  AsBob(TidyUsersFiles);
  EXPECT_EQ(Strings{}, BobsCopies());
  EXPECT_FALSE(fs::exists(leftover));
}

TEST_F(StoredSettings, TidyingMakesNothingWhereNothingIsLeft) {
  NEEDS_USERS();
  AsBob(TidyUsersFiles);
  EXPECT_EQ(Strings{}, NamesIn(kUsersDir));
}

TEST_F(StoredSettings, DeletingAQueueRemovesItsJobsCopiesOfAllUsers) {
  NEEDS_USERS();
  const std::string users = std::string(kUsersDir) + "/";
  const TemporaryDirectory elsewhere;
  elsewhere.Write("lp1-1", "");
  for (const char *user : {"anna", "bob"}) {
    fs::create_directory(users + user);
    GiveTo(user, users + user);
    for (const char *name : {"lp1-1", "lp1-2-1", "xlp1-1"}) {
      std::ofstream(users + user + "/" + name).close();
    }
  }
  fs::create_directory_symlink(elsewhere.Path(), users + "root");
  RemoveJobCopiesOfQueue("lp1");
  EXPECT_EQ((Strings{"lp1-2-1", "xlp1-1"}), NamesIn(users + "anna"));
  EXPECT_EQ((Strings{"lp1-2-1", "xlp1-1"}), BobsCopies());
  EXPECT_TRUE(fs::exists(elsewhere.Path("lp1-1")));
}
