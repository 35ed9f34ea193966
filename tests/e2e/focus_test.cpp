// Where the keys go after something has been deleted, replaced or closed: to what the user works on
// next, never to nothing.
#include "administration.h"
#include "keyboard.h"
#include "propertiesdriver.h"

namespace {

class Focus : public AdministrationTest {
 protected:
  Focus() { PutQueues(std::vector<std::string>{"first", "second", "third"}); }

  static void Press(GuiApp &app, const std::string &button) {
    Keyboard(app).TabTo(button);
    app.Key("Return");
  }

  static void ExpectFocus(GuiApp &app, const std::string &widget) {
    EXPECT_EQ("", app.FocusFault());
    EXPECT_EQ(widget, app.Focus());
  }

  // The properties of the first queue, with the page of that tab.
  static void OpenPage(GuiApp &app, const std::string &tab) {
    app.ClickRow("QueuesClist", 0);
    Press(app, "PropertiesButton");
    app.WaitWindow("PropertiesWindow");
    app.WaitDrawn();
    ShowTab(app, tab);
  }

  // Adds a custom entry of the kind ("Cps", "Cmt") by keys; the Customs tab is shown.
  static void AddCustom(GuiApp &app, const std::string &kind, const std::string &name) {
    Press(app, kind + "ButtonAdd");
    app.WaitWindow(kind + "ParamWindow");
    app.Type(name);
    app.Key("Return");
    app.WaitGone(kind + "ParamWindow");
  }
};

TEST_F(Focus, IsInTheListAfterADeletionOfQueues) {
  AdminApp app;
  app.SelectQueues({1});
  Press(app, "DeleteButton");
  ASSERT_EQ(2U, app.QueueNames().size());
  ExpectFocus(app, "AdminWindow/QueuesClist");
  app.SelectQueues({0, 1});
  Press(app, "DeleteButton");
  ASSERT_EQ(0U, app.QueueNames().size());
  ExpectFocus(app, "AdminWindow/QueuesClist");
}

TEST_F(Focus, StaysOnTheButtonThatCloned) {
  AdminApp app;
  app.SelectQueues({1});
  Press(app, "CloneButton");
  ExpectFocus(app, "AdminWindow/CloneButton");
  app.Key("Return");
  EXPECT_EQ(5U, app.QueueNames().size());
}

TEST_F(Focus, IsOnTheButtonAgainThatOpenedAWindow) {
  AdminApp app;
  Press(app, "AddButton");
  app.WaitWindow("AddQueueWindow");
  Press(app, "AboutButton");
  app.WaitWindow("dialogAbout");
  app.Key("Escape");
  app.WaitGone("dialogAbout");
  ExpectFocus(app, "AddQueueWindow/AboutButton");
  Press(app, "HelpButton");
  app.WaitWindow("KPXHelpDialog");
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
  ExpectFocus(app, "AddQueueWindow/HelpButton");
  app.Key("Escape");
  app.WaitGone("AddQueueWindow");
  ExpectFocus(app, "AdminWindow/AddButton");
}

TEST_F(Focus, IsOnTheButtonAgainThatOpenedTheProperties) {
  for (const char *key : {"Escape", "Return"}) {
    AdminApp app;
    OpenPage(app, "General");
    app.Key(key);
    app.WaitGone("PropertiesWindow");
    ExpectFocus(app, "AdminWindow/PropertiesButton");
  }
}

TEST_F(Focus, StaysOnApply) {
  AdminApp app;
  OpenPage(app, "General");
  Press(app, "ApplyButton");
  ExpectFocus(app, "PropertiesWindow/ApplyButton");
}

TEST_F(Focus, IsInTheListThatAPartWasTakenFrom) {
  AdminApp app;
  OpenPage(app, "Features");
  app.ClickRow("AvailableClist", 0);
  Press(app, "AddFeaturesButton");
  ExpectFocus(app, "PropertiesWindow/AvailableClist");
  app.ClickRow("InstalledClist", 0);
  Press(app, "RemoveFeaturesButton");
  ExpectFocus(app, "PropertiesWindow/InstalledClist");
  Press(app, "DefaultFeaturesButton");
  ExpectFocus(app, "PropertiesWindow/DefaultFeaturesButton");
}

TEST_F(Focus, StaysWithTheCustomEntries) {
  AdminApp app;
  OpenPage(app, "Customs");
  for (const std::string kind : {"Cps", "Cmt"}) {
    AddCustom(app, kind, "Own");
    ExpectFocus(app, "PropertiesWindow/" + kind + "ButtonAdd");
    Press(app, kind + "ButtonEdit");
    app.WaitWindow(kind + "ParamWindow");
    app.Key("ctrl+a");
    app.Type("Other");
    app.Key("Return");
    app.WaitGone(kind + "ParamWindow");
    ExpectFocus(app, "PropertiesWindow/" + kind + "ButtonEdit");
    for (const char *answer : {"Escape", "Return"}) {
      Press(app, kind + "ButtonDelete");
      app.WaitWindow("ConfirmationDialog");
      ExpectFocus(app, "ConfirmationDialog/YESButton");
      app.Key(answer);
      app.WaitGone("ConfirmationDialog");
      const bool deleted = answer == std::string("Return");
      ExpectFocus(app, "PropertiesWindow/" + kind + (deleted ? "CList" : "ButtonDelete"));
    }
  }
}

TEST_F(Focus, IsInTheListWhenNoMoreSizesMayBeAdded) {
  AdminApp app;
  OpenPage(app, "Customs");
  app.Click("CpsButtonAdd");
  app.WaitWindow("CpsParamWindow");
  app.Key("Escape");
  app.WaitGone("CpsParamWindow");
  int number = 0;
  while (app.IsSensitive("CpsButtonAdd")) AddCustom(app, "Cps", "S" + std::to_string(++number));
  ExpectFocus(app, "PropertiesWindow/CpsCList");
}

TEST_F(Focus, IsInTheFieldThatAWarningIsAbout) {
  AdminApp app;
  app.OpenAddQueue();
  app.FillAddQueue({.name = "first"});
  app.Key("Return");
  app.ExpectErrorBox("KPXadminWarn004");
  ExpectFocus(app, "AddQueueWindow/QueueEntry");
}

TEST_F(Focus, IsWhereItWasInThePrintToolToo) {
  GuiApp app;
  app.WaitWindow("ToolWindow");
  ExpectFocus(app, "ToolWindow/QueueComboEntry");
  Press(app, "PrintButton");
  app.WaitWindow("ErrorDialog");
  ExpectFocus(app, "ErrorDialog/OKButton");
  app.Key("Return");
  app.WaitGone("ErrorDialog");
  ExpectFocus(app, "ToolWindow/PrintButton");
  Press(app, "PropertiesButton");
  app.WaitWindow("PropertiesWindow");
  app.Key("Return");
  app.WaitGone("PropertiesWindow");
  ExpectFocus(app, "ToolWindow/PropertiesButton");
}

}  // namespace
