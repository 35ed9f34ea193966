// kpxctl --host on three hosts with an sshd and a cupsd each, one of which is switched off while it
// works.
#include <fstream>

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

// The first block of docs/fleet.md in that language.
std::string BlockOfManual(const std::string &language) {
  const std::string page = ContentOf(KPX_FLEET_MANUAL);
  const std::string opening = "```" + language + "\n";
  const size_t start = page.find(opening);
  if (start == std::string::npos) throw std::runtime_error("no block " + language);
  const size_t text = start + opening.size();
  return page.substr(text, page.find("```", text) - text);
}

constexpr char kSite[] = R"({
  "defaults": {"printer": "Vek Norvel 4120ES", "options": {"Duplex": "DuplexNoTumble"}},
  "queues": {"acc1": {"address": "127.0.0.1"}, "acc2": {"address": "127.0.0.2"}}
})";

TEST(CtlFleet, ThePlayOfTheManualFinishesAHostThatWasSwitchedOffInTheMiddle) {
  const TemporaryDirectory directory;
  directory.Write("play.yml", BlockOfManual("yaml"));
  directory.Write("queues.json", kSite);
  directory.Write("inventory", "[printservers]\nhost[1:3] ansible_user=root\n");
  std::filesystem::create_directories("/etc/ssh/ssh_config.d");
  std::ofstream("/etc/ssh/ssh_config.d/alive.conf") << BlockOfManual("sshconfig");
  // The connections that ansible keeps open would hold a pipe open.
  const std::string play =
      "ansible-playbook -i inventory -e ansible_python_interpreter=/usr/bin/python3 play.yml >log "
      "2>&1";
  const CommandResult result = OnFleet(
      "cd " + directory.Path("") + "; ssh host2 'kill -STOP $(cat /run/cups/cupsd.pid)'; " + play +
      " & call=$!; while kill -0 $call && ! ssh host2 'pgrep lpadmin' >/dev/null; do sleep 0.1; "
      "done; "
      "$KPX_FLEET_OFF 2; wait $call; echo \"status $?\"; cat log; "
      "kpxctl --host host1,host3 diff /etc/kpx-queues.json; "
      "$KPX_FLEET_ON 2; " +
      play +
      "; echo \"again $?\"; cat log; "
      "kpxctl --host host1,host2,host3 diff /etc/kpx-queues.json && "
      "kpxctl --host host1,host2,host3 check && kpxctl --host host2 list");
  EXPECT_EQ(0, result.status) << result.output;
  EXPECT_FALSE(Says(result.output, "status 0")) << result.output;
  const auto fails = [&](const std::string &host) {
    return result.output.find("fatal: [" + host + "]: ") != std::string::npos;
  };
  EXPECT_TRUE(fails("host2") && !fails("host1") && !fails("host3")) << result.output;
  EXPECT_TRUE(Says(result.output, "again 0")) << result.output;
  for (const std::string host : {"host1", "host3"}) {
    EXPECT_TRUE(Says(result.output, host + ": ended with status 0")) << result.output;
  }
  for (const std::string host : {"host1", "host2", "host3"}) {
    EXPECT_TRUE(Says(result.output,
                     host + ": List, option files, interface scripts and print service agree."))
        << result.output;
  }
  EXPECT_TRUE(Says(result.output, "acc2  Vek Norvel 4120ES  PostScript  127.0.0.2"))
      << result.output;
}

}  // namespace
