#include "postscript.h"

#include <string>
#include <string_view>
#include <vector>

#include "documentlayout.h"
#include "featurecode.h"
#include "sheets.h"
#include "wrappedjob.h"

namespace kpx::filter {

namespace {

// The documents of a job on their way through their wrapping.
class PostScriptJob {
 public:
  PostScriptJob(const JobSettings &settings, JobSink *sink) : settings_(settings), sink_(sink) {}

  void FilterPlain(JobSource *source) { Filter(source, sink_); }
  void FilterTagged(JobSource *source);
  void FilterEps(size_t length, JobSource *source);
  void CopyOther(JobSource *source);

  // A failure, or the warnings.
  JobResult Result() const;
  [[nodiscard]] bool Failed() const { return !failure_.empty(); }

 private:
  void Filter(JobSource *source, JobSink *sink);
  void CopyRest(JobSource *source, JobSink *sink);

  const JobSettings &settings_;
  JobSink *sink_;
  const DocumentCode code_ = CodeOfDocument(settings_);
  CodeReport report_;
  std::vector<std::string> warnings_;
  std::string failure_;
};

void PostScriptJob::Filter(JobSource *source, JobSink *sink) {
  if (!ChangesPages(settings_)) {
    report_.Add(DocumentFilter(settings_.Model(), code_, source, sink).Run());
    return;
  }
  const JobResult result = LayOutDocuments(settings_, source, sink, &report_);
  failure_ = result.failure;
  if (warnings_.empty()) warnings_ = result.warnings;
}

// What comes behind the documents: it may hold pages that were not asked for.
void PostScriptJob::CopyRest(JobSource *source, JobSink *sink) {
  if (!settings_.Pages().IsEverything() && !source->Peek(1).empty() && failure_.empty()) {
    failure_ = "the pages of \"" + settings_.Pages().words +
               "\" cannot be told from the others in this job: it holds other data";
  }
  if (failure_.empty()) source->CopyRest(sink);
}

void PostScriptJob::FilterTagged(JobSource *source) {
  JobSource document = FromTaggedBinary(source);
  JobSink tagged = ToTaggedBinary(sink_);
  Filter(&document, &tagged);
  // A language switch that was quoted is data.
  CopyRest(&document, &tagged);
  if (Failed()) return;
  tagged.Flush();
  constexpr std::string_view kBetween = "\004\r\n";
  while (!source->Peek(1).empty() &&
         kBetween.find(source->Peek(1).front()) != std::string_view::npos) {
    source->Skip(1);
  }
}

void PostScriptJob::FilterEps(size_t length, JobSource *source) {
  JobSource document = PartOf(source, length);
  Filter(&document, sink_);
  CopyRest(&document, sink_);
  DropRest(source);
}

// A job in another language.
void PostScriptJob::CopyOther(JobSource *source) {
  CopyRest(source, sink_);
  if (UsesSheets(settings_) && warnings_.empty()) {
    warnings_.push_back("only PostScript is put on sheets: this job is printed as it is");
  }
}

JobResult PostScriptJob::Result() const {
  if (Failed()) return Failure(failure_);
  JobResult result;
  WarnOfPageSettings(settings_, &result);
  for (const std::string &warning : warnings_) result.Warn(warning);
  if (!report_.is_in_place) {
    result.Warn("the job's prolog is not marked as ended: options and copies may not count");
  }
  if (!report_.unkept.empty()) {
    result.Warn("the job itself sets " + report_.unkept +
                ", and does not mark where its set-up ends: what was chosen may not count");
  }
  return result;
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
  code.kept = KeptChoices(settings);
  return code;
}

JobResult FilterPostScript(const JobSettings &settings, const JobIdentity &identity,
                           JobSource *source, JobSink *sink) {
  PostScriptJob job(settings, sink);
  // More than one turn for a job that holds several documents with job control between them.
  while (!job.Failed()) {
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
    sink->Write(JobControlHeader(other ? settings : SheetSettings(settings), identity,
                                 control.settings, other ? control.language : "POSTSCRIPT"));
    if (other) {
      job.CopyOther(source);
    } else if (is_eps) {
      job.FilterEps(eps_length, source);
    } else if (IsTaggedBinary(source->Peek(2))) {
      job.FilterTagged(source);
    } else {
      job.FilterPlain(source);
    }
    if (!job.Failed()) sink->Write(JobControlTrailer(settings.Model()));
  }
  if (!job.Failed()) sink->Flush();
  return job.Result();
}

}  // namespace kpx::filter
