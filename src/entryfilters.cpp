#include "entryfilters.h"

#include "porting.h"

namespace {

constexpr std::string_view L_Digits = "0123456789";
constexpr std::string_view L_NotInJobTexts = "'=,";
constexpr std::string_view L_NotInEmailAddresses = "/\\,;:'`=";
constexpr std::string_view L_NotInPaperNames = "'=,!@#$%^&*()-_+[]{}:;\"\\|,.<>/? ";
// Kept on purpose: an underscore is allowed here alone, a back quote and a tilde are not.
constexpr std::string_view L_NotInMediaNames = "'=,!@#$%^&*()+-[]{}\":;.<>?/\\|`~ ";

// All the sets are ASCII, so no byte of a longer UTF-8 sequence is ever taken for a member.
std::string Without(std::string_view text, std::string_view left_out) {
  std::string kept;
  for (const char c : text) {
    if (left_out.find(c) == std::string_view::npos) kept += c;
  }
  return kept;
}

// The byte at which the character number `position` begins, or the end of the text.
size_t ByteOfCharacter(std::string_view text, int position) {
  size_t byte = 0;
  for (; position > 0 && byte < text.size(); --position) {
    do {
      ++byte;
    } while (byte < text.size() && (text[byte] & 0xC0) == 0x80);
  }
  return byte;
}

}  // namespace

std::string FilterQueueName(std::string_view inserted, int position) {
  std::string kept = Without(inserted, kNotInQueueNames);
  if (position == 0) kept.erase(0, kept.find_first_not_of(L_Digits));
  return kept;
}

bool QueueNameDeletionAllowed(std::string_view text, int start, int end) {
  if (start != 0 || end < 0) return true;
  const size_t next = ByteOfCharacter(text, end);
  return next >= text.size() || L_Digits.find(text[next]) == std::string_view::npos;
}

std::string FilterAddress(std::string_view inserted) { return Without(inserted, " "); }

std::string FilterDigits(std::string_view inserted) {
  std::string kept;
  for (const char c : inserted) {
    if (L_Digits.find(c) != std::string_view::npos) kept += c;
  }
  return kept;
}

std::string FilterMeasure(std::string_view inserted, bool takes_point, std::string_view point) {
  std::string kept;
  for (const char c : inserted) {
    if (L_Digits.find(c) != std::string_view::npos) {
      kept += c;
    } else if (takes_point && (c == '.' || c == ',')) {
      kept += point;
      takes_point = false;
    }
  }
  return kept;
}

std::string FilterJobText(std::string_view inserted) { return Without(inserted, L_NotInJobTexts); }

std::string FilterEmailAddress(std::string_view inserted) {
  return Without(inserted, L_NotInEmailAddresses);
}

std::string FilterCustomPaperName(std::string_view inserted) {
  return Without(inserted, L_NotInPaperNames);
}

std::string FilterCustomMediaName(std::string_view inserted) {
  return Without(inserted, L_NotInMediaNames);
}
