#include "textjob.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "booklet.h"
#include "decimal.h"
#include "featurecode.h"
#include "glyphnames.h"
#include "postscript.h"
#include "settingkeys.h"
#include "sheets.h"
#include "textencoding.h"
#include "wrappedjob.h"

namespace kpx::filter {

namespace {

constexpr double kSideMargin = 9, kEndMargin = 36;  // points, where the printer needs no more
constexpr double kCourierWidth = 0.6;               // of the point size
constexpr size_t kTabStop = 8;
constexpr size_t kLongestName = 127;  // that a PostScript interpreter takes

// What T and R of the pages are made of. A text is a string or an array of strings and glyph names.
// A: text, shows it at the current point. W: text, its width. R: column line room text, shows it
// from there on, narrower where it needs more than `room` columns. T: column line text, the same
// with all columns up to the last one.
constexpr char kProcedures[] =
    "/A { dup type /stringtype eq { show }\n"
    "{ { dup type /nametype eq { glyphshow } { show } ifelse } forall } ifelse } bind def\n"
    "/W { dup type /stringtype eq { stringwidth pop }\n"
    "{ gsave nulldevice 0 0 moveto A currentpoint pop grestore } ifelse } bind def\n"
    "/R { 4 2 roll P dup W 3 -1 roll U mul 2 copy .01 add gt { exch div } { pop pop 1 } ifelse\n"
    "gsave 1 scale A grestore } bind def\n"
    "/T { N 3 index sub exch R } bind def\n";

// Where the text goes on the page.
struct Layout {
  std::string font;          // its PostScript name
  double left = 0, top = 0;  // of the first line's baseline, points
  double size = 12;
  size_t columns = 1, lines = 1;
};

// The font size of a text; nothing when it is none.
std::optional<double> SizeOf(std::string_view text) {
  int size = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
  const bool good = result.ec == std::errc() && result.ptr == text.data() + text.size();
  if (!good || size < 4 || size > 72) return std::nullopt;
  return size;
}

double FontSize(const JobSettings &settings) {
  return SizeOf(settings.Other(kFontSizeKey)).value_or(12);
}

bool IsPostScriptName(std::string_view text) {
  const auto regular = [](char c) {
    return c > ' ' && c < 0x7F && std::string_view("()<>[]{}/%").find(c) == std::string_view::npos;
  };
  return !text.empty() && text.size() <= kLongestName &&
         std::all_of(text.begin(), text.end(), regular);
}

std::string FontName(const JobSettings &settings) {
  const std::string name = settings.Other(kFontNameKey);
  return IsPostScriptName(name) ? name : "Courier";
}

Layout LayoutOf(const JobSettings &settings) {
  const PpdPageSize page = PageInForce(settings);
  Layout layout;
  layout.font = FontName(settings);
  layout.size = FontSize(settings);
  const double right_margin = std::max(page.width - page.right, kSideMargin);
  const double bottom = std::max(page.bottom, kEndMargin);
  layout.left = std::max(page.left, kSideMargin);
  const double top = page.length - std::max(page.length - page.top, kEndMargin);
  layout.top = top - layout.size;
  const double columns = (page.width - layout.left - right_margin) / (kCourierWidth * layout.size);
  const double lines = (top - bottom) / layout.size;
  // A hair more, for sizes that are whole columns but for rounding.
  layout.columns = columns > 1 ? static_cast<size_t>(columns + 0.01) : 1;
  layout.lines = lines > 1 ? static_cast<size_t>(lines + 0.01) : 1;
  return layout;
}

// A warning for each setting of the text that is given and cannot be used.
void WarnOfSettings(const JobSettings &settings, JobResult *result) {
  const auto warn = [&](const std::string &key, auto good, const std::string &words) {
    const std::string value = settings.Other(key);
    if (!value.empty() && !good(value)) result->Warn("\"" + key + "=" + value + "\" " + words);
  };
  const auto is_size = [](std::string_view text) { return SizeOf(text).has_value(); };
  warn(kFontSizeKey, is_size, "is not a size from 4 to 72 points: 12 is used");
  warn(kFontNameKey, IsPostScriptName, "cannot be the name of a font: Courier is used");
  warn(kNupKey, IsPagesPerSide, "is not a number of pages per side (1, 2, 4, 6, 9, 16): 1 is used");
  warn(kNupOrderKey, IsPageOrder,
       "is not an order of pages (Left, Right, Down, Back): Left is used");
}

// The next character of valid UTF-8, taken off the text.
char32_t TakeCharacter(std::string_view *text) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>((*text)[i]); };
  const uint8_t first = byte(0);
  const size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  char32_t character = length == 1 ? first : first & (0x7F >> length);
  for (size_t i = 1; i < length; ++i) character = (character << 6) | (byte(i) & 0x3F);
  text->remove_prefix(length);
  return character;
}

