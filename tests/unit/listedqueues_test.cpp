// What the administration shows of the print service's queues, and what it asks before deleting.
#include "listedqueues.h"

#include <gtest/gtest.h>

#include "coresupport.h"
#include "globals.h"
#include "queuesupport.h"

namespace {

constexpr char kTexts[] =
    "#translation\n"
    "#QUEUE_READY\nready\n#QUEUE_STOPPED\nstopped\n#QUEUE_STOPPED_REASON\nwhy\n"
    "#QUEUE_TIP_STATE\nis %s\n#QUEUE_TIP_DEFAULT\nthe default\n#QUEUE_TIP_LOCATION\nat %s\n"
    "#QUEUE_TIP_DESCRIPTION\ncalled %s\n"
    "#ASK_DELETE_JOBS\n%s has %d\n#ASK_DELETE_QUEUES\n%d queues\n#ASK_DELETE_UNKNOWN\n%s?\n";

SpoolerQueue Queue(const std::string &name, int waiting = 0) {
  SpoolerQueue queue;
  queue.name = name;
  queue.waiting = waiting;
  return queue;
}

class ListedQueuesTest : public testing::Test {
 protected:
  // The program was started with the queue "old".
  ListedQueuesTest() : messages_(kTexts), hash_(CreateHash()) {
    EXPECT_EQ(1, HashPut(hash_.get(), "old", MakeQueue({.name = "old"})));
    G_OrgQueues_hash = hash_.get();
  }
  ~ListedQueuesTest() override { G_OrgQueues_hash = nullptr; }

  void Tell(SpoolerContact contact, std::optional<std::vector<SpoolerQueue>> queues) {
    SpoolerNews news;
    news.contact = contact;
    const bool told = queues.has_value();
    news.queues = std::move(queues);
    EXPECT_EQ(told, listed_.Take(std::move(news)));
  }

  ListedQueues listed_;

 private:
  ProgramMessages messages_;
  Owned<CHash> hash_;
};

TEST_F(ListedQueuesTest, HaveNoTipBeforeTheServiceHasTold) {
  EXPECT_EQ("", listed_.Tip("old"));
  Tell(SpoolerContact::Answering, {{Queue("other")}});
  EXPECT_EQ("", listed_.Tip("old"));
  EXPECT_EQ("is ready", listed_.Tip("other"));
}

TEST_F(ListedQueuesTest, TellInTheirTipOnlyWhatTheServiceHas) {
  SpoolerQueue full = Queue("old");
  full.state = QueueState::Stopped;
  full.is_default = true;
  full.location = "Room\n7";
  full.description = "By the window";
  SpoolerQueue undescribed = Queue("plain");
  undescribed.description = "plain";
  Tell(SpoolerContact::Answering, {{full, undescribed}});
  EXPECT_EQ("is stopped\nwhy\nthe default\nat Room?7\ncalled By the window", listed_.Tip("old"));
  EXPECT_EQ("is ready", listed_.Tip("plain")) << "its name is no description";
  Tell(SpoolerContact::Silent, std::nullopt);
  EXPECT_EQ("is ready", listed_.Tip("plain")) << "the last that was known";
  Tell(SpoolerContact::Answering, {{full}});
  EXPECT_EQ("", listed_.Tip("plain"));
}

TEST_F(ListedQueuesTest, AreDeletedWithoutAQuestionOneByOneWhenNoJobsWait) {
  Tell(SpoolerContact::Answering, {{Queue("old"), Queue("busy", 3)}});
  EXPECT_EQ("", listed_.QuestionBeforeDeletion({}));
  EXPECT_EQ("", listed_.QuestionBeforeDeletion({"old"}));
  EXPECT_EQ("", listed_.QuestionBeforeDeletion({"new"}));
  EXPECT_EQ("busy has 3", listed_.QuestionBeforeDeletion({"busy"}));
  EXPECT_EQ("2 queues", listed_.QuestionBeforeDeletion({"old", "new"}));
}

TEST_F(ListedQueuesTest, AreAskedAboutWhenItIsNotKnownWhetherJobsWait) {
  EXPECT_EQ("old?", listed_.QuestionBeforeDeletion({"old"})) << "not asked yet";
  EXPECT_EQ("", listed_.QuestionBeforeDeletion({"new"})) << "the service has no such queue";
  for (const SpoolerContact contact :
       {SpoolerContact::Silent, SpoolerContact::Gone, SpoolerContact::NoLibrary}) {
    Tell(SpoolerContact::Answering, {{Queue("old")}});
    EXPECT_EQ("", listed_.QuestionBeforeDeletion({"old"}));
    Tell(contact, std::nullopt);
    EXPECT_EQ("old?", listed_.QuestionBeforeDeletion({"old"}));
  }
}

}  // namespace
