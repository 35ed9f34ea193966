// Writing whole files: full disks, links, modes; reading files that a stranger may have put there.
#include "textfile.h"

#include <gtest/gtest.h>

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

TEST(AppendToFile, LeavesWhatWasThere) {
  const TemporaryDirectory directory;
  directory.Write("script", "one\n");
  EXPECT_TRUE(AppendToFile(directory.Path("script"), "two\n"));
  EXPECT_EQ(ContentOf(directory.Path("script")), "one\ntwo\n");
}

TEST(AppendToFile, NeverWritesThroughASymbolicLink) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_symlink("victim", directory.Path("script"));
  EXPECT_FALSE(AppendToFile(directory.Path("script"), "two\n"));
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
}

TEST(AppendToFile, ATextThatDoesNotFitIsTakenBack) {
  const TemporaryDirectory directory;
  const SmallDisk disk(directory.Path(), 8192);
  directory.Write("script", "one\n");
  EXPECT_FALSE(AppendToFile(directory.Path("script"), kTooMuch));
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(ContentOf(directory.Path("script")), "one\n");
}

TEST(WriteNewFile, ReplacesALinkAndGivesTheMode) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_symlink("victim", directory.Path("new"));
  EXPECT_EQ(WriteNewFile(directory.Path("new"), "text", 0755), NewFile::Written);
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
  EXPECT_EQ(ContentOf(directory.Path("new")), "text");
  EXPECT_EQ(ModeOf(directory.Path("new")), 0755u);
}

TEST(WriteNewFile, TellsAFileThatCannotBeMadeFromOneThatCannotBeFilled) {
  const TemporaryDirectory directory;
  const SmallDisk disk(directory.Path(), 8192);
  fs::create_directory(directory.Path("taken"));
  EXPECT_EQ(WriteNewFile(directory.Path("taken"), "text", 0755), NewFile::NotMade);
  EXPECT_EQ(WriteNewFile(directory.Path("new"), kTooMuch, 0755), NewFile::NotWritten);
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
