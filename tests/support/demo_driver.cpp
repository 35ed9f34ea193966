// What ./demo shows: inside the sandbox it makes two queues with KPXadmin and prints with KPXtool,
// through their windows as users do, and leaves pictures of the windows and of every page that the
// printer received.
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
#include "temporarydirectory.h"
#include "tooldriver.h"
#include "windowmanager.h"
#include "xinput.h"

namespace {

constexpr unsigned long kDesktop = 0x5A6B7B;

struct Print {
  std::string name;  // begins the names of the pictures
  std::string queue;
  std::string file;  // empty: `input` is piped into the tool
  std::string input;
  std::string what;  // in words
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

  void Show(const Print &print) {
    Say("");
    Say(UserWord() + " prints " + print.what + " on " + print.queue + ":");
    GuiAppOptions options{.user = user_};
    if (print.file.empty()) options.input = print.input;
    GuiApp app(options);
    app.WaitWindow("ToolWindow");
    ChooseQueue(app, print.queue);
    if (!print.file.empty()) AddFile(app, print.file);
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
  void AddQueue(GuiApp &admin, const NewQueue &queue) const {
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
        ".prn), two copies of " + std::to_string(pages / 2) + " page" + (pages == 2 ? "" : "s") +
        ": out/" + print.name + "-page-*.png");
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
  } catch (const std::exception &error) {
    std::fprintf(stderr, "demo: %s\n", error.what());
    return 1;
  }
  return 0;
}