// Sets characters on pages. A page is written when its first character comes.
class PageWriter {
 public:
  PageWriter(const Layout &layout, PageTarget *target) : layout_(layout), target_(target) {}

  void Put(char32_t character);
  void NewLine();
  void NewPage();
  void Finish();

 private:
  void BeginPage();
  void AddToString(char32_t character);
  void AddGlyph(const std::string &name);
  void EndString();
  void FlushRun(size_t end);
  void SetPosition(size_t column);

  const Layout &layout_;
  PageTarget *target_;
  bool page_open_ = false;
  size_t line_ = 0, column_ = 0;
  std::string run_;  // characters that follow each other, as strings and glyph names
  size_t run_column_ = 0;
  bool in_string_ = false, mixed_ = false;  // the run ends inside a string; is more than one string
};

void PageWriter::Put(char32_t character) {
  if (character == '\t') {
    const size_t stop = (column_ / kTabStop + 1) * kTabStop;
    FlushRun(stop);
    column_ = stop;
    return;
  }
  if (character == '\b' || character == '\r') {
    SetPosition(character == '\r' || column_ == 0 ? 0 : column_ - 1);
    return;
  }
  const std::string name = GlyphName(character);
  if (name.empty()) return;
  if (column_ >= layout_.columns) NewLine();
  if (line_ >= layout_.lines) NewPage();
  if (!page_open_) BeginPage();
  if (run_.empty()) run_column_ = column_;
  // Where a string has its quotes, the font's own encoding has curved ones.
  const bool curved = character == '\'' || character == '`';
  if (character < 0x7F && !curved) {
    AddToString(character);
  } else {
    AddGlyph(name);
  }
  ++column_;
}

void PageWriter::AddToString(char32_t character) {
  if (!in_string_) run_ += '(';
  in_string_ = true;
  if (character == '(' || character == ')' || character == '\\') run_ += '\\';
  run_ += static_cast<char>(character);
}

void PageWriter::AddGlyph(const std::string &name) {
  EndString();
  mixed_ = true;
  run_ += '/' + name;
}

void PageWriter::EndString() {
  if (in_string_) run_ += ')';
  in_string_ = false;
}

void PageWriter::SetPosition(size_t column) {
  FlushRun(layout_.columns);
  column_ = column;
}

// Writes the run, which has the room up to column `end`.
void PageWriter::FlushRun(size_t end) {
  if (run_.empty()) return;
  EndString();
  const std::string text = mixed_ ? "[" + run_ + "]" : run_;
  const std::string place = std::to_string(run_column_) + " " + std::to_string(line_) + " ";
  if (end < layout_.columns) {
    target_->Write(place + std::to_string(end - run_column_) + " " + text + " R\n");
  } else {
    target_->Write(place + text + " T\n");
  }
  run_.clear();
  mixed_ = false;
}

// A full page ends when something follows, so that a form feed behind its last line is its end too.
void PageWriter::NewLine() {
  if (line_ >= layout_.lines) NewPage();
  SetPosition(0);
  ++line_;
}

void PageWriter::NewPage() {
  if (!page_open_) BeginPage();
  Finish();
  line_ = 0;
  column_ = 0;
}

void PageWriter::BeginPage() {
  target_->BeginPage();
  page_open_ = true;
}

void PageWriter::Finish() {
  FlushRun(layout_.columns);
  if (page_open_) target_->EndPage();
  page_open_ = false;
}

