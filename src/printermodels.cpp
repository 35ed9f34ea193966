#include "printermodels.h"

#include <deque>

namespace {

constexpr PrinterModel L_Models[] = {
#include "printermodels.inc"
};

constexpr PrinterModel L_UnknownModel = {"",   "Unknown_printer", nullptr, nullptr, 0, true, false,
                                         false};

// A reference to one of them stays good when others are added.
std::deque<PrinterModel> L_AddedModels;

}  // namespace

void AddPrinterModel(const PrinterModel &model) { L_AddedModels.push_back(model); }

const PrinterModel &FindPrinterModel(std::string_view printer_name) {
  for (auto model = L_AddedModels.rbegin(); model != L_AddedModels.rend(); ++model) {
    if (printer_name == model->display_name) return *model;
  }
  for (const PrinterModel &model : L_Models) {
    if (printer_name.starts_with(model.display_name)) return model;
  }
  return L_UnknownModel;
}

const PrinterModel &PrinterModelOfNumber(int number) {
  for (const PrinterModel &model : L_AddedModels) {
    if (model.number == number) return model;
  }
  for (const PrinterModel &model : L_Models) {
    if (model.number == number) return model;
  }
  return L_UnknownModel;
}
