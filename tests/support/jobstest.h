// The job window as its tests drive it. Only inside the full sandbox.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "guiapp.h"
#include "installation.h"
#include "spooler.h"

// KPXjobs with its window open.
class JobsApp : public GuiApp {
 public:
  explicit JobsApp(GuiAppOptions options = {}) : GuiApp(AsJobs(std::move(options))) {
    WaitWindow("JobsWindow");
  }

  // A column's texts from the top; no text for a row without one.
  std::vector<std::string> Column(const std::string &list, int column) {
    std::vector<std::string> texts;
    for (const std::string &row : Rows(list)) texts.push_back(CellOf(row.substr(1), column));
    return texts;
  }

  // Of the first row whose first cell is `name`; "-" when there is none.
  std::string Cell(const std::string &list, const std::string &name, int column) {
    for (const std::string &row : Rows(list)) {
      if (CellOf(row.substr(1), 0) == name) return CellOf(row.substr(1), column);
    }
    return "-";
  }

  void WaitRow(const std::string &list, const std::string &name) {
    WaitUntil("the row " + name, [&] { return Cell(list, name, 0) == name; });
  }

  void WaitCell(const std::string &list, const std::string &name, int column,
                const std::string &text) {
    WaitUntil(name + ": " + text, [&] { return Cell(list, name, column) == text; });
  }

  // Until the window says the text of `key` about the spooler; nothing for "".
  void WaitContact(const std::string &key) {
    WaitUntil("the spooler to be told as " + key, [&] {
      if (!HasWidget("ContactLabel")) return key.empty();
      return !key.empty() && Text("ContactLabel") == CatalogueText(key);
    });
  }

  void Select(const std::string &list, const std::string &name) {
    const std::vector<std::string> names = Column(list, 0);
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) throw std::runtime_error("no row " + name);
    ClickRow(list, static_cast<int>(found - names.begin()));
    WaitUntil("the selection", [&] { return Rows(list)[found - names.begin()].front() == '*'; });
  }

 private:
  static GuiAppOptions AsJobs(GuiAppOptions options) {
    options.program = "/usr/bin/KPXjobs";
    return options;
  }

  static std::string CellOf(const std::string &row, int column) {
    size_t start = 0;
    for (; column > 0; --column) {
      start = row.find('\t', start);
      if (start == std::string::npos) return "";
      ++start;
    }
    return row.substr(start, row.find('\t', start) - start);
  }
};

// Every test finds no jobs.
class Jobs : public testing::Test {
 protected:
  Jobs() {
    RequirePrivateWorld();
    RunProgram({"cancel", "-a", "-x"});
  }

  // Prints and waits until the scheduler has said that.
  static void PrintUntil(const TestQueue &queue, const std::vector<std::string> &arguments,
                         const std::string &words) {
    SchedulerLog log;
    queue.Print(arguments, "data");
    log.WaitFor(words);
  }

  static std::string PrintAs(const char *user, const TestQueue &queue,
                             const std::vector<std::string> &arguments) {
    std::vector<std::string> command = {"/usr/bin/lp", "-d", queue.name()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunProgram(command, "data", user).output;
  }
};
