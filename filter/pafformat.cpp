#include "pafformat.h"

#include "pafreader.h"
#include "textencoding.h"

namespace kpx::filter {

std::string PafValue(std::string_view text, std::string_view substitute) {
  if (text.empty()) text = substitute;
  std::string value(IsPafKeywordLine(text) ? " " : "");
  value += text;
  return std::string(Utf8Prefix(value, kMaxLine));
}

std::string PafHeaderValue(std::string_view text, std::string_view keyword) {
  const std::string_view value = text.substr(0, text.find_first_of(":\n"));
  return std::string(Utf8Prefix(value, kMaxLine - keyword.size()));
}

}  // namespace kpx::filter
