// Filters PDF documents for queues of PostScript printers.
#pragma once

#include <string>
#include <vector>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"
#include "ppdmarking.h"

namespace kpx::filter {

// What is done to a document's pages before they become PostScript.
struct PageRequest {
  std::string ppd;                       // the text of the queue's PPD file, without code
  std::vector<ApplicationOption> words;  // of the job: page ranges, pages a sheet, scaling ...
  std::string driver_ppd;                // path of the PPD file of a printer that needs its driver
};

// Writes the PDF document in `source` as a PostScript job with the settings' code, or what the
// printer's driver makes of it. Its pages are
// laid out for the paper in force: what `request` says, else the settings' pages a sheet or
// booklet. A document that cannot be read is a failure before anything is written.
JobResult FilterPdf(const JobSettings &settings, const JobIdentity &identity,
                    const PageRequest &request, JobSource *source, JobSink *sink);

}  // namespace kpx::filter
