// kpxctl --host on three hosts with an sshd and a cupsd each, one of which is switched off while it
// works.
#include "ctltest.h"

namespace {

bool Says(const std::string &output, const std::string &line) {
  return ("\n" + output).find("\n" + line + "\n") != std::string::npos;
}

// Runs the shell command while there are three hosts.
CommandResult OnFleet(const std::string &command) {
  return RunProgram({KPX_FLEET, "sh", "-c", command});
}

constexpr char kAll[] = "kpxctl --host host1,host2,host3 ";
constexpr char kNewQueue[] = "--printer 'Vek Norvel 4120ES' --address 127.0.0.1";

TEST(CtlFleet, ThreeHostsGetAQueueAndEachTellsIt) {
  const CommandResult result =
      OnFleet(std::string(kAll) + "add lp1 " + kNewQueue + " && " + kAll + "list");
  EXPECT_EQ(0, result.status) << result.output;
  for (const std::string host : {"host1", "host2", "host3"}) {
    EXPECT_TRUE(Says(result.output, host + ": lp1  Vek Norvel 4120ES  PostScript  127.0.0.1"))
        << host << result.output;
  }
  EXPECT_EQ("", RunProgram({"lpstat", "-e"}).output) << "nothing is done here";
}

TEST(CtlFleet, AHostThatIsSwitchedOffInTheMiddleFailsAndTheOthersGoOn) {
  // Its print service stands still, so that it is at work when it goes.
  const CommandResult result =
      OnFleet(std::string("ssh host2 'kill -STOP $(cat /run/cups/cupsd.pid)'; ") + kAll +
              "add lp1 " + kNewQueue +
              " & call=$!; until ssh host2 'pgrep lpadmin' >/dev/null; do sleep 0.1; done; "
              "$KPX_FLEET_OFF 2; wait $call; echo \"status $?\"; "
              "kpxctl --host host1,host3 check");
  EXPECT_EQ(0, result.status) << result.output;
  EXPECT_TRUE(Says(result.output, "status 1")) << result.output;
  for (const std::string host : {"host1", "host3"}) {
    EXPECT_TRUE(Says(result.output, host + ": ended with status 0")) << result.output;
    EXPECT_TRUE(Says(result.output,
                     host + ": List, option files, interface scripts and print service agree."))
        << result.output;
  }
  EXPECT_NE(std::string::npos, result.output.find("host2: ssh did not get there, or lost the host"))
      << result.output;
}

}  // namespace
