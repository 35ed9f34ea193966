// The job window with a real spooler: what it shows of queues and jobs, what its buttons do to
// them, and what it says while the spooler does not answer.
#include <algorithm>
#include <chrono>

#include "guiapp.h"
#include "installation.h"
#include "interfacescript.h"
#include "jobstest.h"
#include "keyboard.h"
#include "must.h"
#include "paths.h"
#include "spooler.h"
#include "whycheck.h"

namespace {

// Of a printer that speaks with kpxnbtrans.
void MakeQueue(const std::string &name, const std::string &address) {
  ASSERT_EQ(0, RunProgram({KPX_MAKEQUEUES, name + "=postscript=Vek Norvel 4110ES"}).status);
  Must(ChangeAddressInInterface(name.c_str(), address.c_str(), nullptr));
}

// Presses Why?, and closes the window when it has come to its conclusion.
std::string Explanation(JobsApp &app) {
  app.WaitUntil("Why?", [&] { return app.IsSensitive("WhyButton"); });
  app.Click("WhyButton");
  app.WaitWindow("WhyWindow");
  const std::string room = CatalogueText("WHY_ROOM_GOOD");
  app.WaitUntil("the last step",
                [&] { return app.Text("WhyText").find(room) != std::string::npos; });
  std::string steps = app.Text("WhyText");
  app.Key("Return");
  app.WaitGone("WhyWindow");
  return steps;
}

std::vector<WhyStep> Steps(const WhySubject &subject) {
  std::vector<WhyStep> steps;
  CheckWhy(subject, [&](const WhyStep &step) { steps.push_back(step); });
  return steps;
}

std::string BadSteps(const std::vector<WhyStep> &steps) {
  std::string mends;
  for (const WhyStep &step : steps) {
    if (step.result == WhyResult::Bad) mends += std::string(step.mend_key) + " ";
  }
  return mends;
}

std::string AllSteps(const std::vector<WhyStep> &steps) {
  std::string texts;
  for (const WhyStep &step : steps) texts += std::string(step.text_key) + " ";
  return texts;
}

using Strings = std::vector<std::string>;

TEST_F(Jobs, AreListedTheNewestFirstWithStateAndReason) {
  const TestQueue queue("office");
  queue.Complete("echo 'kpxfilter: the file is broken' >&2; exit 1");
  PrintUntil(queue, {"-t", "broken"}, "is held");
  queue.Print({"-t", "kept", "-H", "hold"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "kept");
  EXPECT_EQ((Strings{"kept", "broken"}), app.Column("JobsClist", 0));
  EXPECT_EQ((Strings{"office", "office"}), app.Column("JobsClist", 1));
  EXPECT_EQ((Strings{CatalogueText("JOB_HELD"), CatalogueText("JOB_HELD")}),
            app.Column("JobsClist", 5));
  EXPECT_EQ((Strings{CatalogueText("JOB_HELD_REASON"),
                     CatalogueText("TROUBLE_FAILED", {"kpxfilter: the file is broken"})}),
            app.Column("JobsClist", 6));
  EXPECT_EQ((Strings{"office"}), app.Column("QueuesClist", 0));
  EXPECT_EQ((Strings{"2"}), app.Column("QueuesClist", 2));
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  EXPECT_EQ(Strings{}, app.UnnamedControls());
}

TEST_F(Jobs, ThatComeAndGoAreShownByThemselves) {
  const TestQueue queue("office");
  queue.Record();
  JobsApp app;
  app.WaitRow("QueuesClist", "office");
  const std::string job = queue.Print({"-t", "letter", "-H", "hold"}, "data");
  app.WaitRow("JobsClist", "letter");
  ASSERT_EQ(0, RunProgram({"cancel", "office-" + job}).status);
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_CANCELLED"));
  queue.Print({"-t", "second"}, "data");
  app.WaitCell("JobsClist", "second", 5, CatalogueText("JOB_PRINTED"));
  const TestQueue other("annex");
  app.WaitRow("QueuesClist", "annex");
}

TEST_F(Jobs, OfAnOrdinaryUserAreTheOwnOnes) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has no ordinary users";
  const TestQueue queue("office");
  queue.Record();
  queue.Print({"-t", "of root", "-H", "hold"}, "data");
  const std::string job = PrintAs("anna", queue, {"-t", "of anna", "-H", "hold"});
  JobsApp app({.user = "anna"});
  app.WaitRow("JobsClist", "of anna");
  EXPECT_EQ((Strings{"of anna"}), app.Column("JobsClist", 0));
  EXPECT_FALSE(app.HasWidget("StopButton"));
  app.Select("JobsClist", "of anna");
  app.Click("ReleaseButton");
  app.WaitCell("JobsClist", "of anna", 5, CatalogueText("JOB_PRINTED"));
}

TEST_F(Jobs, AreHeldReleasedMovedAndPrintedAgainByKeys) {
  const TestQueue queue("office");
  queue.Record();
  const TestQueue other("annex");
  other.Record();
  const std::string job = queue.Print({"-t", "letter", "-H", "hold"}, "data");
  JobsApp app;
  Keyboard keys(app);
  app.WaitRow("JobsClist", "letter");
  keys.GoTo(CatalogueText("DEF_LBL_JOBS"), "JobsClist");
  keys.Key("Down");
  app.WaitUntil("a selected job", [&] { return app.IsSensitive("ReleaseButton"); });
  EXPECT_EQ(CatalogueText("JOB_HELD_REASON"), app.Text("ReasonLabel"));
  EXPECT_FALSE(app.IsSensitive("HoldButton"));
  keys.Press(CatalogueText("DEF_BTN_MOVE_TITLE"));
  keys.Await("MoveJobsWindow");
  EXPECT_EQ("annex", app.Text("TargetComboEntry"));
  keys.Close("MoveJobsWindow", "Return");
  app.WaitCell("JobsClist", "letter", 1, "annex");
  keys.Press(CatalogueText("DEF_BTN_RELEASE_TITLE"));
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
  ASSERT_EQ(1U, other.Calls().size());
  app.WaitUntil("Print again", [&] { return app.IsSensitive("AgainButton"); });
  keys.Press(CatalogueText("DEF_BTN_AGAIN_TITLE"));
  app.WaitUntil("the second print", [&] { return other.Calls().size() == 2; });
  EXPECT_EQ("data", other.Calls()[1].contents.at(0));
  EXPECT_EQ("", app.Stderr());
}

TEST_F(Jobs, SeveralAreCancelledAfterAQuestion) {
  const TestQueue queue("office");
  queue.Record();
  for (const char *title : {"one", "two", "three"}) {
    queue.Print({"-t", title, "-H", "hold"}, "data");
  }
  JobsApp app;
  Keyboard keys(app);
  app.WaitRow("JobsClist", "three");
  keys.GoTo(CatalogueText("DEF_LBL_JOBS"), "JobsClist");
  keys.Key("Down");
  keys.Key("shift+Down");
  keys.Press(CatalogueText("DEF_BTN_CANCELJOB_TITLE"));
  keys.Await("QuestionDialog");
  EXPECT_EQ(CatalogueText("ASK_CANCEL_JOBS", {"2"}), app.Text("QuestionLabel"));
  keys.Close("QuestionDialog", "Escape");
  EXPECT_EQ(CatalogueText("JOB_HELD"), app.Cell("JobsClist", "two", 5));
  keys.Press(CatalogueText("DEF_BTN_CANCELJOB_TITLE"));
  keys.Await("QuestionDialog");
  keys.Close("QuestionDialog", "Return");
  for (const char *title : {"two", "three"}) {
    app.WaitCell("JobsClist", title, 5, CatalogueText("JOB_CANCELLED"));
  }
  EXPECT_EQ(CatalogueText("JOB_HELD"), app.Cell("JobsClist", "one", 5));
  keys.ExpectFocusSeen("after the jobs went");
}

TEST_F(Jobs, OfAQueueThatTheAdministratorStopsWait) {
  const TestQueue queue("office");
  queue.Record();
  JobsApp app;
  Keyboard keys(app);
  app.WaitRow("QueuesClist", "office");
  keys.GoTo(CatalogueText("DEF_LBL_QUEUES"), "QueuesClist");
  keys.Key("Down");
  app.WaitUntil("Stop", [&] { return app.IsSensitive("StopButton"); });
  keys.Press(CatalogueText("DEF_BTN_STOP_TITLE"));
  keys.Await("QuestionDialog");
  EXPECT_EQ(CatalogueText("ASK_STOP_QUEUE", {"office"}), app.Text("QuestionLabel"));
  keys.Close("QuestionDialog", "Return");
  app.WaitCell("QueuesClist", "office", 1, CatalogueText("QUEUE_STOPPED"));
  queue.Print({"-t", "letter"}, "data");
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_WAITING"));
  EXPECT_NE(std::string::npos, app.Cell("JobsClist", "letter", 6).find("KPXjobs"));
  keys.Press(CatalogueText("DEF_BTN_START_TITLE"));
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
  app.WaitUntil("Refuse", [&] { return app.IsSensitive("RefuseButton"); });
  keys.Press(CatalogueText("DEF_BTN_REFUSE_TITLE"));
  keys.Await("QuestionDialog");
  keys.Close("QuestionDialog", "Return");
  app.WaitCell("QueuesClist", "office", 3, CatalogueText("DEF_BTN_NO_TITLE"));
  EXPECT_NE(0, RunProgram({"/usr/bin/lp", "-d", "office"}, "data").status);
  keys.Press(CatalogueText("DEF_BTN_ACCEPT_TITLE"));
  app.WaitCell("QueuesClist", "office", 3, CatalogueText("DEF_BTN_YES_TITLE"));
}

TEST_F(Jobs, ThatMayHaveBeenPrintedAreReleasedAfterAQuestion) {
  const TestQueue queue("office");
  queue.Complete("echo 'kpxnbtrans: the connection broke' >&2; exit 76");
  PrintUntil(queue, {"-t", "letter"}, "is held");
  JobsApp app;
  app.WaitRow("JobsClist", "letter");
  EXPECT_EQ(CatalogueText("JOB_DOUBT"), app.Cell("JobsClist", "letter", 5));
  app.Select("JobsClist", "letter");
  EXPECT_EQ(CatalogueText("TROUBLE_DOUBT"), app.Text("ReasonLabel"));
  app.Click("ReleaseButton");
  app.WaitWindow("QuestionDialog");
  EXPECT_EQ(CatalogueText("ASK_PRINT_TWICE"), app.Text("QuestionLabel"));
}

TEST_F(Jobs, ThatCannotBeMovedSayWhy) {
  const TestQueue queue("office");
  queue.Record();
  auto other = std::make_unique<TestQueue>("annex");
  const std::string job = queue.Print({"-t", "letter", "-H", "hold"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "letter");
  app.Select("JobsClist", "letter");
  app.Click("MoveButton");
  app.WaitWindow("MoveJobsWindow");
  ASSERT_EQ("annex", app.Text("TargetComboEntry"));
  other.reset();
  app.Key("Return");
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_NE(std::string::npos, app.Text("ErrorWarningText").find("office-" + job + ": "));
  EXPECT_EQ("office", app.Cell("JobsClist", "letter", 1));
}

TEST_F(Jobs, OfAPrinterThatIsOffOrUnknownSaySo) {
  const TestQueue off("off");
  off.Complete("/opt/orlan/bin/kpxnbtrans 127.0.0.1 2599 <\"$1\"");
  const TestQueue unknown("unknown");
  unknown.Complete("/opt/orlan/bin/kpxnbtrans no-such-printer.invalid 2501 <\"$1\"");
  off.Print({"-t", "to off"}, "data");
  unknown.Print({"-t", "to unknown"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "to off");
  app.WaitCell("JobsClist", "to off", 6,
               CatalogueText("TROUBLE_UNREACHABLE", {"127.0.0.1", "Connection refused"}));
  app.WaitCell("JobsClist", "to unknown", 6,
               CatalogueText("TROUBLE_NAME", {"no-such-printer.invalid"}));
}

TEST_F(Jobs, WindowShowsWhereTheKeysGo) {
  const TestQueue queue("office");
  queue.Print({"-t", "letter", "-H", "hold"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "letter");
  app.Select("JobsClist", "letter");
  app.WaitUntil("the buttons", [&] { return app.IsSensitive("WhyButton"); });
  ExpectEveryTabStopSeen(app, "JobsWindow");
}

TEST_F(Jobs, NothingMovesWhenAReasonTakesTwoLines) {
  const TestQueue queue("office");
  queue.Complete("echo 'kpxfilter: the file is broken' >&2; exit 1");
  const std::string cause(60, 'w');
  const TestQueue other("annex");
  other.Complete("echo 'kpxfilter: " + cause + "' >&2; exit 1");
  queue.Print({"-t", "short", "-H", "hold"}, "data");
  PrintUntil(other, {"-t", "long"}, "is held");
  JobsApp app;
  app.WaitRow("JobsClist", "long");
  app.Select("JobsClist", "short");
  app.WaitUntil("the short reason",
                [&] { return app.Text("ReasonLabel") == CatalogueText("JOB_HELD_REASON"); });
  app.WaitDrawn();
  const auto places = [&] {
    Strings all;
    for (const char *name : {"QueuesScrolledwindow", "StopButton", "JobsScrolledwindow",
                             "ReasonLabel", "CancelJobButton", "AgainButton", "WhyButton"}) {
      const ScreenArea place = app.Geometry(name);
      all.push_back(std::string(name) + " " + std::to_string(place.x) + "," +
                    std::to_string(place.y) + " " + std::to_string(place.height));
    }
    return all;
  };
  const Strings before = places();
  app.Select("JobsClist", "long");
  app.WaitUntil("the long reason",
                [&] { return app.Text("ReasonLabel").find(cause) != std::string::npos; });
  app.WaitDrawn();
  EXPECT_EQ(before, places());
}

// Select and press Why?: two actions.
TEST_F(Jobs, AreExplainedStepByStep) {
  MakeQueue("lp1", "127.0.0.1");
  MakeQueue("lost", "no-such-printer.invalid");
  JobsApp app;
  app.WaitRow("QueuesClist", "lp1");
  EXPECT_FALSE(app.IsSensitive("WhyButton"));
  app.Select("QueuesClist", "lp1");
  std::string steps = Explanation(app);
  EXPECT_NE(std::string::npos, steps.find(CatalogueText("WHY_SPOOLER_GOOD", {"lp1"}))) << steps;
  EXPECT_NE(std::string::npos, steps.find(CatalogueText("WHY_SCRIPT_GOOD"))) << steps;
  EXPECT_NE(std::string::npos, steps.find(CatalogueText("WHY_PORT_GOOD", {"127.0.0.1", "2501"})))
      << steps;
  EXPECT_NE(std::string::npos, steps.find(CatalogueText("WHY_ROOM_GOOD"))) << steps;

  app.Select("QueuesClist", "lost");
  steps = Explanation(app);
  EXPECT_NE(std::string::npos, steps.find(CatalogueText("WHY_NAME_MEND"))) << steps;
  EXPECT_EQ(std::string::npos, steps.find(CatalogueText("WHY_HOST_GOOD", {"lost"}))) << steps;
}

TEST_F(Jobs, ExplanationsNameTheMendOfEachFault) {
  MakeQueue("lp2", "127.0.0.1");
  const std::string script = std::string(kBridgeInterfaces) + "/lp2";
  const std::string whole = ContentOf(script);
  const auto steps = [] { return Steps(AskForSubject("lp2", "root")); };
  EXPECT_EQ("", BadSteps(steps()));
  ASSERT_EQ(0, RunProgram({"cupsdisable", "lp2"}).status);
  EXPECT_EQ("WHY_STOPPED_MEND ", BadSteps(steps()));
  ASSERT_EQ(0, RunProgram({"cupsenable", "lp2"}).status);
  ASSERT_EQ(0, RunProgram({"cupsreject", "lp2"}).status);
  EXPECT_EQ("WHY_REFUSES_MEND ", BadSteps(steps()));
  ASSERT_EQ(0, RunProgram({"/usr/bin/accept", "lp2"}).status);
  std::ofstream(script) << whole.substr(0, whole.find("kpxnbtrans"));
  EXPECT_EQ("WHY_SCRIPT_MEND ", BadSteps(steps()));
  std::ofstream(script) << whole;
  const std::string options = std::string(kDataDir) + "/lp2.def";
  ASSERT_EQ(0, chmod(options.c_str(), 0600));
  EXPECT_EQ("WHY_OPTIONS_MEND ", BadSteps(steps()));
  std::ofstream(options, std::ios::app) << "*Delivery=HoldJobUntilYouEnterPIN\n";
  ASSERT_EQ(0, chmod(options.c_str(), 0644));
  EXPECT_NE(std::string::npos, AllSteps(steps()).find("WHY_PIN "));
  const CommandResult shown = RunProgram({"/usr/sbin/kpxctl", "why", "lp2"});
  EXPECT_EQ(0, shown.status) << shown.output;
  EXPECT_NE(std::string::npos, shown.output.find(CatalogueText("WHY_SCRIPT_GOOD") + "\n"));
  const CommandResult none = RunProgram({"/usr/sbin/kpxctl", "why", "none"});
  EXPECT_EQ(1, none.status);
  EXPECT_NE(std::string::npos, none.output.find(CatalogueText("WHY_NO_QUEUE_MEND")));
  EXPECT_EQ("WHY_NO_QUEUE_MEND WHY_SCRIPT_MEND ", BadSteps(Steps(AskForSubject("none", "root"))));
  const HungScheduler hung;
  EXPECT_EQ("WHY_SPOOLER_MEND ", BadSteps(steps()));
}

TEST_F(Jobs, WindowSaysThatTheSpoolerIsGoneAndIsRightAgainWhenItIsBack) {
  const TestQueue queue("office");
  queue.Record();
  queue.Print({"-t", "letter", "-H", "hold"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "letter");
  {
    const NoScheduler gone;
    app.WaitContact("SPOOLER_GONE");
    EXPECT_EQ((Strings{"letter"}), app.Column("JobsClist", 0));
  }
  app.WaitContact("");
  queue.Print({"-t", "second", "-H", "hold"}, "data");
  app.WaitRow("JobsClist", "second");
}

TEST_F(Jobs, WindowIsRightAgainAfterTheSpoolerWasKilled) {
  const TestQueue queue("office");
  queue.Print({"-t", "letter", "-H", "hold"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "letter");
  {
    const NoScheduler killed(SIGKILL);
    app.WaitContact("SPOOLER_GONE");
  }
  app.WaitContact("");
  const TestQueue later("later");
  later.Print({"-t", "second", "-H", "hold"}, "data");
  app.WaitRow("JobsClist", "second");
  // Whatever the new one knows of the time before.
  app.WaitUntil("as many jobs as the spooler has", [&] {
    const std::string jobs = RunProgram({"lpstat", "-o"}).output;
    return std::count(jobs.begin(), jobs.end(), '\n') ==
           static_cast<int>(app.Rows("JobsClist").size());
  });
}

TEST_F(Jobs, WindowOpensWhileTheSpoolerHangs) {
  const TestQueue queue("office");
  auto hung = std::make_unique<HungScheduler>();
  JobsApp app;
  app.WaitContact("SPOOLER_SILENT");
  EXPECT_EQ(Strings{}, app.Column("QueuesClist", 0));
  hung.reset();
  app.WaitRow("QueuesClist", "office");
  app.WaitContact("");
}

TEST_F(Jobs, AreHeldAndExplainedByKeys) {
  const TestQueue queue("office");
  queue.Record();
  ASSERT_EQ(0, RunProgram({"cupsdisable", "office"}).status);
  queue.Print({"-t", "letter"}, "data");
  JobsApp app;
  Keyboard keys(app);
  app.WaitRow("JobsClist", "letter");
  keys.GoTo(CatalogueText("DEF_LBL_JOBS"), "JobsClist");
  keys.Key("Down");
  app.WaitUntil("a selected job", [&] { return app.IsSensitive("HoldButton"); });
  keys.Press(CatalogueText("DEF_BTN_HOLD_TITLE"));
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_HELD"));
  keys.Press(CatalogueText("DEF_BTN_WHY_TITLE"));
  keys.Await("WhyWindow");
  const std::string step = CatalogueText("WHY_STOPPED", {"office"});
  app.WaitUntil("the step", [&] { return app.Text("WhyText").find(step) != std::string::npos; });
  keys.Close("WhyWindow", "Return");
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(Jobs, WindowGoesOnWhileTheSpoolerHangs) {
  const TestQueue queue("office");
  queue.Record();
  queue.Print({"-t", "letter", "-H", "hold"}, "data");
  JobsApp app;
  app.WaitRow("JobsClist", "letter");
  app.LongestTurn();
  {
    const HungScheduler hung;
    app.Select("JobsClist", "letter");
    app.Click("ReleaseButton");
    app.WaitContact("SPOOLER_SILENT");
    app.Click("HelpButton");
    app.WaitWindow("KPXHelpDialog");
    app.Key("Escape");
    app.WaitGone("KPXHelpDialog");
  }
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
  app.WaitContact("");
  // Whoever waited for the spooler would do so until a request that hangs is given up: a minute.
  EXPECT_LT(app.LongestTurn().passed, 30000) << "a turn of the main loop waited for the spooler";
}

TEST_F(Jobs, WindowClosesWhileTheSpoolerHangs) {
  const TestQueue queue("office");
  JobsApp app;
  app.WaitRow("QueuesClist", "office");
  const HungScheduler hung;
  app.WaitContact("SPOOLER_SILENT");
  const auto pressed = std::chrono::steady_clock::now();
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
  // A request that hangs is given up after a minute; the window waits for none.
  EXPECT_LT(std::chrono::steady_clock::now() - pressed, std::chrono::seconds(30));
}

}  // namespace
