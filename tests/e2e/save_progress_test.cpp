// The progress of a long save: the dialog's texts, and the input that comes meanwhile.
#include <chrono>

#include "administration.h"
#include "gatedspooler.h"
#include "xinput.h"

namespace {

using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

constexpr char kLabel[] = "SaveProgressWindow/SaveProgressLabel";
constexpr std::chrono::milliseconds kQuietTime{500};

class SaveProgress : public AdministrationTest {
 protected:
  // The list has lp01 to lp40, which somebody takes out of the spooler while the window is open,
  // so that the save creates all of them again.
  static Strings FortyNames() {
    Strings names;
    for (int i = 1; i <= 40; ++i) names.push_back((i < 10 ? "lp0" : "lp") + std::to_string(i));
    return names;
  }

  static void EmptySpooler() {
    for (const std::string &name : FortyNames()) {
      std::filesystem::remove(std::string(kSpoolPrintersDir) + "/" + name);
      std::filesystem::remove(InterfacePath(name));
    }
  }

  static bool IsTitleShown() {
    const Strings titles = XInputWindowTitles();
    return std::find(titles.begin(), titles.end(), CatalogueText("DEF_WND_SAVE_TITLE")) !=
           titles.end();
  }

  // Lets the call that waits go on, and tells what the program shows next.
  std::string TextAfterOpening(AdminApp &app) {
    return app.NextText(kLabel, [this] { spooler_.Open(); });
  }

