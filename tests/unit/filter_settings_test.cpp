// Where a job's settings come from, and which layer wins.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "conflicts.h"
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

TEST(OptionWords, WhatTheSpoolerShortensIsTrueOrFalse) {
  EXPECT_EQ(Joined(ParseOptionWords("*TonerSave no*Collate, *Duplex=None nobanner no* *")),
            "*TonerSave=True;*Collate=False;*Duplex=None;");
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
  for (const mode_t mode : {0644U, 0000U}) {
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
    EXPECT_EQ(file.warning, path + ": ignored: it is not a regular file");
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
            directory.Path("fifo") + ": ignored: it is not a regular file");
}

TEST(QueueOptionFiles, OneThatIsNotThereOrCannotBeReadIsAnError) {
  EXPECT_EQ(ReadQueueOptions("/nonexistent/lp1.def", false).error,
            "the queue's option file /nonexistent/lp1.def is missing: save the queues in KPXadmin, "
            "which writes it again");
  EXPECT_EQ(ReadQueueOptions("/tmp", false).error, "the queue's option file /tmp: Is a directory");
}

TEST(QueueOptionFiles, OneWithoutSettingsIsAnErrorWhereThereIsSomethingToSet) {
  const TemporaryDirectory directory;
  for (const char *text : {"", "\n", "##Name:x\n"}) {
    const std::string path = directory.Write("lp1.def", text);
    EXPECT_EQ(ReadQueueOptions(path, false).error, "") << text;
    EXPECT_EQ(ReadQueueOptions(path, true).error,
              "the queue's option file " + path +
                  " is empty: save the queues in KPXadmin, which writes it again");
  }
}

TEST(QueueOptionFiles, OneWithoutSettingsCountsWhereTheQueueListHasNoneForTheQueue) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("lp1.def", "");
  const auto list = [](const std::string &name, const std::string &options) {
    return "#queue\n#name_queue\n" + name +
           "\n#language\ntext\n#printer\nP\n#def_file\nlp1.def\n#ppd_file\nvek1.ppd\n"
           "#type_address\ntcpip\n#address\n10.0.0.1\n#printing_system\nSystemV\n#options\n" +
           options +
           "#end_options\n#installable_features\n#end_installable_features\n"
           "#custom_paper_sizes\n#end_custom_paper_sizes\n#custom_paper_types\n"
           "#end_custom_paper_types\n#end_queue\n";
  };
  directory.Write("queues.paf", list("lp1", ""));
  EXPECT_EQ(ReadQueueOptions(path, true).error, "");
  directory.Write("queues.paf", list("lp1", "*Duplex\nNone\n"));
  EXPECT_NE(ReadQueueOptions(path, true).error, "") << "its settings were lost";
  directory.Write("queues.paf", list("lp2", ""));
  EXPECT_NE(ReadQueueOptions(path, true).error, "") << "the list does not know the queue";
  directory.Write("queues.paf", "#queue\n#name_queue\nlp1\n");
  EXPECT_NE(ReadQueueOptions(path, true).error, "") << "the list is not whole";
  directory.Write("queues.paf.save", list("lp1", ""));
  EXPECT_EQ(ReadQueueOptions(path, true).error, "") << "a save goes on";
  directory.Write("queues.paf.next", list("lp1", "*Duplex\nNone\n"));
  EXPECT_NE(ReadQueueOptions(path, true).error, "") << "a save intends other settings";
}

// A queue lp1 beside which users keep settings of waiting requests.
class RequestFiles : public testing::Test {
 protected:
  RequestFiles() {
    EXPECT_EQ(chmod(directory_.Path().c_str(), 0755), 0);
    std::filesystem::create_directories(own_);
    GiveTo("bin", own_);
    GiveTo("bin", Write("lp1-7", "*A=1\n"));
  }
  std::string Write(const std::string &name, const std::string &text) const {
    return directory_.Write("users/bin/" + name, text);
  }
  // Reads as the spooler does, which is not root.
  OptionFile Read(const std::string &request, const std::string &user = "bin") const {
    const uid_t self = geteuid();
    EXPECT_EQ(seteuid(getpwnam("nobody")->pw_uid), 0);
    OptionFile file = ReadRequestOptions(directory_.Path("lp1.def"), user, request);
    EXPECT_EQ(seteuid(self), 0);
    return file;
  }
  // Says that there are no settings, and why.
  void ExpectIgnored(const std::string &request, const std::string &warning) const {
    const OptionFile file = Read(request);
    EXPECT_FALSE(file.counts);
    EXPECT_TRUE(file.settings.empty());
    EXPECT_EQ(file.warning, warning);
    EXPECT_EQ(file.error, "");
  }

  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "gives files to other users, which only root can";
  }

  const TemporaryDirectory directory_;
  const std::string own_ = directory_.Path("users/bin");
};

