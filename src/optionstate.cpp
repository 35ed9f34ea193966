#include "optionstate.h"

#include <array>
#include <cstring>
#include <utility>

#include "cfeature.h"
#include "constraintindex.h"
#include "cprinter.h"
#include "cprintqueue.h"
#include "featuretable.h"
#include "ignoreresult.h"
#include "settingkeys.h"

Owned<CString> G_CurrentQueue_name;
Owned<CPrintQueue> G_CurrentQueue;
CHash *G_QueueFeatures_hash = nullptr;
CHash *G_QueueInstallableOptions_hash = nullptr;
CHash *G_QueueCustomPapers_hash = nullptr;
CHash *G_QueueCustomMedias_hash = nullptr;
CPrinter *G_CurrentPrinter = nullptr;
CHash *G_PrinterFeatures_hash = nullptr;
CHash *G_PrinterInstallableOptions_hash = nullptr;
CHash *G_PrinterCpsParam_hash = nullptr;
CList *G_PrinterConstraints_list = nullptr;
int G_PrinterModel = 0;
bool G_CustomPaperIsCurrent = false;
bool G_CustomMediaIsCurrent = false;

namespace {

constexpr std::array<CustomFacts, 2> L_Customs = {{
    {CustomKind::kPaper, kPageSizeKey, kCustomPageSizeFeature, "cps.xpm", &G_QueueCustomPapers_hash,
     &G_CustomPaperIsCurrent},
    {CustomKind::kMedia, kMediaTypeKey, kCustomMediaTypeFeature, "cmt.xpm",
     &G_QueueCustomMedias_hash, &G_CustomMediaIsCurrent},
}};

}  // namespace

void SetCurrentPrinter(CPrinter *printer) {
  G_CurrentPrinter = printer;
  G_PrinterFeatures_hash = fGetFeatures_Function(printer);
  G_PrinterInstallableOptions_hash = fGetInstallableOptions_Function(printer);
  G_PrinterCpsParam_hash = fGetCustomPaper_Function(printer);
  G_PrinterConstraints_list = fGetConstraints_Function(printer);
  IndexConstraints(G_PrinterConstraints_list);
}

void SetCurrentQueue(Owned<CString> &&name, Owned<CPrintQueue> &&queue) {
  G_CurrentQueue_name = std::move(name);
  G_CurrentQueue = std::move(queue);
  G_QueueFeatures_hash = fGet_Options_Function(G_CurrentQueue.get());
  G_QueueInstallableOptions_hash = fGet_InstallableFeatures_Function(G_CurrentQueue.get());
  G_QueueCustomPapers_hash = fGet_CustomPapers_Function(G_CurrentQueue.get());
  G_QueueCustomMedias_hash = fGet_CustomMedias_Function(G_CurrentQueue.get());
}

bool IsExemptFeature(const char *feature) {
  const ListedFeature *listed = feature == nullptr ? nullptr : FindListedFeature(feature);
  return listed != nullptr && listed->is_exempt;
}

const CFeature *PrinterFeature(const char *name) {
  const CFeature *feature = HashValue<CFeature>(G_PrinterFeatures_hash, name);
  return feature != nullptr ? feature : HashValue<CFeature>(G_PrinterInstallableOptions_hash, name);
}

bool IsOptionOf(const CHash *features, const char *feature, const char *option) {
  const CHash *options = fGet_Options_Function(HashValue<CFeature>(features, feature));
  return HashFind(options, option) != nullptr;
}

const CustomFacts &CustomFactsOf(CustomKind kind) {
  return kind == CustomKind::kPaper ? L_Customs.front() : L_Customs.back();
}

const CustomFacts *CustomFactsOf(const char *feature) {
  if (feature == nullptr) return nullptr;
  for (const CustomFacts &facts : L_Customs) {
    if (std::strcmp(feature, facts.feature) == 0) return &facts;
  }
  return nullptr;
}

bool IsCustomChoice(const char *feature, const char *option) {
  if (option == nullptr || CustomFactsOf(feature) == nullptr) return false;
  return !IsOptionOf(G_PrinterFeatures_hash, feature, option);
}

std::string FeatureDisplayText(const char *feature) {
  const char *text =
      fGet_CString_Value_Function(fGet_Translation_Function(PrinterFeature(feature)));
  return text == nullptr || *text == '\0' ? feature : text;
}

std::string OptionDisplayText(const char *feature, const char *option) {
  const char *text = HashText(fGet_Options_Function(PrinterFeature(feature)), option);
  if (text != nullptr) return text;
  return option == nullptr ? "" : option;
}

void SetQueueValue(CHash *settings, const char *key, const std::string &value) {
  HashRemove(settings, key);
  IgnoreResult(HashPutText(settings, key, value.c_str()), "the dictionary is there");
}

std::string QueueFeatureValue(const char *feature) {
  const char *value = HashText(G_QueueFeatures_hash, feature);
  return value == nullptr ? "" : value;
}

std::string CurrentQueueTypeKey() {
  const char *key = fGet_CString_Value_Function(fGet_Language_Function(G_CurrentQueue.get()));
  return key == nullptr ? "" : key;
}

const QueueType &CurrentQueueType() { return QueueTypeOf(CurrentQueueTypeKey()); }
