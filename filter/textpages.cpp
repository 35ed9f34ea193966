#include "textpages.h"

#include <fribidi.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <utility>

#include "decimal.h"
#include "latinencoding.h"

namespace kpx::filter {

namespace {

constexpr double kTabColumns = 8;
constexpr double kStop = 3;               // of a font that is no typewriter's, times its size
constexpr double kBoldShift = 0.03;       // of the font size
constexpr double kNarrowest = 0.7;        // of a shaped word that is to fit its cells
constexpr size_t kLongestSegment = 8192;  // that is set at once, characters
constexpr double kHair = 0.001;           // units

// What the marks are made of. P: column line, goes there. W: text, its width. R: column line room
// text, shows the text from there on, narrower where it needs more than `room` units. T: column
// line text, the same with all units up to the end of the line. Q: column line text font, shows
// text in one of the job's fonts. X: text moves font, shows shaped text at the current point and
// ends the gsave before it. L: column line text, shows text that ends there, in the font of numbers
// and headers.
constexpr char kProcedures[] =
    "/R { 4 2 roll P dup stringwidth pop 3 -1 roll U mul 2 copy .01 add gt\n"
    "{ exch div gsave 1 scale show grestore } { pop pop show } ifelse } bind def\n"
    "/T { N 3 index sub exch R } bind def\n"
    "/Q { KA exch get setfont 3 1 roll P show F setfont } bind def\n"
    "/X { KA exch get setfont xyshow grestore } bind def\n";
constexpr char kNumberProcedure[] =
    "/L { 3 1 roll P H setfont dup stringwidth pop neg 0 rmoveto show F setfont } bind def\n";

bool IsFromRight(char32_t character) {
  // The blocks that hold letters of that direction, and its controls; all else goes to the right.
  return (character >= 0x590 && character < 0x900) || character == 0x200F ||
         (character >= 0x202A && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) ||
         (character >= 0xFB1D && character < 0xFE00) ||
         (character >= 0xFE70 && character < 0xFEFF) ||
         (character >= 0x10800 && character < 0x11000) ||
         (character >= 0x1E800 && character < 0x1F000);
}

void AppendNumber(size_t number, std::string *text) {
  char buffer[24];
  text->append(buffer, std::to_chars(std::begin(buffer), std::end(buffer), number).ptr);
}

bool IsEscaped(char c) { return c == '(' || c == ')' || c == '\\'; }

void AppendAscii(std::string_view bytes, std::string *text) {
  // All bytes at once, which the compiler does many at a time: most lines have none.
  unsigned escaped = 0;
  for (const char c : bytes) escaped |= static_cast<unsigned>(IsEscaped(c));
  while (escaped != 0) {
    const auto *const next = std::find_if(bytes.begin(), bytes.end(), IsEscaped);
    const auto length = static_cast<size_t>(next - bytes.begin());
    *text += bytes.substr(0, length);
    bytes.remove_prefix(length);
    if (bytes.empty()) return;
    *text += '\\';
    *text += bytes.front();
    bytes.remove_prefix(1);
  }
  *text += bytes;
}

// From a line's number to the line, units.
double NumberGap(const TextLayout &layout) { return layout.is_monospaced ? 2 : layout.size; }

bool IsBreak(char32_t character) { return character == ' ' || character == '-'; }

}  // namespace

void TextPages::Put(std::u32string_view text) {
  for (const char32_t character : text) {
    if (character < 0x20) {
      PutControl(character);
    } else if (is_cut_) {
      continue;
    } else if (overstruck_ != 0) {
      // Over itself it stands a little to the right, which makes it bold.
      const double shift =
          overstruck_ == character ? kBoldShift * layout_.width_size / layout_.unit : 0;
      overstruck_ = 0;
      Flush();
      x_ += shift;
      segment_ += character;
      Flush();
      x_ -= shift;
    } else {
      segment_ += character;
      if (segment_.size() >= kLongestSegment) Flush();
    }
  }
}

void TextPages::PutControl(char32_t character) {
  if (is_cut_ && (character == '\t' || character == '\b')) return;
  if (character == '\t') {
    Flush();
    const double stop = layout_.is_monospaced ? kTabColumns : kStop * layout_.size;
    x_ = (std::floor(x_ / stop + kHair) + 1) * stop;
  } else if (character == '\r') {
    Flush();
    x_ = 0;
    is_cut_ = false;
  } else if (character == '\b') {
    Flush();
    overstruck_ = x_ > 0 ? last_ : 0;
    x_ = std::max(0.0, x_ - (layout_.is_monospaced ? 1 : last_width_));
  } else if (character == '\f') {
    NewColumn();
  } else if (character == '\n') {
    NewLine();
  }
}

void TextPages::PutAscii(std::string_view text) {
  if (!segment_.empty() || !layout_.is_monospaced || overstruck_ != 0) {
    Put(std::u32string(text.begin(), text.end()));
    return;
  }
  const auto columns = static_cast<size_t>(layout_.room);
  while (!text.empty() && !is_cut_) {
    auto column = static_cast<size_t>(x_);
    if (column >= columns) {
      if (!Wrap()) return;
      column = 0;
    }
    NeedLine();
    const std::string_view part = text.substr(0, columns - column);
    WritePlace(x_);
    marks_ += '(';
    AppendAscii(part, &marks_);
    marks_ += ") T\n";
    WriteMarks();
    x_ += static_cast<double>(part.size());
    last_ = static_cast<unsigned char>(part.back());
    text.remove_prefix(part.size());
  }
}

void TextPages::Flush() {
  if (segment_.empty()) return;
  if (SetPlain()) return;
  FindDirections();
  GatherClusters();
  for (size_t first = 0; first < clusters_.size();) {
    if (x_ > 0 && x_ + clusters_[first].width > layout_.room + kHair && !Wrap()) break;
    const size_t end = EndOfLine(first);
    SetClusters(first, end);
    first = end;
    if (first < clusters_.size() && !Wrap()) break;
  }
  if (!clusters_.empty()) {
    last_ = segment_[clusters_.back().begin];
    last_width_ = clusters_.back().width;
  }
  segment_.clear();
}

// Sets a segment for a typewriter font whose characters stand side by side, one by one; false when
// it is none.
bool TextPages::SetPlain() {
  if (!layout_.is_monospaced) return false;
  infos_.clear();
  for (const char32_t character : segment_) {
    const CharacterInfo &info = characters_->InfoOf(character);
    if (info.kind == CharacterKind::kShaped || info.kind == CharacterKind::kMark ||
        IsFromRight(character)) {
      return false;
    }
    if (info.kind != CharacterKind::kDropped) infos_.push_back(&info);
  }
  last_ = segment_.back();
  segment_.clear();
  for (size_t first = 0; first < infos_.size();) {
    if (x_ > 0 && x_ + infos_[first]->cells > layout_.room && !Wrap()) break;
    NeedLine();
    first = SetPlainRun(first);
  }
  WriteMarks();
  return true;
}

// Sets the characters from `first` on that come from one font and fit on the line; returns the one
// behind them.
size_t TextPages::SetPlainRun(size_t first) {
  const CharacterInfo &model = *infos_[first];
  double width = 0;
  run_.clear();
  size_t end = first;
  for (; end < infos_.size(); ++end) {
    const CharacterInfo &info = *infos_[end];
    if (info.kind != model.kind || info.font != model.font) break;
    if (end > first && x_ + width + info.cells > layout_.room) break;
    width += info.cells;
    AppendEscaped(info.code, &run_);
    if (info.is_box) characters_->CountBox();
  }
  if (model.kind != CharacterKind::kBlank) {
    WritePlace(x_);
    const bool is_own = model.kind == CharacterKind::kOwn;
    const bool is_last = end == infos_.size();
    if (is_own && !is_last) {
      AppendNumber(static_cast<size_t>(width), &marks_);
      marks_ += ' ';
    }
    marks_ += '(';
    marks_ += run_;
    marks_ += ") ";
    if (!is_own) AppendNumber(model.font, &marks_);
    marks_ += is_own ? is_last ? "T\n" : "R\n" : " Q\n";
  }
  x_ += width;
  return end;
}

void TextPages::FindDirections() {
  levels_.clear();
  if (std::none_of(segment_.begin(), segment_.end(), IsFromRight)) {
    if (x_ == 0) line_from_right_ = false;
    return;
  }
  const auto size = static_cast<FriBidiStrIndex>(segment_.size());
  const auto *characters = reinterpret_cast<const FriBidiChar *>(segment_.data());
  std::vector<FriBidiCharType> types(segment_.size());
  std::vector<FriBidiBracketType> brackets(segment_.size());
  levels_.resize(segment_.size());
  fribidi_get_bidi_types(characters, size, types.data());
  fribidi_get_bracket_types(characters, size, types.data(), brackets.data());
  FriBidiParType base = x_ == 0            ? FRIBIDI_PAR_ON
                        : line_from_right_ ? FRIBIDI_PAR_RTL
                                           : FRIBIDI_PAR_LTR;
  if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), size, &base,
                                          levels_.data()) == 0) {
    levels_.clear();
    return;
  }
  if (x_ == 0) line_from_right_ = FRIBIDI_IS_RTL(base);
}

