// The real spooler of the full sandbox: its commands, its log, and interface scripts that record
// how they are called.
#pragma once

#include <poll.h>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "childprocess.h"
#include "privateworld.h"
#include "temporarydirectory.h"

inline constexpr char kBridgeInterfaces[] = "/usr/spool/lp/admins/lp/interfaces";
inline constexpr char kBridgePrinters[] = "/usr/spool/lp/admins/lp/printers";
inline constexpr char kBridgeModels[] = "/usr/spool/lp/model";
// The last line of an interface script that does not end in the lines of KPXadmin.
inline constexpr char kEndOfScript[] = "# End of the script\n";

struct CommandResult {
  int status = -1;     // as ChildResult has it
  std::string output;  // both streams
};

// Runs a program without a shell, `input` as its standard input; as the user `user` when one is
// named.
inline CommandResult RunProgram(const std::vector<std::string> &arguments,
                                const std::string &input = {}, const char *user = nullptr) {
  const TemporaryDirectory directory;
  const std::string input_path = directory.Write("input", input);
  const int in = open(input_path.c_str(), O_RDONLY | O_CLOEXEC);
  const auto body = [&] {
    dup2(in, STDIN_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::vector<char *> argv;
    for (const std::string &argument : arguments) {
      argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
  };
  const ChildResult result = user == nullptr ? RunInChild(body) : RunAsUser(user, body);
  close(in);
  return {result.status, result.errors};
}

// The scheduler's log from the moment of its making on.
class SchedulerLog {
 public:
  SchedulerLog() : watch_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)), start_(Whole().size()) {
    inotify_add_watch(watch_, kDirectory, IN_MODIFY | IN_CREATE);
  }
  ~SchedulerLog() { close(watch_); }
  SchedulerLog(const SchedulerLog &) = delete;
  SchedulerLog &operator=(const SchedulerLog &) = delete;

  std::string Text() const {
    const std::string whole = Whole();
    return whole.substr(std::min(start_, whole.size()));
  }

  // Waits until the log says `words`; throws, with its end, when it does not in EventPatience.
  void WaitFor(const std::string &words) {
    const Deadline deadline(EventPatience());
    while (Text().find(words) == std::string::npos) {
      if (deadline.Left() == 0 || !HasEvents(watch_, POLLIN, deadline)) {
        const std::string text = Text();
        throw std::runtime_error("the scheduler never said \"" + words + "\" but:\n" +
                                 text.substr(text.size() - std::min<size_t>(text.size(), 6000)));
      }
      char events[4096];
      while (read(watch_, events, sizeof events) > 0) {
      }
    }
  }

 private:
  static constexpr char kDirectory[] = "/var/log/cups";

  // A scheduler that starts puts a log of more than 1 MiB aside before it has read its settings.
  static std::string Whole() {
    const std::string path = std::string(kDirectory) + "/error_log";
    return ContentOf(path + ".O") + ContentOf(path);
  }

  int watch_;
  size_t start_;
};

// For its lifetime the scheduler is down: the signal has ended it. One that SIGKILL ends does not
// save what it has been told in the last half minute.
class NoScheduler {
 public:
  explicit NoScheduler(int signal = SIGTERM) {
    int pid = 0;
    std::ifstream("/run/cups/cupsd.pid") >> pid;
    if (pid <= 1) throw std::runtime_error("no cupsd");
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    kill(pid, signal);
    const Deadline deadline(EventPatience());
    const bool ended = HasEvents(handle, POLLIN, deadline);
    close(handle);
    if (!ended) throw deadline.Missed("the end of cupsd");
  }
  ~NoScheduler() {
    [[maybe_unused]] const int status = std::system("\"$KPX_CUPSD\" >/dev/null 2>&1 </dev/null");
  }
  NoScheduler(const NoScheduler &) = delete;
  NoScheduler &operator=(const NoScheduler &) = delete;
};

// For its lifetime the scheduler is there and does nothing.
class HungScheduler {
 public:
  HungScheduler() {
    std::ifstream("/run/cups/cupsd.pid") >> pid_;
    if (pid_ <= 1 || kill(pid_, SIGSTOP) != 0) throw std::runtime_error("no cupsd");
  }
  ~HungScheduler() { kill(pid_, SIGCONT); }
  HungScheduler(const HungScheduler &) = delete;
  HungScheduler &operator=(const HungScheduler &) = delete;

 private:
  int pid_ = 0;
};

// For its lifetime the scheduler runs with another configuration; queues and jobs stay.
class SchedulerConfiguration {
 public:
  explicit SchedulerConfiguration(const std::string &content) : before_(Current()) {
    RestartWith(content);
  }
  ~SchedulerConfiguration() { RestartWith(before_); }
  SchedulerConfiguration(const SchedulerConfiguration &) = delete;
  SchedulerConfiguration &operator=(const SchedulerConfiguration &) = delete;

  static std::string Current() { return ContentOf(kPath); }

 private:
  static constexpr char kPath[] = "/etc/cups/cupsd.conf";

