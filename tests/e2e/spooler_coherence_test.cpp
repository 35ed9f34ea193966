// Commands of the bridge that run at the same time, or are held up: a queue is there as a whole or
// not at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <csignal>
#include <future>
#include <thread>

#include "descriptor.h"
#include "faultinjection.h"
#include "spooler.h"

using kpx::transport::Descriptor;

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

constexpr char kLock[] = "/usr/spool/lp/admins/lp/lock";
const Strings kMake = {"/usr/lib/lpadmin", "-p", "lp1", "-m", "vek4120"};
const Strings kRemove = {"/usr/lib/lpadmin", "-x", "lp1"};

std::future<CommandResult> InBackground(const Strings &command) {
  return std::async(std::launch::async, [command] { return RunProgram(command); });
}

// Where something of the queue lp1 lies.
Strings PlacesOfQueue() {
  Strings places;
  if (RunProgram({"lpstat", "-v", "lp1"}).status == 0) places.push_back("CUPS");
  if (fs::exists(std::string(kBridgeInterfaces) + "/lp1")) places.push_back("script");
  if (fs::exists(std::string(kBridgePrinters) + "/lp1")) places.push_back("entry");
  return places;
}

// Runs the command in place of this process, without what it says; returns when that cannot be
// done.
int Become(Strings command) {
  std::vector<char *> words;
  for (std::string &word : command) words.push_back(word.data());
  words.push_back(nullptr);
  dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
  execv(words[0], words.data());
  return 127;
}

// Runs the command and kills it, with all that it started, before its `last`th call that can change
// a queue. False when it ended by itself before.
bool RunUntilCutDown(const Strings &command, int last) {
  int seen = 0;
  return RunTraced([] {}, [&] { return Become(command); },
                   [&](const FileCall &call) {
                     const bool counts =
                         call.changes && (IsBelow(call, {"/usr/spool/lp"}) || SendsToServer(call));
                     return CallFate{.kind = counts && ++seen == last ? CallFate::Kind::CutDown
                                                                      : CallFate::Kind::Made};
                   })
      .killed;
}

// For its lifetime the commands find a scheduler that takes their calls and serves nobody.
class BusyScheduler {
 public:
  BusyScheduler() : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    kPath.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(socket_.get(), reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
        listen(socket_.get(), 5) != 0) {
      throw std::runtime_error("no scheduler at " + std::string(kPath));
    }
    setenv("CUPS_SERVER", std::string(kPath).c_str(), 1);
    thread_ = std::thread([this] { Serve(); });
  }
  ~BusyScheduler() {
    unsetenv("CUPS_SERVER");
    shutdown(socket_.get(), SHUT_RDWR);
    thread_.join();
    fs::remove(kPath);
  }
  BusyScheduler(const BusyScheduler &) = delete;
  BusyScheduler &operator=(const BusyScheduler &) = delete;

 private:
  static constexpr std::string_view kPath = "/run/kpx/busy.sock";

  void Serve() const {
    for (;;) {
      const Descriptor caller(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      if (!caller) return;
      char request[4096];
      constexpr std::string_view kAnswer =
          "HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
      if (read(caller.get(), request, sizeof request) > 0) {
        send(caller.get(), kAnswer.data(), kAnswer.size(), MSG_NOSIGNAL);
      }
    }
  }

  Descriptor socket_;
  std::thread thread_;
};

class Coherence : public testing::Test {
 protected:
  Coherence() { RequirePrivateWorld(); }
  ~Coherence() override { RunProgram(kRemove); }
};

}  // namespace

TEST_F(Coherence, MakingAndRemovingAQueueAtTheSameTimeLeavesItWholeOrNotAtAll) {
  for (int round = 1; round <= 40; ++round) {
    auto made = InBackground(kMake);
    auto removed = InBackground(kRemove);
    EXPECT_EQ(made.get().status, 0);
    const CommandResult removal = removed.get();
    EXPECT_TRUE(removal.status == 0 || removal.output == "lpadmin: there is no queue \"lp1\"\n")
        << removal.output;
    const Strings places = PlacesOfQueue();
    EXPECT_TRUE(places.empty() || places.size() == 3)
        << "round " << round << " leaves " << testing::PrintToString(places);
  }
}

