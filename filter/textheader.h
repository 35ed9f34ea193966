// The header of a text's pages: its name, the date, the page's number and how many there are.
#pragma once

#include <cstddef>
#include <string>

#include "pjl.h"
#include "textlayout.h"
#include "textpages.h"
#include "unicodecharacters.h"

namespace kpx::filter {

class TextHeader {
 public:
  // The header of `pages` pages of that layout. `define` gets what the title's characters need. All
  // but `identity` must outlive this.
  TextHeader(const TextLayout &layout, const JobIdentity &identity, size_t pages,
             Characters *characters, const DefinitionsFunction &define);

  // The marks on a page (from 0), to be written before those of its text.
  [[nodiscard]] std::string MarksOf(size_t page) const;

 private:
  [[nodiscard]] std::string NumberOf(size_t page) const;

  const TextLayout &layout_;
  const size_t pages_;
  std::string date_;
  std::string title_;      // its marks
  double title_room_ = 1;  // units
};

}  // namespace kpx::filter
