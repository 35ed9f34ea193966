#include "laidoutdocument.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "pscomments.h"
#include "sheetprocedures.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kPages = "%%Pages:", kEps = " EPSF-", kMore = "%%+";
// What is no longer true of pages on sheets.
constexpr std::string_view kOfPages[] = {
    kPages,           "%%PageOrder:",     "%%BoundingBox:",        "%%HiResBoundingBox:",
    "%%Orientation:", "%%DocumentMedia:", "%%DocumentPaperSizes:", "%%ViewingOrientation:"};

// "%%Page: label number" for the words behind another such mark.
std::string PageMark(std::string_view words, size_t number) {
  std::string_view text = WithoutEnd(AfterBlanks(words));
  while (text.ends_with(' ') || text.ends_with('\t')) text.remove_suffix(1);
  const size_t blank = text.find_last_of(" \t");
  const std::string_view label = blank == std::string_view::npos ? text : text.substr(0, blank);
  const std::string count = std::to_string(number);
  return std::string(kPageMark) + " " + (label.empty() ? count : std::string(label)) + " " + count +
         "\n";
}

}  // namespace

JobSource LaidOutDocument::Source() {
  return JobSource([this](char *bytes, size_t size) { return Read(bytes, size); });
}

long LaidOutDocument::Read(char *bytes, size_t size) {
  while (at_ == pending_.size()) {
    pending_.clear();
    at_ = 0;
    if (!Advance()) {
      errno = document_->Error();
      return document_->Error() == 0 ? 0 : -1;
    }
  }
  const size_t count = std::min(size, pending_.size() - at_);
  std::memcpy(bytes, pending_.data() + at_, count);
  at_ += count;
  return static_cast<long>(count);
}

// One step on; false at the end.
bool LaidOutDocument::Advance() {
  if (part_ && Copy()) return true;
  part_.reset();
  if (document_->Error() != 0) return false;
  switch (step_) {
    case Step::kHead:
      part_.emplace(document_->Part(0));
      by_line_ = true;
      step_ = Step::kSides;
      return true;
    case Step::kSides:
      NextPlace();
      return true;
    case Step::kTrailer:
      step_ = Step::kEnd;
      if (document_->Parts() == document_->Count() + 1) return true;
      part_.emplace(document_->Part(document_->Parts() - 1));
      by_line_ = true;
      return true;
    case Step::kEnd:
      break;
  }
  return false;
}

// The next bytes of the part in hand; false at its end.
bool LaidOutDocument::Copy() {
  if (!by_line_) {
    const std::string_view bytes = part_->Peek(JobSource::kCapacity);
    if (bytes.empty()) return false;
    pending_ += bytes;
    last_ = bytes.back();
    part_->Skip(bytes.size());
    return true;
  }
  const std::string_view line = part_->NextPiece();
  if (line.empty()) return false;
  if (in_page_) {
    // The first line is the page's mark.
    by_line_ = false;
    if (!layout_.on_sheets) {
      pending_ += PageMark(line.substr(std::min(line.size(), kPageMark.size())), side_ + 1);
    }
  } else if (step_ == Step::kEnd) {
    TrailerLine(line);
  } else {
    HeadLine(line);
  }
  return true;
}

// Whether the comment is one that the layout makes untrue, or goes on from one.
bool LaidOutDocument::IsReplaced(std::string_view line) {
  if (line.starts_with(kMore)) return is_replaced_;
  const auto begins = [line](std::string_view comment) { return line.starts_with(comment); };
  is_replaced_ = layout_.on_sheets ? std::any_of(std::begin(kOfPages), std::end(kOfPages), begins)
                                   : line.starts_with(kPages);
  return is_replaced_;
}

void LaidOutDocument::HeadLine(std::string_view line) {
  const bool is_first = line.starts_with(kConforming);
  if (!IsHeaderComment(line) || line.starts_with("%%EndComments")) {
    in_header_ = by_line_ = false;
    pending_ += line;
    return;
  }
  const size_t eps = layout_.on_sheets && is_first ? line.find(kEps) : std::string_view::npos;
  if (eps != std::string_view::npos) {
    pending_ += std::string(line.substr(0, eps)) + "\n";
  } else if (!IsReplaced(line)) {
    pending_ += line;
  }
  if (is_first) {
    pending_ += std::string(kPages) + " " + std::to_string(sides_.Count()) + "\n";
    if (layout_.on_sheets && layout_.is_descending) pending_ += "%%PageOrder: Descend\n";
  }
}

void LaidOutDocument::TrailerLine(std::string_view line) {
  if (!IsReplaced(line)) pending_ += line;
}

// The next page, or the end of a side.
void LaidOutDocument::NextPlace() {
  if (in_page_) EndPage();
  if (side_ == sides_.Count()) {
    step_ = Step::kTrailer;
    return;
  }
  const auto pages = sides_.PagesOf(side_);
  const std::string number = std::to_string(side_ + 1);
  if (place_ == 0 && layout_.on_sheets) pending_ += PageMark(number, side_ + 1);
  if (place_ == pages.size()) {
    if (layout_.on_sheets) pending_ += EndSheet();
    place_ = 0;
    ++side_;
  } else if (const auto page = pages[place_++]) {
    BeginPage(*page);
  } else if (!layout_.on_sheets) {
    pending_ += PageMark(number, side_ + 1) + "showpage\n";
  }
}

void LaidOutDocument::BeginPage(size_t page) {
  if (layout_.on_sheets) {
    const bool keeps_setup = is_first_page_ && document_->PartOfPage(page) == 1;
    pending_ += BeginCell(place_ - 1, keeps_setup);
    pending_ += std::string(kBeginIncluded) + ": page " + std::to_string(page + 1) + "\n";
  }
  part_.emplace(document_->Part(document_->PartOfPage(page)));
  is_first_page_ = false;
  in_page_ = by_line_ = true;
}

void LaidOutDocument::EndPage() {
  in_page_ = false;
  if (last_ != '\n' && last_ != '\r') pending_ += '\n';
  if (layout_.on_sheets) pending_ += std::string(kEndIncluded) + "\n";
}

}  // namespace kpx::filter
