#include "presets.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "cfeature.h"
#include "cmessages.h"
#include "constraintmessages.h"
#include "cprintqueue.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "moreoptions.h"
#include "multipleup.h"
#include "optionchange.h"
#include "optionlists.h"
#include "optionstate.h"
#include "settingkeys.h"

namespace {

constexpr char L_OnePage[] = "1";
constexpr char L_OneCopy[] = "1";

// The settings that are no feature of a printer.
bool IsPagesKey(std::string_view key) {
  return key == kNupKey || key == kNupOrderKey || key == kBookletKey;
}
bool IsFeatureKey(std::string_view key) { return key != kCopiesKey && !IsPagesKey(key); }

// For its lifetime the preset's features are the queue's settings, and it has no others.
class AsSettings {
 public:
  explicit AsSettings(const Preset &preset)
      : settings_(CreateHash()), before_(std::exchange(G_QueueFeatures_hash, settings_.get())) {
    for (const auto &[key, value] : preset.settings) {
      if (!IsFeatureKey(key)) continue;
      IgnoreResult(HashPutText(settings_.get(), key.c_str(), value.c_str()), "it was just made");
    }
  }
  ~AsSettings() { G_QueueFeatures_hash = before_; }
  AsSettings(const AsSettings &) = delete;
  AsSettings &operator=(const AsSettings &) = delete;

 private:
  Owned<CHash> settings_;
  CHash *before_;
};

bool HasChoice(const std::string &key, const std::string &value) {
  if (IsOptionOf(G_PrinterFeatures_hash, key.c_str(), value.c_str())) return true;
  const CustomFacts *custom = CustomFactsOf(key.c_str());
  return custom != nullptr && HashFind(*custom->entries, value.c_str()) != nullptr;
}

std::string WhySettingMisfits(const std::string &key, const std::string &value) {
  if (key == kCopiesKey) return "";
  if (IsPagesKey(key)) {
    return CurrentQueueType().has_pages_a_sheet ? "" : G_Translate("PRESET_PAGES_LACKING");
  }
  const bool is_offered = HashFind(G_PrinterFeatures_hash, key.c_str()) != nullptr &&
                          IsOfferedFeature(key.c_str()) && IsPresetKey(key);
  if (!is_offered) return G_Message("PRESET_FEATURE_LACKING", {key.substr(1)});
  if (HasChoice(key, value)) return "";
  return G_Message("PRESET_CHOICE_LACKING", {FeatureDisplayText(key.c_str()), value});
}

// What the preset is called where it cannot be combined, with itself or what is installed.
std::string WhyCombined(const Preset &preset) {
  const AsSettings settings(preset);
  const std::optional<SettingsConflict> conflict = FindLinearConflict(G_QueueFeatures_hash);
  return conflict ? ConflictReason(*conflict) : "";
}

// Adds the setting if the preset, with it, is for the current queue.
bool AddIfFits(Preset &preset, const std::string &feature, const std::string &value) {
  Preset more = preset;
  more.settings[feature] = value;
  if (!WhyPresetMisfits(more).empty()) return false;
  preset = std::move(more);
  return true;
}

std::vector<std::string> ChoicesOf(const std::string &feature) {
  std::vector<std::string> choices;
  const CHash *options = fGet_Options_Function(PrinterFeature(feature.c_str()));
  for (const auto [option, text] : Pairs<CString>(options)) choices.emplace_back(option);
  return choices;
}

std::string DefaultOf(const std::string &feature) {
  return TextOf(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature.c_str()));
}

