// Writing whole files: full disks, links, modes; reading files that a stranger may have put there.
#include "textfile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "privateworld.h"
#include "temporarydirectory.h"

namespace fs = std::filesystem;

namespace {

constexpr FileAccess kPrivate{.mode = 0600};
const std::string kTooMuch(20000, 'x');

TEST(OverwriteFile, MakesAFileOfExactlyTheGivenMode) {
  const TemporaryDirectory directory;
  const mode_t before = umask(0077);
  EXPECT_TRUE(OverwriteFile(directory.Path("list"), "text", 0644));
  umask(before);
  EXPECT_EQ(ContentOf(directory.Path("list")), "text");
  EXPECT_EQ(ModeOf(directory.Path("list")), 0644u);
}

TEST(OverwriteFile, EmptiesAnOlderFileAndKeepsItsMode) {
  const TemporaryDirectory directory;
  directory.Write("list", "older and longer");
  fs::permissions(directory.Path("list"), fs::perms(0600));
  EXPECT_TRUE(OverwriteFile(directory.Path("list"), "text", 0644));
  EXPECT_EQ(ContentOf(directory.Path("list")), "text");
  EXPECT_EQ(ModeOf(directory.Path("list")), 0600u);
}

TEST(OverwriteFile, AFullDiskIsAFailure) {
  errno = 0;
  EXPECT_FALSE(OverwriteFile("/dev/full", "text", 0644));
  EXPECT_EQ(errno, ENOSPC);
}

TEST(OverwriteFile, AMissingDirectoryIsAFailure) {
  EXPECT_FALSE(OverwriteFile("/nowhere/list", "text", 0644));
  EXPECT_EQ(errno, ENOENT);
}

// A script in a directory of its own, and what is appended to it.
class AppendDurably : public testing::Test {
 protected:
  bool Append(const std::string &text) {
    return ::AppendDurably(directory_.Path("script"), text, directory_.Path("script.new"));
  }
  std::string Script() const { return ContentOf(directory_.Path("script")); }

  const TemporaryDirectory directory_;
};

TEST_F(AppendDurably, LeavesWhatWasThereItsOwnerAndItsMode) {
  directory_.Write("script", std::string("one\n\0", 5));
  fs::permissions(directory_.Path("script"), fs::perms(0750));
  if (HasOrdinaryUsers()) {
    ASSERT_EQ(chown(directory_.Path("script").c_str(), 7, 8), 0);
  }
  EXPECT_TRUE(Append("two\n"));
  EXPECT_EQ(Script(), std::string("one\n\0two\n", 9));
  EXPECT_EQ(ModeOf(directory_.Path("script")), 0750u);
  struct stat status = {};
  stat(directory_.Path("script").c_str(), &status);
  if (HasOrdinaryUsers()) {
    EXPECT_EQ(status.st_uid * 10 + status.st_gid, 78u);
  }
  EXPECT_EQ(NamesIn(directory_.Path()), std::vector<std::string>{"script"});
}

TEST_F(AppendDurably, WhoHasTheOldScriptOpenNeverSeesHalfOfTheNewOne) {
  directory_.Write("script", "one\n");
  fs::create_hard_link(directory_.Path("script"), directory_.Path("opened"));
  EXPECT_TRUE(Append("two\n"));
  EXPECT_EQ(ContentOf(directory_.Path("opened")), "one\n");
}

TEST_F(AppendDurably, MakesAScriptThatIsMissing) {
  EXPECT_TRUE(Append("two\n"));
  EXPECT_EQ(Script(), "two\n");
}

TEST_F(AppendDurably, NeverWritesThroughASymbolicLink) {
  directory_.Write("victim", "safe");
  fs::create_symlink("victim", directory_.Path("script"));
  EXPECT_FALSE(Append("two\n"));
  fs::remove(directory_.Path("script"));
  directory_.Write("script", "one\n");
  fs::create_symlink("victim", directory_.Path("script.new"));
  EXPECT_TRUE(Append("two\n"));
  EXPECT_EQ(ContentOf(directory_.Path("victim")), "safe");
}

TEST_F(AppendDurably, ANamedPipeIsRefused) {
  ASSERT_EQ(mkfifo(directory_.Path("script").c_str(), 0600), 0);
  EXPECT_FALSE(Append("two\n"));
}

TEST_F(AppendDurably, ATextThatDoesNotFitLeavesTheScriptAndNothingBeside) {
  const SmallDisk disk(directory_.Path(), 8192);
  directory_.Write("script", "one\n");
  EXPECT_FALSE(Append(kTooMuch));
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(Script(), "one\n");
  EXPECT_EQ(NamesIn(directory_.Path()), std::vector<std::string>{"script"});
}

TEST(WriteNewFile, ReplacesALinkAndGivesTheMode) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_symlink("victim", directory.Path("new"));
  struct stat like = {};
  ASSERT_EQ(stat(directory.Write("like", "").c_str(), &like), 0);
  like.st_mode = S_IFREG | 0755;
  EXPECT_EQ(WriteNewFile(directory.Path("new"), "text", like), NewFile::Written);
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
  EXPECT_EQ(ContentOf(directory.Path("new")), "text");
  EXPECT_EQ(ModeOf(directory.Path("new")), 0755u);
}

