// What a PostScript document may be wrapped in: the tagged binary protocol (TBCP), which quotes the
// characters that mean something to the channel, and the DOS form of EPS, which puts a preview
// picture beside the document.
#pragma once

#include <string>
#include <string_view>

#include "jobsource.h"

namespace kpx::filter {

// Takes a UTF-8 byte order mark at the front of `source` off it.
void SkipByteOrderMark(JobSource *source);

// Whether a document in the tagged binary protocol begins with `start` (two bytes are enough).
[[nodiscard]] bool IsTaggedBinary(std::string_view start);

// The document in the tagged binary protocol at the front of `source`, which must outlive it,
// without its quotes: up to the end of the document or before a language switch.
JobSource FromTaggedBinary(JobSource *source);

// Writes to `sink` in the tagged binary protocol, its beginning first. To be flushed.
JobSink ToTaggedBinary(JobSink *sink);

// Whether a DOS EPS file begins with `start` (four bytes are enough).
[[nodiscard]] bool IsDosEps(std::string_view start);

// Takes what comes before the document of a DOS EPS file off `source`; gives the document's length
// in bytes, 0 when the file does not hold one.
size_t SkipToEpsDocument(JobSource *source);

// Drops all that is left.
void DropRest(JobSource *source);

// The next `length` bytes of `source`, which must outlive it.
JobSource PartOf(JobSource *source, size_t length);

}  // namespace kpx::filter
