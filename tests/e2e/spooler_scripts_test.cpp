// Interface scripts that would take a job and not print it: the backend runs none of them.
#include <gtest/gtest.h>

#include "changedfile.h"
#include "interfacescript.h"
#include "printedjobs.h"
#include "spooler.h"

namespace {

constexpr char kMarker[] = "# the following lines are inserted by KPXadmin";
constexpr char kTransport[] = "} | /opt/orlan/bin/kpxnbtrans ";
constexpr char kEndOfModel[] = "# End of the model";

std::string Block(const std::string &transport_parameter = "120") {
  return InterfaceBlockText({.queue_type = "raw",
                             .ppd_path = "",
                             .def_path = "/opt/orlan/data/lp1.def",
                             .address = "127.0.0.1",
                             .transport_parameter = transport_parameter});
}

std::string Model() { return ContentOf(std::string(kBridgeModels) + "/vek4120"); }

std::string WithoutLine(std::string script, const std::string &start) {
  const size_t at = script.find("\n" + start) + 1;
  EXPECT_NE(at, std::string::npos + 1) << start;
  return script.erase(at, script.find('\n', at) + 1 - at);
}

std::string UpTo(const std::string &script, const std::string &part) {
  return script.substr(0, script.find(part) + part.size());
}

// The queue's script is what is given; a job that is printed then.
class Scripts : public testing::Test {
 protected:
  void Put(const std::string &script) const {
    std::ofstream(queue_.ScriptPath(), std::ios::trunc) << script;
  }

  // What the queue says about a job of two files that is held; the printer gets nothing of it.
  std::string StateOfHeldJob() {
    std::filesystem::permissions(directory_.Path(), std::filesystem::perms(0755));
    SchedulerLog log;
    const std::string job =
        queue_.Print({directory_.Write("a", "one\n"), directory_.Write("b", "two\n")});
    log.WaitFor("Backend returned status");
    EXPECT_NE(log.Text().find("Backend returned status 3 (hold job)"), std::string::npos)
        << log.Text();
    EXPECT_TRUE(queue_.Keeps(job));
    return RunProgram({"lpstat", "-l", "-p", "lp1"}).output;
  }

  void ExpectPrints(const std::string &script) {
    Put(script);
    queue_.PrintAndWait({}, "data");
    EXPECT_EQ("data", printed_.Next());
  }

  TemporaryDirectory directory_;
  TestQueue queue_{"lp1"};
  PrintedJobs printed_;
};

}  // namespace

TEST_F(Scripts, OneThatIsEmptyOrCutOffHoldsTheJobAndSaysWhatToDo) {
  const std::string whole = Model() + Block();
  const std::vector<std::string> broken = {
      "",
      UpTo(Model(), "set -e\n"),
      WithoutLine(whole, kEndOfModel),
      WithoutLine(whole, kMarker),
      UpTo(whole, "# the following lines"),
      UpTo(whole, std::string(kMarker) + "\n"),
      WithoutLine(whole, kTransport),
      UpTo(whole, "kpxnbtrans $NETWORK"),
      UpTo(whole, "2501 12"),
      std::string(whole.size(), '\0'),
  };
  for (const std::string &script : broken) {
    Put(script);
    const std::string state = StateOfHeldJob();
    EXPECT_NE(
        state.find("interfaces/lp1 is empty or incomplete; the job is held: move it to another "
                   "queue with lpmove, then remove the queue with \"/usr/lib/lpadmin -x lp1\" "
                   "and add it again in KPXadmin"),
        std::string::npos)
        << script.size() << " bytes: " << state;
  }
  ExpectPrints(whole);
}

TEST_F(Scripts, OneThatNeverGotItsLinesHoldsTheJobOnceItIsNoLongerNew) {
  std::filesystem::last_write_time(
      queue_.ScriptPath(), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  const std::string state = StateOfHeldJob();
  EXPECT_NE(state.find("The queue lp1 was not set up completely; the job is held"),
            std::string::npos)
      << state;
}

TEST_F(Scripts, OneIsWholeWithOrWithoutTransportParameterAndWithLinesBehindItsBlock) {
  ExpectPrints(Model() + Block(""));
  ExpectPrints(Model() + Block() + "# seen by the administrator");
}

TEST_F(Scripts, SomebodysOwnIsWholeWhenItsLastLineSaysSo) {
  const std::string own =
      "#!/bin/sh\nshift 5\ncat \"$@\" | /opt/orlan/bin/kpxnbtrans 127.0.0.1 2501\n";
  Put(own);
  EXPECT_NE(StateOfHeldJob().find("is empty or incomplete"), std::string::npos);
  ExpectPrints(own + kEndOfScript);
}

TEST_F(Scripts, OneThatTheSpoolerCannotRunStopsTheQueueAndSaysWhatToDo) {
  queue_.Append(Block());
  std::filesystem::permissions(queue_.ScriptPath(), std::filesystem::perms(0644));
  SchedulerLog log;
  const std::string job = queue_.Print({}, "data");
  log.WaitFor("Backend returned status 4 (stop printer)");
  EXPECT_TRUE(queue_.Keeps(job));
  EXPECT_NE(queue_.State().find("The user lp cannot run the interface script "
                                "/usr/spool/lp/admins/lp/interfaces/lp1; put its mode (755) and "
                                "owner (lp) right and enable the queue"),
            std::string::npos)
      << queue_.State();

  std::filesystem::permissions(queue_.ScriptPath(), std::filesystem::perms(0755));
  EXPECT_EQ(0, RunProgram({"/usr/bin/enable", "lp1"}).status);
  EXPECT_EQ("data", printed_.Next());
}
