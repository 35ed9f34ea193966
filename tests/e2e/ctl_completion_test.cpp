// What bash, zsh and fish offer while a call of kpxctl is typed.
#include <functional>
#include <set>
#include <sstream>

#include "command.h"
#include "ctltest.h"

namespace {

using Strings = std::vector<std::string>;

// The words of a call as they are typed, the last up to the cursor, and what fits there.
struct Typed {
  Strings words;
  Strings offered;

  [[nodiscard]] std::string Line() const {
    std::string line = "kpxctl";
    for (const std::string &word : words) line += " " + word;
    return line;
  }
};

const std::vector<Typed> &TypedCalls() {
  static const std::vector<Typed> calls = {
      {{"s"}, {"set", "show"}},
      {{"--"}, {"--help", "--host", "--version"}},
      {{"users", ""}, {"list", "remove"}},
      {{"--host", "root@h,h2", "rename", "acc1", "b", "--"}, {"--dry-run", "--json"}},
      {{"show", "ac"}, {"acc1", "acc2"}},
      {{"list", "--where", "ty"}, {"type="}},
      {{"list", "--where", "type="}, {"type=postscript", "type=text"}},
      {{"set", "acc1", "--r"}, {"--resolve"}},
      {{"set", "acc1", "Dup"}, {"Duplex="}},
      {{"set", "acc1", "Duplex="}, {"Duplex=DuplexNoTumble", "Duplex=DuplexTumble", "Duplex=None"}},
      {{"set", "'acc*'", "--json", "Duplex=DuplexT"}, {"Duplex=DuplexTumble"}},
      {{"set", "acc1", "Duplex=", "Jo"}, {"JobName=", "Jog="}},
      {{"set", "lab1", "FontS"}, {"FontSize="}},
      {{"clone", "acc1", "copy", "Dup"}, {"Duplex="}},
      {{"add", "x", "--printer", "Vek\\ Norvel\\ 412"}, {"Vek Norvel 4120ES", "Vek Norvel 4121"}},
      {{"add", "x", "--printer", "'Vek Norvel 4105'", "--type", "text", "FontS"}, {"FontSize="}},
      {{"add", "x", "--type", ""}, {"pcl6", "postscript", "raw", "text"}},
      {{"check", "--only", "script-o"}, {"script-old"}},
      {{"undo", "2"}, {"2"}},
      {{"model", "add", "a.ppd", "--transport", "ip"}, {"ipp", "ipps"}},
      {{"import", "site.j"}, {"site.json"}},
      {{"preset", "show", "Bo"}, {"Both sides"}},
      {{"preset", "list", "--queue", "ac"}, {"acc1", "acc2"}},
  };
  return calls;
}

// In a directory with one file, site.json; there are three queues and a preset.
class CtlCompletion : public CtlTest {
 protected:
  CtlCompletion() {
    AddQueue("acc1");
    AddQueue("acc2");
    AddQueue("lab1", {"--type", "text"});
    setenv("XDG_CONFIG_HOME", config_.Path().c_str(), 1);
    Must({"preset", "import", config_.Write("file", "[Both sides]\n*Duplex=DuplexTumble\n")});
    std::filesystem::current_path(
        std::filesystem::path(directory_.Write("site.json", "{}")).parent_path());
  }
  ~CtlCompletion() override {
    std::filesystem::current_path("/");
    unsetenv("XDG_CONFIG_HOME");
  }

  static bool Lacks(const char *shell) {
    return RunProgram({"sh", "-c", std::string("command -v ") + shell}).status != 0;
  }

  // Compares what the shell offers for each call, in any order.
  static void ExpectOffers(const std::function<Strings(const Typed &typed)> &offered_by) {
    for (const Typed &typed : TypedCalls()) {
      Strings offered = offered_by(typed);
      std::sort(offered.begin(), offered.end());
      EXPECT_EQ(typed.offered, offered) << typed.Line();
    }
  }

