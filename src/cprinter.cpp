#include "cprinter.h"

#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "cfeature.h"
#include "cmessages.h"
#include "debug.h"
#include "pafreader.h"
#include "textfile.h"

namespace {

constexpr CPrinterOps L_Ops{
    .header = {.Class_ID = fCPrinter_Class_ID_Function,
               .Class_Name = fCPrinter_Class_Name_Function,
               .Delete = DeleteAs<CPrinter, fDelete_CPrinter_Function>,
               .Clone = CloneAs<CPrinter, fClone_CPrinter_Function>},
    .GetFeatures = fGetFeatures_Function,
    .GetInstallableOptions = fGetInstallableOptions_Function,
    .GetCustomPaper = fGetCustomPaper_Function,
    .GetConstraints = fGetConstraints_Function,
    .GetPpdFile = fGetPpdFile_Function,
    .FillFromPaf = fFillFromPaf_Function,
};

// A clone of a table of features, null when there is none or one of its features cannot be cloned.
Owned<CHash> CloneFeatures(const CHash *features) {
  Owned<CHash> clone = CloneOf(features);
  for (const auto [key, feature] : Pairs<CFeature>(clone.get())) {
    if (feature == nullptr) return nullptr;
  }
  return clone;
}

}  // namespace

const CObjectOps *CPrinter::Ops() { return &L_Ops.header; }

Owned<CPrinter> CreatePrinter(const char *paf_path) {
  const LogScope log("CreatePrinter");
  if (paf_path == nullptr) return nullptr;
  Owned<CPrinter> printer = NewObject<CPrinter, OnNoMemory::Catalogue>();
  printer->paf_file = CreateStringWithValue(paf_path);
  return printer;
}

int fCPrinter_Class_ID_Function() { return CPrinter::kClassId; }

const char *fCPrinter_Class_Name_Function() { return CPrinterClassName; }

int fDelete_CPrinter_Function(CPrinter *printer) {
  const LogScope log("fDelete_CPrinter_Function");
  if (printer == nullptr) return 1;
  printer->features.reset();
  printer->installable_options.reset();
  printer->custom_paper.reset();
  printer->constraints.reset();
  printer->paf_file.reset();
  printer->ppd_file.reset();
  FreeObject(printer);
  return 1;
}

Owned<CPrinter> fClone_CPrinter_Function(const CPrinter *printer) {
  const LogScope log("fClone_CPrinter_Function");
  if (printer == nullptr || printer->ppd_file == nullptr) return nullptr;
  Owned<CPrinter> clone = CreatePrinter(fGet_CString_Value_Function(printer->paf_file.get()));
  if (clone == nullptr) return nullptr;
  // Kept on purpose: the clone has no PPD file name.
  clone->features = CloneFeatures(printer->features.get());
  if (clone->features == nullptr) return nullptr;
  clone->installable_options = CloneFeatures(printer->installable_options.get());
  if (clone->installable_options == nullptr) return nullptr;
  clone->custom_paper = CloneOf(printer->custom_paper.get());
  if (clone->custom_paper == nullptr) return nullptr;
  clone->constraints = CloneOf(printer->constraints.get());
  return clone->constraints == nullptr ? nullptr : std::move(clone);
}

CHash *fGetFeatures_Function(const CPrinter *printer) {
  return printer == nullptr ? nullptr : printer->features.get();
}

CHash *fGetInstallableOptions_Function(const CPrinter *printer) {
  return printer == nullptr ? nullptr : printer->installable_options.get();
}

CHash *fGetCustomPaper_Function(const CPrinter *printer) {
  return printer == nullptr ? nullptr : printer->custom_paper.get();
}

CList *fGetConstraints_Function(const CPrinter *printer) {
  return printer == nullptr ? nullptr : printer->constraints.get();
}

CString *fGetPpdFile_Function(const CPrinter *printer) {
  return printer == nullptr ? nullptr : printer->ppd_file.get();
}

namespace {

Owned<CString> TakeContent(CPrinter *printer, PafContent content) {
  printer->features = std::move(content.features);
  printer->installable_options = std::move(content.installable_options);
  printer->custom_paper = std::move(content.custom_paper);
  printer->constraints = std::move(content.constraints);
  printer->ppd_file = std::move(content.ppd_file);
  return std::move(content.name);
}

}  // namespace

Owned<CString> fFillFromPaf_Function(CPrinter *printer) {
  const LogScope log("fFillFromPaf_Function");
  if (printer == nullptr) return nullptr;
  const char *path = fGet_CString_Value_Function(printer->paf_file.get());
  const std::optional<std::string> file = ReadWholeFile(path);
  if (!file) G_Fatal(5, "ERR_UNABLE_TO_READ_FILE", {path});

  LineReader lines(*file);
  std::variant<PafContent, PafError> result = ReadPaf(lines);
  if (const auto *error = std::get_if<PafError>(&result)) {
    Log(1, std::string(path) + ":" + std::to_string(error->line_number) + ": " + error->reason);
    G_Fatal(5, "ERR_FILE_CORRUPTED", {path, error->line});
  }
  return TakeContent(printer, std::move(std::get<PafContent>(result)));
}

bool FillFromPaf(CPrinter *printer) {
  const LogScope log("FillFromPaf");
  if (printer == nullptr) return false;
  const std::optional<std::string> file =
      ReadWholeFile(fGet_CString_Value_Function(printer->paf_file.get()));
  if (!file) return false;
  LineReader lines(*file);
  std::variant<PafContent, PafError> result = ReadPaf(lines);
  if (std::holds_alternative<PafError>(result)) return false;
  return TakeContent(printer, std::move(std::get<PafContent>(result))) != nullptr;
}
