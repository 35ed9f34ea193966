// Only one administrator at a time: what a second KPXadmin does, and that nothing else than a
// running one holds it back.
#include <sys/stat.h>

#include <csignal>

#include "gatedspooler.h"
#include "printerjobs.h"
#include "savedqueues.h"
#include "tooldriver.h"

namespace {

// Content, identity and times of a file or directory; its place in the tree is the key.
struct Trace {
  std::string content;
  ino_t inode;
  mode_t mode;
  uid_t owner;
  gid_t group;
  timespec modified;
  timespec changed;

  bool operator==(const Trace &other) const {
    const auto same = [](const timespec &a, const timespec &b) {
      return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    };
    return content == other.content && inode == other.inode && mode == other.mode &&
           owner == other.owner && group == other.group && same(modified, other.modified) &&
           same(changed, other.changed);
  }
};

Trace TraceOf(const std::string &path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) throw std::runtime_error("no " + path);
  return {.content = S_ISREG(status.st_mode) ? ContentOf(path) : "",
          .inode = status.st_ino,
          .mode = status.st_mode,
          .owner = status.st_uid,
          .group = status.st_gid,
          .modified = status.st_mtim,
          .changed = status.st_ctim};
}

// Everything that an administrator could touch, the lock file and the directories themselves too.
std::map<std::string, Trace> Traces() {
  std::map<std::string, Trace> traces;
  for (const char *root : {kDataDir, "/usr/spool/lp", "/etc/cups"}) {
    traces[root] = TraceOf(root);
    for (const auto &entry : std::filesystem::recursive_directory_iterator(root)) {
      traces[entry.path()] = TraceOf(entry.path());
    }
  }
  return traces;
}

// The paths of what differs.
std::vector<std::string> Differences(const std::map<std::string, Trace> &before) {
  const std::map<std::string, Trace> after = Traces();
  std::vector<std::string> paths;
  for (const auto &[path, trace] : before) {
    const auto found = after.find(path);
    if (found == after.end() || !(found->second == trace)) paths.push_back(path);
  }
  for (const auto &[path, trace] : after) {
    if (!before.contains(path)) paths.push_back(path);
  }
  return paths;
}

// A second KPXadmin, until its error box is closed.
void ExpectRefused() {
  GuiApp second({.program = kAdmin});
  second.WaitWindow("ErrorDialog");
  EXPECT_EQ(CatalogueText("ERR_ADMIN_RUNNING"), second.Text("ErrorLabel1"));
  EXPECT_EQ(CatalogueText("DEF_WND_NOTE_TITLE"), second.Text("ErrorDialog"));
  EXPECT_EQ(std::vector<std::string>{"ErrorDialog"}, second.Windows());
  EXPECT_EQ(std::vector<std::string>{}, second.ClippedTexts());
  second.Key("Return");
  EXPECT_EQ(1, second.WaitExit());
  EXPECT_EQ(CatalogueText("ERR_ADMIN_RUNNING") + "\n", second.Stderr());
}

void KillNow(AdminApp &app) {
  kill(app.pid(), SIGKILL);
  EXPECT_EQ(128 + SIGKILL, app.WaitExit());
}

class AdministratorLock : public AdministrationTest {
 protected:
  // lp1 to lp3 with option files, the spooler without lp3, and the copy of an earlier list.
  static void PutState() {
    PutQueues(std::vector<std::string>{"lp1", "lp2", "lp3"});
    std::filesystem::remove(InterfacePath("lp3"));
    std::ofstream(std::string(kQueuesFile) + ".save") << ContentOf(kQueuesFile);
    for (const char *name : {"lp1", "lp2", "lp3", "stray"}) {
      std::ofstream(std::string(kDataDir) + "/" + name + ".def") << "*Duplex=None\n";
    }
  }
};

