// A PCL job on its way through.
#pragma once

#include <string>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"

namespace kpx::filter {

// Copies the job's data unchanged, but for the end of a frame of its own. For a printer that knows
// PJL the job control is put around it (the job's own merged in), and a job whose control enters
// PostScript is filtered as such; for another one nothing is added. What goes wrong with reading
// and writing shows in `source` and `sink`.
JobResult FilterPcl(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                    JobSink *sink);

}  // namespace kpx::filter
