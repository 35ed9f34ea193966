// The administration window: rows, selection, buttons, keys, search, and that nothing is written
// before a save.
#include "administration.h"
#include "chelp.h"

namespace {

using Strings = std::vector<std::string>;

class AdminWindow : public AdministrationTest {};

TEST_F(AdminWindow, ShowsTheQueuesInKeyOrderWithTheirTypesTranslated) {
  PutQueues({{.name = "zeta", .language = "raw", .address = "zeta.example"},
             {.name = "alpha", .printer = "Vek Norvel 4105", .language = "text"}});
  AdminApp app;
  EXPECT_EQ(CatalogueText("DEF_WND_ADMIN_TITLE"), app.Text("AdminWindow"));
  EXPECT_EQ((Strings{"-alpha\tVek Norvel 4105\t" + CatalogueText("text") + "\t10.0.0.1",
                     "-zeta\tVek Norvel 4110ES\t" + CatalogueText("raw") + "\tzeta.example"}),
            app.Rows("QueuesClist"));
  EXPECT_EQ("", app.SensitiveButtons());
  for (const auto &[button, key] :
       std::map<std::string, std::string>{{"AddButton", "DEF_BTN_ADD_TITLE"},
                                          {"CloneButton", "DEF_BTN_CLONE_TITLE"},
                                          {"PropertiesButton", "DEF_BTN_PROPERTIES_TITLE"},
                                          {"DeleteButton", "DEF_BTN_DELETE_TITLE"},
                                          {"SaveButton", "DEF_BTN_SAVE_TITLE"},
                                          {"CancelButton", "DEF_BTN_CANCEL_TITLE"},
                                          {"HelpButton", "DEF_BTN_HELP_TITLE"}}) {
    EXPECT_EQ(CatalogueText(key), app.Text(button));
  }
  EXPECT_EQ(Strings{}, app.ClippedTexts());
}

TEST_F(AdminWindow, CloneAndPropertiesTakeOneSelectedQueueDeleteAnyNumber) {
  PutQueues(Strings{"lp1", "lp2", "lp3"});
  AdminApp app;
  struct Step {
    int row;
    const char *keys;
    Strings names;
    const char *buttons;
  };
  const Step steps[] = {
      {0, "", {"*lp1", "-lp2", "-lp3"}, "CPD"},     {1, "ctrl", {"*lp1", "*lp2", "-lp3"}, "D"},
      {2, "ctrl", {"*lp1", "*lp2", "*lp3"}, "D"},   {0, "ctrl", {"-lp1", "*lp2", "*lp3"}, "D"},
      {2, "ctrl", {"-lp1", "*lp2", "-lp3"}, "CPD"}, {1, "ctrl", {"-lp1", "-lp2", "-lp3"}, ""},
      {2, "", {"-lp1", "-lp2", "*lp3"}, "CPD"},     {0, "shift", {"*lp1", "*lp2", "*lp3"}, "D"},
      {1, "", {"-lp1", "*lp2", "-lp3"}, "CPD"},
  };
  for (const Step &step : steps) {
    app.ClickRow("QueuesClist", step.row, step.keys);
    EXPECT_EQ(step.names, app.QueueNames());
    EXPECT_EQ(step.buttons, app.SensitiveButtons()) << step.keys << " click on row " << step.row;
  }
}

TEST_F(AdminWindow, WithThreeRowsSelectedDeleteRemovesAllThree) {
  PutQueues(Strings{"lp1", "lp2", "lp3", "lp4", "lp5"});
  AdminApp app;
  app.SelectQueues({0, 2, 4});
  EXPECT_EQ("D", app.SensitiveButtons());
  app.Click("DeleteButton");
  EXPECT_EQ((Strings{"-lp2", "-lp4"}), app.QueueNames());
  EXPECT_EQ("", app.SensitiveButtons());
  app.SelectQueues({1});
  EXPECT_EQ("CPD", app.SensitiveButtons());
}

TEST_F(AdminWindow, ClonesOfLpAreCalledCopyOfThenCopy2OfAndAreSelectedAlone) {
  PutQueues({{.name = "lp", .language = "pcl6", .address = "host9"}, {.name = "other"}});
  AdminApp app;
  app.SelectQueues({0});
  app.Click("CloneButton");
  EXPECT_EQ((Strings{"-lp", "-other", "*CopyOf_lp"}), app.QueueNames());
  EXPECT_EQ("CPD", app.SensitiveButtons());
  app.SelectQueues({0});
  app.Click("CloneButton");
  EXPECT_EQ((Strings{"-lp", "-other", "-CopyOf_lp", "*Copy2Of_lp"}), app.QueueNames());
  EXPECT_EQ("*Copy2Of_lp\tVek Norvel 4110ES\t" + CatalogueText("pcl6") + "\thost9",
            app.Rows("QueuesClist")[3]);
  app.Click("CloneButton");
  EXPECT_EQ("*CopyOf_Copy2Of_lp", app.QueueNames()[4]);
}

TEST_F(AdminWindow, ACloneAvoidsTheNamesOfForeignSpoolerQueues) {
  PutQueues(Strings{"lp"});
  PutInSpooler("CopyOf_lp", "#!/bin/sh\n");
  AdminApp app;
  app.SelectQueues({0});
  app.Click("CloneButton");
  EXPECT_EQ((Strings{"-lp", "*Copy2Of_lp"}), app.QueueNames());
}

TEST_F(AdminWindow, ACloneIsWrittenNowhereBeforeASave) {
  PutQueues(Strings{"lp"});
  AdminApp app;
  const auto before = SavedState();
  app.SelectQueues({0});
  app.Click("CloneButton");
  EXPECT_EQ(2U, app.QueueNames().size());
  EXPECT_EQ(before, SavedState());
  app.Click("CancelButton");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ(before, SavedState());
}

TEST_F(AdminWindow, CancelAfterDeletingLeavesSpoolerAndFilesUnchanged) {
  PutQueues(Strings{"lp1", "lp2", "lp3"});
  std::ofstream(std::string(kDataDir) + "/lp1.def") << "*Nup=2\n";
  std::ofstream(std::string(kUsersDir) + "/root:lp1.def") << "*Nup=4\n";
  const auto before = SavedState();
  AdminApp app;
  app.SelectQueues({0, 1});
  app.Click("DeleteButton");
  EXPECT_EQ(Strings{"-lp3"}, app.QueueNames());
  app.Click("CancelButton");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ(before, SavedState());
  EXPECT_EQ("", app.Stderr());
}

TEST_F(AdminWindow, EscapeAndTheCloseButtonEndItAsCancelDoes) {
  PutQueues(Strings{"lp1"});
  const auto before = SavedState();
  for (const bool escape : {true, false}) {
    AdminApp app;
    app.SelectQueues({0});
    app.Click("DeleteButton");
    if (escape) {
      app.Key("Escape");
    } else {
      app.CloseWindow("AdminWindow");
    }
    EXPECT_EQ(0, app.WaitExit());
    EXPECT_EQ(before, SavedState());
  }
}

TEST_F(AdminWindow, F1OpensTheHelpAboveItAndHoldsItsInputBack) {
  PutQueues(Strings{"lp1"});
  const Owned<CHelp> help = CreateHelp(kInstalledHelp);
  fFillFromHelp_Function(help.get());
  AdminApp app;
  app.Key("F1");
  app.WaitWindow("KPXHelpDialog");
  EXPECT_EQ(CatalogueText("DEF_WND_HELP_TITLE"), app.Text("KPXHelpDialog"));
  EXPECT_EQ(fGetHelp_Function(help.get(), "KPX_ADMIN_BEGIN"), app.Text("HelpText"));
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  app.Click("AdminWindow/CancelButton");
  EXPECT_EQ((Strings{"KPXHelpDialog", "AdminWindow"}), app.Windows());
  app.Key("Return");
  app.WaitGone("KPXHelpDialog");
  app.Click("HelpButton");
  app.WaitWindow("KPXHelpDialog");
}

TEST_F(AdminWindow, DoubleAndTripleClicksAreOnlyLogged) {
  PutQueues(Strings{"lp1"});
  AdminApp app({.arguments = {"-verbose", "4"}});
  app.DoubleClickRow("QueuesClist", 0);
  app.DoubleClickRow("QueuesClist", 0);
  EXPECT_EQ(Strings{"*lp1"}, app.QueueNames());
  EXPECT_EQ(Strings{"AdminWindow"}, app.Windows());
  EXPECT_NE(std::string::npos, app.Stderr().find("2-button press\n"));
  EXPECT_NE(std::string::npos, app.Stderr().find("3-button press\n"));
}

TEST_F(AdminWindow, TypingSearchesTheListAndEscapeEndsOnlyTheSearch) {
  PutQueues(Strings{"alpha", "beta", "berlin", "gamma"});
  AdminApp app;
  app.ClickRow("QueuesClist", 0);
  app.Type("ber");
  EXPECT_EQ((Strings{"-alpha", "*berlin", "-beta", "-gamma"}), app.QueueNames());
  EXPECT_EQ("CPD", app.SensitiveButtons());
  EXPECT_EQ(2U, app.Windows().size()) << "the search has its own small window";
  app.Key("Escape");
  EXPECT_EQ(Strings{"AdminWindow"}, app.Windows());
  EXPECT_EQ((Strings{"-alpha", "*berlin", "-beta", "-gamma"}), app.QueueNames());
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(AdminWindow, IsDrivenWithTheKeyboardAlone) {
  PutQueues(Strings{"lp1", "lp2"});
  AdminApp app;
  app.TabTo("QueuesClist");
  app.Key("Down");
  app.Key("Down");
  EXPECT_EQ((Strings{"-lp1", "*lp2"}), app.QueueNames());
  app.Key("ctrl+space");
  EXPECT_EQ((Strings{"-lp1", "-lp2"}), app.QueueNames());
  app.Key("ctrl+a");
  EXPECT_EQ((Strings{"*lp1", "*lp2"}), app.QueueNames());
  app.TabTo("DeleteButton");
  app.Key("space");
  EXPECT_EQ(Strings{}, app.QueueNames());
  EXPECT_EQ("AdminWindow/QueuesClist", app.Focus());
  app.TabTo("AddButton");
  app.Key("space");
  app.WaitWindow("AddQueueWindow");
  app.Key("Escape");
  app.WaitGone("AddQueueWindow");
  app.TabTo("CancelButton");
  app.Key("space");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(AdminWindow, LongNamesDoNotMakeItWider) {
  const auto width = [](size_t characters) {
    PutQueues(Strings{"lp1", std::string(characters, 'w')});
    AdminApp app;
    return app.Geometry("AdminWindow").width;
  };
  const int usual = width(24);
  EXPECT_EQ(usual, width(128));
  EXPECT_LT(width(1), usual) << "names of a usual length are seen whole";
}

TEST_F(AdminWindow, CutsNoTextOffInAnyLanguage) {
  PutQueues(Strings{"lp1"});
  for (const char *language : {"de_DE", "es_ES", "fr_FR", "it_IT", "pt_BR"}) {
    AdminApp app({.environment = {"LC_ALL=C.UTF-8", std::string("LANG=") + language}});
    EXPECT_EQ(Strings{}, app.ClippedTexts()) << language;
    app.OpenAddQueue();
    EXPECT_EQ(Strings{}, app.ClippedTexts()) << language;
  }
}

}  // namespace
