// Message catalogue: any bytes are read, and every key that was read can be asked for and filled.
#include "cmessages.h"
#include "fuzz_support.h"
#include "textencoding.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const Owned<CMessages> catalogue = CreateMessages("fuzz");
  LineReader lines(InputText(data, size));
  ReadMessages(catalogue.get(), lines);
  for (const auto [key, text] : Pairs<CString>(catalogue->messages.get())) {
    const char *found = fTranslateMessage_Function(catalogue.get(), key);
    Require(found == fGet_CString_Value_Function(text));
    Require(IsValidUtf8(key) && IsValidUtf8(found));
    FormatMessage(found, {key, 1});
  }
  return 0;
}