TEST_F(Coherence, ACommandThatWaitsTooLongForAnotherSaysSoAndChangesNothing) {
  ASSERT_EQ(RunProgram(kMake).status, 0);
  const Descriptor lock(open(kLock, O_RDONLY | O_CLOEXEC));
  ASSERT_TRUE(lock);
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  std::vector<std::pair<std::string, std::future<CommandResult>>> waiting;
  waiting.emplace_back("lpadmin", InBackground(kRemove));
  waiting.emplace_back("accept", InBackground({"/usr/bin/accept", "lp1"}));
  waiting.emplace_back("enable", InBackground({"/usr/bin/enable", "lp1"}));
  for (auto &[name, command] : waiting) {
    const CommandResult result = command.get();
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_EQ(result.output,
              name +
                  ": another lpadmin, accept or enable has been at work for 30 seconds; try "
                  "again when it has ended\n");
  }
  EXPECT_EQ(PlacesOfQueue(), (Strings{"CUPS", "script", "entry"}));
  EXPECT_NE(RunProgram({"lpstat", "-a", "lp1"}).output.find("not accepting"), std::string::npos);

  ASSERT_EQ(flock(lock.get(), LOCK_UN), 0);
  EXPECT_EQ(RunProgram({"/usr/bin/accept", "lp1"}).status, 0);
}

TEST_F(Coherence, NobodyElseCanHoldTheCommandsUp) {
  ASSERT_EQ(RunProgram(kMake).status, 0);
  EXPECT_EQ(ModeOf(kLock), 0600U);
}

TEST_F(Coherence, AQueueThatIsMadeAgainKeepsItsJobsStateAndSettings) {
  ASSERT_EQ(RunProgram(kMake).status, 0);
  ASSERT_EQ(RunProgram({"/usr/bin/accept", "lp1"}).status, 0);
  ASSERT_EQ(RunProgram({"/usr/sbin/lpadmin", "-p", "lp1", "-L", "Room 5", "-D", "Our printer", "-o",
                        "sides-default=two-sided-long-edge"})
                .status,
            0);
  ASSERT_EQ(RunProgram({"/usr/bin/lp", "-d", "lp1"}, "data").status, 0);
  const auto state = [] {
    return RunProgram({"lpstat", "-l", "-p", "lp1", "-a", "lp1", "-o", "lp1"}).output +
           RunProgram({"lpoptions", "-p", "lp1"}).output;
  };
  const std::string before = state();
  for (const char *lost : {"/usr/spool/lp/admins/lp/interfaces/lp1",
                           "/usr/spool/lp/admins/lp/printers/lp1", "/nothing"}) {
    fs::remove(lost);
    EXPECT_EQ(RunProgram(kMake).status, 0);
    EXPECT_EQ(state(), before);
    EXPECT_EQ(PlacesOfQueue(), (Strings{"CUPS", "script", "entry"})) << "without " << lost;
  }
}

TEST_F(Coherence, WhateverIsLeftOfAQueueCanBeRemovedAndMadeAnew) {
  for (const Strings &command : {kRemove, kMake}) {
    // One bit for each place where something is left.
    for (int left = 1; left < 8; ++left) {
      ASSERT_EQ(RunProgram(kMake).status, 0);
      if ((left & 1) == 0) RunProgram({"/usr/sbin/lpadmin", "-x", "lp1"});
      if ((left & 2) == 0) fs::remove(std::string(kBridgeInterfaces) + "/lp1");
      if ((left & 4) == 0) fs::remove(std::string(kBridgePrinters) + "/lp1");
      const CommandResult result = RunProgram(command);
      EXPECT_EQ(result.status, 0) << left << ": " << result.output;
      EXPECT_EQ(PlacesOfQueue().size(), command == kMake ? 3U : 0U) << left;
    }
  }
}

