#include "pscomments.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "ppdmodel.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kPrologEnds[] = {"%%EndProlog", "%%BeginSetup", kPageMark};
constexpr std::string_view kForeign[] = {kBeginIncluded, "%%BeginBinary", "%%BeginData"};

// The bytes of counted data at the front of `ahead`; 0 when they do not end in it.
size_t DataLength(std::string_view ahead, const DataCount &data) {
  if (!data.in_lines) return data.count <= ahead.size() ? data.count : 0;
  size_t length = 0;
  for (size_t lines = 0; lines < data.count; ++lines) {
    const size_t end = ahead.find_first_of("\r\n", length);
    if (end == std::string_view::npos) return 0;
    length = end + (ahead.substr(end, 2) == "\r\n" ? 2 : 1);
  }
  return length;
}

}  // namespace

std::string_view WithoutEnd(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::string_view AfterTransmission(std::string_view line) {
  while (line.starts_with('\004')) line.remove_prefix(1);
  return line;
}

std::string_view AfterBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

bool IsHeaderComment(std::string_view line) {
  return line.size() > 1 && line[0] == '%' && line[1] > ' ' && line[1] < 0x7F &&
         !line.starts_with("%%Begin") && !line.starts_with("%%Page:") &&
         !line.starts_with("%%Trailer") && !line.starts_with("%%EOF");
}

bool BeginsData(std::string_view line) {
  return line.starts_with("%%BeginBinary:") || line.starts_with("%%BeginData:");
}

std::optional<DataCount> DataCountOf(std::string_view line) {
  const std::string_view text = AfterBlanks(line.substr(line.find(':') + 1));
  DataCount data;
  if (std::from_chars(text.data(), text.data() + text.size(), data.count).ec != std::errc()) {
    return std::nullopt;
  }
  data.in_lines = WithoutEnd(text).find("Lines") != std::string_view::npos;
  return data;
}

void CopyData(const DataCount &data, JobSource *source, JobSink *sink) {
  if (data.in_lines) {
    source->CopyLines(data.count, sink);
  } else {
    source->CopyBytes(data.count, sink);
  }
}

Look LookAhead(JobSource *source, std::string_view block_end, const DataCount &data) {
  constexpr size_t kSeen = JobSource::kCapacity / 2;
  std::string_view ahead = source->Peek(kSeen);
  const size_t size = ahead.size();
  const size_t data_length = DataLength(ahead, data);
  ahead.remove_prefix(data_length);
  for (bool begins_line = data_length > 0 || source->NextBeginsLine(); !ahead.empty();
       begins_line = true) {
    std::string_view line = ahead.substr(0, ahead.find_first_of("\r\n"));
    const size_t next_document = line.find(kUel);
    line = line.substr(0, next_document);
    const auto begins = [line](std::string_view mark) { return line.starts_with(mark); };
    const auto result = [&](Ahead what) { return Look{what, size - ahead.size() + line.size()}; };
    if (begins_line && std::any_of(std::begin(kPrologEnds), std::end(kPrologEnds), begins)) {
      return result(Ahead::Marked);
    }
    if (begins_line && !block_end.empty() &&
        SameKeyword(line.substr(0, block_end.size()), block_end)) {
      return result(Ahead::Marked);
    }
    if (begins_line && std::any_of(std::begin(kForeign), std::end(kForeign), begins)) {
      return result(Ahead::Unseen);
    }
    if (begins_line &&
        (line.starts_with(kEndOfDocument) || AfterTransmission(line).starts_with(kConforming))) {
      return result(Ahead::Missing);
    }
    if (next_document != std::string_view::npos) return result(Ahead::Missing);
    ahead.remove_prefix(std::min(line.size() + 1, ahead.size()));
  }
  return {size < kSeen ? Ahead::Missing : Ahead::Unseen, size};
}

}  // namespace kpx::filter
