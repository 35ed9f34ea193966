// A job is printed with the settings that its window showed, or not at all.

#include "printtooltest.h"

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
