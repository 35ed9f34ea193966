#include "wrappedjob.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "byteordermark.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kTagged = "\001M";
constexpr std::string_view kDosEps = "\xC5\xD0\xD3\xC6";
constexpr char kQuote = '\001';
constexpr char kQuoteBit = 0x40;
constexpr char kEndOfDocument = '\004';
// The characters that the channel would take for its own.
constexpr std::string_view kQuoted = "\001\003\004\005\021\023\024\034";

// The number of four bytes at `place`, the lowest first.
size_t NumberAt(std::string_view bytes, size_t place) {
  size_t number = 0;
  for (size_t i = 4; i > 0; --i) number = number << 8 | static_cast<uint8_t>(bytes[place + i - 1]);
  return number;
}

// Drops `count` bytes, as far as there are any.
void Drop(JobSource *source, size_t count) {
  while (count > 0) {
    const size_t part = source->Peek(std::min(count, JobSource::kCapacity)).size();
    if (part == 0) return;
    source->Skip(part);
    count -= part;
  }
}

}  // namespace

void SkipByteOrderMark(JobSource *source) {
  if (source->Peek(kByteOrderMark.size()) == kByteOrderMark) source->Skip(kByteOrderMark.size());
}

bool IsTaggedBinary(std::string_view start) { return start.starts_with(kTagged); }

JobSource FromTaggedBinary(JobSource *source) {
  source->Skip(kTagged.size());
  return JobSource([source](char *bytes, size_t size) -> long {
    constexpr size_t kStep = 4096;
    const std::string_view coded = source->Peek(kStep + kUel.size());
    size_t at = 0, count = 0;
    while (at < std::min(coded.size(), kStep) && count < size) {
      char c = coded[at];
      if (c == kEndOfDocument || coded.substr(at).starts_with(kUel)) break;
      if (c == kQuote && at + 1 < coded.size()) c = static_cast<char>(coded[++at] ^ kQuoteBit);
      ++at;
      bytes[count++] = c;
    }
    source->Skip(at);
    return static_cast<long>(count);
  });
}

JobSink ToTaggedBinary(JobSink *sink) {
  sink->Write(kTagged);
  return JobSink([sink](std::string_view bytes) {
    std::string coded;
    for (size_t i = 0; i < bytes.size(); ++i) {
      const bool quoted =
          kQuoted.find(bytes[i]) != std::string_view::npos || bytes.substr(i).starts_with(kUel);
      if (quoted) coded += kQuote;
      coded += quoted ? static_cast<char>(bytes[i] ^ kQuoteBit) : bytes[i];
    }
    sink->Write(coded);
    errno = sink->Error();
    return sink->Error() == 0;
  });
}

bool IsDosEps(std::string_view start) { return start.starts_with(kDosEps); }

size_t SkipToEpsDocument(JobSource *source) {
  constexpr size_t kOffset = 4, kLength = 8, kHeader = 12;  // places in the file, bytes
  const std::string header(source->Peek(kHeader));
  if (header.size() < kHeader) return 0;
  Drop(source, NumberAt(header, kOffset));
  return source->Peek(2) == "%!" ? NumberAt(header, kLength) : 0;
}

void DropRest(JobSource *source) { Drop(source, SIZE_MAX); }

JobSource PartOf(JobSource *source, size_t length) {
  return JobSource([source, length](char *bytes, size_t size) mutable -> long {
    const std::string_view part = source->Peek(std::min({size, length, JobSource::kCapacity}));
    std::memcpy(bytes, part.data(), part.size());
    const size_t count = part.size();
    source->Skip(count);
    length -= count;
    return static_cast<long>(count);
  });
}

}  // namespace kpx::filter
