#include "documentpages.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <optional>

#include "pscomments.h"

namespace kpx::filter {

namespace {

constexpr char kTransmission = '\004';
constexpr std::string_view kPages = "%%Pages:", kOrder = "%%PageOrder:",
                           kOrientation = "%%Orientation:", kPageOrientation = "%%PageOrientation:";

constexpr std::string_view kBeginResource[] = {"%%BeginResource", "%%BeginProcSet", "%%BeginFont",
                                               "%%BeginFile"};
constexpr std::string_view kEndResource[] = {"%%EndResource", "%%EndProcSet", "%%EndFont",
                                             "%%EndFile"};

// The first word behind a comment's keyword.
std::string_view ValueOf(std::string_view line, std::string_view keyword) {
  const std::string_view text = WithoutEnd(AfterBlanks(line.substr(keyword.size())));
  return text.substr(0, text.find_first_of(" \t"));
}

}  // namespace

void DocumentPages::BeginPart() {
  out_.Flush();
  store_.BeginPage();
}

// Whether another document begins at the front of `source`, behind the end of this one.
bool DocumentPages::EndsHere(JobSource *source) {
  return has_ended_ && source->Peek(kConforming.size()) == kConforming;
}

void DocumentPages::Read(JobSource *source) {
  is_conforming_ = source->Peek(kConforming.size()) == kConforming;
  BeginPart();
  for (bool is_first = true;; is_first = false) {
    const std::string_view next = source->Peek(kUel.size());
    if (next.empty() || next == kUel || Error() != 0 || EndsHere(source)) break;
    if (source->NextBeginsLine() && next.front() == kTransmission) {
      out_.Write(next.substr(0, 1));
      source->Skip(1);
      has_ended_ = has_ended_ || !is_first;
      continue;
    }
    if (source->NextBeginsLine() && !in_header_ && source->CopyPlainLines(&out_) > 0) continue;
    const std::string_view piece = source->NextPiece();
    const std::string line(piece);
    if (source->AtLineStart()) {
      has_stranger_ = has_stranger_ || (!is_first && IsStranger(line));
      Line(line);
      const auto data = BeginsData(line) ? DataCountOf(line) : std::nullopt;
      if (data) CopyData(*data, source, &out_);
    } else {
      out_.Write(line);
    }
  }
  out_.Flush();
  FindProblem();
}

// Whether `line` begins another document in this one without a mark. Procedures and fonts in marked
// blocks begin like documents too.
bool DocumentPages::IsStranger(std::string_view line) const {
  return documents_ == 0 && resources_ == 0 && line.starts_with(kConforming) &&
         line.find(" Resource-") == std::string_view::npos;
}

void DocumentPages::Line(std::string_view line) {
  const auto begins = [line](std::string_view mark) { return line.starts_with(mark); };
  if (std::any_of(std::begin(kBeginResource), std::end(kBeginResource), begins)) ++resources_;
  if (std::any_of(std::begin(kEndResource), std::end(kEndResource), begins) && resources_ > 0) {
    --resources_;
  }
  if (in_header_ && (!IsHeaderComment(line) || line.starts_with("%%EndComments"))) {
    in_header_ = false;
  }
  if (line.starts_with(kBeginIncluded)) {
    ++documents_;
  } else if (line.starts_with(kEndIncluded) && documents_ > 0) {
    --documents_;
  } else if (documents_ == 0 && line.starts_with(kPageMark)) {
    BeginPart();
    ++pages_;
    in_trailer_ = false;
  } else if (documents_ == 0) {
    Comment(line);
  }
  out_.Write(line);
}

// A comment about the whole document, or one that ends its pages.
void DocumentPages::Comment(std::string_view line) {
  const bool is_end = line.starts_with(kEndOfDocument);
  if ((line.starts_with(kTrailerMark) || is_end) && pages_ > 0 && !in_trailer_) {
    BeginPart();
    in_trailer_ = true;
  }
  has_ended_ = has_ended_ || is_end;
  if (pages_ == 1 && line.starts_with(kPageOrientation)) {
    is_lying_ = is_lying_ || ValueOf(line, kPageOrientation) == "Landscape";
  }
  if (!in_header_ && !in_trailer_) return;
  if (line.starts_with(kPages)) {
    const std::string_view value = ValueOf(line, kPages);
    std::from_chars(value.data(), value.data() + value.size(), told_);
  } else if (line.starts_with(kOrder)) {
    const std::string_view value = ValueOf(line, kOrder);
    if (value == "Descend") order_ = Order::kDescending;
    if (value == "Special") order_ = Order::kSpecial;
  } else if (line.starts_with(kOrientation)) {
    is_lying_ = ValueOf(line, kOrientation) == "Landscape";
  }
}

void DocumentPages::FindProblem() {
  if (!is_conforming_ || pages_ == 0) {
    problem_ = "it does not mark its pages";
  } else if (has_stranger_ || documents_ > 0) {
    problem_ = "it includes other documents without marking them";
  } else if (pages_ < told_) {
    problem_ = "it marks " + std::to_string(pages_) + " of its " + std::to_string(told_) + " pages";
  } else if (Parts() != pages_ + (in_trailer_ ? 2 : 1)) {
    problem_ = "its pages go on behind its end";
  }
}

size_t DocumentPages::PartOfPage(size_t page) const {
  return order_ == Order::kDescending ? pages_ - page : page + 1;
}

JobSource DocumentPages::Part(size_t part) {
  return JobSource([this, part, at = uint64_t{0}](char *bytes, size_t size) mutable -> long {
    const long count = store_.ReadPage(part, at, bytes, size);
    if (count > 0) at += static_cast<uint64_t>(count);
    return count;
  });
}

JobSource DocumentPages::Whole() {
  return JobSource(
      [this, part = size_t{0}, at = uint64_t{0}](char *bytes, size_t size) mutable -> long {
        for (; part < Parts(); ++part, at = 0) {
          const long count = store_.ReadPage(part, at, bytes, size);
          if (count > 0) at += static_cast<uint64_t>(count);
          if (count != 0) return count;
        }
        return 0;
      });
}

}  // namespace kpx::filter
