// Text jobs: any bytes become PostScript without control characters, the same whatever the reads
// are cut into. A first line that begins with an asterisk is the words of the job's options.
#include <algorithm>

#include "filterjob.h"
#include "fuzz_support.h"
#include "optionfiles.h"
#include "textjob.h"

// What Fontconfig keeps for itself until the program ends.
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const PpdModel plain;
  std::string_view text = InputText(data, size);
  JobSettings settings(plain);
  if (text.starts_with('*')) {
    const size_t end = std::min(text.find('\n'), text.size() - 1);
    settings.Apply(ParseOptionWords(text.substr(0, end)));
    text.remove_prefix(end + 1);
  }
  const std::string job(text);
  const std::string output = RunOver(FilterText, settings, job);
  Require(output == RunOver(FilterText, settings, job, 1));
  Require(std::all_of(output.begin(), output.end(), [](char c) {
    return c == '\n' || (static_cast<uint8_t>(c) >= ' ' && c != 0x7F);
  }));
  return 0;
}
