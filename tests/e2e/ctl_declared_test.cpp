// kpxctl export, diff, apply, import, undo, users: queues as files declare them.
#include <pwd.h>

#include <fstream>

#include "ctltest.h"
#include "queuelistkeep.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kStates[] = "/opt/orlan/states";

// Two groups, three queues.
constexpr char kSite[] = R"({
  "defaults": {"printer": "Vek Norvel 4120ES", "options": {"Duplex": "DuplexNoTumble"}},
  "groups": {
    "accounts": {"options": {"OptionHCF": true, "InputSlot": "HCF"}},
    "text": {"type": "text", "options": {"Duplex": null, "FontSize": 10}}
  },
  "queues": {
    "acc1": {"group": "accounts", "address": "127.0.0.1"},
    "acc2": {"group": "accounts", "address": "127.0.0.2",
             "papers": {"Ticket": {"width": 312, "length": 595}}, "options": {"PageSize": "Ticket", "Duplex": null, "InputSlot": null}},
    "list1": {"group": ["accounts", "text"], "address": "127.0.0.3", "media": {"Silk": "Silk"}}
  }
})";

class CtlDeclared : public CtlTest {
 protected:
  CtlDeclared() { std::filesystem::remove_all(kStates); }

  std::string Write(const std::string &text, const std::string &name = "site.json") const {
    return directory_.Write(name, text);
  }
  static nlohmann::json Host() {
    return nlohmann::json::parse(Kpxctl({"export", "--users"}).output);
  }
  // Every file of the host's queues, the states of before among them.
  static std::map<std::string, std::string> HostFiles() {
    std::map<std::string, std::string> files;
    for (const char *root : {kDataDir, kStates, "/usr/spool/lp/admins/lp"}) {
      for (const auto &entry : std::filesystem::recursive_directory_iterator(root)) {
        if (entry.is_regular_file()) files[entry.path()] = ContentOf(entry.path());
      }
    }
    return files;
  }
  static std::string Nothing() { return CatalogueText("CTL_NOTHING_TO_DO") + "\n"; }

  // Expects the complaint about that line of the file.
  void ExpectFault(const std::string &text, int line, const std::string &reason, int status = 1) {
    const std::string path = Write(text);
    for (const char *command : {"apply", "diff", "import"}) {
      if (status != 1 && std::string(command) == "import") continue;
      ExpectRefused({command, path}, status, path + ":" + std::to_string(line) + ": " + reason);
    }
  }

 private:
  TemporaryDirectory directory_;
};

TEST_F(CtlDeclared, AreMadeWhatTheFileSaysOnceAndForAll) {
  const std::string file = Write(kSite);
  const CommandResult differs = Kpxctl({"diff", file});
  EXPECT_EQ(4, differs.status);
  EXPECT_EQ(3, std::count(differs.output.begin(), differs.output.end(), '+')) << differs.output;
  EXPECT_EQ(Strings{}, SpoolerQueues());
  Expect({"apply", file}, differs.output);
  EXPECT_EQ((Strings{"acc1", "acc2", "list1"}), SpoolerQueues());
  EXPECT_EQ("*Duplex=DuplexNoTumble\n*InputSlot=HCF\n*OptionHCF=True\n", Def("acc1"));
  EXPECT_EQ("*FontSize=10\n*InputSlot=HCF\n*OptionHCF=True\n*CustomMediaType=Silk::Silk\n",
            Def("list1"));
  const auto state = HostFiles();
  Expect({"apply", file}, Nothing());
  Expect({"diff", file}, "");
  EXPECT_EQ(state, HostFiles());
}

// The example of kpxctl(8), between .EX and .EE.
std::string ExampleOfManual() {
  const std::string page = ContentOf(KPX_MANUAL);
  const size_t start = page.find(".EX\n") + 4;
  std::string example = page.substr(start, page.find(".EE", start) - start);
  for (size_t place = 0; (place = example.find("\\(dq", place)) != std::string::npos; ++place) {
    example.replace(place, 4, "\"");
  }
  return example;
}

TEST_F(CtlDeclared, CanBeTheExampleOfTheManual) {
  const std::string file = Write(ExampleOfManual());
  Must({"apply", file});
  EXPECT_EQ((Strings{"acc1", "acc2"}), SpoolerQueues());
  EXPECT_EQ("*Duplex=DuplexNoTumble\n", Def("acc1"));
  EXPECT_EQ("", Def("acc2"));
}

