#include "conflictresolution.h"

#include <algorithm>
#include <utility>

#include "cfeature.h"
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
  std::string first = conflict.feature1;
  std::string second = conflict.feature2;
  if (Rank(first) > Rank(second)) std::swap(first, second);
  const bool hardware = AreBothInstallable(conflict);
  for (const std::string &feature : {first, second}) {
    if (IsInstallable(feature) && !hardware) continue;
    std::optional<ResolvedConflict> resolved = SetToValueThatFits(feature);
    if (resolved) return resolved;
  }
  return std::nullopt;
}
