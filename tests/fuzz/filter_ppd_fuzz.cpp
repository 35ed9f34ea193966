// PPD files: any bytes are read or refused, and what is read becomes a description that reads back
// and sets a text on its paper.
#include "filterjob.h"
#include "fuzz_support.h"
#include "pafreader.h"
#include "pafwriter.h"
#include "ppdadaptor.h"
#include "textjob.h"

// What libcups forgets of a file that it refuses is not ours.
extern "C" const char *__lsan_default_suppressions() { return "leak:libcups\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  PpdError error;
  const std::optional<PpdModel> model = ReadPpd(InputText(data, size), &error);
  if (!model) {
    Require(!error.reason.empty());
    return 0;
  }
  const std::string paf = PafText(*model, "vekfuzz.ppd");
  Require(IsValidUtf8(paf));
  LineReader lines(paf);
  const auto read = ReadPaf(lines);
  Require(std::holds_alternative<PafContent>(read));
  const PafContent &content = std::get<PafContent>(read);
  Require(content.ppd_file->value.View() == "vekfuzz.ppd");
  Require(content.name->value.View() == PrinterName(*model, "vekfuzz.ppd"));
  for (const auto &[size_name, page] : model->page_sizes) {
    Require(page.width > 0 && page.width <= 1e5 && page.length > 0 && page.length <= 1e5);
    Require(0 <= page.left && page.left < page.right && page.right <= page.width);
    Require(0 <= page.bottom && page.bottom < page.top && page.top <= page.length);
  }
  RunOver(FilterText, JobSettings(*model), "A text.\n");
  return 0;
}
