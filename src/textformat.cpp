#include "textformat.h"

std::string FormatMessage(std::string_view format, std::initializer_list<FormatArg> arguments) {
  std::string result;
  auto next = arguments.begin();
  for (size_t i = 0; i < format.size(); ++i) {
    const char kind = format[i] == '%' && i + 1 < format.size() ? format[i + 1] : '\0';
    if (kind == 's' || kind == 'd' || kind == 'i') {
      if (next != arguments.end()) result += (next++)->Text();
      ++i;
    } else if (kind == '%') {
      result += '%';
      ++i;
    } else {
      result += format[i];
    }
  }
  return result;
}