  static void RestartWith(const std::string &content) {
    const NoScheduler down;
    std::ofstream(kPath) << content;
  }

  std::string before_;
};

// How an interface script was called.
struct ScriptCall {
  std::string request, user, title, copies, options;
  std::vector<std::string> files;     // paths
  std::vector<std::string> contents;  // of the files
};

// A queue of the bridge, which accepts and prints, and is removed with all its jobs when it goes.
class TestQueue {
 public:
  explicit TestQueue(const std::string &name, const std::string &model = "vek4120") : name_(name) {
    RequirePrivateWorld();
    std::filesystem::permissions(calls_.Path(), std::filesystem::perms(0777));
    Must({"/usr/lib/lpadmin", "-p", name, "-v", "/dev/null", "-I", "any", "-o", "nobanner", "-m",
          model});
    Must({"/usr/bin/accept", name});
    Must({"/usr/bin/enable", name});
  }
  ~TestQueue() { RunProgram({"/usr/lib/lpadmin", "-x", name_}); }
  TestQueue(const TestQueue &) = delete;
  TestQueue &operator=(const TestQueue &) = delete;

  const std::string &name() const { return name_; }
  std::string ScriptPath() const { return std::string(kBridgeInterfaces) + "/" + name_; }

  // Adds lines to the queue's interface script, as they are.
  void Append(const std::string &lines) const {
    std::ofstream(ScriptPath(), std::ios::app) << lines;
  }
  // Adds lines that make the script whole, as somebody's own script is.
  void Complete(const std::string &lines) const { Append(lines + "\n" + kEndOfScript); }

  // From now on the script records each call and then does `action`.
  void Record(const std::string &action = {}) const {
    Complete("call=$(mktemp -d " + calls_.Path() +
             "/new.XXXXXX)\n"
             "printf '%s\\0' \"$request\" \"$username\" \"$title\" \"$copies\" \"$options\" \"$@\" "
             ">\"$call/words\"\n"
             "number=0\n"
             "for file; do number=$((number + 1)); cat \"$file\" >\"$call/file$number\"; done\n"
             "id >\"$call/id\"\n"
             "chmod 755 \"$call\"; mv \"$call\" " +
             calls_.Path() + "/call$(($(ls " + calls_.Path() + " | grep -c '^call') + 1))\n" +
             action);
  }

  // Prints: `arguments` are those of lp behind the queue. Returns the job's number.
  std::string Print(const std::vector<std::string> &arguments,
                    const std::string &input = {}) const {
    std::vector<std::string> command = {"/usr/bin/lp", "-d", name_};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const CommandResult result = RunProgram(command, input);
    if (result.status != 0) throw std::runtime_error("lp: " + result.output);
    const std::string start = "request id is " + name_ + "-";
    return result.output.substr(start.size(), result.output.find(' ', start.size()) - start.size());
  }

  // The same; returns when the job has been printed.
  std::string PrintAndWait(const std::vector<std::string> &arguments,
                           const std::string &input = {}) const {
    SchedulerLog log;
    const std::string job = Print(arguments, input);
    log.WaitFor("[Job " + job + "] Job completed.");
    return job;
  }

  // The recorded calls, in order.
  std::vector<ScriptCall> Calls() const {
    std::vector<ScriptCall> calls;
    for (int number = 1; std::filesystem::exists(CallPath(number)); ++number) {
      calls.push_back(ReadCall(CallPath(number)));
    }
    return calls;
  }

  // What id(1) said in the script's first call.
  std::string FirstIdentity() const { return ContentOf(CallPath(1) + "/id"); }

  // True when the job waits, is held or prints.
  bool Keeps(const std::string &job) const {
    return RunProgram({"lpstat", "-o", name_}).output.find(name_ + "-" + job + " ") !=
           std::string::npos;
  }
  // What lpstat says about the queue's state.
  std::string State() const { return RunProgram({"lpstat", "-p", name_}).output; }

 private:
  static void Must(const std::vector<std::string> &command) {
    const CommandResult result = RunProgram(command);
    if (result.status != 0) throw std::runtime_error(command[0] + ": " + result.output);
  }

  std::string CallPath(int number) const { return calls_.Path("call" + std::to_string(number)); }

  static ScriptCall ReadCall(const std::string &path) {
    std::vector<std::string> words;
    std::string rest = ContentOf(path + "/words");
    for (size_t end = 0; (end = rest.find('\0')) != std::string::npos; rest.erase(0, end + 1)) {
      words.push_back(rest.substr(0, end));
    }
    words.resize(std::max<size_t>(words.size(), 5));
    ScriptCall call{words[0], words[1], words[2], words[3], words[4], {}, {}};
    call.files.assign(words.begin() + 5, words.end());
    for (size_t i = 1; i <= call.files.size(); ++i) {
      call.contents.push_back(ContentOf(path + "/file" + std::to_string(i)));
    }
    return call;
  }

  std::string name_;
  TemporaryDirectory calls_;
};
