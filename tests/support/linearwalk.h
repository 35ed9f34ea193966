// The rules about forbidden combinations taken literally: every question walks the printer's whole
// list with a constraint record of its own. What the program answers must be what this answers.
#pragma once

#include <optional>
#include <string>

#include "cconstrain.h"
#include "cfeature.h"
#include "constraints.h"
#include "must.h"
#include "optionstate.h"

namespace linearwalk {

inline bool IsInvalidCombination(const char *feature1, const char *option1, const char *feature2,
                                 const char *option2) {
  if (!feature1 || !option1 || !feature2 || !option2) return false;
  const Owned<CConstrain> candidate = CreateConstrain();
  Must(fSetData_Function(candidate.get(), CreateStringWithValue(feature1),
                         CreateStringWithValue(option1), CreateStringWithValue(feature2),
                         CreateStringWithValue(option2)));
  for (const CConstrain *constraint : Elements<CConstrain>(G_PrinterConstraints_list)) {
    if (fIsEqual_Function(constraint, candidate.get()) == 1) return true;
  }
  return false;
}

inline bool IsExempt(const std::string &feature) {
  return feature == "*Orientation" || feature == "*EdgeToEdge" || feature == "*OutputMode" ||
         feature == "*HalfTone" || feature == "*Delivery" || feature == "*EmailNotification";
}

struct Compared {
  std::string feature;
  std::string option;
};

// A page size or media type that the printer does not have counts as the custom one.
inline Compared Substituted(const std::string &feature, const std::string &option) {
  const bool is_size = feature == "*PageSize";
  if (!is_size && feature != "*MediaType") return {feature, option};
  const CFeature *record = HashValue<CFeature>(G_PrinterFeatures_hash, feature.c_str());
  for (const auto [known, text] : Pairs<CString>(fGet_Options_Function(record))) {
    if (option == known) return {feature, option};
  }
  return {is_size ? "*CustomPageSize" : "*CustomMediaType", "True"};
}

inline bool Clash(const Compared &one, const Compared &two) {
  return IsInvalidCombination(one.feature.c_str(), one.option.c_str(), two.feature.c_str(),
                              two.option.c_str());
}

struct ConflictingSetting {
  std::string feature;
  std::string option;
  bool operator==(const ConflictingSetting &other) const = default;
};

inline std::optional<ConflictingSetting> FirstIn(const CHash *settings, bool has_exemptions,
                                                 const Compared &candidate) {
  for (const auto [feature, option] : Pairs<CString>(settings)) {
    const char *value = fGet_CString_Value_Function(option);
    if (value == nullptr || (has_exemptions && IsExempt(feature))) continue;
    const Compared setting =
        has_exemptions ? Substituted(feature, value) : Compared{feature, value};
    if (Clash(candidate, setting)) return ConflictingSetting{feature, value};
  }
  return std::nullopt;
}

// The queue's first setting that the choice conflicts with.
inline std::optional<ConflictingSetting> ConflictOf(const char *feature, const char *option) {
  if (feature == nullptr || option == nullptr || IsExempt(feature)) return std::nullopt;
  const Compared candidate = Substituted(feature, option);
  const auto found = FirstIn(G_QueueFeatures_hash, true, candidate);
  return found ? found : FirstIn(G_QueueInstallableOptions_hash, false, candidate);
}

// The first of `settings` that conflicts with a setting of the queue.
inline std::optional<SettingsConflict> LinearConflict(const CHash *settings) {
  for (const auto [feature, option] : Pairs<CString>(settings)) {
    const char *value = fGet_CString_Value_Function(option);
    const auto other = ConflictOf(feature, value);
    if (other) return SettingsConflict{feature, value, other->feature, other->option};
  }
  return std::nullopt;
}

}  // namespace linearwalk