TEST(WriteNewFile, TellsAFileThatCannotBeMadeFromOneThatCannotBeFilled) {
  const TemporaryDirectory directory;
  const SmallDisk disk(directory.Path(), 8192);
  fs::create_directory(directory.Path("taken"));
  struct stat like = {};
  ASSERT_EQ(stat(directory.Path().c_str(), &like), 0);
  EXPECT_EQ(WriteNewFile(directory.Path("taken"), "text", like), NewFile::NotMade);
  EXPECT_EQ(WriteNewFile(directory.Path("new"), kTooMuch, like), NewFile::NotWritten);
}

// Several files of one directory.
class ReplaceFiles : public testing::Test {
 protected:
  // Files of those names, each holding its own name.
  std::vector<FileContent> Files(const std::vector<std::string> &names) const {
    std::vector<FileContent> files;
    for (const std::string &name : names) files.push_back({directory_.Path(name), name, kPrivate});
    return files;
  }
  ino_t Inode(const std::string &name) const {
    struct stat status = {};
    stat(directory_.Path(name).c_str(), &status);
    return status.st_ino;
  }

  const TemporaryDirectory directory_;
};

TEST_F(ReplaceFiles, WritesEachOfMany) {
  std::vector<std::string> names;
  for (int i = 100; i < 300; ++i) names.push_back(std::to_string(i) + ".def");
  EXPECT_TRUE(ReplaceFilesDurably(Files(names)).empty());
  EXPECT_EQ(NamesIn(directory_.Path()), names);
  for (const std::string &name : names) EXPECT_EQ(ContentOf(directory_.Path(name)), name);
}

TEST_F(ReplaceFiles, LeavesAloneWhatIsAsItShouldBe) {
  ASSERT_TRUE(ReplaceFilesDurably(Files({"a", "b", "c"})).empty());
  directory_.Write("b", "other");
  fs::permissions(directory_.Path("c"), fs::perms(0644));
  const ino_t a = Inode("a");
  EXPECT_TRUE(ReplaceFilesDurably(Files({"a", "b", "c"})).empty());
  EXPECT_EQ(Inode("a"), a);
  EXPECT_EQ(ContentOf(directory_.Path("b")), "b");
  EXPECT_EQ(ModeOf(directory_.Path("c")), 0600u);
}

TEST_F(ReplaceFiles, NamesThoseThatCannotBeWrittenAndWritesTheOthers) {
  fs::create_directory(directory_.Path("b"));
  EXPECT_EQ(ReplaceFilesDurably(Files({"a", "b", "c"})),
            std::vector<std::string>{directory_.Path("b")});
  EXPECT_EQ(NamesIn(directory_.Path()), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(ReplaceFile, WritesTheTextAndLeavesNothingBeside) {
  const TemporaryDirectory directory;
  directory.Write("file", "older");
  EXPECT_TRUE(ReplaceFile(directory.Path("file"), "text", {.mode = 0640}));
  EXPECT_EQ(ContentOf(directory.Path("file")), "text");
  EXPECT_EQ(ModeOf(directory.Path("file")), 0640u);
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"file"});
}

TEST(ReplaceFile, ReplacesALinkInsteadOfFollowingIt) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_symlink("victim", directory.Path("file"));
  EXPECT_TRUE(ReplaceFile(directory.Path("file"), "text", kPrivate));
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(directory.Path("file"))));
}

