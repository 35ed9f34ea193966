#include "textwords.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>

#include "decimal.h"
#include "settingkeys.h"
#include "sheets.h"

namespace kpx::filter {

namespace {

constexpr double kLeastRoom = 18;  // that a margin leaves of its half of the page, points

enum class Kind { kSwitch, kWhole, kNumber, kAcross, kAlong };

// The words: what CUPS calls them, what their values are, and what counts without a valid one.
struct Word {
  const char *key;
  const char *of_cups;  // null: it has none
  Kind kind;
  double least, most;  // of a number
  const char *what;
  const char *otherwise;
};

constexpr Word kWords[] = {
    {kTextHeaderKey, "prettyprint", Kind::kSwitch, 0, 1, "", "0 is used"},
    {kTextLineNumbersKey, nullptr, Kind::kSwitch, 0, 1, "", "0 is used"},
    {kTextWrapKey, "wrap", Kind::kSwitch, 0, 1, "", "1 is used"},
    {kTextColumnsKey, "columns", Kind::kWhole, 1, 8, "a number of columns", "1 is used"},
    {kTextCpiKey, "cpi", Kind::kNumber, 2, 30, "a number of characters per inch",
     "the font's size decides"},
    {kTextLpiKey, "lpi", Kind::kNumber, 1, 24, "a number of lines per inch",
     "the font's size decides"},
    {kTextLeftKey, "page-left", Kind::kAcross, 0, 0, "a margin in points", "the usual one is used"},
    {kTextRightKey, "page-right", Kind::kAcross, 0, 0, "a margin in points",
     "the usual one is used"},
    {kTextTopKey, "page-top", Kind::kAlong, 0, 0, "a margin in points", "the usual one is used"},
    {kTextBottomKey, "page-bottom", Kind::kAlong, 0, 0, "a margin in points",
     "the usual one is used"}};

const Word &WordOf(std::string_view key) {
  return *std::find_if(std::begin(kWords), std::end(kWords),
                       [key](const Word &word) { return word.key == key; });
}

// The highest number that is valid for the word on the settings' paper.
double MostOf(const Word &word, const JobSettings &settings) {
  if (word.kind != Kind::kAcross && word.kind != Kind::kAlong) return word.most;
  const PpdPageSize page = PageInHand(settings, TurnOf(settings));
  const double side = word.kind == Kind::kAcross ? page.width : page.length;
  return std::max(0.0, std::floor(side / 2 - kLeastRoom));
}

std::optional<double> SwitchOf(std::string_view text) {
  for (const char *const on : {"1", "true", "yes", "on"}) {
    if (SameKeyword(text, on)) return 1;
  }
  for (const char *const off : {"0", "false", "no", "off"}) {
    if (SameKeyword(text, off)) return 0;
  }
  return std::nullopt;
}

// The word's value; nothing when it is not given or not valid.
std::optional<double> ValueOf(const Word &word, const JobSettings &settings) {
  const std::string text = settings.Other(word.key);
  if (word.kind == Kind::kSwitch) return SwitchOf(text);
  double number = 0;
  const auto format =
      word.kind == Kind::kWhole ? std::chars_format::general : std::chars_format::fixed;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, format);
  const bool is_number = result.ec == std::errc() && result.ptr == text.data() + text.size();
  if (!is_number || !(number >= word.least && number <= MostOf(word, settings))) {
    return std::nullopt;
  }
  if (word.kind == Kind::kWhole && number != std::floor(number)) return std::nullopt;
  return number;
}

}  // namespace

TextWords TextWordsOf(const JobSettings &settings) {
  const auto value = [&](std::string_view key) { return ValueOf(WordOf(key), settings); };
  TextWords words;
  words.has_header = value(kTextHeaderKey) == 1;
  words.has_numbers = value(kTextLineNumbersKey) == 1;
  words.wraps = value(kTextWrapKey) != 0;
  words.columns = static_cast<size_t>(value(kTextColumnsKey).value_or(1));
  words.characters_per_inch = value(kTextCpiKey);
  words.lines_per_inch = value(kTextLpiKey);
  words.left = value(kTextLeftKey);
  words.right = value(kTextRightKey);
  words.top = value(kTextTopKey);
  words.bottom = value(kTextBottomKey);
  return words;
}

void WarnOfTextWords(const JobSettings &settings, JobResult *result) {
  for (const Word &word : kWords) {
    const std::string text = settings.Other(word.key);
    if (text.empty() || ValueOf(word, settings)) continue;
    std::string warning = "\"" + std::string(word.key) + "=" + text + "\" is not ";
    if (word.kind == Kind::kSwitch) {
      warning += "1 (yes) or 0 (no)";
    } else {
      warning += std::string(word.what) + " from " + DecimalText(word.least) + " to " +
                 DecimalText(MostOf(word, settings));
    }
    result->Warn(warning + ": " + word.otherwise);
  }
}

std::optional<KeyValue> TextSettingOf(const ApplicationOption &word) {
  for (const Word &known : kWords) {
    if (known.of_cups != nullptr && SameKeyword(word.first, known.of_cups)) {
      return KeyValue{known.key, word.second};
    }
  }
  const bool lies = SameKeyword(word.first, "landscape") && SwitchOf(word.second) == 1;
  const bool is_orientation = SameKeyword(word.first, "orientation-requested");
  if (lies || (is_orientation && word.second == "4")) return KeyValue{kOrientationKey, "Landscape"};
  if (is_orientation && word.second == "5") return KeyValue{kOrientationKey, "RotLandscape"};
  return std::nullopt;
}

}  // namespace kpx::filter
