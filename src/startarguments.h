// The words of a call of the windows' programs, beside those of the toolkit and "-verbose".
#pragma once

#include <string>
#include <vector>

struct StartArguments {
  std::string queue;                // of "-d QUEUE"; empty without one
  std::vector<std::string> files;   // to be printed
  std::vector<std::string> others;  // that mean nothing
};

// What the print tool makes of the words behind its name and "-verbose N": "-d QUEUE" (or
// "-dQUEUE", as lp takes it) and files; behind "--" everything is a file. A file that begins with
// "-" is one only there.
StartArguments ReadStartArguments(const std::vector<std::string> &words);

// Answers a call that asks for "--help" or "--version" alone, on standard output; false for every
// other call. The catalogue must be loaded. `program` is a name of the executable, `usage` what may
// follow it.
[[nodiscard]] bool AnswerQuestion(const std::vector<std::string> &words,
                                  const std::string &program);
