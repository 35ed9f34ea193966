#include "destination.h"

#include <string_view>

#include "cfeature.h"
#include "cmessages.h"
#include "debug.h"
#include "emailaddress.h"
#include "optionlists.h"
#include "optionstate.h"
#include "properties.h"
#include "utils.h"

namespace {

constexpr char L_ApplicationsJobName[] = "UseAppSetting";
constexpr char L_JobName[] = "*JobName";
constexpr char L_UserName[] = "*UserName";
constexpr char L_Delivery[] = "*Delivery";
constexpr char L_Pin[] = "*DeliveryPIN";
constexpr char L_Notification[] = "*EmailNotification";
constexpr char L_EmailAddress[] = "*EmailAddress";
constexpr char L_EmailMessage[] = "*EmailMessage";

constexpr char L_HoldForPin[] = "HoldJobUntilYouEnterPIN";
constexpr char L_Archive[] = "ArchiveToDocumentServer";
constexpr char L_NoNotification[] = "None";

constexpr size_t L_PinLength = 4;

bool PrinterHas(const char *feature) {
  return HashFind(G_PrinterFeatures_hash, feature) != nullptr;
}

// Whether a list that shows `display_string` shows that option.
bool Shows(const std::string &display_string, const char *feature, const char *option) {
  const CHash *options =
      fGet_Options_Function(HashValue<CFeature>(G_PrinterFeatures_hash, feature));
  const char *text = HashText(options, option);
  return text != nullptr && TextWithoutMark(display_string) == text;
}

void Store(const char *feature, const std::string &value) {
  SetQueueValue(G_QueueFeatures_hash, feature, value);
}

void StoreOrRemove(const char *feature, const std::string &value) {
  HashRemove(G_QueueFeatures_hash, feature);
  if (!value.empty()) Store(feature, value);
}

void StoreJobName(const std::string &text) {
  const bool is_applications = text == G_Translate(L_ApplicationsJobName);
  StoreOrRemove(L_JobName, !text.empty() && is_applications ? L_ApplicationsJobName : text);
}

// False when the PIN is refused.
bool StorePin(const DestinationEntries &entries) {
  if (!PrinterHas(L_Delivery)) return true;
  const bool hold = Shows(entries.delivery_text, L_Delivery, L_HoldForPin);
  if (!hold && !Shows(entries.delivery_text, L_Delivery, L_Archive)) return true;
  const bool complete = entries.pin.size() == L_PinLength;
  if (!complete && (hold || !entries.pin.empty())) return false;
  StoreOrRemove(L_Pin, entries.pin);
  return true;
}

// False when the address is refused.
bool StoreNotification(DestinationEntries &entries) {
  if (!PrinterHas(L_Notification)) return true;
  if (Shows(entries.notification_text, L_Notification, L_NoNotification)) return true;
  if (IsValidEmailAddresses(entries.email_address, true) == 0) return false;
  Store(L_EmailAddress, entries.email_address);
  // Kept on purpose: an empty message leaves the old one.
  if (!entries.email_message.empty()) Store(L_EmailMessage, entries.email_message);
  return true;
}

// False without a default.
bool SetDefault(const char *feature, const char *called, bool *changed) {
  const DefaultResult result = SetToDefault(feature);
  if (result == DefaultResult::kNoDefault) {
    Log(2, std::string("Unable to load the default option for ") + called);
    return false;
  }
  if (result == DefaultResult::kChanged) *changed = true;
  return true;
}

}  // namespace

std::string DestinationText(const char *feature) {
  const LogScope log("DestinationText");
  if (feature == nullptr) return "";
  const std::string_view key = feature;
  if (key == L_JobName && UsesApplicationsJobName()) return G_Translate(L_ApplicationsJobName);
  const char *value = HashText(G_QueueFeatures_hash, feature);
  if (value == nullptr && key == L_UserName) value = GetUserName(nullptr);
  return value == nullptr ? "" : value;
}

bool UsesApplicationsJobName() {
  const char *value = HashText(G_QueueFeatures_hash, L_JobName);
  return value == nullptr || std::string_view(value) == L_ApplicationsJobName;
}

bool TakesPin(const std::string &delivery_option) {
  return delivery_option == L_HoldForPin || delivery_option == L_Archive;
}

bool NeedsPin(const std::string &delivery_option) { return delivery_option == L_HoldForPin; }

bool Notifies(const std::string &notification_option) {
  return notification_option != L_NoNotification;
}

DestinationFault StoreDestination(DestinationEntries &entries) {
  const LogScope log("StoreDestination");
  StoreJobName(entries.job_name);
  StoreOrRemove(L_UserName, entries.user_name);
  if (!StorePin(entries)) return DestinationFault::kPin;
  return StoreNotification(entries) ? DestinationFault::kNone : DestinationFault::kEmail;
}

bool SetDestinationDefaults(bool *changed) {
  const LogScope log("SetDestinationDefaults");
  *changed = false;
  if (!SetDefault(L_Delivery, "Delivery type", changed)) return false;
  if (!SetDefault(L_Notification, "Email notification", changed)) return false;
  for (const char *key : {L_JobName, L_UserName, L_Pin, L_EmailAddress, L_EmailMessage}) {
    HashRemove(G_QueueFeatures_hash, key);
  }
  return true;
}
