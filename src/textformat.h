// Filling a catalogue text that is used as a format, safely whatever a translation contains.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

// One argument: a text (null counts as empty) or a whole number.
class FormatArg {
 public:
  FormatArg(const char *text)
      : text_(text == nullptr ? "" : text) {}                    // NOLINT: implicit on purpose
  FormatArg(std::string_view text) : text_(text) {}              // NOLINT
  FormatArg(const std::string &text) : text_(text) {}            // NOLINT
  FormatArg(long number) : text_(std::to_string(number)) {}      // NOLINT
  FormatArg(int number) : text_(std::to_string(number)) {}       // NOLINT
  FormatArg(unsigned number) : text_(std::to_string(number)) {}  // NOLINT

  const std::string &Text() const { return text_; }

 private:
  std::string text_;
};

// `format` with each "%s", "%d" and "%i" replaced by the next argument and "%%" by "%". A
// placeholder without an argument becomes empty, an argument without placeholder is left out, any
// other "%" stands for itself.
std::string FormatMessage(std::string_view format, std::initializer_list<FormatArg> arguments);
