#include "emailaddress.h"

#include <algorithm>

#include "debug.h"
#include "textencoding.h"

namespace {

constexpr int L_LongestAddress = 64;
constexpr int L_ShortestLastLabel = 2;
constexpr char L_Blank = ' ';

// The number of bytes before the first character that is no blank.
size_t LeadingBlanks(std::string_view text) {
  return std::min(text.find_first_not_of(L_Blank), text.size());
}

// A domain has a name before its first dot and at least two characters behind its last.
bool IsDomain(std::string_view domain) {
  const size_t dot = domain.rfind('.');
  if (dot == std::string_view::npos || domain.front() == '.') return false;
  return CharacterCount(domain.substr(dot + 1)) >= L_ShortestLastLabel;
}

// The bytes of the address at the start of `text`, 0 when it is none.
size_t AddressBytes(std::string_view text) {
  const size_t start = LeadingBlanks(text);
  const std::string_view address = text.substr(start, text.find(L_Blank, start) - start);
  const size_t at = address.find('@');
  if (at == std::string_view::npos || at == 0) return 0;
  const std::string_view domain = address.substr(at + 1);
  if (domain.find('@') != std::string_view::npos || !IsDomain(domain)) return 0;
  const size_t bytes = start + address.size();
  return CharacterCount(text.substr(0, bytes)) > L_LongestAddress ? 0 : bytes;
}

}  // namespace

int IsValidChars(std::string &text, bool fix) {
  const LogScope log("IsValidChars");
  if (fix) {
    text.erase(0, LeadingBlanks(text));
    text.erase(text.find_last_not_of(L_Blank) + 1);
  }
  return CharacterCount(text);
}

int IsValidEmailAddress(std::string_view text) {
  const LogScope log("IsValidEmailAddress");
  return CharacterCount(text.substr(0, AddressBytes(text)));
}

int IsValidEmailAddresses(std::string &text, bool fix) {
  const LogScope log("IsValidEmailAddresses");
  if (IsValidChars(text, fix) == 0) return 0;
  for (size_t position = 0; position < text.size();) {
    const size_t address = AddressBytes(std::string_view(text).substr(position));
    if (address == 0) return 0;
    position += address;
    const size_t blanks = LeadingBlanks(std::string_view(text).substr(position));
    if (fix && blanks > 1) text.erase(position, blanks - 1);
    // Blanks between two addresses do not count as part of the second.
    position += fix ? std::min<size_t>(blanks, 1) : blanks;
  }
  return CharacterCount(text);
}
