// Bringing the spooler in line with the working set.
#include "queuecreation.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "command.h"
#include "interfacescript.h"
#include "must.h"
#include "printermodels.h"
#include "queuesupport.h"
#include "spoolerstandin.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

TEST(PrinterModels, ANameThatBeginsWithADisplayNameIsOfThatModel) {
  const struct {
    const char *name, *model, *ppd, *parameter;
  } rows[] = {
      {"Vek Norvel 4120ES", "vek4120", "vek41201.ppd", "120"},
      {"Vek Norvel 4120ES with more text", "vek4120", "vek41201.ppd", "120"},
      {"Vek Norvel 4110ES", "vek4110", "vek41101.ppd", "110"},
      {"Vek Norvel 4105", "vek4105", "vek41051.ppd", "45"},
      {"Vek Norvel 4121", "vek4121", "vek41211.ppd", "120"},
      {"Vek Norvel 4100ES", "vek4100", "vek41001.ppd", "100"},
      {"Vek Norvel 4102ES", "vek4102", "vek41021.ppd", "102"},
  };
  for (const auto &row : rows) {
    const PrinterModel &model = FindPrinterModel(row.name);
    EXPECT_STREQ(model.spooler_model, row.model) << row.name;
    EXPECT_STREQ(model.ppd_file, row.ppd) << row.name;
    EXPECT_STREQ(model.transport_parameter, row.parameter) << row.name;
  }
}

TEST(PrinterModels, AnyOtherNameIsUnknown) {
  for (const char *name : {"", "Vek Norvel 4120", "vek norvel 4105", "Another Vek Norvel 4105"}) {
    const PrinterModel &model = FindPrinterModel(name);
    EXPECT_STREQ(model.spooler_model, "Unknown_printer") << name;
    EXPECT_EQ(model.ppd_file, nullptr);
    EXPECT_EQ(model.transport_parameter, nullptr);
    EXPECT_EQ(model.number, 0);
  }
}

TEST(CreateQueueCommands, AreTheSixInTheirOrder) {
  Strings commands;
  Strings names;
  for (const SpoolerCommand &step : CreateQueueCommands("lp1", "vek4105")) {
    commands.push_back(step.command);
    names.push_back(step.reported_name);
  }
  const std::string script = "/usr/spool/lp/admins/lp/interfaces/lp1";
  EXPECT_EQ(commands, (Strings{"/usr/lib/lpadmin -p lp1 -v /dev/null -I any -o nobanner -m vek4105 "
                               ">/dev/null 2>&1",
                               "/bin/chmod 755 " + script + " >/dev/null 2>&1",
                               "/bin/chgrp bin " + script + " >/dev/null 2>&1",
                               "/bin/chown lp " + script + " >/dev/null 2>&1",
                               "/usr/bin/accept lp1 >/dev/null 2>&1",
                               "/usr/bin/enable lp1 >/dev/null 2>&1"}));
  EXPECT_EQ(names, (Strings{"lpadmin", "/bin/chmod", "/bin/chgrp", "/bin/chown", "/usr/bin/accept",
                            "/usr/bin/enable"}));
}

class QueueCreation : public testing::Test {
 protected:
  QueueCreation() : messages_(kQueueMessages), queues_(CreateHash()), original_(CreateHash()) {
    setenv("LANG", "C", 1);
    G_Queues_hash = queues_.get();
    G_OrgQueues_hash = original_.get();
  }
  ~QueueCreation() override {
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
  }

  void Put(const QueueValues &values) {
    Must(HashPut(G_Queues_hash, values.name.c_str(), MakeQueue(values)));
  }

  CPrintQueue *Queue(const char *name) { return HashValue<CPrintQueue>(G_Queues_hash, name); }

  // The queue is in the spooler and in the snapshot with `old_address`.
  void PutExisting(const std::string &script, const std::string &old_address,
                   const std::string &new_address) {
    spooler_.AddQueue("lp1", script);
    Must(HashPut(G_OrgQueues_hash, "lp1", MakeQueue({.address = old_address})));
    Put({.address = new_address});
  }

  // AddQueuesSysV; what it prints must be what the error list gets.
  int Add() {
    const size_t before = Errors().size();
    testing::internal::CaptureStderr();
    const int result = AddQueuesSysV(errors_.get());
    const Strings all = Errors();
    EXPECT_EQ(SplitLines(testing::internal::GetCapturedStderr()),
              Strings(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()));
    return result;
  }

  Strings Errors() const { return Texts(errors_.get()); }