TEST_F(Coherence, ACommandThatWasKilledAnywhereIsFinishedByRepeatingIt) {
  for (const bool make : {true, false}) {
    int kills = 0;
    for (bool killed = true; killed; ++kills) {
      RunProgram(make ? kRemove : kMake);
      ASSERT_EQ(PlacesOfQueue().size(), make ? 0U : 3U);
      killed = RunUntilCutDown(make ? kMake : kRemove, kills + 1);
      if (!killed) break;
      const std::string left = testing::PrintToString(PlacesOfQueue());
      const CommandResult again = RunProgram(make ? kMake : kRemove);
      EXPECT_TRUE(again.status == 0 || (!make && left == "{}")) << left << again.output;
      EXPECT_EQ(PlacesOfQueue().size(), make ? 3U : 0U) << "kill " << kills + 1 << ", " << left;
      EXPECT_EQ(NamesIn(kBridgeInterfaces), make ? Strings{"lp1"} : Strings{});
    }
    EXPECT_GT(kills, 5);
    EXPECT_EQ(PlacesOfQueue().size(), make ? 3U : 0U);
  }
}

TEST_F(Coherence, WhatKilledCommandsLeftGoesWithTheNextOne) {
  for (const char *name : {"/.lpadmin.new", "/.lpadmin.entry"}) {
    std::ofstream(std::string(kBridgeInterfaces) + name) << "half";
  }
  ASSERT_EQ(RunProgram(kMake).status, 0);
  EXPECT_EQ(NamesIn(kBridgeInterfaces), Strings{"lp1"});
}

TEST_F(Coherence, WhatACommandDoesForAQueueIsNotALookAtAllOthers) {
  // Reading a directory is an access to it.
  const Descriptor events(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  for (const char *directory : {kBridgeInterfaces, kBridgePrinters}) {
    ASSERT_NE(-1, inotify_add_watch(events.get(), directory, IN_ACCESS | IN_ONLYDIR));
  }
  const auto were_read = [&] {
    alignas(inotify_event) char buffer[4096];
    bool were = false;
    for (ssize_t size = 0; (size = read(events.get(), buffer, sizeof buffer)) > 0;) {
      for (const char *at = buffer; at < buffer + size;) {
        const auto *event = reinterpret_cast<const inotify_event *>(at);
        were = were || event->len == 0;  // the directory itself
        at += sizeof(inotify_event) + event->len;
      }
    }
    return were;
  };
  NamesIn(kBridgeInterfaces);
  ASSERT_TRUE(were_read());
  ASSERT_EQ(RunProgram(kMake).status, 0);
  ASSERT_EQ(RunProgram(kRemove).status, 0);
  EXPECT_FALSE(were_read());
}

TEST_F(Coherence, ASchedulerThatDoesNotAnswerIsNotTakenForOneWithoutTheQueue) {
  ASSERT_EQ(RunProgram({"/usr/sbin/lpadmin", "-p", "lp1", "-v", "ipp://localhost/x"}).status, 0);
  for (const Strings &command : {kMake, kRemove}) {
    const BusyScheduler busy;
    const CommandResult result = RunProgram(command);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output.find("lpadmin: CUPS does not say whether it has a queue \"lp1\": "), 0U)
        << result.output;
  }
  EXPECT_EQ(PlacesOfQueue(), Strings{"CUPS"});
  EXPECT_NE(RunProgram({"lpstat", "-v", "lp1"}).output.find("ipp://localhost/x"),
            std::string::npos);
  RunProgram({"/usr/sbin/lpadmin", "-x", "lp1"});
}

