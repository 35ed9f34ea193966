// Which pages of a job are printed, and on which side of the paper each of them comes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ppdmarking.h"

namespace kpx::filter {

// What the words "page-ranges", "page-set" and "outputorder" of a job ask for.
struct PageSelection {
  enum class Set { kAll, kOdd, kEven };
  struct Range {
    size_t first, last;  // from 1, both belong to it
  };

  std::vector<Range> ranges;  // in order, apart from each other; empty: all pages
  Set set = Set::kAll;
  bool is_reversed = false;
  std::string words;  // the words that leave pages out, for messages

  // Whether no page is left out.
  [[nodiscard]] bool IsEverything() const { return ranges.empty() && set == Set::kAll; }

  // Whether anything but all pages in their order is asked for.
  [[nodiscard]] bool ChangesPages() const { return is_reversed || !IsEverything(); }
};

// Reads the words; those that come later count. Returns an empty text, or what is wrong with them:
// a selection that cannot be understood must not print all pages.
[[nodiscard]] std::string ReadPageSelection(const std::vector<ApplicationOption> &words,
                                            PageSelection *selection);

// Why nothing is printed of a job of so many pages of which the words leave none.
std::string NothingSelected(const PageSelection &selection, size_t pages);

// How a job's pages share the paper.
struct SideRequest {
  size_t pages = 0;   // of the document
  size_t places = 1;  // on a side
  bool is_booklet = false;
  bool is_reversed = false;   // the last side comes first
  bool fills_sheets = false;  // the first side of a reversed job is a front
};

// The sides of paper that are printed, in their order. Ranges and, with one page a side, odd and
// even pages count by the pages' numbers; with several pages a side, odd and even ones are sides.
class SideList {
 public:
  SideList(const PageSelection &selection, const SideRequest &request);

  size_t Count() const { return sides_; }

  // The pages (from 0) at the places of a side (from 0); nothing for a place that stays empty.
  std::vector<std::optional<size_t>> PagesOf(size_t side) const;

 private:
  [[nodiscard]] std::optional<size_t> Selected(size_t number) const;

  std::vector<PageSelection::Range> ranges_;
  SideRequest request_;
  size_t step_ = 1, start_ = 0;  // of the pages in a range: from 2 on only odd or even ones
  size_t side_step_ = 1, side_start_ = 0;
  size_t selected_ = 0, all_sides_ = 0, sides_ = 0;
};

}  // namespace kpx::filter
