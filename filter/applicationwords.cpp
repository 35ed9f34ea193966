#include "applicationwords.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>

#include "decimal.h"
#include "ppdmodel.h"
#include "settingkeys.h"
#include "sheets.h"
#include "textencoding.h"
#include "textwords.h"

namespace kpx::filter {

namespace {

constexpr char kColorMode[] = "print-color-mode";

const char *UsualColorMode(bool color) { return color ? "color" : "monochrome"; }

bool IsAmong(std::string_view name, const std::string_view *begin, const std::string_view *end) {
  return std::any_of(begin, end, [name](auto known) { return SameKeyword(known, name); });
}

// What the spooler itself does or has done, or adds about the job.
bool IsSpoolersWord(const std::string &name) {
  constexpr std::string_view kBeginnings[] = {"job-", "document-", "date-time-at-", "time-at-",
                                              "com.", "AP_",       "cups-",         "ipp-",
                                              "x-",   "notify-",   "requesting-"};
  constexpr std::string_view kWords[] = {"copies",
                                         "cupsPrintQuality",
                                         "media-col",
                                         "banner",
                                         "raw",
                                         "nobanner",
                                         "classification",
                                         "page-label",
                                         "print-color-mode",
                                         "priority",
                                         "print-content-optimize",
                                         "attributes-charset",
                                         "attributes-natural-language",
                                         "print-rendering-intent"};
  const auto begins = [&](std::string_view start) { return name.starts_with(start); };
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings), begins) ||
         IsAmong(name, std::begin(kWords), std::end(kWords));
}

// Whether a word asks for what a document or a printer without that option has anyway.
bool IsUsual(const ApplicationOption &word) {
  constexpr std::pair<std::string_view, std::string_view> kUsual[] = {
      {"number-up", "1"},           {"orientation-requested", "3"}, {"mirror", "false"},
      {"page-set", "all"},          {"outputorder", "normal"},      {"print-scaling", "auto"},
      {"landscape", "false"},       {"fit-to-page", "false"},       {"scaling", "100"},
      {"number-up-layout", "lrtb"}, {"sides", "one-sided"},         {"print-quality", "4"},
      {"fitplot", "false"},         {"ColorModel", "Gray"},         {"natural-scaling", "100"}};
  return std::any_of(std::begin(kUsual), std::end(kUsual), [&](const auto &usual) {
    return SameKeyword(word.first, usual.first) && SameKeyword(word.second, usual.second);
  });
}

// Whether the spooler gives each job this word, so that it tells no wish.
bool IsInEveryJob(const ApplicationOption &word, bool color) {
  if (SameKeyword(word.first, "finishings")) return word.second == "3";
  return SameKeyword(word.first, kColorMode) && SameKeyword(word.second, UsualColorMode(color));
}

// Whether the word means a choice, by itself or with the word that it is read with.
bool IsUnderstood(const ApplicationOption &word, const std::vector<ApplicationOption> &words,
                  PpdMarking *marking) {
  std::vector<ApplicationOption> read = {word};
  for (const ApplicationOption &other : words) {
    if (SameKeyword(other.first, kColorMode)) read.push_back(other);
  }
  return !marking->ChoicesOf(read).empty();
}

// The words with "media=A4,Tray2" taken apart: parts that libcups does not know by the names of the
// Internet Printing Protocol may be trays and types by those of the printer.
std::vector<ApplicationOption> WithMediaApart(const std::vector<ApplicationOption> &words,
                                              PpdMarking *marking) {
  std::vector<ApplicationOption> result;
  for (const ApplicationOption &word : words) {
    if (!SameKeyword(word.first, "media")) {
      result.push_back(word);
      continue;
    }
    std::istringstream parts(word.second);
    std::string known;
    for (std::string part; std::getline(parts, part, ',');) {
      const ApplicationOption slot{"InputSlot", part}, type{"MediaType", part};
      if (marking->ChoicesOf({{word.first, part}}).empty()) {
        const bool is_type =
            marking->ChoicesOf({slot}).empty() && !marking->ChoicesOf({type}).empty();
        result.push_back(is_type ? type : slot);
      } else {
        known += (known.empty() ? "" : ",") + part;
      }
    }
    if (!known.empty()) result.emplace_back(word.first, known);
  }
  return result;
}

std::string NameOf(const std::map<std::string, std::string, std::less<>> &names,
                   const std::string &choice) {
  const auto found = names.find(choice);
  return found == names.end() ? choice : found->second;
}

void AddMarked(const MarkedChoice &marked, const QueuePpd &ppd, ApplicationSettings *result) {
  const bool size = marked.keyword == "PageSize" || marked.keyword == "PageRegion";
  const std::string key = size ? "*PageSize" : "*" + marked.keyword;
  if (!SameKeyword(marked.choice, "Custom")) {
    const bool media = marked.keyword == "MediaType";
    const auto &names = size ? ppd.papers : ppd.medias;
    result->settings.push_back({key, size || media ? NameOf(names, marked.choice) : marked.choice});
  } else if (size && marked.width > 0 && marked.length > 0) {
    const std::string name =
        "Custom." + DecimalText(marked.width) + "x" + DecimalText(marked.length);
    result->papers.push_back({name, {marked.width, marked.length}});
    result->settings.push_back({key, name});
  } else if (!marked.text.empty()) {
    const std::string text = DecodeLine(marked.text);
    if (marked.keyword == "MediaType") result->medias.push_back(text);
    result->settings.push_back({key, text});
  }
}

