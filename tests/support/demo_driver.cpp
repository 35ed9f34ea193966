// What ./demo shows: inside the sandbox it makes two queues with KPXadmin and prints with KPXtool,
// through their windows as users do, with properties that were set in both programs, and at last
// from a GTK program, and leaves pictures of the windows and of every page that the printer
// received.
//
// Usage: demo_driver DIRECTORY

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "admindriver.h"
#include "guiapp.h"
#include "paths.h"
#include "printerjobs.h"
#include "privateworld.h"
#include "propertiesdriver.h"
#include "temporarydirectory.h"
#include "tooldriver.h"
#include "windowmanager.h"
#include "xinput.h"

namespace {

constexpr unsigned long kDesktop = 0x5A6B7B;
// What the administrator sets, and how a job says it.
constexpr char kPaper[] = "Letter";
constexpr char kPaperInJob[] = "*PageSize Letter";
constexpr char kTwoSided[] = "Two-sided, long edge";
constexpr char kTwoSidedInJob[] = "*Duplex DuplexNoTumble";
// And the user.
constexpr char kHighQualityInJob[] = "@PJL SET RET=DARK";
constexpr char kFontInJob[] = "/F /Courier E Z makefont";
constexpr char kFontSizeInJob[] = "/Z [18 0 0 18 0 0]";

struct Print {
  std::string name;  // begins the names of the pictures
  std::string queue;
  std::string file;  // empty: `input` is piped into the tool
  std::string input;
  std::string what;  // in words
  int copies = 2;    // that the user's settings ask for
  bool sets_properties = false;
};

void RunOrThrow(const std::string &command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error(command + " failed");
}

void Say(const std::string &line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

class Demo {
 public:
  explicit Demo(std::string directory) : directory_(std::move(directory)) {
    user_ = HasOrdinaryUsers() ? "anna" : "";
    std::filesystem::create_directories(directory_);
    XInputBackground(kDesktop);
  }

  // As the administrator does: with KPXadmin, through its windows.
  void MakeQueues() const {
    Say("The administrator makes two queues:");
    GuiApp admin({.program = "/usr/bin/KPXadmin"});
    admin.WaitWindow("AdminWindow");
    AddQueue(admin, {"office", "Vek Norvel 4110ES", 0});
    AddQueue(admin, {"notes", "Vek Norvel 4105", 1});
    Picture(admin, "0-administration-window");
    admin.Click("SaveButton");
    const int status = admin.WaitExit();
    if (status != 0) throw std::runtime_error("the save failed: " + admin.Stderr());
    Say("  pressed Save; KPXadmin closed with status 0, and the spooler has the queues");
    for (const char *queue : {"office", "notes"}) AskForTwoCopies(queue);
    Say(UserWord() + "'s own settings for both ask for two copies.");
  }

  // What the administrator decides for everybody: paper and two-sided printing.
  void SetQueueDefaults(const std::string &queue) const {
    Say("");
    Say("The administrator sets the properties of " + queue + ":");
    GuiApp admin({.program = "/usr/bin/KPXadmin"});
    admin.WaitWindow("AdminWindow");
    SelectRowOf(admin, "QueuesClist", queue);
    OpenProperties(admin);
    Picture(admin, "4-administration-general");
    ShowTab(admin, "Setup");
    ChooseOption(admin, "PaperSize", kPaper);
    ChooseOption(admin, "Duplex", kTwoSided);
    Picture(admin, "4-administration-setup");
    AcceptProperties(admin);
    admin.Click("SaveButton");
    const int status = admin.WaitExit();
    if (status != 0) throw std::runtime_error("the save failed: " + admin.Stderr());
    Say("  paper " + std::string(kPaper) + ", " + kTwoSided +
        "; pressed Save; KPXadmin closed with status 0");
  }

  // As a program with a print dialog does: GTK sends PDF, and the options by CUPS's names.
  void ShowProgram() {
    const Print print{.name = "5-program",
                      .queue = "office",
                      .file = {},
                      .input = {},
                      .what = "three pages of a GTK program, two-sided, through CUPS,"};
    Say("");
    Say(UserWord() + " prints " + print.what + " on " + print.queue + ":");
    const std::string program =
        std::filesystem::read_symlink("/proc/self/exe").parent_path() / "gtkprint";
    const std::string command = program + " office 3 cups-Duplex=DuplexNoTumble n-copies=2";
    RunOrThrow(user_.empty() ? command + " 2>/dev/null"
                             : "su " + user_ + " -c '" + command + "' 2>/dev/null");
    TakeJob(print);
    if (ContentOf(directory_ + "/5-program.prn").find(kTwoSidedInJob) == std::string::npos) {
      throw std::runtime_error(std::string("the job lacks ") + kTwoSidedInJob);
    }
    Say("  it says: " + std::string(kTwoSidedInJob));
  }

  void Show(const Print &print) {
    Say("");
    Say(UserWord() + " prints " + print.what + " on " + print.queue + ":");
    GuiAppOptions options{.user = user_};
    if (print.file.empty()) options.input = print.input;
    GuiApp app(options);
    app.WaitWindow("ToolWindow");
    ChooseQueue(app, print.queue);
    if (!print.file.empty()) AddFile(app, print.file);
    if (print.sets_properties) SetProperties(app, print.name);
    Picture(app, print.name + "-window");
    app.Click("LprCommandButton");
    app.WaitWindow("LprCmdDialog");
    Say("  the command: " + app.Text("LprCmdText"));
    Picture(app, print.name + "-command");
    app.Click("LprCmdDialog/OKButton");
    app.WaitGone("LprCmdDialog");
    app.Click("PrintButton");
    const int status = app.WaitExit();
    if (status != 0) throw std::runtime_error("the print failed: " + app.Stderr());
    Say("  pressed Print; KPXtool closed with status 0");
    TakeJob(print);
  }

 private:
  // What the user decides for the own job: copies, print quality, the size of the font.
  void SetProperties(GuiApp &app, const std::string &name) const {
    OpenProperties(app);
    ShowTab(app, "Setup");
    Say("  the queue's paper is " + ShownOption(app, "PaperSize") + ", " +
        ShownOption(app, "Duplex") + ", as the administrator set it");
    TypeInto(app, "NrCopiesSpinbutton", "1");
    Picture(app, name + "-setup");
    ShowTab(app, "Options");
    ChooseOption(app, "PrintQuality", "High");
    Picture(app, name + "-options");
    ShowTab(app, "Fonts");
    TypeInto(app, "FontSizeComboEntry", "18");
    Picture(app, name + "-fonts");
    AcceptProperties(app);
    Say("  set one copy, print quality High and a font of 18 points");
  }

  void AddQueue(GuiApp &admin, const QueueToAdd &queue) const {
    FillNewQueue(admin, queue);
    Picture(admin, "0-add-queue-" + queue.name);
    Say("  " + queue.name + ": " + queue.printer + ", " + admin.Text("QueueTypeComboEntry"));
    TakeNewQueue(admin);
  }

  std::string UserWord() const { return user_.empty() ? "The user" : user_; }

  void AskForTwoCopies(const std::string &queue) const {
    const std::string user = user_.empty() ? "root" : user_;
    const std::string path = std::string(kUsersDir) + "/" + user + ":" + queue + ".def";
    std::ofstream(path) << "*NrCopies=2\n";
    RunOrThrow("chmod 640 '" + path + "'");
    if (!user_.empty()) RunOrThrow("chown " + user + ":lp '" + path + "'");
  }

  void Picture(GuiApp &app, const std::string &name) const {
    Screenshot(app, directory_ + "/" + name + ".png");
    Say("  window: out/" + name + ".png");
  }

  void TakeJob(const Print &print) {
    const std::string job = jobs_.Next();
    const std::string path = directory_ + "/" + print.name + ".prn";
    std::ofstream(path, std::ios::binary) << job;
    std::string program;
    for (const std::string &part : PostScriptOf(job)) program += part;
    const std::string source = directory_ + "/" + print.name + ".ps";
    std::ofstream(source, std::ios::binary) << program;
    RunOrThrow("gs -q -dSAFER -sDEVICE=png16m -r50 -dTextAlphaBits=4 -dGraphicsAlphaBits=4 -o " +
               directory_ + "/" + print.name + "-page-%02d.png " + source);
    std::filesystem::remove(source);
    int pages = 0;
    for (const std::string &name : NamesIn(directory_)) {
      if (name.starts_with(print.name + "-page-")) ++pages;
    }
    Say("  the printer received " + std::to_string(job.size()) + " bytes (out/" + print.name +
        ".prn), " + (print.copies == 1 ? "one copy" : "two copies") + " of " +
        std::to_string(pages / print.copies) + " page" + (pages == print.copies ? "" : "s") +
        ": out/" + print.name + "-page-*.png");
    if (print.sets_properties) CheckProperties(job);
  }

  // The job asks for what both of them set.
  static void CheckProperties(const std::string &job) {
    for (const char *part :
         {kPaperInJob, kTwoSidedInJob, kHighQualityInJob, kFontInJob, kFontSizeInJob}) {
      if (job.find(part) == std::string::npos) {
        throw std::runtime_error(std::string("the job lacks ") + part);
      }
      Say("  it says: " + std::string(part));
    }
  }

  WindowManager manager_;
  std::string directory_;
  std::string user_;
  PrinterJobs jobs_;
};

std::string MakeTextFile() {
  std::string path = "/tmp/shopping.txt";
  std::ofstream(path)
      << "To buy\n\n  2 boxes of A4 paper\n  1 toner cartridge\n  coffee (caf\xC3\xA9 "
         "au lait for Andr\xC3\xA9)\n";
  return path;
}

std::string MakeLongTextFile() {
  std::string path = "/tmp/stations.txt";
  std::ofstream file(path);
  file << "Stations of the night train\n\n";
  for (int i = 1; i <= 120; ++i) file << "  " << i << ". at kilometre " << 7 * i << "\n";
  return path;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
    return 2;
  }
  try {
    Demo demo(argv[1]);
    demo.MakeQueues();
    MakePostScriptFile("/tmp/report.ps", 3);
    demo.Show({.name = "1-postscript",
               .queue = "office",
               .file = "/tmp/report.ps",
               .input = "",
               .what = "report.ps, three pages of structured PostScript made by Ghostscript,"});
    demo.Show({.name = "2-text",
               .queue = "notes",
               .file = MakeTextFile(),
               .input = "",
               .what = "the text file shopping.txt"});
    MakePostScriptFile("/tmp/piped.ps", 2);
    demo.Show({.name = "3-stdin",
               .queue = "office",
               .file = "",
               .input = ContentOf("/tmp/piped.ps"),
               .what = "what is piped into KPXtool, two pages of PostScript,"});
    demo.SetQueueDefaults("notes");
    demo.Show({.name = "4-properties",
               .queue = "notes",
               .file = MakeLongTextFile(),
               .input = "",
               .what = "the text file stations.txt, with properties of the user's own,",
               .copies = 1,
               .sets_properties = true});
    demo.ShowProgram();
  } catch (const std::exception &error) {
    std::fprintf(stderr, "demo: %s\n", error.what());
    return 1;
  }
  return 0;
}
