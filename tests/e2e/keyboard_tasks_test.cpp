// What users come for, done with keys alone: the pointer is never used. Each task ends in what was
// saved, printed or shown, and wherever the keys go it is seen.
#include <algorithm>

#include "keyboard.h"
#include "printtooltest.h"
#include "savedqueues.h"
#include "xinput.h"

namespace {

using Strings = std::vector<std::string>;

class KeyboardTasks : public RealSpoolerTest {
 protected:
  KeyboardTasks() { XInputMove(0, 0); }  // where it points at nothing

  static std::string Def(const std::string &name) {
    return ContentOf(std::string(kDataDir) + "/" + name + ".def");
  }

  // Opens the dialog, fills it and leaves it by Return.
  static void AddQueue(GuiApp &app, const QueueInput &queue) {
    Keyboard keys(app);
    keys.Press(CatalogueText("DEF_BTN_ADD_TITLE"));
    keys.Await("AddQueueWindow");
    EXPECT_EQ("AddQueueWindow/QueueEntry", app.Focus());
    keys.Type(queue.name);
    keys.GoTo(CatalogueText("DEF_LBL_PRINTER"), "PrinterClist");
    keys.Key("Home");
    const auto chosen = [&] {
      const Strings rows = app.Rows("PrinterClist");
      return std::find(rows.begin(), rows.end(), "*" + queue.printer) != rows.end();
    };
    for (int i = 0; i < 10 && !chosen(); ++i) keys.Key("Down");
    EXPECT_TRUE(chosen()) << queue.printer;
    keys.GoTo(CatalogueText("DEF_LBL_TYPE"), "QueueTypeComboEntry");
    keys.Choose("QueueType", CatalogueText(queue.type));
    keys.TabTo("AddressEntry");
    keys.Type(queue.address);
    keys.Close("AddQueueWindow", "Return");
  }

  // Of the row that is selected.
  static void OpenProperties(GuiApp &app) {
    Keyboard keys(app);
    keys.Press(CatalogueText("DEF_BTN_PROPERTIES_TITLE"));
    keys.Await("PropertiesWindow");
    app.WaitUntil("all pages", [&] { return app.HasWidget("GeneralVbox"); });
  }

  static void ShowTab(GuiApp &app, const std::string &key, const std::string &page) {
    Keyboard keys(app);
    keys.Press(CatalogueText(key));
    app.WaitUntil("the page " + page, [&] { return app.HasWidget(page); });
    app.WaitDrawn();
    keys.ExpectFocusSeen("on " + page);
  }

