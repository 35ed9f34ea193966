#include "synopsis.h"

#include <algorithm>
#include <sstream>

namespace kpx::ctl {

namespace {

bool TakeEnd(std::string &word, std::string_view end) {
  if (!word.ends_with(end)) return false;
  word.erase(word.size() - end.size());
  return true;
}

// Takes brackets and dots off the word. `depth` counts the brackets that are open: those of
// "FILE.ppd[.gz]" belong to the word.
Place PlaceOf(std::string word, int &depth) {
  Place place;
  const size_t opened = word.find_first_not_of('[');
  depth += static_cast<int>(opened == std::string::npos ? 0 : opened);
  place.is_optional = depth > 0;
  word.erase(0, opened);
  for (bool any = true; any;) {
    any = false;
    if (TakeEnd(word, "...")) any = place.repeats = true;
    const auto count = [&](char c) { return std::count(word.begin(), word.end(), c); };
    if (count(']') > count('[') && TakeEnd(word, "]")) {
      --depth;
      any = true;
    }
  }
  place.kind = std::move(word);
  return place;
}

}  // namespace

Synopsis SynopsisOf(const Command &command) {
  Synopsis synopsis;
  const std::string options = " " + std::string(command.options) + " ";
  std::istringstream words(command.words);
  std::string word, option;
  for (int depth = 0; words >> word;) {
    const Place place = PlaceOf(word, depth);
    if (!option.empty()) {
      synopsis.options[option] = place.kind;
      option.clear();
    } else if (options.find(" " + place.kind + " ") != std::string::npos) {
      option = place.kind;
    } else if (!place.kind.starts_with("--") && place.kind != "|") {
      synopsis.places.push_back(place);
    }
  }
  return synopsis;
}

std::vector<std::string> KindsBehind(const Synopsis &synopsis, size_t count) {
  std::vector<std::string> kinds;
  size_t most = 0, needed = 0;  // how many words can stand before the place
  bool repeats = false;
  for (const Place &place : synopsis.places) {
    repeats = repeats || place.repeats;
    if (count >= needed && (repeats || count <= most)) kinds.push_back(place.kind);
    ++most;
    if (!place.is_optional) ++needed;
  }
  return kinds;
}

}  // namespace kpx::ctl
