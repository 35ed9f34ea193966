#include "optionchange.h"

#include <cstring>

#include "cfeature.h"
#include "conflictresolution.h"
#include "debug.h"
#include "optionlists.h"
#include "optionstate.h"
#include "pixmapnames.h"

namespace {

struct Choice {
  std::string option;
  bool is_custom = false;
};

// The queue's own sizes or media that the feature's list offers too; null for other features.
const CHash *CustomEntriesOf(const char *feature) {
  if (std::strcmp(feature, "*PageSize") == 0) return G_QueueCustomPapers_hash;
  if (std::strcmp(feature, "*MediaType") == 0) return G_QueueCustomMedias_hash;
  return nullptr;
}

bool TakesCustomEntries(const char *feature) {
  return std::strcmp(feature, "*PageSize") == 0 || std::strcmp(feature, "*MediaType") == 0;
}

std::optional<Choice> ChoiceWithText(const char *feature, const std::string &text) {
  const CFeature *record = HashValue<CFeature>(G_PrinterFeatures_hash, feature);
  for (const auto [option, display] : Pairs<CString>(fGet_Options_Function(record))) {
    const char *shown = fGet_CString_Value_Function(display);
    if (shown != nullptr && text == shown) return Choice{option};
  }
  if (!TakesCustomEntries(feature)) return std::nullopt;
  if (HashFind(CustomEntriesOf(feature), text.c_str()) != nullptr) return Choice{text, true};
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature));
  if (usual == nullptr) return std::nullopt;
  return Choice{usual};
}

// Two pages a sheet: the page order follows the orientation.
NupOrderBoxes FollowOrientation(const std::string &before, const std::string &option) {
  if (QueueFeatureValue("*Nup") != "2") return NupOrderBoxes::kLeave;
  if (option == "Portrait") {
    return before == "Portrait" ? NupOrderBoxes::kLeave : NupOrderBoxes::kShowLeftAndRight;
  }
  if (option != "Landscape" && option != "RotLandscape") return NupOrderBoxes::kLeave;
  SetQueueValue(G_QueueFeatures_hash, "*NupOrder", option == "Landscape" ? "Left" : "Right");
  return NupOrderBoxes::kHideAll;
}

}  // namespace

std::optional<OptionChange> ChangeOption(const char *feature, const std::string &display_string) {
  const LogScope log("ChangeOption");
  const std::string text = TextWithoutMark(display_string);
  if (text.empty()) return std::nullopt;
  const std::optional<Choice> choice = ChoiceWithText(feature, text);
  if (!choice) return std::nullopt;
  const std::string before = QueueFeatureValue(feature);
  if (choice->option == before) return std::nullopt;
  OptionChange change{choice->option, choice->is_custom, NupOrderBoxes::kLeave};
  change.order_boxes = FollowOrientation(before, choice->option);
  SetQueueValue(G_QueueFeatures_hash, feature, choice->option);
  NoteUserChoice(feature);
  return change;
}

std::string PictureOfChoice(const char *feature, const std::string &option, bool is_custom) {
  if (is_custom && std::strcmp(feature, "*PageSize") == 0) return "cps.xpm";
  if (is_custom && std::strcmp(feature, "*MediaType") == 0) return "cmt.xpm";
  return G_GetPixmapNameFor(feature, option);
}

bool ChangesInstallableMarks(const char *feature) { return !IsExemptFeature(feature); }
