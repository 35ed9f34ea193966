// The pages of PostScript documents as the settings want them on the paper.
#pragma once

#include "documentfilter.h"
#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"

namespace kpx::filter {

// Whether the settings put several pages on a side, or a booklet.
[[nodiscard]] bool UsesSheets(const JobSettings &settings);

// Whether they ask for anything but the document's pages as they come.
[[nodiscard]] bool ChangesPages(const JobSettings &settings);

// The settings for what surrounds the pages: a booklet is printed on both sides, and the printer's
// own controller does not turn sheets.
JobSettings SheetSettings(const JobSettings &settings);

// Writes the documents at the front of `source` with the code of the settings and with their pages
// as these say, up to the end of the job or a language switch. A document whose pages cannot be
// told apart is printed as it is, with a warning; with a selection of pages it is a failure before
// anything of it is written. Adds to `report`.
JobResult LayOutDocuments(const JobSettings &settings, JobSource *source, JobSink *sink,
                          CodeReport *report);

}  // namespace kpx::filter
