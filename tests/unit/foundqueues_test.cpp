// What the spooler has at a start and the list does not say. Runs in the sandbox: the printers are
// those of the installation and the spooler is a stand-in.
#include "foundqueues.h"

#include <gtest/gtest.h>

#include "cprinters.h"
#include "dialogoptions.h"
#include "globals.h"
#include "interfacescript.h"
#include "must.h"
#include "paths.h"
#include "porting.h"
#include "queuelistwriter.h"
#include "queuesupport.h"
#include "spoolerstandin.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

const InterfaceBlock kBlock = {.queue_type = "text",
                               .ppd_path = "/opt/orlan/data/nls/deu/utf8/ppds/vek41101.ppd",
                               .def_path = "/opt/orlan/data/lp1.def",
                               .address = "10.0.0.1",
                               .transport_parameter = "110"};

std::string BridgeModel(const std::string &model) {
  return "#!/bin/sh\n# Interface script of the printer model " + model +
         ", copied for each queue.\n# End of the model\n";
}

class FoundQueues : public testing::Test {
 protected:
  FoundQueues() : messages_(kQueueMessages), queues_(CreateHash()) {
    G_Queues_hash = queues_.get();
    static const Owned<CPrinters> printers = [] {
      Owned<CPrinters> built =
          CreatePrinters("/opt/orlan/data/nls/enu/ppds", "/opt/orlan/data/nls/enu/pafs");
      Must(fBuildPrinters_Function(built.get()));
      return built;
    }();
    G_Printers_hash = fGetPrinters_Function(printers.get());
    fs::remove(kOptions);
  }
  ~FoundQueues() override {
    ForgetIncompleteQueues();
    G_Queues_hash = nullptr;
    G_Printers_hash = nullptr;
    fs::remove(kOptions);
  }

  // CompareWithSpooler; the bridge's spooler tells of `bridge_queues` when there are any.
  Strings Compare(const Strings &removed = {}) {
    const Owned<CList> names = ListOf(removed);
    const Owned<CList> messages = CreateList();
    testing::internal::CaptureStderr();
    CompareWithSpooler(names.get(), messages.get());
    EXPECT_EQ(SplitLines(testing::internal::GetCapturedStderr()), Texts(messages.get()));
    return Texts(messages.get());
  }

  // From now on the spooler bridge's spooler has these queues.
  static void PutBridgeSpooler(const Strings &queues) {
    std::string text = "#!/bin/sh\necho scheduler is running\necho device for other: socket://x\n";
    for (const std::string &name : queues) {
      text += "echo device for " + name + ": kpxlp:/interface\n";
    }
    fs::remove(kLpstat);
    std::ofstream(kLpstat) << text;
    fs::permissions(kLpstat, fs::perms(0755));
  }

  static constexpr char kOptions[] = "/opt/orlan/data/lp1.def";
  SpoolerStandIn spooler_;

 private:
  ProgramMessages messages_;
  Owned<CHash> queues_;
};

TEST(BridgeQueuesOf, TakesTheQueuesOfTheBridgeAlone) {
  EXPECT_EQ(BridgeQueuesOf("scheduler is running\ndevice for a: kpxlp:/interface\n"
                           "device for b: socket://host\ndevice for c: kpxlp:/interface\n"),
            (Strings{"a", "c"}));
  EXPECT_EQ(BridgeQueuesOf("scheduler is running\n"), Strings{});
}

TEST(BridgeQueuesOf, IsNothingWhenTheSchedulerDoesNotSayThatItIsRunning) {
  EXPECT_EQ(BridgeQueuesOf(""), std::nullopt);
  EXPECT_EQ(BridgeQueuesOf("scheduler is not running\n"), std::nullopt);
}

TEST(PatienceForOptions, GrowsWithTheQueues) {
  constexpr int kMinute = 60 * 1000;
  EXPECT_EQ(10 * kMinute, PatienceForOptions(0));
  EXPECT_LE(10000 * 3 * 1000, PatienceForOptions(10000)) << "three seconds a queue";
  EXPECT_LT(0, PatienceForOptions(~size_t{0}));
}

