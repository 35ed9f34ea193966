#include "ppdtext.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

#include "ppdmodel.h"
#include "textencoding.h"
#include "textscan.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kEncodingKeyword = "*LanguageEncoding:";
constexpr std::string_view kVersionKeyword = "*PPD-Adobe:";

// Calls `use(offset, line)` for every line, without its end (LF, CR LF or CR), until it gives
// false.
template <typename Use>
void ForEachLine(std::string_view text, Use use) {
  size_t offset = 0;
  while (offset < text.size()) {
    const size_t end = std::min(text.find_first_of("\r\n", offset), text.size());
    if (!use(offset, text.substr(offset, end - offset))) return;
    const bool pair = text.substr(end, 2) == "\r\n";
    offset = end + (pair ? 2 : 1);
  }
}

std::string DeclaredEncoding(std::string_view ppd) {
  std::string encoding;
  ForEachLine(ppd, [&](size_t, std::string_view line) {
    if (!line.starts_with(kEncodingKeyword)) return true;
    encoding = Trimmed(line.substr(kEncodingKeyword.size()));
    return false;
  });
  return encoding;
}

}  // namespace

PreparedPpd PreparePpd(std::string_view ppd) {
  const std::string declared = DeclaredEncoding(ppd);
  const bool eight_bit =
      std::any_of(ppd.begin(), ppd.end(), [](char c) { return (c & 0x80) != 0; });
  const bool as_it_stands = declared.empty() || SameKeyword(declared, "ISOLatin1") ||
                            SameKeyword(declared, "UTF-8") || (eight_bit && IsValidUtf8(ppd));
  if (!as_it_stands) return {std::string(ppd), 0};

  // A declaration of our own goes right behind the first line, since names may stand before the
  // file's, which becomes a comment: libcups loses memory over a second one.
  constexpr std::string_view kUtf8 = "*LanguageEncoding: UTF-8";
  PreparedPpd prepared;
  bool declared_now = false;
  prepared.text.reserve(ppd.size() + 32);
  ForEachLine(ppd, [&](size_t, std::string_view line) {
    if (line.starts_with(kEncodingKeyword)) {
      line = declared_now ? "*%" : kUtf8;
      declared_now = true;
    }
    prepared.text += line;
    prepared.text += '\n';
    if (!declared_now && line.starts_with(kVersionKeyword) &&
        std::count(line.begin(), line.end(), '"') == 2) {
      prepared.text += kUtf8;
      prepared.text += '\n';
      prepared.added_lines = 1;
      declared_now = true;
    }
    return true;
  });
  return prepared;
}

bool DropOrphanedValue(std::string *ppd, int line) {
  constexpr int kMostLines = 40;
  int number = 0;
  size_t begin = std::string::npos;
  size_t end = std::string::npos;
  std::string_view last;
  ForEachLine(*ppd, [&](size_t offset, std::string_view text) {
    if (++number < line) return true;
    if (number == line) begin = offset;
    if (text.starts_with("*End")) {
      if (number > line && Trimmed(last).ends_with('"')) end = offset + text.size();
      return false;
    }
    last = text;
    return !text.starts_with('*') && number - line < kMostLines;
  });
  if (begin == std::string::npos || end == std::string::npos) return false;
  // Emptied rather than removed, so that later messages keep their line numbers.
  for (size_t i = begin; i < end; ++i) {
    if ((*ppd)[i] != '\n' && (*ppd)[i] != '\r') (*ppd)[i] = ' ';
  }
  return true;
}

bool DefinesChoice(std::string_view ppd, std::string_view keyword, std::string_view choice) {
  bool found = false;
  ForEachLine(ppd, [&](size_t, std::string_view line) {
    if (!line.starts_with('*') || !SameKeyword(line.substr(1, keyword.size()), keyword)) {
      return true;
    }
    std::string_view rest = line.substr(1 + keyword.size());
    const size_t name = rest.find_first_not_of(" \t");
    if (name == 0 || name == std::string_view::npos) return true;
    rest.remove_prefix(name);
    found = SameKeyword(rest.substr(0, rest.find_first_of("/: \t")), choice);
    return !found;
  });
  return found;
}

std::string CleanText(std::string_view bytes) {
  const std::string text = DecodeLine(bytes);
  std::string clean;
  for (const char c : text) {
    const bool line_end = c == '\n' || c == '\r';
    if (line_end && !clean.ends_with('\n')) clean += '\n';
    const auto code = static_cast<uint8_t>(c);
    if (!line_end && ((code >= 0x20 && code != 0x7F) || c == '\t')) clean += c;
  }
  std::replace(clean.begin(), clean.end(), '\n', ' ');
  return clean;
}

std::string DecodeHex(std::string_view code) {
  std::string decoded;
  while (!code.empty()) {
    const size_t close = code.front() == '<' ? code.find('>') : std::string_view::npos;
    const std::string_view digits =
        close == std::string_view::npos ? std::string_view() : code.substr(1, close - 1);
    std::string bytes;
    int high = -1;
    bool valid = !digits.empty();
    for (const char c : digits) {
      if (std::isspace(static_cast<unsigned char>(c)) != 0) continue;
      const int value = HexValue(c);
      if (value < 0) {
        valid = false;
        break;
      }
      if (high >= 0) bytes += static_cast<char>(high * 16 + value);
      high = high >= 0 ? -1 : value;
    }
    if (valid && high < 0 && !bytes.empty()) {
      decoded += bytes;
      code.remove_prefix(close + 1);
    } else {
      decoded += code.front();
      code.remove_prefix(1);
    }
  }
  return decoded;
}

}  // namespace kpx::filter
