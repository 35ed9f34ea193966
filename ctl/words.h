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
  std::map<std::string, std::string, std::less<>> options;

  [[nodiscard]] bool Has(std::string_view name) const { return switches.contains(name); }
  [[nodiscard]] std::optional<std::string> Option(std::string_view name) const;
};

// The call of `command` that `words` (behind subject and verb) are, or what is wrong with them, in
// the user's language. "--option value" and "--option=value" are the same; behind "--" nothing is
// an option.
[[nodiscard]] std::variant<Call, std::string> ReadCall(const Command &command,
                                                       const std::vector<std::string> &words);

}  // namespace kpx::ctl
