#include "ppdconstraints.h"

#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "pafreader.h"

namespace kpx::filter {

namespace {

using Option = std::pair<std::string, std::string>;  // feature with its asterisk, option

constexpr std::string_view kCustom = "Custom";

bool IsOffChoice(std::string_view choice) {
  return SameKeyword(choice, "None") || SameKeyword(choice, "False") || SameKeyword(choice, "Off");
}

// ("*Custom<keyword>", "True") when the feature takes custom values.
std::optional<Option> CustomOption(const PpdModel &model, const PpdFeature &feature) {
  const bool known = feature.custom.has_value() || feature.keyword == "MediaType" ||
                     (feature.keyword == "PageSize" && model.custom_limits.has_value());
  if (!known) return std::nullopt;
  return Option("*Custom" + feature.keyword, "True");
}

// The options that one end of a constraint means; nothing when it names what is not there.
std::optional<std::vector<Option>> OptionsOf(const PpdModel &model, const std::string &keyword,
                                             const std::string &choice) {
  std::vector<Option> options;
  const PpdFeature *feature = model.FindFeature(keyword);
  if (feature == nullptr && SameKeyword(keyword.substr(0, kCustom.size()), kCustom) &&
      (choice.empty() || SameKeyword(choice, "True"))) {
    const PpdFeature *base = model.FindFeature(keyword.substr(kCustom.size()));
    const auto custom = base == nullptr ? std::nullopt : CustomOption(model, *base);
    if (!custom) return std::nullopt;
    return std::vector<Option>{*custom};
  }
  if (feature == nullptr || feature->choices.empty()) return std::nullopt;
  if (!choice.empty()) {
    const PpdChoice *found = feature->FindChoice(choice);
    if (found == nullptr || IsPafKeywordLine(found->keyword)) {
      const auto custom =
          SameKeyword(choice, kCustom) ? CustomOption(model, *feature) : std::nullopt;
      if (!custom) return std::nullopt;
      return std::vector<Option>{*custom};
    }
    return std::vector<Option>{{"*" + feature->keyword, found->keyword}};
  }
  for (const PpdChoice &each : feature->choices) {
    if (IsOffChoice(each.keyword) || IsPafKeywordLine(each.keyword)) continue;
    options.emplace_back("*" + feature->keyword, each.keyword);
  }
  return options;
}

}  // namespace

ConstraintPairs ExpandConstraints(const PpdModel &model) {
  ConstraintPairs result;
  std::set<std::pair<Option, Option>> seen;
  for (const PpdConstraint &constraint : model.constraints) {
    const auto first = OptionsOf(model, constraint.feature1, constraint.choice1);
    const auto second = OptionsOf(model, constraint.feature2, constraint.choice2);
    if (!first || !second || (first == second && first->size() == 1)) {
      ++result.left_out;
      continue;
    }
    for (const Option &a : *first) {
      for (const Option &b : *second) {
        if (a == b || !seen.insert(a < b ? std::pair(a, b) : std::pair(b, a)).second) continue;
        result.pairs.push_back({a.first, a.second, b.first, b.second});
      }
    }
  }
  return result;
}

}  // namespace kpx::filter
