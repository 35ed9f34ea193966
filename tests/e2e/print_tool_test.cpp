// The print tool from the key press to the bytes at the printer: real queues in a real spooler, the
// installed programs, a window that is clicked and typed into.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>

#include "printtooltest.h"
#include "spooler.h"
#include "xinput.h"

TEST_F(PrintTool, TheWindowShowsTheQueuesInTheirOrder) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  EXPECT_EQ(CatalogueText("DEF_WND_TOOL_TITLE"), app.Text("ToolWindow"));
  const std::string first = "lp1    [ Vek Norvel 4110ES ]    " + CatalogueText("postscript");
  EXPECT_EQ((std::vector<std::string>{"*" + first,
                                      "-raw1    [ Vek Norvel 4121 ]    " + CatalogueText("raw"),
                                      "-txt1    [ Vek Norvel 4105 ]    " + CatalogueText("text")}),
            app.Rows("QueueCombo"));
  EXPECT_EQ(first, app.Text("QueueComboEntry"));
  EXPECT_FALSE(app.IsSensitive("DeleteButton"));
  EXPECT_FALSE(app.HasWidget("KPXErrorWarningDialog"));
  EXPECT_EQ(std::vector<std::string>{}, app.ClippedTexts());
}

TEST_F(PrintTool, QueueAndFilesOfTheCallStandInTheWindow) {
  files_.Write("a.txt", "a\n");
  files_.Write("-b.txt", "b\n");
  GuiApp app(
      {.arguments = {"-d", "txt1", files_.Path("a.txt"), "-x", "--", files_.Path("-b.txt")}});
  app.WaitWindow("ToolWindow");
  EXPECT_TRUE(app.Text("QueueComboEntry").starts_with("txt1 "));
  EXPECT_EQ((std::vector<std::string>{"-" + files_.Path("a.txt"), "-" + files_.Path("-b.txt")}),
            app.Rows("FilesClist"));
  EXPECT_EQ(CatalogueText("WARN_ARGUMENT", {"-x"}) + "\n", app.Stderr());
}

TEST_F(PrintTool, OpensWithTheQueueOfTheEnvironmentAndTellsOfOneThatIsNotThere) {
  GuiApp named({.environment = {"LPDEST=raw1"}});
  named.WaitWindow("ToolWindow");
  EXPECT_TRUE(named.Text("QueueComboEntry").starts_with("raw1 "));
  GuiApp app({.arguments = {"-dnone"}});
  app.WaitWindow("ToolWindow");
  EXPECT_TRUE(app.Text("QueueComboEntry").starts_with("lp1 "));
  EXPECT_EQ(CatalogueText("WARN_NO_SUCH_QUEUE", {"none"}) + "\n", app.Stderr());
}

TEST_F(PrintTool, OpensWithTheQueueThatWasPrintedOnLast) {
  const std::string path = files_.Write("notes.txt", "a line\n");
  const std::string home = files_.Path("config");
  ASSERT_EQ(0, RunShell("install -d -m 700 -o " + UserName() + " " + home));
  const std::string place = "XDG_CONFIG_HOME=" + home;
  {
    GuiApp app({.arguments = {"-d", "txt1", path}, .environment = {place}, .user = User()});
    app.WaitWindow("ToolWindow");
    Print(app);
    jobs_.Next();
  }
  {
    GuiApp app({.environment = {place}, .user = User()});
    app.WaitWindow("ToolWindow");
    EXPECT_TRUE(app.Text("QueueComboEntry").starts_with("txt1 "));
  }
  // What is said in the environment counts more, and other users have their own.
  GuiApp named({.environment = {place, "PRINTER=raw1"}, .user = User()});
  named.WaitWindow("ToolWindow");
  EXPECT_TRUE(named.Text("QueueComboEntry").starts_with("raw1 "));
  if (!HasOrdinaryUsers()) return;
  GuiApp roots({.environment = {place}});
  roots.WaitWindow("ToolWindow");
  EXPECT_TRUE(roots.Text("QueueComboEntry").starts_with("lp1 "));
}

