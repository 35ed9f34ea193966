// docs/guide.md, followed to the letter on a machine that has nothing but the package: its commands
// are run, its windows used, its output and its paper compared.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "guiapp.h"
#include "printerjobs.h"
#include "spooler.h"
#include "temporarydirectory.h"

namespace fs = std::filesystem;

namespace {

constexpr char kUser[] = "anna";
constexpr char kHome[] = "/run/kpx/anna";
constexpr char kSearchPath[] = "PATH=/usr/local/bin:/usr/bin:/bin";

// A part of the page that says what to do or what happens.
struct Step {
  enum class Kind { Command, Screen, Action, Event };
  Kind kind;
  std::string text;
  int line;  // of the page
};

// The steps of the page, in order. Throws on a block of another kind, which nobody would run.
std::vector<Step> StepsOf(const std::string &page) {
  static const std::regex action(
      R"(\d+\. ((?:Press|Type|Choose) [^.]*(?:\.[^ ][^.]*)*)\.(?: .*)?)");
  std::vector<Step> steps;
  const std::vector<std::string> lines = SplitLines(page);
  for (size_t i = 0; i < lines.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    std::smatch found;
    if (lines[i].starts_with("```")) {
      const std::string kind = lines[i].substr(3);
      if (kind != "sh" && kind != "text") {
        throw std::runtime_error("line " + std::to_string(number) + ": a block of kind " + kind);
      }
      std::string text;
      while (++i < lines.size() && lines[i] != "```") text += lines[i] + "\n";
      steps.push_back({kind == "sh" ? Step::Kind::Command : Step::Kind::Screen, text, number});
    } else if (lines[i].starts_with("<!-- ")) {
      steps.push_back({Step::Kind::Event, lines[i].substr(5, lines[i].size() - 9), number});
    } else if (std::regex_match(lines[i], found, action)) {
      steps.push_back({Step::Kind::Action, found[1], number});
    }
  }
  return steps;
}

// Whether the screen shows what the page has, where "..." stands for anything within a line.
bool Fits(const std::string &shown, const std::string &expected) {
  static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
  const std::string escaped = std::regex_replace(expected, special, R"(\$&)");
  const std::string pattern = std::regex_replace(escaped, std::regex(R"(\\\.\\\.\\\.)"), ".*");
  return std::regex_match(shown, std::regex(pattern));
}

void WriteFile(const std::string &path, const std::string &text) {
  std::ofstream(path, std::ios::binary) << text;
}

// The name `name` leads to `address`, and nowhere else.
void Name(const std::string &name, const std::string &address) {
  std::string hosts;
  for (const std::string &line : SplitLines(ContentOf("/etc/hosts"))) {
    if (!line.ends_with(" " + name)) hosts += line + "\n";
  }
  WriteFile("/etc/hosts", hosts + address + " " + name + "\n");
}

std::string Root(const std::string &command) {
  const CommandResult result = RunProgram({"sh", "-c", command});
  if (result.status != 0) throw std::runtime_error(command + ": " + result.output);
  return result.output;
}

std::string Package() {
  for (const std::string &name : NamesIn(KPX_PACKAGE_DIR)) {
    if (name.starts_with("kpx_" KPX_PROJECT_VERSION "_") && name.ends_with(".deb")) return name;
  }
  throw std::runtime_error("no package in " KPX_PACKAGE_DIR);
}

class Reader {
 public:
  void Do(const Step &step) {
    switch (step.kind) {
      case Step::Kind::Command:
        return Run(step.text);
      case Step::Kind::Screen:
        return Compare(step.text);
      case Step::Kind::Action:
        return Act(step.text);
      case Step::Kind::Event:
        return Happen(step.text);
    }
  }

  // The window that the last command opened has closed, and the program had nothing to report.
  void CloseWindow() {
    if (!app_) return;
    EXPECT_EQ(0, app_->WaitExit()) << app_->Stderr();
    app_.reset();
  }

