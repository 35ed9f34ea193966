// What of a job's settings reaches a printer whose job is not PostScript: what the printer
// description has job commands (PJL) for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jobsettings.h"

namespace kpx::filter {

// The commands, a line each, for the choices in force. A variable that the job's own commands
// `job_commands` (a line each) set is the job's business.
std::string PjlCommands(const JobSettings &settings, std::string_view job_commands);

// The variable for the number of copies: that of whole sets when they are to be collated.
std::string_view CopiesVariable(const JobSettings &settings);

// The settings, as option files have them, that differ from the printer's defaults and that no job
// command can ask for.
std::vector<std::string> SettingsWithoutPjl(const JobSettings &settings);

}  // namespace kpx::filter
