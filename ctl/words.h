// The words of a call of kpxctl, taken apart.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "commands.h"

namespace kpx::ctl {

struct Call {
  std::vector<std::string> words;               // that are not options
  std::set<std::string, std::less<>> switches;  // "--json"
  std::multimap<std::string, std::string, std::less<>> options;

  [[nodiscard]] bool Has(std::string_view name) const { return switches.contains(name); }
  // The value of the option, the last one if it was given more than once; nothing without it.
  [[nodiscard]] std::optional<std::string> Option(std::string_view name) const;
  // All its values, in order.
  [[nodiscard]] std::vector<std::string> OptionValues(std::string_view name) const;
};

// The call of `command` that `words` (behind subject and verb) are, or what is wrong with them, in
// the user's language. "--option value" and "--option=value" are the same; behind "--" nothing is
// an option.
[[nodiscard]] std::variant<Call, std::string> ReadCall(const Command &command,
                                                       const std::vector<std::string> &words);

}  // namespace kpx::ctl