  // The script of a queue that was made from the model.
  static std::string ScriptWith(const InterfaceBlock &block) {
    return SpoolerStandIn::kModelScript + InterfaceBlockText(block);
  }

  static constexpr char kOurScript[] =
      "# the following lines are inserted by KPXadmin\nNETWORK_ADDRESS=old\n";

  SpoolerStandIn spooler_;

 private:
  ProgramMessages messages_;
  Owned<CHash> queues_;
  Owned<CHash> original_;
  Owned<CList> errors_ = CreateList();
};

TEST_F(QueueCreation, ANewQueueIsMadeAcceptedEnabledAndGetsItsBlock) {
  Put({.name = "lp1"});
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(Errors(), Strings{});
  EXPECT_EQ(spooler_.Calls(), (Strings{"lpadmin -p lp1 -v /dev/null -I any -o nobanner -m vek4110",
                                       "accept lp1", "enable lp1"}));
  EXPECT_EQ(spooler_.Script("lp1"),
            ScriptWith({.queue_type = "postscript",
                        .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41101.ppd",
                        .def_path = "/opt/orlan/data/lp1.def",
                        .address = "10.0.0.1",
                        .transport_parameter = "110"}));
  EXPECT_EQ(ModeOf(spooler_.ScriptPath("lp1")), 0755u);
}

TEST_F(QueueCreation, AQueueMadeOnceIsNotMadeAgain) {
  Put({.name = "lp1"});
  ASSERT_EQ(Add(), 1);
  const std::string script = spooler_.Script("lp1");
  const size_t calls = spooler_.Calls().size();
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(spooler_.Calls().size(), calls);
  EXPECT_EQ(spooler_.Script("lp1"), script);
}

TEST_F(QueueCreation, ThePpdIsThatOfTheLanguageOfTheLocale) {
  setenv("LANG", "de_DE.UTF-8", 1);
  Put({.name = "lp1"});
  EXPECT_EQ(Add(), 1);
  EXPECT_NE(spooler_.Script("lp1").find("/opt/orlan/data/nls/deu/utf8/ppds/vek41101.ppd \\\n"),
            std::string::npos);
}

TEST_F(QueueCreation, TheOptionFileIsNamedAfterTheQueueNotAfterItsDefFile) {
  Put({.name = "lp1"});
  Queue("lp1")->DefFile = Text("other.def");
  EXPECT_EQ(Add(), 1);
  EXPECT_NE(spooler_.Script("lp1").find("--deffile /opt/orlan/data/lp1.def <"), std::string::npos);
}

TEST_F(QueueCreation, ARawQueueGetsNoFilterButTheTransport) {
  Put({.name = "lp1", .language = "raw"});
  EXPECT_EQ(Add(), 1);
  const std::string script = spooler_.Script("lp1");
  EXPECT_NE(script.find("  ${CAT} \"$1\"\n"), std::string::npos);
  EXPECT_EQ(script.find("kpxfilter"), std::string::npos);
  EXPECT_NE(script.find("} | /opt/orlan/bin/kpxnbtrans $NETWORK_ADDRESS 2501 110\n"),
            std::string::npos);
}

TEST_F(QueueCreation, AnUnknownPrinterTakesTheValuesOfTheQueueBeforeIt) {
  Put({.name = "a_unknown", .printer = "Another"});
  Put({.name = "b_known", .printer = "Vek Norvel 4105"});
  Put({.name = "c_unknown", .printer = "Another"});
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(spooler_.Calls().front(),
            "lpadmin -p a_unknown -v /dev/null -I any -o nobanner -m Unknown_printer");
  const auto script_of = [&](const std::string &name, const char *ppd, const char *parameter) {
    return ScriptWith({.queue_type = "postscript",
                       .ppd_path = ppd,
                       .def_path = "/opt/orlan/data/" + name + ".def",
                       .address = "10.0.0.1",
                       .transport_parameter = parameter});
  };
  constexpr char ppd[] = "/opt/orlan/data/nls/enu/ppds/vek41051.ppd";
  EXPECT_EQ(spooler_.Script("a_unknown"), script_of("a_unknown", "", ""));
  EXPECT_EQ(spooler_.Script("b_known"), script_of("b_known", ppd, "45"));
  EXPECT_EQ(spooler_.Script("c_unknown"), script_of("c_unknown", ppd, "45"));
}

TEST_F(QueueCreation, AQueueThatLpadminRefusesIsDroppedAndTheNextOnesGoOn) {
  Put({.name = "lp1"});
  Put({.name = "lp2"});
  spooler_.Fail("lpadmin");
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
  EXPECT_EQ(Errors(), (Strings{"command <lpadmin> <lp1>", "command <lpadmin> <lp2>"}));
  EXPECT_EQ(spooler_.Calls().size(), 2u) << "nothing is tried after lpadmin";
  EXPECT_EQ(NamesIn(SpoolerStandIn::kInterfaces), Strings{});
}

