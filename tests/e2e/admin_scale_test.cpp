// The administration window with 10,000 queues.
#include <chrono>

#include "administration.h"
#include "xinput.h"

namespace {

using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

// Instrumented programs take longer.
#if defined(__SANITIZE_ADDRESS__)
constexpr double kPatience = 10.0;
#else
constexpr double kPatience = 1.0;
#endif

double SecondsOf(const std::function<void()> &action) {
  const Clock::time_point start = Clock::now();
  action();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

class ManyQueues : public AdministrationTest {
 protected:
  static constexpr int kQueues = 10000;

  ManyQueues() {
    std::vector<QueueValues> queues;
    for (int i = 0; i < kQueues; ++i) {
      queues.push_back({.name = "queue" + std::to_string(10000 + i)});
    }
    PutQueues(queues);
  }
};

TEST_F(ManyQueues, ARowCanBeClickedWithinASecondOfTheListBeingRead) {
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
  const double seconds = SecondsOf([&] {
    until_logged("BEGIN QueuesCListRowSelection() function",
                 [&] { XInputClick(list.x + 20, list.y + list.height / 2); });
  });
  EXPECT_LT(seconds, 1.0 * kPatience);
}

TEST_F(ManyQueues, ScrollingSearchingSelectingAndDeletingThemTakesNoTime) {
  AdminApp app;
  // The answer to the question comes when nothing is left to do.
  const auto expect_fast = [&app](const char *what, const std::function<void()> &action) {
    const double seconds = SecondsOf([&] {
      action();
      app.Focus();
    });
    EXPECT_LT(seconds, 0.6 * kPatience) << what;
  };
  expect_fast("a click", [&] { app.ClickRow("QueuesClist", 0); });
  expect_fast("the last row", [&] { app.Key("End"); });
  EXPECT_EQ("*queue19999", app.QueueNames().back());
  expect_fast("a page up", [&] { app.Key("Page_Up"); });
  expect_fast("a search", [&] { app.Type("queue15555"); });
  EXPECT_EQ("*queue15555", app.QueueNames()[5555]);
  expect_fast("the end of the search", [&] { app.Key("Escape"); });
  expect_fast("a clone", [&] { app.Click("CloneButton"); });
  EXPECT_EQ("*CopyOf_queue15555", app.QueueNames().back());
  expect_fast("selecting all", [&] { app.Key("ctrl+a"); });
  app.Click("QueuesClist");
  expect_fast("selecting all", [&] { app.Key("ctrl+a"); });
  EXPECT_EQ("D", app.SensitiveButtons());
  expect_fast("deleting all", [&] { app.Click("DeleteButton"); });
  EXPECT_EQ(Strings{}, app.QueueNames());
  EXPECT_EQ("", app.SensitiveButtons());
}

}  // namespace
