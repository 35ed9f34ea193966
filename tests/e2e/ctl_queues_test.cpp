// kpxctl list, show, options, add, set, clone, rename, delete: queues of the real spooler.
#include <fstream>

#include "ctltest.h"
#include "queuelistkeep.h"

namespace {

using Strings = std::vector<std::string>;

class CtlQueues : public CtlTest {};

std::string Row(const std::string &name, const std::string &address) {
  return name + "  " + kFinisherPrinter + "  PostScript  " + address + "\n";
}

std::string Added(const std::string &name, const std::string &settings = "") {
  return "+ " + name + settings + "  address=127.0.0.1  printer=" + kFinisherPrinter +
         "  type=postscript\n";
}

// The words of one setting in the answer of `options`.
nlohmann::json OptionIn(const nlohmann::json &options, const std::string &key) {
  for (const auto &option : options) {
    if (option["key"] == key) return option;
  }
  throw std::runtime_error("no option " + key);
}

std::string ReasonOf(const nlohmann::json &option, const std::string &value) {
  for (const auto &choice : option["choices"]) {
    if (choice["value"] == value) return choice.value("conflict", "");
  }
  throw std::runtime_error("no choice " + value);
}

TEST_F(CtlQueues, AreAddedListedShownAndDeleted) {
  Expect({"list"}, CatalogueText("CTL_QUEUE_NONE") + "\n");
  Expect({"add", "acc1", "--printer", kFinisherPrinter, "--address", "127.0.0.1",
          "Duplex=DuplexTumble"},
         Added("acc1", "  Duplex=DuplexTumble"));
  EXPECT_EQ(Strings{"acc1"}, SpoolerQueues());
  EXPECT_EQ("*Duplex=DuplexTumble\n", Def("acc1"));
  Expect({"list"}, Row("acc1", "127.0.0.1"));
  const nlohmann::json shown = JsonOf({"show", "acc1"});
  EXPECT_EQ(nlohmann::json::parse(R"([{"name": "acc1", "printer": "Vek Norvel 4120ES",
      "type": "postscript", "address": "127.0.0.1", "options": {"Duplex": "DuplexTumble"}}])"),
            shown);
  Expect({"delete", "acc1"}, "- acc1\n");
  EXPECT_EQ(Strings{}, SpoolerQueues());
  Expect({"list", "--json"}, "[]\n");
}

TEST_F(CtlQueues, AreLookedAtByEveryUserAndChangedByTheSuperuserAlone) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "not root";
  AddQueue("acc1");
  EXPECT_EQ(Row("acc1", "127.0.0.1"), RunProgram({"/usr/sbin/kpxctl", "list"}, "", "anna").output);
  for (const Strings &words : {Strings{"/usr/sbin/kpxctl", "set", "acc1", "Duplex=DuplexTumble"},
                               {"/usr/sbin/kpxctl", "delete", "acc1"}}) {
    const CommandResult refused = RunProgram(words, "", "anna");
    EXPECT_EQ(1, refused.status);
    EXPECT_EQ("kpxctl: " + CatalogueText("CTL_NOT_ROOT") + "\n", refused.output);
  }
  EXPECT_EQ(Strings{"acc1"}, SpoolerQueues());
}

TEST_F(CtlQueues, WithUnknownNamesAndWrongWordsChangeNothing) {
  AddQueue("acc1");
  ExpectRefused({"set", "acc9", "Duplex=None"}, 1, CatalogueText("CTL_QUEUE_UNKNOWN", {"acc9"}));
  ExpectRefused({"set", "acc1", "Dupl=None"}, 1,
                "acc1: " + CatalogueText("CTL_KEY_UNKNOWN", {"Dupl", "acc1", "acc1"}));
  ExpectRefused(
      {"set", "acc1", "Duplex=Tumble"}, 1,
      "acc1: " + CatalogueText("CTL_CHOICE_UNKNOWN",
                               {"Duplex", "Tumble", "DuplexNoTumble, DuplexTumble, None"}));
  ExpectRefused({"set", "acc1", "address=10.0.0.1 10.0.0.2"}, 1,
                "acc1: " + CatalogueText("CTL_VALUE_BAD", {"address", "10.0.0.1 10.0.0.2"}));
  ExpectRefused({"set", "acc1", "address=~s/(/x/"}, 2,
                CatalogueText("CTL_SUBSTITUTION_BAD", {"address=~s/(/x/"}));
  ExpectRefused({"set", "Duplex=None"}, 2, CatalogueText("CTL_WORD_MISSING", {"QUEUE"}));
  ExpectRefused({"list", "--where", "address"}, 2, CatalogueText("CTL_WHERE_BAD", {"address"}));
  ExpectRefused({"add", "acc1", "--printer", kFinisherPrinter, "--address", "127.0.0.1"}, 1,
                CatalogueText("CTL_QUEUE_TAKEN", {"acc1"}));
  ExpectRefused({"add", "a;b", "--printer", kFinisherPrinter, "--address", "127.0.0.1"}, 1,
                CatalogueText("ERR_QUEUE_NAME", {"a;b"}));
  ExpectRefused({"add", "acc2", "--printer", kFinisherPrinter}, 2,
                CatalogueText("CTL_WORD_MISSING", {"--address"}));
  EXPECT_EQ(1, Kpxctl({"add", "acc2", "--printer", "Vek", "--address", "127.0.0.1"}).status);
  EXPECT_EQ("", Def("acc1"));
  EXPECT_EQ(Strings{"acc1"}, SpoolerQueues());
}