TEST_F(FoundQueues, AQueueOfOursThatTheListLacksIsTakenInWithWhatItsScriptSays) {
  spooler_.AddQueue("lp1", SpoolerStandIn::kModelScript + InterfaceBlockText(kBlock));
  EXPECT_EQ(Compare(), Strings{"found <lp1>"});
  ASSERT_EQ(Keys(G_Queues_hash), Strings{"lp1"});
  int left_out = 0;
  const Owned<CHash> expected = CreateHash();
  Must(HashPut(expected.get(), "lp1", MakeQueue({.language = "text"})));
  EXPECT_EQ(QueueListText(G_Queues_hash, &left_out), QueueListText(expected.get(), &left_out));
}

TEST_F(FoundQueues, QueuesWithOneCauseAreToldInOneLine) {
  std::vector<std::string> names;
  for (int number = 10; number < 31; ++number) {
    const std::string name = "q" + std::to_string(number);
    spooler_.AddQueue(name, SpoolerStandIn::kModelScript + InterfaceBlockText(kBlock));
    Must(HashPut(G_Queues_hash, ("cut" + name).c_str(), MakeQueue({.name = "cut" + name})));
    const std::string script = BridgeModel("vek4110") + InterfaceBlockText(kBlock);
    spooler_.AddQueue("cut" + name, script.substr(0, script.size() - 40));
    names.push_back(name);
  }
  std::string shown, cut;  // the first twenty
  for (int i = 0; i < 20; ++i) {
    shown += names[static_cast<size_t>(i)] + ", ";
    cut += "cut" + names[static_cast<size_t>(i)] + ", ";
  }
  EXPECT_EQ(Compare(),
            (Strings{"incomplete <21> <" + cut + "...>", "found <21> <" + shown + "...>"}));
}

TEST_F(FoundQueues, ItsOptionFileTellsItsSettings) {
  std::ofstream(kOptions) << "*PageSize=A4\n*OptionHCF=True\n*CustomPaperSize=Ticket''210''400\n"
                             "*CustomMediaType=Gloss::Glossy paper\n";
  spooler_.AddQueue("lp1", SpoolerStandIn::kModelScript + InterfaceBlockText(kBlock));
  Compare();
  int left_out = 0;
  const std::string list = QueueListText(G_Queues_hash, &left_out);
  EXPECT_NE(list.find("#options\n*PageSize\nA4\n#end_options\n"
                      "#installable_features\n*OptionHCF\nTrue\n#end_installable_features\n"),
            std::string::npos)
      << list;
  EXPECT_NE(list.find("Ticket\n#custom_paper_width\n210\n#custom_paper_length\n400\n"),
            std::string::npos);
  EXPECT_NE(list.find("Gloss\n#custom_paper_type_gui_name\nGlossy paper\n"), std::string::npos);
}

TEST_F(FoundQueues, TheModelOrTheTransportTellsThePrinterOfARawQueue) {
  InterfaceBlock block = kBlock;
  block.queue_type = "raw";
  block.transport_parameter = "120";
  spooler_.AddQueue("by_model", BridgeModel("vek4121") + InterfaceBlockText(block));
  spooler_.AddQueue("unknown", SpoolerStandIn::kModelScript + InterfaceBlockText(block));
  block.transport_parameter = "45";
  spooler_.AddQueue("by_transport", SpoolerStandIn::kModelScript + InterfaceBlockText(block));
  EXPECT_EQ(Compare(), (Strings{"found <2> <by_model, by_transport>",
                                "unknown <unknown> </usr/lib/lpadmin -x unknown>"}));
  EXPECT_EQ(TextOrNull(HashValue<CPrintQueue>(G_Queues_hash, "by_model")->PrinterName.get()),
            "Vek Norvel 4121");
  EXPECT_EQ(TextOrNull(HashValue<CPrintQueue>(G_Queues_hash, "by_transport")->PrinterName.get()),
            "Vek Norvel 4105");
}

