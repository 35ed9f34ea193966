#include "queuesettings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "cfeature.h"
#include "cmessages.h"
#include "conflictresolution.h"
#include "cprintqueue.h"
#include "customentries.h"
#include "customsizes.h"
#include "destination.h"
#include "emailaddress.h"
#include "entryfilters.h"
#include "fontmap.h"
#include "ignoreresult.h"
#include "jobrules.h"
#include "multipleup.h"
#include "optionchange.h"
#include "optionlists.h"
#include "optionstate.h"
#include "output.h"
#include "ownsettings.h"
#include "properties.h"
#include "queueform.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textoptions.h"
#include "textscan.h"

namespace kpx::ctl {

namespace {

Fault BadValue(const std::string &key, const std::string &value) {
  return {kFailed, G_Message("CTL_VALUE_BAD", {key, value})};
}

// Lists what a setting can be.
Fault NoChoice(const std::string &key, const std::string &value, const std::string &choices) {
  return {kFailed, G_Message("CTL_CHOICE_UNKNOWN", {key, value, choices})};
}

std::string ChoicesOfFeature(const char *feature) {
  std::vector<std::string> choices;
  for (const auto [option, text] : Pairs<CString>(fGet_Options_Function(PrinterFeature(feature)))) {
    choices.emplace_back(option);
  }
  if (const CustomFacts *custom = CustomFactsOf(feature)) {
    for (const auto [name, entry] : Pairs<CCpsParams>(*custom->entries)) choices.emplace_back(name);
  }
  return JoinedWords(choices);
}

std::optional<Fault> SetFeature(const char *feature, const std::string &value) {
  if (value.empty()) {
    IgnoreResult(ResetFeature(feature), "a feature without a default stays as it is");
    return std::nullopt;
  }
  if (QueueFeatureValue(feature) == value || ChooseOption(feature, value)) return std::nullopt;
  return NoChoice(OuterKey(feature), value, ChoicesOfFeature(feature));
}

std::optional<Fault> SetInstallable(const char *feature, const std::string &value) {
  const CHash *features = G_PrinterInstallableOptions_hash;
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(features, feature));
  const std::string wanted = value.empty() && usual != nullptr ? usual : value;
  if (!IsOptionOf(features, feature, wanted.c_str())) {
    return NoChoice(OuterKey(feature), value, ChoicesOfFeature(feature));
  }
  SetQueueValue(G_QueueInstallableOptions_hash, feature, wanted);
  NoteUserChoice(feature);
  return std::nullopt;
}

void SetOrRemove(const char *key, const std::string &value) {
  if (value.empty()) {
    HashRemove(G_QueueFeatures_hash, key);
  } else {
    SetQueueValue(G_QueueFeatures_hash, key, value);
  }
}

void SetMultipleUp(const std::string_view key, const std::string &value) {
  if (key == kNupOrderKey) return ChooseNupOrder(value);
  std::string choice = key == kBookletKey ? kBookletKey : value;
  if (key == kBookletKey && value == "0") {
    if (CurrentMultipleUp() != kBookletKey) return;
    choice = "1";
  }
  if (ChooseMultipleUp(choice) != OrderBoxes::kNone) ChooseNupOrder("Left");
}

bool IsText(const std::string &text, int most, std::string (*filter)(std::string_view inserted)) {
  return filter(text) == text && CharacterCount(text) <= most &&
         std::none_of(text.begin(), text.end(), IsControlCharacter);
}

int LongestText(std::string_view key) {
  if (key == kJobNameKey) return kJobNameLength;
  return key == kUserNameKey ? kUserNameLength : kEmailTextLength;
}

// Tidies an e-mail address.
bool IsGoodText(const OwnSetting &setting, std::string &value) {
  std::string font, style;
  switch (setting.kind) {
    case OwnKind::Choice:
      return std::find(setting.choices.begin(), setting.choices.end(), value) !=
             setting.choices.end();
    case OwnKind::Font:
      return GetGuiFont(value.c_str(), &font, &style) == 1;
    case OwnKind::FontSize:
      return ClampedFontSize(value) == value;
    case OwnKind::JobText:
      return IsText(value, LongestText(setting.key), FilterJobText);
    case OwnKind::Pin:
      return IsPin(value);
    case OwnKind::Email:
      return IsText(value, kEmailTextLength, FilterEmailAddress) &&
             IsValidEmailAddresses(value, true) != 0;
  }
  return false;
}

std::optional<Fault> SetOwn(const OwnSetting &setting, std::string value) {
  const std::string key = OuterKey(setting.key);
  if (!HasOwnSetting(CurrentQueueType(), setting)) {
    return Fault{kFailed,
                 G_Message("CTL_KEY_OTHER_QUEUES", {key, TextOf(G_CurrentQueue_name.get())})};
  }
  if (setting.kind == OwnKind::Choice && value.empty()) value = setting.usual;
  if (!value.empty() && !IsGoodText(setting, value)) {
    if (setting.choices.empty()) return BadValue(key, value);
    return NoChoice(key, value, JoinedWords({setting.choices.begin(), setting.choices.end()}));
  }
  if (setting.kind == OwnKind::Choice) {
    SetMultipleUp(setting.key, value);
  } else {
    SetOrRemove(setting.key, value);
  }
  return std::nullopt;
}

// The fault of a new entry's name, or that there is no room for it.
std::optional<Fault> FaultOfCustom(CustomKind kind, const std::string &key,
                                   const std::string &name) {
  const bool is_there = HashFind(CustomEntries(kind), name.c_str()) != nullptr;
  const CustomNameFault fault = CheckCustomName(kind, name, is_there ? name.c_str() : nullptr);
  if (const char *message = CustomNameMessage(kind, fault)) {
    return Fault{kFailed, key + ": " + G_Translate(message)};
  }
  const auto filter = kind == CustomKind::kPaper ? FilterCustomPaperName : FilterCustomMediaName;
  if (fault != CustomNameFault::kNone || !IsText(name, kCustomNameLength, filter)) {
    return BadValue(key, name);
  }
  const auto count = static_cast<int>(CustomEntries(kind)->index.size());
  if (is_there || CustomButtonsFor(kind, count, 0).add) return std::nullopt;
  return Fault{kFailed, G_Message("CTL_CUSTOM_FULL", {key})};
}

// "210x297mm": the two measures in pels; nothing for another text.
std::optional<std::pair<double, double>> PaperOf(std::string_view text) {
  struct Unit {
    std::string_view name;
    MeasureUnit unit;
  };
  constexpr Unit kUnits[] = {{"mm", kMillimetres}, {"in", kInches}, {"pt", kPels}, {"", kPels}};
  const auto *unit = std::find_if(std::begin(kUnits), std::end(kUnits),
                                  [&](const Unit &row) { return text.ends_with(row.name); });
  text.remove_suffix(unit->name.size());
  const size_t cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  const auto number = [&](std::string_view digits) {
    double value = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool whole = read.ec == std::errc() && read.ptr == digits.data() + digits.size();
    return whole && std::isfinite(value) ? ConvertMetrics(unit->unit, kPels, value) : 0;
  };
  const double width = number(text.substr(0, cross));
  const double length = number(text.substr(cross + 1));
  if (width < 1 || length < 1) return std::nullopt;
  return std::pair(width, length);
}

bool IsWithin(double value, const char *least, const char *most) {
  const MeasureRange range = EnterableRange(kPels, PrinterLimit(least), PrinterLimit(most));
  return value >= range.min && value <= range.max;
}

std::optional<Fault> SetPaper(const std::string &key, const std::string &name,
                              const std::string &value) {
  if (auto fault = FaultOfCustom(CustomKind::kPaper, key, name)) return fault;
  const auto measures = PaperOf(value);
  if (!measures) return BadValue(key, value);
  const auto [width, length] = *measures;
  if (!IsWithin(width, "MinWidth", "MaxWidth") || !IsWithin(length, "MinLength", "MaxLength")) {
    std::string widths, lengths;
    BuildRange(PrinterLimit("MinWidth"), PrinterLimit("MaxWidth"), kMillimetres, widths);
    BuildRange(PrinterLimit("MinLength"), PrinterLimit("MaxLength"), kMillimetres, lengths);
    return Fault{kFailed, G_Message("CTL_PAPER_RANGE", {key, widths, lengths})};
  }
  AddCustomPaper(name, width, length);
  return std::nullopt;
}

std::optional<Fault> SetMedia(const std::string &key, const std::string &name,
                              const std::string &value) {
  if (auto fault = FaultOfCustom(CustomKind::kMedia, key, name)) return fault;
  if (!IsText(value, kCustomNameLength, [](std::string_view text) { return std::string(text); })) {
    return BadValue(key, value);
  }
  IgnoreResult(HashPut(G_QueueCustomMedias_hash, name.c_str(),
                       CreateCmtParams(CreateStringWithValue(value.c_str()))),
               "the dictionary is there");
  return std::nullopt;
}

std::optional<Fault> SetCustom(const std::string &key, const std::string &value) {
  const bool is_paper = key.starts_with(kPaperPrefix);
  const std::string name = key.substr((is_paper ? kPaperPrefix : kMediaPrefix).size());
  if (value.empty()) {
    HashRemove(CustomEntries(is_paper ? CustomKind::kPaper : CustomKind::kMedia), name.c_str());
    return std::nullopt;
  }
  return is_paper ? SetPaper(key, name, value) : SetMedia(key, name, value);
}

}  // namespace

bool IsCustomKey(std::string_view key) {
  return key.starts_with(kPaperPrefix) || key.starts_with(kMediaPrefix);
}

std::optional<Fault> SetSetting(const std::string &key, const std::string &value) {
  if (IsCustomKey(key)) return SetCustom(key, value);
  if (key == "address") {
    if (auto fault = FaultOfAddress(value)) return fault;
    IgnoreResult(
        fSet_Address_Function(G_CurrentQueue.get(), CreateStringWithValue(value.c_str()).get()),
        "the record is there");
    return std::nullopt;
  }
  const std::string inner = "*" + OuterKey(key);
  if (const OwnSetting *own = FindOwnSetting(CurrentQueueType(), inner)) {
    return SetOwn(*own, value);
  }
  if (HashFind(G_PrinterFeatures_hash, inner.c_str()) != nullptr) {
    return SetFeature(inner.c_str(), value);
  }
  if (HashFind(G_PrinterInstallableOptions_hash, inner.c_str()) != nullptr) {
    return SetInstallable(inner.c_str(), value);
  }
  const std::string name = TextOf(G_CurrentQueue_name.get());
  return Fault{kFailed, G_Message("CTL_KEY_UNKNOWN", {key, name, name})};
}

}  // namespace kpx::ctl