 private:
  void Run(const std::string &command) {
    CloseWindow();
    command_ = command;
    const std::vector<std::string> arguments = {"-e", "-c", "cd; " + command};
    if (command.find("KPXadmin") != std::string::npos ||
        command.find("KPXtool") != std::string::npos) {
      app_ = std::make_unique<GuiApp>(GuiAppOptions{.program = "/bin/bash",
                                                    .arguments = arguments,
                                                    .environment = {kSearchPath},
                                                    .user = kUser});
      app_->WaitUntil("a window", [&] { return !app_->Windows().empty(); });
      app_->WaitWindow(app_->Windows().front());
      return;
    }
    shown_ = Shell();
  }

  // A scheduler that reads its changed configuration lets nobody in for a moment: the same command
  // is given again, as a user would.
  std::string Shell() const {
    const Deadline deadline(EventPatience());
    for (;;) {
      const CommandResult result = RunProgram(
          {"env", kSearchPath, std::string("HOME=") + kHome, "bash", "-e", "-c", "cd; " + command_},
          {}, kUser);
      if (result.status == 0) return result.output;
      const bool is_away = result.output.find("Unable to connect to server") != std::string::npos ||
                           result.output.find("Bad file descriptor") != std::string::npos;
      if (!is_away || deadline.Left() == 0) {
        throw std::runtime_error("status " + std::to_string(result.status) + ": " + result.output);
      }
      RunProgram({"sleep", "0.2"});
    }
  }

  // The state of a queue is asked for until it is what the page shows; nothing else is run twice.
  void Compare(const std::string &expected) {
    const Deadline deadline(EventPatience());
    while (command_.starts_with("lpstat ") && !Fits(shown_, expected) && deadline.Left() > 0) {
      RunProgram({"sleep", "0.2"});
      shown_ = Shell();
    }
    if (!Fits(shown_, expected)) throw std::runtime_error("it showed\n" + shown_);
  }

  void Act(const std::string &sentence) {
    static const std::regex press(R"(Press \*\*(.*)\*\*)");
    static const std::regex fill(R"((Type|Choose) `(.*)` at \*\*(.*)\*\*)");
    if (!app_) throw std::runtime_error("no window is open");
    std::smatch found;
    if (std::regex_match(sentence, found, press)) {
      Press(found[1], Find(found[1]));
    } else if (std::regex_match(sentence, found, fill)) {
      const std::string value = found[2];
      app_->Key("alt+" + Find(found[3]));
      if (found[1] == "Type")
        Type(value);
      else
        Choose(value);
    } else {
      throw std::runtime_error("nobody knows how to do this: " + sentence);
    }
  }

  void Happen(const std::string &event) {
    CloseWindow();
    static const std::regex paper(R"((\d+) pages?: (.*))");
    std::smatch found;
    if (std::regex_match(event, found, paper)) {
      return ExpectPaper(std::stoi(found[1]), found[2]);
    }
    if (event == "the printer is switched off") return Name("printer.example", "127.0.0.2");
    if (event == "the printer is switched on") return Name("printer.example", "127.0.0.1");
    if (event == "another host") {
      Root("dpkg --purge kpx");
      return;
    }
    if (event == "somebody stops the queue") {
      Root("/usr/sbin/cupsdisable -r 'Out of toner' notes");
      return;
    }
    throw std::runtime_error("nobody knows how this happens: " + event);
  }

  // The access key of the control of the foremost window that the text names, without its colon or
  // dots; "*" for a button that Return or Escape presses. What was done last may still have to open
  // or close a window.
  std::string Find(const std::string &text) {
    std::string key;
    app_->WaitUntil("a window with " + text, [&] {
      window_ = app_->Windows().front();
      for (const std::string &line : app_->AccessKeys()) {
        const size_t first = line.find('\t');
        const size_t last = line.rfind('\t');
        std::string label = line.substr(first + 1, last - first - 1);
        while (label.ends_with(":") || label.ends_with(".")) label.pop_back();
        if (label == text) key = line.substr(last + 1);
      }
      return !key.empty();
    });
    return key;
  }

  void Press(const std::string &text, const std::string &key) {
    if (key == "*")
      app_->Click(window_ + "/" + text + "Button");
    else
      app_->Key("alt+" + key);
  }

