#include "command.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

#include "debug.h"

namespace {

std::vector<CommandRecord> L_Records;

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
  const int status = ExitStatus(std::system(command.c_str()));  // NOLINT(cert-env33-c)
  Log(3, "Status: " + std::to_string(status));
  L_Records.push_back({command, status});
  return status;
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