TEST_F(QueueCreation, AFailedAcceptOrEnableIsReportedOnly) {
  Put({.name = "lp1"});
  spooler_.Fail("accept");
  spooler_.Fail("enable");
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(Errors(),
            (Strings{"command </usr/bin/accept> <lp1>", "command </usr/bin/enable> <lp1>"}));
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
  EXPECT_NE(spooler_.Script("lp1").find("NETWORK_ADDRESS=10.0.0.1\n"), std::string::npos);
}

TEST_F(QueueCreation, AFailedChmodChgrpAndChownAreReportedOnly) {
  Put({.name = "lp1"});
  spooler_.MakeNoScripts();
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(Errors(), (Strings{"command </bin/chmod> <lp1>", "command </bin/chgrp> <lp1>",
                               "command </bin/chown> <lp1>"}));
  EXPECT_EQ(spooler_.Calls().size(), 3u) << "the sequence goes on";
}

TEST_F(QueueCreation, AScriptThatCannotBeAppendedToFailsAndTheQueueStays) {
  Put({.name = "lp1"});
  spooler_.MakeNoScripts();
  fs::create_directory(spooler_.ScriptPath("lp1"));
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(Errors(), (Strings{"read <" + spooler_.ScriptPath("lp1") + ">",
                               "write <" + spooler_.ScriptPath("lp1") + ">"}));
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
}

TEST_F(QueueCreation, AnIncompleteRecordIsReportedAndTheNextOnesGoOn) {
  Put({.name = "a"});
  Queue("a")->PrinterName.reset();
  Put({.name = "b"});
  Queue("b")->Language.reset();
  Put({.name = "c"});
  Queue("c")->Address.reset();
  Must(HashPut(G_Queues_hash, "d", Owned<CPrintQueue>()));
  Put({.name = "e"});
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(Errors(), (Strings{"unexpected2 <CPrintQueue>", "unexpected2 <CPrintQueue>",
                               "unexpected2 <CPrintQueue>", "unexpected2 <CPrintQueues>"}));
  EXPECT_EQ(NamesIn(SpoolerStandIn::kPrinters), Strings{"e"});
}

TEST_F(QueueCreation, WithoutAWorkingSetThereIsNoKeyList) {
  G_Queues_hash = nullptr;
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(Errors(), Strings{"unexpected2 <CHash>"});
}

TEST_F(QueueCreation, ANameThatTheShellWouldReadNeverBecomesACommand) {
  const size_t commands = CommandRecords().size();
  Put({.name = "a; touch x"});
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(Errors(), Strings{"name <a; touch x>"});
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
  EXPECT_EQ(CommandRecords().size(), commands);
}

// Addresses of existing queues.

