// Numbers as the files and programs that leave us carry them.
#pragma once

#include <charconv>
#include <iterator>
#include <string>

namespace kpx::filter {

// `value` with at most three decimals, none that says nothing, in no locale, never in exponent
// form.
inline std::string DecimalText(double value) {
  char buffer[400];
  const auto result =
      std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::fixed, 3);
  std::string number(buffer, result.ptr);
  number.erase(number.find_last_not_of('0') + 1);
  if (number.ends_with('.')) number.pop_back();
  return number == "-0" ? "0" : number;
}

}  // namespace kpx::filter
