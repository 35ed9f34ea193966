// Jobs that cannot be printed: the spooler bridge loses none.
#include <gtest/gtest.h>

#include <csignal>

#include "installation.h"
#include "interfacescript.h"
#include "printedjobs.h"
#include "spooler.h"

namespace {

using Strings = std::vector<std::string>;

// The lines that the administration program adds to the interface script.
std::string Block(const std::string &type, const std::string &address) {
  return InterfaceBlockText({.queue_type = type,
                             .ppd_path = "/nowhere.ppd",
                             .def_path = "/opt/orlan/data/lp1.def",
                             .address = address,
                             .transport_parameter = "120"});
}

std::string TwoFiles(const TemporaryDirectory &directory) {
  std::filesystem::permissions(directory.Path(), std::filesystem::perms(0755));
  directory.Write("a", "one\n");
  directory.Write("b", "two\n");
  return directory.Path("");
}

// The process number of the backend that the scheduler started last.
pid_t BackendOf(const std::string &log) {
  const std::string words = "Started backend /usr/lib/cups/backend/kpxlp (PID ";
  return std::stoi(log.substr(log.rfind(words) + words.size()));
}

// Waits until the process has ended.
void WaitForEnd(pid_t process) {
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
  if (handle < 0) return;  // gone already
  pollfd ended = {handle, POLLIN, 0};
  EXPECT_EQ(1, poll(&ended, 1, 30000)) << process << " still runs";
  close(handle);
}

// A scheduler's configuration with another limit of the time that a job may take.
std::string WithMaxJobTime(std::string configuration, const std::string &seconds) {
  const std::string limit = "MaxJobTime 0\n";
  return configuration.replace(configuration.find(limit), limit.size(),
                               "MaxJobTime " + seconds + "\n");
}

constexpr char kStatusOfTheTest[] = "/run/kpx/status";

// The script's next exit status.
std::string SetStatus(int status) {
  std::ofstream(kStatusOfTheTest) << status << '\n';
  return std::string("exit $(cat ") + kStatusOfTheTest + ")";
}

constexpr char kSignalsBackendAlone[] =
    "a scheduler that is not root ends the backend alone, not what it has started";

}  // namespace

TEST(BridgeFailures, AFailingScriptHoldsTheJobWhichPrintsWholeWhenReleased) {
  const TemporaryDirectory directory;
  const std::string files = TwoFiles(directory);
  const TestQueue queue("lp1");
  queue.Record(SetStatus(1));
  SchedulerLog log;
  const std::string job = queue.Print({files + "a", files + "b"});
  log.WaitFor("Backend returned status 3 (hold job)");
  EXPECT_TRUE(queue.Keeps(job));
  EXPECT_NE(std::string::npos, queue.State().find("is idle")) << queue.State();
  EXPECT_NE(std::string::npos,
            log.Text().find("script failed without a message; the job is held (status 1)"));

  SetStatus(0);
  EXPECT_EQ(0, RunProgram({"/usr/bin/lp", "-i", "lp1-" + job, "-H", "resume"}).status);
  log.WaitFor("[Job " + job + "] Job completed.");
  ASSERT_EQ(2u, queue.Calls().size());
  EXPECT_EQ((Strings{"one\n", "two\n"}), queue.Calls()[1].contents);
}

TEST(BridgeFailures, AHeldJobTellsItsUserWhy) {
  const TestQueue queue("lp1");
  queue.Complete("echo 'no font Büro%s' >&2\nprintf '50%% is \"missing\"\\n\\n' >&2\nexit 7\n");
  SchedulerLog log;
  queue.Print({}, "data");
  log.WaitFor("Backend returned status 3 (hold job)");
  EXPECT_NE(std::string::npos,
            log.Text().find("Set job-printer-state-message to \"no font Büro%s\""));
  const std::string state = RunProgram({"lpstat", "-l", "-p", "lp1"}).output;
  EXPECT_NE(std::string::npos, state.find("50% is \"missing\"; the job is held (status 7)\n"))
      << state;
}

