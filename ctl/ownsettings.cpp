#include "ownsettings.h"

#include "jobrules.h"
#include "optionstate.h"
#include "settingkeys.h"
#include "textoptions.h"

namespace kpx::ctl {

const std::vector<OwnSetting> &OwnSettings() {
  static const std::vector<OwnSetting> settings = {
      {kNupKey, OwnKind::Choice, {"1", "2", "4", "6", "9", "16"}, "1"},
      {kNupOrderKey, OwnKind::Choice, {"Left", "Right", "Down", "Back"}, "Left"},
      {kBookletKey, OwnKind::Choice, {"0", "1"}, "0"},
      {kFontNameKey, OwnKind::Font, {}, kDefaultFontName},
      {kFontSizeKey, OwnKind::FontSize, {}, kDefaultFontSize},
      {kJobNameKey, OwnKind::JobText, {}, kApplicationsJobName},
      {kUserNameKey, OwnKind::JobText, {}, ""},
      {kPinKey, OwnKind::Pin, {}, ""},
      {kEmailAddressKey, OwnKind::Email, {}, ""},
      {kEmailMessageKey, OwnKind::JobText, {}, ""},
  };
  return settings;
}

const OwnSetting *FindOwnSetting(std::string_view key) {
  for (const OwnSetting &setting : OwnSettings()) {
    if (key == setting.key) return &setting;
  }
  return nullptr;
}

const OwnSetting *FindOwnSetting(const QueueType &type, std::string_view key) {
  const OwnSetting *own = FindOwnSetting(key);
  if (own == nullptr || HasOwnSetting(type, *own)) return own;
  return HashFind(G_PrinterFeatures_hash, own->key) == nullptr ? own : nullptr;
}

bool HasOwnSetting(const QueueType &type, const OwnSetting &setting) {
  switch (setting.kind) {
    case OwnKind::Choice:
      return type.has_pages_a_sheet;
    case OwnKind::Font:
    case OwnKind::FontSize:
      return type.has_fonts;
    case OwnKind::JobText:
      return std::string_view(setting.key) != kEmailMessageKey ||
             HashFind(G_PrinterFeatures_hash, kNotificationKey) != nullptr;
    case OwnKind::Pin:
      return HashFind(G_PrinterFeatures_hash, kDeliveryKey) != nullptr;
    case OwnKind::Email:
      return HashFind(G_PrinterFeatures_hash, kNotificationKey) != nullptr;
  }
  return false;
}

}  // namespace kpx::ctl
