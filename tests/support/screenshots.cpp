// Makes the pictures of docs/screenshots, inside the sandbox: one of each row of kPictures, in
// which the shipped programs show queues that were made through their windows.
//
// Usage: screenshots DIRECTORY

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "admindriver.h"
#include "guiapp.h"
#include "tooldriver.h"
#include "windowmanager.h"
#include "xinput.h"

namespace {

constexpr unsigned long kDesktop = 0x5A6B7B;

enum class Program { Administration, PrintTool };

struct Picture {
  const char *name;      // of the file, without ".png"
  const char *language;  // as LANG has it
  Program program;
  void (*lead)(GuiApp &app);  // from the main window to what is to be seen
};

// The addresses are those kept for examples.
const std::vector<NewQueue> kQueues = {
    {"accounts", "Vek Norvel 4110ES", 0, "192.0.2.21"},
    {"drawings", "Vek Norvel 4121", 0, "192.0.2.22"},
    {"notes", "Vek Norvel 4105", 1, "192.0.2.25"},
    {"office", "Vek Norvel 4120ES", 0, "192.0.2.23"},
};

void ShowAdministration(GuiApp &app) { app.ClickRow("QueuesClist", 3); }

void ShowAddQueue(GuiApp &app) {
  FillNewQueue(app, {"reception", "Vek Norvel 4110ES", 0, "192.0.2.24"});
}

void ShowPrintTool(GuiApp &app) {
  ChooseQueue(app, "office");
  for (const char *file : {"/tmp/annual report.ps", "/tmp/floor plan.ps", "/tmp/letter.ps"}) {
    std::ofstream(file) << "%!PS\nshowpage\n";
    AddFile(app, file);
  }
  app.ClickRow("FilesClist", 1);
}

constexpr Picture kPictures[] = {
    {"administration", "en_US", Program::Administration, ShowAdministration},
    {"add-queue", "en_US", Program::Administration, ShowAddQueue},
    {"print-tool", "en_US", Program::PrintTool, ShowPrintTool},
};

void MakeQueues() {
  GuiApp admin({.program = "/usr/bin/KPXadmin"});
  admin.WaitWindow("AdminWindow");
  for (const NewQueue &queue : kQueues) {
    FillNewQueue(admin, queue);
    TakeNewQueue(admin);
  }
  admin.Click("SaveButton");
  if (admin.WaitExit() != 0) throw std::runtime_error("the save failed: " + admin.Stderr());
}

void Take(const Picture &picture, const std::string &directory) {
  const bool administration = picture.program == Program::Administration;
  GuiApp app({.program = administration ? "/usr/bin/KPXadmin" : "/usr/bin/KPXtool",
              .environment = {"LC_ALL=C.UTF-8", std::string("LANG=") + picture.language}});
  app.WaitWindow(administration ? "AdminWindow" : "ToolWindow");
  picture.lead(app);
  for (const std::string &text : app.ClippedTexts()) {
    throw std::runtime_error(std::string(picture.name) + " cuts a text off: " + text);
  }
  XInputMove(0, 0);  // no button is to look pointed at
  Screenshot(app, directory + "/" + picture.name + ".png");
  std::printf("%s.png\n", picture.name);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
    return 2;
  }
  try {
    std::filesystem::create_directories(argv[1]);
    const WindowManager manager;
    XInputBackground(kDesktop);
    MakeQueues();
    for (const Picture &picture : kPictures) Take(picture, argv[1]);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "screenshots: %s\n", error.what());
    return 1;
  }
  return 0;
}
