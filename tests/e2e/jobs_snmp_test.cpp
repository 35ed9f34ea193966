// "Why?" and kpxctl ask the printer itself: a real SNMP agent answers in its place.
#include <sys/stat.h>

#include "changedfile.h"
#include "interfacescript.h"
#include "jobstest.h"
#include "must.h"
#include "paths.h"

namespace {

constexpr char kQueue[] = "asked";
constexpr char kConfiguration[] = "/etc/cups/snmp.conf";

// A printer's agent, which reports the error state: two bytes in hexadecimal digits.
class Agent {
 public:
  explicit Agent(const std::string &state, const std::string &community = "public",
                 const std::string &agent = "udp:127.0.0.1") {
    const std::string settings = directory_.Write(
        "agent", "rocommunity " + community + " 127.0.0.1\nrocommunity6 " + community +
                     " ::1\noverride " + kState + " octet_str 0x" + state + "\n");
    const std::string pid_file = directory_.Path("pid");
    const CommandResult started = RunProgram({"/usr/sbin/snmpd", "-C", "-c", settings, "-Lf",
                                              "/dev/null", "-p", pid_file, agent + ":161"});
    if (started.status != 0) throw std::runtime_error("snmpd: " + started.output);
    // It asks again until the agent is there.
    const CommandResult asked = RunProgram(
        {"/usr/bin/snmpget", "-v1", "-c", community, "-t", "1", "-r", "200", agent, kState});
    std::ifstream(pid_file) >> pid_;
    if (asked.status != 0 || pid_ <= 1) throw std::runtime_error("snmpget: " + asked.output);
  }
  ~Agent() {
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
    kill(pid_, SIGKILL);
    const Deadline deadline(EventPatience());
    HasEvents(handle, POLLIN, deadline);
    close(handle);
  }
  Agent(const Agent &) = delete;
  Agent &operator=(const Agent &) = delete;

 private:
  static constexpr char kState[] = ".1.3.6.1.2.1.25.3.5.1.2.1";

  TemporaryDirectory directory_;
  int pid_ = 0;
};

class AskedPrinter : public Jobs {
 protected:
  AskedPrinter() {
    const CommandResult made =
        RunProgram({KPX_MAKEQUEUES, std::string(kQueue) + "=postscript=Vek Norvel 4110ES"});
    if (made.status != 0) throw std::runtime_error(made.output);
    Must(ChangeAddressInInterface(kQueue, "127.0.0.1", nullptr));
  }
  ~AskedPrinter() override { RunProgram({"/usr/lib/lpadmin", "-x", kQueue}); }

  // What kpxctl says; `status` is its own.
  static void ExpectStep(const std::string &step, int status = 1) {
    const CommandResult result = RunProgram({"/usr/sbin/kpxctl", "why", kQueue});
    EXPECT_EQ(status, result.status);
    EXPECT_NE(std::string::npos, result.output.find(step + "\n")) << result.output;
  }
};

TEST_F(AskedPrinter, TellsWhatItLacks) {
  {
    const Agent agent("4000");
    ExpectStep(CatalogueText("PRINTER_PAPER_OUT") + "\n    " + CatalogueText("WHY_STATUS_MEND"));
  }
  {
    const Agent agent("0800");
    ExpectStep(CatalogueText("PRINTER_DOOR_OPEN"));
  }
  const Agent agent("0120");
  ExpectStep(CatalogueText("PRINTER_FAULT"));
}

TEST_F(AskedPrinter, IsNotAtFaultWithLittleToner) {
  {
    const Agent agent("2000");
    ExpectStep(CatalogueText("PRINTER_TONER_LOW"), 0);
  }
  const Agent agent("0000");
  ExpectStep(CatalogueText("WHY_STATUS_GOOD"), 0);
}

TEST_F(AskedPrinter, IsNotAtFaultWhenItSaysNothing) {
  ExpectStep(CatalogueText("WHY_STATUS_UNKNOWN"), 0);
}

TEST_F(AskedPrinter, IsAskedByTheCommunityOfCups) {
  const Agent agent("4000", "site");
  ExpectStep(CatalogueText("WHY_STATUS_UNKNOWN"), 0);
  const ChangedFile configured(kConfiguration, "Community site\n");
  ExpectStep(CatalogueText("PRINTER_PAPER_OUT"));
  ASSERT_EQ(0, chmod(kConfiguration, 0640));
  ExpectStep(CatalogueText("WHY_STATUS_UNKNOWN"), 0);
  ASSERT_EQ(0, chmod(kConfiguration, 0644));
}

TEST_F(AskedPrinter, MayHaveAnAddressOfVersion6) {
  Must(ChangeAddressInInterface(kQueue, "::1", nullptr));
  const Agent agent("0400", "public", "udp6:[::1]");
  ExpectStep(CatalogueText("PRINTER_JAM"));
}

TEST_F(AskedPrinter, ShowsInTheWindow) {
  const Agent agent("4800");
  JobsApp app;
  app.WaitRow("QueuesClist", kQueue);
  app.Select("QueuesClist", kQueue);
  app.WaitUntil("Why?", [&] { return app.IsSensitive("WhyButton"); });
  app.Click("WhyButton");
  app.WaitWindow("WhyWindow");
  const std::string found =
      CatalogueText("PRINTER_PAPER_OUT") + " " + CatalogueText("PRINTER_DOOR_OPEN");
  app.WaitUntil("the conclusion",
                [&] { return app.Text("WhyLabel") == CatalogueText("WHY_FOUND", {found}); });
  EXPECT_NE(std::string::npos, app.Text("WhyText").find(CatalogueText("WHY_STATUS_MEND")));
}

}  // namespace
