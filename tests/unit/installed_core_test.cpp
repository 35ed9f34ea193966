// What the core does at the installation's fixed places.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "command.h"
#include "coresupport.h"
#include "cselection.h"
#include "debug.h"
#include "filesystem.h"
#include "fontmap.h"
#include "must.h"
#include "paths.h"
#include "printcommand.h"
#include "privateworld.h"
#include "queuesupport.h"
#include "stdindata.h"
#include "temporarydirectory.h"
#include "utils.h"

namespace {

using Strings = std::vector<std::string>;

void WriteFile(const std::string &path, const std::string &content) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

// Puts a stand-in in the place of lp that stores its arguments, one a line, and ends with `status`.
void InstallLp(const TemporaryDirectory &directory, int status) {
  std::filesystem::remove(kLp);
  WriteFile(kLp, "#!/bin/sh\nprintf '%s\\n' \"$@\" >>" + directory.Path("arguments") + "\nexit " +
                     std::to_string(status) + "\n");
  ASSERT_EQ(chmod(kLp, 0755), 0);
}

class InstalledCore : public testing::Test {
 protected:
  static void SetUpTestSuite() { RequirePrivateWorld(); }
};

class Printing : public InstalledCore {
 protected:
  void SetUp() override {
    for (const std::string &name : NamesIn(kUsersDir)) {
      std::filesystem::remove_all(std::string(kUsersDir) + "/" + name);
    }
    G_FilesList = CreateList();
    for (const char *path : {"/etc/passwd", "/etc/group"}) {
      Must(fAddTail_CList_Function(G_FilesList.get(), CreateSelection(path, 0)));
    }
    Must(HashPut(queues_.get(), "lp1", MakeFullQueue()));
    G_Queues_hash = queues_.get();
  }
  void TearDown() override {
    G_Queues_hash = nullptr;
    G_FilesList.reset();
    G_StdinFileName.clear();
  }
  CHash *Options() const {
    return fGet_Options_Function(HashValue<CPrintQueue>(queues_.get(), "lp1"));
  }
  Strings Arguments() const { return SplitLines(ContentOf(directory_.Path("arguments"))); }
  // The user's option file of the queue.
  static std::string OptionFile() { return std::string(kUsersDir) + "/root:lp1.def"; }

  const TemporaryDirectory directory_;
  const ProgramMessages messages_{kQueueMessages};
  const Owned<CHash> queues_ = CreateHash();
  const Owned<CList> errors_ = CreateList();
};

}  // namespace

TEST_F(InstalledCore, DeletingAQueuesUserFilesSparesQueuesWhoseNameOnlyEndsAlike) {
  const std::string users = kUsersDir;
  for (const char *name : {"anna:lp1.def", "bob:lp1.def", ":lp1.def", "anna:xlp1.def",
                           "anna:lp1.def.old", "anna:lp1.defx", "lp1.def"}) {
    WriteFile(users + "/" + name, "");
  }
  std::filesystem::create_directory(users + "/sub:lp1.def");
  EXPECT_EQ(G_DeleteAllUsersDefForQueue("lp1"), 1);
  EXPECT_EQ(NamesIn(users), (Strings{"anna:lp1.def.old", "anna:lp1.defx", "anna:xlp1.def",
                                     "lp1.def", "sub:lp1.def"}));
  EXPECT_EQ(G_DeleteAllUsersDefForQueue(nullptr), 0);
  EXPECT_EQ(G_DeleteAllUsersDefForQueue("no such queue"), 1);
  std::filesystem::remove_all(users + "/sub:lp1.def");
}

TEST_F(InstalledCore, AUsersOptionFileIsNamedAfterTheUserThatRunsTheProgram) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the sandbox has no ordinary users";
  const ChildResult result = RunAsUser("anna", [] {
    std::string name;
    if (BuildUserDefFileName(nullptr, "lp1", &name) != 1 || name != "anna:lp1") _exit(1);
  });
  EXPECT_EQ(result.status, 0);
}

TEST_F(InstalledCore, TheInstalledFontMapGivesTheStandardFonts) {
  G_Fonts_hash = ParseFontmap();
  ASSERT_NE(G_Fonts_hash, nullptr);
  size_t fonts = 0;
  for (const auto [font, styles] : Pairs<CHash>(G_Fonts_hash.get())) fonts += Keys(styles).size();
  EXPECT_EQ(fonts, 35U);
  std::string font;
  std::string style;
  EXPECT_EQ(GetGuiFont("Courier", &font, &style), 1);
  EXPECT_STREQ(GetAfmFontName(font.c_str(), style.c_str()), "Courier");
  G_Fonts_hash.reset();
}

TEST_F(InstalledCore, AMissingFontMapIsReportedAndGivesNoTable) {
  const ProgramMessages messages(kQueueMessages);
  std::filesystem::rename(kFontmapFile, std::string(kFontmapFile) + ".away");
  testing::internal::CaptureStderr();
  EXPECT_EQ(ParseFontmap(), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string("read <") + kFontmapFile + ">\n");
  std::filesystem::rename(std::string(kFontmapFile) + ".away", kFontmapFile);
}

