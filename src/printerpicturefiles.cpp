#include "printerpicturefiles.h"

#include <vector>

#include "cfeature.h"
#include "debug.h"
#include "optionstate.h"
#include "pixmapnames.h"
#include "settingkeys.h"

namespace {

constexpr char L_Extension[] = ".xpm";

const std::array<std::vector<const char *>, kPrinterOptionGroups> &Groups() {
  static const std::array<std::vector<const char *>, kPrinterOptionGroups> kGroups = {
      {{kFeederKey}, {kFinisherKey}, {kTray4Key, kBypassTrayKey}}};
  return kGroups;
}

bool IsInstalled(const char *feature) {
  const char *value = HashText(G_QueueInstallableOptions_hash, feature);
  const std::string text = value == nullptr ? "" : value;
  return !text.empty() && text != "False" && text != "None";
}

std::vector<const char *> InstalledIn(size_t group) {
  std::vector<const char *> installed;
  for (const char *feature : Groups().at(group)) {
    if (IsInstalled(feature)) installed.push_back(feature);
  }
  return installed;
}

// "_OptionTray4_OptionBypassTray"; empty when nothing is installed.
std::string Suffix(size_t group) {
  std::string suffix;
  for (const char *feature : InstalledIn(group)) suffix += std::string("_") + (feature + 1);
  return suffix;
}

std::string Existing(const std::string &of_model, const std::string &of_all) {
  if (IsPicture(of_model)) return of_model;
  return IsPicture(of_all) ? of_all : "";
}

}  // namespace

PrinterPictureFiles CurrentPrinterPictureFiles() {
  const LogScope log("CurrentPrinterPictureFiles");
  const std::string all = "Printer";
  const std::string model = all + "_" + std::to_string(G_PrinterModel);
  PrinterPictureFiles picture;
  picture.base = Existing(model + L_Extension, all + L_Extension);
  if (picture.base.empty()) picture.base = all + L_Extension;
  for (size_t group = 0; group < kPrinterOptionGroups; ++group) {
    const std::string suffix = Suffix(group);
    if (suffix.empty()) continue;
    picture.overlays.at(group) = Existing(model + suffix + L_Extension, all + suffix + L_Extension);
  }
  return picture;
}

std::string InstalledOfGroup(size_t group) {
  std::string texts;
  for (const char *feature : InstalledIn(group)) {
    const CFeature *record = HashValue<CFeature>(G_PrinterInstallableOptions_hash, feature);
    const char *text = fGet_CString_Value_Function(fGet_Translation_Function(record));
    if (!texts.empty()) texts += ", ";
    texts += text == nullptr ? feature + 1 : text;
  }
  return texts;
}

bool IsInPrinterPicture(const std::string &feature) {
  for (const auto &group : Groups()) {
    for (const char *one : group) {
      if (feature == one) return true;
    }
  }
  return false;
}
