#include "pageselection.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <sstream>
#include <string_view>

#include "booklet.h"
#include "ppdmodel.h"

namespace kpx::filter {

namespace {

using Range = PageSelection::Range;

constexpr char kRanges[] = "page-ranges", kSet[] = "page-set", kOrder[] = "outputorder";

// A page's number; nothing where `text` is none.
std::optional<size_t> PageNumber(std::string_view text) {
  size_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size() || number == 0) {
    return std::nullopt;
  }
  return number;
}

// "7", "2-4", "6-" or "-3".
std::optional<Range> RangeOf(std::string_view text) {
  const size_t dash = text.find('-');
  if (dash == std::string_view::npos) {
    const auto page = PageNumber(text);
    return page ? std::optional(Range{*page, *page}) : std::nullopt;
  }
  const std::string_view from = text.substr(0, dash), to = text.substr(dash + 1);
  if (from.empty() && to.empty()) return std::nullopt;
  const auto first = from.empty() ? std::optional<size_t>(1) : PageNumber(from);
  const auto last = to.empty() ? std::optional<size_t>(SIZE_MAX) : PageNumber(to);
  if (!first || !last || *first > *last) return std::nullopt;
  return Range{*first, *last};
}

// Ranges with commas between them; without any where one of them is none.
std::vector<Range> RangesOf(const std::string &text) {
  std::vector<Range> ranges;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ',');) {
    const auto range = RangeOf(part);
    if (!range) return {};
    ranges.push_back(*range);
  }
  std::sort(ranges.begin(), ranges.end(),
            [](const Range &a, const Range &b) { return a.first < b.first; });
  std::vector<Range> apart;
  for (const Range &range : ranges) {
    if (!apart.empty() && range.first <= apart.back().last) {
      apart.back().last = std::max(apart.back().last, range.last);
    } else {
      apart.push_back(range);
    }
  }
  return apart;
}

void AddWord(const std::string &name, const std::string &value, std::string *words) {
  *words += (words->empty() ? "" : " ") + name + "=" + value;
}

}  // namespace

std::string ReadPageSelection(const std::vector<ApplicationOption> &words,
                              PageSelection *selection) {
  std::string ranges, set;
  for (const auto &[name, value] : words) {
    if (SameKeyword(name, kRanges)) ranges = value;
    if (SameKeyword(name, kSet)) set = value;
    if (SameKeyword(name, kOrder)) selection->is_reversed = SameKeyword(value, "reverse");
  }
  if (!ranges.empty()) {
    selection->ranges = RangesOf(ranges);
    if (selection->ranges.empty()) {
      return "\"page-ranges=" + ranges + "\" does not name pages: write for example 1-4,7,9-";
    }
    AddWord(kRanges, ranges, &selection->words);
  }
  if (set.empty() || SameKeyword(set, "all")) return {};
  const bool is_odd = SameKeyword(set, "odd");
  if (!is_odd && !SameKeyword(set, "even")) {
    return "\"page-set=" + set + "\" is not a choice of pages (odd, even, all)";
  }
  selection->set = is_odd ? PageSelection::Set::kOdd : PageSelection::Set::kEven;
  AddWord(kSet, set, &selection->words);
  return {};
}

std::string NothingSelected(const PageSelection &selection, size_t pages) {
  return "\"" + selection.words + "\" selects none of the job's " + std::to_string(pages) +
         (pages == 1 ? " page" : " pages");
}

SideList::SideList(const PageSelection &selection, const SideRequest &request) : request_(request) {
  const bool is_single = request.places == 1 && !request.is_booklet;
  if (selection.set != PageSelection::Set::kAll) {
    const size_t start = selection.set == PageSelection::Set::kOdd ? 0 : 1;
    (is_single ? step_ : side_step_) = 2;
    (is_single ? start_ : side_start_) = start;
  }
  std::vector<Range> ranges = selection.ranges;
  if (ranges.empty()) ranges.push_back({1, SIZE_MAX});
  for (Range range : ranges) {
    range.last = std::min(range.last, request.pages);
    if (step_ == 2 && (range.first - 1) % 2 != start_) ++range.first;
    if (range.first > range.last) continue;
    ranges_.push_back(range);
    selected_ += (range.last - range.first) / step_ + 1;
  }
  all_sides_ = request.is_booklet ? SidesOfBooklet(selected_)
                                  : (selected_ + request.places - 1) / request.places;
  if (request.is_reversed && request.fills_sheets && selection.set == PageSelection::Set::kAll) {
    all_sides_ += all_sides_ % 2;
  }
  sides_ = (all_sides_ + side_step_ - 1 - side_start_) / side_step_;
  if (all_sides_ <= side_start_) sides_ = 0;
}

// The page that is the `number`-th of the selected ones (from 0); nothing behind the last.
std::optional<size_t> SideList::Selected(size_t number) const {
  for (const Range &range : ranges_) {
    const size_t count = (range.last - range.first) / step_ + 1;
    if (number < count) return range.first - 1 + number * step_;
    number -= count;
  }
  return std::nullopt;
}

std::vector<std::optional<size_t>> SideList::PagesOf(size_t side) const {
  size_t number = side * side_step_ + side_start_;
  if (request_.is_reversed) number = (sides_ - 1 - side) * side_step_ + side_start_;
  std::vector<std::optional<size_t>> pages;
  if (request_.is_booklet) {
    const auto [left, right] = PagesOfSide(number, selected_);
    pages = {left, right};
    for (auto &page : pages) page = page ? Selected(*page) : std::nullopt;
    return pages;
  }
  for (size_t place = 0; place < request_.places; ++place) {
    pages.push_back(Selected(number * request_.places + place));
  }
  return pages;
}

}  // namespace kpx::filter
