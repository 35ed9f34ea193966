#include "pcljob.h"

#include <string_view>

#include "postscript.h"

namespace {

// The language of the data: a PCL XL stream begins with its binding and "HP-PCL XL".
std::string_view LanguageOf(std::string_view data) {
  const bool binding = data.starts_with(") ") || data.starts_with("( ") || data.starts_with("' ");
  return binding && data.substr(2).starts_with("HP-PCL XL") ? "PCLXL" : "PCL";
}

}  // namespace

JobResult FilterPcl(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                    JobSink *sink) {
  JobResult result;
  if (!settings.Model().pjl) {
    source->CopyRest(sink);
    sink->Flush();
    if (settings.Copies() > 1) {
      result.Warn("one copy only: the printer description gives no way to ask for more");
    }
    return result;
  }
  if (EntersPostScript(PeekJobControl(source))) {
    return FilterPostScript(settings, identity, source, sink);
  }
  const JobControl control = TakeJobControl(source);
  if (!source->Peek(1).empty()) {
    const std::string_view data_language = LanguageOf(source->Peek(16));
    sink->Write(JobControlHeader(settings, identity, control.settings,
                                 control.language.empty() ? data_language : control.language));
    source->CopyRest(sink);
    sink->Write(JobControlTrailer(settings.Model()));
  }
  sink->Flush();
  return result;
}
