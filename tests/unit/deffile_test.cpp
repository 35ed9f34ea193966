// The option files of queues and users.
#include "deffile.h"

#include <gtest/gtest.h>

#include "ignoreresult.h"
#include "must.h"
#include "privateworld.h"
#include "queuesupport.h"
#include "temporarydirectory.h"
#include "textencoding.h"

namespace fs = std::filesystem;

namespace {

constexpr char kQueueFile[] = "/opt/orlan/data/lp1.def";
constexpr char kUsersDirectory[] = "/opt/orlan/data/users";
constexpr char kRootsFile[] = "/opt/orlan/data/users/root:lp1.def";
constexpr char kAnnasFile[] = "/opt/orlan/data/users/anna:lp1.def";

class DefFile : public testing::Test {
 protected:
  DefFile() : messages_(kQueueMessages) {
    RequirePrivateWorld();
    RemoveFiles();
  }
  ~DefFile() override { RemoveFiles(); }

  static void RemoveFiles() {
    fs::remove(kQueueFile);
    for (const std::string &name : NamesIn(kUsersDirectory)) {
      fs::remove_all(std::string(kUsersDirectory) + "/" + name);
    }
  }

  // fWriteDefFile_Function with what it printed.
  static std::pair<int, std::string> Write(const CPrintQueue *queue, int which) {
    testing::internal::CaptureStderr();
    const int result = fWriteDefFile_Function(queue, which);
    return {result, testing::internal::GetCapturedStderr()};
  }

  // The calling user's file holds `content`; what reading it makes of `options`.
  static std::string Overlay(const std::string &content, CPrintQueue *queue) {
    std::ofstream(kRootsFile, std::ios::binary) << content;
    EXPECT_EQ(fFillFromDefFile_Function(queue), 1);
    return UserDefFileText(queue);
  }

 private:
  ProgramMessages messages_;
};

const std::pair<int, std::string> kWritten{1, ""};

// Texts.

TEST(DefFileText, TheUsersFileHoldsTheOptionsAlone) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  EXPECT_EQ(UserDefFileText(queue.get()), "*Duplex=DuplexNoTumble\n*PageSize=A4\n");
}

TEST(DefFileText, TheQueuesFileHoldsOptionsInstallableFeaturesPapersAndMedias) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  EXPECT_EQ(QueueDefFileText(queue.get()),
            "*Duplex=DuplexNoTumble\n"
            "*PageSize=A4\n"
            "*OptionHCF=True\n"
            "*CustomPaperSize=Ticket''210''400\n"
            "*CustomMediaType=Gloss::Glossy paper\n");
}

TEST(DefFileText, ACustomWidthOf209Point6IsWrittenAs210) {
  const Owned<CPrintQueue> queue = MakeQueue();
  PutPaper(queue.get(), "P", 209.6, 100);
  EXPECT_EQ(QueueDefFileText(queue.get()), "*CustomPaperSize=P''210''100\n");
}

TEST(DefFileText, AMissingTableIsLeftOut) {
  const Owned<CPrintQueue> queue = CreatePrintQueue();
  EXPECT_EQ(QueueDefFileText(queue.get()), "");
}

TEST(DefFileText, ALineFeedInAValueStartsNoLineOfItsOwn) {
  const Owned<CPrintQueue> queue = MakeQueue();
  Must(HashPutText(queue->Options.get(), "*JobName", "one\n*PIN=0000"));
  EXPECT_EQ(UserDefFileText(queue.get()), "*JobName=one *PIN=0000\n");
}

// Writing.

TEST_F(DefFile, TheAdministratorsFileIsTheQueues) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  EXPECT_EQ(Write(queue.get(), 1), kWritten);
  EXPECT_EQ(ContentOf(kQueueFile), QueueDefFileText(queue.get()));
  EXPECT_EQ(NamesIn(kUsersDirectory), std::vector<std::string>{});
}

TEST_F(DefFile, TheUsersFileNeverHoldsCustomPapersOrMedias) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  EXPECT_EQ(Write(queue.get(), 0), kWritten);
  EXPECT_EQ(ContentOf(kRootsFile), "*Duplex=DuplexNoTumble\n*PageSize=A4\n");
  EXPECT_FALSE(fs::exists(kQueueFile));
}

TEST_F(DefFile, AnOlderFileIsReplaced) {
  std::ofstream(kQueueFile) << "*Older=Value\n*More=Lines\n";
  const Owned<CPrintQueue> queue = MakeQueue();
  Must(HashPutText(queue->Options.get(), "*Nup", "2"));
  EXPECT_EQ(Write(queue.get(), 1), kWritten);
  EXPECT_EQ(ContentOf(kQueueFile), "*Nup=2\n");
}

