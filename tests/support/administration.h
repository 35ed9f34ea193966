// The administration program as tests drive it: what it finds when it starts, and a user's ways
// through its windows. Only inside the full sandbox.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "guiapp.h"
#include "installation.h"
#include "must.h"
#include "paths.h"
#include "porting.h"
#include "queuelistwriter.h"
#include "queuesupport.h"

inline constexpr char kAdmin[] = "/opt/orlan/bin/KPXadmin";
inline constexpr char kLp1Printer[] = "Vek Norvel 4110ES";  // what QueueValues{} names

struct QueueInput {
  std::string name;
  std::string printer = kLp1Printer;
  std::string address = "127.0.0.1";
  std::string type = "postscript";  // its key
};

// KPXadmin with its window open.
class AdminApp : public GuiApp {
 public:
  explicit AdminApp(GuiAppOptions options = {}) : GuiApp(AsAdmin(std::move(options))) {
    WaitWindow("AdminWindow");
  }

  // The first cell of each row, "*" before a selected one and "-" before another.
  std::vector<std::string> QueueNames() {
    std::vector<std::string> names;
    for (const std::string &row : Rows("QueuesClist"))
      names.push_back(row.substr(0, row.find('\t')));
    return names;
  }

  // The sensitive ones of Clone, Properties and Delete, by their first letters.
  std::string SensitiveButtons() {
    std::string letters;
    for (const char *name : {"CloneButton", "PropertiesButton", "DeleteButton"}) {
      if (IsSensitive(name)) letters += name[0];
    }
    return letters;
  }

  void SelectQueues(const std::vector<int> &rows) {
    std::string keys;
    for (const int row : rows) {
      ClickRow("QueuesClist", row, keys);
      keys = "ctrl";
    }
  }

  void OpenAddQueue() {
    Click("AddButton");
    WaitWindow("AddQueueWindow");
  }

  void SelectPrinter(const std::string &name) {
    const std::vector<std::string> rows = Rows("PrinterClist");
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const std::string &row) { return row.substr(1) == name; });
    ASSERT_NE(rows.end(), found) << "no printer " << name;
    ClickRow("PrinterClist", static_cast<int>(found - rows.begin()));
  }

  void SelectType(const std::string &key) {
    const std::string text = CatalogueText(key);
    Click("QueueTypeComboEntry");
    for (int i = 0; i < 4 && Text("QueueTypeComboEntry") != text; ++i) Key("Down");
    ASSERT_EQ(text, Text("QueueTypeComboEntry"));
  }

  // Replaces what stands in an entry by typing.
  void TypeInto(const std::string &entry, const std::string &text) {
    Click(entry);
    Key("ctrl+a");
    Key("Delete");
    Type(text);
  }

  void FillAddQueue(const QueueInput &queue) {
    TypeInto("QueueEntry", queue.name);
    SelectPrinter(queue.printer);
    if (queue.type != "postscript") SelectType(queue.type);
    TypeInto("AddressEntry", queue.address);
  }

  // Adds a queue through the dialog.
  void AddQueue(const QueueInput &queue) {
    OpenAddQueue();
    FillAddQueue(queue);
    Click("AddQueueWindow/OKButton");
    WaitGone("AddQueueWindow");
  }

  // Expects the error box with the text of `key` and closes it.
  void ExpectErrorBox(const std::string &key) {
    WaitWindow("ErrorDialog");
    EXPECT_EQ(CatalogueText(key), Text("ErrorLabel1"));
    Key("Return");
    WaitGone("ErrorDialog");
  }

 private:
  static GuiAppOptions AsAdmin(GuiAppOptions options) {
    options.program = kAdmin;
    return options;
  }
};

// Path to content of every file below the directories, the lock file left out.
inline std::map<std::string, std::string> FilesBelow(const std::vector<std::string> &directories) {
  std::map<std::string, std::string> files;
  for (const std::string &directory : directories) {
    for (const auto &entry : std::filesystem::recursive_directory_iterator(directory)) {
      if (!entry.is_regular_file() || entry.path().extension() == ".lock") continue;
      files[entry.path()] = ContentOf(entry.path());
    }
  }
  return files;
}

// What a save changes on the disk.
inline std::map<std::string, std::string> SavedState() {
  return FilesBelow({kDataDir, "/usr/spool/lp/admins/lp"});
}

// Every test finds an empty queue list and no queue in the spooler's directories.
class AdministrationTest : public testing::Test {
 protected:
  AdministrationTest() {
    RequirePrivateWorld();
    for (const char *directory : {kSpoolPrintersDir, kSpoolInterfacesDir, kUsersDir}) {
      std::filesystem::create_directories(directory);
      for (const std::string &name : NamesIn(directory)) {
        std::filesystem::remove_all(std::string(directory) + "/" + name);
      }
    }
    for (const std::string &name : NamesIn(kDataDir)) {
      if (name.ends_with(".def") || name.starts_with("queues.paf")) {
        std::filesystem::remove_all(std::string(kDataDir) + "/" + name);
      }
    }
  }

  // A queue in the spooler's directories, ours when the script has the marker line.
  static void PutInSpooler(const std::string &name, const std::string &script) {
    std::ofstream(std::string(kSpoolPrintersDir) + "/" + name);
    std::ofstream(InterfacePath(name)) << script;
  }

  static void PutList(const std::vector<QueueValues> &queues) {
    const Owned<CHash> hash = CreateHash();
    for (const QueueValues &values : queues) {
      Must(HashPut(hash.get(), values.name.c_str(), MakeQueue(values)));
    }
    int left_out = 0;
    std::ofstream(kQueuesFile) << QueueListText(hash.get(), &left_out);
  }

  // Queues of ours in list and spooler.
  static void PutQueues(const std::vector<QueueValues> &queues) {
    PutList(queues);
    for (const QueueValues &values : queues) {
      PutInSpooler(values.name, "#!/bin/sh\n" + std::string(kMarkerLine) + "\n");
    }
  }
  static void PutQueues(const std::vector<std::string> &names) {
    std::vector<QueueValues> queues;
    for (const std::string &name : names) queues.push_back({.name = name});
    PutQueues(queues);
  }
};