TEST_F(AdministratorLock, ASecondAdministratorIsToldAndEndsWithStatusOneBeforeItTouchesAnything) {
  PutState();
  AdminApp first;
  const auto before = Traces();
  ASSERT_TRUE(before.contains(std::string(kQueuesFile) + ".save"));
  ASSERT_TRUE(before.contains(std::string(kDataDir) + "/stray.def"));
  ExpectRefused();
  EXPECT_EQ(std::vector<std::string>{}, Differences(before));
}

TEST_F(AdministratorLock, ASecondAdministratorLeavesAnUnfinishedSaveAlone) {
  PutState();
  AdminApp first;
  std::ofstream(kQueuesFile, std::ios::trunc);  // as the list is while the first one saves
  const auto before = Traces();
  ExpectRefused();
  ExpectRefused();
  EXPECT_EQ(std::vector<std::string>{}, Differences(before));
}

TEST_F(AdministratorLock, TheFirstAdministratorGoesOnUndisturbed) {
  PutQueues(std::vector<std::string>{"lp1", "lp2"});
  AdminApp first;
  first.SelectQueues({1});
  ExpectRefused();
  EXPECT_EQ((std::vector<std::string>{"-lp1", "*lp2"}), first.QueueNames());
  first.Click("CancelButton");
  EXPECT_EQ(0, first.WaitExit());
}

TEST_F(AdministratorLock, ItEndsWithTheProgramHoweverThatEnds) {
  PutQueues(std::vector<std::string>{"lp1"});
  {
    AdminApp killed;
    ExpectRefused();
    KillNow(killed);
  }
  {
    AdminApp cancelled;
    EXPECT_EQ(std::vector<std::string>{"-lp1"}, cancelled.QueueNames());
    cancelled.Click("CancelButton");
    EXPECT_EQ(0, cancelled.WaitExit());
  }
  AdminApp last;
  EXPECT_EQ(std::vector<std::string>{"-lp1"}, last.QueueNames());
}

TEST_F(AdministratorLock, ThePrintToolIsNotHindered) {
  const auto queues = [] { return SplitLines(RunProgram({"lpstat", "-e"}).output); };
  {
    AdminApp admin;
    admin.AddQueue({.name = "lp1"});
    admin.Click("SaveButton");
    EXPECT_EQ(0, admin.WaitExit());
  }
  ASSERT_EQ(std::vector<std::string>{"lp1"}, queues());
  const TemporaryDirectory files;
  MakePostScriptFile(files.Path("page.ps"), 1);
  PrinterJobs jobs;
  AdminApp admin;
  admin.SelectQueues({0});
  admin.Click("DeleteButton");
  {
    GuiApp tool;
    tool.WaitWindow("ToolWindow");
    EXPECT_TRUE(tool.Text("QueueComboEntry").starts_with("lp1 "));
    AddFile(tool, files.Path("page.ps"));
    tool.Click("PrintButton");
    EXPECT_EQ(0, tool.WaitExit()) << tool.Stderr();
  }
  EXPECT_EQ(1, PagesOf(PostScriptOf(jobs.Next()).at(0)));
  EXPECT_EQ(std::vector<std::string>{}, admin.QueueNames());
  RunProgram({"/usr/sbin/lpadmin", "-x", "lp1"});
}

// Last: the stand-ins stay in the commands' places.
TEST_F(AdministratorLock, ACommandThatTheKilledProgramHadStartedDoesNotKeepIt) {
  const GatedSpooler spooler;
  GatedSpooler::Hold("lpadmin", "lp1");
  AdminApp killed;
  killed.AddQueue({.name = "lp1"});
  killed.Click("SaveButton");
  EXPECT_EQ("lpadmin lp1", spooler.WaitReached());
  KillNow(killed);
  {
    AdminApp next;
    next.WaitWindow("KPXErrorWarningDialog");
    EXPECT_EQ(CatalogueText("WARN_SAVE_UNFINISHED") + "\n", next.Text("ErrorWarningText"));
    EXPECT_EQ(std::vector<std::string>{"-lp1"}, next.QueueNames());
  }
  spooler.Open();
}

}  // namespace
