#include "startarguments.h"

#include <cstdio>

#include "cmessages.h"
#include "textencoding.h"

namespace {

constexpr std::string_view L_Queue = "-d";

void Print(const std::string &line) { std::fputs((LocaleText(line) + "\n").c_str(), stdout); }

}  // namespace

StartArguments ReadStartArguments(const std::vector<std::string> &words) {
  StartArguments arguments;
  bool only_files = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string &word = words[i];
    if (only_files || !word.starts_with('-')) {
      if (!word.empty()) arguments.files.push_back(word);
    } else if (word == "--") {
      only_files = true;
    } else if (word == L_Queue && i + 1 < words.size()) {
      arguments.queue = words[++i];
    } else if (word.starts_with(L_Queue) && word.size() > L_Queue.size()) {
      arguments.queue = word.substr(L_Queue.size());
    } else {
      arguments.others.push_back(word);
    }
  }
  return arguments;
}

bool AnswerQuestion(const std::vector<std::string> &words, const std::string &program) {
  if (words.size() != 1) return false;
  if (words[0] == "--version") {
    Print(program + " " + KPX_VERSION);
    return true;
  }
  if (words[0] != "--help") return false;
  const bool prints = program == "KPXtool";
  Print(G_Message("ARGUMENTS_USAGE",
                  {program + (prints ? " [-verbose N] [-d QUEUE] [FILE...]" : " [-verbose N]")}));
  if (prints) Print(G_Translate("ARGUMENTS_TOOL"));
  Print(G_Translate("ARGUMENTS_COMMON"));
  return true;
}
