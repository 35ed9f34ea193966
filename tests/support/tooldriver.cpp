#include "tooldriver.h"

#include <chrono>
#include <cstdint>
#include <stdexcept>

void TypeLocation(GuiApp &app, const std::string &path) {
  app.Type(path);
  app.WaitUntil("the path " + path,
                [&] { return app.Text("FilesSelectionWindow/GtkFileChooserEntry") == path; });
}

void TakeLocation(GuiApp &app, const std::string &what, const std::function<void()> &act,
                  const std::function<bool()> &taken) {
  using Clock = std::chrono::steady_clock;
  Clock::time_point next;
  app.WaitUntil(what, [&] {
    if (taken()) return true;
    if (Clock::now() < next) return false;
    act();
    next = Clock::now() + std::chrono::seconds(3);
    return taken();
  });
}

void AddFile(GuiApp &app, const std::string &path) {
  const size_t rows = app.Rows("FilesClist").size();
  app.Click("AddButton");
  app.WaitWindow("FilesSelectionWindow");
  TypeLocation(app, path);
  TakeLocation(
      app, "the file selection to go", [&] { app.Click("FilesSelectionWindow/OKButton"); },
      [&] { return app.Windows().front() != "FilesSelectionWindow"; });
  app.WaitGone("FilesSelectionWindow");
  app.WaitUntil("a row for " + path, [&] { return app.Rows("FilesClist").size() > rows; });
}

void ChooseQueue(GuiApp &app, const std::string &name) {
  const std::vector<std::string> rows = app.Rows("QueueCombo");
  const auto chosen = [&] { return app.Text("QueueComboEntry").starts_with(name + " "); };
  app.Click("QueueComboEntry");
  for (const char *key : {"Up", "Down"}) {
    for (size_t i = 0; i < rows.size() && !chosen(); ++i) app.Key(key);
  }
  if (!chosen()) throw std::runtime_error("there is no queue " + name);
}

std::string ShownCommand(GuiApp &app) {
  app.Click("LprCommandButton");
  app.WaitWindow("LprCmdDialog");
  std::string text = app.Text("LprCmdText");
  app.Click("LprCmdDialog/OKButton");
  app.WaitGone("LprCmdDialog");
  return text;
}

std::string CapturedFileOf(const GuiApp &app) {
  return "/tmp/KPXtool.stdindata." + std::to_string(static_cast<int16_t>(app.pid()));
}