void TextPages::GatherClusters() {
  clusters_.clear();
  for (size_t at = 0; at < segment_.size();) {
    Cluster cluster = ClusterAt(at);
    if (cluster.kind == CharacterKind::kShaped) {
      ExtendShaped(&cluster);
      MeasureShaped(&cluster);
    }
    at = cluster.end;
    if (cluster.kind != CharacterKind::kDropped) clusters_.push_back(cluster);
  }
}

// The character there, with the marks that stand on it.
TextPages::Cluster TextPages::ClusterAt(size_t begin) {
  Cluster cluster;
  cluster.begin = begin;
  cluster.end = begin + 1;
  cluster.info = &characters_->InfoOf(segment_[begin]);
  cluster.kind = cluster.info->kind;
  cluster.width = cluster.info->width;
  cluster.level = levels_.empty() ? 0 : static_cast<unsigned char>(levels_[begin]);
  bool has_marks = cluster.kind == CharacterKind::kMark;
  // A box carries no marks: they stand by themselves.
  const bool is_carrier = cluster.kind != CharacterKind::kDropped && !cluster.info->is_box;
  while (cluster.end < segment_.size() && is_carrier &&
         characters_->InfoOf(segment_[cluster.end]).kind == CharacterKind::kMark) {
    has_marks = true;
    ++cluster.end;
  }
  if (has_marks) cluster.kind = CharacterKind::kShaped;
  return cluster;
}

