#include "textlayout.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "featurecode.h"
#include "settingkeys.h"

namespace kpx::filter {

namespace {

// Points, where the printer needs no more. The left margin has room for holes and staples.
constexpr double kLeftMargin = 36, kRightMargin = 18, kEndMargin = 36;
constexpr double kCellWidth = 0.6;  // of the point size
constexpr double kUsualColumns = 80, kFewestNarrowed = 72;
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

void LayOutColumns(double width, TextLayout *layout) {
  layout->unit = kCellWidth * layout->size;
  // A hair more, for sizes that are whole columns but for rounding.
  double columns =
      std::max(1.0, static_cast<double>(static_cast<long>(width / layout->unit + 0.01)));
  if (columns >= kFewestNarrowed && columns < kUsualColumns) {
    columns = kUsualColumns;
    layout->unit = width / columns;
    layout->width_size = layout->unit / kCellWidth;
  }
  layout->room = columns;
}

}  // namespace

TextLayout LayoutOf(const JobSettings &settings) {
  const PpdPageSize page = PageInHand(settings);
  TextLayout layout;
  layout.font = FontName(settings);
  layout.size = SizeOf(settings.Other(kFontSizeKey)).value_or(12);
  layout.width_size = layout.size;
  layout.is_monospaced = IsMonospacedName(layout.font);
  layout.has_own_encoding = IsSymbolFont(layout.font);
  const double right = page.width - std::max(page.width - page.right, kRightMargin);
  const double bottom = std::max(page.bottom, kEndMargin);
  layout.left = std::max(page.left, kLeftMargin);
  const double top = page.length - std::max(page.length - page.top, kEndMargin);
  layout.top = top - layout.size;
  const double width = right - layout.left;
  if (layout.is_monospaced) {
    LayOutColumns(width, &layout);
  } else {
    layout.unit = 1;
    layout.room = std::max(layout.size, width);
  }
  const double lines = (top - bottom) / layout.size;
  layout.lines = lines > 1 ? static_cast<size_t>(lines + 0.01) : 1;
  return layout;
}

JobSettings UprightSettings(const JobSettings &settings) {
  JobSettings upright = settings;
  if (TurnOf(settings) != PageTurn::kNone) upright.Apply({{kOrientationKey, "Portrait"}});
  return upright;
}

void WarnOfTextSettings(const JobSettings &settings, JobResult *result) {
  const auto warn = [&](const std::string &key, auto good, const std::string &words) {
    const std::string value = settings.Other(key);
    if (!value.empty() && !good(value)) result->Warn("\"" + key + "=" + value + "\" " + words);
  };
  const auto is_size = [](std::string_view text) { return SizeOf(text).has_value(); };
  warn(kFontSizeKey, is_size, "is not a size from 4 to 72 points: 12 is used");
  warn(kFontNameKey, IsPostScriptName, "cannot be the name of a font: Courier is used");
  warn(kNupKey, IsPagesPerSide, "is not a number of pages per side (1, 2, 4, 6, 9, 16): 1 is used");
  warn(kNupOrderKey, IsPageOrder,
       "is not an order of pages (Left, Right, Down, Back): Left is used");
}

}  // namespace kpx::filter
