// Booklets: pages two a side, so that the sheets folded in the middle can be read as a book.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "jobsettings.h"
#include "pageselection.h"
#include "sheets.h"

namespace kpx::filter {

// The pages (from 0) at the left and the right of a side (from 0) of a booklet of `pages` pages;
// nothing for a place that stays empty. Two sides are one sheet, four pages.
std::pair<std::optional<size_t>, std::optional<size_t>> PagesOfSide(size_t side, size_t pages);

// The sides of a booklet of `pages` pages: both of every sheet.
size_t SidesOfBooklet(size_t pages);

// Whether the settings ask for a booklet.
[[nodiscard]] bool IsBooklet(const JobSettings &settings);

// The settings with both sides printed and turned over the short edge, where the fold is. Without
// change where the printer cannot do that, or a constraint excludes it with what is chosen.
JobSettings BookletSettings(const JobSettings &settings);

// The sides of a job of so many pages, as the settings ask for them: booklet, `places` pages on a
// side, the pages that are printed and their order.
SideList SidesOf(const JobSettings &settings, size_t pages, size_t places);

// Keeps pages, and what their marks rely on, in files without a name, so that memory does not grow
// with them.
class PageStore : public PageTarget {
 public:
  PageStore();

  void BeginPage() override;
  void Write(std::string_view marks) override;
  void EndPage() override {}

  // Keeps PostScript that has to stand before all pages.
  void Define(std::string_view definitions);

  size_t Pages() const { return pages_; }

  // Hands all that was given to Define to `sink`. Not to be mixed with Define.
  void CopyDefinitions(JobSink *sink);

  // What goes before the marks of each page (from 0) that is copied; nothing without.
  void SetHeading(std::function<std::string(size_t)> heading) { heading_ = std::move(heading); }

  // Hands a page to `target`. Not to be mixed with writing: the first copy ends that.
  void CopyPage(size_t page, PageTarget *target);

  // Reads at most `size` bytes of a page from `offset` on; 0 behind its end, -1 with errno. To be
  // mixed with writing as little as CopyPage.
  long ReadPage(size_t page, uint64_t offset, char *bytes, size_t size);

  // 0, or the errno of what failed first; nothing is kept or copied from then on.
  int Error() const { return error_; }

 private:
  struct Close {
    void operator()(std::FILE *file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, Close>;

  void Check(bool good);
  void Seek(std::FILE *file, uint64_t offset);
  void Copy(std::FILE *file, uint64_t size, const std::function<void(std::string_view)> &take);
  uint64_t OffsetOf(size_t page);

  File marks_, offsets_, definitions_;  // all pages' marks; where each page's begin
  uint64_t size_ = 0;                   // of the marks, bytes
  uint64_t definitions_size_ = 0;
  std::function<std::string(size_t)> heading_;
  size_t pages_ = 0;
  int error_ = 0;
};

}  // namespace kpx::filter