TEST(ReplaceFile, AHardLinkKeepsTheOldText) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_hard_link(directory.Path("victim"), directory.Path("file"));
  EXPECT_TRUE(ReplaceFile(directory.Path("file"), "text", kPrivate));
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
}

TEST(ReplaceFile, AFullDiskLeavesTheOldFileAndNothingBeside) {
  const TemporaryDirectory directory;
  const SmallDisk disk(directory.Path(), 8192);
  directory.Write("file", "older");
  EXPECT_FALSE(ReplaceFile(directory.Path("file"), kTooMuch, kPrivate));
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(ContentOf(directory.Path("file")), "older");
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"file"});
}

TEST(ReplaceFile, ADirectoryInTheFilesPlaceIsAFailureThatLeavesNothingBeside) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.Path("file"));
  EXPECT_FALSE(ReplaceFile(directory.Path("file"), "text", kPrivate));
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"file"});
}

TEST(ReplaceFile, GivesTheFileToTheGroup) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root a file cannot be given to another group";
  const TemporaryDirectory directory;
  EXPECT_TRUE(ReplaceFile(directory.Path("file"), "text", {.mode = 0640, .group = "lp"}));
  EXPECT_EQ(GroupOf(directory.Path("file")), "lp");
  EXPECT_EQ(ModeOf(directory.Path("file")), 0640u);
}

TEST(ReplaceFile, AGroupThatIsNotThereGivesTheOtherMode) {
  const TemporaryDirectory directory;
  EXPECT_TRUE(ReplaceFile(directory.Path("file"), "text",
                          {.mode = 0640, .group = "nosuchgroup", .mode_without_group = 0644}));
  EXPECT_EQ(ModeOf(directory.Path("file")), 0644u);
}

TEST(ReplaceFileDurably, GivesTheAccessAskedForAndLeavesNothingBeside) {
  const TemporaryDirectory directory;
  directory.Write("file.paf", "older");
  EXPECT_TRUE(ReplaceFileDurably(directory.Path("file.paf"), "text", kPrivate));
  EXPECT_EQ(ContentOf(directory.Path("file.paf")), "text");
  EXPECT_EQ(ModeOf(directory.Path("file.paf")), kPrivate.mode);
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"file.paf"});
}

TEST(ReplaceFileDurably, AFullDiskLeavesTheOldFileAndNothingBeside) {
  const TemporaryDirectory directory;
  const SmallDisk disk(directory.Path(), 8192);
  directory.Write("file.paf", "older");
  EXPECT_FALSE(ReplaceFileDurably(directory.Path("file.paf"), kTooMuch, kPrivate));
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(ContentOf(directory.Path("file.paf")), "older");
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"file.paf"});
}

TEST(ReadOwnFile, ReadsTheUsersOwnFile) {
  const TemporaryDirectory directory;
  EXPECT_EQ(ReadOwnFile(directory.Write("file", "text")), "text");
  EXPECT_EQ(ReadOwnFile(directory.Path("missing")), std::nullopt);
}

TEST(ReadOwnFile, ReadsNoLinkNoDirectoryAndNoPipe) {
  const TemporaryDirectory directory;
  directory.Write("file", "text");
  fs::create_symlink("file", directory.Path("link"));
  EXPECT_EQ(ReadOwnFile(directory.Path("link")), std::nullopt);
  EXPECT_EQ(ReadOwnFile(directory.Path()), std::nullopt);
  ASSERT_EQ(mkfifo(directory.Path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(ReadOwnFile(directory.Path("pipe")), std::nullopt);
}

TEST(ReadOwnFile, ReadsTheSuperusersFileButNotAnotherUsers) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root";
  const TemporaryDirectory directory;
  fs::permissions(directory.Path(), fs::perms(0755));
  fs::permissions(directory.Write("roots", "text"), fs::perms(0644));
  fs::permissions(directory.Write("bobs", "text"), fs::perms(0644));
  ASSERT_EQ(chown(directory.Path("bobs").c_str(), getpwnam("bob")->pw_uid, 0), 0);
  const ChildResult result = RunAsUser("anna", [&] {
    if (!ReadOwnFile(directory.Path("roots"))) _exit(1);
    if (ReadOwnFile(directory.Path("bobs"))) _exit(2);
  });
  EXPECT_EQ(result.status, 0);
}

}  // namespace