TEST_F(PrintTool, OpensWithTheDefaultQueueOfTheSpooler) {
  ASSERT_EQ(0, RunShell("lpadmin -d txt1"));
  GuiApp app;
  app.WaitWindow("ToolWindow");
  app.WaitUntil("the default queue",
                [&] { return app.Text("QueueComboEntry").starts_with("txt1 "); });
  ASSERT_EQ(0, RunShell("cupsdisable raw1"));
  GuiApp called({.arguments = {"-d", "raw1"}});
  called.WaitWindow("ToolWindow");
  // The spooler has answered.
  called.WaitUntil("the bar", [&] { return called.HasWidget("QueueBar"); });
  EXPECT_TRUE(called.Text("QueueComboEntry").starts_with("raw1 "));
  ASSERT_EQ(0, RunShell("cupsenable raw1"));
  // A queue that is not ours.
  const TestQueue other("other");
  ASSERT_EQ(0, RunShell("lpadmin -d other"));
  ASSERT_EQ(0, RunShell("cupsdisable lp1"));
  GuiApp last;
  last.WaitWindow("ToolWindow");
  last.WaitUntil("the bar", [&] { return last.HasWidget("QueueBar"); });
  EXPECT_TRUE(last.Text("QueueComboEntry").starts_with("lp1 "));
  ASSERT_EQ(0, RunShell("cupsenable lp1"));
}

TEST_F(PrintTool, ABarIsThereOnlyWhileTheChosenQueueDoesNotPrint) {
  ASSERT_EQ(0, RunShell("cupsdisable txt1"));
  GuiApp app;
  app.WaitWindow("ToolWindow");
  const auto has_bar = [&] { return app.HasWidget("QueueBar"); };
  ChooseQueue(app, "txt1");
  app.WaitUntil("the bar", has_bar);
  EXPECT_EQ(CatalogueText("QUEUE_STOPPED_REASON"), app.Text("QueueBarLabel"));
  app.WaitDrawn();
  EXPECT_EQ(std::vector<std::string>{}, app.ClippedTexts());
  EXPECT_EQ(std::vector<std::string>{}, app.UnnamedControls());
  ChooseQueue(app, "lp1");
  app.WaitUntil("no bar", [&] { return !has_bar(); });
  ChooseQueue(app, "txt1");
  app.WaitUntil("the bar", has_bar);
  ASSERT_EQ(0, RunShell("cupsenable txt1"));
  app.WaitUntil("no bar", [&] { return !has_bar(); });
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(PrintTool, APostScriptFileReachesThePrinterWithTheQueuesOptions) {
  const std::string path = PostScriptFile(3);
  GuiApp app;
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  EXPECT_EQ(std::vector<std::string>{"-" + path}, app.Rows("FilesClist"));
  Print(app);

  const std::string job = jobs_.Next();
  EXPECT_TRUE(job.starts_with("\x1B%-12345X@PJL")) << job.substr(0, 200);
  EXPECT_TRUE(job.ends_with("\x1B%-12345X"));
  EXPECT_NE(std::string::npos, job.find("@PJL SET USERNAME=\"root\""));
  const std::vector<std::string> programs = PostScriptOf(job);
  ASSERT_EQ(1U, programs.size());
  EXPECT_EQ(3, PagesOf(programs[0]));
  EXPECT_NE(std::string::npos, programs[0].find("*PageSize"));
  EXPECT_EQ(std::string::npos, programs[0].find("/NumCopies 2"));
}

TEST_F(PrintTool, AnOrdinaryUserPrintsTwoCopiesByTheUsersOptions) {
  const std::string path = PostScriptFile(4);
  WriteUserOptions("lp1", "*NrCopies=2\n*Duplex=DuplexNoTumble\n");
  GuiApp app({.arguments = {"-verbose", "2"}, .user = User()});
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  Print(app);
  EXPECT_NE(std::string::npos,
            app.Stderr().find("The entire lpr_cmd is:\n/usr/bin/lp -d lp1 -o \"*NrCopies=2\" " +
                              path + "\n"))
      << app.Stderr();

  const std::string job = jobs_.Next();
  EXPECT_NE(std::string::npos, job.find("@PJL SET USERNAME=\"" + UserName() + "\""));
  const std::vector<std::string> programs = PostScriptOf(job);
  ASSERT_EQ(1U, programs.size());
  EXPECT_EQ(2 * 4, PagesOf(programs[0]));  // Ghostscript counts the copies
  EXPECT_NE(std::string::npos, programs[0].find("/NumCopies 2"));
  // In a sandbox without root the filter cannot see whose the option file is.
  if (!HasOrdinaryUsers()) return;
  EXPECT_NE(std::string::npos, programs[0].find("*Duplex DuplexNoTumble"));
}

TEST_F(PrintTool, PrintingWritesTheUsersOptionsForTheUserAndTheSpoolerAlone) {
  const std::string path = PostScriptFile(1);
  GuiApp app({.user = User()});
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  Print(app);
  jobs_.Next();
  const std::string options = UserOptionsFile("lp1");
  EXPECT_NE(std::string::npos, ContentOf(options).find("*NrCopies=1\n"));
  EXPECT_EQ(mode_t{0640}, ModeOf(options));
  if (!HasOrdinaryUsers()) return;
  EXPECT_EQ("lp", GroupOf(options));
}

TEST_F(PrintTool, SeveralFilesAreOneJobAndStayApart) {
  const std::string path = PostScriptFile(2);
  GuiApp app;
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  AddFile(app, path);
  EXPECT_EQ((std::vector<std::string>{"-" + path, "-" + path}), app.Rows("FilesClist"));
  Print(app);
  const std::vector<std::string> programs = PostScriptOf(jobs_.Next());
  ASSERT_EQ(2U, programs.size());
  EXPECT_EQ(2, PagesOf(programs[0]));
  EXPECT_EQ(2, PagesOf(programs[1]));
}

TEST_F(PrintTool, SeveralFilesOfAJobHaveEachItsName) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "here the spooler reads no job's copy of its settings";
  const std::string first = PostScriptFile(1);
  const std::string second = files_.Write("report = \"b\".ps", ContentOf(first));
  GuiApp app({.arguments = {"-d", "lp1", first, second}});
  app.WaitWindow("ToolWindow");
  Print(app);
  const std::string job = jobs_.Next();
  const size_t at = job.find("JOBNAME=\"document.ps\"");
  ASSERT_NE(std::string::npos, at) << job;
  EXPECT_NE(std::string::npos, job.find("JOBNAME=\"report = 'b'.ps\"", at)) << job;
}

