#include "ppdmodel.h"

#include <algorithm>

namespace kpx::filter {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The element whose keyword is `keyword`, or nothing.
template <typename T>
const T *FindKeyword(const std::vector<T> &elements, std::string_view keyword) {
  const auto found = std::find_if(elements.begin(), elements.end(), [&](const T &element) {
    return SameKeyword(element.keyword, keyword);
  });
  return found == elements.end() ? nullptr : &*found;
}

}  // namespace

bool SameKeyword(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

const PpdChoice *PpdFeature::FindChoice(std::string_view choice) const {
  return FindKeyword(choices, choice);
}

const PpdChoice &PpdFeature::DefaultChoice() const {
  const PpdChoice *choice = FindChoice(default_choice);
  return choice == nullptr ? choices.front() : *choice;
}

const PpdFeature *PpdModel::FindFeature(std::string_view keyword) const {
  return FindKeyword(features, keyword);
}

}  // namespace kpx::filter
