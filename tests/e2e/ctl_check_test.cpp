// kpxctl check: a host whose list, option files, scripts and spooler disagree.
#include <sys/stat.h>

#include "changedfile.h"
#include "ctltest.h"
#include "spooler.h"

namespace fs = std::filesystem;

namespace {

constexpr int kFound = 4;
constexpr char kRepair[] = "kpxctl check --repair";

class CtlCheck : public CtlTest {
 protected:
  CtlCheck() {
    AddQueue("lp1");
    AddQueue("lp2");
    ExpectGood();
  }

  static std::string ScriptPath(const std::string &name) {
    return std::string(kSpoolInterfacesDir) + "/" + name;
  }
  static std::string DefPath(const std::string &name) {
    return std::string(kDataDir) + "/" + name + ".def";
  }

  static void ExpectGood() {
    Expect({"check"}, "List, option files, interface scripts and print service agree.\n");
  }
  // The lines that check prints, which must end with that status.
  static Strings Found(Strings words = {}, int status = kFound) {
    words.insert(words.begin(), "check");
    const CommandResult result = Kpxctl(words);
    EXPECT_EQ(status, result.status) << result.output;
    return SplitLines(result.output);
  }
  // The causes that check tells.
  static Strings Causes() {
    Strings causes;
    const auto found = JsonOf({"check"});
    for (const auto &fault : found["faults"]) {
      causes.push_back(fault["cause"].get<std::string>() + " " +
                       fault["subject"].get<std::string>());
    }
    return causes;
  }
  // Mends everything that needs no name; nothing is left then.
  static void Repair() {
    EXPECT_EQ(0, Kpxctl({"check", "--repair"}).status);
    ExpectGood();
  }
  // Changes the text of a file in place.
  static void Replace(const std::string &path, const std::string &from, const std::string &to) {
    std::string text = ContentOf(path);
    ASSERT_NE(std::string::npos, text.find(from)) << path << " lacks " << from;
    std::ofstream(path) << text.replace(text.find(from), from.size(), to);
  }
  static void Shell(const std::string &command) {
    ASSERT_EQ(0, RunProgram({"sh", "-c", command}).status) << command;
  }
};

TEST_F(CtlCheck, NamesAQueueThatTheListLacksAndTakesItIn) {
  std::string list = ContentOf(kQueuesFile);
  const size_t second = list.rfind("#queue\n");
  std::ofstream(kQueuesFile) << list.substr(0, second);
  EXPECT_EQ(Found(), Strings{std::string("lp2: in the print service, but not in the list of "
                                         "queues -> ") +
                             kRepair});
  Repair();
  EXPECT_EQ(list, ContentOf(kQueuesFile));
}

TEST_F(CtlCheck, MakesTheQueuesOfAListThatWasCopiedToABareHost) {
  const std::string list = ContentOf(kQueuesFile);
  const std::string settings = ContentOf(DefPath("lp1"));
  Must({"delete", "lp1", "lp2"});
  std::ofstream(kQueuesFile) << list;
  EXPECT_EQ(Causes(), (Strings{"not-in-spooler lp1", "not-in-spooler lp2"}));
  Repair();
  EXPECT_EQ(SpoolerQueues(), (Strings{"lp1", "lp2"}));
  EXPECT_EQ(ContentOf(DefPath("lp1")), settings);
}

TEST_F(CtlCheck, FindsWhatTheSpoolerLost) {
  Shell("/usr/sbin/lpadmin -x lp1");
  fs::remove(std::string(kSpoolPrintersDir) + "/lp2");
  EXPECT_EQ(Causes(), (Strings{"incomplete lp1", "incomplete lp2"}));
  Repair();
  fs::remove(ScriptPath("lp1"));
  const std::string script = ContentOf(ScriptPath("lp2"));
  std::ofstream(ScriptPath("lp2")) << script.substr(0, script.size() - 20);
  EXPECT_EQ(Causes(), (Strings{"incomplete lp1", "incomplete lp2"}));
  Repair();
  EXPECT_EQ(script, ContentOf(ScriptPath("lp2")));
}

TEST_F(CtlCheck, FindsOptionFilesThatWereEditedLostOrLeft) {
  const std::string settings = ContentOf(DefPath("lp1"));
  std::ofstream(DefPath("lp1")) << "*Duplex=DuplexTumble\n";
  fs::remove(DefPath("lp2"));
  std::ofstream(DefPath("old")) << "";
  EXPECT_EQ(Causes(), (Strings{"options-differ lp1", "options-missing lp2",
                               "options-left " + DefPath("old")}));
  Repair();
  EXPECT_EQ(settings, ContentOf(DefPath("lp1")));
  EXPECT_FALSE(fs::exists(DefPath("old")));
}

TEST_F(CtlCheck, FindsAnotherAddressAndAScriptThatTheSpoolerMayNotRun) {
  const std::string script = ContentOf(ScriptPath("lp1"));
  Replace(ScriptPath("lp1"), "NETWORK_ADDRESS=127.0.0.1", "NETWORK_ADDRESS=10.0.0.9");
  fs::permissions(ScriptPath("lp2"), fs::perms(0600));
  if (HasOrdinaryUsers()) {
    ASSERT_EQ(0, chown(ScriptPath("lp2").c_str(), 0, 0));
  }
  EXPECT_EQ(Causes(), (Strings{"address lp1", "script-access lp2"}));
  Repair();
  EXPECT_EQ(script, ContentOf(ScriptPath("lp1")));
  if (HasOrdinaryUsers()) {
    EXPECT_EQ(0755U, ModeOf(ScriptPath("lp2")));
  }
}

TEST_F(CtlCheck, WhatSomebodyMayHaveChangedOnPurposeIsMendedByNameAlone) {
  const std::string first = ContentOf(ScriptPath("lp1"));
  const std::string second = ContentOf(ScriptPath("lp2"));
  Replace(ScriptPath("lp1"), "--type postscript", "--type text");
  Replace(ScriptPath("lp2"), "# the following lines are inserted by KPXadmin", "# mine");
  const Strings both = {
      "lp1: the interface script says something else than the list -> kpxctl check --repair lp1",
      "lp2: the interface script has no lines of KPXadmin any more -> kpxctl check --repair lp2"};
  EXPECT_EQ(Found(), both);
  EXPECT_EQ(kFound, Kpxctl({"check", "--repair"}).status);
  EXPECT_EQ(Found(), both);
  EXPECT_EQ(0, Kpxctl({"check", "--repair", "lp1"}).status);
  EXPECT_EQ(Found(), Strings{both[1]});
  EXPECT_EQ(0, Kpxctl({"check", "--repair", "lp2"}).status);
  ExpectGood();
  EXPECT_EQ(first, ContentOf(ScriptPath("lp1")));
  EXPECT_EQ(second, ContentOf(ScriptPath("lp2")));
}

TEST_F(CtlCheck, FindsAQueueThatCupsSendsElsewhere) {
  Shell("/usr/sbin/lpadmin -p lp1 -v socket://10.0.0.9");
  EXPECT_EQ(Found(), Strings{"lp1: CUPS sends the jobs elsewhere -> "
                             "/usr/sbin/lpadmin -p lp1 -v kpxlp:/interface"});
  EXPECT_EQ(0, Kpxctl({"check", "--repair", "lp1"}).status);
  ExpectGood();
}

TEST_F(CtlCheck, FindsRestsThatCannotBeUnderstood) {
  Shell("/usr/lib/lpadmin -p rest -v /dev/null -I any -o nobanner -m vek4120");
  fs::remove(ScriptPath("rest"));
  EXPECT_EQ(Found(), Strings{"rest: left in the print service, not in the list, and not to be "
                             "understood -> /usr/lib/lpadmin -x rest"});
  EXPECT_EQ(kFound, Kpxctl({"check", "--repair"}).status);
  EXPECT_EQ(0, Kpxctl({"check", "--repair", "rest"}).status);
  ExpectGood();
}

TEST_F(CtlCheck, FindsADescriptionThatIsMissing) {
  fs::remove("/etc/cups/ppd/lp1.ppd");
  EXPECT_EQ(Found(), Strings{"lp1: print dialogs do not show the present options -> "
                             "/usr/lib/kpxppd"});
  Repair();
  EXPECT_TRUE(fs::exists("/etc/cups/ppd/lp1.ppd"));
}

TEST_F(CtlCheck, ACommandThatIsNamedMends) {
  fs::remove("/etc/cups/ppd/lp1.ppd");
  Shell("/usr/sbin/lpadmin -p lp2 -v socket://10.0.0.9");
  const auto found = JsonOf({"check"});
  ASSERT_EQ(2U, found["faults"].size());
  for (const auto &fault : found["faults"]) {
    Shell(fault["mend"].get<std::string>());
  }
  ExpectGood();
}

TEST_F(CtlCheck, ScriptsOfAFormerVersionGetTheInstalledOneUnlessTheyWereChanged) {
  const TemporaryDirectory former;
  const std::string model = std::string(kSpoolModelsDir) + "/vek4120";
  former.Write("vek4120", ContentOf(model));
  const ChangedFile changed(model, [&] {
    std::string text = ContentOf(model);
    return text.replace(text.find("CAT='cat'"), 9, "CAT='cat -u'");
  }());
  Replace(ScriptPath("lp2"), "set -e\n", "set -e # mine\n");
  EXPECT_EQ(Causes(), (Strings{"script-old lp1", "script-old lp2"}));
  EXPECT_EQ(
      kFound,
      Kpxctl({"check", "--repair", "--only", "script-old", "--former", former.Path()}).status);
  EXPECT_EQ(Causes(), Strings{"script-old lp2"});
  const std::string script = ContentOf(ScriptPath("lp1"));
  EXPECT_EQ(0U, script.find(ContentOf(model)));
  EXPECT_NE(std::string::npos, script.find("\nNETWORK_ADDRESS=127.0.0.1\n"));
  EXPECT_EQ(0755U, ModeOf(ScriptPath("lp1")));
  EXPECT_EQ(0, Kpxctl({"check", "--repair", "lp2"}).status);
  ExpectGood();
}

TEST_F(CtlCheck, AnInterruptedSaveIsTold) {
  std::ofstream(std::string(kQueuesFile) + ".next")
      << ContentOf(kQueuesFile) << "##remove lp2\n##complete\n";
  EXPECT_EQ(Causes(), Strings{"save-unfinished "});
  fs::remove(std::string(kQueuesFile) + ".next");
  ExpectGood();
}

TEST_F(CtlCheck, WithoutAnAnswerOfThePrintServiceNothingIsCalledGood) {
  const NoScheduler down;
  const CommandResult result = Kpxctl({"check"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ(0U, result.output.find("kpxctl: The print service does not say which queues it has"))
      << result.output;
}

TEST_F(CtlCheck, AWordThatIsNoCauseIsAWrongCall) {
  EXPECT_EQ(2, Kpxctl({"check", "--only", "nosuch"}).status);
}

}  // namespace
