// What the line of help says about the words of a command.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "commands.h"

namespace kpx::ctl {

// A word of the call that is not an option: "[QUEUE...]".
struct Place {
  std::string kind;  // "QUEUE"
  bool is_optional = false;
  bool repeats = false;
};

struct Synopsis {
  std::vector<Place> places;
  std::map<std::string, std::string, std::less<>> options;  // the kind of each one's value
};

[[nodiscard]] Synopsis SynopsisOf(const Command &command);

// The kinds that the word behind `count` words that are not options can be of.
[[nodiscard]] std::vector<std::string> KindsBehind(const Synopsis &synopsis, size_t count);

}  // namespace kpx::ctl
