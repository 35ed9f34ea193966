// A PostScript document with its pages put together anew: on sheets, in another order, or without
// those that are not wanted.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "documentpages.h"
#include "jobsource.h"
#include "pageselection.h"

namespace kpx::filter {

// What becomes of the pages.
struct PageLayout {
  bool on_sheets = false;      // in cells of a sheet; the document runs SheetProcedures beforehand
  bool is_descending = false;  // the sides come last first, as the document says
};

class LaidOutDocument {
 public:
  // Both must outlive this.
  LaidOutDocument(DocumentPages *document, const SideList &sides, const PageLayout &layout)
      : document_(document), sides_(sides), layout_(layout) {}

  // The new document, which this must outlive.
  JobSource Source();

 private:
  enum class Step { kHead, kSides, kTrailer, kEnd };

  long Read(char *bytes, size_t size);
  [[nodiscard]] bool Advance();
  [[nodiscard]] bool Copy();
  void HeadLine(std::string_view line);
  void TrailerLine(std::string_view line);
  [[nodiscard]] bool IsReplaced(std::string_view line);
  void NextPlace();
  void BeginPage(size_t page);
  void EndPage();

  DocumentPages *document_;
  const SideList &sides_;
  const PageLayout layout_;
  Step step_ = Step::kHead;
  std::optional<JobSource> part_;  // that is being copied
  bool by_line_ = true;            // its lines are still looked at
  bool in_page_ = false;           // it is a page
  bool in_header_ = true, is_replaced_ = false;
  size_t side_ = 0, place_ = 0;  // that come next
  bool is_first_page_ = true;
  char last_ = '\n';  // of the page's bytes
  std::string pending_;
  size_t at_ = 0;  // of pending_, handed out
};

}  // namespace kpx::filter
