// Start and end of the installed programs: names, switches, languages, exit statuses, log.

#include <gtest/gtest.h>
#include <sched.h>

#include <csignal>

#include "command.h"
#include "cprintqueues.h"
#include "guiapp.h"
#include "ignoreresult.h"
#include "installation.h"
#include "must.h"
#include "paths.h"
#include "porting.h"
#include "queuesupport.h"
#include "tooldriver.h"

namespace {

constexpr char kAdmin[] = "/opt/orlan/bin/KPXadmin";
constexpr char kTool[] = "/usr/bin/KPXtool";

struct Ending {
  int status;
  std::string errors;
};

// Runs a program that ends without being asked to.
Ending RunToEnd(GuiAppOptions options) {
  GuiApp app(std::move(options));
  const int status = app.WaitExit();
  return {status, app.Stderr()};
}

// The places of `parts` in `text`, each searched behind the one before; the first that is not
// there is the answer, else an empty text.
std::string FirstOutOfOrder(const std::string &text, const std::vector<std::string> &parts) {
  size_t place = 0;
  for (const std::string &part : parts) {
    place = text.find(part, place);
    if (place == std::string::npos) return part;
    place += part.size();
  }
  return "";
}

const std::vector<std::string> kMilestones = {
    "Create the CMessages structure\n", "Create the CHelp structure\n", "Set the pixmaps dir\n",
    "Create the CPrinters structure\n", "Create the CPrintQueues structure\n"};

// For its lifetime what is started has one processor.
class OneProcessor {
 public:
  OneProcessor() {
    Must(sched_getaffinity(0, sizeof all_, &all_) == 0);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &one);
    Must(sched_setaffinity(0, sizeof one, &one) == 0);
  }
  ~OneProcessor() { sched_setaffinity(0, sizeof all_, &all_); }
  OneProcessor(const OneProcessor &) = delete;
  OneProcessor &operator=(const OneProcessor &) = delete;

 private:
  cpu_set_t all_ = {};
};

// For its lifetime the queue list names one queue "lp1", whose interface script holds `script`
// (none: it is missing).
class OneQueue {
 public:
  explicit OneQueue(const std::optional<std::string> &script)
      : directory_((std::filesystem::create_directories(kSpoolInterfacesDir), kScript)),
        list_(kQueuesFile, ListText()),
        script_(kScript, script) {}

 private:
  static constexpr char kScript[] = "/usr/spool/lp/admins/lp/interfaces/lp1";

  static std::string ListText() {
    const TemporaryDirectory directory;
    const std::string path = directory.Path("queues.paf");
    const Owned<CPrintQueues> queues = CreatePrintQueues(path.c_str());
    IgnoreResult(fFillFromPaf_Function_(queues.get(), 1), "there is no list yet");
    Must(HashPut(fGetPrintQueues_Function(queues.get()), "lp1", MakeQueue()));
    Must(fWriteToPaf_Function(queues.get()));
    return ContentOf(path);
  }

  std::string directory_;
  ChangedFile list_;
  ChangedFile script_;
};

std::string Lines(const std::vector<std::string> &lines) {
  std::string text;
  for (const std::string &line : lines) text += line + "\n";
  return text;
}

}  // namespace

TEST(Startup, UnderAnotherNameEverythingIsLoadedThenStatusIsOne) {
  const Ending ending =
      RunToEnd({.arguments = {"-verbose", "4"}, .program_name = "/usr/bin/kpxtool"});
  EXPECT_EQ(1, ending.status);
  EXPECT_EQ("", FirstOutOfOrder(ending.errors, kMilestones)) << ending.errors;
  EXPECT_TRUE(ending.errors.ends_with("\nEND   main() function\n")) << ending.errors;
}

TEST(Startup, OnlyTheBaseNameOfTheProgramCounts) {
  GuiApp app({.program_name = "/somewhere/else/KPXtool"});
  app.WaitWindow("ToolWindow");
  EXPECT_EQ(std::vector<std::string>{"ToolWindow"}, app.Windows());
}