TEST(BridgeFailures, AScriptWhoseStatusIsLostHoldsTheJobWhateverItSaid) {
  const TestQueue queue("lp1");
  // Its parent is the part of the backend that waits for its status.
  queue.Complete("echo '0.5 MB sent' >&2\nkill -KILL $PPID\n");
  SchedulerLog log;
  const std::string job = queue.Print({}, "data");
  log.WaitFor("Backend returned status");
  EXPECT_NE(std::string::npos, log.Text().find("Backend returned status 3 (hold job)"))
      << log.Text();
  EXPECT_TRUE(queue.Keeps(job));
  const std::string state = RunProgram({"lpstat", "-l", "-p", "lp1"}).output;
  EXPECT_NE(std::string::npos, state.find("0.5 MB sent; the job is held (the exit status of its "
                                          "interface script is unknown)\n"))
      << state;
}

TEST(BridgeFailures, AHeldJobDoesNotStopTheNextOne) {
  const TestQueue queue("lp1");
  queue.Record(SetStatus(2));
  SchedulerLog log;
  const std::string held = queue.Print({}, "first");
  log.WaitFor("Backend returned status 3 (hold job)");
  SetStatus(0);
  queue.PrintAndWait({}, "second");
  EXPECT_TRUE(queue.Keeps(held));
}

TEST(BridgeFailures, APrinterFaultStopsTheQueueUntilItIsEnabled) {
  const TestQueue queue("lp1");
  queue.Record("echo 'lamp is broken' >&2\n" + SetStatus(129));
  SchedulerLog log;
  const std::string job = queue.Print({}, "data");
  log.WaitFor("Backend returned status 4 (stop printer)");
  EXPECT_TRUE(queue.Keeps(job));
  EXPECT_NE(std::string::npos, queue.State().find("disabled")) << queue.State();
  EXPECT_NE(std::string::npos, log.Text().find("lamp is broken; the queue lp1 stops until"));

  SetStatus(0);
  EXPECT_EQ(0, RunProgram({"/usr/bin/enable", "lp1"}).status);
  log.WaitFor("[Job " + job + "] Job completed.");
}

TEST(BridgeFailures, AQueueThatLostItsScriptStopsAndKeepsTheJob) {
  const TemporaryDirectory directory;
  const std::string files = TwoFiles(directory);
  for (const std::vector<std::string> &job_files :
       std::vector<Strings>{{files + "a"}, {files + "a", files + "b"}}) {
    const TestQueue queue("lp1");
    std::filesystem::remove(queue.ScriptPath());
    SchedulerLog log;
    const std::string job = queue.Print(job_files);
    log.WaitFor("Backend returned status 4 (stop printer)");
    EXPECT_TRUE(queue.Keeps(job));
    EXPECT_NE(std::string::npos,
              queue.State().find("has no interface script /usr/spool/lp/admins/lp/interfaces/lp1; "
                                 "remove the queue with \"/usr/lib/lpadmin -x lp1\" and add it "
                                 "again in KPXadmin"))
        << queue.State();
  }
}

TEST(BridgeFailures, AnUnreachablePrinterGetsTheJobOnceItCanBeReached) {
  const TemporaryDirectory directory;
  const std::string files = TwoFiles(directory);
  // Nobody can be asked for names, so that the name is known to be unknown.
  const ChangedFile name_service("/etc/nsswitch.conf", "hosts: files\n");
  const TestQueue queue("lp1");
  queue.Append(Block("raw", "printer.invalid"));
  PrintedJobs printed;
  SchedulerLog log;
  const std::string job = queue.Print({files + "a", files + "b"});
  log.WaitFor("The job is kept and tried again");
  EXPECT_TRUE(queue.Keeps(job));

  const std::string script = ContentOf(queue.ScriptPath());
  std::ofstream(queue.ScriptPath()) << WithNetworkAddress(script, "127.0.0.1").value();
  EXPECT_EQ("one\ntwo\n", printed.Next());
  log.WaitFor("[Job " + job + "] Job completed.");
}

