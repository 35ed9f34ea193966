#include "documentfilter.h"

#include <algorithm>
#include <optional>

#include "featurecode.h"
#include "pscomments.h"

namespace kpx::filter {

namespace {

// An EPS document is to draw one page, and may leave it to whoever includes it to show it. What was
// shown is kept in global memory, where no restore of the document undoes it.
constexpr std::string_view kWatchPages =
    "true setglobal /KPXshown 1 array def KPXshown 0 false put false setglobal\n"
    "/showpage { systemdict /showpage get exec KPXshown 0 true put } def\n";
constexpr std::string_view kShowLastPage = "KPXshown 0 get not { showpage } if\n";

// "%%End<name>" of a line "%%Begin<name>...".
std::string BlockEnd(std::string_view line) {
  constexpr std::string_view kBegin = "%%Begin";
  line.remove_prefix(kBegin.size());
  return "%%End" + std::string(line.substr(0, line.find_first_of(": \t\r\n")));
}

// Whether `line` is a mark of counted data, which is copied by its count: no block of its own.
bool IsDataMark(std::string_view line) {
  return line.starts_with("%%BeginBinary") || line.starts_with("%%BeginData") ||
         line.starts_with("%%EndBinary") || line.starts_with("%%EndData");
}

}  // namespace

void CodeReport::Add(const CodeReport &other) {
  is_in_place = is_in_place && other.is_in_place;
  if (unkept.empty()) unkept = other.unkept;
}

CodeReport DocumentFilter::Run() {
  Copy();
  EndDocument();
  return report_;
}

// What is to be said and done behind the last line of a document.
void DocumentFilter::EndDocument() {
  if (!set_.empty()) report_.Add({IsInPlace(), set_.front()->what});
  report_.Add({IsInPlace(), {}});
  set_.clear();
  ShowLastPage();
}

bool DocumentFilter::HasCode() const {
  return !code_.prolog.empty() || !code_.setup.empty() || !code_.page_setup.empty();
}

bool DocumentFilter::IsInPlace() const {
  const bool open = place_ == Place::Prolog || blocks_ > 0 || loose_prolog_;
  return !HasCode() || (!late_ && (place_ == Place::Body || !open));
}

void DocumentFilter::Copy() {
  const std::string_view start = source_->Peek(kConforming.size());
  const bool marked = start.starts_with("%!");
  const bool conforming = start == kConforming;
  sink_->Write(code_.exit_server);
  if (!conforming) Unstructured(marked);
  for (;;) {
    const std::string_view next = source_->Peek(kUel.size());
    if (next.empty() || next == kUel || sink_->Error() != 0) return;
    if (source_->NextBeginsLine() && !watches_ && PassesPlainLines()) {
      const size_t passed = source_->CopyPlainLines(sink_);
      passed_ += passed;
      if (passed > 0) continue;
    }
    const std::string_view piece = source_->NextPiece();
    passed_ += piece.size();
    Watch(piece);
    if (source_->AtLineStart()) {
      Line(piece);
    } else {
      sink_->Write(piece);
    }
  }
}

// At the end of an EPS document that got its setup.
void DocumentFilter::ShowLastPage() {
  if (is_eps_ && place_ == Place::Body) sink_->Write(kShowLastPage);
  is_eps_ = false;
}

// Whether lines that are no comments change nothing now.
bool DocumentFilter::PassesPlainLines() const {
  if (ended_) return false;
  return documents_ > 0 || place_ == Place::Prolog || (place_ == Place::Body && !page_pending_);
}

// A job that does not follow the conventions gets the code before all of its own.
void DocumentFilter::Unstructured(bool has_first_line) {
  if (has_first_line) {
    bool ended = false;
    while (!ended && source_->Peek(kUel.size()) != kUel) {
      const std::string_view piece = source_->NextPiece();
      if (piece.empty()) break;
      sink_->Write(piece);
      ended = piece.ends_with('\n') || piece.ends_with('\r');
    }
    if (!ended) sink_->Write("\n");
  } else {
    sink_->Write("%!\n");
  }
  sink_->Write(code_.prolog);
  sink_->Write(code_.setup);
  WriteFirstPageSetup();
  place_ = Place::Body;
}

// Whether `line` begins another document behind the present one. One in the middle of it may be
// included without marks.
bool DocumentFilter::BeginsDocument(std::string_view line) {
  const std::string_view text = AfterTransmission(line);
  const bool begins =
      documents_ == 0 && text.starts_with(kConforming) && (ended_ || text.size() < line.size());
  const bool says_nothing = WithoutEnd(text).empty();
  ended_ = documents_ == 0 && (line.starts_with(kEndOfDocument) || (ended_ && says_nothing));
  return begins;
}

// The next document gets the code again: the present one may have set something else, and behind an
// end of transmission all is as at the start.
void DocumentFilter::NextDocument() {
  EndDocument();
  watches_ = !code_.kept.empty();
  watched_ = 0;
  place_ = Place::Header;
  blocks_ = 0;
  prolog_written_ = prolog_ended_ = loose_prolog_ = late_ = false;
  page_pending_ = page_code_ahead_ = false;
}

void DocumentFilter::Line(std::string_view line) {
  if (BeginsDocument(line)) NextDocument();
  if (Verbatim(line)) return;
  switch (place_) {
    case Place::Header:
      HeaderLine(line);
      return;
    case Place::Preamble:
      PreambleLine(line);
      return;
    case Place::Prolog:
      PrologLine(line);
      return;
    case Place::Body:
      BodyLine(line);
      return;
  }
}

// Copies included documents and counted data, which are none of ours.
bool DocumentFilter::Verbatim(std::string_view line) {
  const bool begins = line.starts_with(kBeginIncluded);
  if (begins && documents_ == 0 && place_ != Place::Body && place_ != Place::Prolog) StartBody();
  if (begins) ++documents_;
  if (BeginsData(line)) {
    CountedData(std::string(line));
    return true;
  }
  if (documents_ == 0) return false;
  if (line.starts_with(kEndIncluded)) --documents_;
  sink_->Write(line);
  return true;
}

// The data may be a page of its own, so where it belongs to no prolog the code goes before it.
void DocumentFilter::CountedData(const std::string &line) {
  const std::optional<DataCount> data = DataCountOf(line);
  const bool in_preamble = place_ == Place::Header || place_ == Place::Preamble;
  if (data && in_preamble && documents_ == 0 && blocks_ == 0 && !loose_prolog_ &&
      LookAhead(source_, {}, *data).what != Ahead::Marked) {
    StartBody();
  }
  sink_->Write(line);
  if (!data) return;
  CopyData(*data, source_, sink_);
  // A count that takes the rest of the job is wrong.
  late_ = late_ || (place_ != Place::Body && source_->Peek(1).empty());
}

void DocumentFilter::HeaderLine(std::string_view line) {
  const std::string_view first = AfterTransmission(line);
  // A job that gets no code at all stays as it is.
  if (HasCode() && first.starts_with(kConforming)) {
    is_eps_ = first.find(" EPSF-") != std::string_view::npos;
  }
  if (IsHeaderComment(AfterTransmission(line))) {
    if (line.starts_with("%%EndComments")) place_ = Place::Preamble;
    sink_->Write(line);
    return;
  }
  place_ = Place::Preamble;
  PreambleLine(line);
}

void DocumentFilter::PreambleLine(std::string_view line) {
  const std::string_view text = WithoutEnd(line);
  if (text.starts_with("%%BeginProlog")) {
    BeginProlog(std::string(line));
  } else if (text.starts_with("%%BeginSetup")) {
    WriteProlog(true);
    sink_->Write(line);
    WriteSetup(false);
  } else if (text.starts_with("%%Page:")) {
    WriteProlog(true);
    WriteSetup(true);
    BodyLine(line);
  } else if (text.starts_with("%%Trailer") || text.starts_with("%%EOF")) {
    late_ = late_ || blocks_ > 0 || loose_prolog_;
    WriteProlog(true);
    WriteSetup(true);
    BodyLine(line);
  } else if (text.starts_with("%%EndProlog")) {
    WriteProlog(false);
    loose_prolog_ = false;
    blocks_ = 0;
    prolog_ended_ = true;
    sink_->Write(line);
  } else if (text.empty() || text.starts_with('%') || blocks_ > 0 || loose_prolog_) {
    BlockLine(line);
  } else {
    CodeLine(std::string(line));
  }
}

void DocumentFilter::BeginProlog(const std::string &line) {
  if (LookAhead(source_, {}).what == Ahead::Missing) {
    StartBody();
    BodyLine(line);
    return;
  }
  sink_->Write(line);
  WriteProlog(false);
  place_ = Place::Prolog;
  loose_prolog_ = false;
}

// Whether the block that `line` begins has an end, as far as can be seen. Looks only so often that
// all the looks together stay in proportion to the job: enough for blocks in blocks, not for a job
// that is nothing but beginnings.
bool DocumentFilter::BlockEnds(const std::string &line) {
  constexpr size_t kFree = 8 * JobSource::kCapacity;
  constexpr size_t kBlocksInBlocks = 4;
  if (looked_ > kFree && looked_ / kBlocksInBlocks > passed_) return true;
  const Look look = LookAhead(source_, BlockEnd(line));
  looked_ += look.bytes;
  return look.what != Ahead::Missing;
}

// A comment, or a line of a block or a prolog without frame.
void DocumentFilter::BlockLine(std::string_view line) {
  if (line.starts_with("%%Begin") && !IsDataMark(line)) {
    const std::string first(line);
    if (!BlockEnds(first)) {
      StartBody();
      BodyLine(first);
    } else {
      ++blocks_;
      sink_->Write(first);
    }
    return;
  }
  if (line.starts_with("%%End") && !IsDataMark(line) && blocks_ > 0) --blocks_;
  sink_->Write(line);
}

// Code without a frame: prolog of an older document, or the document itself. Behind the prolog's
// end it is a setup or a page without mark.
void DocumentFilter::CodeLine(const std::string &line) {
  loose_prolog_ = !prolog_ended_ && LookAhead(source_, {}).what == Ahead::Marked;
  if (loose_prolog_) {
    WriteProlog(false);
    sink_->Write(line);
  } else {
    StartBody();
    BodyLine(line);
  }
}

void DocumentFilter::PrologLine(std::string_view line) {
  if (line.starts_with("%%EndProlog")) {
    sink_->Write(line);
    place_ = Place::Preamble;
    prolog_ended_ = true;
    blocks_ = 0;
  } else if (line.starts_with("%%BeginSetup") || line.starts_with("%%Page:")) {
    PreambleLine(line);
  } else {
    sink_->Write(line);
  }
}

// Looks for what the document itself sets before its pages. Where nothing marks these, it is given
// up after a while.
void DocumentFilter::Watch(std::string_view piece) {
  constexpr size_t kMost = 64 * JobSource::kCapacity;
  if (!watches_ || documents_ > 0 || piece.starts_with('%')) return;
  for (const KeptChoice &choice : code_.kept) {
    const bool known = std::find(set_.begin(), set_.end(), &choice) != set_.end();
    if (!known && piece.find(choice.mention) != std::string_view::npos) set_.push_back(&choice);
  }
  if (place_ == Place::Body) watched_ += piece.size();
  watches_ = watched_ < kMost;
}

// Chooses again what the document has set, behind its set-up.
void DocumentFilter::WriteKept(std::string_view line) {
  if (!watches_ || !(line.starts_with("%%EndSetup") || line.starts_with(kPageMark))) return;
  for (const KeptChoice *choice : set_) sink_->Write(choice->code);
  set_.clear();
  watches_ = false;
}

void DocumentFilter::BodyLine(std::string_view line) {
  WriteKept(line);
  constexpr std::string_view kInclude = "%%IncludeFeature:";
  if (page_pending_ && line.starts_with("%%BeginPageSetup")) {
    sink_->Write(line);
    sink_->Write(code_.page_setup);
    page_pending_ = false;
    return;
  }
  if (page_pending_ &&
      (!line.starts_with("%%") || line.starts_with("%%Begin") || line.starts_with("%%Include"))) {
    sink_->Write("%%BeginPageSetup\n" + code_.page_setup + "%%EndPageSetup\n");
    page_pending_ = false;
  }
  if (line.starts_with(kEndOfDocument)) ShowLastPage();
  sink_->Write(line);
  if (line.starts_with("%%Page:")) {
    page_pending_ = !code_.page_setup.empty() && !page_code_ahead_;
    page_code_ahead_ = false;
  }
  if (!line.starts_with(kInclude)) return;
  const std::string_view text = WithoutEnd(AfterBlanks(line.substr(kInclude.size())));
  const size_t blank = text.find_first_of(" \t");
  if (!text.starts_with('*') || blank == std::string_view::npos) return;
  std::string_view choice = AfterBlanks(text.substr(blank));
  choice = choice.substr(0, choice.find_first_of(" \t"));
  sink_->Write(IncludedFeature(model_, text.substr(1, blank - 1), choice));
}

// Puts all of the code in front of a document that shows no place for it.
void DocumentFilter::StartBody() {
  WriteProlog(true);
  WriteSetup(true);
  WriteFirstPageSetup();
}

// Page setup code in front of the document holds for the page that comes first, marked or not.
void DocumentFilter::WriteFirstPageSetup() {
  sink_->Write(code_.page_setup);
  page_code_ahead_ = true;
}

void DocumentFilter::WriteProlog(bool with_frame) {
  if (prolog_written_ || code_.prolog.empty()) return;
  prolog_written_ = true;
  if (with_frame) sink_->Write("%%BeginProlog\n");
  sink_->Write(code_.prolog);
  if (with_frame) sink_->Write("%%EndProlog\n");
}

void DocumentFilter::WriteSetup(bool with_frame) {
  place_ = Place::Body;
  loose_prolog_ = false;
  if (is_eps_) sink_->Write(kWatchPages);
  if (code_.setup.empty()) return;
  if (with_frame) sink_->Write("%%BeginSetup\n");
  sink_->Write(code_.setup);
  if (with_frame) sink_->Write("%%EndSetup\n");
}

}  // namespace kpx::filter
