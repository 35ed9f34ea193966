#include "commands.h"

#include "changecommands.h"
#include "checkcommand.h"
#include "cmessages.h"
#include "completion.h"
#include "declarecommands.h"
#include "modelcommands.h"
#include "output.h"
#include "presetcommands.h"
#include "remotehosts.h"
#include "session.h"
#include "undocommands.h"
#include "viewcommands.h"
#include "whycommand.h"
#include "words.h"

namespace kpx::ctl {

namespace {

constexpr char kName[] = "kpxctl";

std::string Synopsis(const Command &command) {
  std::string line = std::string(kName) + " " + command.subject;
  if (*command.verb != '\0') line += std::string(" ") + command.verb;
  if (*command.words != '\0') line += std::string(" ") + command.words;
  return line;
}

void PrintHelp() {
  PrintLine(G_Message("CTL_USAGE", {std::string(kName) + " COMMAND ..."}));
  PrintLine("");
  PrintLine("  " + std::string(kName) + " --host HOST[,HOST...] COMMAND ...");
  PrintLine("      " + std::string(G_Translate("CTL_HELP_HOST")));
  for (const Command &command : Commands()) {
    PrintLine("");
    PrintLine("  " + Synopsis(command));
    PrintLine("      " + std::string(G_Translate(command.help_key)));
  }
}

Status Refuse(const std::string &problem) {
  Complain(problem);
  Complain(G_Message("CTL_SEE_HELP", {std::string(kName) + " --help"}));
  return kWrongCall;
}

Status Run(const Command &command, const std::vector<std::string> &words) {
  const std::variant<Call, std::string> read = ReadCall(command, words);
  if (const auto *problem = std::get_if<std::string>(&read)) {
    Complain(*problem);
    Complain(G_Message("CTL_USAGE", {Synopsis(command)}));
    return kWrongCall;
  }
  const Call &call = std::get<Call>(read);
  if (command.changes) {
    if (const Status status = MayChange(); status != kDone) return status;
  }
  return command.run(call);
}

constexpr std::string_view kHost = "--host";

// --host HOSTS, as often as it is given, and a command for them.
Status RunRemotely(const std::vector<std::string> &words) {
  std::vector<std::string> values;
  size_t next = 0;
  for (; next < words.size() && IsHostWord(words[next]); ++next) {
    if (words[next] != kHost) {
      values.push_back(words[next].substr(kHost.size() + 1));
    } else if (next + 1 < words.size()) {
      values.push_back(words[++next]);
    } else {
      return Refuse(G_Message("CTL_VALUE_MISSING", {kHost.data()}));
    }
  }
  std::string wrong;
  const std::optional<std::vector<std::string>> hosts = HostsOf(values, &wrong);
  if (!hosts) return Refuse(G_Message("CTL_HOST_BAD", {wrong}));
  if (next == words.size()) return Refuse(G_Message("CTL_WORD_MISSING", {"COMMAND"}));
  return RunOnHosts(*hosts, {words.begin() + static_cast<std::ptrdiff_t>(next), words.end()});
}

}  // namespace

const std::vector<Command> &Commands() {
  static const std::vector<Command> commands = [] {
    std::vector<Command> all;
    for (const std::vector<Command> &some : {ViewCommands(), ChangeCommands(), DeclareCommands(),
                                             UndoCommands(), PresetCommands(), ModelCommands()}) {
      all.insert(all.end(), some.begin(), some.end());
    }
    all.push_back(CheckCommand());
    all.push_back(WhyCommand());
    return all;
  }();
  return commands;
}

bool IsHostWord(std::string_view word) {
  return word.starts_with(kHost) && (word.size() == kHost.size() || word[kHost.size()] == '=');
}

Status RunCommandLine(const std::vector<std::string> &words) {
  if (words.empty()) return Refuse(G_Message("CTL_WORD_MISSING", {"COMMAND"}));
  if (IsHostWord(words[0])) return RunRemotely(words);
  if (words[0] == "--help" || words[0] == "-h") {
    PrintHelp();
    return kDone;
  }
  if (words[0] == "complete") return Complete({words.begin() + 1, words.end()});
  if (words[0] == "--version") {
    PrintLine(std::string(kName) + " " + KPX_VERSION);
    return kDone;
  }
  for (const Command &command : Commands()) {
    if (words[0] != command.subject) continue;
    if (*command.verb == '\0') return Run(command, {words.begin() + 1, words.end()});
    if (words.size() < 2 || words[1] != command.verb) continue;
    return Run(command, {words.begin() + 2, words.end()});
  }
  return Refuse(
      G_Message("CTL_WRONG_WORD", {words.size() > 1 ? words[0] + " " + words[1] : words[0]}));
}

}  // namespace kpx::ctl
