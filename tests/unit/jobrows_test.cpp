// The rows of the job window and what can be done with them.
#include "jobrows.h"

#include <gtest/gtest.h>

namespace {

SpoolerJob Job(int number, JobState state = JobState::Held) {
  SpoolerJob job;
  job.number = number;
  job.title = "job " + std::to_string(number);
  job.state = state;
  return job;
}

// What a list shows that follows the rows one by one, as the window's does.
template <typename Rows, typename Text>
class Follower {
 public:
  Follower(const Rows &rows, Text text) : rows_(rows), text_(text) {}

  RowObserver Observer() {
    return {[this](int row) { shown_.insert(shown_.begin() + row, text_(rows_.At(row))); },
            [this](int row) { shown_.erase(shown_.begin() + row); },
            [this](int row) { shown_.at(static_cast<size_t>(row)) = text_(rows_.At(row)); }};
  }
  const std::vector<std::string> &shown() const { return shown_; }

 private:
  const Rows &rows_;
  Text text_;
  std::vector<std::string> shown_;
};

std::string TitleOf(const SpoolerJob &job) { return job.title; }
std::string NameOf(const SpoolerQueue &queue) {
  return queue.name + (queue.accepts ? "" : " refuses");
}

TEST(JobRows, AreTheNewestFirstInWhateverOrderTheyCome) {
  JobRows rows;
  Follower follower(rows, TitleOf);
  rows.Note({Job(2), Job(5), Job(1)}, {});
  while (rows.TakeSome(follower.Observer())) {
  }
  EXPECT_EQ((std::vector<std::string>{"job 5", "job 2", "job 1"}), follower.shown());
  SpoolerJob changed = Job(2);
  changed.title = "new name";
  rows.Note({changed, Job(3)}, {5, 7});
  while (rows.TakeSome(follower.Observer())) {
  }
  EXPECT_EQ((std::vector<std::string>{"job 3", "new name", "job 1"}), follower.shown());
}

TEST(JobRows, ComeInTurnsThatStayShort) {
  JobRows rows;
  Follower follower(rows, TitleOf);
  rows.Note({Job(1)}, {});
  EXPECT_FALSE(rows.TakeSome(follower.Observer()));
  std::vector<SpoolerJob> many;
  for (int i = 2; i <= 1000; ++i) many.push_back(Job(i));
  rows.Note(many, {});
  EXPECT_TRUE(rows.TakeSome(follower.Observer()));
  EXPECT_LT(rows.Count(), 500);
  while (rows.TakeSome(follower.Observer())) {
  }
  EXPECT_EQ(1000, rows.Count());
  EXPECT_EQ(1000U, follower.shown().size());
  EXPECT_EQ("job 1000", follower.shown().front());
}

TEST(JobRows, OfAnEmptyListAreTakenAtOnce) {
  JobRows rows;
  rows.Note({Job(2), Job(1), Job(9)}, {});
  ASSERT_TRUE(rows.CanReplace());
  rows.Replace();
  ASSERT_EQ(3, rows.Count());
  EXPECT_EQ(9, rows.At(0).number);
  EXPECT_EQ(1, rows.At(2).number);
  EXPECT_FALSE(rows.CanReplace());
}

TEST(JobRows, OfAnEmptyListAreTheNewestAtOnceAndTheOthersInTurns) {
  JobRows rows;
  std::vector<SpoolerJob> many;
  for (int i = 1; i <= 1000; ++i) many.push_back(Job(i));
  rows.Note(many, {});
  rows.Replace();
  EXPECT_EQ(1000, rows.At(0).number);
  EXPECT_LT(rows.Count(), 500);
  EXPECT_EQ(1001 - rows.Count(), rows.At(rows.Count() - 1).number);
  EXPECT_TRUE(rows.HasMore());
  const RowObserver ignored = {[](int) {}, [](int) {}, [](int) {}};
  while (rows.TakeSome(ignored)) {
  }
  ASSERT_EQ(1000, rows.Count());
  for (int row = 0; row < rows.Count(); ++row) ASSERT_EQ(1000 - row, rows.At(row).number);
}

TEST(JobRows, AreOneAJobHoweverOftenItComes) {
  JobRows rows;
  SpoolerJob later = Job(2);
  later.title = "new name";
  rows.Note({Job(2), Job(1)}, {});
  rows.Note({later}, {});
  rows.Replace();
  ASSERT_EQ(2, rows.Count());
  EXPECT_EQ("new name", rows.At(0).title);
}

TEST(JobRows, DoNotComeOnceTheirJobIsGone) {
  JobRows rows;
  Follower follower(rows, TitleOf);
  rows.Note({Job(1)}, {});
  while (rows.TakeSome(follower.Observer())) {
  }
  std::vector<SpoolerJob> many;
  for (int i = 2; i <= 500; ++i) many.push_back(Job(i));
  rows.Note(many, {});
  ASSERT_TRUE(rows.TakeSome(follower.Observer()));
  rows.Note({}, {1, 3, 499});  // shown, shown, and not yet
  while (rows.TakeSome(follower.Observer())) {
  }
  EXPECT_EQ(497, rows.Count());
  EXPECT_EQ(497U, follower.shown().size());
  for (int row = 0; row < rows.Count(); ++row) EXPECT_NE(499, rows.At(row).number);
}

TEST(JobRows, ComeBackWithTheirJob) {
  JobRows rows;
  Follower follower(rows, TitleOf);
  rows.Note({}, {5});
  rows.Note({Job(4), Job(5)}, {});
  if (rows.CanReplace()) rows.Replace();
  while (rows.TakeSome(follower.Observer())) {
  }
  ASSERT_EQ(2, rows.Count());
  EXPECT_EQ(5, rows.At(0).number);
}

TEST(QueueRows, FollowTheSpooler) {
  QueueRows rows;
  Follower follower(rows, NameOf);
  SpoolerQueue a, b, c;
  a.name = "a";
  b.name = "b";
  c.name = "c";
  rows.Take({a, c}, follower.Observer());
  EXPECT_EQ((std::vector<std::string>{"a", "c"}), follower.shown());
  c.accepts = false;
  rows.Take({b, c}, follower.Observer());
  EXPECT_EQ((std::vector<std::string>{"b", "c refuses"}), follower.shown());
  ASSERT_NE(nullptr, rows.Find("c"));
  EXPECT_EQ(nullptr, rows.Find("a"));
  rows.Take({}, follower.Observer());
  EXPECT_EQ(0U, follower.shown().size());
}

TEST(Actions, FitWhatTheyChange) {
  using enum SpoolerAction;
  EXPECT_TRUE(Fits(CancelJob, Job(1, JobState::Printing)));
  EXPECT_FALSE(Fits(CancelJob, Job(1, JobState::Printed)));
  EXPECT_TRUE(Fits(HoldJob, Job(1, JobState::Waiting)));
  EXPECT_FALSE(Fits(HoldJob, Job(1, JobState::Held)));
  EXPECT_TRUE(Fits(ReleaseJob, Job(1, JobState::Held)));
  EXPECT_FALSE(Fits(ReleaseJob, Job(1, JobState::Waiting)));
  EXPECT_TRUE(Fits(PrintJobAgain, Job(1, JobState::Cancelled)));
  EXPECT_FALSE(Fits(PrintJobAgain, Job(1, JobState::Held)));
  SpoolerQueue queue;
  EXPECT_TRUE(Fits(StopQueue, queue));
  EXPECT_FALSE(Fits(StartQueue, queue));
  EXPECT_TRUE(Fits(RefuseJobs, queue));
  EXPECT_FALSE(Fits(AcceptJobs, queue));
  EXPECT_FALSE(Fits(CancelJob, queue));
}

TEST(Questions, ComeBeforeWhatLosesSomething) {
  SpoolerJob doubtful = Job(1);
  doubtful.words = "the connection broke; the job is held (status 76)";
  EXPECT_NE("", QuestionBefore(SpoolerAction::CancelJob, {Job(1)}));
  EXPECT_EQ("", QuestionBefore(SpoolerAction::ReleaseJob, {Job(1)}));
  EXPECT_NE("", QuestionBefore(SpoolerAction::ReleaseJob, {Job(1), doubtful}));
  EXPECT_NE("", QuestionBefore(SpoolerAction::StopQueue, {SpoolerQueue{}}));
  EXPECT_EQ("", QuestionBefore(SpoolerAction::StartQueue, {SpoolerQueue{}}));
}

}  // namespace
