#include "command.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "debug.h"
#include "ignoreresult.h"
#include "openfile.h"
#include "textfile.h"

namespace {

std::vector<CommandRecord> L_Records;

// Linux starts no program with one argument of this many bytes or more (execve(2)).
constexpr size_t L_ArgumentLimit = 128UL * 1024;

// Has the shell read the command from a file in memory: the way for one too long for an argument.
int RunFromFile(const std::string &command) {
  const int file = memfd_create("command", 0);
  if (file < 0) return -1;
  int status = -1;
  if (WriteWhole(file, command)) {
    const std::string shell = "exec /bin/sh /proc/self/fd/" + std::to_string(file);
    status = std::system(shell.c_str());  // NOLINT(cert-env33-c)
  }
  close(file);
  return status;
}

std::string ContentFromStart(int file) {
  std::string content;
  char buffer[4096];
  ssize_t count = 0;
  while ((count = pread(file, buffer, sizeof buffer, static_cast<off_t>(content.size()))) > 0) {
    content.append(buffer, static_cast<size_t>(count));
  }
  return content;
}

// While it lives, what this process and its children print on standard output goes to a file in
// memory; without one, where it went before.
class DivertedOutput {
 public:
  DivertedOutput() : file_(memfd_create("output", MFD_CLOEXEC)) {
    if (file_.IsOpen()) before_ = OpenFile(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3));
    if (before_.IsOpen()) dup2(file_.Descriptor(), STDOUT_FILENO);
  }
  ~DivertedOutput() {
    if (before_.IsOpen()) dup2(before_.Descriptor(), STDOUT_FILENO);
  }
  DivertedOutput(const DivertedOutput &) = delete;
  DivertedOutput &operator=(const DivertedOutput &) = delete;

  std::string Text() const {
    return before_.IsOpen() ? ContentFromStart(file_.Descriptor()) : std::string();
  }

 private:
  OpenFile file_;
  OpenFile before_;
};

// That nobody reads any more is no reason to end.
void Print(const std::string &text) {
  struct sigaction ignore = {};
  struct sigaction before = {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, &before);
  IgnoreResult(WriteWhole(STDOUT_FILENO, text), "nobody may be reading any more");
  sigaction(SIGPIPE, &before, nullptr);
}

int RunInShell(const std::string &command) {
  if (command.size() + 1 >= L_ArgumentLimit) return RunFromFile(command);
  return std::system(command.c_str());  // NOLINT(cert-env33-c)
}

int RunRelaying(const std::string &command, std::string *output) {
  int status = -1;
  {
    const DivertedOutput diverted;
    status = RunInShell(command);
    *output = diverted.Text();
  }
  Print(*output);
  return status;
}

using Clock = std::chrono::steady_clock;

// Reads to the end; nothing when that does not come until `deadline`.
std::optional<std::string> ReadUntil(int descriptor, Clock::time_point deadline) {
  std::string text;
  while (true) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd input = {.fd = descriptor, .events = POLLIN, .revents = 0};
    const int ready = left <= 0 ? 0 : poll(&input, 1, static_cast<int>(left));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return std::nullopt;
    char buffer[4096];
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) return text;
    text.append(buffer, static_cast<size_t>(count));
  }
}

// Starts the program with standard output in `out` alone: its process id, -1 when it cannot be run.
pid_t StartPlain(const std::vector<std::string> &words, int out) {
  std::vector<char *> arguments;
  for (const std::string &word : words) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  char path[] = "PATH=/usr/bin:/bin";
  char home[] = "HOME=/";
  char locale[] = "LC_ALL=C";
  char *const environment[] = {path, home, locale, nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = -1;
  const int error =
      posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environment);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? child : -1;
}

bool StandsUnquoted(char c) {
  constexpr std::string_view kOthers = "_@%+=:,./-";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kOthers.find(c) != std::string_view::npos;
}

int ExitStatus(int wait_status) {
  if (wait_status == -1) return -1;
  if (WIFSIGNALED(wait_status)) return 128 + WTERMSIG(wait_status);
  return WEXITSTATUS(wait_status);
}

}  // namespace

int RunCommand(const std::string &command, std::string *output) {
  const LogScope log("RunCommand");
  Log(3, "Run: " + command);
  std::fflush(nullptr);
  const int status =
      ExitStatus(output == nullptr ? RunInShell(command) : RunRelaying(command, output));
  Log(3, "Status: " + std::to_string(status));
  L_Records.push_back({command, status});
  return status;
}

BackgroundCommand::BackgroundCommand(const std::string &command) : command_(command) {
  Log(3, "Run: " + command);
  std::fflush(nullptr);
  pipe_ = popen(command.c_str(), "re");  // NOLINT(cert-env33-c)
}

BackgroundCommand::~BackgroundCommand() {
  if (pipe_ != nullptr) pclose(pipe_);
}

std::string BackgroundCommand::Output() {
  std::string output;
  if (pipe_ == nullptr) return output;
  char buffer[4096];
  size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, pipe_)) > 0) output.append(buffer, count);
  const int status = ExitStatus(pclose(std::exchange(pipe_, nullptr)));
  Log(3, "Status: " + std::to_string(status));
  L_Records.push_back({command_, status});
  return output;
}

std::optional<std::string> OutputOf(const std::vector<std::string> &words, int milliseconds) {
  const LogScope log("OutputOf");
  Log(3, "Run: " + JoinWords(words));
  const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  const OpenFile input(ends[0]);
  OpenFile output(ends[1]);
  const pid_t child = StartPlain(words, output.Descriptor());
  IgnoreResult(output.Close(), "a pipe");
  if (child == -1) return std::nullopt;
  std::optional<std::string> text = ReadUntil(input.Descriptor(), deadline);
  if (!text) kill(child, SIGKILL);
  int status = -1;
  while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
  }
  Log(3, "Status: " + std::to_string(ExitStatus(status)));
  return ExitStatus(status) == 0 ? text : std::nullopt;
}

const std::vector<CommandRecord> &CommandRecords() { return L_Records; }

std::string ShellWord(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), StandsUnquoted)) {
    return std::string(text);
  }
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

std::string JoinWords(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}