 private:
  TemporaryDirectory directory_;
  TemporaryDirectory config_;
};

// The words as readline takes them apart: "=" is one of its own.
Strings ReadlineWords(const Typed &typed) {
  Strings words = {"kpxctl"};
  for (const std::string &word : typed.words) {
    const size_t sign = word.find('=');
    words.push_back(word.substr(0, sign));
    if (sign == std::string::npos) continue;
    words.emplace_back("=");
    if (sign + 1 < word.size()) words.push_back(word.substr(sign + 1));
  }
  return words;
}

// Bash replaces what stands behind the last "=", and wants its words quoted.
Strings OfferedByBash(const Typed &typed) {
  const Strings words = ReadlineWords(typed);
  std::string array;
  for (const std::string &word : words) array += ShellWord(word) + " ";
  const CommandResult result = RunProgram(
      {"env", "COMP_LINE=" + typed.Line(), "bash", "-c",
       ". /usr/share/bash-completion/completions/kpxctl; COMP_WORDS=(" + array +
           "); COMP_CWORD=" + std::to_string(words.size() - 1) +
           "; _kpxctl; for word in \"${COMPREPLY[@]}\"; do eval \"printf '%s\\n' $word\"; done"});
  const std::string &current = typed.words.back();
  Strings offered = SplitLines(result.output);
  for (std::string &word : offered) word.insert(0, current.substr(0, current.rfind('=') + 1));
  return offered;
}

TEST_F(CtlCompletion, OfBashOffersWhatFits) { ExpectOffers(OfferedByBash); }

TEST_F(CtlCompletion, OfFishOffersWhatFits) {
  if (Lacks("fish")) GTEST_SKIP() << "fish is not installed: its completion was not tried";
  ExpectOffers([](const Typed &typed) {
    Strings offered;
    for (const std::string &line :
         SplitLines(RunProgram({"env", "HOME=/tmp", "fish", "-c", "complete -C $argv[1]", "--",
                                typed.Line()})
                        .output)) {
      offered.push_back(line.substr(0, line.find('\t')));  // then comes a text about it
    }
    return offered;
  });
}

// What zsh makes of a line at Tab.
struct ZshAnswer {
  std::string line;
  Strings offered = {};
};

std::vector<ZshAnswer> ZshAnswers(const Strings &lines) {
  Strings call = {KPX_ZSH_COMPLETIONS};
  call.insert(call.end(), lines.begin(), lines.end());
  std::vector<ZshAnswer> answers;
  for (const std::string &line : SplitLines(RunProgram(call).output)) {
    if (!line.starts_with('\t')) {
      answers.push_back({line});
    } else if (!answers.empty()) {
      answers.back().offered.push_back(line.substr(1));
    }
  }
  if (answers.size() != lines.size()) throw std::runtime_error("zsh does not answer");
  return answers;
}

TEST_F(CtlCompletion, OfZshOffersWhatFits) {
  if (Lacks("zsh")) GTEST_SKIP() << "zsh is not installed: its completion was not tried";
  Strings lines;
  for (const Typed &typed : TypedCalls()) lines.push_back(typed.Line());
  const std::vector<ZshAnswer> answers = ZshAnswers(lines);
  size_t next = 0;
  ExpectOffers([&](const Typed & /*typed*/) { return answers[next++].offered; });
}

TEST_F(CtlCompletion, OfZshFinishesWords) {
  if (Lacks("zsh")) GTEST_SKIP() << "zsh is not installed: its completion was not tried";
  const std::vector<ZshAnswer> answers = ZshAnswers(
      {"kpxctl show l", "kpxctl set acc1 Dup", "kpxctl add x --printer Vek\\ Norvel\\ 4105"});
  EXPECT_EQ("kpxctl show lab1 ", answers[0].line);
  EXPECT_EQ("kpxctl set acc1 Duplex=", answers[1].line);
  EXPECT_EQ("kpxctl add x --printer Vek\\ Norvel\\ 4105 ", answers[2].line);
}

// The words of the line that begin with "--", without brackets.
std::set<std::string> OptionsIn(const std::string &text) {
  std::set<std::string> options;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const size_t start = word.find("--");
    if (start != std::string::npos) options.insert(word.substr(start, word.find(']') - start));
  }
  return options;
}

TEST_F(CtlCompletion, KnowsTheOptionsOfEachLineOfHelp) {
  int lines = 0;
  for (const std::string &line : SplitLines(Kpxctl({"--help"}).output)) {
    if (!line.starts_with("  kpxctl ") || line.starts_with("  kpxctl --host ")) continue;
    ++lines;
    Strings words = {"complete"};
    std::istringstream call(line.substr(9));
    for (std::string word; call >> word && word[0] >= 'a' && word[0] <= 'z';) words.push_back(word);
    words.emplace_back("--");
    EXPECT_EQ(OptionsIn(line), OptionsIn(Kpxctl(words).output)) << line;
  }
  EXPECT_LT(20, lines);
}

TEST_F(CtlCompletion, AsksNothingOfOtherHosts) {
  Expect({"complete", "--host", "h", "show", ""}, "");
  Expect({"complete", "--host", "h", "set", "acc1", ""}, "");
  Expect({"complete", "--host", ""}, "");
}

}  // namespace
