// The characters of a text job's bytes.
#pragma once

#include <string>
#include <string_view>

#include "jobsource.h"

namespace kpx::filter {

// The characters of `bytes` in Unicode's composed form (NFC). What is valid UTF-8 counts as that;
// every other byte counts by itself as one of Windows-1252, which is ISO-8859-1 with printable
// characters in place of its second set of controls. A byte that neither has is U+FFFD.
std::u32string DecodeText(std::string_view bytes);

// How many bytes at the start of `bytes` are printable ASCII.
size_t PrintableAsciiLength(std::string_view bytes);

// The text of `source` without its byte order mark; of UTF-16 that begins with one, the same text
// in UTF-8. An unpaired surrogate is U+FFFD. `source` must outlive the result.
JobSource DecodedSource(JobSource *source);

}  // namespace kpx::filter