TEST_F(PrintTool, ATextFileReachesThePrinterOnATextQueue) {
  const std::string path = files_.Write("notes.txt", "first line\nsecond line\n");
  GuiApp app({.user = User()});
  app.WaitWindow("ToolWindow");
  ChooseQueue(app, "txt1");
  AddFile(app, path);
  Print(app);
  const std::string job = jobs_.Next();
  EXPECT_NE(std::string::npos, job.find("@PJL SET USERNAME=\"" + UserName() + "\"")) << job;
  EXPECT_NE(std::string::npos, job.find("(first line)")) << job;
  EXPECT_NE(std::string::npos, job.find("(second line)")) << job;
  EXPECT_EQ(1, PagesOf(PostScriptOf(job).at(0)));
}

TEST_F(PrintTool, ARawQueuePassesTheFileUnchanged) {
  std::string bytes;
  for (int i = 0; i < 5000; ++i) bytes += static_cast<char>(i % 256);
  const std::string path = files_.Write("printer.data", bytes);
  GuiApp app;
  app.WaitWindow("ToolWindow");
  ChooseQueue(app, "raw1");
  AddFile(app, path);
  Print(app);
  EXPECT_EQ(bytes, jobs_.Next());
}

TEST_F(PrintTool, StandardInputIsPrintedAndItsCopyRemoved) {
  MakePostScriptFile(files_.Path("document.ps"), 2);
  GuiApp app({.input = ContentOf(files_.Path("document.ps")), .user = User()});
  app.WaitWindow("ToolWindow");
  EXPECT_EQ(std::vector<std::string>{"-" + CatalogueText("MSG3")}, app.Rows("FilesClist"));
  const std::string captured = CapturedFileOf(app);
  EXPECT_EQ(ContentOf(files_.Path("document.ps")), ContentOf(captured));
  EXPECT_EQ(mode_t{0600}, ModeOf(captured));
  EXPECT_EQ("/usr/bin/lp -c -d lp1 -o \"*NrCopies=1\" " + captured, ShownCommand(app));
  Print(app);
  EXPECT_FALSE(std::filesystem::exists(captured));
  const std::string job = jobs_.Next();
  if (HasOrdinaryUsers()) {  // else the spooler reads no job's copy of its settings
    EXPECT_NE(std::string::npos, job.find("JOBNAME=\"" + CatalogueText("MSG3") + "\"")) << job;
  }
  const std::vector<std::string> programs = PostScriptOf(job);
  ASSERT_EQ(1U, programs.size());
  EXPECT_EQ(2, PagesOf(programs[0]));
}

