// The spooler's queues: which there are, which are ours, and how they go.
#include "porting.h"

#include <gtest/gtest.h>

#include "command.h"
#include "cprintqueues.h"
#include "must.h"
#include "queuesupport.h"
#include "spoolerstandin.h"

namespace fs = std::filesystem;

namespace {

const std::string kMarker = "# the following lines are inserted by KPXadmin";
constexpr char kUsers[] = "/opt/orlan/data/users";

using Strings = std::vector<std::string>;

class Porting : public testing::Test {
 protected:
  Porting() : messages_(kQueueMessages), queues_(CreateHash()), original_(CreateHash()) {
    G_Queues_hash = queues_.get();
    G_OrgQueues_hash = original_.get();
  }
  ~Porting() override {
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
  }

  // Adds a queue of ours to the spooler, the working set and the snapshot.
  void AddOurs(const std::string &name) {
    spooler_.AddQueue(name, kMarker + "\n");
    Must(HashPut(G_Queues_hash, name.c_str(), MakeQueue({.name = name})));
    Must(HashPut(G_OrgQueues_hash, name.c_str(), MakeQueue({.name = name})));
  }

  Strings Errors() const { return Texts(errors_.get()); }
  CList *List() { return errors_.get(); }

  int IsOurs(const std::string &script) {
    spooler_.AddQueue("lp1", script);
    return OurQueueExistsSysV("lp1", List());
  }

  SpoolerStandIn spooler_;