TEST_F(DefFile, TheQueuesFileIsReadByTheSuperuserAndTheSpoolerAlone) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the file has no other group";
  EXPECT_EQ(Write(MakeFullQueue().get(), 1), kWritten);
  EXPECT_EQ(ModeOf(kQueueFile), 0640u);
  EXPECT_EQ(GroupOf(kQueueFile), "lp");
}

TEST_F(DefFile, AUsersFileIsReadByThatUserAndTheSpoolerAlone) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root";
  const Owned<CPrintQueue> queue = MakeFullQueue();
  const ChildResult result =
      RunAsUser("anna", [&] { _exit(fWriteDefFile_Function(queue.get(), 0) == 1 ? 0 : 1); });
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(ModeOf(kAnnasFile), 0640u);
  EXPECT_EQ(GroupOf(kAnnasFile), "lp");
  struct stat status = {};
  ASSERT_EQ(stat(kAnnasFile, &status), 0);
  EXPECT_EQ(status.st_uid, getpwnam("anna")->pw_uid);
}

TEST_F(DefFile, AStrangersLinkInTheUsersPlaceIsNeverWrittenThrough) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root";
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::permissions(directory.Path(), fs::perms(0755));
  ASSERT_EQ(chown(directory.Path("victim").c_str(), getpwnam("anna")->pw_uid, 0), 0);
  fs::create_symlink(directory.Path("victim"), kAnnasFile);
  ASSERT_EQ(lchown(kAnnasFile, getpwnam("bob")->pw_uid, 0), 0);
  const Owned<CPrintQueue> queue = MakeFullQueue();
  const ChildResult result =
      RunAsUser("anna", [&] { _exit(fWriteDefFile_Function(queue.get(), 0)); });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, std::string("write <") + kAnnasFile + ">\n");
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
  EXPECT_EQ(NamesIn(kUsersDirectory), std::vector<std::string>{"anna:lp1.def"});
}

TEST_F(DefFile, TheUsersOwnLinkIsReplacedByAFile) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_symlink(directory.Path("victim"), kRootsFile);
  EXPECT_EQ(Write(MakeFullQueue().get(), 0), kWritten);
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(kRootsFile)));
}

TEST_F(DefFile, WritingWithoutADefFileNameIsReportedAndFails) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  queue->DefFile.reset();
  const std::pair<int, std::string> reported{0, "unexpected2 <CPrintQueue>\n"};
  EXPECT_EQ(Write(queue.get(), 1), reported);
  EXPECT_EQ(Write(queue.get(), 0), reported);
}

TEST_F(DefFile, AFileThatCannotBeMadeIsReported) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  queue->DefFile = Text("no such directory/lp1.def");
  EXPECT_EQ(Write(queue.get(), 1), (std::pair<int, std::string>{
                                       0, "write </opt/orlan/data/no such directory/lp1.def>\n"}));
}

TEST_F(DefFile, AFullDiskIsReportedAndNeverPassesAsSuccess) {
  const Owned<CPrintQueue> queue = MakeQueue();
  for (int i = 0; i < 20; ++i) {
    Must(HashPutText(queue->Options.get(), ("*Key" + std::to_string(i)).c_str(),
                     std::string(900, 'x').c_str()));
  }
  const SmallDisk disk("/opt/orlan/data", 8192);
  EXPECT_EQ(Write(queue.get(), 1),
            (std::pair<int, std::string>{0, "write </opt/orlan/data/lp1.def>\n"}));
  EXPECT_EQ(NamesIn("/opt/orlan/data"), std::vector<std::string>{});
}

// Reading.

TEST_F(DefFile, AUserWithoutAFileHasNoSettings) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  testing::internal::CaptureStderr();
  EXPECT_EQ(fFillFromDefFile_Function(queue.get()), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(UserDefFileText(queue.get()), "*Duplex=DuplexNoTumble\n*PageSize=A4\n");
}

TEST_F(DefFile, TheUsersSettingsLieOverTheQueues) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  EXPECT_EQ(Overlay("## comment\n\n*PageSize=A3\n*New=Value\n", queue.get()),
            "*Duplex=DuplexNoTumble\n*New=Value\n*PageSize=A3\n");
}

