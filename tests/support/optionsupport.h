// A current printer and a current queue for the tests of the option logic.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cconstrain.h"
#include "cfeature.h"
#include "conflictresolution.h"
#include "cprinter.h"
#include "must.h"
#include "optionlists.h"
#include "optionstate.h"
#include "queuesupport.h"

inline constexpr const char *kExemptFeatures[] = {
    "*Orientation", "*EdgeToEdge", "*OutputMode", "*HalfTone", "*Delivery", "*EmailNotification"};

struct FeatureValues {
  std::string id;
  std::string usual;                                         // identifier of the default option
  std::vector<std::pair<std::string, std::string>> options;  // identifier, display text
  std::string type = "PickOne";
  std::string text = {};  // display text of the feature
};

inline Owned<CFeature> MakeFeature(const FeatureValues &values) {
  Owned<CFeature> feature = CreateFeature();
  feature->translation = Text(values.text);
  feature->default_option = Text(values.usual);
  feature->type = Text(values.type);
  feature->options = CreateHash();
  for (const auto &[id, text] : values.options) {
    Must(HashPutText(feature->options.get(), id.c_str(), text.c_str()));
  }
  return feature;
}

// A null text is missing in the record.
inline Owned<CConstrain> MakeConstraint(const char *feature1, const char *option1,
                                        const char *feature2, const char *option2) {
  Owned<CConstrain> constraint = CreateConstrain();
  Must(fSetData_Function(constraint.get(), CreateStringWithValue(feature1),
                         CreateStringWithValue(option1), CreateStringWithValue(feature2),
                         CreateStringWithValue(option2)));
  return constraint;
}

// For its lifetime: a printer without features and an empty queue are the current ones.
class CurrentOptions {
 public:
  CurrentOptions() : printer_(CreatePrinter("/nowhere/vek41201.paf")) {
    printer_->features = CreateHash();
    printer_->installable_options = CreateHash();
    printer_->constraints = CreateList();
    SetCurrentPrinter(printer_.get());
    SetCurrentQueue(Text("lp1"), MakeQueue());
  }
  ~CurrentOptions() {
    SetCurrentPrinter(nullptr);
    SetCurrentQueue(nullptr, nullptr);
    ForgetUserChoices();
    G_PrinterModel = 0;
    G_CustomPaperIsCurrent = G_CustomMediaIsCurrent = false;
  }
  CurrentOptions(const CurrentOptions &) = delete;
  CurrentOptions &operator=(const CurrentOptions &) = delete;

  CPrinter *Printer() const { return printer_.get(); }

  void Feature(const FeatureValues &values) {
    Must(HashPut(printer_->features.get(), values.id.c_str(), MakeFeature(values)));
  }
  void Installable(const FeatureValues &values) {
    Must(HashPut(printer_->installable_options.get(), values.id.c_str(), MakeFeature(values)));
  }
  void Forbid(const char *feature1, const char *option1, const char *feature2,
              const char *option2) {
    AddConstraint(feature1, option1, feature2, option2);
    SetCurrentPrinter(printer_.get());
  }
  // The same without preparing the answers, for many: end with SetCurrentPrinter.
  void AddConstraint(const char *feature1, const char *option1, const char *feature2,
                     const char *option2) {
    Must(fAddTail_CList_Function(printer_->constraints.get(),
                                 MakeConstraint(feature1, option1, feature2, option2)));
  }

  static void Set(const char *feature, const char *option) {
    SetQueueValue(G_QueueFeatures_hash, feature, option);
  }
  static void SetInstalled(const char *feature, const char *option) {
    SetQueueValue(G_QueueInstallableOptions_hash, feature, option);
  }
  static void Paper(const char *name) { PutPaper(G_CurrentQueue.get(), name, 210, 297); }
  static void Media(const char *name) { PutMedia(G_CurrentQueue.get(), name, name); }

 private:
  Owned<CPrinter> printer_;
};

inline std::vector<std::string> RowTexts(const OptionList &list) {
  std::vector<std::string> texts;
  for (const OptionListRow &row : list.rows) texts.push_back(row.text);
  return texts;
}
