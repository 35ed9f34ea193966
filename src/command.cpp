#include "command.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "debug.h"
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

int RunInShell(const std::string &command) {
  if (command.size() + 1 >= L_ArgumentLimit) return RunFromFile(command);
  return std::system(command.c_str());  // NOLINT(cert-env33-c)
}

int ExitStatus(int wait_status) {
  if (wait_status == -1) return -1;
  if (WIFSIGNALED(wait_status)) return 128 + WTERMSIG(wait_status);
  return WEXITSTATUS(wait_status);
}

}  // namespace

int RunCommand(const std::string &command) {
  const LogScope log("RunCommand");
  Log(3, "Run: " + command);
  std::fflush(nullptr);
  const int status = ExitStatus(RunInShell(command));
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

const std::vector<CommandRecord> &CommandRecords() { return L_Records; }

std::string JoinWords(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}
