#include "loadprinters.h"

#include "addedmodels.h"
#include "cprinters.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "language.h"

void LoadPrinters(CList *messages) {
  BuildPrinterPaths();
  Log(1, "Create the CPrinters structure");
  G_Printers = CreatePrinters(ppd_path.c_str(), paf_path.c_str());
  IgnoreResult(fBuildPrinters_Function(G_Printers.get()), "the catalogue is there");
  G_Printers_hash = fGetPrinters_Function(G_Printers.get());
  LoadAddedModels(G_Printers_hash, lng_dir, messages);
}