TEST_F(CtlDeclared, AreRemovedByTheFileThatDeclaredThemAlone) {
  AddQueue("mine");
  const std::string file = Write(kSite);
  Must({"apply", file});
  auto less = nlohmann::json::parse(kSite);
  less["queues"].erase("acc2");
  less["queues"]["acc1"]["address"] = "127.0.0.9";
  Expect({"apply", Write(less.dump())}, "~ acc1  address: 127.0.0.1 -> 127.0.0.9\n- acc2\n");
  EXPECT_EQ((Strings{"acc1", "list1", "mine"}), SpoolerQueues());
  // Another file may neither have nor remove them.
  const std::string other =
      Write(R"({"queues": {"acc1": {"printer": "Vek Norvel 4105", "address": "127.0.0.1"}}})",
            "other.json");
  ExpectRefused({"apply", other}, 3,
                other + ":1: " + CatalogueText("CTL_OWNED", {"acc1", "site.json"}));
  Must({"apply", other, "--take-over"});
  Expect({"apply", Write(R"({"queues": {}})")}, "- list1\n");
  Expect({"apply", Write(R"({"name": "other.json"})")}, "- acc1\n");
  EXPECT_EQ(Strings{"mine"}, SpoolerQueues());
}

TEST_F(CtlDeclared, GetAnotherPrinterOrTypeByBeingMadeAnew) {
  Must({"apply", Write(kSite)});
  auto other = nlohmann::json::parse(kSite);
  other["queues"]["acc1"] = {{"printer", "Vek Norvel 4105"},
                             {"type", "text"},
                             {"address", "127.0.0.1"},
                             {"options", {{"Duplex", nullptr}}}};
  const std::string file = Write(other.dump());
  Must({"apply", file});
  const std::string script = ContentOf(std::string(kBridgeInterfaces) + "/acc1");
  EXPECT_NE(script.find("vek41051.ppd"), std::string::npos) << script;
  EXPECT_NE(script.find("--type text"), std::string::npos) << script;
  Expect({"apply", file}, Nothing());
}

TEST_F(CtlDeclared, AreRefusedWithFileLineAndReason) {
  ExpectFault(
      "{\n\"queues\": {\n\"a\": {,}}}", 3,
      CatalogueText(
          "CTL_JSON_BAD",
          {"syntax error while parsing object key - unexpected ','; expected string literal"}));
  ExpectFault("{\n\"queue\": {}}", 2, CatalogueText("CTL_JSON_MEMBER", {"queue"}));
  ExpectFault("{\"queues\": {\n\"a\": {\"printer\": \"P\",\n\"adress\": \"x\"}}}", 3,
              CatalogueText("CTL_JSON_MEMBER", {"adress"}));
  ExpectFault("{\"queues\": {\n\"a\": {\"printer\": \"P\"}}}", 2,
              CatalogueText("CTL_JSON_LACKS", {"a", "address"}));
  ExpectFault("{\"queues\": {\"a\": {},\n\"b\": {},\n\"b\": {}}}", 2,
              CatalogueText("CTL_JSON_TWICE", {"b"}));
  ExpectFault("{\"queues\": {\n\"a\":\n{\"group\": \"g\"}}}", 3,
              CatalogueText("CTL_JSON_GROUP", {"g"}));
  const std::string start =
      "{\"defaults\": {\"printer\": \"Vek Norvel 4120ES\", \"address\": \"127.0.0.1\"},\n"
      "\"queues\": {\"\\u0061\": {\n\"options\": {\n";
  ExpectFault(start + "\"Jog\": \"None\",\n\"Duplex\": \"Tumble\"}}}}", 5,
              "a: " + CatalogueText("CTL_CHOICE_UNKNOWN",
                                    {"Duplex", "Tumble", "DuplexNoTumble, DuplexTumble, None"}));
  ExpectFault(start + "\"Jog\": [1]}}}}", 4, CatalogueText("CTL_JSON_VALUE", {"Jog"}));
  const CommandResult refused = Kpxctl({"apply", Write(start + "\"InputSlot\": \"HCF\"}}}}")});
  EXPECT_EQ(3, refused.status) << refused.output;
  EXPECT_EQ(Strings{}, SpoolerQueues());
}

TEST_F(CtlDeclared, GoFromOneHostToABareOne) {
  Must({"apply", Write(kSite)});
  AddQueue("raw1", {"--type", "raw", "DeliveryPIN=4711", "Delivery=HoldJobUntilYouEnterPIN"});
  const std::string users = std::string(kUsersDir) + "/anna:raw1.def";
  const bool has_users = HasOrdinaryUsers();
  if (has_users) {
    std::ofstream(users) << "*Duplex=DuplexTumble\n";
    EXPECT_EQ(0, chown(users.c_str(), getpwnam("anna")->pw_uid, getpwnam("anna")->pw_gid));
  }
  const nlohmann::json host = Host();
  EXPECT_EQ("4711", host["queues"]["raw1"]["options"]["DeliveryPIN"]);
  const std::string file = Write("", "host.json");
  Must({"export", file, "--users"});
  EXPECT_EQ(host, nlohmann::json::parse(ContentOf(file)));
  EXPECT_EQ(0600U, ModeOf(file));
  Must({"delete", "*"});
  EXPECT_FALSE(std::filesystem::exists(users));
  Must({"import", file, "--users"});
  EXPECT_EQ(host, Host());
  Expect({"import", file}, Nothing());
  if (!has_users) return;
  EXPECT_EQ("*Duplex=DuplexTumble\n", ContentOf(users));
  Expect({"users", "list"}, "anna  raw1\n");
  Expect({"users", "remove", "raw1", "--user", "bob"}, Nothing());
  Expect({"users", "remove", "raw1"}, "- anna  raw1\n");
  EXPECT_FALSE(std::filesystem::exists(users));
}