TEST(Startup, VerboseWithoutANumberPrintsTheUsageAndEndsWithZero) {
  const Ending ending = RunToEnd({.program = kAdmin, .arguments = {"-verbose"}});
  EXPECT_EQ(0, ending.status);
  EXPECT_EQ("Usage: /opt/orlan/bin/KPXadmin -verbose <n>\n\n", ending.errors);
}

TEST(Startup, AnArgumentThatNothingTakesIsTold) {
  GuiApp app({.program = kAdmin, .arguments = {"-verbose", "0", "--name=mine", "a.ps", "--help"}});
  app.WaitWindow("AdminWindow");
  const std::string errors = app.Stderr();
  for (const char *word : {"a.ps", "--help"}) {
    EXPECT_NE(errors.find(CatalogueText("WARN_ARGUMENT", {word})), std::string::npos) << errors;
  }
  for (const char *word : {"-verbose", "\"0\"", "mine"}) {
    EXPECT_EQ(errors.find(word), std::string::npos) << errors;
  }
}

TEST(Startup, HelpAndVersionAreAnsweredWithoutADisplay) {
  for (const std::string name : {"KPXadmin", "KPXtool", "KPXjobs"}) {
    const std::string program = "/opt/orlan/bin/" + name;
    const auto output = [&](const char *word) {
      return OutputOf({"/usr/bin/env", "-u", "DISPLAY", program, word}, 30000).value_or("failed");
    };
    EXPECT_TRUE(output("--version").starts_with(name + " "));
    EXPECT_TRUE(output("--help").starts_with("Usage: " + name)) << output("--help");
    EXPECT_NE(std::string::npos, output("--help").find(CatalogueText("ARGUMENTS_COMMON")));
  }
}

TEST(Startup, AVerboseNumberThatIsNoneReadsAsSilence) {
  const ChangedFile list(kQueuesFile, "");
  GuiApp app({.program = kAdmin, .arguments = {"-verbose", "x"}});
  app.WaitWindow("AdminWindow");
  EXPECT_EQ(std::string::npos, app.Stderr().find("structure")) << app.Stderr();
}

TEST(Startup, LevelOneShowsTheMilestonesInTheirOrderAndNothingElse) {
  const OneQueue queue(std::string(kMarkerLine) + "\n");
  GuiApp app({.arguments = {"-verbose", "1"}});
  app.WaitWindow("ToolWindow");
  std::string expected;
  for (const std::string &line : kMilestones) expected += line;
  EXPECT_EQ(expected, app.Stderr());
}

TEST(Startup, LevelFourShowsEveryRoutineFromMainsBeginToMainsEnd) {
  const OneQueue queue(std::string(kMarkerLine) + "\n");
  GuiApp app({.arguments = {"-verbose", "4"}});
  app.WaitWindow("ToolWindow");
  app.Click("CancelButton");
  EXPECT_EQ(0, app.WaitExit());
  const std::string log = app.Stderr();
  EXPECT_TRUE(log.starts_with("BEGIN main() function\n")) << log.substr(0, 200);
  EXPECT_TRUE(log.ends_with("END   DeleteGlobalVars() function\nEND   main() function\n"))
      << log.substr(log.size() - std::min<size_t>(log.size(), 400));
  EXPECT_EQ("", FirstOutOfOrder(log, {"BEGIN G_GetNlsDirFromLang() function",
                                      "Create the CMessages structure",
                                      "BEGIN GetUserName() function",
                                      "BEGIN ParseFontmap() function",
                                      "Create the CHelp structure",
                                      "Set the pixmaps dir",
                                      "BEGIN add_pixmap_directory() function",
                                      "Create the CPrinters structure",
                                      "BEGIN fBuildPrinters_Function() function",
                                      "Create the CPrintQueues structure",
                                      "BEGIN RemoveInexistentSystemVQueues() function",
                                      "BEGIN create_ToolWindow() function",
                                      "BEGIN GetStdinData() function",
                                      "BEGIN ButtonCancelToolPressed() function",
                                      "BEGIN DeleteGlobalVars() function",
                                      "Delete G_Printers...",
                                      "Delete G_Queues...",
                                      "Delete G_OrgQueues...",
                                      "Delete G_Messages...",
                                      "G_Helps is ",
                                      "Delete G_Help...",
                                      "G_StdinFileName is "}));
}