  // Ends the program.
  static void Save(GuiApp &app) {
    Keyboard(app).Press(CatalogueText("DEF_BTN_SAVE_TITLE"));
    EXPECT_EQ(0, app.WaitExit());
    EXPECT_EQ("", app.Stderr());
  }
};

TEST_F(KeyboardTasks, AQueueIsAdded) {
  AdminApp app;
  AddQueue(app, {.name = "notes", .printer = "Vek Norvel 4105", .type = "text"});
  EXPECT_EQ(Strings{"*notes"}, app.QueueNames());
  Save(app);
  EXPECT_NE(std::string::npos, ContentOf(kQueuesFile)
                                   .find("#name_queue\nnotes\n#language\ntext\n#printer\n"
                                         "Vek Norvel 4105\n"));
  EXPECT_EQ("notes\n", SpoolerQueues());
}

TEST_F(KeyboardTasks, EscapeAddsNothing) {
  AdminApp app;
  Keyboard keys(app);
  keys.Press(CatalogueText("DEF_BTN_ADD_TITLE"));
  keys.Await("AddQueueWindow");
  keys.Type("notes");
  keys.Close("AddQueueWindow", "Escape");
  EXPECT_EQ(Strings{}, app.QueueNames());
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(KeyboardTasks, AQueueIsClonedAndTheCursorIsOnTheClone) {
  AddAndSave({{.name = "first"}, {.name = "second"}});
  AdminApp app;
  Keyboard keys(app);
  keys.TabTo("QueuesClist");
  keys.Key("Down");
  EXPECT_EQ((Strings{"*first", "-second"}), app.QueueNames());
  keys.TabTo("CloneButton");
  keys.Key("Return");
  ASSERT_EQ(3U, app.QueueNames().size());
  const std::string clone = app.QueueNames().back();
  EXPECT_EQ('*', clone.front()) << clone;
  keys.TabTo("QueuesClist");
  keys.Key("Up");
  EXPECT_EQ((Strings{"-first", "*second", "-" + clone.substr(1)}), app.QueueNames());
  Save(app);
  const Strings queues = SplitLines(SpoolerQueues());
  EXPECT_NE(queues.end(), std::find(queues.begin(), queues.end(), clone.substr(1)));
}

TEST_F(KeyboardTasks, AQueuePrintsOnBothSidesOfAnotherSize) {
  AddAndSave({{.name = "first"}});
  AdminApp app;
  Keyboard keys(app);
  keys.Key("Down");
  OpenProperties(app);
  ShowTab(app, "DEF_TAB_SETUP", "SetupVbox");
  for (const char *size : {"Letter", "A4"}) {
    keys.GoTo(CatalogueText("DEF_LBL_PAPERSIZE"), "PaperSizeComboEntry");
    keys.Choose("PaperSize", size);
    keys.GoTo(CatalogueText("DEF_LBL_DUPLEX"), "DuplexComboEntry");
    keys.Choose("Duplex", "Two-sided, long edge");
    keys.Click(CatalogueText("DEF_BTN_APPLY_TITLE"));
  }
  keys.Close("PropertiesWindow", "Return");
  Save(app);
  EXPECT_NE(std::string::npos, Def("first").find("*Duplex=DuplexNoTumble\n")) << Def("first");
  // A4 is the printer's own choice, which is not written.
  EXPECT_EQ(std::string::npos, Def("first").find("*PageSize")) << Def("first");
}

TEST_F(KeyboardTasks, EscapeLeavesThePropertiesAsTheyWere) {
  AddAndSave({{.name = "first"}});
  const std::string before = Def("first");
  AdminApp app;
  Keyboard keys(app);
  keys.Key("Down");
  OpenProperties(app);
  ShowTab(app, "DEF_TAB_SETUP", "SetupVbox");
  keys.GoTo(CatalogueText("DEF_LBL_PAPERSIZE"), "PaperSizeComboEntry");
  keys.Choose("PaperSize", "Letter");
  keys.Close("PropertiesWindow", "Escape");
  Save(app);
  EXPECT_EQ(before, Def("first"));
}

TEST_F(KeyboardTasks, AConflictIsResolved) {
  AddAndSave({{.name = "first"}});
  AdminApp app;
  Keyboard keys(app);
  keys.Key("Down");
  OpenProperties(app);
  ShowTab(app, "DEF_TAB_SETUP", "SetupVbox");
  keys.GoTo(CatalogueText("DEF_LBL_DUPLEX"), "DuplexComboEntry");
  keys.Choose("Duplex", "Two-sided, long edge");
  keys.GoTo(CatalogueText("DEF_LBL_PAPERTYPE"), "PaperTypeComboEntry");
  keys.Choose("PaperType", "Transparencies");
  app.Key("Return");
  keys.Await("ErrorDialog");
  EXPECT_EQ("ErrorDialog/OKButton", app.Focus());
  keys.TabTo("ResolveButton");
  keys.Key("Return");
  EXPECT_EQ("\"Two-sided printing\" has been set to \"One-sided\".", app.Text("ErrorLabel2"));
  keys.Close("ErrorDialog", "Return");
  EXPECT_EQ("PropertiesWindow/DuplexComboEntry", app.Focus());
  keys.Close("PropertiesWindow", "Return");
  Save(app);
  EXPECT_NE(std::string::npos, Def("first").find("*MediaType=Transparency\n")) << Def("first");
  EXPECT_EQ(std::string::npos, Def("first").find("*Duplex")) << Def("first");
}

TEST_F(KeyboardTasks, ACustomSizeIsAddedAndAnotherDeleted) {
  AddAndSave({{.name = "first"}});
  AdminApp app;
  Keyboard keys(app);
  keys.Key("Down");
  OpenProperties(app);
  ShowTab(app, "DEF_TAB_CUSTOMS", "CustomsVBox");
  for (const char *name : {"Poster", "Ticket"}) {
    keys.TabTo("CpsButtonAdd");
    app.Key("Return");
    keys.Await("CpsParamWindow");
    EXPECT_EQ("CpsParamWindow/CpsNameEntry", app.Focus());
    keys.Type(name);
    keys.GoTo(CatalogueText("DEF_LBL_CPS_WIDTH"), "CpsWidthSpinbutton");
    keys.Key("ctrl+a");
    keys.Type("300");
    keys.GoTo(CatalogueText("DEF_LBL_CPS_LENGTH"), "CpsLengthSpinbutton");
    keys.Key("ctrl+a");
    keys.Type("500");
    keys.Close("CpsParamWindow", "Return");
  }
  keys.TabTo("CpsCList");
  keys.Key("Home");
  keys.TabTo("CpsButtonDelete");
  app.Key("Return");
  keys.Await("ConfirmationDialog");
  EXPECT_EQ("ConfirmationDialog/YESButton", app.Focus());
  keys.Close("ConfirmationDialog", "Return");
  EXPECT_EQ("PropertiesWindow/CpsCList", app.Focus());
  ASSERT_EQ(1U, app.Rows("CpsCList").size());
  // Return presses the button that has the focus, elsewhere OK.
  keys.Close("PropertiesWindow", "Return");
  Save(app);
  EXPECT_NE(std::string::npos, Def("first").find("*CustomPaperSize=Ticket''300''500\n"))
      << Def("first");
  EXPECT_EQ(std::string::npos, Def("first").find("Poster")) << Def("first");
}

TEST_F(KeyboardTasks, EveryPlaceOfTheFocusIsSeen) {
  PutQueues(Strings{"first", "second"});
  AdminApp app;
  Keyboard keys(app);
  keys.TabTo("QueuesClist");
  keys.Key("Down");
  ExpectEveryTabStopSeen(app, "AdminWindow");
  keys.Press(CatalogueText("DEF_BTN_ADD_TITLE"));
  keys.Await("AddQueueWindow");
  ExpectEveryTabStopSeen(app, "AddQueueWindow");
  keys.Close("AddQueueWindow", "Escape");
  OpenProperties(app);
  for (const auto &[tab, page] :
       {std::pair{"GENERAL", "GeneralVbox"}, std::pair{"SETUP", "SetupVbox"},
        std::pair{"OUTPUT", "OutputVbox"}, std::pair{"OPTIONS", "OptionsVbox"},
        std::pair{"DESTINATION", "DestinationVbox"}, std::pair{"FEATURES", "FeaturesVbox"},
        std::pair{"CUSTOMS", "CustomsVBox"}}) {
    ShowTab(app, std::string("DEF_TAB_") + tab, page);
    ExpectEveryTabStopSeen(app, "PropertiesWindow");
  }
  keys.Close("PropertiesWindow", "Escape");
}

class KeyboardPrinting : public PrintTool {
 protected:
  // Types the path into the file selection, which Return takes.
  static void AddFile(GuiApp &app, const std::string &path) {
    Keyboard keys(app);
    const size_t rows = app.Rows("FilesClist").size();
    keys.Press(CatalogueText("DEF_BTN_ADD_TITLE"));
    app.WaitWindow("FilesSelectionWindow");
    TypeLocation(app, path);
    TakeLocation(
        app, "the file selection to go", [&] { app.Key("Return"); },
        [&] { return app.Windows().front() != "FilesSelectionWindow"; });
    app.WaitGone("FilesSelectionWindow");
    app.WaitUntil("a row for " + path, [&] { return app.Rows("FilesClist").size() > rows; });
    keys.ExpectFocusSeen("with a file more");
  }
};

TEST_F(KeyboardPrinting, TwoFilesArePrinted) {
  const std::string first = files_.Path("first.ps");
  MakePostScriptFile(first, 1);
  const std::string second = files_.Path("second.ps");
  MakePostScriptFile(second, 2);
  GuiApp app({.user = User()});
  Keyboard keys(app);
  keys.Await("ToolWindow");
  keys.GoTo(CatalogueText("DEF_LBL_QUEUE_TITLE"), "QueueComboEntry");
  const auto chosen = [&] { return app.Text("QueueComboEntry").starts_with("lp1 "); };
  for (size_t i = app.Rows("QueueCombo").size(); i > 0 && !chosen(); --i) keys.Key("Down");
  ASSERT_TRUE(chosen()) << app.Text("QueueComboEntry");
  AddFile(app, first);
  AddFile(app, second);
  EXPECT_EQ((Strings{"-" + first, "-" + second}), app.Rows("FilesClist"));
  keys.TabTo("PrintButton");
  app.Key("Return");
  EXPECT_EQ(0, app.WaitExit()) << app.Stderr();
  const Strings programs = PostScriptOf(jobs_.Next());
  ASSERT_EQ(2U, programs.size());
  EXPECT_EQ(1, PagesOf(programs[0]));
  EXPECT_EQ(2, PagesOf(programs[1]));
}

TEST_F(KeyboardPrinting, AFileIsTakenOffTheListAndTheFocusStaysThere) {
  const std::string path = PostScriptFile(1);
  GuiApp app;
  Keyboard keys(app);
  keys.Await("ToolWindow");
  AddFile(app, path);
  AddFile(app, path);
  keys.TabTo("FilesClist");
  keys.Key("Down");
  keys.Key("Delete");
  EXPECT_EQ("ToolWindow/FilesClist", app.Focus());
  EXPECT_EQ(1U, app.Rows("FilesClist").size());
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(KeyboardPrinting, TheCommandIsShown) {
  const std::string path = PostScriptFile(1);
  GuiApp app;
  Keyboard keys(app);
  keys.Await("ToolWindow");
  AddFile(app, path);
  keys.Press(CatalogueText("DEF_BTN_LPR_TITLE"));
  keys.Await("LprCmdDialog");
  EXPECT_TRUE(app.Text("LprCmdText").ends_with(path + "\n") ||
              app.Text("LprCmdText").ends_with(path))
      << app.Text("LprCmdText");
  keys.Close("LprCmdDialog", "Escape");
}

TEST_F(KeyboardPrinting, EveryPlaceOfTheFocusIsSeen) {
  GuiApp app;
  Keyboard keys(app);
  keys.Await("ToolWindow");
  ExpectEveryTabStopSeen(app, "ToolWindow");
  keys.Press(CatalogueText("DEF_BTN_LPR_TITLE"));
  keys.Await("LprCmdDialog");
  ExpectEveryTabStopSeen(app, "LprCmdDialog");
  keys.Close("LprCmdDialog", "Return");
  keys.Key("F1");
  keys.Await("KPXHelpDialog");
  ExpectEveryTabStopSeen(app, "KPXHelpDialog");
  keys.Close("KPXHelpDialog", "Escape");
}

}  // namespace