TEST_F(CtlDeclared, ReturnToTheStateBeforeEachOfTheLastTenSaves) {
  Expect({"undo", "--list"}, CatalogueText("CTL_UNDO_NONE") + "\n");
  Must({"apply", Write(kSite)});
  Must({"set", "acc1", "Duplex=DuplexTumble"});
  Must({"delete", "acc2"});
  EXPECT_EQ(3U, JsonOf({"undo", "--list"}).size());
  Expect({"undo", "--dry-run"},
         CatalogueText("CTL_DRY_RUN") +
             "\n+ acc2  OptionHCF=True  PageSize=Ticket  address=127.0.0.2  "
             "paper/Ticket=312x595pt  printer=Vek Norvel 4120ES  type=postscript\n");
  Must({"undo", "2"});
  EXPECT_EQ((Strings{"acc1", "acc2", "list1"}), SpoolerQueues());
  Expect({"diff", Write(kSite)}, "");
  Must({"undo"});
  EXPECT_EQ((Strings{"acc1", "list1"}), SpoolerQueues());
  // What the file owned before it had them is owned again: it can remove them.
  Must({"undo", "4"});
  Must({"undo"});
  Must({"undo", "5"});
  Must({"apply", Write(R"({"queues": {}})")});
  for (int i = 0; i < 6; ++i) AddQueue("more" + std::to_string(i));
  EXPECT_EQ(10U, JsonOf({"undo", "--list"}).size());
  ExpectRefused({"undo", "11"}, 2, CatalogueText("CTL_WRONG_WORD", {"11"}));
}

// For its lifetime a command of the bridge first kills the kpxctl that called it, when it is called
// for that queue.
class KillingCommand {
 public:
  KillingCommand(const std::string &path, const std::string &queue)
      : path_(path), real_(directory_.Path(std::filesystem::path(path).filename())) {
    std::filesystem::copy(path, real_);
    std::filesystem::remove(path);
    std::ofstream(path) << "#!/bin/sh\nup=$PPID\n"
                           "while [ \"$(cat /proc/$up/comm)\" != kpxctl ]; do\n"
                           "  up=$(ps -o ppid= -p $up | tr -d ' ')\ndone\n"
                           "case \"$*\" in *"
                        << queue << "*) kill -9 \"$up\";; esac\nexec " << real_ << " \"$@\"\n";
    std::filesystem::permissions(path, std::filesystem::perms(0755));
  }
  ~KillingCommand() {
    std::filesystem::remove(path_);
    std::filesystem::copy(real_, path_);
  }
  KillingCommand(const KillingCommand &) = delete;
  KillingCommand &operator=(const KillingCommand &) = delete;

 private:
  TemporaryDirectory directory_;
  std::string path_;
  std::string real_;
};

TEST_F(CtlDeclared, AreAppliedAgainAfterAnInterruption) {
  const std::string file = Write(kSite);
  struct Point {
    const char *command, *queue;
  };
  for (const Point &point : {Point{"/usr/lib/lpadmin", "acc1"},
                             {"/usr/bin/accept", "acc1"},
                             {"/usr/lib/lpadmin", "acc2"},
                             {"/usr/bin/enable", "list1"}}) {
    const std::string where = std::string(point.command) + " " + point.queue;
    {
      const KillingCommand killing(point.command, point.queue);
      EXPECT_EQ(128 + SIGKILL, Kpxctl({"apply", file}).status) << where;
    }
    const CommandResult again = Kpxctl({"apply", file});
    EXPECT_EQ(0, again.status) << where << "\n" << again.output;
    EXPECT_EQ((Strings{"acc1", "acc2", "list1"}), SpoolerQueues()) << where;
    EXPECT_EQ("*Duplex=DuplexNoTumble\n*InputSlot=HCF\n*OptionHCF=True\n", Def("acc1")) << where;
    Expect({"apply", file}, Nothing());
    Expect({"apply", Write("{}")}, "- acc1\n- acc2\n- list1\n");
    Write(kSite);
  }
}

TEST_F(CtlDeclared, LeaveNothingOfASaveThatWasInterruptedAtItsEnd) {
  const std::string file = Write(kSite);
  Must({"apply", file});
  std::filesystem::copy(kQueuesFile, KeptQueueListPath(kQueuesFile));
  Must({"apply", file});
  EXPECT_FALSE(std::filesystem::exists(KeptQueueListPath(kQueuesFile)));
  Expect({"apply", file}, Nothing());
}

}  // namespace