TEST_F(Coherence, ASignalTakesAwayWhatACommandHasHalfMade) {
  const std::string entry = std::string(kBridgeInterfaces) + "/.lpadmin.entry";
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    const TracedEnd end = RunTraced([] {}, [] { return Become(kMake); },
                                    [&](const FileCall &call) {
                                      // Both files are there, and the next step is CUPS's.
                                      if (fs::exists(entry) && SendsToServer(call)) {
                                        kill(call.process, signal);
                                      }
                                      return CallFate{};
                                    });
    EXPECT_EQ(end.status, 1) << signal;
    EXPECT_EQ(NamesIn(kBridgeInterfaces), Strings{}) << signal;
    RunProgram(kRemove);
  }
}

// What a power cut leaves that comes before CUPS has written its queues to the disk.
class CupsAfterAPowerCut : public Coherence {
 protected:
  CupsAfterAPowerCut() {
    EXPECT_EQ(RunProgram(kMake).status, 0);
    EXPECT_EQ(RunProgram(kMakeOther).status, 0);
  }
  ~CupsAfterAPowerCut() override { RunProgram({"/usr/lib/lpadmin", "-x", "lp2"}); }

  static void LoseQueue() { EXPECT_EQ(RunProgram({"/usr/sbin/lpadmin", "-x", "lp1"}).status, 0); }
  static void RemoveFiles(const std::string &name) {
    fs::remove(std::string(kBridgeInterfaces) + "/" + name);
    fs::remove(std::string(kBridgePrinters) + "/" + name);
  }
  static CommandResult Restore() { return RunProgram({"/usr/lib/lpadmin", "-R"}); }
  static std::string Line(const char *option) {
    return RunProgram({"lpstat", option, "lp1"}).output;
  }

  const Strings kMakeOther = {"/usr/lib/lpadmin", "-p", "lp2", "-m", "vek4120"};
};

TEST_F(CupsAfterAPowerCut, ALostQueueComesBackReadyAndKeepsItsScript) {
  const std::string script = std::string(kBridgeInterfaces) + "/lp1";
  std::ofstream(script, std::ios::app) << "# its own\n";
  const std::string before = ContentOf(script);
  LoseQueue();

  const CommandResult result = Restore();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "lpadmin: CUPS gets the queue \"lp1\" back\n");
  EXPECT_EQ(Line("-v"), "device for lp1: kpxlp:/interface\n");
  EXPECT_EQ(Line("-a").find("lp1 accepting"), 0U) << Line("-a");
  EXPECT_EQ(Line("-p").find("printer lp1 is idle.  enabled"), 0U) << Line("-p");
  EXPECT_EQ(ContentOf(script), before);
}

TEST_F(CupsAfterAPowerCut, ARemovedQueueThatCameBackGoes) {
  RemoveFiles("lp1");
  const CommandResult result = Restore();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "lpadmin: the queue \"lp1\", which had been removed, leaves CUPS again\n");
  EXPECT_EQ(PlacesOfQueue(), Strings{});
  EXPECT_EQ(RunProgram({"lpstat", "-v", "lp2"}).status, 0);
}

TEST_F(CupsAfterAPowerCut, NothingIsChangedThatFits) {
  // A queue that only the administrator has stopped, one that KPXadmin has yet to remove, and one
  // of CUPS itself.
  EXPECT_EQ(RunProgram({"/usr/sbin/cupsdisable", "lp2"}).status, 0);
  fs::remove(std::string(kBridgePrinters) + "/lp1");
  EXPECT_EQ(RunProgram({"/usr/sbin/lpadmin", "-p", "own", "-v", "file:/dev/null"}).status, 0);
  const std::string before = RunProgram({"lpstat", "-v", "-a", "-p"}).output;
  EXPECT_EQ(Restore().output, "");
  EXPECT_EQ(RunProgram({"lpstat", "-v", "-a", "-p"}).output, before);
  RunProgram({"/usr/sbin/lpadmin", "-x", "own"});
}

TEST_F(CupsAfterAPowerCut, WithoutTheDiskOfTheQueuesNoneIsRemoved) {
  RemoveFiles("lp1");
  RemoveFiles("lp2");
  EXPECT_EQ(Restore().output, "");
  EXPECT_EQ(PlacesOfQueue(), Strings{"CUPS"});
}
