#include "textlayout.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "featurecode.h"
#include "settingkeys.h"
#include "textwords.h"

namespace kpx::filter {

namespace {

// Points, where the printer needs no more. The left margin has room for holes and staples.
constexpr double kLeftMargin = 36, kRightMargin = 18, kEndMargin = 36;
constexpr double kCellWidth = 0.6;  // of the point size
constexpr double kUsualColumns = 80, kNarrowest = 0.9;
constexpr double kNumberColumns = 7, kNarrowestNumbered = 0.8;
constexpr double kColumnGap = 18;
constexpr size_t kHeaderLines = 2;    // it and an empty one
constexpr size_t kLongestName = 127;  // that a PostScript interpreter takes

// The font size of a text; nothing when it is none.
std::optional<double> SizeOf(std::string_view text) {
  int size = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
  const bool good = result.ec == std::errc() && result.ptr == text.data() + text.size();
  if (!good || size < 4 || size > 72) return std::nullopt;
  return size;
}

bool IsPostScriptName(std::string_view text) {
  const auto regular = [](char c) {
    return c > ' ' && c < 0x7F && std::string_view("()<>[]{}/%").find(c) == std::string_view::npos;
  };
  return !text.empty() && text.size() <= kLongestName &&
         std::all_of(text.begin(), text.end(), regular);
}

std::string FontName(const JobSettings &settings) {
  const std::string name = settings.Other(kFontNameKey);
  return IsPostScriptName(name) ? name : "Courier";
}

bool IsSymbolFont(std::string_view name) { return name == "Symbol" || name == "ZapfDingbats"; }

bool IsMonospacedName(std::string_view name) {
  return name.find("Courier") != std::string_view::npos ||
         name.find("Mono") != std::string_view::npos || IsSymbolFont(name);
}

// The size of the text, and the distances that follow from it.
void SetSize(const JobSettings &settings, const TextWords &words, TextLayout *layout) {
  layout->size = SizeOf(settings.Other(kFontSizeKey)).value_or(12);
  if (words.characters_per_inch) layout->size = 72 / (kCellWidth * *words.characters_per_inch);
  layout->width_size = layout->size;
  layout->leading = words.lines_per_inch ? 72 / *words.lines_per_inch : layout->size;
  layout->size = std::min(layout->size, layout->leading);
}

// Lays a line of a typewriter font out in `width` points: its cells, after those of its number.
void LayOutCells(double width, bool may_narrow, TextLayout *layout) {
  layout->unit = kCellWidth * layout->width_size;
  // A hair more, for sizes that are whole columns but for rounding.
  double cells = static_cast<double>(static_cast<long>(width / layout->unit + 0.01));
  const double of_number = layout->has_numbers ? kNumberColumns : 0;
  const double usual = kUsualColumns + of_number;
  const double narrowest = layout->has_numbers ? kNarrowestNumbered : kNarrowest;
  if (may_narrow && cells >= narrowest * usual && cells < usual) {
    cells = usual;
    layout->unit = width / cells;
    layout->width_size = layout->unit / kCellWidth;
  }
  layout->room = std::max(1.0, cells - of_number);
  layout->number_room = of_number * layout->unit;
}

void LayOutLine(double width, const TextWords &words, TextLayout *layout) {
  layout->has_numbers = words.has_numbers;
  layout->columns = words.columns;
  const auto columns = static_cast<double>(words.columns);
  const double column = (width - (columns - 1) * kColumnGap) / columns;
  layout->column_step = column + kColumnGap;
  if (layout->is_monospaced) {
    LayOutCells(column, !words.characters_per_inch, layout);
  } else {
    layout->unit = 1;
    layout->number_room = layout->has_numbers ? kNumberColumns * kCellWidth * layout->size : 0;
    layout->room = std::max(layout->size, column - layout->number_room);
  }
  layout->page_room = width / layout->unit;
}

// Lays the lines out between two heights, in points from the paper's lower edge.
void LayOutLines(double top, double bottom, const TextWords &words, TextLayout *layout) {
  const double lines = (top - bottom - layout->size) / layout->leading + 1;
  layout->lines = lines > 1 ? static_cast<size_t>(lines + 0.01) : 1;
  layout->top = top - layout->size;
  layout->has_header = words.has_header && layout->lines > kHeaderLines;
  if (!layout->has_header) return;
  layout->lines -= kHeaderLines;
  layout->header_rise = static_cast<double>(kHeaderLines) * layout->leading;
  layout->top -= layout->header_rise;
}

}  // namespace

TextLayout LayoutOf(const JobSettings &settings) {
  const PpdPageSize page = PageInHand(settings, TurnOf(settings));
  const TextWords words = TextWordsOf(settings);
  TextLayout layout;
  layout.font = FontName(settings);
  layout.is_monospaced = IsMonospacedName(layout.font);
  layout.has_own_encoding = IsSymbolFont(layout.font);
  layout.wraps = words.wraps;
  SetSize(settings, words, &layout);
  const double left = std::max(page.left, words.left.value_or(kLeftMargin));
  const double right = std::max(page.width - page.right, words.right.value_or(kRightMargin));
  const double top = std::max(page.length - page.top, words.top.value_or(kEndMargin));
  const double bottom = std::max(page.bottom, words.bottom.value_or(kEndMargin));
  LayOutLine(page.width - right - left, words, &layout);
  layout.left = left + layout.number_room;
  LayOutLines(page.length - top, bottom, words, &layout);
  return layout;
}

void WarnOfTextSettings(const JobSettings &settings, JobResult *result) {
  const auto warn = [&](const std::string &key, auto good, const std::string &words) {
    const std::string value = settings.Other(key);
    if (!value.empty() && !good(value)) result->Warn("\"" + key + "=" + value + "\" " + words);
  };
  const auto is_size = [](std::string_view text) { return SizeOf(text).has_value(); };
  warn(kFontSizeKey, is_size, "is not a size from 4 to 72 points: 12 is used");
  warn(kFontNameKey, IsPostScriptName, "cannot be the name of a font: Courier is used");
  WarnOfPageSettings(settings, result);
  WarnOfTextWords(settings, result);
  if (TextWordsOf(settings).has_header && !LayoutOf(settings).has_header) {
    result->Warn("the pages have no room for a header: they are printed without");
  }
}

}  // namespace kpx::filter