TEST_F(RequestFiles, HoldTheSettingsOfOneRequest) {
  EXPECT_EQ(Joined(Read("lp1-7").settings), "*A=1;");
  EXPECT_EQ(Joined(Read("lp1-7", "host!bin").settings), "*A=1;");
  EXPECT_TRUE(Read("lp1-7").counts);
  ExpectIgnored("lp1-8", "");
  ExpectIgnored("", "");
  EXPECT_FALSE(Read("lp1-7", "sys").counts);
}

TEST_F(RequestFiles, OneWithoutAnySettingCountsToo) {
  GiveTo("bin", Write("lp1-8", ""));
  EXPECT_TRUE(Read("lp1-8").counts);
}

TEST_F(RequestFiles, ARequestThatCanNameNoFileIsIgnored) {
  for (const char *request : {"../bin/lp1-7", "lp1", "-7", "lp1-", "lp1-7x", "..", "a/b-1",
                              "lp1\n-7", "\xE9-7", "lp1-7\x7F-1"}) {
    ExpectIgnored(request, "KPX_REQUEST: ignored: it does not name a request");
  }
  ExpectIgnored(std::string(300, 'x') + "-1", "KPX_REQUEST: ignored: it does not name a request");
  GiveTo("bin", Write("büro-7", "*A=1\n"));
  EXPECT_TRUE(Read("büro-7").counts);
}

TEST_F(RequestFiles, DoNotCountWhenTheyOrTheirDirectoryBelongToAnotherUser) {
  GiveTo("daemon", own_ + "/lp1-7");
  ExpectIgnored("lp1-7", own_ + "/lp1-7: ignored: it belongs to another user");
  GiveTo("root", own_ + "/lp1-7");
  EXPECT_TRUE(Read("lp1-7").counts);
  GiveTo("daemon", own_);
  ExpectIgnored("lp1-7", own_ + ": ignored: it belongs to another user");
  GiveTo("root", own_);
  EXPECT_TRUE(Read("lp1-7").counts);
}

TEST_F(RequestFiles, AreNotReadThroughALinkNorFromWhatIsNoDirectory) {
  ASSERT_EQ(symlink("lp1-7", (own_ + "/lp1-8").c_str()), 0);
  ExpectIgnored("lp1-8", own_ + "/lp1-8: ignored: it is a symbolic link");
  ASSERT_EQ(mkfifo((own_ + "/lp1-9").c_str(), 0600), 0);
  GiveTo("bin", own_ + "/lp1-9");
  ExpectIgnored("lp1-9", own_ + "/lp1-9: ignored: it is not a regular file");
  std::filesystem::rename(own_, directory_.Path("users/other"));
  ASSERT_EQ(symlink("other", own_.c_str()), 0);
  ExpectIgnored("lp1-7", own_ + ": ignored: it is a symbolic link");
  std::filesystem::remove(own_);
  directory_.Write("users/bin", "");
  GiveTo("bin", own_);
  ExpectIgnored("lp1-7", own_ + ": ignored: it is not a directory");
}

