// A signal that comes while a save is going on.
#include <csignal>

#include "savedqueues.h"

namespace {

constexpr char kGate[] = "/run/kpx/signal-gate";
constexpr char kReached[] = "/run/kpx/signal-reached";

// For its lifetime the spooler's first command waits at the gate and then takes more than half a
// second, so that the progress is drawn before the next one.
class SlowSpooler {
 public:
  SlowSpooler() {
    mkfifo(kGate, 0600);
    std::filesystem::rename(kLpadmin, kAway);
    std::ofstream(kLpadmin) << "#!/bin/sh\n"
                               "if [ ! -e " +
                                   std::string(kReached) + " ]; then\n  : >" + kReached +
                                   "\n  read -r line <" + kGate + "\n  sleep 0.6\nfi\nexec " +
                                   kAway + " \"$@\"\n";
    std::filesystem::permissions(kLpadmin, std::filesystem::perms(0755));
  }
  ~SlowSpooler() {
    std::filesystem::rename(kAway, kLpadmin);
    std::filesystem::remove(kGate);
    std::filesystem::remove(kReached);
  }
  SlowSpooler(const SlowSpooler &) = delete;
  SlowSpooler &operator=(const SlowSpooler &) = delete;

 private:
  static constexpr char kAway[] = "/usr/lib/lpadmin.away";
};

class SaveAndSignal : public RealSpoolerTest {};

TEST_F(SaveAndSignal, ATerminatingSignalEndsTheProgramOnlyAfterTheWholeSave) {
  AddAndSave({{.name = "lp1"}, {.name = "lp2"}, {.name = "lp3"}, {.name = "lp4"}});
  const SlowSpooler slow;
  AdminApp app;
  app.SelectQueues({0, 1, 2});
  app.Click("DeleteButton");
  app.Click("SaveButton");
  app.WaitUntil("the first removal", [] { return std::filesystem::exists(kReached); });
  kill(app.pid(), SIGTERM);
  std::ofstream(kGate) << "go\n";
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ("", app.Stderr());
  EXPECT_EQ("lp4\n", SpoolerQueues());
  EXPECT_EQ(kListHeader + ListEntry({.name = "lp4"}, k4110.ppd), ContentOf(kQueuesFile));
}

}  // namespace
