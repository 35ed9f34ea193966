// More jobs than the print service tells of at a time: none is missing, and the newest come first.
#include <algorithm>
#include <atomic>
#include <iterator>

#include "ippclient.h"
#include "jobstest.h"
#include "manyjobs.h"
#include "spoolerrequests.h"

namespace {

constexpr int kMany = 620;  // CUPS tells of 500 at a time

class ManyJobs : public Jobs {
 protected:
  // What AskForJobs tells, part by part.
  static std::vector<std::vector<int>> Parts(bool own, size_t most = SIZE_MAX) {
    const std::atomic<bool> stop = false;
    IppClient client(stop, [] {});
    std::vector<std::vector<int>> parts;
    EXPECT_TRUE(AskForJobs(client, own, [&](const std::vector<SpoolerJob> &jobs) {
      parts.emplace_back();
      for (const SpoolerJob &job : jobs) parts.back().push_back(job.number);
      return parts.size() < most;
    }));
    return parts;
  }

  static std::vector<int> AllOf(const std::vector<std::vector<int>> &parts) {
    std::vector<int> all;
    for (const std::vector<int> &part : parts) all.insert(all.end(), part.begin(), part.end());
    std::sort(all.begin(), all.end());
    return all;
  }

  static void ExpectAll(const std::vector<int> &numbers,
                        const std::vector<std::vector<int>> &parts) {
    const std::vector<int> told = AllOf(parts);
    std::vector<int> differences;
    std::set_symmetric_difference(numbers.begin(), numbers.end(), told.begin(), told.end(),
                                  std::back_inserter(differences));
    EXPECT_EQ(std::vector<int>{}, differences) << told.size() << " of " << numbers.size();
  }

  static void ExpectNewestFirst(const std::vector<std::vector<int>> &parts) {
    ASSERT_LT(1U, parts.size());
    for (const std::vector<int> &part : parts) {
      EXPECT_TRUE(std::is_sorted(part.begin(), part.end()));
      ASSERT_FALSE(part.empty());
      EXPECT_LE(part.back(), parts[0].back());
    }
    for (size_t i = 2; i < parts.size(); ++i) EXPECT_LT(parts[i - 1].back(), parts[i].front());
    EXPECT_LE(parts[0].size(), 250U) << "the first part is to come soon";
  }

 private:
  const SchedulerConfiguration unlimited_{SchedulerConfiguration::Current() + "\nMaxJobs 0\n"};
};

TEST_F(ManyJobs, AreTheNewestFirstAndNoneIsMissing) {
  const TestQueue queue("office");
  std::vector<int> numbers = MakeHeldJobs("office", kMany);
  std::vector<std::vector<int>> parts = Parts(false);
  ExpectNewestFirst(parts);
  ExpectAll(numbers, parts);
  EXPECT_EQ(1U, Parts(false, 1).size());  // whoever has enough stops it

  ASSERT_EQ(0, RunProgram({"cancel", "-a", "office"}).status);
  parts = Parts(false);
  ExpectNewestFirst(parts);
  ExpectAll(numbers, parts);
}

TEST_F(ManyJobs, HaveNumbersWithGaps) {
  const TestQueue queue("office");
  const TestQueue other("annex");
  std::vector<int> numbers;
  for (const int count : {300, 1, 220, 1, 30}) {
    const std::vector<int> more = MakeHeldJobs("office", count);
    numbers.insert(numbers.end(), more.begin(), more.end());
    MakeHeldJobs("annex", 120 / count + 1);
  }
  ASSERT_EQ(0, RunProgram({"cancel", "-a", "-x", "annex"}).status);
  const std::vector<std::vector<int>> parts = Parts(false);
  ExpectNewestFirst(parts);
  ExpectAll(numbers, parts);
}

TEST_F(ManyJobs, OfOneUserAreFoundAmongThoseOfOthers) {
  const TestQueue queue("office");
  std::vector<int> own;
  for (const int count : {300, 230, 30}) {
    MakeHeldJobs("office", 20, "somebody");
    const std::vector<int> more = MakeHeldJobs("office", count);
    own.insert(own.end(), more.begin(), more.end());
  }
  MakeHeldJobs("office", 20, "somebody");
  const std::vector<std::vector<int>> parts = Parts(true);
  ExpectNewestFirst(parts);
  ExpectAll(own, parts);
}

TEST_F(ManyJobs, AreAllListed) {
  const TestQueue queue("office");
  MakeHeldJobs("office", kMany);
  JobsApp app;
  app.WaitUntil("all jobs", [&] { return app.RowCount("JobsClist") == kMany; });
  app.WaitContact("");
  std::vector<std::string> titles;
  for (int i = kMany; i > 0; --i) titles.push_back("Document " + std::to_string(i));
  EXPECT_EQ(titles, app.Column("JobsClist", 0));
  ASSERT_EQ(0, RunProgram({"cancel", "-a", "office"}).status);
  app.WaitCell("JobsClist", "Document 1", 5, CatalogueText("JOB_CANCELLED"));
  app.WaitCell("JobsClist", titles[0], 5, CatalogueText("JOB_CANCELLED"));
  EXPECT_EQ(kMany, app.RowCount("JobsClist"));
}

// What is printed while they come is shown too.
TEST_F(ManyJobs, AndOnesThatComeMeanwhileAreListed) {
  const TestQueue queue("office");
  MakeHeldJobs("office", kMany);
  JobsApp app;
  app.WaitUntil("a job", [&] { return app.RowCount("JobsClist") > 0; });
  MakeHeldJobs("office", 30);
  app.WaitUntil("all jobs", [&] { return app.RowCount("JobsClist") == kMany + 30; });
}

}  // namespace
