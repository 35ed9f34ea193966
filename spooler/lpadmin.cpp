#include "lpadmin.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "bridgequeues.h"
#include "commandlock.h"
#include "complaint.h"
#include "neededprograms.h"
#include "paths.h"
#include "queueparts.h"
#include "textfile.h"

namespace kpx::spooler {

namespace {

constexpr char kCommand[] = "lpadmin";
constexpr size_t kLongestName = 127;  // bytes

// What a call asks for.
struct Task {
  char action = '\0';  // the letter of its option
  std::string queue;
  std::string model;  // empty: the one that the queue has
};

int Fail(const std::string &text) {
  Say(kCommand, text);
  return kEndFailed;
}

int RefuseUsage(const std::string &text) {
  Say(kCommand, text);
  std::fputs(
      "usage: lpadmin -p QUEUE [-v /dev/null] [-I TYPES] [-o nobanner] [-m MODEL]\n"
      "       lpadmin -x QUEUE\n"
      "       lpadmin -R\n",
      stderr);
  return kEndWrongUsage;
}

std::string Quoted(const std::string &text) { return "\"" + text + "\""; }

// Letters (also those beyond ASCII), digits, "_", "+" and "-" alone, so that a name never leads out
// of a directory and never is an option.
bool IsName(const std::string &name) {
  return !name.empty() && name.front() != '-' && std::all_of(name.begin(), name.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || std::isalnum(byte) != 0 || c == '_' || c == '+' || c == '-';
  });
}

// What is wrong with the name of a queue or model; empty for a good one.
std::string NameProblem(const std::string &what, const std::string &name) {
  if (name.empty()) return "the name of the " + what + " is empty";
  if (!IsName(name)) return Quoted(name) + " is not a valid " + what + " name";
  if (name.size() <= kLongestName) return {};
  return "the name of the " + what + " is longer than " + std::to_string(kLongestName) + " bytes";
}

std::string TakeAction(char letter, const std::string &queue, Task *task) {
  if (task->action != '\0') {
    return letter == 'R' ? "-R stands alone" : "give -p or -x only once";
  }
  task->action = letter;
  task->queue = queue;
  return letter == 'R' ? std::string() : NameProblem("queue", queue);
}

// Takes one option of the call: what is wrong with it, or nothing.
std::string TakeOption(int letter, const std::string &value, Task *task) {
  switch (letter) {
    case 'R':
    case 'p':
    case 'x':
      return TakeAction(static_cast<char>(letter), value, task);
    case 'v':
      if (value == "/dev/null") return {};
      return "the device must be /dev/null: the interface script sends the data";
    case 'I':
      return {};  // nothing is filtered here: a queue takes every type
    case 'o':
      return value == "nobanner" ? std::string() : "unknown option -o " + Quoted(value);
    case 'm':
      task->model = value;
      return NameProblem("model", value);
    case ':':
      return std::string("-") + static_cast<char>(optopt) + " needs a value";
    default:
      return std::string("unknown option -") + static_cast<char>(optopt);
  }
}

// Reads the call: what is wrong with it, or nothing.
std::string ReadTask(int argc, char **argv, Task *task) {
  // Without the "+" words behind the first that is no option would be read as options too.
  for (int letter = 0; (letter = getopt(argc, argv, "+:Rp:x:v:I:o:m:")) != -1;) {
    std::string problem = TakeOption(letter, optarg == nullptr ? "" : optarg, task);
    if (!problem.empty()) return problem;
  }
  if (optind < argc) return "unexpected argument " + Quoted(argv[optind]);
  return task->action == '\0' ? "-p, -x or -R is needed" : "";
}

int CannotAsk(const std::string &queue, const std::string &words) {
  return Fail("CUPS does not say whether it has a queue " + Quoted(queue) + ": " + words);
}

// Tells what CUPS says against it; false then.
bool IsDone(const IppAnswer &answer) {
  if (answer.kind == IppAnswer::Kind::Done) return true;
  Say(kCommand, answer.words);
  return false;
}

// Gives the queue a new script and entry, and CUPS the queue if it has none.
int MakeParts(BridgeQueues &queues, const Task &task, const std::string &script, bool is_new) {
  const std::string interfaces = kSpoolInterfacesDir;
  NewParts parts(task.queue);
  if (!parts.Write(script, task.model)) return Fail("cannot write to " + interfaces);
  if (!parts.Flush()) return Fail("the disk did not take the files of the queue");
  if (is_new && !IsDone(queues.Make(task.queue, NewQueueState::Stopped))) {
    return Fail("CUPS did not make the queue " + Quoted(task.queue));
  }
  if (parts.Install()) return kEndDone;
  if (is_new) {
    if (!RemoveParts(task.queue)) Say(kCommand, "what was written stays");
    IsDone(queues.Remove(task.queue));
  }
  return Fail("cannot write to " + interfaces + " and " + kSpoolPrintersDir);
}

int MakeQueue(BridgeQueues &queues, const Task &task) {
  std::string words;
  const std::optional<QueueOwner> owner = queues.OwnerOf(task.queue, &words);
  if (!owner) return CannotAsk(task.queue, words);
  if (*owner == QueueOwner::Other) {
    return Fail("CUPS already has a queue " + Quoted(task.queue) +
                " that this lpadmin did not create");
  }
  if (task.model.empty()) {
    const bool exists = *owner == QueueOwner::Ours && HasEntry(task.queue) && HasScript(task.queue);
    return exists ? kEndDone : RefuseUsage("a new queue needs -m MODEL");
  }
  const std::string model = std::string(kSpoolModelsDir) + "/" + task.model;
  if (!IsFile(model)) {
    return Fail("there is no printer model " + Quoted(task.model) + " in " + kSpoolModelsDir);
  }
  const std::optional<std::string> script = ReadWholeFile(model);
  if (!script) return Fail("cannot read " + model);
  return MakeParts(queues, task, *script, *owner == QueueOwner::None);
}

int RemoveQueue(BridgeQueues &queues, const std::string &queue) {
  std::string words;
  const std::optional<QueueOwner> owner = queues.OwnerOf(queue, &words);
  if (!owner) return CannotAsk(queue, words);
  if (*owner != QueueOwner::Ours && !HasEntry(queue) && !HasScript(queue)) {
    return Fail("there is no queue " + Quoted(queue));
  }
  if (*owner == QueueOwner::Ours && !IsDone(queues.Remove(queue))) {
    return Fail("CUPS did not remove the queue " + Quoted(queue));
  }
  if (!RemoveParts(queue)) return Fail("cannot remove the files of the queue " + Quoted(queue));
  // The queue is gone, whatever the disk says.
  if (!FlushDirectories()) Say(kCommand, "the disk did not take the files of the queue");
  return kEndDone;
}

// Gives CUPS the queue back that it has lost.
int GiveBack(BridgeQueues &queues, const std::string &queue) {
  Say(kCommand, "CUPS gets the queue " + Quoted(queue) + " back");
  return IsDone(queues.Make(queue, NewQueueState::Ready)) ? kEndDone : kEndFailed;
}

// Takes from CUPS the queues that have been removed.
int TakeRemovedQueues(BridgeQueues &queues) {
  std::string words;
  const auto names = queues.OwnQueues(&words);
  if (!names) return Fail("CUPS does not say which queues it has: " + words);
  int status = kEndDone;
  for (const std::string &name : *names) {
    if (HasEntry(name) || HasScript(name)) continue;
    Say(kCommand, "the queue " + Quoted(name) + ", which had been removed, leaves CUPS again");
    if (!IsDone(queues.Remove(name))) status = kEndFailed;
  }
  return status;
}

// CUPS writes its queues to the disk half a minute after a change. After a power cut in that time
// it comes back as it was before, while the files of the queues are as they were left.
int RestoreQueues(BridgeQueues &queues) {
  bool is_empty = true;
  int status = kEndDone;
  for (const std::string &name : NamesOfEntries()) {
    if (!IsFile(EntryOf(name))) continue;
    is_empty = false;
    if (!IsName(name) || !IsFile(ScriptOf(name))) continue;
    std::string words;
    const std::optional<QueueOwner> owner = queues.OwnerOf(name, &words);
    if (!owner) return CannotAsk(name, words);
    if (*owner == QueueOwner::None && GiveBack(queues, name) != kEndDone) status = kEndFailed;
  }
  // Without an entry at all the disk with the queues may be missing.
  if (!is_empty && TakeRemovedQueues(queues) != kEndDone) status = kEndFailed;
  return status;
}

// Has CUPS get the descriptions of its queues; false when that failed.
bool DescribeQueues() {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program = kDialogOptions;
  char *const words[] = {program.data(), nullptr};
  pid_t child = -1;
  const int error = posix_spawn(&child, kDialogOptions, &actions, nullptr, words, environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return error == 0 && waitpid(child, &status, 0) == child && status == 0;
}

int Do(const Task &task) {
  BridgeQueues queues(Passwords::Asked);
  if (!queues.IsRunning()) return Fail("the CUPS scheduler (cupsd) is not running");
  RemoveLeftovers();
  switch (task.action) {
    case 'p':
      return MakeQueue(queues, task);
    case 'x':
      return RemoveQueue(queues, task.queue);
    default:
      return RestoreQueues(queues);
  }
}

}  // namespace

int RunLpadmin(int argc, char **argv) {
  umask(022);
  setenv("LC_ALL", "C.UTF-8", 1);  // CUPS's words are in the language of these messages
  Task task;
  const std::string problem = ReadTask(argc, argv, &task);
  if (!problem.empty()) return RefuseUsage(problem);
  for (const char *directory : {kSpoolInterfacesDir, kSpoolPrintersDir}) {
    if (access(directory, W_OK) != 0) {
      return Fail(std::string("cannot write to ") + directory + ": run this as root");
    }
  }
  if (!TakeLock(kCommand)) return kEndFailed;
  for (const char *program : {"/usr/sbin/lpadmin", "/usr/bin/lpstat"}) {
    if (!HasProgram(kCommand, program)) return kEndFailed;
  }
  const int status = Do(task);
  if (task.action != 'R') return status;
  LeaveLock();  // which the other program takes itself
  return DescribeQueues() ? status : kEndFailed;
}

}  // namespace kpx::spooler
