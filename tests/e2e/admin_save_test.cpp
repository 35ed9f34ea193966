// Saves of the administration program in the real spooler: queues added, cloned and deleted in the
// window, and then the spooler's view, interface scripts, queue list and option files byte for
// byte.
#include <pwd.h>

#include "must.h"
#include "printerjobs.h"
#include "propertiesdriver.h"
#include "savedqueues.h"

namespace {

using Strings = std::vector<std::string>;

const QueueInput kPs1 = {.name = "ps1"};
const QueueInput kRaw1 = {
    .name = "raw1", .printer = "Vek Norvel 4105", .address = "localhost", .type = "raw"};

class AdminSave : public RealSpoolerTest {
 protected:
  // The names in the data directory that a save is about.
  static Strings DataFiles() {
    Strings names = NamesIn(kDataDir);
    std::erase_if(names, [](const std::string &name) {
      return !name.ends_with(".def") && !name.starts_with("queues.paf");
    });
    return names;
  }

  static std::string Def(const std::string &name) {
    return ContentOf(std::string(kDataDir) + "/" + name + ".def");
  }

  // Prints a file and returns what the printer got.
  std::string Printed(const std::string &queue, const std::string &path) {
    PrinterJobs jobs;
    const CommandResult result = RunProgram({"/usr/bin/lp", "-d", queue, path});
    EXPECT_EQ(0, result.status) << result.output;
    return jobs.Next();
  }

  // Readable by the spooler's user.
  std::string FileToPrint(const std::string &content) {
    std::filesystem::permissions(files_.Path(), std::filesystem::perms{0755});
    return files_.Write("file", content);
  }

