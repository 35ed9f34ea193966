#include "requestfile.h"

#include <algorithm>
#include <cstddef>

#include "textencoding.h"

bool IsRequestName(std::string_view request) {
  constexpr size_t kLongestName = 255;  // of a file
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  const auto is_odd = [](char c) { return (c >= 0 && c < ' ') || c == 0x7F || c == '/'; };
  const size_t dash = request.rfind('-');
  if (dash == std::string_view::npos || dash == 0 || dash + 1 == request.size()) return false;
  return std::all_of(request.begin() + static_cast<std::ptrdiff_t>(dash) + 1, request.end(),
                     is_digit) &&
         request.size() <= kLongestName && IsValidUtf8(request) &&
         std::none_of(request.begin(), request.end(), is_odd);
}

std::string RequestDirectory(std::string_view users_directory, std::string_view login) {
  if (login.empty() || login == "." || login == ".." || login.find('/') != std::string_view::npos) {
    return {};
  }
  return std::string(users_directory) + "/" + std::string(login);
}
