// A job is printed with the settings that its window showed, or not at all.

#include "printtooltest.h"
#include "spooler.h"

using PrintSettings = PrintTool;

TEST_F(PrintSettings, AFileOfSomebodyElsesStopsAJobThatAsksForAPinAndSaysWhoseItIs) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the sandbox has no ordinary users";
  WriteUserOptions("lp1", "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=2468\n");
  const std::string path = PostScriptFile(1);
  GuiApp app({.user = User()});
  app.WaitWindow("ToolWindow");
  // The window shows the PIN by now; another user's file comes to lie in the place of the own one.
  const std::string file = UserOptionsFile("lp1");
  std::filesystem::remove(file);
  std::ofstream(file).close();
  ASSERT_EQ(0, RunShell("chown bob '" + file + "'"));
  AddFile(app, path);
  EXPECT_NE(std::string::npos, ShownCommand(app).find("*DeliveryPIN=2468"));
  app.Click("PrintButton");
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ(CatalogueText("ERR_SETTINGS_LOST", {"lp1", file}) + "\n" +
                CatalogueText("ERR_SETTINGS_FOREIGN", {file, "bob"}) + "\n",
            app.Text("ErrorWarningText"));
  app.Click("KPXErrorWarningDialog/OKButton");
  EXPECT_EQ(1, app.WaitExit());
  EXPECT_FALSE(jobs_.HasMore());
}

TEST_F(PrintSettings, AJobThatWaitsKeepsItsPinWhateverItsUserPrintsNext) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the sandbox has no ordinary users";
  const std::string path = PostScriptFile(1);
  const auto print = [&](const std::string &options) {
    WriteUserOptions("lp1", options);
    GuiApp app({.user = User()});
    app.WaitWindow("ToolWindow");
    AddFile(app, path);
    Print(app);
  };
  ASSERT_EQ(0, RunShell("/usr/sbin/cupsdisable lp1"));
  print("*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=2468\n");
  print("*Delivery=PrintImmediately\n");
  EXPECT_EQ(2U, NamesIn(std::string(kUsersDir) + "/" + User()).size());
  ASSERT_EQ(0, RunShell("/usr/sbin/cupsenable lp1"));

  const std::string first = jobs_.Next();
  EXPECT_NE(std::string::npos, first.find("@PJL SET DELIVERYPIN=\"2468\"")) << first.substr(0, 500);
  EXPECT_NE(std::string::npos, first.find("@PJL SET DELIVERY=HOLDPIN")) << first.substr(0, 500);
  const std::string second = jobs_.Next();
  EXPECT_EQ(std::string::npos, second.find("DELIVERYPIN")) << second.substr(0, 500);
  EXPECT_NE(std::string::npos, second.find("@PJL SET DELIVERY=PRINT\n")) << second.substr(0, 500);
}

TEST_F(PrintSettings, TheSettingsOfAJobThatHasBeenPrintedAreRemovedAtTheNextStart) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the sandbox has no ordinary users";
  const std::string path = PostScriptFile(1);
  const std::string own = std::string(kUsersDir) + "/" + User();
  SchedulerLog log;
  {
    GuiApp app({.user = User()});
    app.WaitWindow("ToolWindow");
    AddFile(app, path);
    Print(app);
  }
  jobs_.Next();
  log.WaitFor("] Job completed.");
  GuiApp app({.user = User()});
  app.WaitWindow("ToolWindow");
  app.WaitUntil("no settings of ended jobs", [&] { return NamesIn(own).empty(); });
}

TEST_F(PrintSettings, WhatLpPrintsStillComesOutOfThePrintTool) {
  const std::string path = PostScriptFile(1);
  const std::string output = files_.Path("output");
  ASSERT_EQ(0, RunShell("touch '" + output + "' && chmod 666 '" + output + "'"));
  GuiApp app({.program = "/bin/sh",
              .arguments = {"-c", "exec /usr/bin/KPXtool >'" + output + "'"},
              .user = User()});
  app.WaitWindow("ToolWindow");
  AddFile(app, path);
  Print(app);
  jobs_.Next();
  EXPECT_TRUE(ContentOf(output).starts_with("request id is lp1-")) << ContentOf(output);
  EXPECT_TRUE(ContentOf(output).ends_with(" (1 file(s))\n")) << ContentOf(output);
}
