#include "postscript.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "featurecode.h"
#include "wrappedjob.h"

namespace kpx::filter {

namespace {

// Where in a conforming document the copying is.
enum class Place {
  Header,    // in the header comments
  Preamble,  // behind them, before the document's setup
  Prolog,    // between BeginProlog and EndProlog
  Body       // the setup code is out
};

constexpr std::string_view kPrologEnds[] = {"%%EndProlog", "%%BeginSetup", "%%Page:"};
constexpr std::string_view kConforming = "%!PS-Adobe-", kEndOfDocument = "%%EOF";
// An EPS document is to draw one page, and may leave it to whoever includes it to show it. What was
// shown is kept in global memory, where no restore of the document undoes it.
constexpr std::string_view kWatchPages =
    "true setglobal /KPXshown 1 array def KPXshown 0 false put false setglobal\n"
    "/showpage { systemdict /showpage get exec KPXshown 0 true put } def\n";
constexpr std::string_view kShowLastPage = "KPXshown 0 get not { showpage } if\n";
constexpr std::string_view kForeign[] = {"%%BeginDocument", "%%BeginBinary", "%%BeginData"};

std::string_view WithoutEnd(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// `line` without the ends of transmission before it, which end a job of their own.
std::string_view AfterTransmission(std::string_view line) {
  while (line.starts_with('\004')) line.remove_prefix(1);
  return line;
}

std::string_view AfterBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

// Whether the rest of the header still lies in `line`: comments of the conventions have a printable
// character behind the percent sign.
bool IsHeaderComment(std::string_view line) {
  return line.size() > 1 && line[0] == '%' && line[1] > ' ' && line[1] < 0x7F &&
         !line.starts_with("%%Begin") && !line.starts_with("%%Page:") &&
         !line.starts_with("%%Trailer") && !line.starts_with("%%EOF");
}

// What the rest of a document shows of a mark.
enum class Ahead {
  Marked,   // it is there
  Unseen,   // it is not in the part that can be seen
  Missing,  // the document ends without it
};

// What a look ahead shows, and how many bytes it took.
struct Look {
  Ahead what;
  size_t bytes;
};

// How much a line "%%BeginBinary:" or "%%BeginData:" counts.
struct DataCount {
  size_t count = 0;
  bool in_lines = false;
};

// The bytes of counted data at the front of `ahead`; 0 when they do not end in it.
size_t DataLength(std::string_view ahead, const DataCount &data) {
  if (!data.in_lines) return data.count <= ahead.size() ? data.count : 0;
  size_t length = 0;
  for (size_t lines = 0; lines < data.count; ++lines) {
    const size_t end = ahead.find_first_of("\r\n", length);
    if (end == std::string_view::npos) return 0;
    length = end + (ahead.substr(end, 2) == "\r\n" ? 2 : 1);
  }
  return length;
}

// Looks ahead for a mark that ends a prolog or, when `block_end` is not empty, begins so. What an
// included document or counted data holds says nothing about this one, so these end the search, and
// so does the end of the document or the beginning of another;
// `data` comes next and is passed over, if it ends in what can be seen.
Look LookAhead(JobSource *source, std::string_view block_end, const DataCount &data = {}) {
  constexpr size_t kSeen = JobSource::kCapacity / 2;
  std::string_view ahead = source->Peek(kSeen);
  const size_t size = ahead.size();
  const size_t data_length = DataLength(ahead, data);
  ahead.remove_prefix(data_length);
  for (bool begins_line = data_length > 0 || source->NextBeginsLine(); !ahead.empty();
       begins_line = true) {
    std::string_view line = ahead.substr(0, ahead.find_first_of("\r\n"));
    const size_t next_document = line.find(kUel);
    line = line.substr(0, next_document);
    const auto begins = [line](std::string_view mark) { return line.starts_with(mark); };
    const auto result = [&](Ahead what) { return Look{what, size - ahead.size() + line.size()}; };
    if (begins_line && std::any_of(std::begin(kPrologEnds), std::end(kPrologEnds), begins)) {
      return result(Ahead::Marked);
    }
    if (begins_line && !block_end.empty() &&
        SameKeyword(line.substr(0, block_end.size()), block_end)) {
      return result(Ahead::Marked);
    }
    if (begins_line && std::any_of(std::begin(kForeign), std::end(kForeign), begins)) {
      return result(Ahead::Unseen);
    }
    if (begins_line &&
        (line.starts_with(kEndOfDocument) || AfterTransmission(line).starts_with(kConforming))) {
      return result(Ahead::Missing);
    }
    if (next_document != std::string_view::npos) return result(Ahead::Missing);
    ahead.remove_prefix(std::min(line.size() + 1, ahead.size()));
  }
  return {size < kSeen ? Ahead::Missing : Ahead::Unseen, size};
}

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

// Copies one document, or several that follow each other; ends at the end of the job or before a
// language switch.
class DocumentFilter {
 public:
  DocumentFilter(const PpdModel &model, const DocumentCode &code, JobSource *source, JobSink *sink)
      : model_(model), code_(code), source_(source), sink_(sink) {}

  // Returns whether the code is in front of what it is for, as far as can be seen.
  bool Run();

 private:
  void Copy();
  void ShowLastPage();
  bool HasCode() const;
  bool IsInPlace() const;
  bool PassesPlainLines() const;
  void Unstructured(bool has_first_line);
  void Line(std::string_view line);
  bool BeginsDocument(std::string_view line);
  void NextDocument();
  bool Verbatim(std::string_view line);
  void HeaderLine(std::string_view line);
  void PreambleLine(std::string_view line);
  void BeginProlog(const std::string &line);
  bool BlockEnds(const std::string &line);
  void BlockLine(std::string_view line);
  void CodeLine(const std::string &line);
  void PrologLine(std::string_view line);
  void BodyLine(std::string_view line);
  void CountedData(const std::string &line);
  void StartBody();
  void WriteFirstPageSetup();
  void WriteProlog(bool with_frame);
  void WriteSetup(bool with_frame);

  const PpdModel &model_;
  const DocumentCode &code_;
  JobSource *source_;
  JobSink *sink_;
  Place place_ = Place::Header;
  int documents_ = 0;  // depth of BeginDocument
  int blocks_ = 0;     // depth of other Begin/End pairs in the preamble
  bool prolog_written_ = false;
  bool loose_prolog_ = false;       // prolog code without a frame goes on
  bool prolog_ended_ = false;       // explicitly
  bool ended_ = false;              // nothing but empty lines since the document's end
  bool in_place_ = true;            // of the documents that are done
  bool is_eps_ = false;             // the present document shows its page itself or not
  bool late_ = false;               // the code came behind what may be pages
  bool page_pending_ = false;       // the page setup code of the present page is still to come
  bool page_code_ahead_ = false;    // the page setup code of the first page is out
  size_t passed_ = 0, looked_ = 0;  // bytes handed out, and looked at from the lines of blocks
};

bool DocumentFilter::Run() {
  Copy();
  ShowLastPage();
  return in_place_ && IsInPlace();
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
    if (source_->NextBeginsLine() && PassesPlainLines()) {
      const size_t passed = source_->CopyPlainLines(sink_);
      passed_ += passed;
      if (passed > 0) continue;
    }
    const std::string_view piece = source_->NextPiece();
    passed_ += piece.size();
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
  ShowLastPage();
  in_place_ = in_place_ && IsInPlace();
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
  const bool begins = line.starts_with("%%BeginDocument");
  if (begins && documents_ == 0 && place_ != Place::Body && place_ != Place::Prolog) StartBody();
  if (begins) ++documents_;
  if (line.starts_with("%%BeginBinary:") || line.starts_with("%%BeginData:")) {
    CountedData(std::string(line));
    return true;
  }
  if (documents_ == 0) return false;
  if (line.starts_with("%%EndDocument")) --documents_;
  sink_->Write(line);
  return true;
}

// "%%BeginBinary: <bytes>" and "%%BeginData: <count> [<type> [Bytes | Lines]]". The data may be a
// page of its own, so where it belongs to no prolog the code goes before it.
void DocumentFilter::CountedData(const std::string &line) {
  const std::string_view text = AfterBlanks(std::string_view(line).substr(line.find(':') + 1));
  DataCount data;
  const bool number =
      std::from_chars(text.data(), text.data() + text.size(), data.count).ec == std::errc();
  data.in_lines = WithoutEnd(text).find("Lines") != std::string_view::npos;
  const bool in_preamble = place_ == Place::Header || place_ == Place::Preamble;
  if (number && in_preamble && documents_ == 0 && blocks_ == 0 && !loose_prolog_ &&
      LookAhead(source_, {}, data).what != Ahead::Marked) {
    StartBody();
  }
  sink_->Write(line);
  if (!number) return;
  if (data.in_lines) {
    source_->CopyLines(data.count, sink_);
  } else {
    source_->CopyBytes(data.count, sink_);
  }
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

void DocumentFilter::BodyLine(std::string_view line) {
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
