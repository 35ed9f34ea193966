#include "optionlists.h"

#include <cstring>

#include "ccpsparams.h"
#include "cfeature.h"
#include "cmessages.h"
#include "constraintmessages.h"
#include "debug.h"
#include "endprogram.h"
#include "optionstate.h"
#include "printermodels.h"
#include "settingkeys.h"

namespace {

// Fills one list.
class ListBuilder {
 public:
  ListBuilder(const CFeature *record, const char *feature, const SettingsSnapshot &snapshot,
              OptionList &list)
      : options_(fGet_Options_Function(record)),
        feature_(feature),
        exempt_(IsExemptFeature(feature)),
        custom_(CustomFactsOf(feature)),
        snapshot_(snapshot),
        list_(list) {}

  void AddPrinterOptions() {
    if (options_ != nullptr) list_.rows.reserve(options_->index.size());
    // Both are in the options' order, so that one walk over the choices finds them all.
    const FeatureChoices &choices = ChoicesOf(feature_);
    auto choice = exempt_ ? choices.end() : choices.begin();
    for (const auto [option, text] : Pairs<CString>(options_)) {
      const char *display = fGet_CString_Value_Function(text);
      int order = -1;
      while (choice != choices.end() && (order = choice->first.compare(option)) < 0) ++choice;
      const bool is_choice = choice != choices.end() && order == 0;
      const Setting *conflict = is_choice ? snapshot_.ConflictOf(choice->second) : nullptr;
      const bool is_current = Add(option, display == nullptr ? option : display, conflict);
      if (is_current && custom_ != nullptr) *custom_->is_current = false;
    }
  }

  void AddCustomEntries() {
    if (custom_ == nullptr) return;
    // One question for all of them: they count as the same choice. Only the names matter here.
    const Setting *conflict = snapshot_.ConflictOf(custom_->compared, "True");
    for (const auto [name, entry] : Pairs<CCpsParams>(*custom_->entries)) {
      if (Add(name, name, conflict)) *custom_->is_current = true;
    }
  }

 private:
  // True when the option is the current one.
  bool Add(const char *option, const char *display, const Setting *conflict) {
    OptionListRow &row = list_.rows.emplace_back();
    G_SetStringWithConstrain(display, row.text, conflict == nullptr ? 0 : 1);
    if (conflict != nullptr) row.reason = ReasonOf(option, display, *conflict);
    const bool is_current = list_.current_option == option;
    if (is_current) list_.current_text = row.text;
    return is_current;
  }

  std::string ReasonOf(const char *option, const char *display, const Setting &conflict) {
    // Mostly it is the same setting that stands in the way of many options.
    if (explained_ != &conflict) {
      explained_ = &conflict;
      explained_text_ = OptionDisplayText(conflict.feature, conflict.option);
    }
    return ConflictReason(feature_, option, display, conflict.feature, conflict.option,
                          explained_text_);
  }

  const CHash *options_;
  const char *feature_;
  bool exempt_;
  const CustomFacts *custom_;  // null: the queue has no entries of its own for the feature
  const SettingsSnapshot &snapshot_;
  OptionList &list_;
  const Setting *explained_ = nullptr;  // the setting whose display text is at hand
  std::string explained_text_;
};

// The queue's choice for the feature, or the printer's default. A page size or media type that
// nobody knows is put right in the queue's settings, and then `snapshot` is dropped.
std::string CurrentOption(const CHash *features, const char *feature,
                          std::optional<SettingsSnapshot> &snapshot) {
  const char *chosen = HashText(G_QueueFeatures_hash, feature);
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(features, feature));
  const char *current = chosen != nullptr ? chosen : usual;
  if (current == nullptr) return "";
  const CustomFacts *custom = CustomFactsOf(feature);
  const bool is_known = custom == nullptr || IsOptionOf(features, feature, current) ||
                        HashFind(*custom->entries, current) != nullptr;
  if (is_known || usual == nullptr) return current;
  std::string repaired = usual;
  SetQueueValue(G_QueueFeatures_hash, feature, repaired);
  *custom->is_current = false;
  snapshot.reset();
  return repaired;
}

}  // namespace

bool IsListFilled(const char *feature) {
  return std::strcmp(feature, kResolutionKey) != 0 ||
         PrinterModelOfNumber(G_PrinterModel).lists_resolutions;
}

bool IsOfferedFeature(const char *feature) {
  const std::string_view key = feature;
  if (key == kPageRegionKey) return false;
  if (key == kHalfToneKey && !CurrentQueueType().has_halftones) return false;
  return IsListFilled(feature);
}

bool IsResetByDefaults(const char *feature) {
  return std::strcmp(feature, kResolutionKey) != 0 ||
         PrinterModelOfNumber(G_PrinterModel).defaults_set_resolution;
}

void RepairCustomChoices() {
  const LogScope log("RepairCustomChoices");
  for (const CustomKind kind : {CustomKind::kPaper, CustomKind::kMedia}) {
    const char *feature = CustomFactsOf(kind).feature;
    std::optional<SettingsSnapshot> snapshot;
    CurrentOption(G_PrinterFeatures_hash, feature, snapshot);
  }
}

std::optional<OptionList> G_GetOptionsForFeature(const CHash *features, const char *feature) {
  std::optional<SettingsSnapshot> snapshot;
  return GetOptionsForFeature(features, feature, snapshot);
}

std::optional<OptionList> GetOptionsForFeature(const CHash *features, const char *feature,
                                               std::optional<SettingsSnapshot> &snapshot) {
  const LogScope log("G_GetOptionsForFeature");
  if (features == nullptr || feature == nullptr) {
    Log(2, "The features or the feature are missing");
    EndProgram(5);
  }
  const CFeature *record = HashValue<CFeature>(features, feature);
  if (record == nullptr) {
    G_Report(nullptr, "ERR_UNEXPECTED2", {"CPrinter"});
    return std::nullopt;
  }
  OptionList list;
  list.current_option = CurrentOption(features, feature, snapshot);
  if (!snapshot) snapshot.emplace();
  ListBuilder builder(record, feature, *snapshot, list);
  builder.AddPrinterOptions();
  builder.AddCustomEntries();
  return list;
}

const CString *G_GetPPDDefaultOptionForFeature(const CHash *features, const char *feature) {
  const LogScope log("G_GetPPDDefaultOptionForFeature");
  return fGet_Default_Function(HashValue<CFeature>(features, feature));
}

int G_SetStringWithConstrain(std::string_view text, std::string &out, int mark) {
  const LogScope log("G_SetStringWithConstrain");
  if (mark == 0 || mark == 1) out.reserve(kMarkLength + text.size());
  if (mark == 0) out = kFreeMark;
  if (mark == 1) out = kConflictMark;
  out += text;
  return 1;
}

std::string TextWithoutMark(const std::string &display_string) {
  return display_string.size() <= kMarkLength ? "" : display_string.substr(kMarkLength);
}
