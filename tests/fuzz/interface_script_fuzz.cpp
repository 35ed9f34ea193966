// Interface script: a changed address changes no other line, whatever bytes the script holds.
#include "fuzz_support.h"
#include "interfacescript.h"

namespace {

constexpr std::string_view kVariable = "NETWORK_ADDRESS";

// The script without its address lines.
std::string OtherLines(std::string_view script) {
  std::string rest;
  size_t start = 0;
  while (start < script.size()) {
    const size_t feed = script.find('\n', start);
    const size_t end = feed == std::string_view::npos ? script.size() : feed + 1;
    if (script.substr(start, kVariable.size()) != kVariable) {
      rest += script.substr(start, end - start);
    }
    start = end;
  }
  return rest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string_view script = InputText(data, size);
  const std::optional<std::string> changed = WithNetworkAddress(script, "host");
  Require(changed.has_value() == (OtherLines(script).size() != script.size()));
  if (!changed) return 0;
  Require(OtherLines(*changed) == OtherLines(script));
  Require(WithNetworkAddress(*changed, "host") == changed);
  return 0;
}