TEST_F(PrintTool, StandardInputThatDoesNotFitEndsTheToolAndLeavesNothing) {
  // No file may be longer than a block: the disk is as good as full.
  GuiApp app({.program = "/bin/sh",
              .arguments = {"-c", "trap '' XFSZ; ulimit -f 1; exec /usr/bin/KPXtool"},
              .input = std::string(10000, 'x'),
              .user = User()});
  EXPECT_EQ(1, app.WaitExit());
  const std::string captured = CapturedFileOf(app);
  EXPECT_NE(std::string::npos,
            app.Stderr().find(CatalogueText("ERR_UNABLE_TO_WRITE_FILE", {captured})))
      << app.Stderr();
  EXPECT_FALSE(std::filesystem::exists(captured));
}

TEST_F(PrintTool, WhatAKilledToolHadCapturedIsRemovedAtTheNextStart) {
  std::string captured;
  {
    GuiApp app({.input = "hi\n", .user = User()});
    app.WaitWindow("ToolWindow");
    captured = CapturedFileOf(app);
    ASSERT_EQ(0, kill(app.pid(), SIGKILL));
    EXPECT_EQ(128 + SIGKILL, app.WaitExit());
  }
  ASSERT_TRUE(std::filesystem::exists(captured));
  GuiApp running({.input = "other\n", .user = User()});
  running.WaitWindow("ToolWindow");
  running.WaitUntil("no file of the killed tool",
                    [&] { return !std::filesystem::exists(captured); });
  EXPECT_EQ("other\n", ContentOf(CapturedFileOf(running)));
}

TEST_F(PrintTool, CancelRemovesTheCapturedStandardInput) {
  GuiApp app({.input = "hi\n"});
  app.WaitWindow("ToolWindow");
  const std::string captured = CapturedFileOf(app);
  EXPECT_EQ("hi\n", ContentOf(captured));
  app.Click("CancelButton");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_FALSE(std::filesystem::exists(captured));
}

TEST_F(PrintTool, ClosingTheWindowIsCancel) {
  GuiApp app({.input = "hi\n"});
  app.WaitWindow("ToolWindow");
  app.CloseWindow("ToolWindow");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_FALSE(std::filesystem::exists(CapturedFileOf(app)));
}

TEST_F(PrintTool, DeletingTheStandardInputRowRemovesItsFileAtOnce) {
  GuiApp app({.input = "hi\n"});
  app.WaitWindow("ToolWindow");
  app.ClickRow("FilesClist", 0);
  app.WaitUntil("Delete", [&] { return app.IsSensitive("DeleteButton"); });
  app.Click("DeleteButton");
  app.WaitUntil("an empty list", [&] { return app.Rows("FilesClist").empty(); });
  EXPECT_FALSE(std::filesystem::exists(CapturedFileOf(app)));
  EXPECT_FALSE(app.IsSensitive("DeleteButton"));
}

TEST_F(PrintTool, TheShownCommandCarriesEveryOptionAndTheRunOneTheCopiesAlone) {
  WriteUserOptions("lp1", "*NrCopies=3\n*Duplex=DuplexTumble\n*InputSlot=Tray1\n");
  const std::string path = PostScriptFile(1);
  GuiApp app({.arguments = {"-verbose", "2"}, .user = User()});
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  EXPECT_EQ("/usr/bin/lp -d lp1 -o \"*NrCopies=3, *Duplex=DuplexTumble *InputSlot=Tray1\" " + path,
            ShownCommand(app));
  Print(app);
  EXPECT_NE(std::string::npos,
            app.Stderr().find("\n/usr/bin/lp -d lp1 -o \"*NrCopies=3\" " + path + "\n"))
      << app.Stderr();
  jobs_.Next();
}

