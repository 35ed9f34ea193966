// The commands of kpxctl, a row each.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kpx::ctl {

// How kpxctl ends.
enum Status {
  kDone = 0,       // done, or there was nothing to do
  kFailed = 1,     // it could not be done; standard error says why
  kWrongCall = 2,  // the words of the call are not those of a command
  kRefused = 3,    // something else stands in the way: a conflict, another administrator
  kChanges = 4,    // changes were found
};

struct Call;

inline constexpr int kAnyNumber = 1 << 30;

struct Command {
  const char *subject;   // "model"
  const char *verb;      // "add"; empty for a subject that is a command itself
  const char *words;     // what may follow, for people
  const char *help_key;  // of the catalogue: what it does
  const char *switches;  // options without a value, in blanks: "--json --dry-run"
  const char *options;   // options with a value, in blanks
  int least, most;       // how many words follow that are not options; kAnyNumber: no limit
  bool changes;          // asks for the superuser and the administrators' lock
  Status (*run)(const Call &call);
};

const std::vector<Command> &Commands();

// Whether the word, at the start of a call, names other hosts: "--host" or "--host=HOSTS".
[[nodiscard]] bool IsHostWord(std::string_view word);

// Runs the command that the words of the call (without the program's name) name.
[[nodiscard]] Status RunCommandLine(const std::vector<std::string> &words);

}  // namespace kpx::ctl
