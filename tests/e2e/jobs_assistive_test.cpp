// Every task of the job window done by assistive technology (AT-SPI), with a real spooler.
#include "assistive.h"
#include "deadline.h"
#include "jobstest.h"

namespace {

using Strings = std::vector<std::string>;

class AssistiveTechnology : public Jobs {
 protected:
  static CommandResult Use(const Strings &steps) {
    return UseAssistively(steps, {"/usr/bin/KPXjobs"});
  }

  static std::string Jobs(const std::string &row) { return CatalogueText("DEF_LBL_JOBS") + row; }
  static std::string Queues(const std::string &row) {
    return CatalogueText("DEF_LBL_QUEUES") + row;
  }
  static std::string Button(const char *name) {
    return CatalogueText("DEF_BTN_" + std::string(name) + "_TITLE");
  }
};

TEST_F(AssistiveTechnology, DoesEveryTaskWithJobs) {
  const TestQueue queue("office");
  queue.Record();
  const TestQueue other("annex");
  other.Record();
  queue.Print({"-t", "letter", "-H", "hold"}, "data");
  queue.Print({"-t", "second", "-H", "hold"}, "data");
  ASSERT_EQ(0, RunProgram({"cupsdisable", "annex"}).status);
  const CommandResult result =
      Use({Jobs("=letter"), "~" + CatalogueText("JOB_HELD_REASON"), Button("RELEASE"),
           Jobs(":letter=" + CatalogueText("JOB_PRINTED")), Button("AGAIN"), Jobs("=second"),
           Button("MOVE"), Button("OK"), Jobs(":second=annex"), Button("RELEASE"),
           Jobs(":second=" + CatalogueText("JOB_WAITING")), Button("HOLD"),
           Jobs(":second=" + CatalogueText("JOB_HELD")), Button("CANCELJOB"), Button("YES"),
           Jobs(":second=" + CatalogueText("JOB_CANCELLED")), Button("WHY"), Button("OK"),
           Button("CLOSE")});
  EXPECT_EQ(0, result.status) << result.output;
  // The second print goes on while the other tasks are done.
  const Deadline deadline(EventPatience());
  while (queue.Calls().size() < 2 && deadline.Left() > 0) poll(nullptr, 0, 20);
  EXPECT_EQ(2U, queue.Calls().size());
}

TEST_F(AssistiveTechnology, DoesEveryTaskWithQueues) {
  const TestQueue queue("office");
  queue.Record();
  const CommandResult result =
      Use({Queues("=office"), Button("STOP"), Button("YES"),
           Queues(":office=" + CatalogueText("QUEUE_STOPPED")),
           "~" + CatalogueText("QUEUE_STOPPED_REASON"), Button("START"),
           Queues(":office=" + CatalogueText("QUEUE_READY")), Button("REFUSE"), Button("YES"),
           Queues(":office=" + Button("NO")), Button("ACCEPT"), Queues(":office=" + Button("YES")),
           Button("TESTPAGE"), Jobs(":" + Button("TESTPAGE") + "=" + CatalogueText("JOB_PRINTED")),
           Button("HELP"), Button("OK"), Button("CLOSE")});
  EXPECT_EQ(0, result.status) << result.output;
  EXPECT_EQ(1U, queue.Calls().size());
}

}  // namespace