TEST_F(CtlQueues, AreChangedByPatternConditionAndSubstitution) {
  for (const char *name : {"acc1", "acc2", "lab1"}) AddQueue(name);
  const Strings change = {"set", "acc*", "address=~s/^127\\.0\\.0\\./127.0.9./"};
  const std::string plan =
      "~ acc1  address: 127.0.0.1 -> 127.0.9.1\n~ acc2  address: 127.0.0.1 -> 127.0.9.1\n";
  Strings dry_run = change;
  dry_run.emplace_back("--dry-run");
  Expect(dry_run, CatalogueText("CTL_DRY_RUN") + "\n" + plan);
  Expect({"list", "--where", "address=127.0.9.*"}, CatalogueText("CTL_QUEUE_NO_MATCH") + "\n");
  Expect(change, plan);
  Expect(change, CatalogueText("CTL_NOTHING_TO_DO") + "\n");
  Expect({"list", "--where", "address=127.0.9.*"},
         Row("acc1", "127.0.9.1") + Row("acc2", "127.0.9.1"));
  EXPECT_NE(ContentOf(std::string(kBridgeInterfaces) + "/acc2").find("NETWORK_ADDRESS=127.0.9.1\n"),
            std::string::npos);
  Expect(
      {"set", "--where", "printer=Vek*ES", "--where", "address=127.0.0.*", "Duplex=DuplexTumble"},
      "~ lab1  Duplex: None -> DuplexTumble\n");
  Expect({"delete", "--where", "Duplex=DuplexTumble"}, "- lab1\n");
  EXPECT_EQ((Strings{"acc1", "acc2"}), SpoolerQueues());
}

TEST_F(CtlQueues, RefuseChoicesThatCannotBeCombinedUnlessOneMayBeSetBack) {
  AddQueue("acc1");
  const nlohmann::json options = JsonOf({"options", "acc1"});
  const std::string reason = ReasonOf(OptionIn(options, "InputSlot"), "HCF");
  ASSERT_NE("", reason);
  EXPECT_EQ("", ReasonOf(OptionIn(options, "InputSlot"), "Tray1"));
  ExpectRefused({"set", "acc1", "InputSlot=HCF"}, 3,
                CatalogueText("CTL_CONFLICT", {"acc1", reason}));
  EXPECT_EQ("", Def("acc1"));
  // What can be had is set, and of the two that conflict the hardware stays as it is.
  Expect({"set", "acc1", "InputSlot=HCF", "Duplex=DuplexTumble", "--resolve"},
         "~ acc1  Duplex: None -> DuplexTumble\n");
  Expect({"set", "acc1", "InputSlot=HCF", "OptionHCF=True"},
         "~ acc1  InputSlot: AutoSelect -> HCF\n~ acc1  OptionHCF: False -> True\n");
  EXPECT_EQ("*Duplex=DuplexTumble\n*InputSlot=HCF\n*OptionHCF=True\n", Def("acc1"));
}