TEST_F(PrintTool, WithoutFilesPrintSaysSoAndRunsNothing) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  app.Click("PrintButton");
  app.WaitWindow("ErrorDialog");
  EXPECT_EQ(CatalogueText("MSG1"), app.Text("ErrorLabel1"));
  app.Key("Return");
  app.WaitGone("ErrorDialog");
  EXPECT_EQ(std::vector<std::string>{"ToolWindow"}, app.Windows());
  EXPECT_FALSE(std::filesystem::exists(std::string(kUsersDir) + "/root:lp1.def"));
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_FALSE(jobs_.HasMore());
}

TEST_F(PrintTool, APrintThatFailsIsShownAndOkEndsTheToolWithStatusOne) {
  ASSERT_EQ(0, RunShell("/usr/sbin/cupsreject lp1"));
  GuiApp app({.input = "%!\nshowpage\n", .user = User()});
  app.WaitWindow("ToolWindow");
  const std::string captured = CapturedFileOf(app);
  app.Click("PrintButton");
  app.WaitWindow("KPXErrorWarningDialog");
  const std::string message = CatalogueText("ERR_CMD_FOR_QUEUE", {"lp", "lp1"}) + "\n";
  EXPECT_EQ(message, app.Text("ErrorWarningText"));
  EXPECT_NE(std::string::npos, app.Stderr().find(message)) << app.Stderr();
  EXPECT_FALSE(std::filesystem::exists(captured));
  app.Click("KPXErrorWarningDialog/OKButton");
  EXPECT_EQ(1, app.WaitExit());
  ASSERT_EQ(0, RunShell("/usr/sbin/cupsaccept lp1"));
}

TEST_F(PrintTool, WhatIsPressedWhileLpRunsDoesNotPressTheMessagesOk) {
  const std::string pipe = files_.Path("gate");
  ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
  const ChangedFile slow_lp("/usr/bin/lp", "#!/bin/sh\nread line <'" + pipe + "'\nexit 1\n");
  ASSERT_EQ(0, chmod("/usr/bin/lp", 0755));
  GuiApp app({.input = "hi\n"});
  app.WaitWindow("ToolWindow");
  app.Click("PrintButton");
  std::ofstream gate(pipe);  // opens when the script reads
  XInputChord("Return");
  XInputChord("space");
  gate << "go\n" << std::flush;
  app.WaitWindow("KPXErrorWarningDialog");
  // Whatever was pressed has been handled by now: this key comes behind it.
  app.Key("Tab");
  app.WaitDrawn();
  EXPECT_EQ("KPXErrorWarningDialog", app.Windows().front());
  app.Click("KPXErrorWarningDialog/OKButton");
  EXPECT_EQ(1, app.WaitExit());
}

TEST_F(PrintTool, SeveralThousandFilesReachTheSpoolerInOneCommand) {
  const std::string folder =
      files_.Path("a-folder-with-a-name-as-long-as-they-are-found-in-real-life");
  std::filesystem::create_directory(folder);
  for (int i = 0; i < 3000; ++i) std::ofstream(folder + "/document" + std::to_string(i) + ".ps");
  const std::string count = files_.Path("count");
  const ChangedFile counting_lp("/usr/bin/lp", "#!/bin/sh\necho $# >'" + count + "'\n");
  ASSERT_EQ(0, chmod("/usr/bin/lp", 0755));
  // The file selection opens where the program was started.
  GuiApp app(
      {.program = "/bin/sh", .arguments = {"-c", "cd '" + folder + "' && exec /usr/bin/KPXtool"}});
  app.WaitWindow("ToolWindow");
  app.Click("AddButton");
  app.WaitWindow("FilesSelectionWindow");
  app.Click("FolderButton");
  app.WaitUntil("the files", [&] { return app.Rows("FilesClist").size() == 3000; });
  Print(app);
  EXPECT_EQ("3004\n", ContentOf(count));  // -d lp1 -o "..." and the files
}

