// A text job: lines become PostScript pages.
#pragma once

#include <string>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"

namespace kpx::filter {

// Writes the job as a PostScript document with the settings' code in it. Each line is UTF-8 or,
// when it is not valid as that, ISO-8859-1. Long lines are wrapped at the last column, tabs go to
// every eighth column, a form feed begins a new page, a carriage return alone goes back to the
// first column and a backspace one column back; other control characters are left out. Courier in
// 12 points, or the queue's "*FontName" (a PostScript font's name, anything else counts as Courier)
// and "*FontSize". A line has as many characters as Courier would have there; one that another font
// makes wider is squeezed. textwords.h has what else a job can ask for. "*Nup" and "*NupOrder" put
// several pages on a side of the paper; with "*Booklet" the pages come two a side in the order of a
// booklet. That and a header need the number of pages: they come once the whole job is read. An
// empty job gives nothing. Fails when the file that keeps such pages does; what goes wrong
// with reading and writing shows in `source` and `sink`.
// Settings of the text that are given and not valid are a warning each.
JobResult FilterText(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                     JobSink *sink);

}  // namespace kpx::filter
