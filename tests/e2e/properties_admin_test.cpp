// A queue's defaults, set on every tab of the administration program's properties window, and what
// the save then writes, byte for byte.
#include "propertiesdriver.h"
#include "savedqueues.h"

namespace {

class AdminProperties : public RealSpoolerTest {
 protected:
  static void Open(AdminApp &app, int row = 0) {
    app.SelectQueues({row});
    OpenProperties(app);
  }

  static std::string Def(const std::string &name) {
    return ContentOf(std::string(kDataDir) + "/" + name + ".def");
  }

  // From a section's keyword to its end in the queue list.
  static std::string Section(const std::string &name) {
    const std::string text = ContentOf(kQueuesFile);
    const size_t start = text.find("#" + name + "\n");
    const size_t end = text.find("#end_" + name + "\n");
    return start == std::string::npos ? "" : text.substr(start, end - start);
  }

  static void AddPaperSize(AdminApp &app, const std::string &name) {
    app.Click("CpsButtonAdd");
    app.WaitWindow("CpsParamWindow");
    app.Type(name);
    app.Click("CpsParamWindow/OKButton");
    app.WaitGone("CpsParamWindow");
  }
};

TEST_F(AdminProperties, WhatIsSetOnEveryTabIsSavedByteForByte) {
  AdminApp app;
  app.AddQueue({.name = "ps1", .printer = "Vek Norvel 4110ES"});
  Open(app);
  TypeInto(app, "QueueEntry", "office");
  TypeInto(app, "AddressEntry", "localhost");
  ShowTab(app, "Features");
  SelectRowOf(app, "AvailableClist", "Finisher");
  app.Click("AddFeaturesButton");
  ShowTab(app, "Customs");
  AddPaperSize(app, "Ticket");
  ShowTab(app, "Setup");
  ChooseOption(app, "PaperSize", "Letter");
  ChooseOption(app, "Collate", "Collated");
  ChooseOption(app, "Duplex", "Two-sided, long edge");
  ShowTab(app, "Output");
  ChooseOption(app, "OutputBin", "Finisher tray");
  ChooseOption(app, "Staple", "Two staples, portrait");
  ShowTab(app, "Options");
  ChooseOption(app, "Resolution", "1200 dpi");
  ChooseOption(app, "PrintQuality", "Draft");
  ShowTab(app, "Destination");
  TypeInto(app, "JobNameEntry", "Report");
  TypeInto(app, "UserNameEntry", "anna");
  ChooseOption(app, "Delivery", "Hold until the PIN is entered");
  TypeInto(app, "PinEntry", "1234");
  ChooseOption(app, "EmailNotifType", "When the job fails");
  TypeInto(app, "EmailNotifAddressEntry", "anna@example.com");
  TypeInto(app, "EmailNotifMessageEntry", "Look at it");
  AcceptProperties(app);
  EXPECT_EQ(std::vector<std::string>{"*office"}, app.QueueNames());
  Save(app);

  EXPECT_EQ(
      "*Collate=True\n*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=1234\n"
      "*Duplex=DuplexNoTumble\n*EmailAddress=anna@example.com\n*EmailMessage=Look at it\n"
      "*EmailNotification=JobFailed\n*JobName=Report\n*OutputBin=FinisherTray\n"
      "*OutputMode=Draft\n*PageSize=Letter\n*Resolution=1200dpi\n*StapleLocation=DualPortrait\n"
      "*UserName=anna\n*OptionFinisher=True\n*CustomPaperSize=Ticket''284''420\n",
      Def("office"));
  EXPECT_EQ(
      "#options\n*Collate\nTrue\n*Delivery\nHoldJobUntilYouEnterPIN\n*DeliveryPIN\n1234\n"
      "*Duplex\nDuplexNoTumble\n*EmailAddress\nanna@example.com\n*EmailMessage\nLook at it\n"
      "*EmailNotification\nJobFailed\n*JobName\nReport\n*OutputBin\nFinisherTray\n"
      "*OutputMode\nDraft\n*PageSize\nLetter\n*Resolution\n1200dpi\n"
      "*StapleLocation\nDualPortrait\n*UserName\nanna\n",
      Section("options"));
  EXPECT_EQ("#installable_features\n*OptionFinisher\nTrue\n", Section("installable_features"));
  EXPECT_EQ(
      "#custom_paper_sizes\n#custom_paper_params\nTicket\n#custom_paper_width\n284\n"
      "#custom_paper_length\n420\n#end_custom_paper_params\n",
      Section("custom_paper_sizes"));
  EXPECT_NE(std::string::npos, ContentOf(kQueuesFile).find("#address\nlocalhost\n"));
  EXPECT_EQ("office\n", SpoolerQueues());
}

TEST_F(AdminProperties, ATextQueuesFontsAndPagesASheetAreSaved) {
  AdminApp app;
  app.AddQueue({.name = "tx1", .printer = "Vek Norvel 4105", .type = "text"});
  Open(app);
  ShowTab(app, "Options");
  app.Click("Nup4Radiobutton");
  app.WaitDrawn();  // the orders appear
  app.Click("NupBackRadiobutton");
  EXPECT_TRUE(app.IsActive("NupBackRadiobutton"));
  ShowTab(app, "Fonts");
  TypeInto(app, "FontSizeComboEntry", "10");
  AcceptProperties(app);
  Save(app);
  EXPECT_EQ(
      "*FontName=Courier\n*FontSize=10\n*JobName=UseAppSetting\n*Nup=4\n"
      "*NupOrder=Back\n*UserName=root\n",
      Def("tx1"));
}

TEST_F(AdminProperties, CancelForgetsWhatApplyDidNotStore) {
  AdminApp app;
  app.AddQueue({.name = "ps1"});
  Open(app);
  ShowTab(app, "Setup");
  ChooseOption(app, "PaperSize", "Letter");
  PressProperties(app, "Apply");
  ChooseOption(app, "PaperSize", "Legal");
  app.Key("Escape");
  app.WaitGone("PropertiesWindow");
  Open(app);
  ShowTab(app, "Setup");
  EXPECT_EQ("Letter", ShownOption(app, "PaperSize"));
  app.Key("Escape");
  app.WaitGone("PropertiesWindow");
  Save(app);
  EXPECT_EQ("*JobName=UseAppSetting\n*PageSize=Letter\n*UserName=root\n", Def("ps1"));
}

TEST_F(AdminProperties, TheTitleFollowsTheTab) {
  AdminApp app;
  app.AddQueue({.name = "ps1"});
  Open(app);
  const std::vector<std::string> words = {"GENERAL",     "SETUP",    "OUTPUT",  "OPTIONS",
                                          "DESTINATION", "FEATURES", "CUSTOMS", "FONTS"};
  for (size_t i = 0; i < kAdminTabs.size(); ++i) {
    ShowTab(app, kAdminTabs[i]);
    EXPECT_EQ(CatalogueText("DEF_WND_ADMIN_PROP_" + words[i] + "_TITLE"),
              app.Text("PropertiesWindow"));
    EXPECT_EQ(std::vector<std::string>{}, app.ClippedTexts());
  }
}

TEST_F(AdminProperties, AConflictKeepsTheWindowOpenAndCanBeSetRight) {
  AdminApp app;
  app.AddQueue({.name = "ps1"});
  Open(app);
  ShowTab(app, "Setup");
  ChooseOption(app, "Duplex", "Two-sided, long edge");
  ChooseOption(app, "PaperType", "Transparencies");
  PressProperties(app, "OK");
  app.WaitWindow("ErrorDialog");
  EXPECT_EQ(CatalogueText("CONSTR_Dlg_Label"), app.Text("ErrorLabel1"));
  EXPECT_EQ(
      "Paper type \"Transparencies\" cannot be printed on both sides (Two-sided, long edge). "
      "Choose "
      "another paper type or one-sided printing.",
      app.Text("ErrorLabel2"));
  app.Click("ErrorDialog/ResolveButton");
  EXPECT_EQ("\"Two-sided printing\" has been set to \"One-sided\".", app.Text("ErrorLabel2"));
  for (const std::string &shown : app.ShownTexts()) {
    EXPECT_FALSE(shown.ends_with("\t" + CatalogueText("CONSTR_Dlg_Label"))) << shown;
  }
  app.Key("Return");
  app.WaitGone("ErrorDialog");
  EXPECT_EQ("Transparencies", ShownOption(app, "PaperType"));
  EXPECT_EQ("One-sided", ShownOption(app, "Duplex"));
  AcceptProperties(app);
  Save(app);
  EXPECT_EQ("*JobName=UseAppSetting\n*MediaType=Transparency\n*UserName=root\n", Def("ps1"));
}

TEST_F(AdminProperties, PartsThatDoNotGoTogetherShowTheirTabAndCanBeSetRight) {
  AdminApp app;
  app.AddQueue({.name = "ps1"});
  Open(app);
  ShowTab(app, "Features");
  SelectRowOf(app, "AvailableClist", "Two-hole punch unit");
  app.Click("AddFeaturesButton");
  ShowTab(app, "Setup");
  PressProperties(app, "OK");
  app.WaitWindow("ErrorDialog");
  EXPECT_EQ(CatalogueText("DEF_WND_ADMIN_PROP_FEATURES_TITLE"), app.Text("PropertiesWindow"));
  app.Key("Tab");
  ASSERT_EQ("ErrorDialog/ResolveButton", app.Focus());
  app.Key("Return");
  EXPECT_EQ("\"Finisher\" has been set to \"Installed\".", app.Text("ErrorLabel2"));
  app.Key("Return");
  app.WaitGone("ErrorDialog");
  EXPECT_EQ((std::vector<std::string>{"*    Finisher", "-    Two-hole punch unit"}),
            app.Rows("InstalledClist"));
  AcceptProperties(app);
}

TEST_F(AdminProperties, ARefusedValueSaysSoAndPutsTheFocusThere) {
  AdminApp app;
  app.AddQueue({.name = "ps1"});
  Open(app);
  ShowTab(app, "Destination");
  ChooseOption(app, "Delivery", "Hold until the PIN is entered");
  TypeInto(app, "PinEntry", "123");
  ShowTab(app, "Setup");
  PressProperties(app, "OK");
  app.WaitWindow("ErrorDialog");
  EXPECT_EQ(CatalogueText("ErrDestPin2"), app.Text("ErrorDialog"));
  app.Key("Return");
  app.WaitGone("ErrorDialog");
  EXPECT_EQ("PropertiesWindow/PinEntry", app.Focus());
  app.Type("1234");  // the refused PIN is selected
  AcceptProperties(app);
}

TEST_F(AdminProperties, AnEmptyOrTakenNameAndAnEmptyAddressAreRefused) {
  AdminApp app;
  app.AddQueue({.name = "ps1"});
  app.AddQueue({.name = "ps2"});
  Open(app);
  TypeInto(app, "QueueEntry", "ps2");
  PressProperties(app, "OK");
  app.ExpectErrorBox("KPXadminWarn004");
  EXPECT_EQ("PropertiesWindow/QueueEntry", app.Focus());
  app.Key("ctrl+a");
  app.Key("Delete");
  EXPECT_FALSE(app.IsSensitive("PropertiesWindow/OKButton"));
  EXPECT_FALSE(app.IsSensitive("PropertiesWindow/ApplyButton"));
  app.Type("ps3");
  EXPECT_TRUE(app.IsSensitive("PropertiesWindow/OKButton"));
  AcceptProperties(app);
  EXPECT_EQ((std::vector<std::string>{"-ps2", "*ps3"}), app.QueueNames());
}

}  // namespace
