#include "conflictresolution.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "cfeature.h"
#include "debug.h"
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

// The values to try, best first.
std::vector<std::string> Candidates(const std::string &feature) {
  std::vector<std::string> candidates;
  const char *usual = fGet_CString_Value_Function(
      G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature.c_str()));
  if (usual != nullptr) candidates.emplace_back(usual);
  const CHash *options = fGet_Options_Function(PrinterFeature(feature.c_str()));
  if (HashFind(options, "None") != nullptr) candidates.emplace_back("None");
  for (const auto [option, text] : Pairs<CString>(options)) {
    if (text != nullptr) candidates.emplace_back(option);
  }
  return candidates;
}

std::optional<ResolvedConflict> SetToValueThatFits(const std::string &feature) {
  if (IsInstallable(feature)) return std::nullopt;
  const std::string before = QueueFeatureValue(feature.c_str());
  // Not compared with its own old value.
  HashRemove(G_QueueFeatures_hash, feature.c_str());
  const SettingsSnapshot others;
  for (const std::string &option : Candidates(feature)) {
    if (option == before || others.ConflictOf(feature.c_str(), option.c_str()) != nullptr) continue;
    SetQueueValue(G_QueueFeatures_hash, feature.c_str(), option);
    return ResolvedConflict{feature, option};
  }
  SetQueueValue(G_QueueFeatures_hash, feature.c_str(), before);
  return std::nullopt;
}

}  // namespace

void NoteUserChoice(const char *feature) {
  std::erase(L_Chosen, feature);
  L_Chosen.emplace_back(feature);
}

void ForgetUserChoices() { L_Chosen.clear(); }

std::optional<ResolvedConflict> ResolveConflict(const SettingsConflict &conflict) {
  const LogScope log("ResolveConflict");
  std::string first = conflict.feature1;
  std::string second = conflict.feature2;
  if (Rank(first) > Rank(second)) std::swap(first, second);
  std::optional<ResolvedConflict> resolved = SetToValueThatFits(first);
  if (!resolved) resolved = SetToValueThatFits(second);
  return resolved;
}
