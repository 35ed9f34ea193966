// What an interrupted save, a power cut or somebody else's hand left behind, found by a start of
// the administration program and put right by its Save, in the real spooler.
#include <csignal>

#include "propertiesdriver.h"
#include "savedqueues.h"

namespace {

using Strings = std::vector<std::string>;

const QueueInput kOffice = {.name = "office"};
const QueueInput kLab = {.name = "lab", .printer = "Vek Norvel 4105", .type = "raw"};

// For its lifetime the first call of a spooler command kills the process whose number it is given,
// before it does what it is for.
class KillingCommand {
 public:
  explicit KillingCommand(const std::string &path) : path_(path), away_(path + ".away") {
    std::filesystem::rename(path_, away_);
    std::ofstream(path_) << "#!/bin/sh\nkill -KILL \"$(cat " << kVictim << ")\" 2>/dev/null\nexec "
                         << away_ << " \"$@\"\n";
    std::filesystem::permissions(path_, std::filesystem::perms(0755));
  }
  ~KillingCommand() { std::filesystem::rename(away_, path_); }
  KillingCommand(const KillingCommand &) = delete;
  KillingCommand &operator=(const KillingCommand &) = delete;

  static void Choose(pid_t victim) { std::ofstream(kVictim) << victim; }

 private:
  static constexpr char kVictim[] = "/run/kpx/victim";

  std::string path_;
  std::string away_;
};

class AdminRecovery : public RealSpoolerTest {
 protected:
  static std::string Lines(const Strings &lines) {
    std::string text;
    for (const std::string &line : lines) text += line + "\n";
    return text;
  }

  // The title of a list of these: one that only informs is not called an error.
  static std::string TitleFor(const Strings &messages) {
    const auto starts = [](const std::string &message, const char *key) {
      const std::string text = CatalogueText(key);
      return message.starts_with(text.substr(0, text.find('%')));
    };
    const bool informs =
        std::all_of(messages.begin(), messages.end(), [&](const std::string &message) {
          return starts(message, "WARN_SAVE_UNFINISHED") || starts(message, "WARN_QUEUE_FOUND") ||
                 starts(message, "WARN_QUEUE_LIST_RESTORED");
        });
    return CatalogueText(informs ? "DEF_WND_NOTE_TITLE" : "DEF_WND_ERROR_TITLE");
  }

  // A start that tells these messages, which are closed.
  static void ExpectTold(AdminApp &app, const Strings &messages) {
    app.WaitWindow("KPXErrorWarningDialog");
    EXPECT_EQ(Lines(messages), app.Text("ErrorWarningText"));
    EXPECT_EQ(TitleFor(messages), app.Text("KPXErrorWarningDialog"));
    app.Click("KPXErrorWarningDialog/OKButton");
    app.WaitGone("KPXErrorWarningDialog");
  }

  static void PressSave(AdminApp &app) {
    app.Click("SaveButton");
    EXPECT_EQ(0, app.WaitExit());
  }

  static void ExpectNothingTold() {
    AdminApp app;
    EXPECT_EQ(Strings{"AdminWindow"}, app.Windows());
  }

