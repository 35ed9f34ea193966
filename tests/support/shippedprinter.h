// A printer of the installation, current together with a queue on it.
#pragma once

#include <string>
#include <utility>

#include "conflictresolution.h"
#include "cprinter.h"
#include "optionstate.h"
#include "properties.h"
#include "queuesupport.h"

inline constexpr char kInstalledPafs[] = "/opt/orlan/data/nls/enu/pafs/";

// For its lifetime the printer of that description file and a queue on it, with the printer's
// defaults, are what the option logic works on.
class CurrentPrinterAndQueue {
 public:
  explicit CurrentPrinterAndQueue(const std::string &description, const QueueValues &values = {})
      : printer_(CreatePrinter(description.c_str())) {
    const Owned<CString> name = fFillFromPaf_Function(printer_.get());
    SetCurrentPrinter(printer_.get());
    getPrinterModel(fGet_CString_Value_Function(name.get()));
    SetCurrentQueue(Text(values.name), MakeQueue(values));
    AddDefaultSettings();
    ForgetUserChoices();
  }
  ~CurrentPrinterAndQueue() {
    SetCurrentQueue(nullptr, nullptr);
    SetCurrentPrinter(nullptr);
    ForgetUserChoices();
    G_PrinterModel = 0;
  }
  CurrentPrinterAndQueue(const CurrentPrinterAndQueue &) = delete;
  CurrentPrinterAndQueue &operator=(const CurrentPrinterAndQueue &) = delete;

  static void Set(const char *feature, const char *option) {
    SetQueueValue(G_QueueFeatures_hash, feature, option);
  }
  static void Install(const char *feature, const char *option) {
    SetQueueValue(G_QueueInstallableOptions_hash, feature, option);
  }

  CPrinter *printer() const { return printer_.get(); }

 private:
  Owned<CPrinter> printer_;
};
