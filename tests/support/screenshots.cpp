// Makes the pictures of docs/screenshots, inside the sandbox: the shipped
// programs in every language, in other themes and text sizes, and every tab of
// the properties, showing queues that were made through their windows.
//
// Usage: screenshots DIRECTORY

#include <cctype>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "admindriver.h"
#include "guiapp.h"
#include "locales.h"
#include "models.h"
#include "propertiesdriver.h"
#include "spooler.h"
#include "tooldriver.h"
#include "windowmanager.h"
#include "xinput.h"

namespace {

constexpr unsigned long kDesktop = 0x5A6B7B;

// The languages, as LANG has them, and the directories of their pictures;
// English stands at the top.
struct Language {
  const char *lang;
  const char *directory;
};
constexpr Language kEnglish = {"C.UTF-8", ""};
constexpr Language kTranslations[] = {{"de_DE.UTF-8", "de/"},
                                      {"es_ES.UTF-8", "es/"},
                                      {"fr_FR.UTF-8", "fr/"},
                                      {"it_IT.UTF-8", "it/"},
                                      {"pt_BR.UTF-8", "pt_BR/"}};

// Other looks of the English windows.
struct Look {
  const char *directory;
  const char *setting;  // in the programs' environment
};
constexpr Look kUsualLook = {"", "GDK_DPI_SCALE=1"};
constexpr Look kOtherLooks[] = {{"dark/", "GTK_THEME=Adwaita:dark"},
                                {"high-contrast/", "GTK_THEME=HighContrast"},
                                {"high-contrast-dark/", "GTK_THEME=HighContrastInverse"},
                                {"text-150/", "GDK_DPI_SCALE=1.5"},
                                {"text-200/", "GDK_DPI_SCALE=2"}};

// The addresses are those kept for examples.
const std::vector<QueueToAdd> kQueues = {
    {"accounts", "Vek Norvel 4110ES", 0, "192.0.2.21"},
    {"drawings", "Vek Norvel 4121", 0, "192.0.2.22"},
    {"notes", "Vek Norvel 4105", 1, "192.0.2.25"},
    {"office", "Vek Norvel 4120ES", 0, "192.0.2.23"},
};
// Of another maker's printer.
constexpr char kCopier[] = "Example Copier 300";
const QueueToAdd kCopierQueue = {"copier", kCopier, 0, "192.0.2.26"};
constexpr int kCopierRow = 1;  // among the others
constexpr int kWatermarkRow = 3;
struct Job {
  const char *queue;
  const char *title;
  const char *data;
};
constexpr char kPage[] =
    "%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%Page: 1 1\nshowpage\n%%EOF\n";
// The last one is the first in the window; the printers of the examples are not
// there.
constexpr Job kJobs[] = {{"notes", "Minutes.txt", "Minutes\n"},
                         {"drawings", "Floor plan", kPage},
                         {"accounts", "Letter.txt", "Dear customer,\n"},
                         {"office", "Annual report", kPage}};
constexpr int kAccountsRow = 0;
constexpr int kNotesRow = 2;

// The programs in one language and look, and the folder that their pictures are
// put into.
class Album {
 public:
  Album(const std::string &directory, const Language &language, const Look &look = kUsualLook)
      : language_(language),
        look_(look),
        directory_(directory + "/" + language.directory + look.directory) {
    std::filesystem::create_directories(directory_);
    MakeLocale(language.lang);
  }

  // Throws std::runtime_error when a text is cut off.
  void Take(GuiApp &app, const std::string &name) {
    app.WaitDrawn();
    for (const std::string &text : app.ClippedTexts()) {
      throw std::runtime_error(directory_ + name + " cuts a text off: " + text);
    }
    XInputMove(0, 0);  // no button is to look pointed at
    Screenshot(app, directory_ + name + ".png");
    std::printf("%s%s%s.png\n", language_.directory, look_.directory, name.c_str());
  }

  void TakeAdministration() {
    GuiApp app(Program("KPXadmin"));
    app.WaitWindow("AdminWindow");
    app.TabTo("QueuesClist");
    app.Key("End");  // the office's, which a large text scrolls away
    Take(app, "administration");
    FillNewQueue(app, {"reception", "Vek Norvel 4110ES", 0, "192.0.2.24"});
    Take(app, "add-queue");
  }

  void TakePrintTool() {
    GuiApp app(Program("KPXtool"));
    OpenPrintTool(app, "office");
    for (const char *file : {"/tmp/annual-report.ps", "/tmp/floor-plan.ps", "/tmp/letter.ps"}) {
      std::ofstream(file) << "%!PS\nshowpage\n";
      AddFile(app, file);
    }
    app.ClickRow("FilesClist", 1);
    Take(app, "print-tool");
    OpenProperties(app);
    ShowTab(app, "Setup");
    Take(app, "properties");
  }

  // The jobs of MakeJobs, and why the first of them does not print.
  void TakeJobs() {
    GuiApp app(Program("KPXjobs"));
    app.WaitWindow("JobsWindow");
    app.WaitUntil("all jobs", [&] { return app.Rows("JobsClist").size() == std::size(kJobs); });
    app.ClickRow("JobsClist", 0);
    app.WaitUntil("what the printer says",
                  [&] { return app.Text("ReasonLabel").find("192.0.2.23") != std::string::npos; });
    Take(app, "jobs");
    app.Click("WhyButton");
    app.WaitWindow("WhyWindow");
    app.WaitUntil("the last step", [&] { return !app.Text("WhyLabel").ends_with("..."); });
    Take(app, "why");
  }