  static Strings DataFiles() {
    Strings names = NamesIn(kDataDir);
    std::erase_if(names, [](const std::string &name) {
      return !name.ends_with(".def") && !name.starts_with("queues.paf");
    });
    return names;
  }
};

TEST_F(AdminRecovery, AKilledSaveIsShownAsItWasMeantAndFinishedBySave) {
  AddAndSave({kOffice, {.name = "old"}});
  const std::string users_file = std::string(kUsersDir) + "/root:old.def";
  std::ofstream(users_file) << "*Nup=2\n";
  {
    const KillingCommand accept("/usr/bin/accept");
    AdminApp app;
    app.SelectQueues({1});
    app.Click("DeleteButton");
    app.SelectQueues({0});
    OpenProperties(app);
    TypeInto(app, "AddressEntry", "localhost");
    AcceptProperties(app);
    app.AddQueue({.name = "zlab"});
    KillingCommand::Choose(app.pid());
    app.Click("SaveButton");
    EXPECT_EQ(128 + SIGKILL, app.WaitExit());
  }
  const std::string intended = ContentOf(std::string(kQueuesFile) + ".next");
  AdminApp app;
  ExpectTold(app, {CatalogueText("WARN_SAVE_UNFINISHED")});
  EXPECT_EQ((Strings{"-office", "-zlab"}), app.QueueNames());
  PressSave(app);
  const QueueInput moved = {.name = "office", .address = "localhost"};
  EXPECT_EQ("office\nzlab\n", SpoolerQueues());
  EXPECT_EQ(ScriptOf(moved, k4110), Script("office"));
  EXPECT_EQ(ScriptOf({.name = "zlab"}, k4110), Script("zlab"));
  EXPECT_EQ(intended.substr(0, intended.find("##remove old\n")), ContentOf(kQueuesFile));
  EXPECT_EQ((Strings{"office.def", "queues.paf", "queues.paf.lock", "zlab.def"}), DataFiles());
  EXPECT_FALSE(std::filesystem::exists(users_file));
  ExpectNothingTold();
}

TEST_F(AdminRecovery, ACancelledStartLeavesTheUnfinishedSaveToTheNext) {
  AddAndSave({kOffice});
  {
    const KillingCommand accept("/usr/bin/accept");
    AdminApp app;
    app.AddQueue(kLab);
    KillingCommand::Choose(app.pid());
    app.Click("SaveButton");
    EXPECT_EQ(128 + SIGKILL, app.WaitExit());
  }
  for (int start = 0; start < 2; ++start) {
    AdminApp app;
    ExpectTold(app, {CatalogueText("WARN_SAVE_UNFINISHED")});
    EXPECT_EQ((Strings{"-lab", "-office"}), app.QueueNames());
    app.Click("CancelButton");
    EXPECT_EQ(0, app.WaitExit());
  }
}

TEST_F(AdminRecovery, AQueueThatTheListLacksIsShownAndKeptBySave) {
  AddAndSave({kLab, kOffice});
  const auto saved = SavedState();
  std::ofstream(kQueuesFile) << kListHeader + ListEntry(kOffice, k4110.ppd);
  AdminApp app;
  ExpectTold(app, {CatalogueText("WARN_QUEUE_FOUND", {"lab"})});
  EXPECT_EQ((Strings{"-lab", "-office"}), app.QueueNames());
  PressSave(app);
  EXPECT_EQ(saved, SavedState());
  ExpectNothingTold();
}

TEST_F(AdminRecovery, AQueueThatTheListLacksIsRemovedByDeleteAndSave) {
  AddAndSave({kLab, kOffice});
  std::ofstream(kQueuesFile) << kListHeader + ListEntry(kOffice, k4110.ppd);
  AdminApp app;
  ExpectTold(app, {CatalogueText("WARN_QUEUE_FOUND", {"lab"})});
  app.SelectQueues({0});
  app.Click("DeleteButton");
  PressSave(app);
  EXPECT_EQ("office\n", SpoolerQueues());
  EXPECT_EQ(Strings{"office"}, NamesIn(kSpoolInterfacesDir));
  ExpectNothingTold();
}

TEST_F(AdminRecovery, AQueueWhoseScriptCannotBeUnderstoodIsToldWithTheCommandThatRemovesIt) {
  AddAndSave({kOffice});
  std::string script = Script("office");
  const size_t ppd = script.find(k4110.ppd);
  std::ofstream(InterfacePath("office")) << script.replace(ppd, k4110.ppd.size(), "nosuch.ppd");
  std::ofstream(kQueuesFile) << kListHeader;
  const std::string command = "/usr/lib/lpadmin -x office";
  {
    AdminApp app;
    ExpectTold(app, {CatalogueText("WARN_QUEUE_UNKNOWN", {"office", command})});
    EXPECT_EQ(Strings{}, app.QueueNames());
  }
  EXPECT_EQ(0, std::system(command.c_str()));
  ExpectNothingTold();
}

// As a power cut leaves what the spooler had not yet written.
TEST_F(AdminRecovery, AQueueThatTheSpoolerLostIsMadeAnewBySave) {
  AddAndSave({kLab, kOffice});
  const auto saved = SavedState();
  RunProgram({"/usr/sbin/lpadmin", "-x", "office"});
  AdminApp app;
  ExpectTold(app, {CatalogueText("WARN_QUEUE_INCOMPLETE", {"office"})});
  PressSave(app);
  EXPECT_EQ("lab\noffice\n", SpoolerQueues());
  EXPECT_EQ(saved, SavedState());
  ExpectNothingTold();
}

TEST_F(AdminRecovery, AQueueWhoseScriptIsCutOrGoneIsMadeAnewBySave) {
  AddAndSave({kLab, kOffice});
  const auto saved = SavedState();
  const std::string script = Script("office");
  std::ofstream(InterfacePath("office")) << script.substr(0, script.size() - 30);
  std::filesystem::remove(InterfacePath("lab"));
  AdminApp app;
  ExpectTold(app, {CatalogueText("WARN_QUEUES_INCOMPLETE", {"2", "lab, office"})});
  EXPECT_EQ((Strings{"-lab", "-office"}), app.QueueNames());
  PressSave(app);
  EXPECT_EQ(saved, SavedState());
  ExpectNothingTold();
}

TEST_F(AdminRecovery, WithoutASchedulerNothingIsTakenForLost) {
  AddAndSave({kOffice});
  const NoScheduler none;
  ExpectNothingTold();
}

}  // namespace