std::string Header(const Layout &layout, const DocumentCode &code) {
  const std::string size = DecimalText(layout.size);
  std::string header =
      "%!PS-Adobe-3.0\n%%LanguageLevel: 2\n%%Pages: (atend)\n%%EndComments\n%%BeginProlog\n";
  header += code.prolog;
  header += "/F /" + layout.font + " findfont " + size + " scalefont def\n";
  header += "/P { " + size + " mul " + DecimalText(layout.top) + " exch sub exch " +
            DecimalText(kCourierWidth * layout.size) + " mul " + DecimalText(layout.left) +
            " add exch moveto } bind def\n";
  header += "/U " + DecimalText(kCourierWidth * layout.size) + " def\n/N " +
            std::to_string(layout.columns) + " def\n";
  header += kProcedures;
  header += "%%EndProlog\n%%BeginSetup\n" + code.setup + "%%EndSetup\n";
  return header;
}

// The next line with its line feed, taken off the source; of a longer one a part that ends with a
// whole character.
std::string TakeText(JobSource *source) {
  const std::string_view bytes = source->Peek(JobSource::kLongestPiece + 4);
  const size_t feed = bytes.find('\n');
  std::string text(feed == std::string_view::npos ? Utf8Prefix(bytes, JobSource::kLongestPiece)
                                                  : bytes.substr(0, feed + 1));
  source->Skip(text.size());
  return text;
}

void PutText(std::string_view bytes, PageWriter *pages) {
  const std::string text = DecodeLine(bytes);
  std::string_view left = text;
  while (!left.empty()) {
    const char32_t character = TakeCharacter(&left);
    if (character == '\f') {
      pages->NewPage();
    } else if (character == '\n') {
      pages->NewLine();
    } else {
      pages->Put(character);
    }
  }
}

// A text job on its way from source to sink.
struct TextJob {
  const JobSettings &settings;
  const JobIdentity &identity;
  JobSource *source;
  JobSink *sink;
};

// Sets the job's text on the pages of `target`.
void SetText(const TextJob &job, const Layout &layout, PageTarget *target) {
  PageWriter pages(layout, target);
  while (!job.source->Peek(1).empty() && job.sink->Error() == 0) {
    PutText(TakeText(job.source), &pages);
  }
  pages.Finish();
}

void WriteStart(const TextJob &job, const Layout &layout, const DocumentCode &code) {
  job.sink->Write(JobControlHeader(job.settings, job.identity, {}, "POSTSCRIPT"));
  job.sink->Write(code.exit_server);
  job.sink->Write(Header(layout, code));
}

void WriteEnd(const TextJob &job, SheetWriter *sheets) {
  sheets->Finish();
  job.sink->Write("%%Trailer\n%%Pages: " + std::to_string(sheets->Sides()) + "\n%%EOF\n");
  job.sink->Write(JobControlTrailer(job.settings.Model()));
}

void FilterPages(const TextJob &job) {
  const DocumentCode code = CodeOfDocument(job.settings);
  const Layout layout = LayoutOf(job.settings);
  SheetWriter sheets(PlanOf(job.settings), code.page_setup, job.sink);
  WriteStart(job, layout, code);
  SetText(job, layout, &sheets);
  WriteEnd(job, &sheets);
}

// Returns 0, or the errno of a failure with the pages' file.
int FilterBooklet(const TextJob &job) {
  const DocumentCode code = CodeOfDocument(job.settings);
  const Layout layout = LayoutOf(job.settings);
  SheetWriter sheets(PlanFor(PageInForce(job.settings), 2, "Left"), code.page_setup, job.sink);
  PageStore pages;
  if (pages.Error() == 0) SetText(job, layout, &pages);
  if (pages.Error() != 0) return pages.Error();
  WriteStart(job, layout, code);
  WriteBooklet(&pages, &sheets, *job.sink);
  WriteEnd(job, &sheets);
  return pages.Error();
}

}  // namespace

JobResult FilterText(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                     JobSink *sink) {
  int error = 0;
  SkipByteOrderMark(source);
  if (!source->Peek(1).empty()) {
    if (IsBooklet(settings)) {
      error = FilterBooklet({BookletSettings(settings), identity, source, sink});
    } else {
      FilterPages({settings, identity, source, sink});
    }
  }
  sink->Flush();
  JobResult result;
  WarnOfSettings(settings, &result);
  if (error != 0) return Failure(std::string("temporary file: ") + std::strerror(error));
  return result;
}

}  // namespace kpx::filter
