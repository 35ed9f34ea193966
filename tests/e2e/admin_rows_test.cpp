// The rows of the administration window: sorted, searched, opened and deleted by keys, and what
// the print service says about their queues.
#include <algorithm>

#include "administration.h"
#include "keyboard.h"
#include "savedqueues.h"
#include "spooler.h"
#include "xinput.h"

namespace {

using Strings = std::vector<std::string>;

// The title of the column at that place of the list. Two of these are never a double click.
void ClickTitle(GuiApp &app, int x) {
  constexpr int kInTitle = 8;
  static int aside = 0;
  aside = 24 - aside;
  const ScreenArea list = app.Geometry("QueuesClist");
  XInputClick(list.x + x + aside, list.y + kInTitle);
  app.WaitDrawn();
}

class AdminRows : public AdministrationTest {
 protected:
  static void Search(AdminApp &app, const std::string &text) {
    Keyboard keys(app);
    keys.GoTo(CatalogueText("DEF_LBL_SEARCH"), "SearchEntry");
    keys.Key("ctrl+a");
    keys.Type(text);
  }

  static void PutThree() {
    PutQueues({{.name = "alpha", .address = "10.0.0.10"},
               {.name = "beta", .printer = "Vek Norvel 4105", .address = "10.0.0.9"},
               {.name = "Gamma", .language = "text", .address = "10.0.0.100"}});
  }
};

TEST_F(AdminRows, AreSortedByTheTitleThatIsClicked) {
  PutThree();
  AdminApp app;
  EXPECT_EQ((Strings{"-Gamma", "-alpha", "-beta"}), app.QueueNames());
  app.SelectQueues({2});
  ClickTitle(app, 20);
  EXPECT_EQ((Strings{"-alpha", "*beta", "-Gamma"}), app.QueueNames()) << "whatever their case";
  ClickTitle(app, 20);
  EXPECT_EQ((Strings{"-Gamma", "*beta", "-alpha"}), app.QueueNames());
  ClickTitle(app, 20);
  EXPECT_EQ((Strings{"-Gamma", "-alpha", "*beta"}), app.QueueNames()) << "the list's own order";
  const int address = app.Geometry("QueuesClist").width - 60;
  ClickTitle(app, address);
  EXPECT_EQ((Strings{"*beta", "-alpha", "-Gamma"}), app.QueueNames()) << "numbers by their value";
  EXPECT_EQ("CPD", app.SensitiveButtons());
  EXPECT_EQ(Strings{}, app.ClippedTexts());
}

TEST_F(AdminRows, AreSortedByKeysToo) {
  PutThree();
  AdminApp app;
  Keyboard keys(app);
  keys.TabTo("QueuesClist");
  app.Key("shift+Tab");
  app.Key("Right");
  app.Key("space");
  app.WaitDrawn();
  EXPECT_EQ((Strings{"-beta", "-Gamma", "-alpha"}), app.QueueNames()) << "by the printer";
}

TEST_F(AdminRows, ThatAreSortedAreDeletedClonedAndReplacedAsTheyAreShown) {
  PutThree();
  AdminApp app;
  ClickTitle(app, 20);
  app.SelectQueues({1});
  app.Click("CloneButton");
  EXPECT_EQ((Strings{"-alpha", "-beta", "*CopyOf_beta", "-Gamma"}), app.QueueNames());
  app.Click("PropertiesButton");
  app.WaitWindow("PropertiesWindow");
  app.TypeInto("QueueEntry", "aaa");
  app.Key("Return");
  app.WaitGone("PropertiesWindow");
  EXPECT_EQ((Strings{"*aaa", "-alpha", "-beta", "-Gamma"}), app.QueueNames());
  app.SelectQueues({1, 3});
  app.Click("DeleteButton");
  EXPECT_EQ((Strings{"-aaa", "-beta"}), app.QueueNames());
  EXPECT_EQ("", app.SensitiveButtons());
}

TEST_F(AdminRows, AreThoseThatHaveEachWordOfTheSearch) {
  PutThree();
  AdminApp app;
  app.SelectQueues({2});
  Search(app, "VEK 4110");
  EXPECT_EQ((Strings{"-Gamma", "-alpha"}), app.QueueNames());
  EXPECT_EQ("", app.SensitiveButtons()) << "what is not shown is not selected";
  app.Type(" " + CatalogueText("text"));
  EXPECT_EQ(Strings{"-Gamma"}, app.QueueNames());
  app.Key("Return");
  EXPECT_EQ(Strings{"*Gamma"}, app.QueueNames());
  EXPECT_EQ("AdminWindow/QueuesClist", app.Focus());
  Search(app, "nothing has this");
  EXPECT_EQ(Strings{}, app.QueueNames());
  app.Key("Return");
  app.Key("ctrl+a");
  EXPECT_EQ("", app.SensitiveButtons());
}

TEST_F(AdminRows, AreAllThereAgainAfterEscapeWhichThenCancels) {
  PutThree();
  AdminApp app;
  Search(app, "alpha");
  app.Key("Escape");
  EXPECT_EQ(3U, app.QueueNames().size());
  EXPECT_EQ("", app.Text("SearchEntry"));
  EXPECT_EQ("AdminWindow/QueuesClist", app.Focus());
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(AdminRows, ThatAreNewEndASearchThatLeavesThemOut) {
  PutThree();
  AdminApp app;
  Search(app, "alpha");
  app.AddQueue({.name = "alphabet"});
  EXPECT_EQ((Strings{"-alpha", "*alphabet"}), app.QueueNames());
  EXPECT_EQ("alpha", app.Text("SearchEntry"));
  app.AddQueue({.name = "other"});
  EXPECT_EQ((Strings{"-Gamma", "-alpha", "-beta", "-alphabet", "*other"}), app.QueueNames());
  EXPECT_EQ("", app.Text("SearchEntry"));
}

TEST_F(AdminRows, OpenTheirPropertiesByReturnAlone) {
  PutThree();
  AdminApp app;
  Keyboard keys(app);
  keys.TabTo("QueuesClist");
  keys.Key("End");
  for (const char *key : {"Return", "KP_Enter"}) {
    app.Key(key);
    keys.Await("PropertiesWindow");
    EXPECT_EQ("beta", app.Text("QueueEntry"));
    keys.Close("PropertiesWindow", "Escape");
    EXPECT_EQ("AdminWindow/QueuesClist", app.Focus());
  }
  app.DoubleClickRow("QueuesClist", 1);
  app.WaitUntil("the row", [&] { return app.QueueNames()[1] == "*alpha"; });
  app.WaitDrawn();
  EXPECT_EQ(Strings{"AdminWindow"}, app.Windows()) << "a double click only selects";
  app.Key("space");
  app.WaitDrawn();
  EXPECT_EQ(Strings{"AdminWindow"}, app.Windows()) << "the space bar only selects";
}

TEST_F(AdminRows, GoByTheDeleteKeyWhichAsksAboutSeveral) {
  PutQueues(Strings{"lp1", "lp2", "lp3", "lp4"});
  AdminApp app;
  Keyboard keys(app);
  keys.TabTo("QueuesClist");
  app.AddQueue({.name = "new"});
  keys.TabTo("QueuesClist");
  keys.Key("Delete");
  EXPECT_EQ((Strings{"-lp1", "-lp2", "-lp3", "-lp4"}), app.QueueNames()) << "nobody else has it";
  app.SelectQueues({1, 3});
  app.Key("Delete");
  keys.Await("QuestionDialog");
  EXPECT_EQ(CatalogueText("ASK_DELETE_QUEUES", {2}), app.Text("QuestionLabel"));
  keys.Close("QuestionDialog", "Escape");
  EXPECT_EQ((Strings{"-lp1", "*lp2", "-lp3", "*lp4"}), app.QueueNames());
  app.Key("KP_Delete");
  keys.Await("QuestionDialog");
  keys.Close("QuestionDialog", "Return");
  EXPECT_EQ((Strings{"-lp1", "-lp3"}), app.QueueNames());
  EXPECT_EQ("AdminWindow/QueuesClist", app.Focus());
  keys.Key("Delete");
  EXPECT_EQ((Strings{"-lp1", "-lp3"}), app.QueueNames()) << "nothing is selected";
  keys.GoTo(CatalogueText("DEF_LBL_SEARCH"), "SearchEntry");
  app.SelectQueues({0});
  keys.GoTo(CatalogueText("DEF_LBL_SEARCH"), "SearchEntry");
  keys.Type("lp1");
  keys.Key("Home");
  keys.Key("Delete");
  EXPECT_EQ("p1", app.Text("SearchEntry")) << "there the key is the entry's";
  EXPECT_EQ(Strings{"*lp1"}, app.QueueNames());
}

class AdminRowsOfTheSpooler : public RealSpoolerTest {
 protected:
  static void WaitTip(GuiApp &app, int row, const std::string &tip) {
    app.WaitUntil("the tip " + tip, [&] { return app.RowTip("QueuesClist", row) == tip; });
  }
};

TEST_F(AdminRowsOfTheSpooler, TellStateDefaultLocationAndDescription) {
  AddAndSave({{.name = "annex"}, {.name = "office"}});
  ASSERT_EQ(0,
            RunProgram({"/usr/sbin/lpadmin", "-p", "office", "-L", "Room 7", "-D", "By the window"})
                .status);
  ASSERT_EQ(0, RunProgram({"/usr/sbin/lpadmin", "-d", "office"}).status);
  AdminApp app;
  const std::string ready = CatalogueText("QUEUE_TIP_STATE", {CatalogueText("QUEUE_READY")});
  WaitTip(app, 0, ready);
  WaitTip(app, 1,
          ready + "\n" + CatalogueText("QUEUE_TIP_DEFAULT") + "\n" +
              CatalogueText("QUEUE_TIP_LOCATION", {"Room 7"}) + "\n" +
              CatalogueText("QUEUE_TIP_DESCRIPTION", {"By the window"}));
  ASSERT_EQ(0, RunProgram({"cupsdisable", "annex"}).status);
  WaitTip(app, 0,
          CatalogueText("QUEUE_TIP_STATE", {CatalogueText("QUEUE_STOPPED")}) + "\n" +
              CatalogueText("QUEUE_STOPPED_REASON"));
  app.SelectQueues({1});
  app.Click("CloneButton");
  EXPECT_EQ("", app.RowTip("QueuesClist", 2)) << "the print service does not have it";
  app.SelectQueues({1});
  app.Key("Return");
  app.WaitWindow("PropertiesWindow");
  app.Key("Return");
  app.WaitGone("PropertiesWindow");
  EXPECT_EQ("*office", app.QueueNames().back());
  EXPECT_TRUE(app.RowTip("QueuesClist", 2).starts_with(ready)) << "the row was made anew";
}

TEST_F(AdminRowsOfTheSpooler, AreAskedAboutWhenJobsWait) {
  AddAndSave({{.name = "annex"}, {.name = "office"}});
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(0, RunProgram({"/usr/bin/lp", "-d", "office", "-H", "hold"}, "%!PS\n").status);
  }
  AdminApp app;
  WaitTip(app, 1, CatalogueText("QUEUE_TIP_STATE", {CatalogueText("QUEUE_READY")}));
  app.SelectQueues({1});
  app.Key("Delete");
  app.WaitWindow("QuestionDialog");
  EXPECT_EQ(CatalogueText("ASK_DELETE_JOBS", {"office", 2}), app.Text("QuestionLabel"));
  app.Key("Escape");
  app.WaitGone("QuestionDialog");
  EXPECT_EQ((Strings{"-annex", "*office"}), app.QueueNames());
  app.Click("DeleteButton");
  EXPECT_EQ(Strings{"-annex"}, app.QueueNames()) << "the button asks nothing";
  app.SelectQueues({0});
  app.Key("Delete");
  EXPECT_EQ(Strings{}, app.QueueNames()) << "no jobs wait in it";
  Save(app);
  EXPECT_EQ("", SpoolerQueues());
}

TEST_F(AdminRowsOfTheSpooler, AreSavedInTheirOwnOrderHoweverTheyAreShown) {
  AddAndSave({{.name = "annex"}, {.name = "office"}});
  const std::string list = ContentOf(kQueuesFile);
  AdminApp app;
  for (int i = 0; i < 2; ++i) ClickTitle(app, 20);
  EXPECT_EQ((Strings{"-office", "-annex"}), app.QueueNames());
  Save(app);
  EXPECT_EQ(list, ContentOf(kQueuesFile));
}

}  // namespace
