// The System V spooler's commands on CUPS: lpadmin, accept, enable.
#include <gtest/gtest.h>
#include <pwd.h>

#include "spooler.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

CommandResult Lpadmin(const Strings &arguments) {
  Strings command = {"/usr/lib/lpadmin"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return RunProgram(command);
}

CommandResult MakeQueue(const std::string &name, const std::string &model = "vek4120") {
  return Lpadmin({"-p", name, "-v", "/dev/null", "-I", "any", "-o", "nobanner", "-m", model});
}

std::string ScriptPath(const std::string &queue) {
  return std::string(kBridgeInterfaces) + "/" + queue;
}

// The queues that CUPS knows.
std::string CupsQueues() { return RunProgram({"lpstat", "-e"}).output; }

// Nothing of a queue anywhere.
void ExpectNoQueue() {
  EXPECT_EQ("", CupsQueues());
  EXPECT_EQ(Strings{}, NamesIn(kBridgePrinters));
  EXPECT_EQ(Strings{}, NamesIn(kBridgeInterfaces));
}

std::string Accepting(const std::string &queue) {
  return RunProgram({"lpstat", "-a", queue}).output;
}

// For its lifetime a file is missing.
class Missing {
 public:
  explicit Missing(const std::string &path) : path_(path) { fs::rename(path_, path_ + ".away"); }
  ~Missing() { fs::rename(path_ + ".away", path_); }
  Missing(const Missing &) = delete;
  Missing &operator=(const Missing &) = delete;

 private:
  std::string path_;
};

class BridgeCommands : public testing::Test {
 protected:
  BridgeCommands() { RequirePrivateWorld(); }
  ~BridgeCommands() override {
    for (const std::string &name : NamesIn(kBridgePrinters)) Lpadmin({"-x", name});
  }
};

}  // namespace

TEST_F(BridgeCommands, EveryModelHasAScriptOfItsName) {
  EXPECT_EQ((Strings{"Unknown_printer", "vek4100", "vek4102", "vek4105", "vek4110", "vek4120",
                     "vek4121"}),
            NamesIn(kBridgeModels));
}

TEST_F(BridgeCommands, AModelScriptRefusesAShellThatHidesTheFailureOfAFilter) {
  for (const std::string &model : NamesIn(kBridgeModels)) {
    const Strings call = {
        std::string(kBridgeModels) + "/" + model, "lp1-1", "root", "title", "1", "", "/etc/hosts"};
    const int without_lines = 75;
    EXPECT_EQ(without_lines, RunProgram(call).status);
    const bool shell_can = RunProgram({"/bin/sh", "-c", "set -o pipefail"}).status == 0;
    const Missing bash("/usr/bin/bash");
    EXPECT_EQ(shell_can ? without_lines : 1, RunProgram(call).status);
  }
}

TEST_F(BridgeCommands, ANewQueueHasAnEntryAndTheModelsScript) {
  const CommandResult made = MakeQueue("lp1", "vek4105");
  EXPECT_EQ(0, made.status);
  EXPECT_EQ("", made.output);
  EXPECT_EQ(Strings{"lp1"}, NamesIn(kBridgePrinters));
  EXPECT_EQ(Strings{"lp1"}, NamesIn(kBridgeInterfaces));
  EXPECT_EQ(ContentOf(std::string(kBridgeModels) + "/vek4105"), ContentOf(ScriptPath("lp1")));
  EXPECT_EQ(0755u, ModeOf(ScriptPath("lp1")));
}

TEST_F(BridgeCommands, TheScriptBelongsToTheSpooler) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox without root has one user alone";
  MakeQueue("lp1");
  struct stat status = {};
  ASSERT_EQ(0, stat(ScriptPath("lp1").c_str(), &status));
  EXPECT_EQ(getpwnam("lp")->pw_uid, status.st_uid);
  EXPECT_EQ("bin", GroupOf(ScriptPath("lp1")));
}

TEST_F(BridgeCommands, ANewQueueTakesAndPrintsNothingUntilItIsAcceptedAndEnabled) {
  MakeQueue("lp1");
  EXPECT_NE(std::string::npos, Accepting("lp1").find("not accepting"));
  EXPECT_NE(std::string::npos, RunProgram({"lpstat", "-p", "lp1"}).output.find("disabled"));
  EXPECT_NE(0, RunProgram({"/usr/bin/lp", "-d", "lp1"}, "data").status);
  EXPECT_EQ(0, RunProgram({"/usr/bin/accept", "lp1"}).status);
  EXPECT_EQ(0u, Accepting("lp1").find("lp1 accepting"));
  EXPECT_EQ(0, RunProgram({"/usr/bin/enable", "lp1"}).status);
  EXPECT_NE(std::string::npos, RunProgram({"lpstat", "-p", "lp1"}).output.find("enabled"));
}

