#include "pixmapnames.h"

#include <filesystem>
#include <string_view>

#include "cprintqueue.h"
#include "debug.h"
#include "featuretable.h"
#include "optionstate.h"
#include "paths.h"
#include "printermodels.h"
#include "settingkeys.h"

namespace {

constexpr size_t L_MakerPrefix = 3;  // "vek"

std::string PunchHoles(std::string_view feature, std::string_view option) {
  if (!PrinterModelOfNumber(G_PrinterModel).has_punch_unit_pictures) return "";
  if (feature != kPunchKey || option == "None") return "";
  const char *unit = HashText(G_QueueInstallableOptions_hash, kPunchUnitKey);
  const std::string_view installed = unit == nullptr ? "" : unit;
  if (installed == "None" || installed == "Punch2Hole") return "2";
  if (installed == "Punch3Hole") return "3";
  if (installed == "Punch4Hole") return "4";
  return "";
}

// Other makers' names for what is not done, which the picture of the feature would show done.
bool IsOtherNone(const std::string &option) {
  return G_PrinterModel == kAddedModelNumber &&
         (option == "Off" || option == "False" || option == "NoStaple");
}

std::string PagesASheet(std::string_view feature) {
  if (feature != kNupOrderKey) return "";
  const std::string pages = QueueFeatureValue(kNupKey);
  return pages == "2" || pages == "4" ? pages : "";
}

std::string OrientationLetter(std::string_view feature) {
  const ListedFeature *listed = FindListedFeature(feature);
  const bool is_layout = feature == kNupKey || feature == kNupOrderKey || feature == kBookletKey;
  if (!is_layout && (listed == nullptr || !listed->turns_with_sheet)) return "";
  const std::string orientation = QueueFeatureValue(kOrientationKey);
  // Other makers' printers are not told how the sheet lies.
  const bool is_upright = orientation.empty() && G_PrinterModel == kAddedModelNumber;
  if (orientation == "Portrait" || is_upright) return "P";
  return orientation == "Landscape" || orientation == "RotLandscape" ? "L" : "";
}

}  // namespace

std::string G_GetPixmapNameFor(const char *feature, const std::string &option) {
  const LogScope log("G_GetPixmapNameFor");
  if (feature == nullptr || *feature == '\0') return "";
  const std::string plain = feature + 1;  // without the asterisk
  const std::string base = plain + "_" + option + PunchHoles(feature, option) +
                           PagesASheet(feature) + OrientationLetter(feature);
  const char *ppd = fGet_CString_Value_Function(fGet_PpdFile_Function(G_CurrentQueue.get()));
  std::string of_model = base + "_" + GetPPDNo(ppd == nullptr ? "" : ppd) + ".xpm";
  if (IsPicture(of_model)) return of_model;
  if (IsPicture(base + ".xpm")) return base + ".xpm";
  const std::string none = plain + "_None" + OrientationLetter(feature) + ".xpm";
  if (IsOtherNone(option) && IsPicture(none)) return none;
  return plain + ".xpm";
}

std::string GetPPDNo(const std::string &name) {
  const LogScope log("GetPPDNo");
  const size_t slash = name.rfind('/');
  const std::string file = slash == std::string::npos ? name : name.substr(slash + 1);
  // The first piece, as a text is split at dots: dots in front of it are skipped.
  const size_t start = file.find_first_not_of('.');
  if (start == std::string::npos) {
    Log(2, "PPD name not in a correct format");
    return "";
  }
  const std::string piece = file.substr(start, file.find('.', start) - start);
  return piece.size() <= L_MakerPrefix ? "" : piece.substr(L_MakerPrefix);
}

bool IsPicture(const std::string &name) {
  std::error_code error;
  return std::filesystem::is_regular_file(std::string(kPixmapDir) + "/" + name, error);
}
