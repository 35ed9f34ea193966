#include "textjob.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

#include "decimal.h"
#include "featurecode.h"
#include "glyphnames.h"
#include "postscript.h"
#include "textencoding.h"

namespace {

constexpr double kSideMargin = 9, kEndMargin = 36;  // points, where the printer needs no more
constexpr double kCourierWidth = 0.6;               // of the point size
constexpr size_t kTabStop = 8;

// Where the text goes on the page.
struct Layout {
  double left = 0, top = 0;  // of the first line's baseline, points
  double size = 12;
  size_t columns = 1, lines = 1;
};

double FontSize(const JobSettings &settings) {
  const std::string text = settings.Other("*FontSize");
  int size = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
  const bool good = result.ec == std::errc() && result.ptr == text.data() + text.size();
  return good && size >= 4 && size <= 72 ? size : 12;
}

Layout LayoutOf(const JobSettings &settings) {
  const PpdPageSize page = PageInForce(settings);
  Layout layout;
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
  PageWriter(const Layout &layout, const std::string &page_setup, JobSink *sink)
      : layout_(layout), page_setup_(page_setup), sink_(sink) {}

  void Put(char32_t character);
  void NewLine();
  void NewPage();
  void Finish();
  int Pages() const { return pages_; }

 private:
  void BeginPage();
  void FlushRun();
  void SetPosition(size_t column);

  const Layout &layout_;
  const std::string &page_setup_;
  JobSink *sink_;
  int pages_ = 0;
  bool page_open_ = false;
  size_t line_ = 0, column_ = 0;
  std::string run_;  // ASCII characters that follow each other, escaped
  size_t run_column_ = 0;
};

void PageWriter::Put(char32_t character) {
  if (character == '\t') {
    SetPosition((column_ / kTabStop + 1) * kTabStop);
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
  if (character < 0x7F) {
    if (run_.empty()) run_column_ = column_;
    if (character == '(' || character == ')' || character == '\\') run_ += '\\';
    run_ += static_cast<char>(character);
  } else {
    FlushRun();
    sink_->Write(std::to_string(column_) + " " + std::to_string(line_) + " /" + name + " G\n");
  }
  ++column_;
}

void PageWriter::SetPosition(size_t column) {
  FlushRun();
  column_ = column;
}

void PageWriter::FlushRun() {
  if (run_.empty()) return;
  sink_->Write(std::to_string(run_column_) + " " + std::to_string(line_) + " (" + run_ + ") T\n");
  run_.clear();
}

// A full page ends when something follows, so that a form feed behind its last line is its end too.
void PageWriter::NewLine() {
  if (line_ >= layout_.lines) NewPage();
  FlushRun();
  column_ = 0;
  ++line_;
}

void PageWriter::NewPage() {
  if (!page_open_) BeginPage();
  Finish();
  line_ = 0;
  column_ = 0;
}

void PageWriter::BeginPage() {
  const std::string number = std::to_string(++pages_);
  sink_->Write("%%Page: " + number + " " + number + "\n");
  if (!page_setup_.empty()) {
    sink_->Write("%%BeginPageSetup\n" + page_setup_ + "%%EndPageSetup\n");
  }
  sink_->Write("/S save def F setfont\n");
  page_open_ = true;
}

void PageWriter::Finish() {
  FlushRun();
  if (page_open_) sink_->Write("showpage S restore\n");
  page_open_ = false;
}

std::string Header(const Layout &layout, const DocumentCode &code) {
  const std::string size = DecimalText(layout.size);
  // T: column line (text); G: column line /glyph. Both count from the top left corner.
  std::string header =
      "%!PS-Adobe-3.0\n%%LanguageLevel: 2\n%%Pages: (atend)\n%%EndComments\n%%BeginProlog\n";
  header += code.prolog;
  header += "/F /Courier findfont " + size + " scalefont def\n";
  header += "/P { " + size + " mul " + DecimalText(layout.top) + " exch sub exch " +
            DecimalText(kCourierWidth * layout.size) + " mul " + DecimalText(layout.left) +
            " add exch moveto } bind def\n";
  header += "/T { 3 1 roll P show } bind def\n/G { 3 1 roll P glyphshow } bind def\n";
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

}  // namespace

void FilterText(const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                JobSink *sink) {
  if (!source->Peek(1).empty()) {
    const DocumentCode code = CodeOfDocument(settings);
    const Layout layout = LayoutOf(settings);
    sink->Write(JobControlHeader(settings, identity, {}, "POSTSCRIPT"));
    sink->Write(code.exit_server);
    sink->Write(Header(layout, code));
    PageWriter pages(layout, code.page_setup, sink);
    while (!source->Peek(1).empty() && sink->Error() == 0) {
      PutText(TakeText(source), &pages);
    }
    pages.Finish();
    sink->Write("%%Trailer\n%%Pages: " + std::to_string(pages.Pages()) + "\n%%EOF\n");
    sink->Write(JobControlTrailer(settings.Model()));
  }
  sink->Flush();
}