TEST_F(BridgeCommands, AQueueCanBeSharedWithOtherHosts) {
  MakeQueue("lp1");
  EXPECT_EQ(0,
            RunProgram({"/usr/sbin/lpadmin", "-p", "lp1", "-o", "printer-is-shared=true"}).status);
}

TEST_F(BridgeCommands, SeveralQueuesAreAcceptedAtOnce) {
  MakeQueue("lp1");
  MakeQueue("lp2");
  EXPECT_EQ(0, RunProgram({"/usr/bin/accept", "lp1", "lp2"}).status);
  EXPECT_EQ(0u, Accepting("lp2").find("lp2 accepting"));
}

TEST_F(BridgeCommands, MakingAQueueAgainChangesItsModel) {
  MakeQueue("lp1", "vek4120");
  RunProgram({"/usr/bin/accept", "lp1"});
  EXPECT_EQ(0, MakeQueue("lp1", "vek4100").status);
  EXPECT_EQ(ContentOf(std::string(kBridgeModels) + "/vek4100"), ContentOf(ScriptPath("lp1")));
  EXPECT_EQ("Device: /dev/null\nModel: vek4100\n",
            ContentOf(std::string(kBridgePrinters) + "/lp1"));
  EXPECT_EQ(0u, Accepting("lp1").find("lp1 accepting")) << "the queue itself stays as it is";
}

TEST_F(BridgeCommands, WithoutAModelAnExistingQueueKeepsItsScript) {
  MakeQueue("lp1");
  std::ofstream(ScriptPath("lp1"), std::ios::app) << "# mine\n";
  const std::string before = ContentOf(ScriptPath("lp1"));
  EXPECT_EQ(0, Lpadmin({"-p", "lp1"}).status);
  EXPECT_EQ(before, ContentOf(ScriptPath("lp1")));
}

TEST_F(BridgeCommands, RemovingAQueueLeavesNothingOfIt) {
  MakeQueue("lp1");
  const CommandResult removed = Lpadmin({"-x", "lp1"});
  EXPECT_EQ(0, removed.status);
  EXPECT_EQ("", removed.output);
  ExpectNoQueue();
}

TEST_F(BridgeCommands, AQueueThatIsNotThereCannotBeRemoved) {
  const CommandResult removed = Lpadmin({"-x", "lp1"});
  EXPECT_EQ(1, removed.status);
  EXPECT_EQ("lpadmin: there is no queue \"lp1\"\n", removed.output);
}

TEST_F(BridgeCommands, WhatIsLeftOfAQueueThatCupsLostIsRemovedOrMadeAnew) {
  for (const bool again : {false, true}) {
    MakeQueue("lp1");
    ASSERT_EQ(0, RunProgram({"/usr/sbin/lpadmin", "-x", "lp1"}).status);
    if (again) {
      EXPECT_EQ(0, MakeQueue("lp1").status);
      EXPECT_EQ("lp1\n", CupsQueues());
    }
    EXPECT_EQ(0, Lpadmin({"-x", "lp1"}).status);
    ExpectNoQueue();
  }
}

TEST_F(BridgeCommands, QueuesAndClassesOfCupsItselfAreLeftAlone) {
  ASSERT_EQ(0, RunProgram({"/usr/sbin/lpadmin", "-p", "own", "-v", "ipp://localhost/x"}).status);
  ASSERT_EQ(0, RunProgram({"/usr/sbin/lpadmin", "-p", "own", "-c", "group"}).status);
  for (const char *name : {"own", "group"}) {
    EXPECT_EQ(1, MakeQueue(name).status);
    EXPECT_EQ(1, Lpadmin({"-x", name}).status);
  }
  EXPECT_EQ("group\nown\n", CupsQueues());
  EXPECT_EQ(Strings{}, NamesIn(kBridgePrinters));
  EXPECT_EQ(Strings{}, NamesIn(kBridgeInterfaces));
  RunProgram({"/usr/sbin/lpadmin", "-x", "group"});
  RunProgram({"/usr/sbin/lpadmin", "-x", "own"});
}

