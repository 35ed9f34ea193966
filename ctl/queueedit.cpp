#include "queueedit.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "addqueue.h"
#include "cmessages.h"
#include "conflictresolution.h"
#include "constraintmessages.h"
#include "cprinter.h"
#include "cprintqueue.h"
#include "destination.h"
#include "emailaddress.h"
#include "entryfilters.h"
#include "globals.h"
#include "jobrules.h"
#include "optionlists.h"
#include "optionstate.h"
#include "output.h"
#include "porting.h"
#include "properties.h"
#include "queueform.h"
#include "queuesettings.h"
#include "settingkeys.h"
#include "textscan.h"

namespace kpx::ctl {

namespace {

// What the button of the conflict box could be pressed for at most: each press settles a pair.
constexpr int kMostConflicts = 1000;

std::optional<SettingsConflict> FindConflict() {
  const auto conflict = FindLinearConflict(G_QueueFeatures_hash);
  return conflict ? conflict : FindLinearConflict(G_QueueInstallableOptions_hash);
}

std::optional<Fault> SettleConflicts(const std::string &name, bool resolve) {
  std::optional<SettingsConflict> conflict = FindConflict();
  for (int i = 0; conflict && resolve && i < kMostConflicts; ++i) {
    if (!SettleConflict(*conflict)) break;
    conflict = FindConflict();
  }
  if (!conflict) return std::nullopt;
  const char *key = resolve ? "CTL_CONFLICT_STAYS" : "CTL_CONFLICT";
  return Fault{kRefused, G_Message(key, {name, ConflictReason(*conflict)})};
}

// What OK refuses besides: a delivery that needs a PIN, a notification that needs an address.
std::optional<Fault> FaultOfDestination() {
  const std::string pin = QueueFeatureValue(kPinKey);
  if (NeedsPin(QueueFeatureValue(kDeliveryKey)) && !IsPin(pin)) {
    return Fault{kFailed, G_Message("ErrDestPin1", {pin})};
  }
  const std::string notification = QueueFeatureValue(kNotificationKey);
  std::string address = QueueFeatureValue(kEmailAddressKey);
  if (!notification.empty() && Notifies(notification) &&
      IsValidEmailAddresses(address, false) == 0) {
    return Fault{kFailed, G_Message("ErrDestMail1", {address})};
  }
  return std::nullopt;
}

// Own sizes and types come first, so that features can be set to them, and pages a sheet before the
// order that goes with them.
int PlaceOf(const Assignment &assignment) {
  if (IsCustomKey(assignment.key)) return assignment.value.empty() ? 3 : 0;
  if (assignment.key == OuterKey(kNupOrderKey)) return 2;
  return 1;
}

std::optional<Fault> SetAll(const std::string &name, const std::vector<Assignment> &assignments) {
  for (const Assignment &assignment : assignments) {
    const std::optional<Fault> fault = SetSetting(assignment.key, assignment.value);
    if (fault) return Fault{fault->status, name + ": " + fault->text, assignment.key};
  }
  RepairCustomChoices();
  return std::nullopt;
}

void Store(const std::string &name) {
  RemoveDefaultSettings();
  if (!CurrentQueueType().has_fonts) RemoveMultipleUpSettings();
  const CPrintQueue &queue = *G_CurrentQueue;
  PutBackIdentity({name, TextOf(queue.AddressType.get()), TextOf(queue.Address.get())});
}

}  // namespace

std::optional<Fault> FaultOfName(const std::string &name) {
  if (name.empty()) return Fault{kFailed, G_Translate("KPXadminWarn003")};
  const bool is_kept = FilterQueueName(name, 0) == name && IsCommandSafeName(name);
  if (!is_kept || CharacterCount(name) > kQueueNameLength) {
    return Fault{kFailed, G_Message("ERR_QUEUE_NAME", {name})};
  }
  return std::nullopt;
}

std::optional<Fault> FaultOfAddress(const std::string &address) {
  if (address.empty()) return Fault{kFailed, G_Translate("KPXadminWarn002")};
  const bool is_kept = FilterAddress(address) == address &&
                       std::none_of(address.begin(), address.end(), IsControlCharacter);
  if (is_kept && CharacterCount(address) <= kAddressLength) return std::nullopt;
  return Fault{kFailed, G_Message("CTL_VALUE_BAD", {"address", address})};
}

std::optional<Fault> FaultOfPrinter(const std::string &printer) {
  if (HashFind(G_Printers_hash, printer.c_str()) != nullptr) return std::nullopt;
  std::vector<std::string> names;
  for (const auto [name, record] : Pairs<CPrinter>(G_Printers_hash)) names.emplace_back(name);
  return Fault{kFailed, G_Message("CTL_PRINTER_UNKNOWN", {printer, JoinedWords(names)})};
}

std::optional<Fault> ChangeQueue(const std::string &name, std::vector<Assignment> assignments,
                                 bool resolve) {
  std::string error;
  if (!OpenProperties(name, &error)) {
    return Fault{kFailed,
                 error.empty() ? G_Message("CTL_QUEUE_UNKNOWN", {name}) : name + ": " + error};
  }
  ForgetUserChoices();
  std::stable_sort(
      assignments.begin(), assignments.end(),
      [](const Assignment &one, const Assignment &two) { return PlaceOf(one) < PlaceOf(two); });
  std::optional<Fault> fault = SetAll(name, assignments);
  if (!fault) fault = SettleConflicts(name, resolve);
  if (!fault) {
    fault = FaultOfDestination();
    if (fault) fault->text = name + ": " + fault->text;
  }
  if (!fault) Store(name);
  CloseProperties();
  return fault;
}

}  // namespace kpx::ctl
