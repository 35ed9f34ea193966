// The one place that runs shell commands.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
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
// where this process prints. With `output`, what it prints on standard output goes there once it
// has ended, and `output` has it too, as far as it can be had.
[[nodiscard]] int RunCommand(const std::string &command, std::string *output = nullptr);

// What the program words[0] prints on standard output when it is run without a shell, in the C
// locale and without the user's environment; nothing when it cannot be run, does not end with
// status 0, or not within `milliseconds`: then it is killed.
[[nodiscard]] std::optional<std::string> OutputOf(const std::vector<std::string> &words,
                                                  int milliseconds);

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

// `text` as one word of a shell command: unchanged when it consists of ASCII letters, digits and
// "_@%+=:,./-", else in single quotes, whatever bytes it has.
std::string ShellWord(std::string_view text);

// `words` joined by single blanks.
std::string JoinWords(const std::vector<std::string> &words);
