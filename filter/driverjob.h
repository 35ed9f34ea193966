// Jobs for printers that need a driver: the programs that their PPD files name, behind the
// spooler's converters.
#pragma once

#include <string>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pjl.h"

namespace kpx::filter {

inline constexpr char kPdfType[] = "application/pdf";

// What a driver is run with.
struct DriverCall {
  std::string ppd;   // path of the printer's PPD file, with its lines *cupsFilter
  std::string type;  // of the document: kPdfType or kPostScriptJob
};

// `model` for the pages that a driver gets: nothing in it but the sizes of paper makes code, since
// the driver is told the choices by their names.
PpdModel ModelForDriver(const PpdModel &model);

// Writes the data that the driver makes of the document in the file `document`, whose pages are
// laid out for the paper in force, with the choices and copies of `settings`. The driver runs
// within the limits of converters (converter.h).
JobResult PrintByDriver(const DriverCall &call, const JobSettings &settings,
                        const JobIdentity &identity, int document, JobSink *sink);

// Filters a PostScript or text job for such a printer.
using FilterFunction = JobResult (*)(const JobSettings &, const JobIdentity &, JobSource *,
                                     JobSink *);
JobResult FilterByDriver(const std::string &ppd, FilterFunction filter, const JobSettings &settings,
                         const JobIdentity &identity, JobSource *source, JobSink *sink);

}  // namespace kpx::filter
