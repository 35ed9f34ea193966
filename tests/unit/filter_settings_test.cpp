// Where a job's settings come from, and which layer wins.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "filterjob.h"
#include "optionfiles.h"
#include "temporarydirectory.h"

namespace {

std::string Joined(const std::vector<KeyValue> &settings) {
  std::string text;
  for (const KeyValue &setting : settings) text += setting.key + "=" + setting.value + ";";
  return text;
}

std::string ChoiceOf(const JobSettings &settings, const char *keyword) {
  const PpdChoice *choice = settings.Chosen(keyword);
  return choice == nullptr ? "(none)" : choice->keyword;
}

std::string OwnName() { return getpwuid(geteuid())->pw_name; }

TEST(OptionWords, OnlyWordsWithAnAsteriskCount) {
  EXPECT_EQ(Joined(ParseOptionWords("nobanner *NrCopies=2 media=A4  *Duplex=None -x")),
            "*NrCopies=2;*Duplex=None;");
}

TEST(OptionWords, AnEmptyArgumentSetsNothing) {
  EXPECT_EQ(Joined(ParseOptionWords("")), "");
  EXPECT_EQ(Joined(ParseOptionWords("   ")), "");
}

TEST(OptionWords, QuotesAndBackslashesKeepBlanksTogether) {
  EXPECT_EQ(Joined(ParseOptionWords("*JobName=My\\ job *UserName='Anna B' \"*A=x y\"")),
            "*JobName=My job;*UserName=Anna B;*A=x y;");
}

TEST(OptionWords, TheCommaOfTheShownPrintCommandIsNoPartOfTheValue) {
  EXPECT_EQ(Joined(ParseOptionWords("*NrCopies=2, *Duplex=None")), "*NrCopies=2;*Duplex=None;");
}

TEST(UserOptionFiles, LieBesideTheQueueFileUnderTheUsersName) {
  EXPECT_EQ(UserOptionFile("/opt/orlan/data/lp1.def", "anna"),
            "/opt/orlan/data/users/anna:lp1.def");
  EXPECT_EQ(UserOptionFile("/opt/orlan/data/lp1.def", "host!anna"),
            "/opt/orlan/data/users/anna:lp1.def");
}

TEST(UserOptionFiles, ANameThatLeadsElsewhereHasNone) {
  EXPECT_EQ(UserOptionFile("/data/lp1.def", "../x"), "");
  EXPECT_EQ(UserOptionFile("/data/lp1.def", ""), "");
  EXPECT_EQ(UserOptionFile("/data/", "anna"), "");
}

TEST(UserOptionFiles, OneThatIsNotThereSetsNothing) {
  const OptionFile file = ReadUserOptions("/nonexistent/x", "anna");
  EXPECT_TRUE(file.settings.empty());
  EXPECT_EQ(file.warning + file.error, "");
}

TEST(UserOptionFiles, CountWhenTheyBelongToTheUser) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("me:lp1.def", "*A=1\n");
  EXPECT_EQ(Joined(ReadUserOptions(path, OwnName()).settings), "*A=1;");
  EXPECT_EQ(Joined(ReadUserOptions(path, "host!" + OwnName()).settings), "*A=1;");
}

// Reads as the spooler does, which is not root.
OptionFile ReadUnprivileged(const std::string &path, const std::string &user) {
  const uid_t self = geteuid();
  EXPECT_EQ(seteuid(self == 0 ? getpwnam("nobody")->pw_uid : self), 0);
  OptionFile file = ReadUserOptions(path, user);
  EXPECT_EQ(seteuid(self), 0);
  return file;
}

void GiveTo(const char *user, const std::string &path) {
  if (geteuid() == 0) {
    ASSERT_EQ(lchown(path.c_str(), getpwnam(user)->pw_uid, 0), 0);
  }
}

TEST(UserOptionFiles, DoNotCountWhenTheyBelongToAnotherUser) {
  const TemporaryDirectory directory;
  ASSERT_EQ(chmod(directory.Path().c_str(), 0755), 0);
  for (const mode_t mode : {0644, 0000}) {
    const std::string path = directory.Write("x:lp1.def", "*A=1\n");
    GiveTo("daemon", path);
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    const OptionFile file = ReadUnprivileged(path, "bin");
    EXPECT_TRUE(file.settings.empty());
    EXPECT_EQ(file.warning, path + ": ignored: it belongs to another user");
    EXPECT_EQ(file.error, "");
  }
}

