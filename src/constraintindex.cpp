#include "constraintindex.h"

#include <algorithm>
#include <map>

#include "cconstrain.h"

namespace {

std::map<std::string_view, FeatureChoices> L_Features;
std::vector<std::vector<ChoiceId>> L_Partners;  // by choice

// While the choices are numbered.
using Numbers = std::map<std::pair<std::string_view, std::string_view>, ChoiceId>;

ChoiceId NumberOf(const char *feature, const char *option, Numbers &numbers) {
  const auto [place, is_new] = numbers.try_emplace({feature, option}, L_Partners.size());
  if (is_new) L_Partners.emplace_back();
  return place->second;
}

void AddConstraint(const CConstrain *constraint, Numbers &numbers) {
  const char *feature1 = fGet_CString_Value_Function(fGetFeature1_Function(constraint));
  const char *option1 = fGet_CString_Value_Function(fGetOption1_Function(constraint));
  const char *feature2 = fGet_CString_Value_Function(fGetFeature2_Function(constraint));
  const char *option2 = fGet_CString_Value_Function(fGetOption2_Function(constraint));
  // A record that lacks a text equals no pair of two choices.
  if (feature1 == nullptr || option1 == nullptr || feature2 == nullptr || option2 == nullptr) {
    return;
  }
  const ChoiceId one = NumberOf(feature1, option1, numbers);
  const ChoiceId two = NumberOf(feature2, option2, numbers);
  L_Partners[one].push_back(two);
  L_Partners[two].push_back(one);
}

}  // namespace

void IndexConstraints(const CList *constraints) {
  L_Features.clear();
  L_Partners.clear();
  Numbers numbers;
  for (const CConstrain *constraint : Elements<CConstrain>(constraints)) {
    AddConstraint(constraint, numbers);
  }
  for (const auto &[choice, number] : numbers) {
    L_Features[choice.first].emplace_back(choice.second, number);
  }
  for (std::vector<ChoiceId> &partners : L_Partners) {
    std::sort(partners.begin(), partners.end());
    partners.erase(std::unique(partners.begin(), partners.end()), partners.end());
  }
}

size_t ChoiceCount() { return L_Partners.size(); }

const FeatureChoices &ChoicesOf(std::string_view feature) {
  static const FeatureChoices none;
  const auto place = L_Features.find(feature);
  return place == L_Features.end() ? none : place->second;
}

std::optional<ChoiceId> FindChoice(std::string_view feature, std::string_view option) {
  const FeatureChoices &choices = ChoicesOf(feature);
  const auto place = std::lower_bound(
      choices.begin(), choices.end(), option,
      [](const auto &choice, std::string_view sought) { return choice.first < sought; });
  if (place == choices.end() || place->first != option) return std::nullopt;
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