 private:
  TemporaryDirectory files_;
};

TEST_F(AdminSave, MakesTheAddedQueuesInTheSpoolerAndWritesTheirFiles) {
  AddAndSave({kRaw1, kPs1});
  EXPECT_EQ("ps1\nraw1\n", SpoolerQueues());
  for (const QueueInput &queue : {kPs1, kRaw1}) {
    const std::string state = RunProgram({"lpstat", "-a", queue.name, "-p", queue.name}).output;
    EXPECT_NE(std::string::npos, state.find(queue.name + " accepting requests")) << state;
    EXPECT_NE(std::string::npos, state.find(queue.name + " is idle.  enabled")) << state;
    EXPECT_EQ(0755U, ModeOf(InterfacePath(queue.name)));
    struct stat status = {};
    ASSERT_EQ(0, stat(InterfacePath(queue.name).c_str(), &status));
    if (HasOrdinaryUsers()) {  // without root nothing can be given to others
      EXPECT_EQ("bin", GroupOf(InterfacePath(queue.name)));
      EXPECT_EQ(getpwnam("lp")->pw_uid, status.st_uid);
    }
    EXPECT_EQ("", Def(queue.name));
  }
  EXPECT_EQ(ScriptOf(kPs1, k4110), Script("ps1"));
  EXPECT_EQ(ScriptOf(kRaw1, k4105), Script("raw1"));
  EXPECT_EQ((Strings{"ps1", "raw1"}), NamesIn(kSpoolInterfacesDir));
  EXPECT_EQ((Strings{"ps1", "raw1"}), NamesIn(kSpoolPrintersDir));
  EXPECT_EQ(kListHeader + ListEntry(kPs1, k4110.ppd) + ListEntry(kRaw1, k4105.ppd),
            ContentOf(kQueuesFile));
  EXPECT_EQ((Strings{"ps1.def", "queues.paf", "queues.paf.lock", "raw1.def"}), DataFiles());
}

TEST_F(AdminSave, AnAddedQueuePrintsAPage) {
  AddAndSave({kPs1, kRaw1});
  const std::string raw = std::string("\0\x1B%raw\r\n", 8) + "bytes";
  EXPECT_EQ(raw, Printed("raw1", FileToPrint(raw)));
  const std::string job = Printed(
      "ps1", FileToPrint("%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%Page: 1 1\n"
                         "/Helvetica findfont 24 scalefont setfont 72 72 moveto (Hello) show\n"
                         "showpage\n%%EOF\n"));
  const Strings programs = PostScriptOf(job);
  ASSERT_EQ(1U, programs.size()) << job;
  EXPECT_EQ(1, PagesOf(programs[0]));
}

TEST_F(AdminSave, AnEmptyListIsItsHeaderAlone) {
  AdminApp app;
  EXPECT_EQ(kListHeader, ContentOf(kQueuesFile)) << "made by the start";
  Save(app);
  EXPECT_EQ(kListHeader, ContentOf(kQueuesFile));
  EXPECT_EQ((Strings{"queues.paf", "queues.paf.lock"}), DataFiles());
}

TEST_F(AdminSave, DeletesOnlyTheQueueThatWasDeletedWithItsUsersFiles) {
  AddAndSave({kPs1, kRaw1});
  for (const char *file : {"root:raw1.def", "anna:raw1.def", "root:ps1.def", "root:xraw1.def"}) {
    std::ofstream(std::string(kUsersDir) + "/" + file) << "*Nup=2\n";
  }
  AdminApp app;
  EXPECT_EQ((Strings{"-ps1", "-raw1"}), app.QueueNames());
  app.SelectQueues({1});
  app.Click("DeleteButton");
  Save(app);
  EXPECT_EQ("ps1\n", SpoolerQueues());
  EXPECT_EQ(Strings{"ps1"}, NamesIn(kSpoolInterfacesDir));
  EXPECT_EQ(Strings{"ps1"}, NamesIn(kSpoolPrintersDir));
  EXPECT_EQ(ScriptOf(kPs1, k4110), Script("ps1"));
  EXPECT_EQ((Strings{"root:ps1.def", "root:xraw1.def"}), NamesIn(kUsersDir));
  EXPECT_EQ(kListHeader + ListEntry(kPs1, k4110.ppd), ContentOf(kQueuesFile));
  EXPECT_EQ((Strings{"ps1.def", "queues.paf", "queues.paf.lock"}), DataFiles());
}

TEST_F(AdminSave, RemovesTheJobSettingsOfADeletedQueueAndWhatLiesUnderAnotherUsersName) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the sandbox has no ordinary users";
  AddAndSave({kPs1, kRaw1});
  const std::string users = std::string(kUsersDir) + "/";
  std::filesystem::create_directory(users + "anna");
  for (const char *name : {"anna/ps1-7", "anna/raw1-8", "anna:ps1.def", "bob:ps1.def"}) {
    std::ofstream(users + name) << "*Nup=2\n";
  }
  for (const char *name : {"anna", "anna:ps1.def", "bob:ps1.def"}) {
    ASSERT_EQ(0, chown((users + name).c_str(), getpwnam("anna")->pw_uid, static_cast<gid_t>(-1)));
  }
  AdminApp app;
  app.SelectQueues({1});
  app.Click("DeleteButton");
  Save(app);
  EXPECT_EQ((Strings{"anna", "anna:ps1.def"}), NamesIn(kUsersDir));
  EXPECT_EQ(Strings{"ps1-7"}, NamesIn(users + "anna"));
}

// As the help says.
TEST_F(AdminSave, ARenamedQueueIsANewOneAndTheOldOneStaysInTheSpoolerUntilItIsDeletedToo) {
  AddAndSave({kPs1});
  {
    AdminApp app;
    app.SelectQueues({0});
    OpenProperties(app);
    TypeInto(app, "QueueEntry", "office");
    AcceptProperties(app);
    EXPECT_EQ(Strings{"*office"}, app.QueueNames());
    Save(app);
  }
  EXPECT_EQ("office\nps1\n", SpoolerQueues());
  EXPECT_EQ(std::string::npos, ContentOf(kQueuesFile).find("ps1"));
  {
    AdminApp app;
    app.WaitWindow("KPXErrorWarningDialog");
    EXPECT_EQ(CatalogueText("WARN_QUEUE_FOUND", {"ps1"}) + "\n", app.Text("ErrorWarningText"));
    app.Click("KPXErrorWarningDialog/OKButton");
    app.WaitGone("KPXErrorWarningDialog");
    EXPECT_EQ((Strings{"-office", "-ps1"}), app.QueueNames());
    app.SelectQueues({1});
    app.Click("DeleteButton");
    app.Click("SaveButton");
    EXPECT_EQ(0, app.WaitExit());
  }
  EXPECT_EQ("office\n", SpoolerQueues());
}