// The rest of the word, whose letters depend on each other.
void TextPages::ExtendShaped(Cluster *cluster) {
  while (cluster->end < segment_.size()) {
    const Cluster next = ClusterAt(cluster->end);
    const bool joins = next.kind == CharacterKind::kShaped &&
                       characters_->InfoOf(segment_[next.begin]).kind == CharacterKind::kShaped;
    if (!joins || next.level != cluster->level) break;
    cluster->end = next.end;
  }
}

void TextPages::MeasureShaped(Cluster *cluster) {
  const std::u32string_view text =
      std::u32string_view(segment_).substr(cluster->begin, cluster->end - cluster->begin);
  const ShapedText &shaped = characters_->Shape(text, cluster->level % 2 == 1);
  cluster->width = shaped.width / layout_.unit;
  if (!layout_.is_monospaced) return;
  double cells = 0;
  for (const char32_t character : text) cells += characters_->InfoOf(character).cells;
  cells = std::max(1.0, cells);
  if (cluster->width > cells && cells / cluster->width < kNarrowest) {
    cells = std::ceil(cluster->width);
  }
  if (cluster->width > cells) cluster->narrowing = cells / cluster->width;
  cluster->width = cells;
}

// The end of the line that begins with the cluster and has room from x_ on.
size_t TextPages::EndOfLine(size_t first) const {
  double x = x_;
  size_t end = first, word_end = first;
  for (; end < clusters_.size(); ++end) {
    const bool is_blank = IsBreak(segment_[clusters_[end].begin]);
    x += clusters_[end].width;
    if (x > layout_.room + kHair) break;
    if (is_blank || clusters_[end].info->cells == 2) word_end = end + 1;
  }
  if (end == clusters_.size()) return end;
  if (end == first) return first + 1;  // wider than the whole line
  return layout_.is_monospaced || word_end == first ? end : word_end;
}

