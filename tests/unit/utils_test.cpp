// User names and directory services.
#include "utils.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <set>

#include "coresupport.h"
#include "debug.h"
#include "temporarydirectory.h"

namespace {

using Strings = std::vector<std::string>;

std::string OwnName() { return getpwuid(geteuid())->pw_name; }

std::set<std::string> NamesIn(const std::string &path) {
  const Owned<CList> names = GetFilesFromDir(path.c_str());
  std::set<std::string> set;
  for (const std::string &name : Texts(names.get())) set.insert(name);
  return set;
}

}  // namespace

TEST(GetUserName, OfNullIsTheEffectiveUsersName) { EXPECT_EQ(GetUserName(nullptr), OwnName()); }

TEST(GetUserName, ChecksThatANamedUserExists) {
  EXPECT_STREQ(GetUserName("root"), "root");
  EXPECT_EQ(GetUserName("nosuchuser"), nullptr);
}

TEST(GetHomeDir, ComesFromTheUserDatabase) {
  EXPECT_STREQ(GetHomeDir("root"), getpwnam("root")->pw_dir);
  EXPECT_EQ(GetHomeDir(nullptr), std::string(getpwuid(geteuid())->pw_dir));
  EXPECT_EQ(GetHomeDir("nosuchuser"), nullptr);
}

TEST(BuildUserDefFileName, JoinsUserAndQueue) {
  std::string name;
  EXPECT_EQ(BuildUserDefFileName(nullptr, "lp1", &name), 1);
  EXPECT_EQ(name, OwnName() + ":lp1");
  EXPECT_EQ(BuildUserDefFileName("root", "lp1", &name), 1);
  EXPECT_EQ(name, "root:lp1");
}

TEST(BuildUserDefFileName, FailsForAnUnknownUserAndMissingArguments) {
  std::string name = "untouched";
  EXPECT_EQ(BuildUserDefFileName("nosuchuser", "lp1", &name), 0);
  EXPECT_EQ(BuildUserDefFileName(nullptr, nullptr, &name), 0);
  EXPECT_EQ(BuildUserDefFileName(nullptr, "lp1", nullptr), 0);
  EXPECT_EQ(name, "untouched");
}

TEST(GetFilesFromDir, OfAnEmptyDirectoryIsAnEmptyListNotNull) {
  const TemporaryDirectory directory;
  const Owned<CList> names = GetFilesFromDir(directory.Path().c_str());
  ASSERT_NE(names, nullptr);
  EXPECT_EQ(fIsEmpty_CList_Function(names.get()), 1);
}

TEST(GetFilesFromDir, NamesFilesAndSubdirectories) {
  const TemporaryDirectory directory;
  directory.Write("a", "");
  directory.Write(".hidden", "");
  std::filesystem::create_directory(directory.Path("sub"));
  EXPECT_EQ(NamesIn(directory.Path()), (std::set<std::string>{".hidden", "a", "sub"}));
}

TEST(GetFilesFromDir, IsNullForNullAndForWhatIsNoReadableDirectory) {
  const TemporaryDirectory directory;
  EXPECT_EQ(GetFilesFromDir(nullptr), nullptr);
  EXPECT_EQ(GetFilesFromDir(directory.Path("none").c_str()), nullptr);
  EXPECT_EQ(GetFilesFromDir(directory.Write("file", "").c_str()), nullptr);
}

TEST(DeleteFilesFromDir, RemovesTheNamedFilesThatContainThePattern) {
  const TemporaryDirectory directory;
  for (const char *name : {"anna:lp1.def", "bob:lp1", "anna:lp2.def"}) directory.Write(name, "");
  std::filesystem::create_directory(directory.Path("x:lp1"));
  const Owned<CList> names = GetFilesFromDir(directory.Path().c_str());
  EXPECT_EQ(DeleteFilesFromDir(directory.Path().c_str(), names.get(), ":lp1"), 1);
  EXPECT_EQ(NamesIn(directory.Path()), (std::set<std::string>{"anna:lp2.def", "x:lp1"}));
  EXPECT_EQ(Texts(names.get()).size(), 4U);
}