TEST(Startup, AnAdministratorWhoIsNotRootSeesOneMessageAndStatusThree) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has ordinary users only as root";
  const Ending ending = RunToEnd({.program = kAdmin, .user = "anna"});
  EXPECT_EQ(3, ending.status);
  EXPECT_EQ(CatalogueText("MSG2") + "\n", ending.errors);
}

TEST(Startup, TheLanguageDirectoryFollowsLang) {
  // The path in the message tells which catalogue was wanted.
  const std::vector<std::pair<std::string, std::string>> rows = {{"LANG=de_DE.UTF-8", "deu/utf8"},
                                                                 {"LANG=de_DE", "deu"},
                                                                 {"LANG=german", "deu"},
                                                                 {"LANG=en_US.UTF-8", "enu"},
                                                                 {"LANG=C", "enu"},
                                                                 {"LANG=xde", "enu"},
                                                                 {"LANG", "enu"},
                                                                 {"LANG=Italian", "ita"},
                                                                 {"LANG=It", "ita"},
                                                                 {"LANG=fr_FR.utf8", "fra"},
                                                                 {"LANG=pt_BR.UTF-8", "ptb/utf8"},
                                                                 {"LANG=es_ES@UTF-8", "esp/utf8"}};
  for (const auto &[setting, directory] : rows) {
    const std::string path = "/opt/orlan/data/nls/" + directory + "/pafs/messages.paf";
    const ChangedFile missing(path, std::nullopt);
    const Ending ending = RunToEnd({.environment = {"LC_ALL=C", setting}});
    EXPECT_EQ(3, ending.status) << setting;
    EXPECT_EQ("Unable to read file " + path + "\n", ending.errors) << setting;
  }
}

TEST(Startup, AMissingHelpFileEndsTheProgramWithStatusThree) {
  const ChangedFile missing(kInstalledHelp, std::nullopt);
  EXPECT_EQ(3, RunToEnd({.program = kTool}).status);
}

TEST(Startup, UnbalancedHelpBlocksEndTheProgramWithStatusFive) {
  for (const char *content : {"#ONE_BEGIN\ntext\n#TWO_BEGIN\n#TWO_END\n", "#ONE_END\n"}) {
    const ChangedFile help(kInstalledHelp, content);
    EXPECT_EQ(5, RunToEnd({.program = kTool}).status) << content;
  }
}

TEST(Startup, StandardInputThatCannotBeReadEndsTheToolWithStatusOne) {
  const Ending ending = RunToEnd({.input_path = "/opt"});  // a directory
  EXPECT_EQ(1, ending.status);
  EXPECT_TRUE(ending.errors.ends_with(CatalogueText("ERR_UNABLE_TO_READ_FILE", {"stdin"}) + "\n"))
      << ending.errors;
}

TEST(Startup, WithoutProblemsOnlyTheMainWindowIsShown) {
  const OneQueue queue(std::string(kMarkerLine) + "\n");
  for (const char *program : {kTool, kAdmin}) {
    GuiApp app({.program = program});
    const std::string window = program == kTool ? "ToolWindow" : "AdminWindow";
    app.WaitWindow(window);
    EXPECT_EQ(std::vector<std::string>{window}, app.Windows());
    EXPECT_EQ("", app.Stderr());
  }
}

TEST(Startup, OneProcessorIsEnough) {
  const OneQueue queue(std::string(kMarkerLine) + "\n");
  const OneProcessor processor;
  for (const auto &[program, window] : std::vector<std::pair<std::string, std::string>>{
           {kTool, "ToolWindow"}, {kAdmin, "AdminWindow"}, {"/usr/bin/KPXjobs", "JobsWindow"}}) {
    GuiApp app({.program = program});
    app.WaitWindow(window);
    app.WaitDrawn();
    EXPECT_EQ("", app.Stderr());
  }
}

