#include "words.h"

#include <algorithm>
#include <iterator>

#include "cmessages.h"

namespace kpx::ctl {

namespace {

// Whether `name` is one of the words of `list`.
bool IsAmong(const std::string &name, std::string_view list) {
  const std::string words = " " + std::string(list) + " ";
  return words.find(" " + name + " ") != std::string::npos;
}

}  // namespace

std::optional<std::string> Call::Option(std::string_view name) const {
  const auto end = options.upper_bound(name);
  if (end == options.begin() || std::prev(end)->first != name) return std::nullopt;
  return std::prev(end)->second;
}

std::vector<std::string> Call::OptionValues(std::string_view name) const {
  std::vector<std::string> values;
  const auto [first, end] = options.equal_range(name);
  for (auto option = first; option != end; ++option) values.push_back(option->second);
  return values;
}

std::variant<Call, std::string> ReadCall(const Command &command,
                                         const std::vector<std::string> &words) {
  Call call;
  bool only_words = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string &word = words[i];
    if (only_words || !word.starts_with("--")) {
      call.words.push_back(word);
      continue;
    }
    if (word == "--") {
      only_words = true;
      continue;
    }
    const size_t sign = word.find('=');
    const std::string name = word.substr(0, sign);
    if (sign == std::string::npos && IsAmong(name, command.switches)) {
      call.switches.insert(name);
    } else if (!IsAmong(name, command.options)) {
      return G_Message("CTL_WRONG_WORD", {word});
    } else if (sign != std::string::npos) {
      call.options.emplace(name, word.substr(sign + 1));
    } else if (i + 1 == words.size()) {
      return G_Message("CTL_VALUE_MISSING", {name});
    } else {
      call.options.emplace(name, words[++i]);
    }
  }
  const int count = static_cast<int>(call.words.size());
  if (count > command.most) {
    return G_Message("CTL_WRONG_WORD", {call.words[static_cast<size_t>(command.most)]});
  }
  if (count < command.least) return G_Message("CTL_WORD_MISSING", {command.words});
  return call;
}

}  // namespace kpx::ctl
