// A PostScript job on its way through its wrapping: job control, and what its documents lie in.
#pragma once

#include "documentfilter.h"
#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"

namespace kpx::filter {

// The code of `settings`, copies included.
DocumentCode CodeOfDocument(const JobSettings &settings);

// Copies the job with its code. Job control that the job brings is merged into that of the printer,
// or left out where the printer knows none; a job whose control enters another language than
// PostScript goes through as it is. Takes any bytes. What goes wrong with reading and writing shows
// in `source` and `sink`.
JobResult FilterPostScript(const JobSettings &settings, const JobIdentity &identity,
                           JobSource *source, JobSink *sink);

}  // namespace kpx::filter
