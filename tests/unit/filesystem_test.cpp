// File-system helpers and their error messages.
#include "filesystem.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <random>

#include "childprocess.h"
#include "coresupport.h"
#include "temporarydirectory.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kMessages[] =
    "#ERR_REMOVE\nremove %s\n#ERR_MKDIR\nmkdir %s\n#ERR_GETPWNAM\nno user\n"
    "#ERR_CHOWN\nchown %d %d %s\n#ERR_UNABLE_TO_WRITE_FILE\nwrite %s\n"
    "#ERR_UNABLE_TO_READ_FILE\nread %s\n";

struct stat StatusOf(const std::string &path) {
  struct stat status = {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status;
}

class FileSystem : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override {
    // Every message is printed, a line each, and collected.
    std::string lines;
    for (const std::string &message : Texts(errors_.get())) lines += message + "\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), lines);
  }
  Strings Errors() const { return Texts(errors_.get()); }
  std::string Path(const std::string &name) const { return directory_.Path(name); }

  const TemporaryDirectory directory_;
  const ProgramMessages messages_{kMessages};
  const Owned<CList> errors_ = CreateList();
};

}  // namespace

TEST_F(FileSystem, CreateDirMakesADirectoryForItsOwnerOnly) {
  EXPECT_EQ(G_CreateDir(Path("new").c_str(), nullptr, errors_.get()), 1);
  EXPECT_EQ(StatusOf(Path("new")).st_mode & 07777, 0700U);
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(FileSystem, CreateDirChangesNeitherModeNorOwnerOfAnExistingDirectory) {
  ASSERT_EQ(mkdir(Path("old").c_str(), 0755), 0);
  ASSERT_EQ(chmod(Path("old").c_str(), 0751), 0);
  const uid_t owner = StatusOf(Path("old")).st_uid;
  EXPECT_EQ(G_CreateDir(Path("old").c_str(), "daemon", errors_.get()), 1);
  EXPECT_EQ(StatusOf(Path("old")).st_mode & 07777, 0751U);
  EXPECT_EQ(StatusOf(Path("old")).st_uid, owner);
}

TEST_F(FileSystem, CreateDirGivesTheDirectoryToItsOwnerOrSaysThatItCannot) {
  const passwd daemon = *getpwnam("daemon");
  const int result = G_CreateDir(Path("owned").c_str(), "daemon", errors_.get());
  if (geteuid() == 0) {
    EXPECT_EQ(result, 1);
    EXPECT_EQ(StatusOf(Path("owned")).st_uid, daemon.pw_uid);
    EXPECT_EQ(StatusOf(Path("owned")).st_gid, daemon.pw_gid);
  } else {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(Errors(), Strings{"chown " + std::to_string(daemon.pw_uid) + " " +
                                std::to_string(daemon.pw_gid) + " " + Path("owned")});
  }
}

TEST_F(FileSystem, CreateDirReportsAnUnknownOwner) {
  EXPECT_EQ(G_CreateDir(Path("new").c_str(), "nosuchuser", errors_.get()), 0);
  EXPECT_EQ(Errors(), Strings{"no user"});
}

TEST_F(FileSystem, CreateDirReportsADirectoryThatCannotBeMade) {
  const std::string path = Path("none/new");
  EXPECT_EQ(G_CreateDir(path.c_str(), nullptr, errors_.get()), 0);
  EXPECT_EQ(Errors(), Strings{"mkdir " + path});
  EXPECT_EQ(G_CreateDir(nullptr, nullptr, errors_.get()), 0);
}

TEST_F(FileSystem, DeleteDirRemovesTheDirectoryWithItsFiles) {
  std::filesystem::create_directory(Path("d"));
  directory_.Write("d/a", "");
  directory_.Write("d/.b", "");
  EXPECT_EQ(G_DeleteDir(Path("d").c_str(), errors_.get()), 1);
  EXPECT_FALSE(std::filesystem::exists(Path("d")));
}

TEST_F(FileSystem, DeleteDirReportsADirectoryThatStays) {
  std::filesystem::create_directories(Path("d/sub"));
  directory_.Write("d/a", "");
  EXPECT_EQ(G_DeleteDir(Path("d").c_str(), errors_.get()), 0);
  EXPECT_FALSE(std::filesystem::exists(Path("d/a")));
  EXPECT_EQ(G_DeleteDir(Path("none").c_str(), errors_.get()), 0);
  EXPECT_EQ(G_DeleteDir(nullptr, errors_.get()), 0);
  EXPECT_EQ(Errors(), (Strings{"remove " + Path("d"), "remove " + Path("none")}));
}

TEST_F(FileSystem, CopyFileCopiesEveryByte) {
  std::mt19937 random(11);
  std::string content(10'000, '\0');
  for (char &byte : content) byte = static_cast<char>(random());
  for (const std::string &text :
       {content, std::string(), std::string("no line feed"), std::string(5000, 'x') + "\n"}) {
    const std::string source = directory_.Write("source", text);
    directory_.Write("destination", "longer than nothing");
    EXPECT_EQ(G_CopyFile(source.c_str(), Path("destination").c_str(), errors_.get()), 1);
    EXPECT_EQ(ContentOf(Path("destination")), text);
  }
}

TEST_F(FileSystem, CopyFileOfAMissingSourceLeavesAnEmptyDestination) {
  directory_.Write("destination", "old");
  EXPECT_EQ(G_CopyFile(Path("none").c_str(), Path("destination").c_str(), errors_.get()), 0);
  EXPECT_TRUE(std::filesystem::exists(Path("destination")));
  EXPECT_EQ(ContentOf(Path("destination")), "");
  EXPECT_EQ(Errors(), Strings{"read " + Path("none")});
}

TEST_F(FileSystem, CopyFileReportsADestinationThatCannotBeOpened) {
  const std::string source = directory_.Write("source", "x");
  EXPECT_EQ(G_CopyFile(source.c_str(), Path("none/destination").c_str(), errors_.get()), 0);
  EXPECT_EQ(Errors(), Strings{"write " + Path("none/destination")});
  EXPECT_EQ(G_CopyFile(nullptr, source.c_str(), errors_.get()), 0);
  EXPECT_EQ(G_CopyFile(source.c_str(), nullptr, errors_.get()), 0);
  EXPECT_EQ(ContentOf(source), "x");
}

TEST_F(FileSystem, CopyFileReportsAFullDisk) {
  const std::string source = directory_.Write("source", "x");
  EXPECT_EQ(G_CopyFile(source.c_str(), "/dev/full", errors_.get()), 0);
  EXPECT_EQ(Errors(), Strings{"write /dev/full"});
}

TEST_F(FileSystem, CopyFileReportsASourceThatCannotBeRead) {
  EXPECT_EQ(G_CopyFile(directory_.Path().c_str(), Path("destination").c_str(), errors_.get()), 0);
  EXPECT_EQ(Errors(), Strings{"read " + directory_.Path()});
}

TEST(IsExecutable, NeedsReadAndExecutePermission) {
  EXPECT_EQ(G_IsExecutable("/bin/sh"), 1);
  EXPECT_EQ(G_IsExecutable("/etc/passwd"), 0);
  EXPECT_EQ(G_IsExecutable("/nonexistent"), 0);
  EXPECT_EQ(G_IsExecutable(nullptr), 0);
}

namespace {

class ProgramPath : public testing::Test {
 protected:
  void SetUp() override {
    before_ = std::getenv("PATH");
    for (const char *name : {"a", "b"}) std::filesystem::create_directory(directory_.Path(name));
  }
  void TearDown() override { setenv("PATH", before_.c_str(), 1); }
  void MakeProgram(const std::string &name) const {
    chmod(directory_.Write(name, "#!/bin/sh\n").c_str(), 0755);
  }
  void SetPath(const std::string &path) const { setenv("PATH", path.c_str(), 1); }

  const TemporaryDirectory directory_;
  std::string result_ = "before";

 private:
  std::string before_;
};

}  // namespace

TEST_F(ProgramPath, IsTheFirstDirectoryThatHasTheProgram) {
  MakeProgram("a/prog");
  MakeProgram("b/prog");
  SetPath("/nonexistent:" + directory_.Path("b") + ":" + directory_.Path("a"));
  EXPECT_EQ(G_GetValidProgramPath("prog", &result_), 1);
  EXPECT_EQ(result_, directory_.Path("b/prog"));
}

TEST_F(ProgramPath, PassesOverAFileThatIsNotExecutable) {
  directory_.Write("a/prog", "");
  MakeProgram("b/prog");
  SetPath(directory_.Path("a") + ":" + directory_.Path("b"));
  EXPECT_EQ(G_GetValidProgramPath("prog", &result_), 1);
  EXPECT_EQ(result_, directory_.Path("b/prog"));
}

TEST_F(ProgramPath, AnEmptyElementStandsForTheRoot) {
  SetPath("");
  EXPECT_EQ(G_GetValidProgramPath("bin/sh", &result_), 1);
  EXPECT_EQ(result_, "/bin/sh");
  SetPath("/nonexistent:");
  EXPECT_EQ(G_GetValidProgramPath("bin/sh", &result_), 1);
}

TEST_F(ProgramPath, IsEmptyWhenThereIsNone) {
  SetPath(directory_.Path("a"));
  EXPECT_EQ(G_GetValidProgramPath("prog", &result_), 0);
  EXPECT_EQ(result_, "");
  unsetenv("PATH");
  result_ = "before";
  EXPECT_EQ(G_GetValidProgramPath("sh", &result_), 0);
  EXPECT_EQ(result_, "");
  EXPECT_EQ(G_GetValidProgramPath(nullptr, &result_), 0);
  EXPECT_EQ(G_GetValidProgramPath("sh", nullptr), 0);
}

TEST(EliminateSpacesAndTabs, Mode0TrimsTheFrontAndMode1TheBack) {
  std::string result;
  EXPECT_EQ(G_EliminateSpacesAndTabs("  a b\t", &result, 0), 1);
  EXPECT_EQ(result, "a b\t");
  EXPECT_EQ(G_EliminateSpacesAndTabs("  a b\t", &result, 1), 1);
  EXPECT_EQ(result, "  a b");
}

TEST(EliminateSpacesAndTabs, OtherModesLeaveTheResultUntouched) {
  std::string result = "before";
  EXPECT_EQ(G_EliminateSpacesAndTabs(" x ", &result, 2), 1);
  EXPECT_EQ(G_EliminateSpacesAndTabs(" x ", &result, -1), 1);
  EXPECT_EQ(result, "before");
}

TEST(EliminateSpacesAndTabs, NothingButBlanksLeavesNothing) {
  for (const char *text : {"", " ", " \t \t"}) {
    std::string result = "before";
    EXPECT_EQ(G_EliminateSpacesAndTabs(text, &result, 0), 1);
    EXPECT_EQ(result, "");
    result = "before";
    EXPECT_EQ(G_EliminateSpacesAndTabs(text, &result, 1), 1);
    EXPECT_EQ(result, "");
  }
}

TEST(EliminateSpacesAndTabs, OtherWhiteSpaceStays) {
  std::string result;
  EXPECT_EQ(G_EliminateSpacesAndTabs("\n x", &result, 0), 1);
  EXPECT_EQ(result, "\n x");
}

TEST(EliminateSpacesAndTabs, TheSourceMayBeTheResult) {
  std::string text = "  both  ";
  EXPECT_EQ(G_EliminateSpacesAndTabs(text.c_str(), &text, 0), 1);
  EXPECT_EQ(G_EliminateSpacesAndTabs(text.c_str(), &text, 1), 1);
  EXPECT_EQ(text, "both");
}

TEST(EliminateSpacesAndTabs, FailsForNull) {
  std::string result = "before";
  EXPECT_EQ(G_EliminateSpacesAndTabs(nullptr, &result, 0), 0);
  EXPECT_EQ(G_EliminateSpacesAndTabs("x", nullptr, 0), 0);
  EXPECT_EQ(result, "before");
}
