// The add-queue dialog: what its entries take, when OK and Apply can be pressed, what they do.
#include "administration.h"
#include "chelp.h"
#include "xinput.h"

namespace {

using Strings = std::vector<std::string>;

class AddQueueDialog : public AdministrationTest {
 protected:
  static bool OkAndApplySensitive(AdminApp &app) {
    const bool ok = app.IsSensitive("OKButton");
    EXPECT_EQ(ok, app.IsSensitive("ApplyButton"));
    return ok;
  }

  // Puts `text` on the clipboard by way of the address entry, which stays empty.
  static void Cut(AdminApp &app, const std::string &text) {
    app.TypeInto("AddressEntry", text);
    app.Key("ctrl+a");
    app.Key("ctrl+x");
    ASSERT_EQ("", app.Text("AddressEntry"));
  }
};

TEST_F(AddQueueDialog, OpensWithItsListsFilledAndNothingChosen) {
  AdminApp app;
  app.OpenAddQueue();
  EXPECT_EQ(CatalogueText("DEF_WND_ADDQUEUE_TITLE"), app.Text("AddQueueWindow"));
  EXPECT_EQ((Strings{"-Vek Norvel 4100ES", "-Vek Norvel 4102ES", "-Vek Norvel 4105",
                     "-Vek Norvel 4110ES", "-Vek Norvel 4120ES", "-Vek Norvel 4121"}),
            app.Rows("PrinterClist"));
  EXPECT_EQ((Strings{"*" + CatalogueText("postscript"), "-" + CatalogueText("text"),
                     "-" + CatalogueText("pcl6"), "-" + CatalogueText("raw")}),
            app.Rows("QueueTypeCombo"));
  EXPECT_EQ(CatalogueText("postscript"), app.Text("QueueTypeComboEntry"));
  EXPECT_EQ(CatalogueText("tcpip"), app.Text("TransportComboEntry"));
  EXPECT_EQ(Strings{"*SystemV"}, app.Rows("PrintingSystemCombo"));
  EXPECT_EQ("", app.Text("QueueEntry") + app.Text("AddressEntry"));
  EXPECT_FALSE(OkAndApplySensitive(app));
  for (const auto &[widget, key] :
       std::map<std::string, std::string>{{"QueueLabel", "DEF_LBL_QUEUE"},
                                          {"PrinterLabel", "DEF_LBL_PRINTER"},
                                          {"QueueTypeLabel", "DEF_LBL_TYPE"},
                                          {"TransportLabel", "DEF_LBL_TRANSPORT"},
                                          {"AddressLabel", "DEF_LBL_IPADDRESS"},
                                          {"PrintingSystemLabel", "DEF_LBL_PRN_SYS"},
                                          {"AboutButton", "DEF_BTN_ABOUT_TITLE"},
                                          {"AddQueueWindow/OKButton", "DEF_BTN_OK_TITLE"},
                                          {"AddQueueWindow/CancelButton", "DEF_BTN_CANCEL_TITLE"},
                                          {"AddQueueWindow/ApplyButton", "DEF_BTN_APPLY_TITLE"},
                                          {"AddQueueWindow/HelpButton", "DEF_BTN_HELP_TITLE"}}) {
    EXPECT_EQ(CatalogueText(key), app.Text(widget));
  }
  EXPECT_EQ(Strings{}, app.ClippedTexts());
}

TEST_F(AddQueueDialog, TypingANameLeavesOutWhatANameCannotHold) {
  AdminApp app;
  app.OpenAddQueue();
  app.TypeInto("QueueEntry", "my queue.1");
  EXPECT_EQ("myqueue1", app.Text("QueueEntry"));
  app.TypeInto("QueueEntry", "a/\\.,;: '`*@#$=!&|()\"~%^[]{}<>b");
  EXPECT_EQ("ab", app.Text("QueueEntry"));
  app.TypeInto("QueueEntry", "12drücker_");
  app.Type("Ω-3+");
  EXPECT_EQ("drücker_Ω-3+", app.Text("QueueEntry"));
}

TEST_F(AddQueueDialog, PastingDropsLeadingDigitsOnlyAtTheStart) {
  AdminApp app;
  app.OpenAddQueue();
  Cut(app, "42lp");
  app.Click("QueueEntry");
  app.Key("ctrl+v");
  EXPECT_EQ("lp", app.Text("QueueEntry"));
  app.TypeInto("QueueEntry", "x");
  app.Key("ctrl+v");
  EXPECT_EQ("x42lp", app.Text("QueueEntry"));
  app.Key("Home");
  app.Key("ctrl+v");
  EXPECT_EQ("lpx42lp", app.Text("QueueEntry"));
}

TEST_F(AddQueueDialog, ADeletionThatWouldPutADigitFirstIsRefused) {
  AdminApp app;
  app.OpenAddQueue();
  app.TypeInto("QueueEntry", "a9lp");
  app.Key("Home");
  app.Key("Delete");
  EXPECT_EQ("a9lp", app.Text("QueueEntry"));
  app.Key("Right");
  app.Key("BackSpace");
  EXPECT_EQ("a9lp", app.Text("QueueEntry"));
  app.Key("Delete");
  EXPECT_EQ("alp", app.Text("QueueEntry"));
  app.Key("BackSpace");
  EXPECT_EQ("lp", app.Text("QueueEntry"));
  app.TypeInto("QueueEntry", "ä9");
  app.Key("Home");
  app.Key("Delete");
  EXPECT_EQ("ä9", app.Text("QueueEntry"));
  app.Key("ctrl+a");
  app.Key("Delete");
  EXPECT_EQ("", app.Text("QueueEntry"));
}

TEST_F(AddQueueDialog, AnAddressLosesItsBlanksAndNothingElse) {
  AdminApp app;
  app.OpenAddQueue();
  app.TypeInto("AddressEntry", " 10.0. 0.1:/\\,;'ü ");
  EXPECT_EQ("10.0.0.1:/\\,;'ü", app.Text("AddressEntry"));
  app.Key("Home");
  app.Key("Delete");
  EXPECT_EQ("0.0.0.1:/\\,;'ü", app.Text("AddressEntry"));
}

TEST_F(AddQueueDialog, ANameHasAtMost128CharactersAnAddress64) {
  AdminApp app;
  app.OpenAddQueue();
  std::string name;
  for (int i = 0; i < 9; ++i) name += "drückerdrückerdr";  // 16 characters
  app.TypeInto("AddressEntry", name.substr(0, 18 * 4));
  EXPECT_EQ(name.substr(0, 18 * 4), app.Text("AddressEntry")) << "64 characters, 72 bytes";
  app.Type("x");
  EXPECT_EQ(name.substr(0, 18 * 4), app.Text("AddressEntry"));
  app.Key("ctrl+a");
  app.Key("ctrl+x");
  app.Click("QueueEntry");
  for (int i = 0; i < 3; ++i) app.Key("ctrl+v");
  EXPECT_EQ(name.substr(0, 18 * 8), app.Text("QueueEntry")) << "128 characters, 144 bytes";
}

TEST_F(AddQueueDialog, OkAndApplyWaitForNamePrinterAndAddress) {
  AdminApp app;
  app.OpenAddQueue();
  app.TypeInto("QueueEntry", "lp1");
  EXPECT_FALSE(OkAndApplySensitive(app));
  app.TypeInto("AddressEntry", "host");
  EXPECT_FALSE(OkAndApplySensitive(app));
  app.Key("Return");
  EXPECT_EQ("AddQueueWindow", app.Windows().front()) << "Return is that of the insensitive button";
  app.SelectPrinter("Vek Norvel 4105");
  EXPECT_TRUE(OkAndApplySensitive(app));
  app.Key("ctrl+space");
  EXPECT_FALSE(OkAndApplySensitive(app));
  app.SelectPrinter("Vek Norvel 4105");
  EXPECT_TRUE(OkAndApplySensitive(app));
  app.TypeInto("QueueEntry", "");
  EXPECT_FALSE(OkAndApplySensitive(app));
  app.Type("3 .");
  EXPECT_FALSE(OkAndApplySensitive(app)) << "nothing of it stands in the entry";
  app.Type("x");
  EXPECT_TRUE(OkAndApplySensitive(app));
  app.TypeInto("AddressEntry", " ");
  EXPECT_FALSE(OkAndApplySensitive(app));
}

TEST_F(AddQueueDialog, ApplyAddsTheQueueAndASecondApplyIsRefused) {
  PutQueues(Strings{"old"});
  AdminApp app;
  const auto before = SavedState();
  app.OpenAddQueue();
  app.FillAddQueue({.name = "lp1", .printer = "Vek Norvel 4105", .type = "pcl6"});
  app.Click("ApplyButton");
  const Strings rows = {"-old\tVek Norvel 4110ES\t" + CatalogueText("postscript") + "\t10.0.0.1",
                        "*lp1\tVek Norvel 4105\t" + CatalogueText("pcl6") + "\t127.0.0.1"};
  EXPECT_EQ(rows, app.Rows("QueuesClist"));
  EXPECT_EQ((Strings{"AddQueueWindow", "AdminWindow"}), app.Windows());
  app.Click("ApplyButton");
  app.WaitWindow("ErrorDialog");
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  EXPECT_LT(app.Geometry("ErrorDialog").height, 130) << "as high as a line of text needs";
  app.ExpectErrorBox("KPXadminWarn004");
  EXPECT_EQ(rows, app.Rows("QueuesClist"));
  EXPECT_EQ("lp1", app.Text("QueueEntry")) << "the dialog stays as it was";
  EXPECT_EQ("CPD", app.SensitiveButtons());
  EXPECT_EQ(before, SavedState()) << "nothing is written before a save";
}

TEST_F(AddQueueDialog, NamesOfTheSpoolerAreTakenWhoeverTheyBelongTo) {
  PutQueues(Strings{"mine"});
  PutInSpooler("foreign", "#!/bin/sh\n");
  AdminApp app;
  app.OpenAddQueue();
  app.FillAddQueue({.name = "foreign"});
  app.Click("AddQueueWindow/OKButton");
  app.ExpectErrorBox("KPXadminWarn004");
  EXPECT_EQ("AddQueueWindow/QueueEntry", app.Focus());
  for (const char *taken : {"mine", "foreign"}) {
    app.TypeInto("QueueEntry", taken);
    app.Click("ApplyButton");
    app.ExpectErrorBox("KPXadminWarn004");
  }
  EXPECT_EQ(Strings{"-mine"}, app.QueueNames());
  app.TypeInto("QueueEntry", "Mine");
  app.Click("ApplyButton");
  EXPECT_EQ((Strings{"-mine", "*Mine"}), app.QueueNames()) << "upper and lower case differ";
}

TEST_F(AddQueueDialog, ReturnIsOkWhereverTheFocusIs) {
  AdminApp app;
  int number = 0;
  for (const char *focus : {"QueueEntry", "AddressEntry", "QueueTypeComboEntry"}) {
    app.OpenAddQueue();
    app.FillAddQueue({.name = "lp" + std::to_string(++number)});
    app.Click(focus);
    app.Key("Return");
    app.WaitGone("AddQueueWindow");
  }
  app.OpenAddQueue();
  app.TypeInto("QueueEntry", "lp4");
  app.TypeInto("AddressEntry", "host");
  app.SelectPrinter("Vek Norvel 4121");
  app.Key("KP_Enter");
  app.WaitGone("AddQueueWindow");
  EXPECT_EQ((Strings{"-lp1", "-lp2", "-lp3", "*lp4"}), app.QueueNames());
}

TEST_F(AddQueueDialog, ReturnPressesTheButtonThatHasTheFocus) {
  AdminApp app;
  app.OpenAddQueue();
  app.FillAddQueue({.name = "lp1"});
  app.TabTo("AboutButton");
  app.Key("Return");
  app.WaitWindow("dialogAbout");
  app.Key("Return");
  app.WaitGone("dialogAbout");
  app.TabTo("ApplyButton");
  app.Key("Return");
  app.WaitUntil("the queue", [&] { return app.QueueNames() == Strings{"*lp1"}; });
  app.TypeInto("QueueEntry", "lp2");
  app.TabTo("CancelButton");
  app.Key("Return");
  app.WaitGone("AddQueueWindow");
  EXPECT_EQ(Strings{"*lp1"}, app.QueueNames());
}

TEST_F(AddQueueDialog, EscapeCancelAndTheCloseButtonLeaveTheListAlone) {
  AdminApp app;
  for (const char *way : {"Escape", "CancelButton", "close"}) {
    app.OpenAddQueue();
    app.FillAddQueue({.name = "lp1"});
    if (std::string(way) == "Escape") {
      app.Key(way);
    } else if (std::string(way) == "close") {
      app.CloseWindow("AddQueueWindow");
    } else {
      app.Click("AddQueueWindow/CancelButton");
    }
    app.WaitGone("AddQueueWindow");
    EXPECT_EQ(Strings{}, app.QueueNames()) << way;
    EXPECT_EQ(Strings{"AdminWindow"}, app.Windows()) << way;
  }
}

TEST_F(AddQueueDialog, F1ShowsItsThreeHelpBlocksTheAboutButtonTheAboutBox) {
  const Owned<CHelp> help = CreateHelp(kInstalledHelp);
  fFillFromHelp_Function(help.get());
  std::string text;
  for (const char *block :
       {"KPX_ADMIN_ADDQUEUE_BEGIN", "KPX_ABOUT_BTN_BEGIN", "KPX_ADMIN_ADDQUEUE_BTNS_BEGIN"}) {
    text += fGetHelp_Function(help.get(), block);
  }
  AdminApp app;
  app.OpenAddQueue();
  app.Key("F1");
  app.WaitWindow("KPXHelpDialog");
  EXPECT_EQ(text, app.Text("HelpText"));
  app.Key("Return");
  app.WaitGone("KPXHelpDialog");
  app.Click("AboutButton");
  app.WaitWindow("dialogAbout");
  EXPECT_EQ(fGetHelp_Function(help.get(), "KPX_ABOUT_BEGIN"), app.Text("dialogAbout/label1"));
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  app.Click("ButtonOk");
  app.WaitGone("dialogAbout");
  EXPECT_EQ("AddQueueWindow", app.Windows().front());
}

TEST_F(AddQueueDialog, HoldsTheInputOfTheMainWindowBack) {
  PutQueues(Strings{"lp1", "lp2"});
  AdminApp app;
  app.SelectQueues({0});
  app.OpenAddQueue();
  // The outer buttons stand out beside the dialog, which lies in the middle of the main window.
  const ScreenArea dialog = app.Geometry("AddQueueWindow");
  const ScreenArea add = app.Geometry("AddButton");
  const ScreenArea remove = app.Geometry("DeleteButton");
  ASSERT_LT(add.x + 2, dialog.x);
  ASSERT_GT(remove.x + remove.width - 2, dialog.x + dialog.width);
  XInputClick(add.x + 2, add.y + add.height / 2);
  XInputClick(remove.x + remove.width - 2, remove.y + remove.height / 2);
  app.CloseWindow("AdminWindow");
  EXPECT_EQ((Strings{"*lp1", "-lp2"}), app.QueueNames());
  EXPECT_EQ((Strings{"AddQueueWindow", "AdminWindow"}), app.Windows());
  app.Key("Escape");
  app.WaitGone("AddQueueWindow");
  app.Click("DeleteButton");
  EXPECT_EQ(Strings{"-lp2"}, app.QueueNames());
}

TEST_F(AddQueueDialog, TypingSearchesThePrintersAndEscapeEndsOnlyTheSearch) {
  AdminApp app;
  app.OpenAddQueue();
  app.ClickRow("PrinterClist", 0);
  app.Type("Vek Norvel 412");
  EXPECT_EQ("*Vek Norvel 4120ES", app.Rows("PrinterClist")[4]);
  EXPECT_EQ(3U, app.Windows().size()) << "the search has its own small window";
  app.Key("Escape");
  EXPECT_EQ((Strings{"AddQueueWindow", "AdminWindow"}), app.Windows());
  EXPECT_EQ("*Vek Norvel 4120ES", app.Rows("PrinterClist")[4]);
  app.Key("Escape");
  app.WaitGone("AddQueueWindow");
}

}  // namespace
