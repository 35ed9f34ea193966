#include "featuretable.h"

#include <algorithm>

#include "settingkeys.h"

const std::vector<ListedFeature> &ListedFeatures() {
  // clang-format off
  static const std::vector<ListedFeature> features = {
      // feature, name, page, row, label, picture, turns, exempt, Defaults: place and name
      {kPageSizeKey, "PaperSize", Page::kSetup, 0, "DEF_LBL_PAPERSIZE", true, false, false, 0, "Paper size"},
      {kMediaTypeKey, "PaperType", Page::kSetup, 1, "DEF_LBL_PAPERTYPE", true, false, false, 1, "Paper type"},
      {kInputSlotKey, "PaperSource", Page::kSetup, 2, "DEF_LBL_PAPERSOURCE", true, false, false, 2, "Paper source"},
      {kCollateKey, "Collate", Page::kSetup, 3, "DEF_LBL_COLLATE", true, false, false, 3, "Collation"},
      {kDuplexKey, "Duplex", Page::kSetup, 4, "DEF_LBL_DUPLEX", true, true, false, 4, "Duplex"},
      {kOutputBinKey, "OutputBin", Page::kOutput, 0, "DEF_LBL_OUTPUTBIN", true, false, false, 0, "Output bin"},
      {kJogKey, "Jog", Page::kOutput, 1, "DEF_LBL_JOG", true, false, false, 1, "Jog"},
      {kStapleKey, "Staple", Page::kOutput, 2, "DEF_LBL_STAPLE", true, true, false, 3, "Staple"},
      {kPunchKey, "Punch", Page::kOutput, 3, "DEF_LBL_PUNCH", true, true, false, 4, "Punch"},
      {kOrientationKey, "Orientation", Page::kOutput, 4, "DEF_LBL_ORIENTATION", true, false, true, 2, "StaplePunchOrientation"},
      {kEdgeToEdgeKey, "EdgeToEdge", Page::kOutput, 5, "DEF_LBL_EDGETOEDGE", true, false, true, 5, "EdgeToEdge"},
      {kResolutionKey, "Resolution", Page::kOptions, 0, "DEF_LBL_RESOLUTION", false, false, false, 0, "Resolution"},
      {kOutputModeKey, "PrintQuality", Page::kOptions, 1, "DEF_LBL_PRINTQUALITY", false, false, true, 1, "Print quality"},
      {kHalfToneKey, "Halftone", Page::kOptions, 2, "DEF_LBL_HALFTONE", false, false, true, 2, "Halftone"},
      {kDeliveryKey, "Delivery", Page::kDestination, 2, "DEF_LBL_DELIVERY", false, false, true, 0, "Delivery type"},
      {kNotificationKey, "EmailNotifType", Page::kDestination, 0, "DEF_LBL_EMAILTYPE", false, false, true, 1, "Email notification"},
  };
  // clang-format on
  return features;
}

const ListedFeature *FindListedFeature(std::string_view feature) {
  for (const ListedFeature &listed : ListedFeatures()) {
    if (feature == listed.feature) return &listed;
  }
  return nullptr;
}

std::vector<const ListedFeature *> DefaultsOfPage(Page page) {
  std::vector<const ListedFeature *> features;
  for (const ListedFeature &listed : ListedFeatures()) {
    if (listed.page == page) features.push_back(&listed);
  }
  std::sort(features.begin(), features.end(), [](const auto *one, const auto *two) {
    return one->default_place < two->default_place;
  });
  return features;
}
