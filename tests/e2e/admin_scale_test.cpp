// The administration window with 10,000 queues.
#include "administration.h"
#include "xinput.h"

namespace {

using Strings = std::vector<std::string>;

class ManyQueues : public AdministrationTest {
 protected:
  static constexpr int kQueues = 10000;

  void PutMany(int count) {
    std::vector<QueueValues> queues;
    for (int i = 0; i < count; ++i) {
      queues.push_back({.name = "queue" + std::to_string(10000 + i)});
    }
    PutQueues(queues);
  }

  // The processor time of a program that finds, clones, selects and deletes among `count` queues.
  double SecondsOfWork(int count) {
    PutMany(count);
    AdminApp app;
    app.ClickRow("QueuesClist", 0);
    for (const char *key : {"End", "Page_Up", "Home"}) app.Key(key);
    app.Type("queue" + std::to_string(10000 + count / 2));
    app.Key("Escape");
    app.Click("CloneButton");
    app.Click("QueuesClist");
    app.Key("ctrl+a");
    app.Click("DeleteButton");
    EXPECT_EQ(Strings{}, app.QueueNames());
    return app.ProcessorSeconds();
  }
};

TEST_F(ManyQueues, ARowCanBeClickedAsSoonAsTheListIsRead) {
  PutMany(kQueues);
  ScreenArea list;
  {
    const ChangedFile none(kQueuesFile, std::nullopt);
    AdminApp app;
    list = app.Geometry("QueuesClist");
  }
  GuiApp app({.program = kAdmin, .arguments = {"-verbose", "4"}});
  const auto until_logged = [&](const std::string &line, const std::function<void()> &meanwhile) {
    app.WaitUntil(line, [&] {
      meanwhile();
      return app.Stderr().find(line) != std::string::npos;
    });
  };
  until_logged("END   fFillFromPaf_Function_() function", [] {});
  until_logged("BEGIN QueuesCListRowSelection() function",
               [&] { XInputClick(list.x + 20, list.y + list.height / 2); });
}

TEST_F(ManyQueues, TheyAreScrolledSearchedClonedSelectedAndDeleted) {
  PutMany(kQueues);
  AdminApp app;
  app.ClickRow("QueuesClist", 0);
  app.Key("End");
  EXPECT_EQ("*queue19999", app.QueueNames().back());
  app.Key("Page_Up");
  app.Type("queue15555");
  EXPECT_EQ("*queue15555", app.QueueNames()[5555]);
  app.Key("Escape");
  app.Click("CloneButton");
  EXPECT_EQ("*CopyOf_queue15555", app.QueueNames().back());
  app.Key("ctrl+a");
  app.Click("QueuesClist");
  app.Key("ctrl+a");
  EXPECT_EQ("D", app.SensitiveButtons());
  app.Click("DeleteButton");
  EXPECT_EQ(Strings{}, app.QueueNames());
  EXPECT_EQ("", app.SensitiveButtons());
}

TEST_F(ManyQueues, FourTimesTheQueuesCostLittleMoreThanFourTimesTheWork) {
  const double small = SecondsOfWork(kQueues / 4);
  const double large = SecondsOfWork(kQueues);
  // What every window costs makes it less; a walk of the list for each row would make it 16.
  EXPECT_LT(large, 7 * small) << small << " s for 2,500 queues, " << large << " s for 10,000";
}

}  // namespace
