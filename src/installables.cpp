#include "installables.h"

#include <cstring>
#include <utility>

#include "cfeature.h"
#include "cmessages.h"
#include "constraintmessages.h"
#include "debug.h"
#include "optionlists.h"
#include "optionstate.h"
#include "printermodels.h"
#include "settingkeys.h"

namespace {

const CFeature *Installable(const std::string &feature) {
  return HashValue<CFeature>(G_PrinterInstallableOptions_hash, feature.c_str());
}

// Other makers have options of two choices where ours are Boolean, and more names for nothing.
bool IsOfAnotherMaker() { return G_PrinterModel == kAddedModelNumber; }

// What another maker calls Boolean may lack "False", and be "None" instead.
bool IsBoolean(const CFeature *record) {
  const char *type = fGet_CString_Value_Function(fGet_Type_Function(record));
  if (type == nullptr || std::strcmp(type, "Boolean") != 0) return false;
  return !IsOfAnotherMaker() || HashFind(fGet_Options_Function(record), "False") != nullptr;
}

// The queue's value, or the default.
std::string ValueOf(const char *feature, const CFeature *record) {
  const char *value = HashText(G_QueueInstallableOptions_hash, feature);
  if (value != nullptr) return value;
  Log(2, std::string("The feature >>") + feature +
             "<< was not founded in G_QueueInstallableOptions_hash");
  return TextOf(fGet_Default_Function(record));
}

// Whether the option of a choice says that nothing is there.
bool IsNothing(const char *option) {
  if (std::strcmp(option, "None") == 0) return true;
  const std::string_view choice = option;
  return IsOfAnotherMaker() && (choice.starts_with("NotInstalled") || choice == "False");
}

bool HasOnePart(const CFeature *record) {
  size_t parts = 0;
  for (const auto [option, text] : Pairs<CString>(fGet_Options_Function(record))) {
    if (!IsNothing(option)) ++parts;
  }
  return parts == 1;
}

// What a row says of an option. Those of ours name the part; other makers' may be "Installed", so
// that the feature has to be named.
std::string PartText(const CFeature *record, const char *option, const CString *display) {
  const std::string text = TextOf(display);
  if (!IsOfAnotherMaker()) return text;
  const std::string feature = TextOf(fGet_Translation_Function(record));
  const std::string_view choice = option;
  if (HasOnePart(record) && (choice.starts_with("Installed") || choice == "True")) return feature;
  return G_Message("PRESET_SETTING", {feature, text});
}

// Adds the rows of one installable option.
class RowWriter {
 public:
  RowWriter(const char *feature, const std::string &value, const SettingsSnapshot &snapshot,
            std::vector<InstallableRow> &rows)
      : feature_(feature), value_(value), rows_(rows) {
    const Setting *conflict = snapshot.ConflictOf(feature, value.c_str());
    is_marked_ = conflict != nullptr;
    if (is_marked_) {
      reason_ = ConflictReason({feature, value, conflict->feature, conflict->option});
    }
  }

  void Add(const std::string &display, bool is_installed) {
    InstallableRow row;
    G_SetStringWithConstrain(display, row.text, is_marked_ ? 1 : 0);
    row.feature = feature_;
    row.is_installed = is_installed;
    row.reason = reason_;
    rows_.push_back(std::move(row));
  }

  void AddBoolean(const CFeature *record) {
    if (value_ != "True" && value_ != "False") return;
    Add(TextOf(fGet_Translation_Function(record)), value_ == "True");
  }

  void AddOptions(const CFeature *record) {
    for (const auto [option, display] : Pairs<CString>(fGet_Options_Function(record))) {
      if (!IsNothing(option)) Add(PartText(record, option, display), value_ == option);
    }
  }

 private:
  const char *feature_;
  const std::string &value_;
  std::vector<InstallableRow> &rows_;
  bool is_marked_ = false;
  std::string reason_;
};

}  // namespace

std::vector<InstallableRow> InstallableRows() {
  const LogScope log("InstallableRows");
  std::vector<InstallableRow> rows;
  const SettingsSnapshot snapshot;
  for (const auto [feature, record] : Pairs<CFeature>(G_PrinterInstallableOptions_hash)) {
    if (std::strcmp(feature, kMemoryKey) == 0) continue;
    const std::string value = ValueOf(feature, record);
    RowWriter writer(feature, value, snapshot, rows);
    if (IsBoolean(record)) {
      writer.AddBoolean(record);
    } else {
      writer.AddOptions(record);
    }
  }
  return rows;
}

InstallableDefaults SetInstallablesToDefaults() {
  const LogScope log("SetInstallablesToDefaults");
  InstallableDefaults result;
  const Owned<CList> keys = fGetKeys_CHash_Function(G_QueueInstallableOptions_hash);
  for (const CString *key : Elements<CString>(keys.get())) {
    const std::string feature = fGet_CString_Value_Function(key);
    const char *usual = fGet_CString_Value_Function(
        G_GetPPDDefaultOptionForFeature(G_PrinterInstallableOptions_hash, feature.c_str()));
    if (usual == nullptr) {
      Log(2, "Unable to load the default option for " + feature);
      result.is_complete = false;
      return result;
    }
    const char *value = HashText(G_QueueInstallableOptions_hash, feature.c_str());
    if (value != nullptr && std::strcmp(value, usual) == 0) continue;
    SetQueueValue(G_QueueInstallableOptions_hash, feature.c_str(), usual);
    result.changed.push_back(feature);
  }
  return result;
}

std::string ValueThatInstalls(const std::string &feature, const std::string &display) {
  const CFeature *record = Installable(feature);
  if (IsBoolean(record)) return "True";
  for (const auto [option, text] : Pairs<CString>(fGet_Options_Function(record))) {
    if (!IsNothing(option) && display == PartText(record, option, text)) return option;
  }
  return "";
}

std::string ValueThatRemoves(const std::string &feature, const std::string &display) {
  const CFeature *record = Installable(feature);
  if (IsBoolean(record)) return "False";
  const CHash *options = fGet_Options_Function(record);
  if (HashFind(options, "None") != nullptr) return "None";
  for (const auto [option, text] : Pairs<CString>(options)) {
    if (IsNothing(option)) return option;
  }
  for (const auto [option, text] : Pairs<CString>(options)) {
    if (display != PartText(record, option, text)) return option;
  }
  return "";
}