  // The print tool when the printer of its queue does not answer.
  void TakeReason() {
    GuiApp app(Program("KPXtool"));
    OpenPrintTool(app, "office");
    app.WaitUntil("the reason", [&] { return app.HasWidget("QueueBar"); });
    Take(app, "print-tool-reason");
  }

  // What the copier has that no tab has a row for.
  void TakeMoreOptions() {
    GuiApp app(Program("KPXadmin"));
    app.WaitWindow("AdminWindow");
    app.ClickRow("QueuesClist", kCopierRow);
    OpenProperties(app);
    ShowTab(app, "Options");
    app.ClickRow("MoreOptionsClist", kWatermarkRow);
    Take(app, "more-options");
  }

  // Every tab of the administration program.
  void TakeAdministrationTabs() {
    {
      GuiApp app(Program("KPXadmin"));
      app.WaitWindow("AdminWindow");
      app.ClickRow("QueuesClist", kAccountsRow);
      TakeTabs(app, kAdminTabs, "admin");
    }
    GuiApp app(Program("KPXadmin"));
    app.WaitWindow("AdminWindow");
    app.ClickRow("QueuesClist", kNotesRow);
    TakeTextTabs(app, "admin-text");
  }

  void TakePrintToolTabs() {
    {
      GuiApp app(Program("KPXtool"));
      OpenPrintTool(app, "accounts");
      TakeTabs(app, kToolTabs, "tool");
    }
    GuiApp app(Program("KPXtool"));
    OpenPrintTool(app, "notes");
    TakeTextTabs(app, "tool-text");
  }

 private:
  GuiAppOptions Program(const std::string &name) const {
    GuiAppOptions options = InLocale(language_.lang);
    options.program = "/usr/bin/" + name;
    options.environment.emplace_back(look_.setting);
    return options;
  }

  static void OpenPrintTool(GuiApp &app, const std::string &queue) {
    app.WaitWindow("ToolWindow");
    ChooseQueue(app, queue);
  }

  void TakeTabs(GuiApp &app, const std::vector<std::string> &tabs, const std::string &program) {
    std::filesystem::create_directories(directory_ + "properties");
    OpenProperties(app);
    for (const std::string &tab : tabs) {
      ShowTab(app, tab);
      Choose(app, tab);
      std::string name = tab;
      name.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(name.front())));
      Take(app, "properties/" + program + "-" + name);
    }
  }

  // The tabs that differ for a queue that takes text.
  void TakeTextTabs(GuiApp &app, const std::string &program) {
    OpenProperties(app);
    ShowTab(app, "Options");
    app.Click("Nup4Radiobutton");
    app.WaitDrawn();  // the orders appear
    Take(app, "properties/" + program + "-options");
    ShowTab(app, "Fonts");
    Take(app, "properties/" + program + "-fonts");
  }

  // What a user may have set there, so that the pictures show more than the
  // first defaults.
  static void Choose(GuiApp &app, const std::string &tab) {
    if (tab == "Setup") ChooseOption(app, "Duplex", "Two-sided, long edge");
    if (tab == "Output") ChooseOption(app, "Staple", "Two staples, portrait");
    if (tab == "Options") ChooseOption(app, "PrintQuality", "High");
    if (tab == "Destination") {
      ChooseOption(app, "Delivery", "Hold until the PIN is entered");
      TypeInto(app, "PinEntry", "2468");
    }
  }

  const Language language_;
  const Look look_;
  const std::string directory_;
};

void MakeQueues(const std::vector<QueueToAdd> &queues) {
  GuiApp admin({.program = "/usr/bin/KPXadmin"});
  admin.WaitWindow("AdminWindow");
  for (const QueueToAdd &queue : queues) {
    FillNewQueue(admin, queue);
    TakeNewQueue(admin);
  }
  admin.Click("SaveButton");
  if (admin.WaitExit() != 0) throw std::runtime_error("the save failed: " + admin.Stderr());
}

void MakeJobs() {
  for (const Job &job : kJobs) {
    const CommandResult run =
        RunProgram({"/usr/bin/lp", "-d", job.queue, "-t", job.title}, job.data);
    if (run.status != 0) throw std::runtime_error("lp: " + run.output);
  }
}

void TakeAll(const std::string &directory) {
  Album english(directory, kEnglish);
  english.TakeAdministration();
  english.TakePrintTool();
  english.TakeAdministrationTabs();
  english.TakePrintToolTabs();
  for (const Language &language : kTranslations) {
    Album album(directory, language);
    album.TakeAdministration();
    album.TakePrintTool();
  }
  for (const Look &look : kOtherLooks) {
    Album album(directory, kEnglish, look);
    album.TakeAdministration();
    album.TakePrintTool();
  }
  // Last, since the print tool shows what keeps a queue from printing.
  MakeJobs();
  english.TakeJobs();
  english.TakeReason();
  for (const Language &language : kTranslations) Album(directory, language).TakeJobs();
  for (const Look &look : kOtherLooks) Album(directory, kEnglish, look).TakeJobs();
  // With a model and a queue that the other pictures do not show.
  const AddedTestModel model(kCopier, {KPX_TEST_DATA "/data/ppd/copier.ppd"});
  MakeQueues({kCopierQueue});
  english.TakeMoreOptions();
  for (const Language &language : kTranslations) Album(directory, language).TakeMoreOptions();
  for (const Look &look : kOtherLooks) Album(directory, kEnglish, look).TakeMoreOptions();
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
    return 2;
  }
  try {
    const WindowManager manager;
    XInputBackground(kDesktop);
    MakeQueues(kQueues);
    TakeAll(argv[1]);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "screenshots: %s\n", error.what());
    return 1;
  }
  return 0;
}
