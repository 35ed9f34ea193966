#include "constraintindex.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "cconstrain.h"

namespace {

struct Choice {
  std::string_view feature;
  std::string_view option;
  bool operator==(const Choice &other) const = default;
};

struct ChoiceHash {
  size_t operator()(const Choice &choice) const {
    constexpr size_t kOdd = 0x9E3779B97F4A7C15U;  // 2^64 over the golden ratio, Knuth 6.4
    const std::hash<std::string_view> hash;
    return hash(choice.feature) * kOdd + hash(choice.option);
  }
};

// The texts are lent by the constraint records.
std::unordered_map<Choice, ChoiceId, ChoiceHash> L_Choices;
std::vector<std::vector<ChoiceId>> L_Partners;  // by choice

ChoiceId NumberOf(const char *feature, const char *option) {
  const auto [place, is_new] = L_Choices.try_emplace({feature, option}, L_Partners.size());
  if (is_new) L_Partners.emplace_back();
  return place->second;
}

void AddConstraint(const CConstrain *constraint) {
  const char *feature1 = fGet_CString_Value_Function(fGetFeature1_Function(constraint));
  const char *option1 = fGet_CString_Value_Function(fGetOption1_Function(constraint));
  const char *feature2 = fGet_CString_Value_Function(fGetFeature2_Function(constraint));
  const char *option2 = fGet_CString_Value_Function(fGetOption2_Function(constraint));
  // A record that lacks a text equals no pair of two choices.
  if (feature1 == nullptr || option1 == nullptr || feature2 == nullptr || option2 == nullptr) {
    return;
  }
  const ChoiceId one = NumberOf(feature1, option1);
  const ChoiceId two = NumberOf(feature2, option2);
  L_Partners[one].push_back(two);
  L_Partners[two].push_back(one);
}

}  // namespace

void IndexConstraints(const CList *constraints) {
  L_Choices.clear();
  L_Partners.clear();
  for (const CConstrain *constraint : Elements<CConstrain>(constraints)) AddConstraint(constraint);
  for (std::vector<ChoiceId> &partners : L_Partners) {
    std::sort(partners.begin(), partners.end());
    partners.erase(std::unique(partners.begin(), partners.end()), partners.end());
  }
}

size_t ChoiceCount() { return L_Partners.size(); }

std::optional<ChoiceId> FindChoice(std::string_view feature, std::string_view option) {
  const auto place = L_Choices.find({feature, option});
  if (place == L_Choices.end()) return std::nullopt;
  return place->second;
}

const std::vector<ChoiceId> &PartnersOf(ChoiceId choice) { return L_Partners[choice]; }

bool AreForbidden(std::string_view feature1, std::string_view option1, std::string_view feature2,
                  std::string_view option2) {
  const std::optional<ChoiceId> one = FindChoice(feature1, option1);
  const std::optional<ChoiceId> two = FindChoice(feature2, option2);
  if (!one || !two) return false;
  const std::vector<ChoiceId> &partners = PartnersOf(*one);
  return std::binary_search(partners.begin(), partners.end(), *two);
}
