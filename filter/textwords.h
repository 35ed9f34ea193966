// What a job asks of its text pages beyond font and paper.
#pragma once

#include <cstddef>
#include <optional>

#include "jobresult.h"
#include "jobsettings.h"
#include "ppdmarking.h"

namespace kpx::filter {

// Nothing of it is done unless it is asked for.
struct TextWords {
  bool has_header = false;                         // "*TextHeader"
  bool has_numbers = false;                        // "*TextLineNumbers"
  bool wraps = true;                               // "*TextWrap"
  size_t columns = 1;                              // "*TextColumns"
  std::optional<double> characters_per_inch;       // "*TextCPI", of Courier
  std::optional<double> lines_per_inch;            // "*TextLPI"
  std::optional<double> left, right, top, bottom;  // "*TextLeft" ...: margins, points
};

// The settings' words; one whose value is not valid counts as not given.
TextWords TextWordsOf(const JobSettings &settings);

// A warning for each word that is given and not valid, which names its value and what is.
void WarnOfTextWords(const JobSettings &settings, JobResult *result);

// The setting that a word of CUPS asks for in a text job ("prettyprint", "columns", "cpi",
// "landscape" ...), its value as it was given; nothing when it is no such word.
[[nodiscard]] std::optional<KeyValue> TextSettingOf(const ApplicationOption &word);

}  // namespace kpx::filter
