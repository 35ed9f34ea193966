#include "pafformat.h"

#include <algorithm>
#include <iterator>

#include "textencoding.h"

namespace {

// As many characters of each keyword as the reader compares.
constexpr std::string_view kKeywords[] = {
    "##",    "#uio",      "#uip",      "#uij",       "#uiio",        "#id",         "#default",
    "#type", "#_options", "#_option",  "#translat",  "#end_options", "#end_option", "#end_ui",
    "#cps",  "#MinWidth", "#MaxWidth", "#MinLength", "#MaxLength",   "#end_cps",    "#ccc",
    "#f1",   "#o1",       "#f2",       "#o2",        "#end_ccc"};

}  // namespace

bool IsPafKeywordLine(std::string_view line) {
  return line.empty() || std::any_of(std::begin(kKeywords), std::end(kKeywords),
                                     [&](std::string_view word) { return line.starts_with(word); });
}

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
