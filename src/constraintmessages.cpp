#include "constraintmessages.h"

#include <array>
#include <initializer_list>
#include <string_view>

#include "cmessages.h"
#include "debug.h"
#include "optionstate.h"
#include "settingkeys.h"
#include "textencoding.h"

namespace {

constexpr size_t L_MessageBuffer = 1023;

// Which display texts fill the message, in its order.
enum class Fill { kBoth, kSwapped, kFirst, kSecond, kNothing };

struct MessageRow {
  std::string_view feature1;
  std::string_view feature2;
  std::string_view key;  // without L_KeyPrefix
  Fill fill;
};

constexpr char L_KeyPrefix[] = "CONSTR_Dlg_Message_";

// Kept on purpose: ("*OptionHCF", "*InputSlot") has another key than the opposite order.
constexpr auto L_Rows = std::to_array<MessageRow>({
    {kPageSizeKey, kMediaTypeKey, "PaperSize_PaperType", Fill::kBoth},
    {kMediaTypeKey, kPageSizeKey, "PaperSize_PaperType", Fill::kSwapped},
    {kPageSizeKey, kInputSlotKey, "PaperSize_PaperSource", Fill::kBoth},
    {kInputSlotKey, kPageSizeKey, "PaperSize_PaperSource", Fill::kSwapped},
    {kPageSizeKey, kDuplexKey, "PaperSize_Duplex", Fill::kBoth},
    {kDuplexKey, kPageSizeKey, "PaperSize_Duplex", Fill::kSwapped},
    {kPageSizeKey, kStapleKey, "PaperSize_Staple", Fill::kBoth},
    {kStapleKey, kPageSizeKey, "PaperSize_Staple", Fill::kSwapped},
    {kJogKey, kStapleKey, "Jog_Staple", Fill::kBoth},
    {kStapleKey, kJogKey, "Jog_Staple", Fill::kSwapped},
    {kPageSizeKey, kPunchKey, "PaperSize_Punch", Fill::kBoth},
    {kPunchKey, kPageSizeKey, "PaperSize_Punch", Fill::kSwapped},
    {kMediaTypeKey, kInputSlotKey, "PaperType_PaperSource", Fill::kBoth},
    {kInputSlotKey, kMediaTypeKey, "PaperType_PaperSource", Fill::kSwapped},
    {kMediaTypeKey, kDuplexKey, "PaperType_Duplex", Fill::kBoth},
    {kDuplexKey, kMediaTypeKey, "PaperType_Duplex", Fill::kSwapped},
    {kMediaTypeKey, kStapleKey, "PaperType_Staple", Fill::kBoth},
    {kStapleKey, kMediaTypeKey, "PaperType_Staple", Fill::kSwapped},
    {kMediaTypeKey, kPunchKey, "PaperType_Punch", Fill::kBoth},
    {kPunchKey, kMediaTypeKey, "PaperType_Punch", Fill::kSwapped},
    {kOutputBinKey, kStapleKey, "OutputTray_Staple", Fill::kBoth},
    {kStapleKey, kOutputBinKey, "OutputTray_Staple", Fill::kSwapped},
    {kInputSlotKey, kFeederKey, "PaperSource_HCF", Fill::kFirst},
    {kFeederKey, kInputSlotKey, "OutputTray_Staple", Fill::kSecond},
    {kInputSlotKey, kTray4Key, "OptionTray4_InputSlot", Fill::kFirst},
    {kTray4Key, kInputSlotKey, "OptionTray4_InputSlot", Fill::kSecond},
    {kInputSlotKey, kBypassTrayKey, "OptionBypassTray_InputSlot", Fill::kFirst},
    {kBypassTrayKey, kInputSlotKey, "OptionBypassTray_InputSlot", Fill::kSecond},
    {kOutputBinKey, kFinisherKey, "OptionFinisher_OutputBin", Fill::kFirst},
    {kFinisherKey, kOutputBinKey, "OptionFinisher_OutputBin", Fill::kSecond},
    {kPunchUnitKey, kFinisherKey, "OptionFinisher_PunchHole", Fill::kFirst},
    {kFinisherKey, kPunchUnitKey, "OptionFinisher_PunchHole", Fill::kSecond},
    {kBypassTrayKey, kFeederKey, "Hct_Tray7", Fill::kNothing},
    {kFeederKey, kBypassTrayKey, "Hct_Tray7", Fill::kNothing},
});

std::string Message(std::string_view key, std::initializer_list<FormatArg> texts) {
  const std::string message = G_Message((L_KeyPrefix + std::string(key)).c_str(), texts);
  return std::string(Utf8Prefix(message, L_MessageBuffer));
}

std::string FilledMessage(const MessageRow &row, const std::string &display1,
                          const std::string &display2) {
  switch (row.fill) {
    case Fill::kBoth:
      return Message(row.key, {display1, display2});
    case Fill::kSwapped:
      return Message(row.key, {display2, display1});
    case Fill::kFirst:
      return Message(row.key, {display1});
    case Fill::kSecond:
      return Message(row.key, {display2});
    case Fill::kNothing:
      break;
  }
  return Message(row.key, {});
}

// Kept on purpose: the texts stand in the order found, whichever of the two came first.
std::string PunchMessage(std::string_view punch_unit, const std::string &display1,
                         const std::string &display2) {
  if (punch_unit == "None") return Message("PunchOption_PunchNone", {display1});
  return Message("PunchOption_Punch", {display1, display2});
}

}  // namespace