char32_t TextPages::CharacterOf(const Cluster &cluster) const {
  const char32_t character = segment_[cluster.begin];
  FriBidiChar mirrored = character;
  if (cluster.level % 2 == 1) fribidi_get_mirror_char(character, &mirrored);
  return mirrored;
}

// Rule L2 of the Unicode Bidirectional Algorithm: each run is turned, from the highest level down.
void TextPages::PutInVisualOrder(std::vector<Cluster> *line) {
  unsigned char highest = 0;
  for (const Cluster &cluster : *line) highest = std::max(highest, cluster.level);
  for (unsigned char level = highest; level > 0; --level) {
    for (auto run = line->begin(); run != line->end();) {
      run = std::find_if(run, line->end(), [&](const Cluster &c) { return c.level >= level; });
      const auto end =
          std::find_if(run, line->end(), [&](const Cluster &c) { return c.level < level; });
      std::reverse(run, end);
      run = end;
    }
  }
}

void TextPages::SetClusters(size_t first, size_t end) {
  std::vector<Cluster> line(clusters_.begin() + static_cast<std::ptrdiff_t>(first),
                            clusters_.begin() + static_cast<std::ptrdiff_t>(end));
  double width = 0;
  for (const Cluster &cluster : line) width += cluster.width;
  double x = x_;
  if (!levels_.empty()) {
    if (line_from_right_ && x_ == 0) x = std::max(0.0, layout_.room - width);
    PutInVisualOrder(&line);
  }
  NeedLine();
  for (size_t i = 0; i < line.size();) {
    const size_t begin = i;
    switch (line[i].kind) {
      case CharacterKind::kOwn:
        i = SetOwn(line, i, x, levels_.empty());
        break;
      case CharacterKind::kEmbedded:
        i = SetEmbedded(line, i, x);
        break;
      case CharacterKind::kShaped:
        SetShaped(line[i++], x);
        break;
      default:
        ++i;
    }
    for (size_t done = begin; done < i; ++done) x += line[done].width;
  }
  x_ = x_ + width;
  WriteMarks();
}

// Writes where the next marks stand.
void TextPages::WritePlace(double x) {
  const auto whole = static_cast<size_t>(x);
  if (static_cast<double>(whole) == x) {
    AppendNumber(whole, &marks_);
  } else {
    marks_ += DecimalText(x);
  }
  marks_ += ' ';
  AppendNumber(line_, &marks_);
  marks_ += ' ';
}

// Sets characters of the printer's font from `first` on; returns the cluster behind them.
size_t TextPages::SetOwn(const std::vector<Cluster> &clusters, size_t first, double x,
                         bool may_be_last) {
  std::string text;
  double width = 0;
  size_t end = first;
  for (; end < clusters.size() && clusters[end].kind == CharacterKind::kOwn; ++end) {
    const char32_t character = CharacterOf(clusters[end]);
    AppendEscaped(characters_->InfoOf(character).code, &text);
    width += clusters[end].width;
  }
  WritePlace(x);
  const bool is_last = may_be_last && end == clusters.size();
  if (!is_last) marks_ += DecimalText(width) + " ";
  marks_ += "(" + text + (is_last ? ") T\n" : ") R\n");
  return end;
}

// The same of characters from one of the job's fonts.
size_t TextPages::SetEmbedded(const std::vector<Cluster> &clusters, size_t first, double x) {
  const uint16_t font = clusters[first].info->font;
  WritePlace(x);
  marks_ += '(';
  size_t end = first;
  for (; end < clusters.size() && clusters[end].kind == CharacterKind::kEmbedded &&
         clusters[end].info->font == font;
       ++end) {
    AppendEscaped(clusters[end].info->code, &marks_);
    if (clusters[end].info->is_box) characters_->CountBox();
  }
  marks_ += ") " + std::to_string(font) + " Q\n";
  return end;
}