std::string InSmallLetters(std::string text) {
  for (char &c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// "600x300dpi" is 600.
int DotsPerInch(const std::string &choice) { return std::atoi(choice.c_str()); }

bool AddDraftQuality(Preset &preset) {
  const std::string quality = ShownFeature(kOutputModeKey);
  for (const char *word : {"draft", "fast"}) {
    for (const std::string &choice : ChoicesOf(quality)) {
      const bool is_it = InSmallLetters(choice).find(word) != std::string::npos;
      if (is_it && AddIfFits(preset, quality, choice)) return true;
    }
  }
  constexpr std::array kTonerSaving = {"*EconoMode", "*Economode", "*JCLEconomode", "*HPEconoMode",
                                       "*TonerSaver"};
  for (const char *feature : kTonerSaving) {
    for (const char *choice : {"On", "True"}) {
      if (AddIfFits(preset, feature, choice)) return true;
    }
  }
  return false;
}

// The lowest one below the printer's usual.
bool AddLowResolution(Preset &preset) {
  const std::string resolution = ShownFeature(kResolutionKey);
  std::string lowest = DefaultOf(resolution);
  for (const std::string &choice : ChoicesOf(resolution)) {
    const int dots = DotsPerInch(choice);
    if (dots > 0 && dots < DotsPerInch(lowest)) lowest = choice;
  }
  return lowest != DefaultOf(resolution) && AddIfFits(preset, resolution, lowest);
}

// Less toner, less time and, where the queue lays pages out, less paper.
Preset Draft() {
  Preset preset{G_Translate("PRESET_DRAFT"), {}};
  const bool has_quality = AddDraftQuality(preset);
  const bool has_resolution = AddLowResolution(preset);
  if (!has_quality && !has_resolution) return {};
  IgnoreResult(AddIfFits(preset, kNupKey, "2"), "an advantage of text queues");
  return preset;
}

// One staple at the beginning of the first line, whatever the maker calls it.
bool AddStaple(Preset &preset) {
  const std::string staple = ShownFeature(kStapleKey);
  const bool lies = QueueFeatureValue(kOrientationKey).find("Landscape") != std::string::npos;
  for (const char *choice : {lies ? "SingleLandscape" : "SinglePortrait", "UpperLeft", "LeftTop",
                             "TopLeft", "1PLU", "Front", "Left", "On", "True"}) {
    if (AddIfFits(preset, staple, choice)) return true;
  }
  return false;
}

// Where the usual bin does not take stapled sets, the first one that does.
void AddBin(Preset &preset) {
  const std::string bin = ShownFeature(kOutputBinKey);
  Preset usual = preset;
  if (AddIfFits(usual, bin, DefaultOf(bin))) return;
  for (const std::string &choice : ChoicesOf(bin)) {
    if (AddIfFits(preset, bin, choice)) return;
  }
}

Preset Handout() {
  Preset preset{G_Translate("PRESET_HANDOUT"), {}};
  if (!AddIfFits(preset, ShownFeature(kDuplexKey), "DuplexNoTumble")) return {};
  if (!AddStaple(preset)) return {};
  IgnoreResult(AddIfFits(preset, ShownFeature(kCollateKey), "True"), "some printers always do");
  AddBin(preset);
  return preset;
}

std::string SettingIn(const CHash *settings, const char *key) {
  const char *value = HashText(settings, key);
  return value == nullptr ? "" : value;
}

// What the administrator has set for the queue; null when that is not known.
const CHash *SettingsOfQueue() {
  const std::string name = TextOf(G_CurrentQueue_name.get());
  return fGet_Options_Function(HashValue<CPrintQueue>(G_OrgQueues_hash, name.c_str()));
}

void AddPages(Preset &preset, const CHash *usual) {
  if (!CurrentQueueType().has_pages_a_sheet) return;
  const bool is_booklet = CurrentMultipleUp() == kBookletKey;
  const std::string pages = is_booklet ? "" : CurrentMultipleUp();
  const bool was_booklet =
      SettingIn(usual, kBookletKey) == "1" && SettingIn(usual, kNupKey).empty();
  std::string usual_pages = was_booklet ? "" : SettingIn(usual, kNupKey);
  if (usual_pages.empty() && !was_booklet) usual_pages = L_OnePage;
  std::string usual_order = SettingIn(usual, kNupOrderKey);
  if (usual_order.empty()) usual_order = "Left";
  const bool has_order = CurrentOrderBoxes() != OrderBoxes::kNone;
  const bool is_other_order = has_order && CurrentNupOrder() != usual_order;
  if (is_booklet == was_booklet && pages == usual_pages && !is_other_order) return;
  if (is_booklet) {
    preset.settings[kBookletKey] = "1";
    return;
  }
  preset.settings[kNupKey] = pages.empty() ? L_OnePage : pages;
  if (has_order) preset.settings[kNupOrderKey] = CurrentNupOrder();
}

void SetPages(const Preset &preset) {
  const auto value = [&preset](const char *key) {
    const auto place = preset.settings.find(key);
    return place == preset.settings.end() ? std::string() : place->second;
  };
  std::string pages = value(kNupKey);
  if (value(kBookletKey) == "1") pages = kBookletKey;
  // Without number of pages it says that a booklet is not wanted.
  if (pages.empty() && value(kBookletKey) == "0" && CurrentMultipleUp() == kBookletKey) {
    pages = L_OnePage;
  }
  if (pages.empty() || ChooseMultipleUp(pages) == OrderBoxes::kNone) return;
  const std::string order = value(kNupOrderKey);
  ChooseNupOrder(order.empty() ? "Left" : order);
}

void SetAll(const Preset &preset) {
  for (const auto &[key, value] : preset.settings) {
    if (!IsFeatureKey(key)) continue;
    IgnoreResult(ChooseOption(key.c_str(), value), "it may be the choice already");
    NoteUserChoice(key.c_str());
  }
  SetPages(preset);
  const auto copies = preset.settings.find(kCopiesKey);
  if (copies != preset.settings.end()) {
    SetQueueValue(G_QueueFeatures_hash, kCopiesKey, copies->second);
  }
}

// The first setting of the preset's that cannot be combined with another.
std::optional<SettingsConflict> ConflictWith(const Preset &preset) {
  const SettingsSnapshot snapshot;
  for (const auto &[key, value] : preset.settings) {
    if (!IsFeatureKey(key)) continue;
    const Setting *other = snapshot.ConflictOf(key.c_str(), value.c_str());
    if (other != nullptr) return SettingsConflict{key, value, other->feature, other->option};
  }
  return std::nullopt;
}

// Has what cannot be combined with the preset give way; why that cannot be, in words.
std::string MakeRoomFor(const Preset &preset, std::vector<ResolvedConflict> &others) {
  while (const std::optional<SettingsConflict> conflict = ConflictWith(preset)) {
    const std::optional<ResolvedConflict> resolved = ResolveConflict(*conflict);
    if (!resolved || preset.settings.contains(resolved->feature)) return ConflictReason(*conflict);
    others.push_back(*resolved);
  }
  return "";
}

std::string Words(const std::string &name, const std::string &value) {
  return G_Message("PRESET_SETTING", {name, value});
}

// As the Options tab has it: a number, a page order, the booklet.
std::string PagesWord(const std::string &key, const std::string &value) {
  struct Row {
    const char *key, *value, *text_key;
  };
  constexpr std::array<Row, 6> kRows = {{{kNupOrderKey, "Left", "DEF_BTN_LEFT_TITLE"},
                                         {kNupOrderKey, "Right", "DEF_BTN_RIGHT_TITLE"},
                                         {kNupOrderKey, "Down", "DEF_BTN_DOWN_TITLE"},
                                         {kNupOrderKey, "Back", "DEF_BTN_BACK_TITLE"},
                                         {kBookletKey, "1", "DEF_BTN_BOOKLET_TITLE"},
                                         {kBookletKey, "0", "DEF_BTN_1UP_TITLE"}}};
  for (const Row &row : kRows) {
    if (key == row.key && value == row.value) return G_Translate(row.text_key);
  }
  return value;
}

// Puts the copy's texts in the place of those of the queue's own dictionary.
void PutBack(const CHash *copy) {
  std::vector<std::string> keys;
  for (const auto [key, value] : Pairs<CString>(G_QueueFeatures_hash)) keys.emplace_back(key);
  for (const std::string &key : keys) HashRemove(G_QueueFeatures_hash, key.c_str());
  for (const auto [key, value] : Pairs<CString>(copy)) {
    SetQueueValue(G_QueueFeatures_hash, key, TextOf(value));
  }
}

}  // namespace

std::string WhyPresetMisfits(const Preset &preset) {
  for (const auto &[key, value] : preset.settings) {
    std::string reason = WhySettingMisfits(key, value);
    if (!reason.empty()) return reason;
  }
  return WhyCombined(preset);
}

bool IsBuiltInPresetName(const std::string &name) {
  return name == G_Translate("PRESET_DRAFT") || name == G_Translate("PRESET_HANDOUT");
}

std::vector<Preset> BuiltInPresets() {
  const LogScope log("BuiltInPresets");
  std::vector<Preset> presets;
  for (Preset &preset : std::array{Draft(), Handout()}) {
    if (!preset.settings.empty()) presets.push_back(std::move(preset));
  }
  return presets;
}

PresetResult ApplyPreset(const Preset &preset) {
  const LogScope log("ApplyPreset");
  PresetResult result{WhyPresetMisfits(preset)};
  if (!result.refusal.empty()) return result;
  const Owned<CHash> before = CloneOf(G_QueueFeatures_hash);
  std::vector<std::string> choices = UserChoices();
  SetAll(preset);
  result.refusal = MakeRoomFor(preset, result.others);
  if (result.refusal.empty()) return result;
  result.others.clear();
  PutBack(before.get());
  SetUserChoices(std::move(choices));
  return result;
}

Preset PresetOfSettings(const std::string &name, int copies) {
  const LogScope log("PresetOfSettings");
  Preset preset{name, {}};
  const CHash *usual = SettingsOfQueue();
  for (const auto [feature, value] : Pairs<CString>(G_QueueFeatures_hash)) {
    if (HashFind(G_PrinterFeatures_hash, feature) == nullptr) continue;
    const std::string chosen = TextOf(value);
    std::string before = SettingIn(usual, feature);
    if (before.empty()) before = DefaultOf(feature);
    if (chosen == before || !WhySettingMisfits(feature, chosen).empty()) continue;
    preset.settings[feature] = chosen;
  }
  AddPages(preset, usual);
  std::string usual_copies = SettingIn(usual, kCopiesKey);
  if (usual_copies.empty()) usual_copies = L_OneCopy;
  if (std::to_string(copies) != usual_copies) preset.settings[kCopiesKey] = std::to_string(copies);
  return preset;
}

std::vector<std::string> PresetWords(const Preset &preset) {
  std::vector<std::string> lines;
  for (const auto &[key, value] : preset.settings) {
    const char *feature = key.c_str();
    if (key == kCopiesKey) {
      lines.push_back(std::string(G_Translate("DEF_LBL_COPIES")) + " " + value);
    } else if (IsPagesKey(key)) {
      lines.push_back(Words(G_Translate("DEF_LBL_MULTIPLEUP_TITLE"), PagesWord(key, value)));
    } else {
      lines.push_back(
          Words(FeatureDisplayText(feature), OptionDisplayText(feature, value.c_str())));
    }
  }
  return lines;
}
