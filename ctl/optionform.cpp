#include "optionform.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "cfeature.h"
#include "constraintmessages.h"
#include "fontmap.h"
#include "globals.h"
#include "optionlists.h"
#include "optionstate.h"
#include "output.h"
#include "ownsettings.h"
#include "queueform.h"
#include "textline.h"
#include "textoptions.h"

namespace kpx::ctl {

namespace {

OptionChoice ChoiceOf(const char *feature, const char *option, const SettingsSnapshot &snapshot) {
  OptionChoice choice{option, OptionDisplayText(feature, option), ""};
  if (const Setting *conflict = snapshot.ConflictOf(feature, option)) {
    choice.reason = ConflictReason({feature, option, conflict->feature, conflict->option});
  }
  return choice;
}

QueueOption OptionOf(const char *feature, const CFeature &record, const CHash *settings,
                     const SettingsSnapshot &snapshot) {
  QueueOption option{.key = OuterKey(feature), .text = FeatureDisplayText(feature)};
  const char *value = HashText(settings, feature);
  option.value = value == nullptr ? TextOf(fGet_Default_Function(&record)) : value;
  for (const auto [choice, text] : Pairs<CString>(fGet_Options_Function(&record))) {
    option.choices.push_back(ChoiceOf(feature, choice, snapshot));
  }
  return option;
}

// The queue's own sizes or media types, which the feature offers beside the printer's.
void AddCustomChoices(const char *feature, const SettingsSnapshot &snapshot, QueueOption &option) {
  const CustomFacts *facts = CustomFactsOf(feature);
  if (facts == nullptr) return;
  for (const auto [name, entry] : Pairs<CCpsParams>(*facts->entries)) {
    option.choices.push_back(ChoiceOf(feature, name, snapshot));
  }
}

std::vector<OptionChoice> FontChoices() {
  std::vector<OptionChoice> choices;
  for (const std::string &font : FontNames()) {
    for (const std::string &style : FontStyles(font)) {
      const char *name = GetAfmFontName(font.c_str(), style.c_str());
      if (name != nullptr) choices.push_back({name, font + " " + style, ""});
    }
  }
  return choices;
}

QueueOption OwnOption(const OwnSetting &setting) {
  QueueOption option{.key = OuterKey(setting.key)};
  option.value = QueueFeatureValue(setting.key);
  if (option.value.empty()) option.value = setting.usual;
  for (const char *choice : setting.choices) option.choices.push_back({choice, choice, ""});
  if (setting.kind == OwnKind::Font) option.choices = FontChoices();
  option.value = ShownValue(option.key, option.value);
  return option;
}

void PrintChoice(const OptionChoice &choice, bool is_current, size_t width) {
  std::string line = std::string("  ") + (is_current ? '*' : ' ') +
                     (choice.reason.empty() ? ' ' : '!') + " " + choice.value;
  if (choice.text != choice.value) {
    line.append(width - std::min(width, choice.value.size()) + 2, ' ');
    line += choice.text;
  }
  PrintLine(line);
  if (!choice.reason.empty()) PrintLine("       " + choice.reason);
}

}  // namespace

std::vector<QueueOption> OptionsOfCurrentQueue() {
  std::vector<QueueOption> options;
  RepairCustomChoices();
  const SettingsSnapshot snapshot;
  for (const auto [feature, record] : Pairs<CFeature>(G_PrinterFeatures_hash)) {
    if (record == nullptr || !IsOfferedFeature(feature)) continue;
    options.push_back(OptionOf(feature, *record, G_QueueFeatures_hash, snapshot));
    AddCustomChoices(feature, snapshot, options.back());
  }
  for (const auto [feature, record] : Pairs<CFeature>(G_PrinterInstallableOptions_hash)) {
    if (record == nullptr) continue;
    options.push_back(OptionOf(feature, *record, G_QueueInstallableOptions_hash, snapshot));
    options.back().is_installable = true;
  }
  for (const OwnSetting &setting : OwnSettings()) {
    if (HasOwnSetting(CurrentQueueType(), setting)) options.push_back(OwnOption(setting));
  }
  return options;
}

void PrintOptions(const std::vector<QueueOption> &options) {
  for (const QueueOption &option : options) {
    PrintLine(option.key + "=" + option.value + (option.text.empty() ? "" : "  " + option.text));
    size_t width = 0;
    for (const OptionChoice &choice : option.choices) width = std::max(width, choice.value.size());
    for (const OptionChoice &choice : option.choices) {
      PrintChoice(choice, choice.value == option.value, width);
    }
  }
}

Json FormOfOptions(const std::vector<QueueOption> &options) {
  Json json = Json::array();
  for (const QueueOption &option : options) {
    Json form = {{"key", option.key}, {"value", option.value}};
    if (!option.text.empty()) form["text"] = option.text;
    if (option.is_installable) form["installable"] = true;
    for (const OptionChoice &choice : option.choices) {
      Json row = {{"value", choice.value}, {"text", choice.text}};
      if (!choice.reason.empty()) row["conflict"] = choice.reason;
      form["choices"].push_back(std::move(row));
    }
    json.push_back(std::move(form));
  }
  return json;
}

std::string PaperText(const CCpsParams &size) {
  return WholeNumber(fGetWidth_Function(&size)) + "x" + WholeNumber(fGetLength_Function(&size)) +
         "pt";
}

}  // namespace kpx::ctl
