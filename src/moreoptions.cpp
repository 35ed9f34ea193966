#include "moreoptions.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "cfeature.h"
#include "constraintmessages.h"
#include "constraints.h"
#include "cprinter.h"
#include "featuretable.h"
#include "optiongroups.h"
#include "optionlists.h"
#include "optionstate.h"
#include "printermodels.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textfile.h"

namespace {

bool Has(const CHash *features, const char *feature) {
  return HashFind(features, feature) != nullptr;
}

// The feature of `features` that the row shows; null when there is none.
const char *FeatureOfRow(const CHash *features, const char *feature) {
  if (Has(features, feature)) return feature;
  for (const MakersName &other : MakersNames()) {
    if (std::strcmp(other.feature, feature) == 0 && Has(features, other.name)) return other.name;
  }
  return nullptr;
}

// Whether a tab has a row for the option, or it says what another does.
bool HasPlace(const CHash *features, const std::string &option) {
  if (option == kPageRegionKey) return Has(features, kPageSizeKey);
  for (const ListedFeature &listed : ListedFeatures()) {
    const char *shown = FeatureOfRow(features, listed.feature);
    if (shown != nullptr && option == shown) return true;
  }
  return false;
}

// The queue's choice or, failing that, the printer's default.
std::string ChoiceOf(const std::string &feature) {
  const std::string choice = QueueFeatureValue(feature.c_str());
  if (!choice.empty()) return choice;
  const char *usual = fGet_CString_Value_Function(
      G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature.c_str()));
  return usual == nullptr ? "" : usual;
}

}  // namespace

const std::vector<MakersName> &MakersNames() {
  static const std::vector<MakersName> names = {
      {kStapleKey, "*Stapling"},
      {kStapleKey, "*Staple"},
      {kStapleKey, "*RIStaple"},
      {kStapleKey, "*ARStaple"},
      {kStapleKey, "*KCStaple"},
      {kStapleKey, "*HPStaplerOptions"},
      {kStapleKey, "*StapleJob"},
      {kStapleKey, "*JCLStapleLocation"},
      {kStapleKey, "*StapleCount"},
      {kStapleKey, "*KMStapleMode"},
      {kStapleKey, "*KmStaple"},
      {kStapleKey, "*JCLARStaple"},
      {kStapleKey, "*JCLMSTAPLER"},
      {kPunchKey, "*RIPunch"},
      {kPunchKey, "*ARPunch"},
      {kPunchKey, "*KCPunch"},
      {kPunchKey, "*HPPunchingOptions"},
      {kPunchKey, "*HolePunch"},
      {kPunchKey, "*KmPunch"},
      {kPunchKey, "*JCLARPunch"},
      {kPunchKey, "*JCLPunchLocation"},
      {kPunchKey, "*JCLMHOLEPUNCH"},
      {kCollateKey, "*OKCollate"},
      {kCollateKey, "*JCLCollate"},
      {kDuplexKey, "*ARDuplex"},
      {kDuplexKey, "*KMDuplex"},
      {kResolutionKey, "*LXResolution"},
      {kResolutionKey, "*CN_DPI"},
      {kResolutionKey, "*HPPrintingResolution"},
      {kOutputModeKey, "*HPPrintQuality"},
      {kOutputModeKey, "*Quality"},
      {kOutputModeKey, "*PrintQuality"},
      {kOutputModeKey, "*HPPJLPrintQuality"},
      {kOutputModeKey, "*HPOutputQuality"},
      {kOutputModeKey, "*RQualityMode"},
      {kInputSlotKey, "*HPPaperSource"},
      {kOutputBinKey, "*JCLOutputBin"},
      {kOutputBinKey, "*JCLOUTBIN"},
      {kHalfToneKey, "*Halftone"},
  };
  return names;
}

std::vector<MoreOption> MoreOptionsOf(const CPrinter *printer) {
  std::vector<MoreOption> options;
  if (printer == nullptr) return options;
  const char *path = fGet_CString_Value_Function(printer->paf_file.get());
  const std::optional<std::string> paf = ReadWholeFile(path == nullptr ? "" : path);
  const CHash *features = printer->features.get();
  LineReader lines(paf ? *paf : std::string_view());
  std::string group;
  while (const std::optional<std::string_view> line = lines.NextView()) {
    if (line->starts_with(kGroupComment)) {
      group = line->substr(kGroupComment.size());
    } else if (line->starts_with(kOptionComment)) {
      const std::string feature = "*" + std::string(line->substr(kOptionComment.size()));
      if (Has(features, feature.c_str()) && !HasPlace(features, feature)) {
        options.push_back({group, feature});
      }
    }
  }
  return options;
}

std::vector<MoreOptionRow> MoreOptionRows(const std::vector<MoreOption> &options) {
  std::vector<MoreOptionRow> rows;
  const SettingsSnapshot snapshot;
  std::string group;
  for (const MoreOption &option : options) {
    if (option.group != group) {
      group = option.group;
      if (!group.empty()) rows.push_back({group, "", "", ""});
    }
    const char *feature = option.feature.c_str();
    const std::string choice = ChoiceOf(option.feature);
    const Setting *conflict = snapshot.ConflictOf(feature, choice.c_str());
    MoreOptionRow &row = rows.emplace_back();
    G_SetStringWithConstrain(FeatureDisplayText(feature), row.text, conflict == nullptr ? 0 : 1);
    row.choice = OptionDisplayText(feature, choice.c_str());
    row.feature = option.feature;
    if (conflict != nullptr) {
      row.reason = ConflictReason({option.feature, choice, conflict->feature, conflict->option});
    }
  }
  return rows;
}

std::string ShownFeature(const char *feature) {
  if (G_PrinterModel != kAddedModelNumber) return feature;
  const char *shown = FeatureOfRow(G_PrinterFeatures_hash, feature);
  return shown == nullptr ? feature : shown;
}
