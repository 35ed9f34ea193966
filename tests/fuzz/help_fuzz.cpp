// Help catalogue: any bytes are read or refused; block names have their suffix.
#include "chelp.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const Owned<CHelp> help = CreateHelp("fuzz");
  LineReader lines(InputText(data, size));
  const std::optional<HelpError> error = ReadHelp(help.get(), lines);
  Require(!error || error->line > 0);
  for (const auto [name, text] : Pairs<CString>(help->helps.get())) {
    Require(std::string_view(name).ends_with("_BEGIN"));
    Require(fGetHelp_Function(help.get(), name) == fGet_CString_Value_Function(text));
    Require(IsValidUtf8(text->value.View()));
  }
  return 0;
}
