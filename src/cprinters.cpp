#include "cprinters.h"

#include <string>
#include <utility>

#include "cmessages.h"
#include "cprinter.h"
#include "debug.h"
#include "ignoreresult.h"
#include "ppdconversion.h"
#include "utils.h"

namespace {

constexpr CPrintersOps L_Ops{
    .header = {.Class_ID = fCPrinters_Class_ID_Function,
               .Class_Name = fCPrinters_Class_Name_Function,
               .Delete = DeleteAs<CPrinters, fDelete_CPrinters_Function>,
               .Clone = CloneAs<CPrinters, fClone_CPrinters_Function>},
    .GetPrinters = fGetPrinters_Function,
    .BuildPrinters = fBuildPrinters_Function,
};

// What the names of the printers' files begin with.
constexpr char L_MakerPrefix[] = "vek";

}  // namespace

const CObjectOps *CPrinters::Ops() { return &L_Ops.header; }

Owned<CPrinters> CreatePrinters(const char *ppd_directory, const char *paf_directory) {
  const LogScope log("CreatePrinters");
  if (ppd_directory == nullptr || paf_directory == nullptr) return nullptr;
  Owned<CPrinters> catalogue = NewObject<CPrinters, OnNoMemory::Catalogue>();
  catalogue->ppd_directory = CreateStringWithValue(ppd_directory);
  catalogue->paf_directory = CreateStringWithValue(paf_directory);
  return catalogue;
}

int fCPrinters_Class_ID_Function() { return CPrinters::kClassId; }

const char *fCPrinters_Class_Name_Function() { return CPrintersClassName; }

int fDelete_CPrinters_Function(CPrinters *catalogue) {
  const LogScope log("fDelete_CPrinters_Function");
  FreeObject(catalogue);
  return 1;
}

Owned<CPrinters> fClone_CPrinters_Function(const CPrinters *catalogue) {
  const LogScope log("fClone_CPrinters_Function");
  if (catalogue == nullptr) return nullptr;
  Owned<CPrinters> clone =
      CreatePrinters(fGet_CString_Value_Function(catalogue->ppd_directory.get()),
                     fGet_CString_Value_Function(catalogue->paf_directory.get()));
  if (clone != nullptr) clone->printers = CloneOf(catalogue->printers.get());
  return clone;
}

CHash *fGetPrinters_Function(const CPrinters *catalogue) {
  return catalogue == nullptr ? nullptr : catalogue->printers.get();
}

int fBuildPrinters_Function(CPrinters *catalogue) {
  const LogScope log("fBuildPrinters_Function");
  if (catalogue == nullptr) return 0;
  const std::string paf_directory = fGet_CString_Value_Function(catalogue->paf_directory.get());
  CheckPafFiles(fGet_CString_Value_Function(catalogue->ppd_directory.get()), paf_directory);

  const Owned<CList> names = GetFilesFromDir(paf_directory.c_str());
  if (names == nullptr) G_Fatal(7, "ERR_UNABLE_TO_READ_DIR", {paf_directory});
  catalogue->printers = CreateHash();
  for (const CString *entry : Elements<CString>(names.get())) {
    const std::string name = fGet_CString_Value_Function(entry);
    if (!name.starts_with(L_MakerPrefix) || CheckIfPpdOrPaf(name, kPafFile) == 0) continue;
    Owned<CPrinter> printer = CreatePrinter(PathIn(paf_directory, name).c_str());
    Owned<CString> printer_name = fFillFromPaf_Function(printer.get());
    IgnoreResult(
        fAdd_CHash_Function(catalogue->printers.get(), std::move(printer_name), std::move(printer)),
        "a description that was read has a name");
  }
  return 1;
}
