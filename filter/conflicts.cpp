#include "conflicts.h"

#include "ppdconstraints.h"
#include "settingkeys.h"

namespace kpx::filter {

namespace {

bool IsDefault(const JobSettings &settings, const std::string &feature, const std::string &option) {
  const PpdFeature *found = settings.Model().FindFeature(feature.substr(1));
  return found != nullptr && !found->choices.empty() && found->DefaultChoice().keyword == option;
}

// The setting as an option file has it.
std::string SettingText(const JobSettings &settings, const std::string &feature,
                        const std::string &option) {
  if (feature == kCustomPageSizeFeature)
    return "\"*PageSize=" + settings.PaperName().value_or("") + "\"";
  if (feature == kCustomMediaTypeFeature)
    return "\"*MediaType=" + settings.MediaName().value_or("") + "\"";
  return "\"" + feature + "=" + option + "\"";
}

}  // namespace

bool IsInForce(const JobSettings &settings, const std::string &feature, const std::string &option) {
  if (feature == kCustomPageSizeFeature) return settings.Paper().has_value();
  if (feature == kCustomMediaTypeFeature) return settings.MediaName().has_value();
  const PpdChoice *choice = settings.Chosen(feature.substr(1));
  return choice != nullptr && choice->keyword == option;
}

std::vector<std::string> ConflictTexts(const JobSettings &settings) {
  std::vector<std::string> texts;
  for (const OptionPair &pair : ExpandConstraints(settings.Model()).pairs) {
    if (!IsInForce(settings, pair.feature1, pair.option1) ||
        !IsInForce(settings, pair.feature2, pair.option2) ||
        (IsDefault(settings, pair.feature1, pair.option1) &&
         IsDefault(settings, pair.feature2, pair.option2))) {
      continue;
    }
    texts.push_back(SettingText(settings, pair.feature1, pair.option1) + " and " +
                    SettingText(settings, pair.feature2, pair.option2) +
                    " exclude each other: the printer may leave one of them out");
  }
  return texts;
}

}  // namespace kpx::filter