TEST_F(CtlQueues, HaveTextsFontsPagesAndSizesOfTheirOwn) {
  AddQueue("acc1", {"--type", "text"});
  Must({"set", "acc1", "FontSize=10", "FontName=Helvetica-Bold", "Nup=4", "NupOrder=Down",
        "paper/Ticket=110x210mm", "PageSize=Ticket", "media/Silk=Silk", "MediaType=Silk",
        "JobName=Monthly report", "UserName=accounts", "Delivery=HoldJobUntilYouEnterPIN",
        "DeliveryPIN=4711", "EmailNotification=JobFailed", "EmailAddress=anna@example.com",
        "EmailMessage=Done"});
  EXPECT_EQ(
      "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=4711\n*EmailAddress=anna@example.com\n"
      "*EmailMessage=Done\n*EmailNotification=JobFailed\n*FontName=Helvetica-Bold\n*FontSize=10\n"
      "*JobName=Monthly report\n*MediaType=Silk\n*Nup=4\n*NupOrder=Down\n*PageSize=Ticket\n"
      "*UserName=accounts\n*CustomPaperSize=Ticket''312''595\n*CustomMediaType=Silk::Silk\n",
      Def("acc1"));
  const std::string shown = Kpxctl({"show", "acc1"}).output;
  EXPECT_NE(shown.find("\n  paper/Ticket=312x595pt\n"), std::string::npos) << shown;
  EXPECT_EQ(shown.find("4711"), std::string::npos) << shown;
  // The paper in use goes, and the printer's default comes in its place.
  Must({"set", "acc1", "paper/Ticket=", "Nup=", "UserName="});
  const std::string def = Def("acc1");
  for (const char *gone : {"Ticket", "*PageSize", "*UserName", "*NupOrder=Down", "*Nup=4"}) {
    EXPECT_EQ(def.find(gone), std::string::npos) << gone << " in\n" << def;
  }
}

TEST_F(CtlQueues, RefuseValuesThatTheWindowsDoNotTake) {
  AddQueue("acc1", {"--type", "text"});
  for (const char *word :
       {"FontSize=3", "FontSize=73", "FontSize=x", "FontName=Comic", "Nup=3", "DeliveryPIN=47115",
        "DeliveryPIN=abcd", "EmailAddress=anna", "JobName=a'b", "UserName=seventeenletters1",
        "paper/Ticket=1x1mm", "paper/Ticket=axb", "paper/A4=110x210mm", "paper/a-b=110x210mm",
        "media/Plain=Plain", "Delivery=HoldJobUntilYouEnterPIN", "EmailNotification=JobFailed"}) {
    const CommandResult refused = Kpxctl({"set", "acc1", word});
    EXPECT_EQ(1, refused.status) << word << "\n" << refused.output;
    EXPECT_TRUE(refused.output.starts_with("kpxctl: acc1: ")) << word << "\n" << refused.output;
  }
  EXPECT_EQ("", Def("acc1"));
  AddQueue("ps1");
  ExpectRefused({"set", "ps1", "Nup=2"}, 1,
                "ps1: " + CatalogueText("CTL_KEY_OTHER_QUEUES", {"Nup", "ps1"}));
}

TEST_F(CtlQueues, AreClonedAndRenamedWithTheirUsersSettings) {
  AddQueue("acc1", {"Duplex=DuplexTumble"});
  Expect({"clone", "acc1", "acc2", "address=127.0.0.2"},
         "+ acc2  Duplex=DuplexTumble  address=127.0.0.2  printer=Vek Norvel 4120ES  "
         "type=postscript\n");
  Must({"clone", "acc1"});
  EXPECT_EQ((Strings{"CopyOf_acc1", "acc1", "acc2"}), SpoolerQueues());
  const std::string users = std::string(kUsersDir) + "/root:";
  std::ofstream(users + "acc2.def") << "*Duplex=None\n";
  Must({"rename", "acc2", "accounts"});
  EXPECT_EQ((Strings{"CopyOf_acc1", "acc1", "accounts"}), SpoolerQueues());
  EXPECT_EQ("*Duplex=DuplexTumble\n", Def("accounts"));
  EXPECT_EQ("*Duplex=None\n", ContentOf(users + "accounts.def"));
  EXPECT_FALSE(std::filesystem::exists(users + "acc2.def"));
  EXPECT_FALSE(std::filesystem::exists(std::string(kDataDir) + "/acc2.def"));
  ExpectRefused({"rename", "acc1", "accounts"}, 1, CatalogueText("CTL_QUEUE_TAKEN", {"accounts"}));
}

TEST_F(CtlQueues, AreLeftToTheAdministratorWhoHoldsTheLock) {
  AddQueue("acc1");
  const ChildResult result = RunInChild([] {
    if (LockQueueList(kQueuesFile) != 1) _exit(9);
    const CommandResult refused = Kpxctl({"delete", "acc1"});
    const std::string process = "process " + std::to_string(getpid()) + ",";
    PrintErrorLine(refused.output);
    if (refused.status != 3) _exit(8);
    if (refused.output.find(process) == std::string::npos) _exit(7);
    if (refused.output.find("root") == std::string::npos) _exit(6);
    // Looking is not changing.
    _exit(Kpxctl({"list"}).status + Kpxctl({"delete", "acc1", "--dry-run"}).status);
  });
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_EQ(Strings{"acc1"}, SpoolerQueues());
}

}  // namespace