void TextPages::SetShaped(const Cluster &cluster, double x) {
  const ShapedText &shaped = characters_->Shape(
      std::u32string_view(segment_).substr(cluster.begin, cluster.end - cluster.begin),
      cluster.level % 2 == 1);
  for (const ShapedText::Piece &piece : shaped.pieces) {
    marks_ += "gsave ";
    WritePlace(x);
    marks_ += "P ";
    if (cluster.narrowing < 1) marks_ += DecimalText(cluster.narrowing) + " 1 scale ";
    if (piece.x != 0 || piece.y != 0) {
      marks_ += DecimalText(piece.x) + " " + DecimalText(piece.y) + " rmoveto ";
    }
    marks_ += piece.glyphs;
    marks_ += ' ';
    AppendNumber(piece.font, &marks_);
    marks_ += " X\n";
  }
}

void TextPages::WriteMarks() {
  if (marks_.empty()) return;
  if (characters_->HasDefinitions()) define_(characters_->TakeDefinitions());
  target_->Write(marks_);
  marks_.clear();
}

// Goes on in the next line; false where the layout cuts lines off instead.
bool TextPages::Wrap() {
  is_cut_ = !layout_.wraps;
  if (!is_cut_) BreakLine();
  return !is_cut_;
}

// A full column ends when something follows, so that a form feed behind its last line is its end
// too.
void TextPages::BreakLine() {
  if (line_ >= layout_.lines) EndColumn();
  x_ = 0;
  overstruck_ = 0;
  ++line_;
}

void TextPages::NewLine() {
  Flush();
  if (number_due_) NeedLine();
  BreakLine();
  number_due_ = layout_.has_numbers;
  is_cut_ = false;
}

void TextPages::NewColumn() {
  Flush();
  EndColumn();
  x_ = 0;
  is_cut_ = false;
}

void TextPages::EndColumn() {
  if (!page_open_) BeginPage();
  WriteMarks();
  line_ = 0;
  if (++column_ < layout_.columns) {
    target_->Write(DecimalText(layout_.column_step) + " 0 translate\n");
  } else {
    EndPage();
  }
}

void TextPages::NeedLine() {
  if (line_ >= layout_.lines) EndColumn();
  if (!page_open_) BeginPage();
  if (number_due_) PutNumber();
}

void TextPages::PutNumber() {
  number_due_ = false;
  marks_ += DecimalText(-NumberGap(layout_)) + " ";
  AppendNumber(line_, &marks_);
  marks_ += " (";
  AppendNumber(++number_, &marks_);
  marks_ += ") L\n";
}

void TextPages::BeginPage() {
  target_->BeginPage();
  page_open_ = true;
}

void TextPages::EndPage() {
  target_->EndPage();
  page_open_ = false;
  column_ = 0;
}

void TextPages::Finish() {
  Flush();
  WriteMarks();
  if (page_open_) EndPage();
}

std::string TextPagesCode(const TextLayout &layout) {
  std::string code = LatinEncodingCode();
  const std::string size = DecimalText(layout.size);
  // A font of letters gets the encoding, one of symbols or without names keeps its own.
  code +=
      "/E { findfont dup /CharStrings known { dup /CharStrings get /A known } { false } ifelse\n"
      "{ dup length dict begin { 1 index /FID ne { def } { pop pop } ifelse } forall\n"
      "/Encoding V def currentdict end /KPXText exch definefont } if } bind def\n";
  code += "/Z [" + DecimalText(layout.width_size) + " 0 0 " + size + " 0 0] def\n";
  code += "/F /" + layout.font + " E Z makefont def\n";
  code += "/P { " + DecimalText(layout.leading) + " mul " + DecimalText(layout.top) +
          " exch sub exch U mul " + DecimalText(layout.left) + " add exch moveto } bind def\n";
  code += "/U " + DecimalText(layout.unit) + " def\n/N " + DecimalText(layout.room) + " def\n";
  code += kProcedures;
  if (layout.has_header || layout.has_numbers) {
    code += layout.has_own_encoding ? "/H /Courier E Z makefont def\n" : "/H F def\n";
    code += kNumberProcedure;
  }
  return code + EmbeddedFontsCode();
}

}  // namespace kpx::filter