  // The widget that has the focus, without its window.
  std::string Focused() {
    const std::string focus = app_->Focus();
    return focus.substr(focus.find('/') + 1);
  }

  void Type(const std::string &value) {
    app_->Key("ctrl+a");
    app_->Type(value);
    const std::string entry = Focused();
    app_->WaitUntil(value, [&] { return app_->Text(entry) == value; });
  }

  void Choose(const std::string &value) {
    const std::string focused = Focused();
    if (focused.ends_with("Entry")) {
      for (int i = 0; i < 20 && app_->Text(focused) != value; ++i) app_->Key("Down");
      if (app_->Text(focused) != value) throw std::runtime_error(focused + " has no " + value);
      return;
    }
    const std::vector<std::string> rows = app_->Rows(focused);
    for (size_t row = 0; row < rows.size(); ++row) {
      if (rows[row].substr(1) == value) return app_->ClickRow(focused, static_cast<int>(row));
    }
    throw std::runtime_error(focused + " has no " + value);
  }

  // One job comes out, with these parts, divided by semicolons, in what the printer got.
  void ExpectPaper(int pages, const std::string &parts) {
    std::string job = jobs_.Next();
    while (job.empty()) job = jobs_.Next();  // somebody only looked whether the printer answers
    const std::vector<std::string> documents = PostScriptOf(job);
    ASSERT_EQ(1u, documents.size());
    EXPECT_EQ(pages, PagesOf(documents[0]));
    std::istringstream list(parts);
    for (std::string part; std::getline(list >> std::ws, part, ';');) {
      EXPECT_NE(std::string::npos, job.find(part)) << part << "\nis not in\n" << job;
    }
    EXPECT_FALSE(jobs_.HasMore());
  }

  PrinterJobs jobs_;
  std::unique_ptr<GuiApp> app_;
  std::string window_;
  std::string command_;
  std::string shown_;
};

// What the page supposes: the package and a document in the user's directory, a user who may use
// sudo, and the names of the printer and of this host as others know it.
void Prepare() {
  fs::copy_file(std::string(KPX_PACKAGE_DIR) + "/" + Package(),
                std::string(kHome) + "/" + Package());
  WriteFile(std::string(kHome) + "/letter.docx", std::string("PK\x03\x04") + "[Content_Types].xml");
  Root(
      "install -m 4755 /usr/bin/setpriv /run/kpx/setpriv && "
      "printf '#!/bin/sh\\nPATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root exec /run/kpx/setpriv "
      "--reuid=0 --regid=0 --clear-groups -- \"$@\"\\n' >/usr/local/bin/sudo && "
      "chmod 755 /usr/local/bin/sudo && ip address add 192.0.2.10/32 dev lo");
  // There is no network here to get recommended packages from.
  WriteFile("/etc/apt/apt.conf.d/99guide", "APT::Install-Recommends \"false\";\n");
  Name("printer.example", "127.0.0.1");
  Name("printserver.example", "192.0.2.10");
}

}  // namespace

TEST(Guide, ItLeadsFromThePackageToThePaperAndBeyond) {
  RequirePrivateWorld();
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root apt cannot install";
  Prepare();
  const std::vector<Step> steps = StepsOf(ContentOf(KPX_GUIDE));
  ASSERT_GT(steps.size(), 40u);
  Reader reader;
  for (const Step &step : steps) {
    SCOPED_TRACE("docs/guide.md:" + std::to_string(step.line) + ": " + step.text);
    ASSERT_NO_THROW(reader.Do(step));
    if (HasFailure()) return;
  }
  reader.CloseWindow();
}

TEST(Guide, WhatNobodyRunsIsNotLetPass) {
  EXPECT_THROW(StepsOf("```bash\ntrue\n```\n"), std::runtime_error);
  EXPECT_TRUE(Fits("a.b since today\n", "a.b since ...\n"));
  EXPECT_FALSE(Fits("axb since today\n", "a.b since ...\n"));
  EXPECT_FALSE(Fits("a.b since today\nmore\n", "a.b since ...\n"));
}