TEST_F(PrintTool, FilesOfEveryNamePrintAndNoNameIsRun) {
  const std::string folder = files_.Path("names");
  for (const char *name :
       {"My report.ps", "z$(touch PWNED)`touch PWNED`;touch PWNED;.ps", "it's \".ps",
        "b\xC3\xBCro.ps", "caf\xE9.ps", "two\nlines.ps", "-d.ps"}) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    MakePostScriptFile(folder + "/document", 1);
    std::filesystem::rename(folder + "/document", folder + "/" + name);
    ASSERT_EQ(0, chmod(folder.c_str(), 0777));
    GuiApp app({.program = "/bin/sh",
                .arguments = {"-c", "cd '" + folder + "' && exec /usr/bin/KPXtool"},
                .user = User()});
    app.WaitWindow("ToolWindow");
    app.Click("AddButton");
    app.WaitWindow("FilesSelectionWindow");
    app.Click("FolderButton");
    app.WaitUntil("the file", [&] { return app.Rows("FilesClist").size() == 1; });
    Print(app);
    EXPECT_EQ(1, PagesOf(PostScriptOf(jobs_.Next()).at(0))) << name;
    EXPECT_EQ(std::vector<std::string>{name}, NamesIn(folder));
  }
}

TEST_F(PrintTool, AFileThatIsGoneIsToldByItsName) {
  const std::string path = files_.Path("My report.ps");
  MakePostScriptFile(files_.Path("document"), 1);
  std::filesystem::rename(files_.Path("document"), path);
  GuiApp app({.user = User()});
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  std::filesystem::remove(path);
  app.Click("PrintButton");
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ(CatalogueText("ERR_CMD_FOR_QUEUE", {"lp", "lp1"}) + "\n" +
                CatalogueText("ERR_UNABLE_TO_READ_FILE", {path}) + "\n",
            app.Text("ErrorWarningText"));
  app.Click("KPXErrorWarningDialog/OKButton");
  EXPECT_EQ(1, app.WaitExit());
}

TEST_F(PrintTool, AWholeFolderIsAddedWithoutTheFoldersBelow) {
  std::filesystem::create_directories(files_.Path("docs/below"));
  files_.Write("docs/one", "1");
  files_.Write("docs/two", "2");
  files_.Write("docs/below/three", "3");
  GuiApp app;
  app.WaitWindow("ToolWindow");
  app.Click("AddButton");
  app.WaitWindow("FilesSelectionWindow");
  // A folder's path opens the folder.
  TypeLocation(app, files_.Path("docs/"));
  TakeLocation(
      app, "the folder", [&] { app.Key("Return"); },
      [&] { return FilesShown(app).count("below") != 0; });
  app.Click("FolderButton");
  app.WaitGone("FilesSelectionWindow");
  app.WaitUntil("two rows", [&] { return app.Rows("FilesClist").size() == 2; });
  std::vector<std::string> rows = app.Rows("FilesClist");
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(
      (std::vector<std::string>{"-" + files_.Path("docs/one"), "-" + files_.Path("docs/two")}),
      rows);
}

TEST_F(PrintTool, CancellingTheFileSelectionAddsNothing) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  app.Click("AddButton");
  app.WaitWindow("FilesSelectionWindow");
  app.Click("FilesSelectionWindow/CancelButton");
  app.WaitGone("FilesSelectionWindow");
  EXPECT_EQ(std::vector<std::string>{}, app.Rows("FilesClist"));
}

TEST_F(PrintTool, TheHelpButtonShowsTheToolsHelp) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  app.Key("F1");
  app.WaitWindow("KPXHelpDialog");
  const std::string help = ContentOf(kInstalledHelp);
  EXPECT_NE(std::string::npos, help.find("#KPX_TOOL_BEGIN\n" + app.Text("HelpText")));
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
}

TEST_F(PrintTool, APageIsPrintedWithTheKeyboardAlone) {
  GuiApp app({.input = "%!\n/Helvetica 20 selectfont 72 72 moveto (x) show showpage\n"});
  app.WaitWindow("ToolWindow");
  for (int i = 0; i < 12 && app.Focus() != "ToolWindow/PrintButton"; ++i) app.Key("Tab");
  ASSERT_EQ("ToolWindow/PrintButton", app.Focus());
  app.Key("space");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ(1, PagesOf(PostScriptOf(jobs_.Next()).at(0)));
}
