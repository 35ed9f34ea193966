#include "textdecoding.h"

#include <glib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

#include "byteordermark.h"
#include "textencoding.h"

namespace kpx::filter {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Windows-1252 from 0x80 on, as the Encoding Standard has it but for the five bytes that stay
// without a character.
constexpr char32_t kWindows1252[] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

char32_t CharacterOfByte(uint8_t byte) {
  return byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : byte;
}

// The first character of well-formed UTF-8, taken off it.
char32_t TakeCharacter(std::string_view *text) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>((*text)[i]); };
  const uint8_t first = byte(0);
  const size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  char32_t character = length == 1 ? first : first & (0x7F >> length);
  for (size_t i = 1; i < length; ++i) character = (character << 6) | (byte(i) & 0x3F);
  text->remove_prefix(length);
  return character;
}

// Whether composing could change something: marks, and the letters of which Korean syllables are
// made.
bool MayCompose(char32_t character) {
  if (character < 0x300) return false;
  // Letters, signs and ideographs without any.
  if ((character >= 0x370 && character < 0x483) || (character >= 0x2190 && character < 0x302A) ||
      (character >= 0x3100 && character < 0xA66F)) {
    return false;
  }
  if (character >= 0x1100 && character < 0x1200) return true;
  return g_unichar_ismark(character) || (character >= 0x1F71 && character < 0x2002) ||
         (character >= 0x2126 && character < 0x212C) ||
         (character >= 0xF900 && character < 0xFB50) || character >= 0x2F800;
}

std::u32string Composed(const std::u32string &text) {
  if (std::none_of(text.begin(), text.end(), MayCompose)) return text;
  glong size = 0;
  const std::unique_ptr<gchar, decltype(&g_free)> utf8(
      g_ucs4_to_utf8(reinterpret_cast<const gunichar *>(text.data()),
                     static_cast<glong>(text.size()), nullptr, &size, nullptr),
      g_free);
  if (utf8 == nullptr) return text;
  const std::unique_ptr<gchar, decltype(&g_free)> composed(
      g_utf8_normalize(utf8.get(), size, G_NORMALIZE_NFC), g_free);
  if (composed == nullptr) return text;
  std::u32string result;
  std::string_view left = composed.get();
  while (!left.empty()) result += TakeCharacter(&left);
  return result;
}

char32_t UnitOf(std::string_view bytes, bool is_big_endian) {
  const auto first = static_cast<uint8_t>(bytes[0]), second = static_cast<uint8_t>(bytes[1]);
  return is_big_endian ? first << 8 | second : second << 8 | first;
}

bool IsLeading(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsTrailing(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(char32_t character, std::string *text) {
  char buffer[6];
  text->append(buffer, static_cast<size_t>(g_unichar_to_utf8(character, buffer)));
}

// Reads UTF-16 as UTF-8.
class Utf16Reader {
 public:
  Utf16Reader(JobSource *source, bool is_big_endian)
      : source_(source), is_big_endian_(is_big_endian) {}

  long operator()(char *bytes, size_t size) {
    while (ready_.empty() && Refill()) {
    }
    const size_t count = std::min(size, ready_.size());
    std::memcpy(bytes, ready_.data(), count);
    ready_.erase(0, count);
    return static_cast<long>(count);
  }

 private:
  // Makes more text ready; false at the end.
  bool Refill() {
    const std::string_view bytes = source_->Peek(JobSource::kLongestPiece);
    if (bytes.empty()) return false;
    size_t used = 0;
    while (used + 2 <= bytes.size()) {
      const char32_t unit = UnitOf(bytes.substr(used), is_big_endian_);
      char32_t character = IsLeading(unit) || IsTrailing(unit) ? kReplacement : unit;
      size_t length = 2;
      if (IsLeading(unit)) {
        // At the end of what is there: wait for the other half, unless nothing else comes.
        if (used + 4 > bytes.size() && used > 0) break;
        if (used + 4 <= bytes.size()) {
          const char32_t next = UnitOf(bytes.substr(used + 2), is_big_endian_);
          if (IsTrailing(next)) {
            character = 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
            length = 4;
          }
        }
      }
      AppendUtf8(character, &ready_);
      used += length;
    }
    if (used == 0) {  // half a character at the end
      AppendUtf8(kReplacement, &ready_);
      used = bytes.size();
    }
    source_->Skip(used);
    return true;
  }

  JobSource *source_;
  bool is_big_endian_;
  std::string ready_;
};

}  // namespace

std::u32string DecodeText(std::string_view bytes) {
  std::u32string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    std::string_view valid = bytes.substr(0, ValidUtf8Length(bytes));
    bytes.remove_prefix(valid.size());
    while (!valid.empty()) text += TakeCharacter(&valid);
    if (bytes.empty()) break;
    text += CharacterOfByte(static_cast<uint8_t>(bytes.front()));
    bytes.remove_prefix(1);
  }
  return Composed(text);
}

size_t PrintableAsciiLength(std::string_view bytes) {
  // In blocks, which the compiler compares many bytes at a time.
  constexpr size_t kBlock = 64;
  const auto is_other = [](char c) { return static_cast<uint8_t>(c - 0x20) > 0x7E - 0x20; };
  size_t length = 0;
  while (length + kBlock <= bytes.size()) {
    unsigned others = 0;
    for (size_t i = 0; i < kBlock; ++i) others |= is_other(bytes[length + i]) ? 1U : 0U;
    if (others != 0) break;
    length += kBlock;
  }
  while (length < bytes.size() && !is_other(bytes[length])) ++length;
  return length;
}

JobSource DecodedSource(JobSource *source) {
  const std::string_view start = source->Peek(kByteOrderMark.size());
  const bool is_big_endian = start.starts_with("\xFE\xFF");
  if (is_big_endian || start.starts_with("\xFF\xFE")) {
    source->Skip(2);
    return JobSource(Utf16Reader(source, is_big_endian));
  }
  if (start == kByteOrderMark) source->Skip(kByteOrderMark.size());
  return JobSource([source](char *bytes, size_t size) -> long {
    const std::string_view next = source->Peek(std::min(size, JobSource::kCapacity));
    std::memcpy(bytes, next.data(), next.size());
    source->Skip(next.size());
    return static_cast<long>(next.size());
  });
}

}  // namespace kpx::filter
