// What the print tool does about settings that it cannot store for a job.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cselection.h"
#include "globals.h"
#include "must.h"
#include "paths.h"
#include "printcommand.h"
#include "privateworld.h"
#include "queuesupport.h"
#include "temporarydirectory.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

constexpr char kBobsFile[] = "/opt/orlan/data/users/bob:lp1.def";
constexpr char kPin[] = "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=2468\n";

// What became of a print.
struct Sent {
  Strings told;        // the list of errors
  std::string errors;  // standard error
  bool lp_ran = false;
};

class PrintSettings : public testing::Test {
 protected:
  PrintSettings() {
    RequirePrivateWorld();
    fs::permissions(directory_.Path(), fs::perms(0777));
    RemoveUsersFiles();
    std::ofstream(kLp) << "#!/bin/sh\n: >" << directory_.Path("lp-ran") << "\n";
    fs::permissions(kLp, fs::perms(0755));
    for (CHash *queues : {window_.get(), original_.get()}) {
      Must(HashPut(queues, "lp1", MakeQueue()));
    }
    G_Queues_hash = window_.get();
    G_OrgQueues_hash = original_.get();
    G_FilesList = CreateList();
    Must(fAddTail_CList_Function(G_FilesList.get(), CreateSelection("/etc/motd", 0)));
  }
  ~PrintSettings() override {
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
    G_FilesList.reset();
    RemoveUsersFiles();
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

const std::string kLost = std::string("lost <lp1> <") + kBobsFile + ">";
const std::string kAnnas = std::string("foreign <") + kBobsFile + "> <anna>";

}  // namespace

TEST_F(PrintSettings, NothingIsSentWithoutThePinWhenSomebodyElsesFileIsInTheWay) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kLost, kAnnas}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(PrintSettings, ADirectoryAFifoAndALinkOfSomebodyElseAreNamedToo) {
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

TEST_F(PrintSettings, ADirectoryOfTheUsersOwnIsToBeRemoved) {
  NEEDS_USERS();
  fs::create_directory(kBobsFile);
  GiveTo("bob", kBobsFile);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ((Strings{kLost, std::string("in the way <") + kBobsFile + ">"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(PrintSettings, WhatTheUserMayReplaceIsReplaced) {
  NEEDS_USERS();
  fs::create_symlink("/etc/motd", kBobsFile);
  GiveTo("bob", kBobsFile);
  ShowPin();
  const Sent sent = PrintAs("bob");
  EXPECT_EQ(Strings{}, sent.told);
  EXPECT_TRUE(sent.lp_ran);
  EXPECT_EQ(std::string(kPin) + "*NrCopies=1\n", ContentOf(kBobsFile));
}

TEST_F(PrintSettings, AFullDiskStopsThePrintWithTheSystemsWords) {
  NEEDS_USERS();
  const SmallDisk disk(kUsersDir, 4096);
  fs::permissions(kUsersDir, fs::perms(01777));
  std::ofstream(std::string(kUsersDir) + "/filler") << std::string(4096, 'x');
  ShowPin();
  const Sent sent = PrintAs("bob");
  ASSERT_EQ(2U, sent.told.size()) << sent.errors;
  EXPECT_EQ(kLost, sent.told[0]);
  EXPECT_EQ("reason <No space left on device>", sent.told[1]);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(PrintSettings, ADirectoryThatCannotBeWrittenStopsThePrint) {
  NEEDS_USERS();
  fs::permissions(kUsersDir, fs::perms(0755));
  ShowPin();
  const Sent sent = PrintAs("bob");
  fs::permissions(kUsersDir, fs::perms(03777));
  EXPECT_EQ((Strings{kLost, "reason <Permission denied>"}), sent.told);
  EXPECT_FALSE(sent.lp_ran);
}

TEST_F(PrintSettings, AJobWithTheQueuesOwnSettingsIsPrintedAndTheFileToldOnStandardError) {
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

TEST_F(PrintSettings, TheNumberOfCopiesAloneStopsNothing) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  QueueHas("*NrCopies", "1");
  Show("*NrCopies", "7");
  EXPECT_TRUE(PrintAs("bob").lp_ran);
}

TEST_F(PrintSettings, AnOlderFileOfTheUsersCountsAsWhatTheFilterTakes) {
  NEEDS_USERS();
  std::ofstream(kBobsFile) << kPin;
  GiveTo("bob", kBobsFile);
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

TEST_F(PrintSettings, ASettingThatTheWindowDroppedStopsThePrintToo) {
  NEEDS_USERS();
  std::ofstream(kBobsFile).close();
  GiveTo("anna", kBobsFile);
  QueueHas("*Nup", "2");
  EXPECT_FALSE(PrintAs("bob").lp_ran);
}