TEST_F(RequestFiles, OnesOwnThatCannotBeReadIsAnError) {
  ASSERT_EQ(chmod((own_ + "/lp1-7").c_str(), 0000), 0);
  EXPECT_EQ(Read("lp1-7").error, own_ + "/lp1-7: Permission denied");
  ASSERT_EQ(chmod(own_.c_str(), 0600), 0);
  EXPECT_EQ(Read("lp1-7").error, own_ + "/lp1-7: Permission denied");
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
  EXPECT_EQ(settings_.Warnings()[0],
            "\"*Duplex=Sideways\" is not an option of this printer; ignored");
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

TEST_F(Settings, ACustomPaperBeyondThePrintersLimitsLeavesTheLayerBelow) {
  settings_.ApplyQueue({{"*CustomPaperSize", "Most''700''1300"},
                        {"*CustomPaperSize", "Least''72''100"},
                        {"*CustomPaperSize", "Wide''702''1300"},
                        {"*CustomPaperSize", "Long''5000''9000"},
                        {"*CustomPaperSize", "Small''70''400"},
                        {"*PageSize", "Letter"}});
  for (const char *name : {"Wide", "Long", "Small"}) {
    settings_.Apply({{"*PageSize", name}});
    EXPECT_EQ(ChoiceOf(settings_, "PageSize"), "Letter") << name;
  }
  ASSERT_EQ(settings_.Warnings().size(), 3u);
  EXPECT_EQ(
      settings_.Warnings()[1],
      "\"*PageSize=Long\" (5000 x 9000 points) is beyond the printer's limits for custom paper "
      "(72 x 100.25 to 700 x 1300.5); ignored");
  for (const char *name : {"Most", "Least"}) {
    settings_.Apply({{"*PageSize", name}});
    EXPECT_EQ(settings_.PaperName(), name);
  }
  EXPECT_EQ(settings_.Warnings().size(), 3u);
}

std::string Conflicts(const JobSettings &settings) {
  std::string texts;
  for (const std::string &text : ConflictTexts(settings)) texts += text + "\n";
  return texts;
}

constexpr char kExclude[] = " exclude each other: the printer may leave one of them out\n";

TEST_F(Settings, ThatThePrinterCannotCombineAreNamedInPairs) {
  EXPECT_EQ(Conflicts(settings_), "");
  settings_.ApplyQueue({{"*OptionDuplex", "False"}, {"*Duplex", "DuplexTumble"}});
  EXPECT_EQ(Conflicts(settings_),
            std::string("\"*Duplex=DuplexTumble\" and \"*OptionDuplex=False\"") + kExclude);
  settings_.Apply({{"*MediaType", "Card"}});
  EXPECT_EQ(CountOf(Conflicts(settings_), kExclude), 2u);
  settings_.Apply({{"*Duplex", "None"}});
  EXPECT_EQ(Conflicts(settings_), "");
}

TEST_F(Settings, OfTheAdministratorsOwnPaperConflictToo) {
  settings_.ApplyQueue({{"*CustomPaperSize", "Ticket''200''400"},
                        {"*CustomMediaType", "Gloss::Gloss"},
                        {"*PageSize", "Ticket"},
                        {"*MediaType", "Gloss"},
                        {"*Duplex", "DuplexTumble"}});
  EXPECT_EQ(Conflicts(settings_), std::string("\"*PageSize=Ticket\" and \"*Duplex=DuplexTumble\"") +
                                      kExclude + "\"*MediaType=Gloss\" and \"*InputSlot=Upper\"" +
                                      kExclude);
}

TEST(PrintersDefaults, ThatExcludeEachOtherAreNoConflictOfTheJobs) {
  PpdModel model = TestPpd("office.ppd");
  model.constraints.push_back({"InputSlot", "Upper", "PageSize", "A4"});
  JobSettings settings(model);
  settings.ApplyQueue({{"*InputSlot", "Upper"}, {"*PageSize", "A4"}});
  EXPECT_EQ(Conflicts(settings), "");
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

TEST_F(Settings, TheQueuesUserNameIsForJobsThatComeWithoutAUser) {
  EXPECT_EQ(settings_.UserName("anna"), "anna");
  EXPECT_EQ(settings_.UserName("nobody"), "nobody");
  settings_.ApplyQueue({{"*UserName", "root"}});
  EXPECT_EQ(settings_.UserName("anna"), "anna");
  EXPECT_EQ(settings_.UserName("host!anna"), "host!anna");
  for (const char *nobody : {"", "anonymous", "nobody", "host!nobody"}) {
    EXPECT_EQ(settings_.UserName(nobody), "root") << nobody;
  }
}

TEST_F(Settings, AUserNameOfTheUserOrTheJobWins) {
  settings_.ApplyQueue({{"*UserName", "root"}});
  // As the windows store it that showed the queue's name.
  settings_.ApplyUser({{"*UserName", "root"}});
  EXPECT_EQ(settings_.UserName("anna"), "anna");
  settings_.ApplyUser({{"*UserName", "Anna B"}});
  EXPECT_EQ(settings_.UserName("anna"), "Anna B");
  settings_.Apply({{"*UserName", "root"}});
  EXPECT_EQ(settings_.UserName("anna"), "root");
}

TEST_F(Settings, ThePinNeverGetsIntoAWarning) {
  settings_.ApplyQueue({{"*DeliveryPIN", "4711"}});
  EXPECT_TRUE(settings_.Warnings().empty());
  EXPECT_EQ(settings_.Other("*DeliveryPIN"), "4711");
}

}  // namespace
