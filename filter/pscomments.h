// The document structuring conventions of PostScript: the comments that show what the parts of a
// document are.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "jobsource.h"

namespace kpx::filter {

// What a document that follows the conventions begins with, and what it ends with.
inline constexpr std::string_view kConforming = "%!PS-Adobe-", kEndOfDocument = "%%EOF";
inline constexpr std::string_view kPageMark = "%%Page:", kTrailerMark = "%%Trailer";
inline constexpr std::string_view kBeginIncluded = "%%BeginDocument";
inline constexpr std::string_view kEndIncluded = "%%EndDocument";

// `line` without its line end.
std::string_view WithoutEnd(std::string_view line);

// `line` without the ends of transmission before it, which end a job of their own.
std::string_view AfterTransmission(std::string_view line);

// `text` from its first character on that is no blank.
std::string_view AfterBlanks(std::string_view text);

// Whether the rest of the header still lies in `line`: comments of the conventions have a printable
// character behind the percent sign.
[[nodiscard]] bool IsHeaderComment(std::string_view line);

// How much a line "%%BeginBinary:" or "%%BeginData:" counts.
struct DataCount {
  size_t count = 0;
  bool in_lines = false;
};

// Whether `line` is such a line.
[[nodiscard]] bool BeginsData(std::string_view line);

// What it counts: "%%BeginBinary: <bytes>", "%%BeginData: <count> [<type> [Bytes | Lines]]";
// nothing where there is no number.
[[nodiscard]] std::optional<DataCount> DataCountOf(std::string_view line);

// Hands the counted data at the front of `source` to `sink`.
void CopyData(const DataCount &data, JobSource *source, JobSink *sink);

// What the rest of a document shows of a mark.
enum class Ahead {
  Marked,   // it is there
  Unseen,   // it is not in the part that can be seen
  Missing,  // the document ends without it
};

// What a look ahead shows, and how many bytes it took.
struct Look {
  Ahead what;
  size_t bytes;
};

// Looks ahead for a mark that ends a prolog or, when `block_end` is not empty, begins so. What an
// included document or counted data holds says nothing about this one, so these end the search, and
// so does the end of the document or the beginning of another;
// `data` comes next and is passed over, if it ends in what can be seen.
Look LookAhead(JobSource *source, std::string_view block_end, const DataCount &data = {});

}  // namespace kpx::filter