TEST_F(BridgeCommands, AnUnknownModelMakesNoQueue) {
  const CommandResult made = MakeQueue("lp1", "vek9999");
  EXPECT_EQ(1, made.status);
  EXPECT_EQ("lpadmin: there is no printer model \"vek9999\" in /usr/spool/lp/model\n", made.output);
  ExpectNoQueue();
}

TEST_F(BridgeCommands, WrongUsageOfLpadminShowsTheUsageAndEndsWithTwo) {
  const std::vector<Strings> calls = {{},
                                      {"-p"},
                                      {"-x"},
                                      {"-p", "lp1"},
                                      {"-z"},
                                      {"-p", "lp1", "-x", "lp1"},
                                      {"-p", "lp1", "-p", "lp2", "-m", "vek4120"},
                                      {"-x", "lp1", "lp2"},
                                      {"-p", "lp1", "-m", "vek4120", "-v", "/dev/lp0"},
                                      {"-p", "lp1", "-m", "vek4120", "-o", "banner"},
                                      {"-p", "lp1", "-m", "../vek4120"}};
  for (const Strings &call : calls) {
    const CommandResult result = Lpadmin(call);
    EXPECT_EQ(2, result.status) << testing::PrintToString(call);
    EXPECT_NE(std::string::npos, result.output.find("\nusage: lpadmin -p QUEUE")) << result.output;
  }
  ExpectNoQueue();
}

TEST_F(BridgeCommands, NamesThatLeadElsewhereOrReadAsOptionsAreRefused) {
  for (const char *name : {"", "-x", "../up", "a/b", ".", "..", ".hidden", "a b", "a\nb", "a;id",
                           "a$b", "`id`", "a'b", "a\"b", "a*", "a?", "a#b"}) {
    EXPECT_EQ(2, MakeQueue(name).status) << name;
    EXPECT_EQ(2, Lpadmin({"-x", name}).status) << name;
  }
  EXPECT_EQ(2, MakeQueue(std::string(128, 'a')).status);
  ExpectNoQueue();
}

TEST_F(BridgeCommands, NamesMayHaveDigitsSignsAndLettersBeyondAscii) {
  for (const std::string &name : Strings{"1st", "a_b-c+d", "Büro", std::string(127, 'a')}) {
    EXPECT_EQ(0, MakeQueue(name).status) << name;
    EXPECT_EQ(0, RunProgram({"/usr/bin/accept", name}).status) << name;
    EXPECT_EQ(0, Lpadmin({"-x", name}).status) << name;
  }
  ExpectNoQueue();
}

TEST_F(BridgeCommands, OnAFullDiskNothingIsLeftOfANewQueue) {
  {
    const SmallDisk disk(kBridgeInterfaces, 4096);
    std::ofstream(ScriptPath("filler")) << std::string(4096, 'x') << std::flush;
    const CommandResult made = MakeQueue("lp1");
    EXPECT_EQ(1, made.status);
    EXPECT_EQ(Strings{"filler"}, NamesIn(kBridgeInterfaces));
  }
  ExpectNoQueue();
}

TEST_F(BridgeCommands, AnOrdinaryUserMakesAndRemovesNothing) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has them only as root";
  MakeQueue("lp1");
  for (const Strings &call : std::vector<Strings>{
           {"/usr/lib/lpadmin", "-x", "lp1"}, {"/usr/lib/lpadmin", "-p", "b", "-m", "vek4120"}}) {
    const CommandResult result = RunProgram(call, "", "anna");
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.output.find("run this as root")) << result.output;
  }
  EXPECT_EQ("lp1\n", CupsQueues());
}

TEST_F(BridgeCommands, AcceptAndEnableWantNamesOfQueues) {
  for (const std::string name : {"accept", "enable"}) {
    const std::string program = "/usr/bin/" + name;
    for (const Strings &call : std::vector<Strings>{{program}, {program, "-h"}, {program, ""}}) {
      const CommandResult result = RunProgram(call);
      EXPECT_EQ(2, result.status);
      EXPECT_EQ("usage: " + name + " QUEUE...\n", result.output);
    }
    const CommandResult unknown = RunProgram({program, "nosuch"});
    EXPECT_EQ(1, unknown.status);
    EXPECT_NE("", unknown.output);
  }
}

