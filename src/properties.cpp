#include "properties.h"

#include <string_view>
#include <utility>

#include "cfeature.h"
#include "cmessages.h"
#include "cprinter.h"
#include "cprintqueue.h"
#include "cselection.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "optionlists.h"
#include "optionstate.h"
#include "printermodels.h"
#include "settingkeys.h"

namespace {

// "vek41201.ppd" gives "vek41201.paf".
std::string PafNameOf(const CPrintQueue *queue) {
  std::string name = TextOf(fGet_PpdFile_Function(queue));
  name.resize(name.size() - std::min<size_t>(name.size(), 3));
  return name + "paf";
}

bool HasFonts() { return G_Fonts_hash != nullptr && !HashIsEmpty(G_Fonts_hash.get()); }

void AddMissingDefaults(const CHash *features, CHash *settings, std::string_view except) {
  for (const auto [feature, record] : Pairs<CFeature>(features)) {
    if (feature == except || HashFind(settings, feature) != nullptr) continue;
    const char *usual = fGet_CString_Value_Function(fGet_Default_Function(record));
    if (usual != nullptr)
      IgnoreResult(HashPutText(settings, feature, usual), "the dictionary is there");
  }
}

// Removes the settings that equal the printer's defaults and that `kept` (may be null) lacks.
void RemoveDefaults(const CHash *features, CHash *settings, const CHash *kept) {
  std::vector<std::string> doomed;
  for (const auto [feature, value] : Pairs<CString>(settings)) {
    const CFeature *record = HashValue<CFeature>(features, feature);
    if (record == nullptr || HashFind(kept, feature) != nullptr) continue;
    if (fIsEqual_CString_Value_Function(value, fGet_Default_Function(record)) != 0) {
      doomed.emplace_back(feature);
    }
  }
  for (const std::string &feature : doomed) HashRemove(settings, feature.c_str());
}

}  // namespace

void getPrinterModel(const char *printer_name) {
  const LogScope log("getPrinterModel");
  if (printer_name == nullptr) return;
  const int number = FindPrinterModel(printer_name).number;
  if (number != 0) G_PrinterModel = number;
}

std::string SelectedQueueName(const CList *selections) { return SelectedText(selections); }

bool OpenProperties(const std::string &queue_name, std::string *error) {
  const LogScope log("OpenProperties");
  error->clear();
  const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, queue_name.c_str());
  if (queue == nullptr) return false;
  if (QueueTypeOf(TextOf(fGet_Language_Function(queue))).has_fonts && !HasFonts()) {
    *error = G_Translate("ERR_NO_FONT");
    return false;
  }
  const std::string printer_name = TextOf(fGet_PrinterName_Function(queue));
  getPrinterModel(printer_name.c_str());
  Owned<CPrintQueue> copy = CloneOf(queue);
  if (copy == nullptr) G_Fatal(5, "ERR_UNEXPECTED1", {CPrintQueueClassName});
  CPrinter *printer = HashValue<CPrinter>(G_Printers_hash, printer_name.c_str());
  if (printer == nullptr) {
    *error = G_Message("PAFNotFoundError", {PafNameOf(queue)});
    return false;
  }
  SetCurrentPrinter(printer);
  SetCurrentQueue(CreateStringWithValue(queue_name.c_str()), std::move(copy));
  AddDefaultSettings();
  return true;
}

void CloseProperties() {
  const LogScope log("CloseProperties");
  SetCurrentQueue(nullptr, nullptr);
  SetCurrentPrinter(nullptr);
}

void AddDefaultSettings() {
  const LogScope log("AddDefaultSettings");
  AddMissingDefaults(G_PrinterFeatures_hash, G_QueueFeatures_hash, kPageRegionKey);
  AddMissingDefaults(G_PrinterInstallableOptions_hash, G_QueueInstallableOptions_hash, kMemoryKey);
}

void RemoveDefaultSettings() {
  const LogScope log("RemoveDefaultSettings");
  const CHash *kept = nullptr;
  if (G_ProgName == kModePrintTool) {
    const char *name = fGet_CString_Value_Function(G_CurrentQueue_name.get());
    kept = fGet_Options_Function(HashValue<CPrintQueue>(G_OrgQueues_hash, name));
  }
  RemoveDefaults(G_PrinterFeatures_hash, G_QueueFeatures_hash, kept);
  RemoveDefaults(G_PrinterInstallableOptions_hash, G_QueueInstallableOptions_hash, nullptr);
}

FeatureReset ResetFeature(const char *feature) {
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature));
  if (usual == nullptr) return FeatureReset::kNoDefault;
  const char *value = HashText(G_QueueFeatures_hash, feature);
  if (value != nullptr && std::string_view(value) == usual) return FeatureReset::kSame;
  SetQueueValue(G_QueueFeatures_hash, feature, usual);
  return FeatureReset::kChanged;
}

void RemoveMultipleUpSettings() {
  for (const char *key : {kNupKey, kNupOrderKey, kBookletKey}) {
    // A printer may have an option of that name itself.
    if (HashFind(G_PrinterFeatures_hash, key) == nullptr) HashRemove(G_QueueFeatures_hash, key);
  }
}

void PutBackForPrinting(int copies) {
  SetQueueValue(G_QueueFeatures_hash, kCopiesKey, std::to_string(copies));
  const std::string name = TextOf(G_CurrentQueue_name.get());
  HashRemove(G_Queues_hash, name.c_str());
  IgnoreResult(HashPut(G_Queues_hash, name.c_str(), CloneOf(G_CurrentQueue.get())),
               "the dictionary is there");
}

void PutBackIdentity(const QueueIdentity &identity) {
  CPrintQueue *queue = G_CurrentQueue.get();
  IgnoreResult(fSet_AddressType_Function(queue, CreateStringWithValue(kTcpIpTransport).get()),
               "the record is there");
  IgnoreResult(fSet_Address_Function(queue, CreateStringWithValue(identity.address.c_str()).get()),
               "the record is there");
  IgnoreResult(
      fSet_DefFile_Function(queue, CreateStringWithValue((identity.name + ".def").c_str()).get()),
      "the record is there");
  G_CurrentQueue_name = CreateStringWithValue(identity.name.c_str());
  IgnoreResult(HashPut(G_Queues_hash, identity.name.c_str(), CloneOf(queue)),
               "the dictionary is there");
}
