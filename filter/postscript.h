// A PostScript job on its way through: the settings' code is put in where the document conventions
// ask for it.
#pragma once

#include <string>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"

namespace kpx::filter {

// The code for the parts of a document, ready to be written.
struct DocumentCode {
  std::string exit_server, prolog, setup, page_setup;
};

// The code of `settings`, copies included.
DocumentCode CodeOfDocument(const JobSettings &settings);

// Copies the job with its code. Job control that the job brings is merged into that of the printer,
// or left out where the printer knows none; a job whose control enters another language than
// PostScript goes through as it is. Takes any bytes. What goes wrong with reading and writing shows
// in `source` and `sink`.
JobResult FilterPostScript(const JobSettings &settings, const JobIdentity &identity,
                           JobSource *source, JobSink *sink);

}  // namespace kpx::filter
