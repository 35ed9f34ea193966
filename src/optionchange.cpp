#include "optionchange.h"

#include "cfeature.h"
#include "conflictresolution.h"
#include "debug.h"
#include "optionlists.h"
#include "optionstate.h"
#include "pixmapnames.h"
#include "settingkeys.h"

namespace {

struct Choice {
  std::string option;
  bool is_custom = false;
};

std::optional<Choice> ChoiceWithText(const char *feature, const std::string &text) {
  const CFeature *record = HashValue<CFeature>(G_PrinterFeatures_hash, feature);
  for (const auto [option, display] : Pairs<CString>(fGet_Options_Function(record))) {
    const char *shown = fGet_CString_Value_Function(display);
    if (shown != nullptr && text == shown) return Choice{option};
  }
  const CustomFacts *custom = CustomFactsOf(feature);
  if (custom == nullptr) return std::nullopt;
  if (HashFind(*custom->entries, text.c_str()) != nullptr) return Choice{text, true};
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature));
  if (usual == nullptr) return std::nullopt;
  return Choice{usual};
}

// Two pages a sheet: the page order follows the orientation.
std::optional<OrderBoxes> FollowOrientation(const std::string &before, const std::string &option) {
  if (QueueFeatureValue(kNupKey) != "2") return std::nullopt;
  if (option == "Portrait") {
    if (before == "Portrait") return std::nullopt;
    return OrderBoxes::kLeftAndRight;
  }
  if (option != "Landscape" && option != "RotLandscape") return std::nullopt;
  SetQueueValue(G_QueueFeatures_hash, kNupOrderKey, option == "Landscape" ? "Left" : "Right");
  return OrderBoxes::kNone;
}

std::optional<OptionChange> Choose(const char *feature, const Choice &choice) {
  const std::string before = QueueFeatureValue(feature);
  if (choice.option == before) return std::nullopt;
  OptionChange change{choice.option, choice.is_custom, std::nullopt};
  change.order_boxes = FollowOrientation(before, choice.option);
  SetQueueValue(G_QueueFeatures_hash, feature, choice.option);
  NoteUserChoice(feature);
  return change;
}

}  // namespace

std::optional<OptionChange> ChangeOption(const char *feature, const std::string &display_string) {
  const LogScope log("ChangeOption");
  const std::string text = TextWithoutMark(display_string);
  if (text.empty()) return std::nullopt;
  const std::optional<Choice> choice = ChoiceWithText(feature, text);
  return choice ? Choose(feature, *choice) : std::nullopt;
}

std::optional<OptionChange> ChooseOption(const char *feature, const std::string &option) {
  const LogScope log("ChooseOption");
  const CustomFacts *custom = CustomFactsOf(feature);
  const bool is_custom = IsCustomChoice(feature, option.c_str()) &&
                         HashFind(*custom->entries, option.c_str()) != nullptr;
  if (!is_custom && !IsOptionOf(G_PrinterFeatures_hash, feature, option.c_str())) {
    return std::nullopt;
  }
  return Choose(feature, {option, is_custom});
}

std::string PictureOfChoice(const char *feature, const std::string &option, bool is_custom) {
  const CustomFacts *custom = CustomFactsOf(feature);
  return is_custom && custom != nullptr ? custom->picture : G_GetPixmapNameFor(feature, option);
}

bool ChangesInstallableMarks(const char *feature) { return !IsExemptFeature(feature); }
