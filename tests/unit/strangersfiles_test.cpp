// What a save removes of the users' directory.
#include "strangersfiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "debug.h"
#include "paths.h"
#include "privateworld.h"
#include "temporarydirectory.h"
#include "waitingdirectory.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

class StrangersFiles : public testing::Test {
 protected:
  StrangersFiles() {
    RequirePrivateWorld();
    RemoveAll();
  }
  ~StrangersFiles() override { RemoveAll(); }

  void SetUp() override {
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root";
  }

  static void RemoveAll() {
    for (const std::string &name : NamesIn(kUsersDir)) fs::remove_all(PathOf(name));
  }
  static std::string PathOf(const std::string &name) { return std::string(kUsersDir) + "/" + name; }

  static void GiveTo(const std::string &user, const std::string &name) {
    const passwd *entry = getpwnam(user.c_str());
    const uid_t id = entry == nullptr ? 60'123 : entry->pw_uid;  // a user that nobody knows
    ASSERT_EQ(0, lchown(PathOf(name).c_str(), id, static_cast<gid_t>(-1)));
  }
  static void PutFile(const std::string &name, const std::string &user) {
    std::ofstream(PathOf(name)) << "*Nup=2\n";
    GiveTo(user, name);
  }
  static void PutDirectory(const std::string &name, const std::string &user) {
    fs::create_directory(PathOf(name));
    GiveTo(user, name);
  }
  static void PutLink(const std::string &name, const std::string &target, const std::string &user) {
    fs::create_symlink(target, PathOf(name));
    GiveTo(user, name);
  }

  static Strings Left() {
    RemoveStrangersFiles();
    return NamesIn(kUsersDir);
  }
};

}  // namespace

TEST_F(StrangersFiles, FilesOfTheUserTheyAreNamedAfterAndOfTheSuperuserStay) {
  PutFile("anna:lp1.def", "anna");
  PutFile("bob:lp1.def", "root");
  EXPECT_EQ((Strings{"anna:lp1.def", "bob:lp1.def"}), Left());
}

TEST_F(StrangersFiles, FilesInAnotherUsersPlaceGo) {
  PutFile("bob:lp1.def", "anna");
  PutFile("root:lp1.def", "anna");
  PutFile("bob:lp2.def", "nobody-knows");
  EXPECT_EQ(Strings{}, Left());
}

TEST_F(StrangersFiles, WhatIsNoFileGoesWhoeverItBelongsTo) {
  const TemporaryDirectory elsewhere;
  elsewhere.Write("kept", "");
  PutLink("bob:lp1.def", elsewhere.Path("kept"), "bob");
  PutLink("bob:lp2.def", elsewhere.Path(), "anna");
  ASSERT_EQ(0, mkfifo(PathOf("bob:lp3.def").c_str(), 0600));
  PutDirectory("bob:lp4.def", "anna");
  fs::create_directories(PathOf("bob:lp4.def/deep/down"));
  std::ofstream(PathOf("bob:lp4.def/deep/down/file")).close();
  fs::create_directory_symlink(elsewhere.Path(), PathOf("bob:lp4.def/deep/link"));
  EXPECT_EQ(Strings{}, Left());
  EXPECT_EQ(Strings{"kept"}, NamesIn(elsewhere.Path()));
}

TEST_F(StrangersFiles, FilesOfUsersWhoAreGoneStayAndThoseOfKnownOnesUnderNamesOfNobodyGo) {
  PutFile("carol:lp1.def", "nobody-knows");
  PutFile("dave:lp1.def", "root");
  PutFile("erin:lp1.def", "anna");
  EXPECT_EQ((Strings{"carol:lp1.def", "dave:lp1.def"}), Left());
}

TEST_F(StrangersFiles, AnotherUsersThingInThePlaceOfADirectoryGoes) {
  PutDirectory("bob", "anna");
  std::ofstream(PathOf("bob/lp1-7")).close();
  EXPECT_EQ(Strings{}, Left());
  PutFile("bob", "anna");
  EXPECT_EQ(Strings{}, Left());
  PutLink("bob", "/tmp", "anna");
  EXPECT_EQ(Strings{}, Left());
}

TEST_F(StrangersFiles, DirectoriesOfTheirUsersOfTheSuperuserAndOfNobodyStay) {
  PutDirectory("bob", "bob");
  std::ofstream(PathOf("bob/lp1-7")).close();
  PutDirectory("anna", "root");
  PutDirectory("carol", "nobody-knows");
  PutDirectory("notes", "anna");
  EXPECT_EQ((Strings{"anna", "bob", "carol", "notes"}), Left());
  EXPECT_EQ(Strings{"lp1-7"}, NamesIn(PathOf("bob")));
}

TEST_F(StrangersFiles, OtherNamesStay) {
  PutFile("README", "anna");
  PutFile("bob:lp1.txt", "anna");
  EXPECT_EQ((Strings{"README", "bob:lp1.txt"}), Left());
}

TEST_F(StrangersFiles, WhatKilledPrintToolsLeftGoes) {
  PutFile("bob:lp1.aB3xYz.def", "bob");
  PutFile("bob:lp1.def", "bob");
  PutDirectory("bob", "bob");
  std::ofstream(PathOf("bob/unsent.aB3xYz")).close();
  std::ofstream(PathOf("bob/lp1-7")).close();
  EXPECT_EQ((Strings{"bob", "bob:lp1.def"}), Left());
  EXPECT_EQ(Strings{"lp1-7"}, NamesIn(PathOf("bob")));
}

TEST_F(StrangersFiles, WhatAPrintToolIsJustWritingStays) {
  PutFile("bob:lp1.aB3xYz.def", "bob");
  PutDirectory("bob", "bob");
  std::ofstream(PathOf("bob/unsent.aB3xYz")).close();
  const WaitingDirectory at_work = WaitingDirectory::Of("bob");
  ASSERT_TRUE(at_work.Lock(true));
  EXPECT_EQ((Strings{"bob", "bob:lp1.aB3xYz.def"}), Left());
  EXPECT_EQ(Strings{"unsent.aB3xYz"}, NamesIn(PathOf("bob")));
}

TEST_F(StrangersFiles, TheLogTellsEachAndWhy) {
  PutFile("bob:lp1.def", "anna");
  PutFile("bob:lp\x1B[2J.def", "anna");
  const ChildResult result = RunInChild([] {
    unsetenv("KPXDEBUG");
    G_DebugLevel = 1;
    RemoveStrangersFiles();
  });
  Strings lines = SplitLines(result.errors);
  std::sort(lines.begin(), lines.end());
  EXPECT_EQ((Strings{"Removed " + PathOf("bob:lp1.def") + ": it belongs to another user",
                     "Removed " + PathOf("bob:lp?[2J.def") + ": it belongs to another user"}),
            lines);
}
