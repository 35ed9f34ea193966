#include "textjob.h"

#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "booklet.h"
#include "featurecode.h"
#include "pageselection.h"
#include "pjl.h"
#include "postscript.h"
#include "sheets.h"
#include "textdecoding.h"
#include "textencoding.h"
#include "textheader.h"
#include "textlayout.h"
#include "textpages.h"
#include "unicodecharacters.h"

namespace kpx::filter {

namespace {

// The next line with its line feed at the front of the source; of a longer one a part that ends
// with a whole character.
std::string_view PeekLine(JobSource *source) {
  const std::string_view bytes = source->Peek(JobSource::kLongestPiece + 4);
  const size_t feed = bytes.find('\n');
  return feed == std::string_view::npos ? Utf8Prefix(bytes, JobSource::kLongestPiece)
                                        : bytes.substr(0, feed + 1);
}

void PutText(std::string_view bytes, TextPages *pages) {
  const size_t plain = PrintableAsciiLength(bytes);
  const std::string_view rest = bytes.substr(plain);
  const bool is_whole_line = rest.empty() || rest == "\n" || rest == "\r\n";
  if (!is_whole_line) {
    pages->Put(DecodeText(bytes));
    return;
  }
  if (plain > 0) pages->PutAscii(bytes.substr(0, plain));
  if (!rest.empty()) pages->NewLine();
}

// A text job on its way from source to sink.
struct TextJob {
  const JobSettings &settings;
  const JobIdentity &identity;
  const TextLayout &layout;
  Characters *characters;
  JobSource *source;
  JobSink *sink;
};

// Sets the job's text on the pages of `target`.
void SetText(const TextJob &job, PageTarget *target, DefinitionsFunction define) {
  TextPages pages(job.layout, job.characters, target, std::move(define));
  while (job.sink->Error() == 0) {
    const std::string_view line = PeekLine(job.source);
    if (line.empty()) break;
    PutText(line, &pages);
    job.source->Skip(line.size());
  }
  pages.Finish();
}

// Writes what stands before the pages; `kept` has definitions for all of them, unless it is null.
void WriteStart(const TextJob &job, const DocumentCode &code, PageStore *kept) {
  job.sink->Write(JobControlHeader(UprightSettings(job.settings), job.identity, {}, "POSTSCRIPT"));
  job.sink->Write(code.exit_server);
  // The job's fonts grow from page to page.
  job.sink->Write(
      "%!PS-Adobe-3.0\n%%LanguageLevel: 2\n%%DocumentData: Clean8Bit\n%%PageOrder: Special\n"
      "%%Pages: (atend)\n%%EndComments\n%%BeginProlog\n");
  job.sink->Write(code.prolog);
  job.sink->Write(TextPagesCode(job.layout));
  job.sink->Write("%%EndProlog\n%%BeginSetup\n");
  if (kept != nullptr) kept->CopyDefinitions(job.sink);
  job.sink->Write(code.setup + "%%EndSetup\n");
}

void WriteEnd(const TextJob &job, SheetWriter *sheets) {
  sheets->Finish();
  job.sink->Write("%%Trailer\n%%Pages: " + std::to_string(sheets->Sides()) + "\n%%EOF\n");
  job.sink->Write(JobControlTrailer(job.settings.Model()));
}

void FilterPages(const TextJob &job) {
  const DocumentCode code = CodeOfDocument(job.settings);
  SheetWriter sheets(PlanOf(job.settings, TurnOf(job.settings)), code.page_setup, job.sink);
  WriteStart(job, code, nullptr);
  SetText(job, &sheets, [&](std::string_view definitions) { job.sink->Write(definitions); });
  WriteEnd(job, &sheets);
}

JobResult FileFailure(const PageStore &pages) {
  return Failure(std::string("temporary file: ") + std::strerror(pages.Error()));
}

void WriteSides(const TextJob &job, const SideList &sides, PageStore *pages, SheetWriter *sheets) {
  for (size_t side = 0; side < sides.Count(); ++side) {
    if (pages->Error() != 0 || job.sink->Error() != 0) return;
    for (const auto page : sides.PagesOf(side)) {
      if (page) {
        pages->CopyPage(*page, sheets);
      } else {
        sheets->SkipPlace();
      }
    }
  }
}

SheetPlan PlanOfJob(const JobSettings &settings) {
  const PageTurn turn = TurnOf(settings);
  return IsBooklet(settings) ? BookletPlanOf(settings, turn) : PlanOf(settings, turn);
}

// Sets the whole text before the first page goes out: they come in another order, not all of them
// do, or they say how many they are.
JobResult FilterKeptPages(const TextJob &job) {
  const DocumentCode code = CodeOfDocument(job.settings);
  const SheetPlan plan = PlanOfJob(job.settings);
  SheetWriter sheets(plan, code.page_setup, job.sink);
  PageStore pages;
  const auto define = [&](std::string_view definitions) { pages.Define(definitions); };
  if (pages.Error() == 0) SetText(job, &pages, define);
  std::optional<TextHeader> header;
  if (job.layout.has_header) {
    header.emplace(job.layout, job.identity, pages.Pages(), job.characters, define);
    pages.SetHeading([&](size_t page) { return header->MarksOf(page); });
  }
  if (pages.Error() != 0) return FileFailure(pages);
  const SideList sides = SidesOf(job.settings, pages.Pages(), plan.Places());
  if (sides.Count() == 0 && pages.Pages() > 0) {
    return Failure(NothingSelected(job.settings.Pages(), pages.Pages()));
  }
  WriteStart(job, code, &pages);
  WriteSides(job, sides, &pages, &sheets);
  if (pages.Error() != 0) return FileFailure(pages);
  WriteEnd(job, &sheets);
  return {};
}

}  // namespace

JobResult FilterText(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                     JobSink *sink) {
  JobResult result;
  WarnOfTextSettings(settings, &result);
  JobSource text = DecodedSource(source);
  if (!text.Peek(1).empty()) {
    const JobSettings job_settings = IsBooklet(settings) ? BookletSettings(settings) : settings;
    const TextLayout layout = LayoutOf(job_settings);
    Characters characters(layout);
    const TextJob job{job_settings, identity, layout, &characters, &text, sink};
    if (IsBooklet(settings) || settings.Pages().ChangesPages() || layout.has_header) {
      JobResult kept = FilterKeptPages(job);
      if (kept.Failed()) return kept;
    } else {
      FilterPages(job);
    }
    const std::string warning = characters.Warning();
    if (!warning.empty()) result.Warn(warning);
  }
  sink->Flush();
  return result;
}

}  // namespace kpx::filter
