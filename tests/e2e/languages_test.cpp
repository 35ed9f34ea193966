// Every window and tab of both programs in every language, at the usual, at 150 % and at 200 % text
// size: nothing is cut off or covered, everything has a name for assistive technology, no text is
// missing from the language, none is left in English, and every button, tab and field has an access
// key of its own.
#include <algorithm>
#include <set>

#include "administration.h"
#include "installedtexts.h"
#include "language.h"
#include "locales.h"
#include "propertiesdriver.h"
#include "spooler.h"
#include "tooldriver.h"

namespace {

using Strings = std::vector<std::string>;

struct Language {
  std::string name;       // of the test
  std::string lang;       // as LANG has it
  std::string directory;  // of its texts
};
void PrintTo(const Language &language, std::ostream *out) { *out << language.lang; }

std::vector<Language> Languages() {
  std::vector<Language> languages = {{"enu", "C", "enu"}};
  for (const TranslatedLanguage &language : TranslatedLanguages()) {
    languages.push_back({language.directory, std::string(language.locale) + ".UTF-8",
                         std::string(language.directory) + "/utf8"});
  }
  return languages;
}

constexpr int kScreenWidth = 1280;
constexpr int kScreenHeight = 1024;

// The parts of a shown text that may come from files: the text without indentation, an option
// behind its mark, a queue's type behind its name and printer.
Strings PartsOf(const std::string &text) {
  constexpr std::string_view kGap = "    ";
  Strings parts = {text};
  const size_t start = text.find_first_not_of(' ');
  if (start != 0 && start != std::string::npos) parts = {text.substr(start)};
  if (text.size() > 4) parts.push_back(text.substr(4));
  const size_t gap = text.rfind(kGap);
  if (gap != std::string::npos) parts.push_back(text.substr(gap + kGap.size()));
  return parts;
}

// Every text that the windows take from files, line by line.
std::set<std::string> LinesIn(const std::string &language) {
  std::vector<TextsByPlace> tables = {MessagesIn(language), HelpIn(language)};
  for (const std::string &model : kModels) tables.push_back(PrinterTextsIn(language, model));
  std::set<std::string> lines;
  for (const TextsByPlace &table : tables) {
    for (const auto &[place, text] : table) {
      if (place.ends_with(" default")) continue;
      for (const std::string &line : SplitLines(text)) lines.insert(PartsOf(line).front());
    }
  }
  return lines;
}

// Whether `text` is the message with something in the places of its "%s" and numbers in those of
// its
// "%d".
bool IsMessageFilledIn(const std::string &message, const std::string &text) {
  if (message.find('%') == std::string::npos) return false;
  size_t place = 0;
  size_t done = 0;  // of the message
  for (size_t next = message.find('%'); next != std::string::npos; next = message.find('%', done)) {
    const std::string piece = message.substr(done, next - done);
    const size_t found = text.find(piece, place);
    if (found == std::string::npos || (done == 0 && found != 0)) return false;
    place = found + piece.size();
    done = next + 2;
    if (message.compare(next, 2, "%d") != 0) continue;
    const size_t end = std::min(text.find_first_not_of("0123456789", place), text.size());
    if (end == place) return false;
    place = end;
  }
  const std::string rest = message.substr(done);
  return text.size() >= place + rest.size() && text.ends_with(rest);
}

class EveryLanguage : public AdministrationTest,
                      public testing::WithParamInterface<std::tuple<Language, int>> {
 protected:
  static void SetUpTestSuite() {
    for (const Language &language : Languages()) MakeLocale(language.lang);
  }

  EveryLanguage()
      : language_(std::get<0>(GetParam())),
        messages_(MessagesIn(language_.directory)),
        printer_(PrinterTextsIn(language_.directory, "vek41101")) {
    PutQueues(std::vector<QueueValues>{
        {.name = "lp1"}, {.name = "txt1", .printer = "Vek Norvel 4105", .language = "text"}});
  }

  GuiAppOptions Options(const char *program = kAdmin) const {
    GuiAppOptions options = InLocale(language_.lang);
    options.program = program;
    if (TextSize() != 100) {
      options.environment.push_back("GDK_DPI_SCALE=" + std::to_string(TextSize() / 100.0));
    }
    return options;
  }

  static int TextSize() { return std::get<1>(GetParam()); }  // in per cent

  // The texts of the foremost window, which is waited for by name.
  void ExpectGood(GuiApp &app, const std::string &window) {
    app.WaitWindow(window);
    const std::string name = app.Windows().front();
    if (name == "FilesSelectionWindow") {
      // The toolkit's own texts are not ours to judge.
      for (const char *button : {"FolderButton", "CancelButton", "OKButton"}) {
        EXPECT_NE("", app.Text(name + "/" + button));
      }
    }
    for (const std::string &text : app.ClippedTexts()) {
      EXPECT_TRUE(IsFileChoosersOwn(text)) << "cut off: " << text;
    }
    EXPECT_EQ(Strings{}, app.UnnamedControls());
    const ScreenArea area = app.Geometry(name);
    EXPECT_LE(area.width, kScreenWidth) << name;
    EXPECT_LE(area.height, kScreenHeight) << name;
    for (const std::string &line : app.ShownTexts()) {
      const size_t tab = line.find('\t');
      ExpectTranslated(line.substr(0, tab), line.substr(tab + 1));
    }
    ExpectAccessKeys(app);
    Picture(app, window);
  }

  // Each button, tab and label of a field has a key, and no two of the window have the same one.
  static void ExpectAccessKeys(GuiApp &app) {
    std::set<std::string> seen;
    for (const std::string &line : app.AccessKeys()) {
      const std::string key = line.substr(line.rfind('\t') + 1);
      EXPECT_NE("-", key) << line;
      EXPECT_TRUE(key == "*" || seen.insert(key).second) << line << " is the key of two";
    }
  }

  // The text that the language has for a key, or for an option of the printer.
  std::string Message(const std::string &key) const { return messages_.at(key); }
  std::string Option(const std::string &place) const { return printer_.at(place); }

  void ExpectTabsGood(GuiApp &app, const Strings &tabs) {
    for (const std::string &tab : tabs) {
      ShowTab(app, tab);
      ExpectGood(app, "PropertiesWindow");
      if (tab != "Fonts") ExpectPageWhole(app, PageOfTab(tab));
      if (app.HasWidget("Nup4Radiobutton")) {
        app.Click("Nup4Radiobutton");
        app.WaitUntil("the orders", [&] { return app.HasWidget("NupBackRadiobutton"); });
        app.WaitDrawn();
        ExpectGood(app, "PropertiesWindow");
        ExpectPageWhole(app, PageOfTab(tab));
      }
      app.Key("F1");
      ExpectGood(app, "KPXHelpDialog");
      app.Key("Escape");
      app.WaitGone("KPXHelpDialog");
    }
  }

  // Nothing of the page has to be scrolled to; at 200 % the bar for that may be seen instead.
  static void ExpectPageWhole(GuiApp &app, const std::string &page) {
    const ScreenArea inner = app.Geometry(page);
    const ScreenArea outer = app.Geometry("PropertiesNotebook");
    if (TextSize() == 200 && app.HasWidget("PropertiesWindow/GtkScrollbar")) return;
    EXPECT_LE(inner.x + inner.width, outer.x + outer.width) << page;
    EXPECT_LE(inner.y + inner.height, outer.y + outer.height) << page;
  }

  void ExpectErrorGood(GuiApp &app, const std::string &key) {
    ExpectGood(app, "ErrorDialog");
    EXPECT_EQ(Message(key), app.Text("ErrorLabel1"));
    app.Key("Return");
    app.WaitGone("ErrorDialog");
  }

 private:
  static bool IsFileChoosersOwn(const std::string &line) {
    return line.starts_with("FilesSelectionWindow/Gtk");
  }

  std::string Directory() const {
    return language_.directory.substr(0, language_.directory.find('/'));
  }

  void ExpectTranslated(const std::string &widget, const std::string &shown) {
    for (const std::string &text : PartsOf(shown)) {
      EXPECT_EQ(messages_.end(), messages_.find(text)) << widget << " shows the key " << text;
      if (Directory() == "enu" || !HasLetters(text) || IsSameOnPurpose(Directory(), text)) continue;
      EXPECT_FALSE(English().contains(text)) << widget << " shows English: " << text;
      for (const std::string &message : English()) {
        if (IsSameOnPurpose(Directory(), message)) continue;
        EXPECT_FALSE(IsMessageFilledIn(message, text)) << widget << " shows English: " << text;
      }
    }
  }

  static const std::set<std::string> &English() {
    static const std::set<std::string> lines = LinesIn("enu");
    return lines;
  }

  // For whoever wants to look at them.
  void Picture(GuiApp &app, const std::string &window) {
    const char *directory = std::getenv("KPX_PICTURES");
    if (directory == nullptr) return;
    Screenshot(app, std::string(directory) + "/" + language_.name + "-" +
                        std::to_string(TextSize()) + "-" + window + "-" +
                        std::to_string(++pictures_) + ".png");
  }

  const Language language_;
  const TextsByPlace messages_;
  const TextsByPlace printer_;
  int pictures_ = 0;
};

TEST_P(EveryLanguage, AreWholeInTheAdministrationWindowAndTheDialogOfANewQueue) {
  AdminApp app(Options());
  EXPECT_EQ(Message("DEF_WND_ADMIN_TITLE"), app.Text("AdminWindow"));
  ExpectGood(app, "AdminWindow");
  app.Key("F1");
  ExpectGood(app, "KPXHelpDialog");
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
  app.OpenAddQueue();
  ExpectGood(app, "AddQueueWindow");
  app.TypeInto("QueueEntry", "lp1");
  app.SelectPrinter(kLp1Printer);
  app.TypeInto("AddressEntry", "192.0.2.1");
  app.Click("AddQueueWindow/OKButton");
  ExpectErrorGood(app, "KPXadminWarn004");
  app.Click("AddQueueWindow/HelpButton");
  ExpectGood(app, "KPXHelpDialog");
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
  app.Click("AboutButton");
  ExpectGood(app, app.Windows().front());
}

TEST_P(EveryLanguage, AreWholeInTheWindowsOfJobs) {
  const TestQueue queue("held");
  const TestQueue other("other");
  queue.Print({"-t", "letter", "-H", "hold"}, "data");
  GuiApp app(Options("/usr/bin/KPXjobs"));
  app.WaitWindow("JobsWindow");
  app.WaitUntil("the job", [&] { return !app.Rows("JobsClist").empty(); });
  EXPECT_EQ(Message("DEF_WND_JOBS_TITLE"), app.Text("JobsWindow"));
  ExpectGood(app, "JobsWindow");
  app.ClickRow("JobsClist", 0);
  app.WaitUntil("the reason",
                [&] { return app.Text("ReasonLabel") == Message("JOB_HELD_REASON"); });
  ExpectGood(app, "JobsWindow");
  app.Click("MoveButton");
  ExpectGood(app, "MoveJobsWindow");
  app.Key("Escape");
  app.WaitGone("MoveJobsWindow");
  app.Click("CancelJobButton");
  ExpectGood(app, "QuestionDialog");
  app.Key("Escape");
  app.WaitGone("QuestionDialog");
  app.Click("WhyButton");
  ExpectGood(app, "WhyWindow");
  const std::string room = Message("WHY_ROOM_GOOD");
  app.WaitUntil("the last step",
                [&] { return app.Text("WhyText").find(room) != std::string::npos; });
  // The script of the queue is somebody's own, of which nothing can be said.
  app.WaitUntil("the conclusion",
                [&] { return app.Text("WhyLabel") == Message("WHY_NOTHING_FOUND"); });
  ExpectGood(app, "WhyWindow");
  app.Key("Return");
  app.WaitGone("WhyWindow");
  app.Key("F1");
  ExpectGood(app, "KPXHelpDialog");
}

TEST_P(EveryLanguage, AreWholeInTheSecondAdministratorsErrorBox) {
  AdminApp first(Options());
  GuiApp second(Options());
  ExpectGood(second, "ErrorDialog");
  EXPECT_EQ(Message("ERR_ADMIN_RUNNING"), second.Text("ErrorLabel1"));
}

TEST_P(EveryLanguage, AreWholeInTheListOfAFailedSave) {
  AdminApp app(Options());
  std::filesystem::rename("/usr/lib/lpadmin", "/usr/lib/lpadmin.away");
  app.SelectQueues({0});
  app.Click("DeleteButton");
  app.Click("SaveButton");
  ExpectGood(app, "KPXErrorWarningDialog");
  std::filesystem::rename("/usr/lib/lpadmin.away", "/usr/lib/lpadmin");
}

TEST_P(EveryLanguage, AreWholeOnEveryTabOfTheQueueProperties) {
  AdminApp app(Options());
  for (const int row : {0, 1}) {
    app.SelectQueues({row});
    OpenProperties(app);
    ExpectTabsGood(app, kAdminTabs);
    app.Key("Escape");
    app.WaitGone("PropertiesWindow");
  }
}

TEST_P(EveryLanguage, AreWholeInTheDialogsOfCustomSizesAndTypes) {
  AdminApp app(Options());
  app.SelectQueues({0});
  OpenProperties(app);
  ShowTab(app, "Customs");
  for (const auto &[kind, letter] : {std::pair{"Cps", "Paper"}, std::pair{"Cmt", "Media"}}) {
    const std::string window = std::string(kind) + "ParamWindow";
    app.Click(std::string(kind) + "ButtonAdd");
    ExpectGood(app, window);
    app.Key("F1");
    ExpectGood(app, "KPXHelpDialog");
    app.Key("Escape");
    app.WaitGone("KPXHelpDialog");
    app.Click(window + "/OKButton");
    ExpectErrorGood(app, "D" + std::string(kind == std::string("Cps") ? "CPS" : "CMT") + "_Dlg_" +
                             letter + "_Error1");
    app.Type("Own");
    app.Click(window + "/OKButton");
    app.WaitGone(window);
    app.ClickRow(std::string(kind) + "CList", 0);
    app.Click(std::string(kind) + "ButtonDelete");
    ExpectGood(app, "ConfirmationDialog");
    app.Click("NOButton");
    app.WaitGone("ConfirmationDialog");
  }
  ExpectGood(app, "PropertiesWindow");
}

TEST_P(EveryLanguage, AreWholeInTheBoxesAboutSettingsThatDoNotGoTogether) {
  AdminApp app(Options());
  app.SelectQueues({0});
  OpenProperties(app);
  ShowTab(app, "Setup");
  ChooseOption(app, "Duplex", Option("*Duplex DuplexNoTumble"));
  ChooseOption(app, "PaperType", Option("*MediaType Transparency"));
  ExpectGood(app, "PropertiesWindow");
  PressProperties(app, "OK");
  ExpectGood(app, "ErrorDialog");
  EXPECT_EQ(FormatMessage(Message("CONSTR_Dlg_Message_PaperType_Duplex"),
                          {Option("*MediaType Transparency"), Option("*Duplex DuplexNoTumble")}),
            app.Text("ErrorLabel2"));
  app.Click("ErrorDialog/ResolveButton");
  ExpectGood(app, "ErrorDialog");
  EXPECT_EQ(FormatMessage(Message("CONSTR_Resolved"), {Option("*Duplex"), Option("*Duplex None")}),
            app.Text("ErrorLabel2"));
  EXPECT_EQ(Message("DEF_WND_RESOLVED_TITLE"), app.Text("ErrorDialog"));
}

TEST_P(EveryLanguage, AreWholeInThePrintToolsWindows) {
  GuiApp app(Options("/usr/bin/KPXtool"));
  ExpectGood(app, "ToolWindow");
  EXPECT_EQ(Message("DEF_WND_TOOL_TITLE"), app.Text("ToolWindow"));
  app.Click("AddButton");
  ExpectGood(app, "FilesSelectionWindow");
  app.Click("FilesSelectionWindow/CancelButton");
  app.WaitGone("FilesSelectionWindow");
  app.Click("LprCommandButton");
  ExpectGood(app, "LprCmdDialog");
  app.Key("Escape");
  app.WaitGone("LprCmdDialog");
  app.Key("F1");
  ExpectGood(app, "KPXHelpDialog");
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
  app.Click("PrintButton");
  ExpectErrorGood(app, "MSG1");
}

TEST_P(EveryLanguage, AreWholeOnEveryTabOfTheJobProperties) {
  GuiApp app(Options("/usr/bin/KPXtool"));
  app.WaitWindow("ToolWindow");
  for (const char *queue : {"lp1", "txt1"}) {
    ChooseQueue(app, queue);
    OpenProperties(app);
    ExpectTabsGood(app, kToolTabs);
    app.Key("Escape");
    app.WaitGone("PropertiesWindow");
  }
}

INSTANTIATE_TEST_SUITE_P(, EveryLanguage,
                         testing::Combine(testing::ValuesIn(Languages()),
                                          testing::Values(100, 150, 200)),
                         [](const auto &row) {
                           return std::get<0>(row.param).name + "_" +
                                  std::to_string(std::get<1>(row.param));
                         });

}  // namespace
