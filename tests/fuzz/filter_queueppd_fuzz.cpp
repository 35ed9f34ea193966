// The PPD file of a queue: of any model and any option file (the bytes before the first NUL) it is
// UTF-8, and lets jobs through as they come.
#include "fuzz_support.h"
#include "optionfiles.h"
#include "ppdadaptor.h"
#include "queueppd.h"
#include "textencoding.h"

using namespace kpx::filter;

// What libcups forgets of a file that it refuses is not ours.
extern "C" const char *__lsan_default_suppressions() { return "leak:libcups\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string_view text = InputText(data, size);
  const size_t nul = std::min(text.find('\0'), text.size());
  const std::string model(text.substr(std::min(nul + 1, text.size())));
  const QueuePpd ppd =
      MakeQueuePpd({model, "postscript", KeyValuesOf(text.substr(0, nul)), {{"de", model}}});
  Require(IsValidUtf8(ppd.text));
  PpdError error;
  if (!ReadPpd(model, &error)) return 0;  // nobody makes a queue's of it
  const std::optional<PpdModel> made = ReadPpd(ppd.text, &error);
  if (!made) return 0;
  if (!model.starts_with("*PPD-Adobe: \"4.3\"\n")) return 0;
  Require(ppd.text.find("\n*cupsFilter2: \"application/postscript application/vnd.kpx-job 0 ") !=
          std::string::npos);
  return 0;
}