 private:
  ProgramMessages messages_;
  Owned<CHash> queues_;
  Owned<CHash> original_;
  Owned<CList> errors_ = CreateList();
};

// Standard error while `body` runs, which gets every message that the list gets.
template <class Body>
std::string ErrorOutput(const Body &body) {
  testing::internal::CaptureStderr();
  body();
  return testing::internal::GetCapturedStderr();
}

// Recognising a queue.

TEST_F(Porting, AQueueIsOursWhenItsScriptHoldsTheMarkerLine) {
  EXPECT_EQ(IsOurs("#!/bin/sh\n" + kMarker + "\nmore\n"), 1);
  EXPECT_EQ(IsOurs(kMarker), 1) << "no final line feed";
  EXPECT_EQ(IsOurs("#!/bin/sh\n"), 0);
  EXPECT_EQ(IsOurs(""), 0);
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(Porting, BlanksAfterTheMarkerDoNotCountBlanksBeforeItDo) {
  EXPECT_EQ(IsOurs(kMarker + " \t \n"), 1);
  EXPECT_EQ(IsOurs(" " + kMarker + "\n"), 0);
  EXPECT_EQ(IsOurs("\t" + kMarker + "\n"), 0);
}

TEST_F(Porting, ALineThatOnlyBeginsWithTheMarkerIsNotTheMarker) {
  EXPECT_EQ(IsOurs(kMarker + "!\n"), 0);
  EXPECT_EQ(IsOurs(kMarker + "\r\n"), 0);
}

TEST_F(Porting, AScriptOfAnyBytesIsReadToItsEnd) {
  const std::string odd = std::string("\0\xFF\xE4\n", 4) + std::string(5000, 'x') + "\n";
  EXPECT_EQ(IsOurs(odd + kMarker + "\n" + odd), 1);
  EXPECT_EQ(IsOurs(odd + odd), 0);
}

TEST_F(Porting, AQueueWithoutScriptOrNameIsNotOurs) {
  EXPECT_EQ(OurQueueExistsSysV("nosuchqueue", List()), 0);
  EXPECT_EQ(OurQueueExistsSysV(nullptr, List()), 0);
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(Porting, AnUnreadableScriptIsReportedAndNotOurs) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users without root";
  spooler_.AddQueue("lp1", kMarker + "\n");
  fs::permissions(spooler_.ScriptPath("lp1"), fs::perms(0600));
  const ChildResult result = RunAsUser("anna", [&] {
    const int ours = OurQueueExistsSysV("lp1", List());
    _exit(ours == 0 && Errors() == Strings{"read <" + spooler_.ScriptPath("lp1") + ">"} ? 0 : 1);
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "read <" + spooler_.ScriptPath("lp1") + ">\n");
}

// Listing the queues.

TEST_F(Porting, WithoutASpoolerThereAreNoQueues) {
  fs::remove_all(SpoolerStandIn::kPrinters);
  EXPECT_EQ(ErrorOutput([&] { EXPECT_EQ(GetQueueNamesSysV(nullptr, List()), nullptr); }), "");
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(Porting, APrinterDirectoryThatCannotBeOpenedIsReported) {
  fs::remove_all(SpoolerStandIn::kPrinters);
  std::ofstream(SpoolerStandIn::kPrinters) << "no directory";
  const std::string message = std::string("dir <") + SpoolerStandIn::kPrinters + ">";
  EXPECT_EQ(ErrorOutput([&] { EXPECT_EQ(GetQueueNamesSysV(nullptr, List()), nullptr); }),
            message + "\n");
  EXPECT_EQ(Errors(), Strings{message});
}

TEST_F(Porting, AnEmptySpoolerGivesAnEmptyList) {
  const Owned<CList> names = GetQueueNamesSysV(nullptr, List());
  ASSERT_NE(names, nullptr);
  EXPECT_EQ(Texts(names.get()), Strings{});
}

TEST_F(Porting, AllQueuesAreListedInReverseDirectoryOrderAndOursApart) {
  for (const char *name : {"alpha", "beta", "gamma", "delta"}) {
    const bool ours = name[0] != 'b';
    spooler_.AddQueue(name, ours ? kMarker + "\n" : "#!/bin/sh\n");
  }
  Strings expected;
  for (const auto &entry : fs::directory_iterator(SpoolerStandIn::kPrinters)) {
    expected.insert(expected.begin(), entry.path().filename());
  }
  const Owned<CList> ours = CreateList();
  const Owned<CList> names = GetQueueNamesSysV(ours.get(), List());
  EXPECT_EQ(Texts(names.get()), expected);
  expected.erase(std::find(expected.begin(), expected.end(), "beta"));
  EXPECT_EQ(Texts(ours.get()), expected);
}

// Pruning at start.

TEST_F(Porting, AQueueWhoseScriptIsGoneDisappearsWithoutAnyMessage) {
  AddOurs("lp1");
  AddOurs("lp2");
  fs::remove(spooler_.ScriptPath("lp1"));
  EXPECT_EQ(ErrorOutput([&] { EXPECT_EQ(RemoveInexistentSystemVQueues(List()), 1); }), "");
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp2"});
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(Porting, AQueueWhoseScriptHasLostTheMarkerDisappearsWithAMessage) {
  AddOurs("lp1");
  AddOurs("lp2");
  spooler_.AddQueue("lp2", "#!/bin/sh\n");
  EXPECT_EQ(ErrorOutput([&] { RemoveInexistentSystemVQueues(List()); }), "changed <lp2>\n");
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
  EXPECT_EQ(Errors(), Strings{"changed <lp2>"});
}

TEST_F(Porting, AQueueWhoseScriptCannotBeReadDisappearsWithThatMessageAlone) {
  AddOurs("lp1");
  fs::remove(spooler_.ScriptPath("lp1"));
  fs::create_directory(spooler_.ScriptPath("lp1"));
  ErrorOutput([&] { RemoveInexistentSystemVQueues(List()); });
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
  EXPECT_EQ(Errors(), Strings{"read <" + spooler_.ScriptPath("lp1") + ">"});
}

TEST_F(Porting, AScriptThatTheSystemDoesNotShowIsToldNotTakenForGone) {
  AddOurs("lp1");
  fs::remove(spooler_.ScriptPath("lp1"));
  fs::create_symlink("lp1", spooler_.ScriptPath("lp1"));  // ELOOP
  ErrorOutput([&] { RemoveInexistentSystemVQueues(List()); });
  EXPECT_EQ(Errors(), Strings{"read <" + spooler_.ScriptPath("lp1") + ">"});
}

TEST_F(Porting, QueuesWhoseScriptsCannotBeReadAreTakenBackForTheSave) {
  AddOurs("lp1");
  AddOurs("lp2");
  AddOurs("lp3");
  for (const char *name : {"lp1", "lp2"}) {
    fs::remove(spooler_.ScriptPath(name));
    fs::create_symlink(name, spooler_.ScriptPath(name));
  }
  ErrorOutput([&] { RemoveInexistentSystemVQueues(List()); });
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp3"});
  Must(HashPut(G_Queues_hash, "lp2", MakeQueue({.name = "lp2", .address = "taken"})));
  TakeBackQueuesSetAside();
  EXPECT_EQ(Keys(G_Queues_hash), (Strings{"lp1", "lp2", "lp3"}));
  EXPECT_EQ(TextOrNull(HashValue<CPrintQueue>(G_Queues_hash, "lp2")->Address.get()), "taken");
  EXPECT_TRUE(WasSetAside("lp1"));
  EXPECT_FALSE(WasSetAside("lp2"));
  RemoveInexistentSystemVQueues(List());
  EXPECT_FALSE(WasSetAside("lp1")) << "each start begins anew";
}

TEST_F(Porting, APrinterDirectoryThatTheSystemDoesNotShowIsReported) {
  fs::remove_all(SpoolerStandIn::kPrinters);
  fs::create_symlink("printers", SpoolerStandIn::kPrinters);
  ErrorOutput([&] { EXPECT_EQ(GetQueueNamesSysV(nullptr, List()), nullptr); });
  EXPECT_EQ(Errors(), Strings{std::string("dir <") + SpoolerStandIn::kPrinters + ">"});
}

TEST_F(Porting, AQueueToBeRemovedWhoseScriptIsNotShownComesBackAndNothingIsRun) {
  AddOurs("lp1");
  HashRemove(G_Queues_hash, "lp1");
  fs::remove(spooler_.ScriptPath("lp1"));
  fs::create_symlink("lp1", spooler_.ScriptPath("lp1"));
  ErrorOutput([&] { EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1"}).get(), List()), 0); });
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
  EXPECT_EQ(spooler_.Calls(), Strings{});
}

TEST_F(Porting, WithoutQueuesThereIsNothingToPrune) {
  EXPECT_EQ(RemoveInexistentSystemVQueues(List()), 1);
  G_Queues_hash = nullptr;
  EXPECT_EQ(RemoveInexistentSystemVQueues(List()), 1);
}

// Removing.

TEST_F(Porting, TheRemovingCommandIsLpadminX) {
  EXPECT_EQ(DeleteQueueCommand("lp1"), "/usr/lib/lpadmin -x lp1 >/dev/null 2>&1");
}

TEST_F(Porting, RemovingAQueueRunsThatCommandAndDiscardsItsOutput) {
  spooler_.AddQueue("lp1", kMarker + "\n");
  EXPECT_EQ(ErrorOutput([&] { EXPECT_EQ(DeleteQueueSysV("lp1", List()), 1); }), "");
  EXPECT_EQ(spooler_.Calls(), Strings{"lpadmin -x lp1"});
  EXPECT_EQ(CommandRecords().back().command, DeleteQueueCommand("lp1"));
  EXPECT_EQ(CommandRecords().back().status, 0);
  EXPECT_FALSE(spooler_.HasQueue("lp1"));
}

TEST_F(Porting, ARemovalThatTheSpoolerRefusesIsReported) {
  spooler_.Fail("lpadmin");
  EXPECT_EQ(ErrorOutput([&] { EXPECT_EQ(DeleteQueueSysV("lp1", List()), 0); }),
            "command <lpadmin> <lp1>\n");
  EXPECT_EQ(Errors(), Strings{"command <lpadmin> <lp1>"});
  EXPECT_EQ(CommandRecords().back().status, 1);
}

TEST_F(Porting, ANameThatTheShellWouldReadNeverBecomesACommand) {
  for (const char *name :
       {"", "a;reboot", "a b", "$(x)", "../lp", "a\nb", "a\tb", "`x`", "a.b", "a?", "-x"}) {
    ErrorOutput([&] { EXPECT_EQ(DeleteQueueSysV(name, List()), 0) << name; });
    EXPECT_EQ(Errors().back(), std::string("name <") + name + ">");
  }
  ErrorOutput([&] { EXPECT_EQ(DeleteQueueSysV(nullptr, List()), 0); });
  EXPECT_EQ(spooler_.Calls(), Strings{});
}

TEST_F(Porting, NamesOfOtherCharactersCanStandInACommand) {
  for (const char *name : {"lp1", "x42lp", "My-Queue_2", "Drucker\xC3\xA4", "a+b"}) {
    EXPECT_TRUE(IsCommandSafeName(name)) << name;
  }
}

TEST_F(Porting, RemovingASetRemovesTheUsersOptionFilesToo) {
  AddOurs("lp1");
  HashRemove(G_Queues_hash, "lp1");
  for (const char *file : {"/anna:lp1.def", "/bob:lp1.def", "/anna:xlp1.def"}) {
    std::ofstream(std::string(kUsers) + file) << "*A=b\n";
  }
  EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1"}).get(), List()), 1);
  EXPECT_EQ(NamesIn(kUsers), Strings{"anna:xlp1.def"});
  fs::remove(std::string(kUsers) + "/anna:xlp1.def");
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
}

TEST_F(Porting, AQueueWithoutTheMarkerRunsNoSpoolerCommand) {
  spooler_.AddQueue("theirs", "#!/bin/sh\n");
  EXPECT_EQ(DeleteQueuesSysV(ListOf({"theirs", "never_saved"}).get(), List()), 1);
  EXPECT_EQ(spooler_.Calls(), Strings{});
  EXPECT_TRUE(spooler_.HasQueue("theirs"));
}

TEST_F(Porting, AFailedRemovalBringsTheQueueBackAsItWasAtStart) {
  AddOurs("lp1");
  AddOurs("lp2");
  Must(fSet_Address_Function(HashValue<CPrintQueue>(G_OrgQueues_hash, "lp1"), Text("old").get()));
  HashRemove(G_Queues_hash, "lp1");
  HashRemove(G_Queues_hash, "lp2");
  spooler_.Fail("lpadmin");
  std::ofstream(std::string(kUsers) + "/anna:lp1.def") << "*A=b\n";
  ErrorOutput([&] { EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1", "lp2"}).get(), List()), 0); });
  EXPECT_EQ(Keys(G_Queues_hash), (Strings{"lp1", "lp2"})) << "the loop goes on after a failure";
  const auto *restored = HashValue<CPrintQueue>(G_Queues_hash, "lp1");
  EXPECT_EQ(TextOrNull(restored->Address.get()), "old");
  EXPECT_NE(restored, HashFind(G_OrgQueues_hash, "lp1"));
  EXPECT_EQ(Errors(), (Strings{"command <lpadmin> <lp1>", "command <lpadmin> <lp2>"}));
  EXPECT_EQ(NamesIn(kUsers), Strings{"anna:lp1.def"});
  fs::remove(std::string(kUsers) + "/anna:lp1.def");
}

TEST_F(Porting, AFailedRemovalOfAQueueThatWasNotThereAtStartRestoresNothing) {
  spooler_.AddQueue("lp1", kMarker + "\n");
  spooler_.Fail("lpadmin");
  ErrorOutput([&] { EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1"}).get(), List()), 0); });
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
}

TEST_F(Porting, AQueueThatIsGoneAlreadyLosesItsUsersOptionFiles) {
  std::ofstream(std::string(kUsers) + "/anna:lp1.def") << "*A=b\n";
  EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1"}).get(), List()), 1);
  EXPECT_EQ(NamesIn(kUsers), Strings{});
  EXPECT_EQ(spooler_.Calls(), Strings{});
}

TEST_F(Porting, AnotherQueueOfThatNameKeepsItsUsersOptionFiles) {
  std::ofstream(std::string(SpoolerStandIn::kPrinters) + "/lp1");
  std::ofstream(std::string(kUsers) + "/anna:lp1.def") << "*A=b\n";
  EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1"}).get(), List()), 1);
  EXPECT_EQ(NamesIn(kUsers), Strings{"anna:lp1.def"});
  fs::remove(std::string(kUsers) + "/anna:lp1.def");
}

TEST_F(Porting, WhatIsLeftOfAQueueWhoseRemovalWasInterruptedIsRemoved) {
  std::ofstream(std::string(SpoolerStandIn::kPrinters) + "/lp1");
  std::ofstream(std::string(kUsers) + "/anna:lp1.def") << "*A=b\n";
  MarkIncompleteQueue("lp1");
  EXPECT_EQ(DeleteQueuesSysV(ListOf({"lp1"}).get(), List()), 1);
  ForgetIncompleteQueues();
  EXPECT_EQ(spooler_.Calls(), Strings{"lpadmin -x lp1"});
  EXPECT_EQ(NamesIn(kUsers), Strings{});
}

TEST_F(Porting, AQueueThatIsToStayIsNotPruned) {
  AddOurs("lp1");
  AddOurs("lp2");
  for (const char *name : {"lp1", "lp2"}) fs::remove(spooler_.ScriptPath(name));
  RemoveInexistentSystemVQueues(List(), [](const char *name, const QueueScript &script) {
    EXPECT_EQ(script.state, ScriptState::Gone);
    return std::string(name) == "lp2";
  });
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp2"});
}

TEST_F(Porting, AnEmptySetSucceedsANullOneFails) {
  EXPECT_EQ(DeleteQueuesSysV(CreateList().get(), List()), 1);
  EXPECT_EQ(DeleteQueuesSysV(nullptr, List()), 0);
}

// Running commands.

TEST(RunCommand, TellsTheExitStatusASignalAndKeepsARecord) {
  EXPECT_EQ(RunCommand("exit 0"), 0);
  EXPECT_EQ(RunCommand("exit 7"), 7);
  EXPECT_EQ(RunCommand("kill -TERM $$"), 128 + 15);
  const auto &records = CommandRecords();
  ASSERT_GE(records.size(), 2u);
  EXPECT_EQ(records[records.size() - 2].command, "exit 7");
  EXPECT_EQ(records[records.size() - 2].status, 7);
}

TEST(RunCommand, RunsACommandThatIsTooLongForAnArgument) {
  const TemporaryDirectory directory;
  // Around the limit, where the way changes, and far beyond it.
  for (const size_t size : {size_t{131000}, size_t{131070}, size_t{131071}, size_t{131072},
                            size_t{131073}, size_t{400000}}) {
    const std::string count = "set -- $words; echo $# >" + directory.Path("count") + "; exit 3";
    std::string words;
    while (words.size() + 10 + count.size() < size) words += "/a/b/c.ps ";
    std::string command = "words='" + words + "'; " + count;
    command.insert(7, size > command.size() ? size - command.size() : 0, ' ');
    EXPECT_EQ(RunCommand(command), 3) << size;
    EXPECT_EQ(ContentOf(directory.Path("count")), std::to_string(words.size() / 10) + "\n");
  }
}

TEST(RunCommand, ALongCommandKeepsStandardInput) {
  const std::string command = "read line; test \"$line\" = kept; exit $? # ";
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "kept\n", 5), 5);
  close(ends[1]);
  const int saved = dup(STDIN_FILENO);
  dup2(ends[0], STDIN_FILENO);
  close(ends[0]);
  EXPECT_EQ(RunCommand(command + std::string(200000, 'x')), 0);
  dup2(saved, STDIN_FILENO);
  close(saved);
}

TEST(BackgroundCommand, TellsWhatTheCommandWritesAndKeepsARecord) {
  BackgroundCommand command("echo a; echo b; exit 3");
  EXPECT_EQ(command.Output(), "a\nb\n");
  EXPECT_EQ(CommandRecords().back().status, 3);
  EXPECT_EQ(command.Output(), "");
  EXPECT_EQ(BackgroundCommand("/nowhere/program 2>/dev/null").Output(), "");
}

TEST(RunCommand, JoinsWordsByBlanks) {
  EXPECT_EQ(JoinWords({"a", "b c", "d"}), "a b c d");
  EXPECT_EQ(JoinWords({}), "");
}

}  // namespace
