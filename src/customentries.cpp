#include "customentries.h"

#include <algorithm>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "cfeature.h"
#include "customsizes.h"
#include "ignoreresult.h"

namespace {

constexpr int L_MostPapers = 8;
constexpr int L_MostMedias = 100;
constexpr double L_LeastMeasure = 1;  // pels

// What a message about a name says, by kind.
struct NameMessages {
  CustomNameFault fault;
  const char *paper_key;
  const char *media_key;
};
constexpr NameMessages L_NameMessages[] = {
    {CustomNameFault::kEmpty, "DCPS_Dlg_Paper_Error1", "DCMT_Dlg_Media_Error1"},
    {CustomNameFault::kTaken, "DCPS_Dlg_Paper_Error2", "DCMT_Dlg_Media_Error2"},
    {CustomNameFault::kStandard, "DCPS_Dlg_Paper_Error3", "DCMT_Dlg_Media_Error3"},
};

bool IsStandardName(const char *feature, const std::string &name) {
  const auto *record = HashValue<CFeature>(G_PrinterFeatures_hash, feature);
  for (const auto [option, display] : Pairs<CString>(fGet_Options_Function(record))) {
    const char *text = fGet_CString_Value_Function(display);
    if (name == option || (text != nullptr && name == text)) return true;
  }
  return false;
}

std::string SizeText(const CCpsParams *params, int unit) {
  const double width = ConvertMetrics(kPels, unit, fGetWidth_Function(params));
  const double length = ConvertMetrics(kPels, unit, fGetLength_Function(params));
  return MeasureText(unit, width) + " × " + MeasureText(unit, length);
}

}  // namespace

const char *CustomFeature(CustomKind kind) { return CustomFactsOf(kind).feature; }

CHash *CustomEntries(CustomKind kind) { return *CustomFactsOf(kind).entries; }

int CustomLimit(CustomKind kind) {
  return kind == CustomKind::kPaper ? L_MostPapers : L_MostMedias;
}

CustomNameFault CheckCustomName(CustomKind kind, const std::string &name, const char *edited) {
  if (name.empty()) return CustomNameFault::kEmpty;
  const bool kept = edited != nullptr && name == edited;
  if (!kept && HashFind(CustomEntries(kind), name.c_str()) != nullptr) {
    return CustomNameFault::kTaken;
  }
  const char *feature = CustomFeature(kind);
  if (HashFind(G_QueueFeatures_hash, feature) == nullptr) return CustomNameFault::kNoSetting;
  return IsStandardName(feature, name) ? CustomNameFault::kStandard : CustomNameFault::kNone;
}

const char *CustomNameMessage(CustomKind kind, CustomNameFault fault) {
  for (const NameMessages &message : L_NameMessages) {
    if (message.fault != fault) continue;
    return kind == CustomKind::kPaper ? message.paper_key : message.media_key;
  }
  return nullptr;
}

CustomButtons CustomButtonsFor(CustomKind kind, int defined, int selected) {
  const bool possible = kind == CustomKind::kMedia || G_PrinterCpsParam_hash != nullptr;
  return {possible && defined < CustomLimit(kind), possible && selected == 1, selected > 0};
}

std::vector<std::string> CustomRow(CustomKind kind, const char *name) {
  if (kind == CustomKind::kMedia) return {name};
  const auto *params = HashValue<CCpsParams>(G_QueueCustomPapers_hash, name);
  return {name, SizeText(params, kMillimetres), SizeText(params, kInches)};
}

void AddCustomPaper(const std::string &name, double width, double length) {
  IgnoreResult(
      HashPut(G_QueueCustomPapers_hash, name.c_str(),
              CreateCpsParams(std::max(L_LeastMeasure, width), std::max(L_LeastMeasure, length))),
      "the dictionary is there");
}

void AddCustomMedia(const std::string &name) {
  IgnoreResult(HashPut(G_QueueCustomMedias_hash, name.c_str(),
                       CreateCmtParams(CreateStringWithValue(name.c_str()))),
               "the dictionary is there");
}
