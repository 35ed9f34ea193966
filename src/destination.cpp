#include "destination.h"

#include <string_view>

#include "cfeature.h"
#include "cmessages.h"
#include "debug.h"
#include "emailaddress.h"
#include "featuretable.h"
#include "jobrules.h"
#include "optionlists.h"
#include "optionstate.h"
#include "properties.h"
#include "settingkeys.h"
#include "utils.h"

namespace {

bool PrinterHas(const char *feature) {
  return HashFind(G_PrinterFeatures_hash, feature) != nullptr;
}

// Whether a list that shows `display_string` shows an option that is such a one.
bool Shows(const std::string &display_string, const char *feature, bool (*such)(std::string_view)) {
  const std::string shown = TextWithoutMark(display_string);
  const CFeature *record = HashValue<CFeature>(G_PrinterFeatures_hash, feature);
  for (const auto [option, display] : Pairs<CString>(fGet_Options_Function(record))) {
    const char *text = fGet_CString_Value_Function(display);
    if (text != nullptr && shown == text && such(option)) return true;
  }
  return false;
}

bool IsNoNotification(std::string_view option) { return option == "None"; }

void Store(const char *feature, const std::string &value) {
  SetQueueValue(G_QueueFeatures_hash, feature, value);
}

void StoreOrRemove(const char *feature, const std::string &value) {
  HashRemove(G_QueueFeatures_hash, feature);
  if (!value.empty()) Store(feature, value);
}

void StoreJobName(const std::string &text) {
  const bool is_applications = text == G_Translate(kApplicationsJobName);
  StoreOrRemove(kJobNameKey, !text.empty() && is_applications ? kApplicationsJobName : text);
}

// False when the PIN is refused.
bool StorePin(const DestinationEntries &entries) {
  if (!PrinterHas(kDeliveryKey)) return true;
  const bool hold = Shows(entries.delivery_text, kDeliveryKey, NeedsPin);
  if (!hold && !Shows(entries.delivery_text, kDeliveryKey, TakesPin)) return true;
  const bool complete = entries.pin.size() == kPinLength;
  if (!complete && (hold || !entries.pin.empty())) return false;
  StoreOrRemove(kPinKey, entries.pin);
  return true;
}

// False when the address is refused.
bool StoreNotification(DestinationEntries &entries) {
  if (!PrinterHas(kNotificationKey)) return true;
  if (Shows(entries.notification_text, kNotificationKey, IsNoNotification)) return true;
  if (IsValidEmailAddresses(entries.email_address, true) == 0) return false;
  Store(kEmailAddressKey, entries.email_address);
  // Kept on purpose: an empty message leaves the old one.
  if (!entries.email_message.empty()) Store(kEmailMessageKey, entries.email_message);
  return true;
}

}  // namespace

std::string DestinationText(const char *feature) {
  const LogScope log("DestinationText");
  if (feature == nullptr) return "";
  const std::string_view key = feature;
  if (key == kJobNameKey && UsesApplicationsJobName()) return G_Translate(kApplicationsJobName);
  const char *value = HashText(G_QueueFeatures_hash, feature);
  if (value == nullptr && key == kUserNameKey) value = GetUserName(nullptr);
  return value == nullptr ? "" : value;
}

bool UsesApplicationsJobName() {
  const char *value = HashText(G_QueueFeatures_hash, kJobNameKey);
  return value == nullptr || std::string_view(value) == kApplicationsJobName;
}

bool Notifies(const std::string &notification_option) {
  return !IsNoNotification(notification_option);
}

DestinationFault StoreDestination(DestinationEntries &entries) {
  const LogScope log("StoreDestination");
  StoreJobName(entries.job_name);
  StoreOrRemove(kUserNameKey, entries.user_name);
  if (!StorePin(entries)) return DestinationFault::kPin;
  return StoreNotification(entries) ? DestinationFault::kNone : DestinationFault::kEmail;
}

bool SetDestinationDefaults(bool *changed) {
  const LogScope log("SetDestinationDefaults");
  *changed = false;
  for (const ListedFeature *listed : DefaultsOfPage(Page::kDestination)) {
    const FeatureReset result = ResetFeature(listed->feature);
    if (result == FeatureReset::kNoDefault) {
      Log(2, std::string("Unable to load the default option for ") + listed->default_name);
      return false;
    }
    if (result == FeatureReset::kChanged) *changed = true;
  }
  for (const char *key : {kJobNameKey, kUserNameKey, kPinKey, kEmailAddressKey, kEmailMessageKey}) {
    HashRemove(G_QueueFeatures_hash, key);
  }
  return true;
}
