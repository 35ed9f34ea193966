// A PCL job on its way through.
#pragma once

#include "joblanguage.h"
#include "jobsettings.h"
#include "jobsource.h"

// Copies the job's data unchanged. For a printer that knows PJL the job control is put around it
// (the job's own merged in); for another one nothing is added. Failures show in `source` and
// `sink`. Returns whether the number of copies reaches the printer.
bool FilterPcl(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
               JobSink *sink);
