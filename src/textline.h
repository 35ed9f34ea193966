// Lines of the files that the program writes itself.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// True for the lines that the readers skip: empty ones and those that begin with "##".
[[nodiscard]] bool IsCommentOrEmpty(std::string_view line);

// A setting as option files and the spooler's options hold it.
struct KeyValue {
  std::string key, value;
};

// The setting of a text "key=value". The value ends at a second "=". Nothing when there is no "="
// or no key before it.
[[nodiscard]] std::optional<KeyValue> KeyValueOf(std::string_view text);

// The settings of an option file's text, in their order. Lines that the readers skip and those
// without a setting are left out.
std::vector<KeyValue> KeyValuesOf(std::string_view text);

// Appends `line` (UTF-8) and a line feed to `text`. A line feed inside becomes one blank, since a
// line cannot carry it, and what goes beyond the longest line that the readers take as one is cut.
void AppendTextLine(std::string &text, std::string_view line);

// A measure rounded to a whole number, as the files hold it ("%.0f").
std::string WholeNumber(double value);

// The number at the start of `text`, as atof reads it but with a decimal point in every locale; 0
// when there is none.
double NumberFromText(const std::string &text);
