#include "textline.h"

#include <locale.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "textencoding.h"

bool IsCommentOrEmpty(std::string_view line) { return line.empty() || line.starts_with("##"); }

std::optional<KeyValue> KeyValueOf(std::string_view text) {
  const size_t sign = text.find('=');
  if (sign == std::string_view::npos || sign == 0) return std::nullopt;
  const std::string_view value = text.substr(sign + 1);
  return KeyValue{std::string(text.substr(0, sign)), std::string(value.substr(0, value.find('=')))};
}

std::vector<KeyValue> KeyValuesOf(std::string_view text) {
  std::vector<KeyValue> settings;
  LineReader lines(text);
  while (const std::optional<std::string> line = lines.Next()) {
    if (IsCommentOrEmpty(*line)) continue;
    if (auto setting = KeyValueOf(*line)) settings.push_back(std::move(*setting));
  }
  return settings;
}

void AppendTextLine(std::string &text, std::string_view line) {
  const size_t start = text.size();
  text += Utf8Prefix(line, kMaxLine);
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), '\n', ' ');
  text += '\n';
}

std::string WholeNumber(double value) {
  const int length = std::snprintf(nullptr, 0, "%.0f", value);
  std::string digits(static_cast<size_t>(length), '\0');
  std::snprintf(digits.data(), digits.size() + 1, "%.0f", value);
  return digits;
}

double NumberFromText(const std::string &text) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text.c_str(), nullptr, plain);
}
