#include "pcljob.h"

#include <string_view>

namespace {

// The language of the data: a PCL XL stream begins with its binding and "HP-PCL XL".
std::string_view LanguageOf(std::string_view data) {
  const bool binding = data.starts_with(") ") || data.starts_with("( ") || data.starts_with("' ");
  return binding && data.substr(2).starts_with("HP-PCL XL") ? "PCLXL" : "PCL";
}

}  // namespace

bool FilterPcl(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
               JobSink *sink) {
  const bool controlled = settings.Model().pjl;
  if (controlled) {
    const JobControl control = TakeJobControl(source);
    if (!source->Peek(1).empty()) {
      const std::string_view data_language = LanguageOf(source->Peek(16));
      sink->Write(JobControlHeader(settings, identity, control.settings,
                                   control.language.empty() ? data_language : control.language));
      source->CopyRest(sink);
      sink->Write(JobControlTrailer(settings.Model()));
    }
  } else {
    source->CopyRest(sink);
  }
  sink->Flush();
  return controlled || settings.Copies() == 1;
}
