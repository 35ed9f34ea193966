// Settings of a job that the printer cannot combine.
#pragma once

#include <string>
#include <vector>

#include "jobsettings.h"

namespace kpx::filter {

// Whether `option` of `feature` (with its asterisk, "*CustomPageSize True" included) is in force.
[[nodiscard]] bool IsInForce(const JobSettings &settings, const std::string &feature,
                             const std::string &option);

// A text for each pair of settings in force that a constraint of the printer excludes, with both
// sides as option files have them. Two settings that are both the printer's defaults do not
// conflict.
std::vector<std::string> ConflictTexts(const JobSettings &settings);

}  // namespace kpx::filter
