#include "textencoding.h"

#include <iconv.h>
#include <langinfo.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "textscan.h"

namespace {

// Length of the well-formed UTF-8 sequence at the start of `bytes`, 0 when there is none
// (table 3-7 of the Unicode Standard).
size_t SequenceLength(std::string_view bytes) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
  const auto in = [&](size_t i, int low, int high) {
    return i < bytes.size() && byte(i) >= low && byte(i) <= high;
  };
  const uint8_t first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return in(1, 0x80, 0xBF) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const int low = first == 0xE0 ? 0xA0 : 0x80;
    const int high = first == 0xED ? 0x9F : 0xBF;
    return in(1, low, high) && in(2, 0x80, 0xBF) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const int low = first == 0xF0 ? 0x90 : 0x80;
    const int high = first == 0xF4 ? 0x8F : 0xBF;
    return in(1, low, high) && in(2, 0x80, 0xBF) && in(3, 0x80, 0xBF) ? 4 : 0;
  }
  return 0;
}

bool IsContinuation(char c) { return (static_cast<uint8_t>(c) & 0xC0) == 0x80; }

// What stands for a character that a character set lacks: the typewriter's quotation mark and blank
// for those of the catalogues, "?" for any other.
char StandIn(std::string_view sequence) {
  if (sequence == "\u00AB" || sequence == "\u00BB") return '"';
  return sequence == "\u00A0" ? ' ' : '?';
}

// `text` in the locale's character set.
std::string LocaleBytes(std::string_view text) {
  const char *charset = nl_langinfo(CODESET);
  if (std::strcmp(charset, "UTF-8") == 0) return std::string(text);
  iconv_t converter = iconv_open(charset, "UTF-8");
  // As iconv_open(3) says.  NOLINTNEXTLINE(performance-no-int-to-ptr)
  if (converter == reinterpret_cast<iconv_t>(-1)) return std::string(text);
  std::string in(text);
  std::string result;
  char *from = in.data();
  size_t left = in.size();
  while (left > 0) {
    char buffer[256];
    char *to = buffer;
    size_t room = sizeof buffer;
    const size_t done = iconv(converter, &from, &left, &to, &room);
    result.append(buffer, sizeof buffer - room);
    if (done != static_cast<size_t>(-1) || errno == E2BIG || left == 0) continue;
    const size_t skip = SequenceLength({from, left});
    result += StandIn({from, skip});
    from += skip == 0 ? 1 : skip;
    left -= skip == 0 ? 1 : skip;
  }
  iconv_close(converter);
  return result;
}

// How many bytes at the start of `bytes` are ASCII, counted by eights as far as that goes.
size_t AsciiLength(std::string_view bytes) {
  constexpr uint64_t kHighBits = 0x8080808080808080U;
  size_t length = 0;
  uint64_t eight = 0;
  while (length + sizeof eight <= bytes.size()) {
    std::memcpy(&eight, bytes.data() + length, sizeof eight);
    if ((eight & kHighBits) != 0) break;
    length += sizeof eight;
  }
  while (length < bytes.size() && static_cast<uint8_t>(bytes[length]) < 0x80) ++length;
  return length;
}

}  // namespace

size_t ValidUtf8Length(std::string_view bytes) {
  size_t valid = 0;
  while (true) {
    valid += AsciiLength(bytes.substr(valid));
    if (valid == bytes.size()) return valid;
    const size_t length = SequenceLength(bytes.substr(valid));
    if (length == 0) return valid;
    valid += length;
  }
}

bool IsValidUtf8(std::string_view bytes) { return ValidUtf8Length(bytes) == bytes.size(); }

std::string Utf8FromLatin1(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto code = static_cast<uint8_t>(c);
    if (code < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | (code >> 6));
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

std::string DecodeLine(std::string_view bytes) {
  return IsValidUtf8(bytes) ? std::string(bytes) : Utf8FromLatin1(bytes);
}

std::string DisplayText(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const size_t length = SequenceLength(bytes);
    if (length == 0) {
      text += Utf8FromLatin1(bytes.substr(0, 1));
    } else {
      text += bytes.substr(0, length);
    }
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text;
}

std::string PlainText(std::string_view bytes) {
  std::string text = DisplayText(bytes);
  std::replace_if(text.begin(), text.end(), IsControlCharacter, '?');
  return text;
}

int CharacterCount(std::string_view text) {
  return static_cast<int>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

std::string_view Utf8Prefix(std::string_view text, size_t max_bytes) {
  if (text.size() <= max_bytes) return text;
  size_t end = max_bytes;
  // A sequence has at most three continuation bytes.
  while (end > 0 && max_bytes - end < 3 && IsContinuation(text[end])) --end;
  // Bytes that are no UTF-8 are cut as bytes.
  const bool splits = end + SequenceLength(text.substr(end)) > max_bytes;
  return text.substr(0, splits ? end : max_bytes);
}

std::string LocaleText(std::string_view text) { return LocaleBytes(text); }

void PrintError(std::string_view text) {
  const std::string bytes = LocaleBytes(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stderr);
  std::fflush(stderr);
}

void PrintErrorLine(std::string_view text) { PrintError(std::string(text) + "\n"); }

LineReader::LineReader(std::string_view buffer, Form form)
    : rest_(buffer),
      as_it_stands_(form == Form::Bytes ||
                    (buffer.find('\0') == std::string_view::npos && IsValidUtf8(buffer))) {}

std::optional<std::string> LineReader::Next() {
  const std::optional<std::string_view> line = NextView();
  if (!line) return std::nullopt;
  return std::string(*line);
}

std::optional<std::string_view> LineReader::NextView() {
  if (rest_.empty()) return std::nullopt;
  if (had_line_feed_) ++line_number_;
  const size_t feed = rest_.substr(0, kMaxLine + 1).find('\n');
  had_line_feed_ = feed != std::string_view::npos;
  const std::string_view line =
      had_line_feed_ ? rest_.substr(0, feed) : Utf8Prefix(rest_, kMaxLine);
  rest_.remove_prefix(line.size() + (had_line_feed_ ? 1 : 0));
  if (as_it_stands_) return line;
  const std::string_view text = line.substr(0, line.find('\0'));
  if (IsValidUtf8(text)) return text;
  decoded_ = Utf8FromLatin1(text);
  return decoded_;
}

std::optional<std::string> LineReader::NextDroppingLast() {
  std::optional<std::string> line = Next();
  // Kept on purpose: see the header.
  if (line && !line->empty() && !had_line_feed_ && AtEnd()) {
    line->resize(Utf8Prefix(*line, line->size() - 1).size());
  }
  return line;
}
