// Small steps of taking a text apart.
#pragma once

#include <string_view>

// `text` without the characters of `blanks` at both ends.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t\r\n") {
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

// The value of a hexadecimal digit, -1 for another character.
[[nodiscard]] inline int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// True for the control characters of ASCII.
[[nodiscard]] inline bool IsControlCharacter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}