TEST(BridgeFailures, AJobThatComesBeforeTheQueueIsSetUpCompletelyPrintsOnceItIs) {
  const TestQueue queue("lp1");
  PrintedJobs printed;
  SchedulerLog log;
  const std::string job = queue.Print({}, "early");
  log.WaitFor("The job is kept and tried again");
  EXPECT_TRUE(queue.Keeps(job));
  const std::string state = RunProgram({"lpstat", "-l", "-p", "lp1"}).output;
  EXPECT_NE(std::string::npos, state.find("was not set up completely; add it again in KPXadmin"))
      << state;

  queue.Append(Block("raw", "127.0.0.1"));
  EXPECT_EQ("early", printed.Next());
  log.WaitFor("[Job " + job + "] Job completed.");
}

TEST(BridgeFailures, AFilterThatFailsHoldsTheJobAndTellsWhy) {
  const TestQueue queue("lp1");
  queue.Append(Block("postscript", "127.0.0.1"));
  SchedulerLog log;
  const std::string job = queue.Print({}, "%!PS\nshowpage\n");
  log.WaitFor("Backend returned status 3 (hold job)");
  EXPECT_TRUE(queue.Keeps(job));
  EXPECT_NE(std::string::npos, log.Text().find("kpxnbtrans: the job is empty"));
  const std::string state = RunProgram({"lpstat", "-l", "-p", "lp1"}).output;
  EXPECT_NE(std::string::npos,
            state.find("kpxfilter: /nowhere.ppd: No such file or directory; the job is held "
                       "(status 1)\n"))
      << state;
}

TEST(BridgeFailures, CancellingAJobEndsItsScript) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << kSignalsBackendAlone;
  const TestQueue queue("lp1");
  const std::string started = "/run/kpx/started";
  std::filesystem::remove_all(started);
  std::filesystem::create_directory(started);
  std::filesystem::permissions(started, std::filesystem::perms(0777));
  queue.Complete("echo started >&2\nsleep 1000 &\necho $$ $! >" + started + "/pids\nwait\n");
  SchedulerLog log;
  const std::string job = queue.Print({}, "data");
  log.WaitFor("Set job-printer-state-message to \"started\"");
  EXPECT_EQ(0, RunProgram({"cancel", "lp1-" + job}).status);
  log.WaitFor("kpxlp) stopped with status 7");
  EXPECT_FALSE(queue.Keeps(job));
  std::ifstream pids(started + "/pids");
  for (pid_t pid = 0; pids >> pid;) {
    // Gone, or about to be taken note of by process 1.
    const std::string state = ContentOf("/proc/" + std::to_string(pid) + "/stat");
    EXPECT_TRUE(state.empty() || state.find(") Z ") != std::string::npos) << state;
  }
}

TEST(BridgeFailures, RemovingAQueueEndsItsScriptAndDropsTheWaitingJobs) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << kSignalsBackendAlone;
  const TestQueue queue("lp1");
  queue.Record("echo waiting >&2; echo $$ >/var/spool/cups/tmp/script; sleep 1000");
  SchedulerLog log;
  queue.Print({}, "prints");
  queue.Print({}, "waits");
  log.WaitFor("Set job-printer-state-message to \"waiting\"");
  pid_t script = 0;
  std::ifstream("/var/spool/cups/tmp/script") >> script;
  EXPECT_EQ(0, RunProgram({"/usr/lib/lpadmin", "-x", "lp1"}).status);
  EXPECT_EQ("", RunProgram({"lpstat", "-o"}).output);
  WaitForEnd(script);

  const TestQueue again("lp1");
  again.Record();
  again.PrintAndWait({}, "new");
  ASSERT_EQ(1u, again.Calls().size()) << "no job of the old queue is printed on the new one";
  EXPECT_EQ(Strings{"new"}, again.Calls()[0].contents);
}