TEST_F(Printing, RunsLpOnceForAllFilesAndAddsTheCopies) {
  InstallLp(directory_, 0);
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(Arguments(), (Strings{"-d", "lp1", "-o", "*NrCopies=1", "/etc/passwd", "/etc/group"}));
  EXPECT_STREQ(HashText(Options(), "*NrCopies"), "1");
  EXPECT_EQ(Texts(errors_.get()), Strings{});
  EXPECT_EQ(CommandRecords().back().command,
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" /etc/passwd /etc/group");
}

TEST_F(Printing, WritesTheUsersOptionsWithTheCopiesFirst) {
  InstallLp(directory_, 0);
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(ContentOf(OptionFile()), "*Duplex=DuplexNoTumble\n*NrCopies=1\n*PageSize=A4\n");
}

TEST_F(Printing, UsesTheCopiesOfTheQueue) {
  InstallLp(directory_, 0);
  Must(HashPutText(Options(), "*NrCopies", "3"));
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(Arguments()[3], "*NrCopies=3");
}

TEST_F(Printing, LetsLpCopyTheFilesWhenCapturedInputIsAmongThem) {
  InstallLp(directory_, 0);
  G_StdinFileName = "/etc/group";
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(Arguments(),
            (Strings{"-c", "-d", "lp1", "-o", "*NrCopies=1", "/etc/passwd", "/etc/group"}));
}

TEST_F(Printing, AFailedLpIsReportedWithItsNameAndTheQueue) {
  InstallLp(directory_, 7);
  testing::internal::CaptureStderr();
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "command <lp> <lp1>\n");
  EXPECT_EQ(Texts(errors_.get()), Strings{"command <lp> <lp1>"});
  EXPECT_EQ(CommandRecords().back().status, 7);
}

TEST_F(Printing, AFailedLpIsToldWithTheFilesThatCannotBeRead) {
  InstallLp(directory_, 1);
  const std::string missing = directory_.Path("My report.ps");
  Must(fAddTail_CList_Function(G_FilesList.get(), CreateSelection(missing.c_str(), 0)));
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(Texts(errors_.get()), (Strings{"command <lp> <lp1>", "read <" + missing + ">"}));
}

TEST_F(Printing, AMissingLpIsReportedToo) {
  std::filesystem::remove(kLp);
  PrintFiles("lp1", errors_.get());
  EXPECT_EQ(Texts(errors_.get()), Strings{"command <lp> <lp1>"});
}

TEST_F(Printing, TheStepsAreLoggedInOrder) {
  InstallLp(directory_, 0);
  const ChildResult result = RunInChild([&] {
    unsetenv("KPXDEBUG");
    G_DebugLevel = 2;
    PrintFiles("lp1", errors_.get());
  });
  EXPECT_EQ(SplitLines(result.errors),
            (Strings{"The NRCOPIES feature was not founded in the features_hash. Put it with "
                     "default 1",
                     "Write the features_hash in the .def file", "The entire lpr_cmd is:",
                     "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" /etc/passwd /etc/group"}));
}

TEST_F(Printing, ThousandsOfFilesReachLp) {
  InstallLp(directory_, 0);
  Must(fRemoveAll_CList_Function(G_FilesList.get()));
  for (int i = 0; i < 3000; ++i) {
    const std::string path = "/home/anna/file" + std::to_string(i);
    Must(fAddTail_CList_Function(G_FilesList.get(), CreateSelection(path.c_str(), 0)));
  }
  PrintFiles("lp1", errors_.get());
  const Strings arguments = Arguments();
  ASSERT_EQ(arguments.size(), 3004U);
  EXPECT_EQ(arguments.back(), "/home/anna/file2999");
}

TEST_F(InstalledCore, StandardInputIsKeptElsewhereWhereItsNameIsAnotherUsersFile) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the sandbox has no ordinary users";
  const ProgramMessages messages("#WARN_STDIN_NAME\ntaken <%s> <%s> <%s>\n");
  const TemporaryDirectory directory;
  const std::string report = directory.Write("report", "");
  const passwd *bob = getpwnam("bob");
  const uid_t user = bob->pw_uid;
  ASSERT_EQ(0, chown(report.c_str(), user, bob->pw_gid));
  std::filesystem::permissions(directory.Path(), std::filesystem::perms(0755));
  const ChildResult result = RunInChild([&] {
    const std::string own = StdinDataFileName(getpid());
    WriteFile(own, "anna's");
    if (chown(own.c_str(), getpwnam("anna")->pw_uid, 100) != 0) _exit(90);
    int ends[2];
    if (pipe(ends) != 0 || write(ends[1], "hi\n", 3) != 3 || dup2(ends[0], STDIN_FILENO) < 0) {
      _exit(91);
    }
    if (setgid(100) != 0 || setuid(user) != 0) _exit(92);
    std::string name;
    std::string error;
    if (GetStdinData(&name, &error) != 1) _exit(93);
    if (ContentOf(name) != "hi\n" || !name.starts_with(own + ".")) _exit(94);
    std::ofstream(report) << "taken <" << own << "> <anna> <" << name << ">\n";
    unlink(name.c_str());
    RemoveLeftCaptures();
    if (access(own.c_str(), F_OK) != 0) _exit(95);
  });
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_EQ(ContentOf(report), result.errors);
}
