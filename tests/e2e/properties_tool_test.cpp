// A user's job properties, set on every tab of the print tool's window: the user's option file byte
// for byte, and what the printer receives.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "installation.h"
#include "paths.h"
#include "printerjobs.h"
#include "propertiesdriver.h"
#include "temporarydirectory.h"
#include "tooldriver.h"

namespace {

class ToolProperties : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(0, std::system(KPX_MAKEQUEUES " lp1=postscript='Vek Norvel 4110ES'"
                                            " txt1=text='Vek Norvel 4105'"));
  }

  ToolProperties() {
    std::filesystem::permissions(files_.Path(), std::filesystem::perms{0755});
    MakePostScriptFile(files_.Path("document.ps"), 2);
  }
  ~ToolProperties() override {
    for (const std::string &name : NamesIn(kUsersDir)) {
      std::filesystem::remove_all(std::string(kUsersDir) + "/" + name);
    }
  }

  static std::string UserOptions(const std::string &queue) {
    return ContentOf(std::string(kUsersDir) + "/root:" + queue + ".def");
  }

  static void Print(GuiApp &app) {
    app.Click("PrintButton");
    EXPECT_EQ(0, app.WaitExit()) << app.Stderr();
  }

  TemporaryDirectory files_;
  PrinterJobs jobs_;
};

TEST_F(ToolProperties, WhatTheUserSetsIsStoredForTheUserAndReachesThePrinter) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the filter takes lp for the file's owner";
  GuiApp app;
  app.WaitWindow("ToolWindow");
  AddFile(app, files_.Path("document.ps"));
  OpenProperties(app);
  ShowTab(app, "Setup");
  ChooseOption(app, "PaperSize", "Letter");
  ChooseOption(app, "Duplex", "Two-sided, short edge");
  TypeInto(app, "NrCopiesSpinbutton", "3");
  ShowTab(app, "Options");
  ChooseOption(app, "PrintQuality", "High");
  ShowTab(app, "Destination");
  ChooseOption(app, "Delivery", "Hold until the PIN is entered");
  TypeInto(app, "PinEntry", "2468");
  AcceptProperties(app);
  Print(app);

  EXPECT_EQ(
      "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=2468\n*Duplex=DuplexTumble\n"
      "*JobName=UseAppSetting\n*NrCopies=3\n*OutputMode=High\n*PageSize=Letter\n*UserName=root\n",
      UserOptions("lp1"));
  const std::string job = jobs_.Next();
  for (const char *part :
       {"@PJL SET DELIVERY=HOLDPIN", "2468", "@PJL SET RET=DARK", "/Duplex true/Tumble true"}) {
    EXPECT_NE(std::string::npos, job.find(part)) << part << " in\n" << job.substr(0, 3000);
  }
}

TEST_F(ToolProperties, TheNextStartShowsWhatTheUserSet) {
  {
    GuiApp app;
    app.WaitWindow("ToolWindow");
    AddFile(app, files_.Path("document.ps"));
    OpenProperties(app);
    ShowTab(app, "Output");
    ChooseOption(app, "Orientation", "Landscape");
    AcceptProperties(app);
    Print(app);
  }
  jobs_.Next();
  GuiApp app;
  app.WaitWindow("ToolWindow");
  OpenProperties(app);
  ShowTab(app, "Output");
  EXPECT_EQ("Landscape", ShownOption(app, "Orientation"));
}

TEST_F(ToolProperties, CancelChangesNothing) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  AddFile(app, files_.Path("document.ps"));
  OpenProperties(app);
  ShowTab(app, "Setup");
  ChooseOption(app, "PaperSize", "Legal");
  app.Key("Escape");
  app.WaitGone("PropertiesWindow");
  Print(app);
  EXPECT_EQ("*NrCopies=1\n", UserOptions("lp1"));
  jobs_.Next();
}

TEST_F(ToolProperties, ATextQueuesFontIsStored) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  ChooseQueue(app, "txt1");
  AddFile(app, files_.Write("notes.txt", "Hello\n"));
  OpenProperties(app);
  ShowTab(app, "Fonts");
  TypeInto(app, "FontSizeComboEntry", "18");
  AcceptProperties(app);
  Print(app);
  EXPECT_NE(std::string::npos, UserOptions("txt1").find("*FontName=Courier\n*FontSize=18\n"));
  const std::string job = jobs_.Next();
  if (!HasOrdinaryUsers()) return;  // the filter takes lp for the file's owner
  EXPECT_NE(std::string::npos, job.find("/Z [18 0 0 18 0 0] def\n/F /Courier E Z makefont def\n"))
      << job;
}

TEST_F(ToolProperties, EveryTabShowsItsTitleAndWholeTexts) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  OpenProperties(app);
  const std::vector<std::string> words = {"GENERAL", "SETUP",       "OUTPUT",
                                          "OPTIONS", "DESTINATION", "FONTS"};
  for (size_t i = 0; i < kToolTabs.size(); ++i) {
    ShowTab(app, kToolTabs[i]);
    EXPECT_EQ(CatalogueText("DEF_WND_TOOL_PROP_" + words[i] + "_TITLE"),
              app.Text("PropertiesWindow"));
    EXPECT_EQ(std::vector<std::string>{}, app.ClippedTexts());
  }
}

}  // namespace