TEST(DeleteFilesFromDir, WithoutPatternRemovesEveryNamedFile) {
  const TemporaryDirectory directory;
  for (const char *name : {"a", "b", "c"}) directory.Write(name, "");
  const Owned<CList> names = ListOf({"a", "c"});
  EXPECT_EQ(DeleteFilesFromDir(directory.Path().c_str(), names.get(), nullptr), 1);
  EXPECT_EQ(NamesIn(directory.Path()), (std::set<std::string>{"b"}));
}

TEST(DeleteFilesFromDir, IgnoresANameThatNoLongerExists) {
  const TemporaryDirectory directory;
  directory.Write("b", "");
  const Owned<CList> names = ListOf({"gone", "b"});
  EXPECT_EQ(DeleteFilesFromDir(directory.Path().c_str(), names.get(), nullptr), 1);
  EXPECT_TRUE(NamesIn(directory.Path()).empty());
}

TEST(DeleteFilesFromDir, LogsWhatCannotBeRemoved) {
  const TemporaryDirectory directory;
  const std::string path = directory.Path(std::string(NAME_MAX + 1, 'x'));
  const Owned<CList> names = ListOf({"gone", path.substr(path.rfind('/') + 1)});
  G_DebugLevel = 1;
  testing::internal::CaptureStderr();
  EXPECT_EQ(DeleteFilesFromDir(directory.Path().c_str(), names.get(), nullptr), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            path + " cannot be removed: " + std::strerror(ENAMETOOLONG) + "\n");
  G_DebugLevel = 0;
}

TEST(DeleteFilesFromDir, ALinkToADirectoryStaysAndOneToAFileOrNothingGoes) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory(directory.Path("sub"));
  directory.Write("target", "");
  std::filesystem::create_directory_symlink(directory.Path("sub"), directory.Path("to_directory"));
  std::filesystem::create_symlink(directory.Path("target"), directory.Path("to_file"));
  std::filesystem::create_symlink(directory.Path("none"), directory.Path("to_nothing"));
  const Owned<CList> names = ListOf({"to_directory", "to_file", "to_nothing"});
  EXPECT_EQ(DeleteFilesFromDir(directory.Path().c_str(), names.get(), nullptr), 1);
  EXPECT_EQ(NamesIn(directory.Path()), (std::set<std::string>{"sub", "target", "to_directory"}));
}

TEST(DeleteFilesFromDir, FailsForMissingArguments) {
  const Owned<CList> names = CreateList();
  EXPECT_EQ(DeleteFilesFromDir(nullptr, names.get(), nullptr), 0);
  EXPECT_EQ(DeleteFilesFromDir("/tmp", nullptr, nullptr), 0);
}

TEST(DeleteFilesEndingIn, TestsTheEndOfTheNameOnly) {
  const TemporaryDirectory directory;
  for (const char *name : {"a.def", ".def", "a.def.old", "a.defx", "def"})
    directory.Write(name, "");
  EXPECT_EQ(DeleteFilesEndingIn(directory.Path().c_str(), ".def"), 1);
  EXPECT_EQ(NamesIn(directory.Path()), (std::set<std::string>{"a.def.old", "a.defx", "def"}));
}

TEST(DeleteFilesEndingIn, FailsForMissingArgumentsAndDirectories) {
  EXPECT_EQ(DeleteFilesEndingIn(nullptr, ".def"), 0);
  EXPECT_EQ(DeleteFilesEndingIn("/tmp", nullptr), 0);
  EXPECT_EQ(DeleteFilesEndingIn("/nonexistent", ".def"), 0);
}

TEST(DeleteFilesEndingIn, LogsADirectoryThatCannotBeRead) {
  G_DebugLevel = 1;
  testing::internal::CaptureStderr();
  EXPECT_EQ(DeleteFilesEndingIn("/nonexistent", ".def"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string("/nonexistent cannot be read: ") + std::strerror(ENOENT) + "\n");
  G_DebugLevel = 0;
}