std::string BuildConstraintMessage(const char *feature1, const char *option1,
                                   const std::string &display1, const char *feature2,
                                   const char *option2, const std::string &display2) {
  const LogScope log("BuildConstraintMessage");
  const std::string_view one = feature1;
  const std::string_view two = feature2;
  if (one == kPunchKey && two == kPunchUnitKey) return PunchMessage(option2, display1, display2);
  if (one == kPunchUnitKey && two == kPunchKey) return PunchMessage(option1, display1, display2);
  for (const MessageRow &row : L_Rows) {
    if (row.feature1 == one && row.feature2 == two) return FilledMessage(row, display1, display2);
  }
  return "";
}

std::string ConflictMessage(const SettingsConflict &conflict) {
  const char *feature1 = conflict.feature1.c_str();
  const char *option1 = conflict.option1.c_str();
  const char *feature2 = conflict.feature2.c_str();
  const char *option2 = conflict.option2.c_str();
  return BuildConstraintMessage(feature1, option1, OptionDisplayText(feature1, option1), feature2,
                                option2, OptionDisplayText(feature2, option2));
}

std::string ConflictReason(const SettingsConflict &conflict) {
  const char *feature1 = conflict.feature1.c_str();
  const char *option1 = conflict.option1.c_str();
  const char *feature2 = conflict.feature2.c_str();
  const char *option2 = conflict.option2.c_str();
  return ConflictReason(feature1, option1, OptionDisplayText(feature1, option1), feature2, option2,
                        OptionDisplayText(feature2, option2));
}

std::string ConflictReason(const char *feature1, const char *option1, const std::string &display1,
                           const char *feature2, const char *option2, const std::string &display2) {
  // The message of this order is about another pair and lacks a text; the opposite one names both.
  if (std::string_view(feature1) == kFeederKey && std::string_view(feature2) == kInputSlotKey) {
    return ConflictReason(feature2, option2, display2, feature1, option1, display1);
  }
  std::string message =
      BuildConstraintMessage(feature1, option1, display1, feature2, option2, display2);
  if (!message.empty()) return message;
  // An option's text alone, such as "Not installed", does not say which setting it belongs to.
  return G_Message("CONSTR_Reason", {FeatureDisplayText(feature1), display1,
                                     FeatureDisplayText(feature2), display2});
}