TEST_F(DefFile, NupPutsOutBookletAndBookletNup) {
  const Owned<CPrintQueue> queue = MakeQueue();
  Must(HashPutText(queue->Options.get(), "*Booklet", "On"));
  EXPECT_EQ(Overlay("*Nup=2\n", queue.get()), "*Nup=2\n");
  EXPECT_EQ(Overlay("*Booklet=On\n", queue.get()), "*Booklet=On\n");
}

TEST_F(DefFile, TheLaterOfNupAndBookletWins) {
  EXPECT_EQ(Overlay("*Nup=2\n*Booklet=On\n", MakeQueue().get()), "*Booklet=On\n");
  EXPECT_EQ(Overlay("*Booklet=On\n*Nup=2\n", MakeQueue().get()), "*Nup=2\n");
}

TEST_F(DefFile, AValueEndsAtTheSecondEqualsSign) {
  EXPECT_EQ(Overlay("*Key=a=b\n", MakeQueue().get()), "*Key=a\n");
}

TEST_F(DefFile, LinesThatAreNoPairAreSkipped) {
  EXPECT_EQ(Overlay("word\n=value\n*Empty=\n*Last=x", MakeQueue().get()), "*Empty=\n*Last=x\n");
}

TEST_F(DefFile, AnyBytesAreRead) {
  const std::string odd = std::string("*Nul=a\0b\n", 9) +
                          "*Latin=\xE4\n*Cr=x\r\n*Long=" + std::string(3000, 'y') + "\n";
  const Owned<CPrintQueue> queue = MakeQueue();
  Overlay(odd, queue.get());
  EXPECT_STREQ(HashText(queue->Options.get(), "*Nul"), "a");
  EXPECT_STREQ(HashText(queue->Options.get(), "*Latin"), "\xC3\xA4");
  EXPECT_STREQ(HashText(queue->Options.get(), "*Cr"), "x\r");
  EXPECT_EQ(std::string(HashText(queue->Options.get(), "*Long")), std::string(kMaxLine - 6, 'y'));
}

// Latin letters of an older file need twice the room.
TEST_F(DefFile, ANameWithoutRoomForItsValueIsNotWritten) {
  const std::string name(700, '\xE4');
  EXPECT_EQ(Overlay("*Kept=a\n*" + name + "=b\n", MakeQueue().get()), "*Kept=a\n");
}

TEST_F(DefFile, AFileThatAStrangerPutThereIsNotRead) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root";
  std::ofstream(kAnnasFile) << "*PageSize=A3\n";
  fs::permissions(kAnnasFile, fs::perms(0644));
  const auto read_by_anna = [] {
    const Owned<CPrintQueue> queue = MakeFullQueue();
    return RunAsUser("anna", [&] {
      G_DebugLevel = 1;
      _exit(fFillFromDefFile_Function(queue.get()));
    });
  };
  const ChildResult own = read_by_anna();
  EXPECT_EQ(own.status, 1) << "the superuser's file";
  EXPECT_EQ(own.errors, "");
  ASSERT_EQ(chown(kAnnasFile, getpwnam("bob")->pw_uid, 0), 0);
  const ChildResult strange = read_by_anna();
  EXPECT_EQ(strange.status, 0) << "bob's file";
  EXPECT_EQ(strange.errors, std::string(kAnnasFile) + " is there and cannot be used\n");
}

TEST_F(DefFile, ReadingWithoutADefFileNameEndsTheProcessWithStatus5) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  queue->DefFile.reset();
  const ChildResult result =
      RunInChild([&] { IgnoreResult(fFillFromDefFile_Function(queue.get()), "ends the process"); });
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.errors, "unexpected2 <CPrintQueue>\n");
}

TEST_F(DefFile, WhatIsWrittenForAUserIsReadBack) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  Must(HashPutText(queue->Options.get(), "*Nup", "4"));
  ASSERT_EQ(Write(queue.get(), 0), kWritten);
  const Owned<CPrintQueue> other = MakeQueue();
  EXPECT_EQ(fFillFromDefFile_Function(other.get()), 1);
  EXPECT_EQ(UserDefFileText(other.get()), UserDefFileText(queue.get()));
}

TEST_F(DefFile, AUserWhoIsNotInTheUserDatabaseHasNoFile) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "another user cannot be taken on without root";
  const Owned<CPrintQueue> queue = MakeFullQueue();
  const ChildResult result = RunInChild([&] {
    constexpr uid_t kNobodyKnows = 54321;
    if (setuid(kNobodyKnows) != 0) _exit(125);
    _exit(fWriteDefFile_Function(queue.get(), 0) + fFillFromDefFile_Function(queue.get()));
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
}

}  // namespace