bool IsOn(std::string_view value) {
  return SameKeyword(value, "yes") || SameKeyword(value, "true") || SameKeyword(value, "on");
}

bool IsSwitch(std::string_view value) {
  return IsOn(value) || SameKeyword(value, "no") || SameKeyword(value, "false") ||
         SameKeyword(value, "off");
}

// Whether a word for pages works with text and PostScript.
bool WorksHere(const ApplicationOption &word) {
  if (SameKeyword(word.first, "outputorder")) return SameKeyword(word.second, "reverse");
  if (SameKeyword(word.first, "number-up")) return IsPagesPerSide(word.second);
  if (SameKeyword(word.first, "number-up-layout")) return IsPageOrder(word.second);
  return SameKeyword(word.first, "booklet") && IsSwitch(word.second);
}

// What is said of a word for pages that nobody heeds; nothing where the job fails for it.
std::string Unheeded(const ApplicationOption &word, PageWords pages) {
  constexpr std::string_view kSelecting[] = {"page-ranges", "page-set"};
  constexpr std::string_view kKnown[] = {"number-up", "number-up-layout", "booklet", "outputorder"};
  if (IsAmong(word.first, std::begin(kSelecting), std::end(kSelecting))) return {};
  if (pages == PageWords::kNobody) return "does not work with PCL jobs; ignored";
  if (pages == PageWords::kConverter || WorksHere(word)) return {};
  return IsAmong(word.first, std::begin(kKnown), std::end(kKnown))
             ? "does not work with that value; ignored"
             : "works with PDF and pictures only; ignored";
}

// The settings that words for pages stand for.
std::vector<KeyValue> PageSettingsOf(const std::vector<ApplicationOption> &words) {
  std::vector<KeyValue> settings;
  std::string layout;
  for (const ApplicationOption &word : words) {
    if (IsUsual(word) || !WorksHere(word)) continue;
    if (SameKeyword(word.first, "number-up-layout")) layout = word.second;
    if (SameKeyword(word.first, "booklet")) {
      settings.push_back({kBookletKey, IsOn(word.second) ? "1" : "0"});
    }
    if (SameKeyword(word.first, "number-up")) {
      settings.push_back({kNupKey, word.second});
      settings.push_back({kNupOrderKey, "Left"});
    }
  }
  if (!layout.empty()) settings.push_back({kNupOrderKey, layout});
  return settings;
}

}  // namespace

std::vector<ApplicationOption> WordsOfApplications(const std::string &options, bool color) {
  std::vector<ApplicationOption> words = ApplicationOptionsOf(options);
  // Together with this one the colours are part of a wish.
  const bool has_quality = std::any_of(words.begin(), words.end(), [](const auto &word) {
    return SameKeyword(word.first, "print-quality");
  });
  std::erase_if(words, [&](const ApplicationOption &word) {
    return word.first.starts_with('*') || IsInEveryJob(word, color);
  });
  const bool has_mode = std::any_of(words.begin(), words.end(), [](const auto &word) {
    return SameKeyword(word.first, kColorMode);
  });
  if (has_quality && !has_mode) words.emplace_back(kColorMode, UsualColorMode(color));
  return words;
}

bool IsPageWord(const std::string &name) {
  constexpr std::string_view kWords[] = {"number-up",     "number-up-layout",
                                         "page-ranges",   "page-set",
                                         "outputorder",   "page-border",
                                         "mirror",        "orientation-requested",
                                         "landscape",     "fit-to-page",
                                         "fitplot",       "scaling",
                                         "print-scaling", "natural-scaling",
                                         "position",      "presentation-direction-number-up",
                                         "crop-to-fit",   "fill",
                                         "page-left",     "page-right",
                                         "page-top",      "page-bottom",
                                         "booklet",       "ppi"};
  return IsAmong(name, std::begin(kWords), std::end(kWords));
}

ApplicationSettings SettingsOfWords(const std::vector<ApplicationOption> &given,
                                    const QueuePpd &ppd, PageWords pages) {
  ApplicationSettings result;
  PpdMarking marking(ppd.text);
  const std::vector<ApplicationOption> words = WithMediaApart(given, &marking);
  for (const ApplicationOption &word : words) {
    if (SameKeyword(word.first, "copies"))
      result.settings.push_back({kCopiesKey, DecodeLine(word.second)});
    if (IsUsual(word) || IsSpoolersWord(word.first)) continue;
    if (pages == PageWords::kText) {
      if (const std::optional<KeyValue> setting = TextSettingOf(word)) {
        result.settings.push_back(*setting);
        continue;
      }
    }
    // Without its value, which may be a secret.
    const std::string text = "the option \"" + DecodeLine(word.first) + "\" ";
    if (IsPageWord(word.first)) {
      const std::string unheeded = Unheeded(word, pages);
      if (!unheeded.empty()) result.warnings.push_back(text + unheeded);
    } else if (!IsUnderstood(word, words, &marking)) {
      result.warnings.push_back(text +
                                "is not known for this printer, or not with that value; ignored");
    }
  }
  for (const MarkedChoice &marked : marking.ChoicesOf(words)) AddMarked(marked, ppd, &result);
  if (pages == PageWords::kText || pages == PageWords::kDocument) {
    const std::vector<KeyValue> of_pages = PageSettingsOf(words);
    result.settings.insert(result.settings.end(), of_pages.begin(), of_pages.end());
  }
  return result;
}

}  // namespace kpx::filter
