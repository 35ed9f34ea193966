// The rules of the destination tab: what its entries show and what of them is stored in the work
// copy.
#pragma once

#include <string>

// The most characters of the texts: of a job's name, of a user name, of an e-mail address or
// message.
inline constexpr int kJobNameLength = 80;
inline constexpr int kUserNameLength = 16;
inline constexpr int kEmailTextLength = 255;

// What the entry of a free-text key ("*JobName", "*UserName", "*DeliveryPIN", "*EmailAddress",
// "*EmailMessage") shows: the work copy's value. Without one: for the job name, as for the value
// "UseAppSetting", the catalogue's text for that; for the user name the login name; else nothing.
std::string DestinationText(const char *feature);

// Whether the work copy has no job name of its own, so that DestinationText is the catalogue's
// text.
[[nodiscard]] bool UsesApplicationsJobName();

// Address and message count for every notification but "None".
[[nodiscard]] bool Notifies(const std::string &notification_option);

// What the tab's entries hold; delivery and notification as their lists show them, with the mark.
struct DestinationEntries {
  std::string job_name;
  std::string user_name;
  std::string delivery_text;
  std::string pin;
  std::string notification_text;
  std::string email_address;
  std::string email_message;
};

// What was refused.
enum class DestinationFault { kNone, kPin, kEmail };

// Stores the entries in the work copy and tidies the e-mail address, also of a refused entry, when
// one is asked for. What comes before the refused value is stored all the same. A printer without
// delivery or notification: their texts are left alone.
[[nodiscard]] DestinationFault StoreDestination(DestinationEntries &entries);

// Gives delivery and notification of the work copy the printer's defaults and removes the five free
// texts. False, at the first feature without a default, with the rest left as it is. `changed`: a
// delivery or notification was replaced.
[[nodiscard]] bool SetDestinationDefaults(bool *changed);