TEST(Startup, AQueueWhoseScriptIsGoneIsDroppedSilently) {
  const OneQueue queue(std::nullopt);
  GuiApp app;
  app.WaitWindow("ToolWindow");
  EXPECT_EQ(std::vector<std::string>{"ToolWindow"}, app.Windows());
  EXPECT_EQ("", Lines(app.Rows("QueueCombo")));
}

TEST(Startup, AQueueWhoseScriptLostTheMarkerIsDroppedWithAMessage) {
  const OneQueue queue("#!/bin/sh\n");
  for (const char *program : {kTool, kAdmin}) {
    GuiApp app({.program = program});
    app.WaitWindow("KPXErrorWarningDialog");
    EXPECT_EQ(CatalogueText("WARN_QUEUE_SCRIPT_CHANGED", {"lp1"}) + "\n",
              app.Text("ErrorWarningText"));
    EXPECT_EQ(CatalogueText("ERR_ERRS_AND_WRNS"), app.Text("ErrorWarningLabel"));
    app.Click("KPXErrorWarningDialog/OKButton");
    app.WaitGone("KPXErrorWarningDialog");
    EXPECT_EQ("", Lines(app.Rows(program == kTool ? "QueueCombo" : "QueuesClist")));
    app.Click("CancelButton");
    EXPECT_EQ(0, app.WaitExit());
  }
}

TEST(Startup, ATerminatingSignalEndsTheProgramAsItsCancelButtonDoes) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    GuiApp app({.input = "data"});
    app.WaitWindow("ToolWindow");
    const std::string captured = CapturedFileOf(app);
    EXPECT_TRUE(std::filesystem::exists(captured));
    kill(app.pid(), signal);
    EXPECT_EQ(0, app.WaitExit());
    EXPECT_FALSE(std::filesystem::exists(captured));
  }
}

TEST(Startup, ATerminatingSignalDuringTheCaptureLeavesNoFile) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    GuiApp app({.input_path = "/dev/zero"});
    const std::string captured = CapturedFileOf(app);
    app.WaitUntil("the file", [&] { return std::filesystem::exists(captured); });
    kill(app.pid(), signal);
    EXPECT_EQ(128 + signal, app.WaitExit());
    EXPECT_FALSE(std::filesystem::exists(captured));
  }
}

TEST(Startup, ASignalThatIsIgnoredDoesNotEndTheCapture) {
  GuiApp app({.program = "/bin/sh",
              .arguments = {"-c", "trap '' HUP; exec /usr/bin/KPXtool"},
              .input_path = "/dev/zero"});
  const std::string captured = CapturedFileOf(app);
  app.WaitUntil("the file", [&] { return std::filesystem::exists(captured); });
  kill(app.pid(), SIGHUP);
  const auto size = std::filesystem::file_size(captured);
  app.WaitUntil("more data", [&] { return std::filesystem::file_size(captured) > size; });
  kill(app.pid(), SIGTERM);
  EXPECT_EQ(128 + SIGTERM, app.WaitExit());
  EXPECT_FALSE(std::filesystem::exists(captured));
}

TEST(Startup, WithoutADisplayNothingOfStandardInputIsLeft) {
  GuiApp app({.input = "data"});
  app.WaitWindow("ToolWindow");
  const std::string captured = CapturedFileOf(app);
  EXPECT_TRUE(std::filesystem::exists(captured));
  app.LoseDisplay("ToolWindow");
  EXPECT_EQ(1, app.WaitExit());
  EXPECT_FALSE(std::filesystem::exists(captured));
}

TEST(Startup, StandardStreamsThatAreClosedDoNoHarm) {
  const ChangedFile no_list(kQueuesFile, std::nullopt);  // a message on standard error
  for (const char *streams : {"2>&-", "0<&-", "0<&- 1>&- 2>&-"}) {
    GuiApp app({.program = "/bin/sh",
                .arguments = {"-c", std::string("exec /usr/bin/KPXtool -verbose 4 ") + streams}});
    app.WaitWindow("ToolWindow");
    EXPECT_EQ(std::vector<std::string>{}, app.Rows("FilesClist")) << streams;
    app.Click("CancelButton");
    EXPECT_EQ(0, app.WaitExit()) << streams;
  }
}
