// Which choices the current printer cannot combine with what the queue has set.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "chash.h"
#include "constraintindex.h"

// 1 when a constraint of the current printer forbids the two choices together, in whichever order;
// 0 otherwise and when any of the four texts is missing.
[[nodiscard]] int G_IsInvalidCombination(const CString *feature1, const CString *option1,
                                         const CString *feature2, const CString *option2);

// 1 when the choice conflicts with one of the queue's settings, else 0. On 1 the outputs name the
// first such setting (features before installable options, each in the order of its dictionary) as
// the queue stores it, so a custom paper by its name; on 0 they are empty. A missing text and a
// feature that is exempt give 0.
[[nodiscard]] int G_CheckConstraintsForFeature(const CString *feature, const CString *option,
                                               std::string *conflicting_feature,
                                               std::string *conflicting_option);

// One setting of the queue, as stored.
struct Setting {
  const char *feature;  // lent by the queue's dictionary
  const char *option;
};

// The queue's settings at one moment, for asking about many choices: each answer is that of
// G_CheckConstraintsForFeature. Good until a setting or the printer changes.
class SettingsSnapshot {
 public:
  SettingsSnapshot();

  // The setting that the choice conflicts with, null when there is none. Lent by the snapshot.
  const Setting *ConflictOf(const char *feature, const char *option) const;

  // The same for a choice by its number, exempt or not.
  const Setting *ConflictOf(ChoiceId choice) const;

 private:
  std::vector<Setting> settings_;
  std::vector<size_t> first_conflict_;  // by choice: number of a setting, or settings_.size()
};

// Two settings of the queue that the printer cannot combine.
struct SettingsConflict {
  std::string feature1;
  std::string option1;
  std::string feature2;
  std::string option2;
  bool operator==(const SettingsConflict &other) const = default;
};

// The first setting of `settings` (the queue's features or installable options), in the
// dictionary's order, that conflicts with a setting of the queue, and that setting.
[[nodiscard]] std::optional<SettingsConflict> FindLinearConflict(const CHash *settings);