  GatedSpooler spooler_;
};

TEST_F(SaveProgress, NamesNumberTotalAndQueueAndChangesWithEveryQueue) {
  PutQueues(FortyNames());
  for (const char *name : {"lp10", "lp11", "lp12", "lp13", "lp14", "lp39"}) {
    GatedSpooler::Hold("enable", name);  // the last command for a queue
  }
  AdminApp app;
  EmptySpooler();
  app.Click("SaveButton");
  EXPECT_EQ("enable lp10", spooler_.WaitReached());
  const Clock::time_point start = Clock::now();
  app.WaitUntil("half a second of saving", [&] { return Clock::now() - start > kQuietTime; });
  EXPECT_EQ("Queue 11 of 40: creating lp11", TextAfterOpening(app));
  EXPECT_EQ("enable lp11", spooler_.WaitReached());
  EXPECT_TRUE(IsTitleShown());
  EXPECT_EQ("Queue 12 of 40: creating lp12", TextAfterOpening(app));
  EXPECT_EQ("enable lp12", spooler_.WaitReached());
  EXPECT_EQ("Queue 13 of 40: creating lp13", TextAfterOpening(app));
  EXPECT_EQ("enable lp13", spooler_.WaitReached());
  EXPECT_EQ("Queue 14 of 40: creating lp14", TextAfterOpening(app));
  EXPECT_EQ("enable lp14", spooler_.WaitReached());
  spooler_.Open();
  EXPECT_EQ("enable lp39", spooler_.WaitReached());
  EXPECT_EQ("Queue 40 of 40: creating lp40", TextAfterOpening(app));
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ("", app.Stderr());
}

TEST_F(SaveProgress, CountsRemovalsBeforeCreations) {
  PutQueues(Strings{"lp1", "lp2", "lp3"});
  GatedSpooler::Hold("lpadmin", "lp2");
  GatedSpooler::Hold("lpadmin", "lp3");
  AdminApp app;
  app.AddQueue({.name = "lp4"});
  app.SelectQueues({2});
  app.Click("DeleteButton");
  app.SelectQueues({1});
  app.Click("DeleteButton");
  app.Click("SaveButton");
  // The queue deleted last is removed first.
  EXPECT_EQ("lpadmin lp2", spooler_.WaitReached());
  const Clock::time_point start = Clock::now();
  app.WaitUntil("half a second of saving", [&] { return Clock::now() - start > kQuietTime; });
  EXPECT_EQ("Queue 2 of 4: removing lp3", TextAfterOpening(app));
  EXPECT_EQ("lpadmin lp3", spooler_.WaitReached());
  spooler_.Open();
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(SaveProgress, InputThatComesMeanwhileIsForgotten) {
  GatedSpooler::Hold("enable", "lp1");
  GatedSpooler::Hold("lpadmin", "lp2");
  GatedSpooler::Hold("enable", "lp3");
  AdminApp app;
  for (const char *name : {"lp1", "lp2", "lp3"}) app.AddQueue({.name = name});
  ASSERT_EQ((Strings{"-lp1", "-lp2", "*lp3"}), app.QueueNames());
  SpoolerStandIn::Fail("accept");
  const ScreenArea cancel = app.Geometry("CancelButton");
  const ScreenArea list = app.Geometry("QueuesClist");
  const auto disturb = [&] {
    XInputClick(cancel.x + cancel.width / 2, cancel.y + cancel.height / 2);
    XInputClick(list.x + list.width / 2, list.y + list.height / 2);
    for (const char *key : {"Escape", "Return", "space", "F1", "ctrl+a"}) XInputChord(key);
  };
  app.Click("SaveButton");
  EXPECT_EQ("enable lp1", spooler_.WaitReached());
  disturb();  // before the dialog is shown
  const Clock::time_point start = Clock::now();
  app.WaitUntil("half a second of saving", [&] { return Clock::now() - start > kQuietTime; });
  EXPECT_EQ("Queue 2 of 3: creating lp2", TextAfterOpening(app));
  EXPECT_EQ("lpadmin lp2", spooler_.WaitReached());
  EXPECT_TRUE(IsTitleShown());
  disturb();
  spooler_.Open();
  EXPECT_EQ("enable lp3", spooler_.WaitReached());
  disturb();  // during the last command, behind which nothing is drawn any more
  spooler_.Open();
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ((Strings{"KPXErrorWarningDialog", "AdminWindow"}), app.Windows());
  EXPECT_EQ((Strings{"-lp1", "-lp2", "*lp3"}), app.QueueNames());
  app.Key("Return");
  EXPECT_EQ(1, app.WaitExit());
}

TEST_F(SaveProgress, InputDuringASaveWithoutDialogIsForgottenToo) {
  GatedSpooler::Hold("enable", "lp1");
  AdminApp app;
  app.AddQueue({.name = "lp1"});
  SpoolerStandIn::Fail("accept");
  app.Click("SaveButton");
  EXPECT_EQ("enable lp1", spooler_.WaitReached());
  for (const char *key : {"Escape", "Return", "F1"}) XInputChord(key);
  spooler_.Open();
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ((Strings{"KPXErrorWarningDialog", "AdminWindow"}), app.Windows());
}

TEST_F(SaveProgress, TheQueueOfACommandIsShownHoweverManyWerePassedOverBefore) {
  constexpr int kQueues = 2000;
  Strings names;
  for (int i = 0; i < kQueues; ++i) names.push_back("lp" + std::to_string(10000 + i));
  PutQueues(names);
  GatedSpooler::Hold("enable", "a1");   // before the queues that are there
  GatedSpooler::Hold("lpadmin", "z1");  // behind them
  GatedSpooler::Hold("lpadmin", "z2");
  AdminApp app;
  for (const char *name : {"a1", "z1", "z2"}) app.AddQueue({.name = name});
  app.Click("SaveButton");
  EXPECT_EQ("enable a1", spooler_.WaitReached());
  const Clock::time_point start = Clock::now();
  app.WaitUntil("half a second of saving", [&] { return Clock::now() - start > kQuietTime; });
  spooler_.Open();
  EXPECT_EQ("lpadmin z1", spooler_.WaitReached());
  // What is shown during a command is its queue, however soon it follows others.
  EXPECT_EQ("Queue 2003 of 2003: creating z2", TextAfterOpening(app));
  EXPECT_EQ("lpadmin z2", spooler_.WaitReached());
  spooler_.Open();
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(SaveProgress, AQuickSaveShowsNoDialog) {
  // On a busy machine a save may take longer than it ought to; that one proves nothing.
  for (int attempt = 1;; ++attempt) {
    if (attempt > 20) GTEST_SKIP() << "this machine is too busy for a quick save";
    AdminApp app({.arguments = {"-verbose", "4"}});
    app.AddQueue({.name = "lp" + std::to_string(attempt)});
    const Clock::time_point start = Clock::now();
    app.Click("SaveButton");
    EXPECT_EQ(0, app.WaitExit());
    const bool was_quick = Clock::now() - start < kQuietTime;
    const std::string log = app.Stderr();
    EXPECT_NE(std::string::npos, log.find("BEGIN SaveQueues() function"));
    if (!was_quick) continue;
    EXPECT_EQ(std::string::npos, log.find("SaveProgressWindow"));
    break;
  }
}

}  // namespace