TEST_F(BridgeCommands, WhatCupsSaysAboutAcceptAndEnableIsWhatItsOwnCommandsSay) {
  const auto expect_same = [](const std::string &queue) {
    for (const std::string name : {"accept", "enable"}) {
      const CommandResult ours = RunProgram({"/usr/bin/" + name, queue});
      const CommandResult theirs = RunProgram({"/usr/sbin/cups" + name, queue});
      EXPECT_EQ(theirs.status, ours.status);
      EXPECT_EQ(theirs.output, ours.output);
    }
  };
  expect_same("nosuch");
  expect_same("Büro");
  const NoScheduler down;
  expect_same("lp1");
}

TEST_F(BridgeCommands, ANameInOtherCapitalsIsThatOfAQueueThatCupsCannotHave) {
  MakeQueue("lp1");
  const CommandResult made = MakeQueue("LP1");
  EXPECT_EQ(1, made.status);
  EXPECT_EQ("lpadmin: CUPS already has a queue \"LP1\" that this lpadmin did not create\n",
            made.output);
  EXPECT_EQ(1, Lpadmin({"-x", "LP1"}).status);
  EXPECT_EQ("lp1\n", CupsQueues());
}

TEST_F(BridgeCommands, ACopyUnderANameWithAnEndingIsTheSameCommand) {
  MakeQueue("lp1");
  fs::copy_file("/usr/bin/accept", "/usr/bin/accept.old");
  EXPECT_EQ(0, RunProgram({"/usr/bin/accept.old", "lp1"}).status);
  EXPECT_EQ(0u, Accepting("lp1").find("lp1 accepting"));
  fs::remove("/usr/bin/accept.old");
}

TEST_F(BridgeCommands, WithoutASchedulerEveryCommandFailsWithAMessageAndChangesNothing) {
  MakeQueue("lp1");
  const std::string script = ContentOf(ScriptPath("lp1"));
  {
    const NoScheduler down;
    for (const CommandResult &result :
         {MakeQueue("lp2"), MakeQueue("lp1", "vek4100"), Lpadmin({"-x", "lp1"})}) {
      EXPECT_EQ(1, result.status);
      EXPECT_EQ("lpadmin: the CUPS scheduler (cupsd) is not running\n", result.output);
    }
    for (const char *program : {"/usr/bin/accept", "/usr/bin/enable"}) {
      const CommandResult result = RunProgram({program, "lp1"});
      EXPECT_EQ(1, result.status);
      EXPECT_NE("", result.output);
    }
    EXPECT_EQ(Strings{"lp1"}, NamesIn(kBridgePrinters));
    EXPECT_EQ(Strings{"lp1"}, NamesIn(kBridgeInterfaces));
    EXPECT_EQ(script, ContentOf(ScriptPath("lp1")));
  }
  EXPECT_EQ("lp1\n", CupsQueues()) << "a queue survives a restart of the scheduler";
}

TEST_F(BridgeCommands, TheSchedulersConfigurationMayBeTheOneThatCupsBrings) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the scheduler is lp and knows no root";
  const std::string standard = ContentOf("/usr/share/cups/cupsd.conf.default");
  ASSERT_NE("", standard);
  const SchedulerConfiguration configuration(standard +
                                             "Listen /run/cups/cups.sock\nLogLevel debug\n");
  EXPECT_EQ(0, MakeQueue("lp1").status);
  EXPECT_EQ(0, RunProgram({"/usr/bin/accept", "lp1"}).status);
  EXPECT_EQ(0, RunProgram({"/usr/bin/enable", "lp1"}).status);
  std::ofstream(ScriptPath("lp1"), std::ios::app) << "exit 0\n" << kEndOfScript;
  SchedulerLog log;
  EXPECT_EQ(0, RunProgram({"/usr/bin/lp", "-d", "lp1"}, "data").status);
  log.WaitFor("Job completed.");
  EXPECT_EQ(0, Lpadmin({"-x", "lp1"}).status);
  ExpectNoQueue();
}

TEST_F(BridgeCommands, WithoutTheClientProgramsOfCupsTheMessageNamesWhatIsMissing) {
  for (const auto &[command, program] : std::vector<std::pair<Strings, std::string>>{
           {{"/usr/lib/lpadmin", "-p", "lp1", "-m", "vek4120"}, "/usr/sbin/lpadmin"},
           {{"/usr/lib/lpadmin", "-x", "lp1"}, "/usr/bin/lpstat"},
           {{"/usr/bin/accept", "lp1"}, "/usr/sbin/cupsaccept"},
           {{"/usr/bin/enable", "lp1"}, "/usr/sbin/cupsenable"}}) {
    const Missing missing(program);
    const CommandResult result = RunProgram(command);
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.output.find(program + " is missing")) << result.output;
  }
}