TEST_F(QueueCreation, AChangedAddressOfAnExistingQueueIsRewrittenAndNothingElse) {
  PutExisting(std::string("#!/bin/sh\nNETWORK_ADDRESS=old\n") + kOurScript + "tail", "old", "new");
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(spooler_.Script("lp1"),
            "#!/bin/sh\nNETWORK_ADDRESS=new\n"
            "# the following lines are inserted by KPXadmin\nNETWORK_ADDRESS=new\ntail");
  EXPECT_EQ(TextOrNull(Queue("lp1")->Address.get()), "new");
  EXPECT_EQ(spooler_.Calls(), Strings{});
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(QueueCreation, AnAddressThatTheScriptSetsAlreadyTouchesNothing) {
  PutExisting(kOurScript, "old", "old");
  const size_t commands = CommandRecords().size();
  EXPECT_EQ(Add(), 1);
  HashRemove(G_OrgQueues_hash, "lp1");
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(spooler_.Script("lp1"), kOurScript);
  EXPECT_EQ(CommandRecords().size(), commands);
}

// As an interrupted save leaves it.
TEST_F(QueueCreation, AScriptThatSetsAnotherAddressThanTheQueueIsRewrittenWhateverTheSnapshotSays) {
  PutExisting(kOurScript, "same", "same");
  EXPECT_EQ(Add(), 1);
  EXPECT_NE(spooler_.Script("lp1").find("\nNETWORK_ADDRESS=same\n"), std::string::npos);
  HashRemove(G_OrgQueues_hash, "lp1");
  Queue("lp1")->Address = Text("next");
  EXPECT_EQ(Add(), 1);
  EXPECT_NE(spooler_.Script("lp1").find("\nNETWORK_ADDRESS=next\n"), std::string::npos);
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(QueueCreation, WhatCannotBeRewrittenGivesTheRecordTheScriptsOwnAddress) {
  PutExisting(kOurScript, "same", "same");
  fs::create_directory(spooler_.ScriptPath("lp1") + ".KPXadmin");
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(TextOrNull(Queue("lp1")->Address.get()), "old");
}

TEST_F(QueueCreation, AScriptWithoutAddressLineGivesTheRecordItsOldAddressBack) {
  const char script[] = "# the following lines are inserted by KPXadmin\n";
  PutExisting(script, "old", "new");
  const Owned<CList> errors = CreateList();
  testing::internal::CaptureStderr();
  EXPECT_EQ(AddQueuesSysV(errors.get()), 1) << "the result is not changed by this";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "address <lp1>\n");
  EXPECT_EQ(Texts(errors.get()), Strings{}) << "nor does the save stop for it";
  EXPECT_EQ(spooler_.Script("lp1"), script);
  EXPECT_EQ(TextOrNull(Queue("lp1")->Address.get()), "old");
}

TEST_F(QueueCreation, AFailedAddressChangeGivesTheRecordItsOldAddressBack) {
  PutExisting(kOurScript, "old", "new");
  fs::create_directory(spooler_.ScriptPath("lp1") + ".KPXadmin");
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(Errors(), Strings{"read <" + spooler_.ScriptPath("lp1") + ".KPXadmin>"});
  EXPECT_EQ(TextOrNull(Queue("lp1")->Address.get()), "old");
}

TEST_F(QueueCreation, AScriptThatCannotBeReplacedIsToldAndGivesTheRecordItsOldAddressBack) {
  PutExisting(kOurScript, "old", "new");
  const std::string script = spooler_.ScriptPath("lp1");
  // What is mounted cannot be renamed over.
  ASSERT_EQ(mount(script.c_str(), script.c_str(), nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(Add(), 1);
  umount(script.c_str());
  EXPECT_EQ(Errors(), Strings{"address <lp1>"});
  EXPECT_EQ(spooler_.Script("lp1"), kOurScript);
  EXPECT_EQ(TextOrNull(Queue("lp1")->Address.get()), "old");
  EXPECT_EQ(NamesIn(SpoolerStandIn::kInterfaces), Strings{"lp1"});
}

TEST_F(QueueCreation, NoCommandIsRunForAQueueWhoseScriptTheSystemDoesNotShow) {
  Put({.name = "lp1"});
  fs::create_symlink("lp1", spooler_.ScriptPath("lp1"));  // ELOOP
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(Errors(), Strings{"read <" + spooler_.ScriptPath("lp1") + ">"});
  EXPECT_EQ(spooler_.Calls(), Strings{});
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
}

// A queue that the spooler has in part.

TEST_F(QueueCreation, AnIncompleteQueueIsMadeAnew) {
  PutExisting(kOurScript, "10.0.0.1", "10.0.0.1");
  MarkIncompleteQueue("lp1");
  EXPECT_EQ(Add(), 1);
  ForgetIncompleteQueues();
  EXPECT_EQ(spooler_.Calls(), (Strings{"lpadmin -p lp1 -v /dev/null -I any -o nobanner -m vek4110",
                                       "accept lp1", "enable lp1"}));
  EXPECT_TRUE(spooler_.Script("lp1").starts_with(SpoolerStandIn::kModelScript));
  EXPECT_NE(spooler_.Script("lp1").find("NETWORK_ADDRESS=10.0.0.1\n"), std::string::npos);
}

TEST_F(QueueCreation, AnIncompleteQueueThatCannotBeMadeStaysInTheWorkingSet) {
  PutExisting(kOurScript, "10.0.0.1", "10.0.0.1");
  MarkIncompleteQueue("lp1");
  spooler_.Fail("lpadmin");
  EXPECT_EQ(Add(), 0);
  ForgetIncompleteQueues();
  EXPECT_EQ(Errors(), Strings{"command <lpadmin> <lp1>"});
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
}

TEST_F(QueueCreation, OtherSettingsOfAnExistingQueueNeverReachTheSpooler) {
  PutExisting(kOurScript, "old", "old");
  Queue("lp1")->Language = Text("raw");
  Queue("lp1")->PrinterName = Text("Vek Norvel 4105");
  EXPECT_EQ(Add(), 1);
  EXPECT_EQ(spooler_.Script("lp1"), kOurScript);
  EXPECT_EQ(spooler_.Calls(), Strings{});
}

}  // namespace
