#include "constraintmessages.h"

#include <array>
#include <string_view>

#include "cmessages.h"
#include "debug.h"
#include "optionstate.h"
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
    {"*PageSize", "*MediaType", "PaperSize_PaperType", Fill::kBoth},
    {"*MediaType", "*PageSize", "PaperSize_PaperType", Fill::kSwapped},
    {"*PageSize", "*InputSlot", "PaperSize_PaperSource", Fill::kBoth},
    {"*InputSlot", "*PageSize", "PaperSize_PaperSource", Fill::kSwapped},
    {"*PageSize", "*Duplex", "PaperSize_Duplex", Fill::kBoth},
    {"*Duplex", "*PageSize", "PaperSize_Duplex", Fill::kSwapped},
    {"*PageSize", "*StapleLocation", "PaperSize_Staple", Fill::kBoth},
    {"*StapleLocation", "*PageSize", "PaperSize_Staple", Fill::kSwapped},
    {"*Jog", "*StapleLocation", "Jog_Staple", Fill::kBoth},
    {"*StapleLocation", "*Jog", "Jog_Staple", Fill::kSwapped},
    {"*PageSize", "*Punch", "PaperSize_Punch", Fill::kBoth},
    {"*Punch", "*PageSize", "PaperSize_Punch", Fill::kSwapped},
    {"*MediaType", "*InputSlot", "PaperType_PaperSource", Fill::kBoth},
    {"*InputSlot", "*MediaType", "PaperType_PaperSource", Fill::kSwapped},
    {"*MediaType", "*Duplex", "PaperType_Duplex", Fill::kBoth},
    {"*Duplex", "*MediaType", "PaperType_Duplex", Fill::kSwapped},
    {"*MediaType", "*StapleLocation", "PaperType_Staple", Fill::kBoth},
    {"*StapleLocation", "*MediaType", "PaperType_Staple", Fill::kSwapped},
    {"*MediaType", "*Punch", "PaperType_Punch", Fill::kBoth},
    {"*Punch", "*MediaType", "PaperType_Punch", Fill::kSwapped},
    {"*OutputBin", "*StapleLocation", "OutputTray_Staple", Fill::kBoth},
    {"*StapleLocation", "*OutputBin", "OutputTray_Staple", Fill::kSwapped},
    {"*InputSlot", "*OptionHCF", "PaperSource_HCF", Fill::kFirst},
    {"*OptionHCF", "*InputSlot", "OutputTray_Staple", Fill::kSecond},
    {"*InputSlot", "*OptionTray4", "OptionTray4_InputSlot", Fill::kFirst},
    {"*OptionTray4", "*InputSlot", "OptionTray4_InputSlot", Fill::kSecond},
    {"*InputSlot", "*OptionBypassTray", "OptionBypassTray_InputSlot", Fill::kFirst},
    {"*OptionBypassTray", "*InputSlot", "OptionBypassTray_InputSlot", Fill::kSecond},
    {"*OutputBin", "*OptionFinisher", "OptionFinisher_OutputBin", Fill::kFirst},
    {"*OptionFinisher", "*OutputBin", "OptionFinisher_OutputBin", Fill::kSecond},
    {"*OptionPunch", "*OptionFinisher", "OptionFinisher_PunchHole", Fill::kFirst},
    {"*OptionFinisher", "*OptionPunch", "OptionFinisher_PunchHole", Fill::kSecond},
    {"*OptionBypassTray", "*OptionHCF", "Hct_Tray7", Fill::kNothing},
    {"*OptionHCF", "*OptionBypassTray", "Hct_Tray7", Fill::kNothing},
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
  if (one == "*Punch" && two == "*OptionPunch") return PunchMessage(option2, display1, display2);
  if (one == "*OptionPunch" && two == "*Punch") return PunchMessage(option1, display1, display2);
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
  if (std::string_view(feature1) == "*OptionHCF" && std::string_view(feature2) == "*InputSlot") {
    return ConflictReason(feature2, option2, display2, feature1, option1, display1);
  }
  std::string message =
      BuildConstraintMessage(feature1, option1, display1, feature2, option2, display2);
  if (!message.empty()) return message;
  // An option's text alone, such as "Not installed", does not say which setting it belongs to.
  return G_Message("CONSTR_Reason", {FeatureDisplayText(feature1), display1,
                                     FeatureDisplayText(feature2), display2});
}
