#include "pcljob.h"

#include <string_view>

#include "pclsettings.h"
#include "postscript.h"

namespace kpx::filter {

namespace {

// The language of the data: a PCL XL stream begins with its binding and "HP-PCL XL".
std::string_view LanguageOf(std::string_view data) {
  const bool binding = data.starts_with(") ") || data.starts_with("( ") || data.starts_with("' ");
  return binding && data.substr(2).starts_with("HP-PCL XL") ? "PCLXL" : "PCL";
}

// Where the job's own end of its frame begins, in the last bytes of a job: language switches and
// "@PJL EOJ", with nothing else behind them.
size_t EndOfFrame(std::string_view last) {
  for (size_t at = last.find(kUel); at != std::string_view::npos; at = last.find(kUel, at + 1)) {
    const std::string_view rest = last.substr(at);
    const JobControl end = ReadJobControl(rest, true);
    const bool nothing_else =
        end.length == rest.size() && end.settings.empty() && end.language.empty();
    if (nothing_else && rest.find("EOJ") != std::string_view::npos) return at;
  }
  return last.size();
}

// Copies the job's data without the end of a frame of its own: the frame is ours.
void CopyWithoutFrame(JobSource *source, JobSink *sink) {
  constexpr size_t kLongestEnd = 1024;
  for (;;) {
    const std::string_view data = source->Peek(JobSource::kCapacity);
    const bool is_last = data.size() < JobSource::kCapacity;
    const size_t kept = data.size() > kLongestEnd ? data.size() - kLongestEnd : 0;
    const size_t part = is_last ? kept + EndOfFrame(data.substr(kept)) : kept;
    sink->Write(data.substr(0, part));
    source->Skip(is_last ? data.size() : part);
    if (is_last || sink->Error() != 0) return;
  }
}

void WarnOfSettings(const JobSettings &settings, JobResult *result) {
  std::string names;
  for (const std::string &setting : SettingsWithoutPjl(settings)) {
    names += (names.empty() ? "" : ", ") + setting;
  }
  if (names.empty()) return;
  result->Warn(
      "not sent with a PCL job, because the printer description has no job command for it: " +
      names);
}

}  // namespace

JobResult FilterPcl(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                    JobSink *sink) {
  JobResult result;
  const bool is_postscript = settings.Model().pjl && EntersPostScript(PeekJobControl(source));
  if (!settings.Pages().IsEverything() && !is_postscript) {
    return Failure("\"" + settings.Pages().words +
                   "\" cannot be printed: nobody knows where a page of a PCL job ends");
  }
  if (!settings.Model().pjl) {
    source->CopyRest(sink);
    sink->Flush();
    if (settings.Copies() > 1) {
      result.Warn("printing one copy only: the printer description has no way to ask for more");
    }
    WarnOfSettings(settings, &result);
    return result;
  }
  if (is_postscript) return FilterPostScript(settings, identity, source, sink);
  WarnOfSettings(settings, &result);
  const JobControl control = TakeJobControl(source);
  if (!source->Peek(1).empty()) {
    const std::string_view data_language = LanguageOf(source->Peek(16));
    sink->Write(JobControlHeader(settings, identity, control.settings,
                                 control.language.empty() ? data_language : control.language));
    CopyWithoutFrame(source, sink);
    sink->Write(JobControlTrailer(settings.Model()));
  }
  sink->Flush();
  return result;
}

}  // namespace kpx::filter
