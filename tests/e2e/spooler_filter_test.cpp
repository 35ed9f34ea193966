// Jobs that the filter does not print, and settings of one request, through the real spooler: the
// job waits, the queue says why, and the printer gets nothing.
#include <gtest/gtest.h>

#include "changedfile.h"
#include "interfacescript.h"
#include "printedjobs.h"
#include "spooler.h"

namespace {

constexpr char kOptions[] = "/opt/orlan/data/lp1.def";

std::string Block(const std::string &type) {
  return InterfaceBlockText({.queue_type = type,
                             .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41201.ppd",
                             .def_path = kOptions,
                             .address = "127.0.0.1",
                             .transport_parameter = "120"});
}

class FilteredQueue : public testing::Test {
 protected:
  FilteredQueue() : queue_("lp1") {}

  // Prints what a queue of `type` does not print: the job is held and says so.
  void ExpectRefused(const std::string &type, const std::string &data, const std::string &words) {
    queue_.Append(Block(type));
    SchedulerLog log;
    const std::string job = queue_.Print({}, data);
    log.WaitFor("Backend returned status");
    EXPECT_NE(log.Text().find("Backend returned status 3 (hold job)"), std::string::npos);
    EXPECT_TRUE(queue_.Keeps(job));
    const std::string expected = "kpxfilter: " + words + "; the job is held (status 1)";
    EXPECT_NE(queue_.State().find(expected), std::string::npos) << queue_.State();
    const std::string jobs = RunProgram({"lpstat", "-l", "-o", "lp1"}).output;
    EXPECT_NE(jobs.find("Status: " + expected), std::string::npos) << jobs;
  }

  const TestQueue queue_;
  const ChangedFile options_{kOptions, "*Duplex=None\n"};
  PrintedJobs printed_;
};

TEST_F(FilteredQueue, HoldsAFileOfAnotherKindAndSendsNothingOfIt) {
  ExpectRefused("postscript", "\x89PNG\r\n\x1A\n picture",
                "the file is a PNG picture, but this queue prints only PostScript");
  // The printer's next job is the next one that is printed.
  queue_.Print({}, "%!PS\n% a page\nshowpage\n");
  const std::optional<std::string> job = printed_.Next();
  ASSERT_TRUE(job);
  EXPECT_NE(job->find("% a page\n"), std::string::npos);
}

TEST_F(FilteredQueue, HoldsTheJobsOfAQueueWhoseOptionFileIsGone) {
  std::filesystem::remove(kOptions);
  ExpectRefused("text", "a page\n",
                "the queue's option file /opt/orlan/data/lp1.def is missing: save the queues in "
                "KPXadmin, which writes it again");
}

TEST_F(FilteredQueue, PrintsARequestWithItsOwnSettings) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has them only as root";
  queue_.Append(Block("postscript"));
  const std::string number = queue_.Print({"-H", "hold"}, "%!PS\nshowpage\n");
  // Of the user who printed.
  const std::string directory = "/opt/orlan/data/users/root";
  std::filesystem::create_directory(directory);
  std::ofstream(directory + "/lp1-" + number) << "*NrCopies=7\n";
  RunProgram({"lp", "-i", "lp1-" + number, "-H", "resume"});
  const std::optional<std::string> job = printed_.Next();
  std::filesystem::remove_all(directory);
  ASSERT_TRUE(job);
  EXPECT_NE(job->find("<</NumCopies 7>>"), std::string::npos) << *job;
}

}  // namespace
