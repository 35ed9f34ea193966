#include "conflictresolution.h"

#include <algorithm>
#include <utility>

#include "cfeature.h"
#include "cstring.h"
#include "debug.h"
#include "globals.h"
#include "optionlists.h"
#include "optionstate.h"

namespace {

std::vector<std::string> L_Chosen;  // the one chosen last at the end

// 0 when the user has not chosen a value of it.
size_t Rank(const std::string &feature) {
  const auto place = std::find(L_Chosen.begin(), L_Chosen.end(), feature);
  return place == L_Chosen.end() ? 0 : static_cast<size_t>(place - L_Chosen.begin()) + 1;
}

bool IsInstallable(const std::string &feature) {
  return HashFind(G_PrinterFeatures_hash, feature.c_str()) == nullptr;
}

bool AreBothInstallable(const SettingsConflict &conflict) {
  return IsInstallable(conflict.feature1) && IsInstallable(conflict.feature2);
}

// The values to try, best first.
std::vector<std::string> Candidates(const std::string &feature) {
  const CHash *features =
      IsInstallable(feature) ? G_PrinterInstallableOptions_hash : G_PrinterFeatures_hash;
  std::vector<std::string> candidates;
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(features, feature.c_str()));
  if (usual != nullptr) candidates.emplace_back(usual);
  const CHash *options = fGet_Options_Function(PrinterFeature(feature.c_str()));
  if (HashFind(options, "None") != nullptr) candidates.emplace_back("None");
  for (const auto [option, text] : Pairs<CString>(options)) {
    if (text != nullptr) candidates.emplace_back(option);
  }
  return candidates;
}

std::optional<ResolvedConflict> SetToValueThatFits(const std::string &feature) {
  CHash *settings = IsInstallable(feature) ? G_QueueInstallableOptions_hash : G_QueueFeatures_hash;
  const char *value = HashText(settings, feature.c_str());
  const bool is_set = value != nullptr;
  const std::string before = is_set ? value : "";
  // Not compared with its own old value.
  HashRemove(settings, feature.c_str());
  const SettingsSnapshot others;
  for (const std::string &option : Candidates(feature)) {
    if (option == before || others.ConflictOf(feature.c_str(), option.c_str()) != nullptr) continue;
    SetQueueValue(settings, feature.c_str(), option);
    return ResolvedConflict{feature, option};
  }
  if (is_set) SetQueueValue(settings, feature.c_str(), before);
  return std::nullopt;
}

// The two of a conflict: the one that gives way first, and the other.
std::pair<std::string, std::string> InOrder(const SettingsConflict &conflict) {
  std::pair<std::string, std::string> features = {conflict.feature1, conflict.feature2};
  if (Rank(features.first) > Rank(features.second)) std::swap(features.first, features.second);
  return features;
}

// The default of the feature, if it has another value and that goes with the other setting.
std::optional<std::string> DefaultBeside(const std::string &feature, const Setting &other) {
  const CFeature *record = PrinterFeature(feature.c_str());
  const CString *usual = fGet_Default_Function(record);
  if (fGet_CString_Value_Function(usual) == nullptr) return std::nullopt;
  const CHash *settings =
      IsInstallable(feature) ? G_QueueInstallableOptions_hash : G_QueueFeatures_hash;
  if (HashText(settings, feature.c_str()) == TextOf(usual)) return std::nullopt;
  const bool conflicts = G_IsInvalidCombination(CreateStringWithValue(feature.c_str()).get(), usual,
                                                CreateStringWithValue(other.feature).get(),
                                                CreateStringWithValue(other.option).get()) != 0;
  if (conflicts) return std::nullopt;
  return TextOf(usual);
}

}  // namespace

void NoteUserChoice(const char *feature) {
  std::erase(L_Chosen, feature);
  L_Chosen.emplace_back(feature);
}

void ForgetUserChoices() { L_Chosen.clear(); }

std::vector<std::string> UserChoices() { return L_Chosen; }

void SetUserChoices(std::vector<std::string> choices) { L_Chosen = std::move(choices); }

bool MayResolve(const SettingsConflict &conflict) {
  return G_ProgName == kModeAdministration || !AreBothInstallable(conflict);
}

std::optional<ResolvedConflict> ResolveConflict(const SettingsConflict &conflict) {
  const LogScope log("ResolveConflict");
  if (!MayResolve(conflict)) return std::nullopt;
  const auto [first, second] = InOrder(conflict);
  const bool hardware = AreBothInstallable(conflict);
  for (const std::string &feature : {first, second}) {
    if (IsInstallable(feature) && !hardware) continue;
    std::optional<ResolvedConflict> resolved = SetToValueThatFits(feature);
    if (resolved) return resolved;
  }
  return std::nullopt;
}

std::optional<ResolvedConflict> SettleConflict(const SettingsConflict &conflict) {
  const LogScope log("SettleConflict");
  std::optional<ResolvedConflict> resolved = ResolveConflict(conflict);
  if (resolved || !MayResolve(conflict)) return resolved;
  const bool hardware = AreBothInstallable(conflict);
  const Setting one = {conflict.feature1.c_str(), conflict.option1.c_str()};
  const Setting two = {conflict.feature2.c_str(), conflict.option2.c_str()};
  const auto [first, second] = InOrder(conflict);
  for (const std::string &feature : {first, second}) {
    if (IsInstallable(feature) && !hardware) continue;
    const std::optional<std::string> usual =
        DefaultBeside(feature, feature == conflict.feature1 ? two : one);
    if (!usual) continue;
    CHash *settings =
        IsInstallable(feature) ? G_QueueInstallableOptions_hash : G_QueueFeatures_hash;
    SetQueueValue(settings, feature.c_str(), *usual);
    return ResolvedConflict{feature, *usual};
  }
  return std::nullopt;
}