TEST(BridgeFailures, AJobIsNeverTooSlowForTheScheduler) {
  const TestQueue slow("lp1");
  const SchedulerConfiguration configuration(
      WithMaxJobTime(SchedulerConfiguration::Current(), "1"));
  const TestQueue limited("lp2");
  ASSERT_EQ(
      0, RunProgram({"/usr/sbin/lpadmin", "-p", "lp2", "-o", "job-cancel-after-default=1"}).status);
  slow.Complete("sleep 1000\n");
  limited.Complete("sleep 1000\n");
  SchedulerLog log;
  const std::string kept = slow.Print({}, "data");
  const std::string cancelled = limited.Print({}, "data");
  // The scheduler looks at its jobs in their order.
  log.WaitFor("[Job " + cancelled + "] Canceling stuck job");
  EXPECT_TRUE(slow.Keeps(kept));
  EXPECT_EQ(std::string::npos, log.Text().find("[Job " + kept + "] Canceling"));
}

TEST(BridgeFailures, ABackendThatIsTerminatedFromOutsideKeepsTheJob) {
  const TestQueue queue("lp1");
  std::filesystem::remove("/run/kpx/free");
  queue.Record("[ -e /run/kpx/free ] || { echo waiting >&2; sleep 1000; }");
  SchedulerLog log;
  const std::string job = queue.Print({}, "data");
  log.WaitFor("Set job-printer-state-message to \"waiting\"");
  std::ofstream("/run/kpx/free") << std::flush;
  // The end of the system: every process of the backend's group gets the signal.
  EXPECT_EQ(0, kill(-BackendOf(log.Text()), SIGTERM));
  log.WaitFor("[Job " + job + "] Job completed.");
  ASSERT_EQ(2u, queue.Calls().size());
  EXPECT_EQ(Strings{"data"}, queue.Calls()[1].contents);
}

TEST(BridgeFailures, ABackendThatCrashesKeepsTheJob) {
  const TestQueue queue("lp1");
  queue.Complete("kill -SEGV 0\n");  // the whole process group
  SchedulerLog log;
  const std::string job = queue.Print({}, "data");
  log.WaitFor("crashed on signal 11");
  EXPECT_TRUE(queue.Keeps(job));
  EXPECT_NE(std::string::npos, queue.State().find("disabled")) << queue.State();
}

TEST(BridgeFailures, AJobThatPrintedWhenTheSchedulerWentDownIsPrintedWhenItIsBack) {
  const TestQueue queue("lp1");
  std::filesystem::remove("/run/kpx/free");
  queue.Record("[ -e /run/kpx/free ] || { echo waiting >&2; sleep 1000; }");
  SchedulerLog log;
  const std::string job = queue.Print({}, "data");
  log.WaitFor("Set job-printer-state-message to \"waiting\"");
  std::ofstream("/run/kpx/free") << std::flush;
  { const NoScheduler down; }
  log.WaitFor("[Job " + job + "] Job completed.");
  EXPECT_EQ(Strings{"data"}, queue.Calls().back().contents);
}

TEST(BridgeFailures, AFileThatTheScriptCannotReadFailsTheJob) {
  const TestQueue queue("lp1");
  queue.Record();
  const CommandResult run =
      RunProgram({queue.ScriptPath(), "lp1-1", "root", "title", "1", "", "/nowhere"});
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("cannot read /nowhere\n", run.output);
  EXPECT_EQ(1, RunProgram({queue.ScriptPath(), "lp1-1", "root", "title", "1", ""}).status);
  EXPECT_TRUE(queue.Calls().empty());
}

TEST(BridgeFailures, TheBackendRefusesToBeStartedByHand) {
  const std::string backend = "/usr/lib/cups/backend/kpxlp";
  EXPECT_EQ(0, RunProgram({backend}).status) << "asked for devices";
  EXPECT_EQ(1, RunProgram({backend, "1", "root"}).status);
  EXPECT_EQ(1, RunProgram({backend, "1", "root", "title", "1", ""}).status);
}
