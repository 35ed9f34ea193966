#include "printermodels.h"

namespace {

constexpr PrinterModel L_Models[] = {
    {"Vek Norvel 4120ES", "vek4120", "vek41201.ppd", "120", 6},
    {"Vek Norvel 4110ES", "vek4110", "vek41101.ppd", "110", 5},
    {"Vek Norvel 4105", "vek4105", "vek41051.ppd", "45", 1},
    {"Vek Norvel 4121", "vek4121", "vek41211.ppd", "120", 2},
    {"Vek Norvel 4100ES", "vek4100", "vek41001.ppd", "100", 3},
    {"Vek Norvel 4102ES", "vek4102", "vek41021.ppd", "102", 4},
};

constexpr PrinterModel L_UnknownModel = {"", "Unknown_printer", nullptr, nullptr, 0};

}  // namespace

const PrinterModel &FindPrinterModel(std::string_view printer_name) {
  for (const PrinterModel &model : L_Models) {
    if (printer_name.starts_with(model.display_name)) return model;
  }
  return L_UnknownModel;
}