TEST_F(AdminSave, ACloneHasTheOptionsOfItsQueueAndAScriptOfItsOwn) {
  AddAndSave({{.name = "lp1", .address = "10.0.0.1"}});
  const Owned<CHash> queues = CreateHash();
  Must(HashPut(queues.get(), "lp1", MakeFullQueue()));
  int left_out = 0;
  const std::string list = QueueListText(queues.get(), &left_out);
  std::ofstream(kQueuesFile) << list;

  AdminApp app;
  app.SelectQueues({0});
  app.Click("CloneButton");
  Save(app);
  const std::string def =
      "*Duplex=DuplexNoTumble\n*PageSize=A4\n*OptionHCF=True\n"
      "*CustomPaperSize=Ticket''210''400\n*CustomMediaType=Gloss::Glossy paper\n";
  EXPECT_EQ(def, Def("lp1"));
  EXPECT_EQ(def, Def("CopyOf_lp1"));
  const QueueInput clone = {.name = "CopyOf_lp1", .address = "10.0.0.1"};
  EXPECT_EQ(ScriptOf(clone, k4110), Script("CopyOf_lp1"));
  EXPECT_EQ(ScriptOf({.name = "lp1", .address = "10.0.0.1"}, k4110), Script("lp1"));
  EXPECT_EQ("CopyOf_lp1\nlp1\n", SpoolerQueues());
  // The entry of the clone is that of the queue but for its own names.
  std::string entry = list.substr(std::string(kListHeader).size());
  const std::string original = entry;
  for (const std::string &line : {std::string("\nlp1\n"), std::string("\nlp1.def\n")}) {
    entry.replace(entry.find(line), line.size(), "\nCopyOf_" + line.substr(1));
  }
  EXPECT_EQ(kListHeader + entry + original, ContentOf(kQueuesFile));
}

TEST_F(AdminSave, AQueueAddedAndDeletedAgainRunsNoSpoolerCommand) {
  std::filesystem::rename("/usr/lib/lpadmin", "/usr/lib/lpadmin.away");
  AdminApp app;
  app.AddQueue(kPs1);
  app.Click("DeleteButton");
  EXPECT_EQ(Strings{}, app.QueueNames());
  Save(app);  // a command that is missing would be an error
  std::filesystem::rename("/usr/lib/lpadmin.away", "/usr/lib/lpadmin");
  EXPECT_EQ(kListHeader, ContentOf(kQueuesFile));
}

TEST_F(AdminSave, TheNameOfADeletedQueueIsFreeOnlyAfterTheSave) {
  AddAndSave({kPs1});
  {
    AdminApp app;
    app.SelectQueues({0});
    app.Click("DeleteButton");
    app.OpenAddQueue();
    app.FillAddQueue(kPs1);
    app.Click("AddQueueWindow/OKButton");
    app.ExpectErrorBox("KPXadminWarn004");
    app.Key("Escape");
    app.WaitGone("AddQueueWindow");
    Save(app);
    EXPECT_EQ("", SpoolerQueues());
  }
  AddAndSave({kPs1});
  EXPECT_EQ("ps1\n", SpoolerQueues());
}

TEST_F(AdminSave, AQueueRemovedBehindTheProgramsBackIsNotSaved) {
  AddAndSave({kPs1, kRaw1});
  ASSERT_EQ(0, RunProgram({"/usr/lib/lpadmin", "-x", "ps1"}).status);
  AdminApp app;
  EXPECT_EQ(Strings{"AdminWindow"}, app.Windows()) << "without any message";
  EXPECT_EQ(Strings{"-raw1"}, app.QueueNames());
  Save(app);
  EXPECT_EQ(kListHeader + ListEntry(kRaw1, k4105.ppd), ContentOf(kQueuesFile));
}

}  // namespace
