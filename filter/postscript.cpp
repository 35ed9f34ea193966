#include "postscript.h"

#include <string_view>

#include "featurecode.h"
#include "wrappedjob.h"

namespace kpx::filter {

namespace {

// A document's way through its wrapping. Returns what DocumentFilter::Run returns.
bool FilterPlain(const JobSettings &settings, const DocumentCode &code, JobSource *source,
                 JobSink *sink) {
  return DocumentFilter(settings.Model(), code, source, sink).Run();
}

bool FilterTagged(const JobSettings &settings, const DocumentCode &code, JobSource *source,
                  JobSink *sink) {
  JobSource document = FromTaggedBinary(source);
  JobSink tagged = ToTaggedBinary(sink);
  const bool in_place = FilterPlain(settings, code, &document, &tagged);
  // A language switch that was quoted is data.
  document.CopyRest(&tagged);
  tagged.Flush();
  constexpr std::string_view kBetween = "\004\r\n";
  while (!source->Peek(1).empty() &&
         kBetween.find(source->Peek(1).front()) != std::string_view::npos) {
    source->Skip(1);
  }
  return in_place;
}

bool FilterEps(const JobSettings &settings, const DocumentCode &code, size_t length,
               JobSource *source, JobSink *sink) {
  JobSource document = PartOf(source, length);
  const bool in_place = FilterPlain(settings, code, &document, sink);
  document.CopyRest(sink);
  DropRest(source);
  return in_place;
}

}  // namespace

DocumentCode CodeOfDocument(const JobSettings &settings) {
  DocumentCode code;
  const auto exit_server = CodeOfSection(settings, PpdSection::Exit);
  // A job of its own, as what it sets is to last.
  if (!exit_server.empty()) {
    code.exit_server = "%!PS-Adobe-3.0 ExitServer\n" + GuardedFeatures(exit_server) + "%%EOF\n";
  }
  code.prolog = GuardedFeatures(CodeOfSection(settings, PpdSection::Prolog));
  code.setup =
      GuardedFeatures(CodeOfSection(settings, PpdSection::Document)) + CopiesCode(settings);
  code.page_setup = GuardedFeatures(CodeOfSection(settings, PpdSection::Page));
  return code;
}

JobResult FilterPostScript(const JobSettings &settings, const JobIdentity &identity,
                           JobSource *source, JobSink *sink) {
  const DocumentCode code = CodeOfDocument(settings);
  bool in_place = true;
  // More than one turn for a job that holds several documents with job control between them.
  for (;;) {
    const JobControl control = TakeJobControl(source);
    SkipByteOrderMark(source);
    if (source->Peek(1).empty() || sink->Error() != 0) break;
    if (source->Peek(kUel.size()) == kUel) continue;
    const bool other = !control.language.empty() && !EntersPostScript(control);
    const bool is_eps = !other && IsDosEps(source->Peek(4));
    const size_t eps_length = is_eps ? SkipToEpsDocument(source) : 0;
    if (is_eps && eps_length == 0) {
      sink->Flush();
      return Failure("the EPS file does not hold the PostScript that its header names");
    }
    sink->Write(JobControlHeader(settings, identity, control.settings,
                                 other ? control.language : "POSTSCRIPT"));
    if (other) {
      source->CopyRest(sink);
    } else if (is_eps) {
      in_place = FilterEps(settings, code, eps_length, source, sink) && in_place;
    } else if (IsTaggedBinary(source->Peek(2))) {
      in_place = FilterTagged(settings, code, source, sink) && in_place;
    } else {
      in_place = FilterPlain(settings, code, source, sink) && in_place;
    }
    sink->Write(JobControlTrailer(settings.Model()));
  }
  sink->Flush();
  JobResult result;
  if (!in_place) {
    result.Warn("the job's prolog is not marked as ended: options and copies may not count");
  }
  return result;
}

}  // namespace kpx::filter
