// Where the text of a job goes on its pages.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "jobresult.h"
#include "jobsettings.h"
#include "sheets.h"

namespace kpx::filter {

struct TextLayout {
  std::string font;               // its PostScript name
  double size = 12;               // height of the text and distance of its lines, points
  double width_size = 12;         // the size that its widths have; less where they are narrowed
  bool is_monospaced = true;      // all characters of the printer's font are one cell wide
  bool has_own_encoding = false;  // a font of symbols, whose bytes are not re-encoded
  double leading = 12;            // from one line to the next, points
  double unit = 7.2;              // what places in a line are counted in: a cell, or a point
  double left = 0, top = 0;       // of the first line's baseline, points
  double room = 1;                // of a line, units
  size_t lines = 1;               // of a column
  bool wraps = true;              // what is too long for a line goes on in the next one
  bool has_numbers = false;       // the lines of the text are numbered
  bool has_header = false;        // each page names the text, the date and its number
  double header_rise = 0;         // of its line above the first one of the text, points
  size_t columns = 1;             // of text, side by side on a page
  double column_step = 0;         // from one of them to the next, points
  double number_room = 0;         // left of each column, points
  double page_room = 1;           // of a line over all columns and numbers, units
};

// The layout of the settings: "*FontName", "*FontSize", "*Orientation", the words of textwords.h,
// the paper and its printable area. A typewriter font has whole columns; where between 72 and 79
// (70 and 86 with line numbers) would fit they are made narrower so that 80 and the numbers do,
// unless the job says how many there are to an inch. Fonts that the queue names and nobody can have
// count as Courier. A header that has no room is left out.
TextLayout LayoutOf(const JobSettings &settings);

// A warning for each setting of the text that is given and cannot be used.
void WarnOfTextSettings(const JobSettings &settings, JobResult *result);

}  // namespace kpx::filter
