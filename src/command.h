// The one place that runs shell commands.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// A command that asks the spooler for something.
struct SpoolerCommand {
  std::string reported_name;  // how a failure's message calls it
  std::string command;
};

struct CommandRecord {
  std::string command;
  int status;  // as RunCommand returned it
};

// Runs `command`, however long, through the shell and waits for it: its exit status, 128 plus the
// signal's number when a signal ended it, -1 when it could not be started. What it prints goes
// where this process prints.
[[nodiscard]] int RunCommand(const std::string &command);

// A command that runs in the same way, while this process goes on.
class BackgroundCommand {
 public:
  explicit BackgroundCommand(const std::string &command);
  ~BackgroundCommand();
  BackgroundCommand(const BackgroundCommand &) = delete;
  BackgroundCommand &operator=(const BackgroundCommand &) = delete;

  // Waits for its end: what it wrote to standard output; empty when it could not be started and
  // when it was asked before.
  std::string Output();

 private:
  std::string command_;
  std::FILE *pipe_;
};

// Every command run so far, in order.
const std::vector<CommandRecord> &CommandRecords();

// The redirection that throws away all that a command prints.
inline constexpr char kDiscardOutput[] = ">/dev/null 2>&1";

// `words` joined by single blanks.
std::string JoinWords(const std::vector<std::string> &words);
