#include "documentlayout.h"

#include <cstring>
#include <string>
#include <string_view>

#include "booklet.h"
#include "documentpages.h"
#include "laidoutdocument.h"
#include "postscript.h"
#include "settingkeys.h"
#include "sheetprocedures.h"
#include "sheets.h"

namespace kpx::filter {

namespace {

constexpr char kTransmission = '\004';

JobResult FileFailure(const DocumentPages &document) {
  return Failure(std::string("temporary file: ") + std::strerror(document.Error()));
}

bool IsAtEnd(JobSource *source) {
  const std::string_view next = source->Peek(kUel.size());
  return next.empty() || next == kUel;
}

SheetPlan PlanFor(const JobSettings &settings, PageTurn turn) {
  return IsBooklet(settings) ? BookletPlanOf(settings, turn) : PlanOf(settings, turn);
}

// What cannot be done with pages that nobody can tell apart, or reorder.
std::string WishOf(const JobSettings &settings) {
  if (IsBooklet(settings)) return "cannot be made a booklet";
  if (UsesSheets(settings)) return "cannot be put " + settings.Other(kNupKey) + " on a side";
  return "cannot be printed in reverse order";
}

// Why the document cannot be laid out as asked; empty when it can.
std::string ProblemOf(const JobSettings &settings, const DocumentPages &document) {
  if (!document.Problem().empty()) return document.Problem();
  const bool moves = settings.Pages().ChangesPages() || IsBooklet(settings);
  if (moves && document.PageOrder() == DocumentPages::Order::kSpecial) {
    return "its pages need each other in their order";
  }
  return {};
}

CodeReport Write(const JobSettings &settings, const DocumentCode &code, JobSource *source,
                 JobSink *sink) {
  return DocumentFilter(settings.Model(), code, source, sink).Run();
}

DocumentCode WithSheets(const JobSettings &settings, const DocumentPages &document,
                        const DocumentCode &code) {
  const SheetCells cells{.upright = PlanFor(settings, PageTurn::kNone),
                         .lying = PlanFor(settings, PageTurn::kLeft),
                         .page = PageInHand(settings, PageTurn::kNone),
                         .is_lying = document.IsLying(),
                         .keeps_sides = IsBooklet(settings)};
  return {code.exit_server, code.prolog + SheetProcedures(cells), OwnCode(code.setup),
          OwnCode(code.page_setup), code.kept};
}

JobResult WriteLaidOut(const JobSettings &settings, DocumentPages *document, JobSink *sink,
                       CodeReport *report) {
  const bool on_sheets = UsesSheets(settings);
  const bool is_descending =
      document->PageOrder() == DocumentPages::Order::kDescending && !IsBooklet(settings);
  JobSettings order = settings;
  PageSelection pages = settings.Pages();
  if (is_descending) pages.is_reversed = !pages.is_reversed;
  order.Select(pages);
  const SideList sides =
      SidesOf(order, document->Count(), PlanFor(settings, PageTurn::kNone).Places());
  if (sides.Count() == 0) {
    return Failure(NothingSelected(settings.Pages(), document->Count()));
  }
  const DocumentCode code = CodeOfDocument(settings);
  LaidOutDocument laid_out(document, sides,
                           {.on_sheets = on_sheets, .is_descending = pages.is_reversed});
  JobSource source = laid_out.Source();
  report->Add(
      Write(settings, on_sheets ? WithSheets(settings, *document, code) : code, &source, sink));
  return document->Error() == 0 ? JobResult() : FileFailure(*document);
}

JobResult LayOut(const JobSettings &settings, JobSource *source, JobSink *sink,
                 CodeReport *report) {
  DocumentPages document;
  document.Read(source);
  if (document.Error() != 0) return FileFailure(document);
  const bool selects = !settings.Pages().IsEverything();
  std::string problem = ProblemOf(settings, document);
  if (problem.empty() && selects && !IsAtEnd(source)) problem = "it holds several documents";
  if (problem.empty()) return WriteLaidOut(SheetSettings(settings), &document, sink, report);
  if (selects) {
    return Failure("the pages of \"" + settings.Pages().words +
                   "\" cannot be told from the others"
                   " in this job: " +
                   problem);
  }
  JobSource whole = document.Whole();
  report->Add(Write(settings, CodeOfDocument(settings), &whole, sink));
  if (document.Error() != 0) return FileFailure(document);
  JobResult result;
  result.Warn("the pages of this job " + WishOf(settings) + ", because " + problem +
              ": it is printed as it is");
  return result;
}

}  // namespace

bool UsesSheets(const JobSettings &settings) {
  return IsBooklet(settings) || PlanOf(settings, PageTurn::kNone).Places() > 1;
}

bool ChangesPages(const JobSettings &settings) {
  return UsesSheets(settings) || settings.Pages().ChangesPages();
}

JobSettings SheetSettings(const JobSettings &settings) {
  if (!UsesSheets(settings)) return settings;
  return UprightSettings(IsBooklet(settings) ? BookletSettings(settings) : settings);
}

JobResult LayOutDocuments(const JobSettings &settings, JobSource *source, JobSink *sink,
                          CodeReport *report) {
  JobResult result;
  while (!IsAtEnd(source) && sink->Error() == 0) {
    if (source->Peek(1).front() == kTransmission) {
      source->Skip(1);
      continue;
    }
    JobResult one = LayOut(settings, source, sink, report);
    if (one.Failed()) return one;
    if (result.warnings.empty()) result.warnings = one.warnings;
  }
  return result;
}

}  // namespace kpx::filter
