#include "constraints.h"

#include "debug.h"
#include "optionstate.h"

namespace {

struct ComparedChoice {
  const char *feature;
  const char *option;
};

// What a choice is compared as: a custom paper or media has no constraints of its own name.
ComparedChoice AsCompared(const char *feature, const char *option) {
  if (!IsCustomChoice(feature, option)) return {feature, option};
  return {CustomFactsOf(feature)->compared, "True"};
}

}  // namespace

int G_IsInvalidCombination(const CString *feature1, const CString *option1, const CString *feature2,
                           const CString *option2) {
  const LogScope log("G_IsInvalidCombination");
  const char *feature1_text = fGet_CString_Value_Function(feature1);
  const char *option1_text = fGet_CString_Value_Function(option1);
  const char *feature2_text = fGet_CString_Value_Function(feature2);
  const char *option2_text = fGet_CString_Value_Function(option2);
  if (feature1_text == nullptr || option1_text == nullptr || feature2_text == nullptr ||
      option2_text == nullptr) {
    return 0;
  }
  return AreForbidden(feature1_text, option1_text, feature2_text, option2_text) ? 1 : 0;
}

int G_CheckConstraintsForFeature(const CString *feature, const CString *option,
                                 std::string *conflicting_feature,
                                 std::string *conflicting_option) {
  const LogScope log("G_CheckConstraintsForFeature");
  conflicting_feature->clear();
  conflicting_option->clear();
  const SettingsSnapshot snapshot;
  const Setting *setting = snapshot.ConflictOf(fGet_CString_Value_Function(feature),
                                               fGet_CString_Value_Function(option));
  if (setting == nullptr) return 0;
  *conflicting_feature = setting->feature;
  *conflicting_option = setting->option;
  return 1;
}

SettingsSnapshot::SettingsSnapshot() {
  for (const auto [feature, option] : Pairs<CString>(G_QueueFeatures_hash)) {
    const char *value = fGet_CString_Value_Function(option);
    if (value != nullptr && !IsExemptFeature(feature)) settings_.push_back({feature, value});
  }
  const size_t feature_count = settings_.size();
  for (const auto [feature, option] : Pairs<CString>(G_QueueInstallableOptions_hash)) {
    const char *value = fGet_CString_Value_Function(option);
    if (value != nullptr) settings_.push_back({feature, value});
  }
  first_conflict_.assign(ChoiceCount(), settings_.size());
  // Backwards, so that of several settings the first one stays.
  for (size_t i = settings_.size(); i-- > 0;) {
    const Setting &setting = settings_[i];
    const ComparedChoice compared = i < feature_count
                                        ? AsCompared(setting.feature, setting.option)
                                        : ComparedChoice{setting.feature, setting.option};
    const std::optional<ChoiceId> choice = FindChoice(compared.feature, compared.option);
    if (!choice) continue;
    for (const ChoiceId partner : PartnersOf(*choice)) first_conflict_[partner] = i;
  }
}

const Setting *SettingsSnapshot::ConflictOf(const char *feature, const char *option) const {
  if (feature == nullptr || option == nullptr || IsExemptFeature(feature)) return nullptr;
  const ComparedChoice compared = AsCompared(feature, option);
  const std::optional<ChoiceId> choice = FindChoice(compared.feature, compared.option);
  return choice ? ConflictOf(*choice) : nullptr;
}

const Setting *SettingsSnapshot::ConflictOf(ChoiceId choice) const {
  const size_t first = first_conflict_[choice];
  return first == settings_.size() ? nullptr : &settings_[first];
}

std::optional<SettingsConflict> FindLinearConflict(const CHash *settings) {
  const SettingsSnapshot snapshot;
  for (const auto [feature, option] : Pairs<CString>(settings)) {
    const char *value = fGet_CString_Value_Function(option);
    const Setting *other = snapshot.ConflictOf(feature, value);
    if (other != nullptr) return SettingsConflict{feature, value, other->feature, other->option};
  }
  return std::nullopt;
}
