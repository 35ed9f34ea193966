// What a job holds, judged by its bytes and never by a name, and whether a queue can print that.
#pragma once

#include <string>
#include <string_view>

#include "jobsource.h"

namespace kpx::filter {

// Why the job in `source`, which stays as it is, cannot be printed on a queue for jobs of `type`
// ("postscript", "text", "pcl6"): one sentence that names what it is and what the queue prints.
// Empty when it can, or when that is not certain.
//  - Pictures, raster data, compressed and office files, programs: on no queue; nor PDF (but see
//    IsPdf for what becomes of it on a queue for PostScript).
//  - PostScript on a queue for PCL; PCL, or what is clearly text, on one for PostScript.
//  - On a queue for text, data with many NUL bytes that are not those of UTF-16.
// A job whose own job control enters another language than the queue's is printed as it asks.
[[nodiscard]] std::string RefusalOf(std::string_view type, JobSource *source);

// Whether the job in `source`, which stays as it is, is a PDF document.
[[nodiscard]] bool IsPdf(JobSource *source);

// Whether the beginning of a job that is to be PostScript is clearly text: it has the characters of
// text only, neither a line of the document conventions nor an operator that is a word of no other
// text ("showpage"), and a name outside of procedures that no interpreter knows and the job does
// not define. `whole` says that the job ends where `start` ends; then one that runs nothing is text
// too.
[[nodiscard]] bool IsClearlyText(std::string_view start, bool whole);

}  // namespace kpx::filter
