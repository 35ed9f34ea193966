// The job side of the filter, run over texts.
#pragma once

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"
#include "ppdadaptor.h"

using namespace kpx::filter;

// A source over `text`, which must outlive it, in reads of at most `step` bytes.
inline JobSource TextSource(const std::string &text, size_t step = 65536) {
  return JobSource([&text, step, at = size_t{0}](char *bytes, size_t size) mutable -> long {
    const size_t count = std::min({size, step, text.size() - at});
    std::memcpy(bytes, text.data() + at, count);
    at += count;
    return static_cast<long>(count);
  });
}

// What a filter function makes of `text`.
struct FilteredJob {
  std::string output;
  JobResult result;
};

template <typename Function>
FilteredJob ResultOver(Function function, const JobSettings &settings, const std::string &text,
                       size_t step = 65536,
                       const JobIdentity &identity = {"Title", "Event", "anna"}) {
  std::string output;
  JobSource source = TextSource(text, step);
  JobSink sink([&output](std::string_view bytes) {
    output += bytes;
    return true;
  });
  JobResult result = function(settings, identity, &source, &sink);
  return {std::move(output), std::move(result)};
}

// What a filter function writes; throws when it fails.
template <typename Function>
std::string RunOver(Function function, const JobSettings &settings, const std::string &text,
                    size_t step = 65536) {
  FilteredJob job = ResultOver(function, settings, text, step);
  if (job.result.Failed()) throw std::runtime_error(job.result.failure);
  return std::move(job.output);
}

// The warnings of a filter function, each with a line feed; throws when it fails.
template <typename Function>
std::string WarningsOver(Function function, const JobSettings &settings, const std::string &text) {
  const JobResult result = ResultOver(function, settings, text).result;
  if (result.Failed()) throw std::runtime_error(result.failure);
  std::string warnings;
  for (const std::string &warning : result.warnings) warnings += warning + "\n";
  return warnings;
}

inline PpdModel TestPpd(const std::string &name) {
  PpdError error;
  return ReadPpdFile(std::string(KPX_TEST_DATA) + "/data/ppd/" + name, &error).value();
}

// How often `part` lies in `text`.
inline size_t CountOf(const std::string &text, const std::string &part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}
