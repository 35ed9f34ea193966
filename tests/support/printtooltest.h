// The print tool as its tests drive it: queues in a real spooler, made by the program makequeues,
// and what users' files there are. Only inside the full sandbox.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "guiapp.h"
#include "installation.h"
#include "paths.h"
#include "printerjobs.h"
#include "tooldriver.h"

// The ordinary user; the only one there is in a sandbox without root.
inline std::string User() { return HasOrdinaryUsers() ? "anna" : ""; }
inline std::string UserName() { return HasOrdinaryUsers() ? "anna" : "root"; }

inline int RunShell(const std::string &command) { return std::system(command.c_str()); }

class PrintTool : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(0,
              RunShell(KPX_MAKEQUEUES " lp1=postscript='Vek Norvel 4110ES'"
                                      " txt1=text='Vek Norvel 4105' raw1=raw='Vek Norvel 4121'"));
  }

  void SetUp() override {
    // Readable by every user, as the files of a user's own are.
    std::filesystem::permissions(files_.Path(), std::filesystem::perms{0755});
  }

  void TearDown() override {
    for (const std::string &name : NamesIn(kUsersDir)) {
      std::filesystem::remove_all(std::string(kUsersDir) + "/" + name);
    }
  }

  // The names that the file selection window lists.
  static std::set<std::string> FilesShown(GuiApp &app) {
    std::set<std::string> names;
    for (const std::string &row : app.Rows("FilesSelectionWindow/GtkTreeView")) {
      names.insert(row.substr(1, row.find('\t') - 1));
    }
    return names;
  }

  // Presses Print and expects the tool to close with status 0.
  static void Print(GuiApp &app) {
    app.Click("PrintButton");
    EXPECT_EQ(0, app.WaitExit()) << app.Stderr();
  }

  static std::string UserOptionsFile(const std::string &queue) {
    return std::string(kUsersDir) + "/" + UserName() + ":" + queue + ".def";
  }

  static void WriteUserOptions(const std::string &queue, const std::string &lines) {
    const std::string path = UserOptionsFile(queue);
    std::ofstream(path) << lines;
    ASSERT_EQ(0, RunShell("chmod 640 '" + path + "'"));
    if (!HasOrdinaryUsers()) return;
    ASSERT_EQ(0, RunShell("chown anna:lp '" + path + "'"));
  }

  std::string PostScriptFile(int pages) {
    const std::string path = files_.Path("document.ps");
    MakePostScriptFile(path, pages);
    return path;
  }

  TemporaryDirectory files_;
  PrinterJobs jobs_;
};
