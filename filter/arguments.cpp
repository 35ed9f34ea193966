#include "arguments.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace kpx::filter {

namespace {

struct NamedValue {
  std::string_view name;
  std::string FilterArguments::*value;
};

constexpr NamedValue kLongOptions[] = {{"--type", &FilterArguments::type},
                                       {"--ppdfile", &FilterArguments::ppd_file},
                                       {"--deffile", &FilterArguments::def_file},
                                       {"--paffile", &FilterArguments::paf_file},
                                       {"--queueppd", &FilterArguments::queue_ppd_file}};
// Their value is the rest of the word.
constexpr NamedValue kShortOptions[] = {{"-J", &FilterArguments::title},
                                        {"-e", &FilterArguments::event},
                                        {"-L", &FilterArguments::user}};

const NamedValue *LongOption(std::string_view word) {
  for (const NamedValue &option : kLongOptions) {
    if (word == option.name) return &option;
  }
  return nullptr;
}

bool TakeShortOption(std::string_view word, FilterArguments *result) {
  for (const NamedValue &option : kShortOptions) {
    if (!word.starts_with(option.name)) continue;
    result->*option.value = word.substr(option.name.size());
    return true;
  }
  return false;
}

}  // namespace

FilterArguments ParseArguments(const std::vector<std::string> &arguments) {
  FilterArguments result;
  bool filter = false;
  const bool has_options = std::find(arguments.begin() + (arguments.empty() ? 0 : 1),
                                     arguments.end(), "--filter") != arguments.end();
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string &word = arguments[i];
    if (i == 0 && has_options) {
      // The spooler's options come first, whatever they look like.
      result.options = word;
    } else if (const NamedValue *option = LongOption(word)) {
      const bool has_value = i + 1 < arguments.size() && !arguments[i + 1].starts_with('-');
      if (has_value) result.*option->value = arguments[++i];
    } else if (word == "--filter") {
      filter = true;
    } else if (i > 0 && TakeShortOption(word, &result)) {
      continue;
    }
  }
  const bool convert = !result.ppd_file.empty() && !result.paf_file.empty();
  const bool describe = !result.ppd_file.empty() && !result.queue_ppd_file.empty();
  result.mode = filter     ? FilterMode::Filter
                : describe ? FilterMode::QueuePpd
                : convert  ? FilterMode::Convert
                           : FilterMode::None;
  return result;
}

}  // namespace kpx::filter