TEST_F(FoundQueues, OneThatCannotBeUnderstoodIsToldWithTheCommandThatRemovesIt) {
  InterfaceBlock block = kBlock;
  block.ppd_path = "/opt/orlan/data/nls/enu/ppds/nosuch.ppd";
  spooler_.AddQueue("lp1", SpoolerStandIn::kModelScript + InterfaceBlockText(block));
  EXPECT_EQ(Compare(), Strings{"unknown <lp1> </usr/lib/lpadmin -x lp1>"});
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
}

TEST_F(FoundQueues, OthersQueuesAndThoseThatAreToGoAreLeftAlone) {
  spooler_.AddQueue("theirs", "#!/bin/sh\n");
  std::ofstream(std::string(SpoolerStandIn::kPrinters) + "/no_script");
  spooler_.AddQueue("going", SpoolerStandIn::kModelScript + InterfaceBlockText(kBlock));
  EXPECT_EQ(Compare({"going"}), Strings{});
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
}

TEST_F(FoundQueues, AQueueWhoseScriptIsCutIsIncomplete) {
  Must(HashPut(G_Queues_hash, "lp1", MakeQueue()));
  const std::string script = BridgeModel("vek4110") + InterfaceBlockText(kBlock);
  spooler_.AddQueue("lp1", script.substr(0, script.size() - 40));
  EXPECT_EQ(Compare(), Strings{"incomplete <lp1>"});
  EXPECT_TRUE(IsIncompleteQueue("lp1"));
  spooler_.AddQueue("lp1", script);
  EXPECT_EQ(Compare(), Strings{});
  EXPECT_FALSE(IsIncompleteQueue("lp1"));
}

TEST_F(FoundQueues, AQueueThatTheBridgesSpoolerLostIsIncomplete) {
  for (const char *name : {"lp1", "lp2", "lp3"}) {
    Must(HashPut(G_Queues_hash, name, MakeQueue({.name = name})));
  }
  spooler_.AddQueue("lp1", BridgeModel("vek4110") + InterfaceBlockText(kBlock));
  spooler_.AddQueue("lp2", BridgeModel("vek4110") + InterfaceBlockText(kBlock));
  spooler_.AddQueue("lp3", SpoolerStandIn::kModelScript + InterfaceBlockText(kBlock));
  EXPECT_EQ(Compare(), Strings{}) << "no answer says nothing";
  PutBridgeSpooler({"lp2"});
  EXPECT_EQ(Compare(), Strings{"incomplete <lp1>"});
}

TEST_F(FoundQueues, AQueueThatTheBridgesSpoolerHasWithoutAScriptIsIncompleteOrToldAsUnknown) {
  Must(HashPut(G_Queues_hash, "lp1", MakeQueue()));
  PutBridgeSpooler({"lp1", "lp2", "going"});
  EXPECT_EQ(Compare({"going"}),
            (Strings{"incomplete <lp1>", "unknown <lp2> </usr/lib/lpadmin -x lp2>"}));
  EXPECT_TRUE(IsIncompleteQueue("going"));
}

TEST_F(FoundQueues, WithoutAnUnfinishedSaveTheQueuesThatTheSpoolerHasNotAreDropped) {
  for (const char *name : {"lp1", "lp2"}) {
    Must(HashPut(G_Queues_hash, name, MakeQueue({.name = name})));
  }
  PutBridgeSpooler({"lp1"});
  const Owned<CList> messages = CreateList();
  CompareWithSpooler(nullptr, messages.get());
  EXPECT_EQ(Texts(messages.get()), Strings{"incomplete <lp1>"});
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"lp1"}) << "a save makes it anew";
}

TEST_F(FoundQueues, WhatABrokenRemovalOfTheBridgeLeftIsToldAsUnknown) {
  PutBridgeSpooler({});
  std::ofstream(std::string(SpoolerStandIn::kPrinters) + "/lp1") << "Device: /dev/null\nModel: x\n";
  std::ofstream(std::string(SpoolerStandIn::kPrinters) + "/lp2") << "of somebody else\n";
  EXPECT_EQ(Compare(), Strings{"unknown <lp1> </usr/lib/lpadmin -x lp1>"});
}

}  // namespace