TEST(UserOptionFiles, ThatCannotBeOpenedAndAreNoFilesDoNotStopTheJob) {
  const TemporaryDirectory directory;
  ASSERT_EQ(chmod(directory.Path().c_str(), 0755), 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  directory.Path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
  close(socket);
  ASSERT_EQ(mkdir(directory.Path("directory").c_str(), 0000), 0);
  for (const char *name : {"socket", "directory"}) {
    const std::string path = directory.Path(name);
    GiveTo("daemon", path);
    const OptionFile file = ReadUnprivileged(path, "bin");
    EXPECT_EQ(file.warning, path + ": ignored: it is no regular file");
    EXPECT_EQ(file.error, "");
  }
}

TEST(UserOptionFiles, OnesOwnThatCannotBeReadIsAnError) {
  const TemporaryDirectory directory;
  ASSERT_EQ(chmod(directory.Path().c_str(), 0755), 0);
  const std::string path = directory.Write("me:lp1.def", "*A=1\n");
  GiveTo("nobody", path);
  ASSERT_EQ(chmod(path.c_str(), 0000), 0);
  const OptionFile file = ReadUnprivileged(path, geteuid() == 0 ? "nobody" : OwnName());
  EXPECT_EQ(file.error, path + ": Permission denied");
}

TEST(UserOptionFiles, AreNotReadThroughASymbolicLink) {
  const TemporaryDirectory directory;
  directory.Write("target", "*A=1\n");
  ASSERT_EQ(symlink("target", directory.Path("link").c_str()), 0);
  const OptionFile file = ReadUserOptions(directory.Path("link"), OwnName());
  EXPECT_TRUE(file.settings.empty());
  EXPECT_EQ(file.warning, directory.Path("link") + ": ignored: it is a symbolic link");
}

TEST(UserOptionFiles, ThatAreNoRegularFilesDoNotStopTheJob) {
  const TemporaryDirectory directory;
  ASSERT_EQ(mkfifo(directory.Path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(ReadUserOptions(directory.Path("fifo"), OwnName()).warning,
            directory.Path("fifo") + ": ignored: it is no regular file");
}

TEST(QueueOptionFiles, OneThatIsNotThereIsEmptyAndOneThatCannotBeReadAnError) {
  EXPECT_EQ(ReadQueueOptions("/nonexistent/lp1.def").error, "");
  EXPECT_EQ(ReadQueueOptions("/tmp").error, "/tmp: Is a directory");
}

class Settings : public testing::Test {
 protected:
  const PpdModel model_ = TestPpd("office.ppd");
  JobSettings settings_{model_};
};

TEST_F(Settings, BeginWithThePrintersDefaults) {
  EXPECT_EQ(ChoiceOf(settings_, "InputSlot"), "Upper");
  EXPECT_EQ(ChoiceOf(settings_, "Duplex"), "None");
  EXPECT_EQ(ChoiceOf(settings_, "Nothing"), "(none)");
  EXPECT_EQ(settings_.Copies(), 1);
}

TEST_F(Settings, EachLayerWinsOverTheOneBelow) {
  settings_.ApplyQueue({{"*InputSlot", "Lower"}, {"*Duplex", "DuplexTumble"}, {"*NrCopies", "2"}});
  settings_.Apply({{"*Duplex", "DuplexNoTumble"}});
  settings_.Apply({{"*NrCopies", "3"}});
  EXPECT_EQ(ChoiceOf(settings_, "InputSlot"), "Lower");
  EXPECT_EQ(ChoiceOf(settings_, "Duplex"), "DuplexNoTumble");
  EXPECT_EQ(settings_.Copies(), 3);
}

TEST_F(Settings, AValueThatThePrinterDoesNotOfferLeavesTheLayerBelow) {
  settings_.ApplyQueue({{"*Duplex", "DuplexTumble"}});
  settings_.Apply({{"*Duplex", "Sideways"}, {"*PageSize", "Nowhere"}});
  EXPECT_EQ(ChoiceOf(settings_, "Duplex"), "DuplexTumble");
  EXPECT_EQ(ChoiceOf(settings_, "PageSize"), "A4");
  ASSERT_EQ(settings_.Warnings().size(), 2u);
  EXPECT_EQ(settings_.Warnings()[0], "\"*Duplex=Sideways\" is no option of the printer, ignored");
}

TEST_F(Settings, CopiesThatAreNoNumberAreIgnored) {
  for (const char *text : {"0", "-1", "x", "", "32768", "2x"}) {
    settings_.Apply({{"*NrCopies", text}});
    EXPECT_EQ(settings_.Copies(), 1) << text;
  }
}

TEST_F(Settings, ACustomPaperIsFoundByItsNameWhereverItIsDefined) {
  settings_.ApplyQueue({{"*PageSize", "Ticket"}, {"*CustomPaperSize", "Ticket''200''400"}});
  ASSERT_TRUE(settings_.Paper());
  EXPECT_EQ(settings_.Paper()->width, 200);
  EXPECT_EQ(settings_.Paper()->length, 400);
  settings_.Apply({{"*PageSize", "Letter"}});
  EXPECT_FALSE(settings_.Paper());
}

TEST_F(Settings, ACustomMediaTypeIsFoundByItsName) {
  settings_.ApplyQueue({{"*MediaType", "Gloss"}, {"*CustomMediaType", "Gloss::Gloss"}});
  EXPECT_EQ(settings_.MediaName(), "Gloss");
}

TEST_F(Settings, AUserDefinesNoPaperSizes) {
  settings_.Apply({{"*CustomPaperSize", "Ticket''200''400"}, {"*PageSize", "Ticket"}});
  EXPECT_FALSE(settings_.Paper());
}

TEST_F(Settings, ADefinitionThatIsNoPaperSizeIsIgnored) {
  settings_.ApplyQueue({{"*CustomPaperSize", "a"},
                        {"*CustomPaperSize", "b''1"},
                        {"*CustomPaperSize", "c''x''y"},
                        {"*CustomPaperSize", "d''0''5"},
                        {"*CustomPaperSize", "e''inf''5"},
                        {"*PageSize", "e"}});
  EXPECT_FALSE(settings_.Paper());
}

TEST_F(Settings, BookletAndSeveralPagesASheetExcludeEachOther) {
  settings_.ApplyQueue({{"*Booklet", "1"}});
  settings_.Apply({{"*Nup", "4"}});
  EXPECT_EQ(settings_.Other("*Booklet"), "");
  settings_.Apply({{"*Booklet", "1"}});
  EXPECT_EQ(settings_.Other("*Nup"), "");
}

TEST_F(Settings, ThePinNeverGetsIntoAWarning) {
  settings_.ApplyQueue({{"*DeliveryPIN", "4711"}});
  EXPECT_TRUE(settings_.Warnings().empty());
  EXPECT_EQ(settings_.Other("*DeliveryPIN"), "4711");
}

}  // namespace
