// The job-control part of a job: the PJL commands around the data.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "jobsettings.h"
#include "jobsource.h"

namespace kpx::filter {

// Who prints what.
struct JobIdentity {
  std::string title;     // of the job
  std::string event;     // what notifications about the job call it
  std::string user;      // login name of the owner
  std::time_t time = 0;  // when the job is printed
};

// The job control at the start of a job, as an application or a driver put it there.
struct JobControl {
  size_t length = 0;     // bytes it takes, 0 when there is none
  std::string settings;  // its commands, a line each, without those that open or end the job
  std::string language;  // of "@PJL ENTER LANGUAGE", in capitals; empty without one
};

// Reads the job control at the beginning of `start`: leading end-of-transmission characters, then
// language switches (kUel) and PJL lines up to the one that enters a language, with the empty lines
// after it when that is PostScript. `whole` says that the job ends where `start` ends, and with it
// a last line without line feed.
JobControl ReadJobControl(std::string_view start, bool whole);

// What goes before a job in `language` ("POSTSCRIPT", "PCLXL", "PCL"); empty where the printer
// knows no job control. In this order: the PPD's beginning (or the general one), the job's own
// commands, job name, owner, delivery PIN and notification as the settings give them, number of
// copies and what else PJL can ask for unless it is PostScript's business, the options of the PPD's
// JCLSetup section, the switch to the language.
std::string JobControlHeader(const JobSettings &settings, const JobIdentity &identity,
                             const std::string &job_commands, std::string_view language);

// Why the delivery that is chosen cannot be asked for: it is to wait for a PIN, and there is no
// valid one (four digits), or no way to send it. Empty when it can. Never names the PIN.
[[nodiscard]] std::string DeliveryProblem(const JobSettings &settings);

// Whether the job control enters PostScript.
[[nodiscard]] bool EntersPostScript(const JobControl &control);

// The job control at the front of `source`, which keeps it.
JobControl PeekJobControl(JobSource *source);

// Takes the job control at the front of `source` off it.
JobControl TakeJobControl(JobSource *source);

// What goes after the job; empty where the printer knows no job control.
std::string JobControlTrailer(const PpdModel &model);

}  // namespace kpx::filter
