#include "addedppd.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <utility>

#include "optiongroups.h"
#include "pafwriter.h"
#include "textencoding.h"
#include "textscan.h"

namespace kpx::filter {

namespace {

using Texts = std::map<std::pair<std::string, std::string>, std::string>;  // keyword, choice

// A line "*<keyword> <option>/<text>: ...", taken apart.
struct KeywordLine {
  std::string_view keyword;  // without its asterisk
  std::string_view option;   // empty when there is none
  size_t text_begin = 0;     // where the text stands in the line, or would stand: "/" and all
  size_t text_end = 0;
};

std::optional<KeywordLine> TakeApart(std::string_view line) {
  if (!line.starts_with('*') || line.starts_with("*%")) return std::nullopt;
  const size_t colon = line.find(':');
  const size_t end = line.find_first_of(" \t:", 1);
  if (colon == std::string_view::npos || end == std::string_view::npos) return std::nullopt;
  KeywordLine parts;
  parts.keyword = line.substr(1, end - 1);
  parts.text_begin = parts.text_end = colon;
  if (end < colon) {
    std::string_view option = line.substr(end, colon - end);
    const size_t slash = option.find('/');
    if (slash != std::string_view::npos) {
      parts.text_begin = end + slash;
      option = option.substr(0, slash);
    }
    parts.option = Trimmed(option);
  }
  return parts;
}

// A text of the file that may contain colons is over at the last one before the value.
std::string_view TextOf(std::string_view line, const KeywordLine &parts) {
  if (parts.text_begin == parts.text_end) return {};
  return line.substr(parts.text_begin + 1, parts.text_end - parts.text_begin - 1);
}

bool IsSameLanguage(std::string_view tag, std::string_view language) {
  if (tag == language) return true;
  const std::string_view general = language.substr(0, 2);
  return tag.substr(0, 2) == general && (tag.size() == 2 || tag[2] == '_');
}

// The tag of a translated keyword, "de" of "de.PageSize"; empty for another.
std::string_view TagOf(std::string_view keyword) {
  const size_t dot = keyword.find('.');
  const bool is_tag = dot == 2 || (dot == 5 && keyword[2] == '_');
  return is_tag ? keyword.substr(0, dot) : std::string_view();
}

// The lines of a PPD text, without their ends, each with whether a value that began before it goes
// on in it.
template <typename Use>
void ForEachPpdLine(std::string_view ppd, Use use) {
  bool in_value = false;
  while (!ppd.empty()) {
    const size_t end = std::min(ppd.find_first_of("\r\n"), ppd.size());
    const std::string_view line = ppd.substr(0, end);
    const bool pair = ppd.substr(end, 2) == "\r\n";
    ppd.remove_prefix(std::min(end + (pair ? 2 : 1), ppd.size()));
    use(line, in_value);
    const bool comment = !in_value && line.starts_with("*%");
    if (!comment && std::count(line.begin(), line.end(), '"') % 2 == 1) in_value = !in_value;
  }
}

// The texts in the language; the exact one ("pt_BR") before the general ("pt").
Texts TranslationsOf(std::string_view ppd, std::string_view language) {
  Texts texts, exact;
  ForEachPpdLine(ppd, [&](std::string_view line, bool in_value) {
    const auto parts = in_value ? std::nullopt : TakeApart(line);
    if (!parts) return;
    const std::string_view tag = TagOf(parts->keyword);
    const std::string_view text = Trimmed(TextOf(line, *parts));
    if (tag.empty() || text.empty() || !IsSameLanguage(tag, language)) return;
    const std::string keyword(parts->keyword.substr(tag.size() + 1));
    Texts &table = tag == language ? exact : texts;
    table.try_emplace({keyword, std::string(parts->option)}, text);
  });
  exact.merge(texts);
  return exact;
}

// The table's text for what the line names; null when it has none, or the line has no text.
const std::string *TranslationFor(const KeywordLine &parts, const Texts &texts) {
  constexpr std::string_view kOpening[] = {"OpenUI", "JCLOpenUI", "OpenGroup", "OpenSubGroup"};
  const bool opens =
      std::find(std::begin(kOpening), std::end(kOpening), parts.keyword) != std::end(kOpening);
  std::string name(parts.option);
  auto found = texts.end();
  if (opens) {
    // "*OpenGroup: name/text" has its name behind the colon.
    found = texts.find({"Translation", name.starts_with('*') ? name.substr(1) : name});
  } else if (!name.empty()) {
    found = texts.find({std::string(parts.keyword), name});
  }
  return found == texts.end() ? nullptr : &found->second;
}

// A group's line, whose name and text stand behind the colon.
std::string TranslatedGroup(std::string_view line, const KeywordLine &parts, const Texts &texts) {
  const std::string_view value = Trimmed(line.substr(parts.text_end + 1));
  const std::string name(Trimmed(value.substr(0, value.find('/'))));
  const auto found = texts.find({"Translation", name});
  if (found == texts.end()) return std::string(line);
  return "*" + std::string(parts.keyword) + ": " + name + "/" + found->second;
}

std::string Translated(std::string_view line, const Texts &texts) {
  const auto parts = TakeApart(line);
  if (!parts || texts.empty()) return std::string(line);
  if (parts->keyword == "OpenGroup" || parts->keyword == "OpenSubGroup") {
    return TranslatedGroup(line, *parts, texts);
  }
  const std::string *text = TranslationFor(*parts, texts);
  if (text == nullptr) return std::string(line);
  return std::string(line.substr(0, parts->text_begin)) + "/" + *text +
         std::string(line.substr(parts->text_end));
}

// What texts have for a character from U+0080 to U+009F, which is a control character: files that
// say that they are in ISO-8859-1 are often in Windows-1252, which has signs there. Quotation marks
// are single, since a double one would begin a value. Empty for what no text of that kind needs.
std::string_view SignFor(uint8_t byte) {
  switch (byte) {
    case 0x80:
      return "EUR";
    case 0x85:
      return "...";
    case 0x91:
    case 0x92:
    case 0x93:
    case 0x94:
      return "'";
    case 0x96:
    case 0x97:
      return "-";
    case 0x99:
      return "(TM)";
    default:
      return "";
  }
}

// The line (UTF-8) with signs for the control characters that stand in front of its value.
std::string WithSigns(const std::string &line) {
  const size_t value = std::min(line.find('"'), line.size());
  std::string text;
  for (size_t i = 0; i < line.size(); ++i) {
    const bool is_pair = i + 1 < value && line[i] == '\xC2';
    const std::string_view sign = is_pair ? SignFor(static_cast<uint8_t>(line[i + 1])) : "";
    if (sign.empty()) {
      text += line[i];
    } else {
      text += sign;
      ++i;
    }
  }
  return text;
}

// A line (UTF-8) in ISO-8859-1; unchanged when that cannot hold it, or would be read as UTF-8.
std::string Latin1Line(const std::string &line) {
  std::string latin1;
  for (size_t i = 0; i < line.size(); ++i) {
    const auto byte = static_cast<uint8_t>(line[i]);
    if (byte < 0x80) {
      latin1 += line[i];
    } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < line.size()) {
      latin1 += static_cast<char>((byte & 3) << 6 | (static_cast<uint8_t>(line[++i]) & 0x3F));
    } else {
      return line;
    }
  }
  return latin1.size() == line.size() || !IsValidUtf8(latin1) ? latin1 : line;
}

std::string Encoded(const std::string &line, TextEncoding encoding) {
  return encoding == TextEncoding::Latin1 ? Latin1Line(line) : line;
}

std::string DeclaredEncodingOf(std::string_view ppd) {
  std::string encoding;
  ForEachPpdLine(ppd, [&](std::string_view line, bool in_value) {
    const auto parts = in_value ? std::nullopt : TakeApart(line);
    if (parts && encoding.empty() && parts->keyword == "LanguageEncoding") {
      encoding = Trimmed(line.substr(parts->text_end + 1));
    }
  });
  return encoding;
}

// "<type> [<type>] <cost> <program>".
struct FilterLine {
  std::string_view type, program;
};
FilterLine FilterLineOf(std::string_view line) {
  line = Trimmed(line);
  const size_t last = line.find_last_of(" \t");
  return {line.substr(0, line.find_first_of(" \t")),
          last == std::string_view::npos ? line : line.substr(last + 1)};
}

// Programs that CUPS puts behind PostScript and that leave it PostScript: they set options, which
// is our part. Of foomatic-rip that holds where the file gives it no settings and commands of its
// own.
constexpr std::string_view kOptionPrograms[] = {"-", "hpps", "foomatic-rip"};

bool OnlySetsOptions(std::string_view program, std::string_view ppd) {
  const bool known = std::find(std::begin(kOptionPrograms), std::end(kOptionPrograms), program) !=
                     std::end(kOptionPrograms);
  const bool converts = ppd.find("*FoomaticRIP") != std::string_view::npos;
  return known && (program != "foomatic-rip" || !converts);
}

// What makes the printer's data when it takes no PostScript; empty when it does. A file may name
// programs for its printer's upkeep too.
std::string DriverOf(const PpdModel &model, std::string_view ppd) {
  std::string driver;
  for (const std::string &filter : model.filters) {
    const FilterLine line = FilterLineOf(filter);
    const bool is_postscript =
        line.type == "application/vnd.cups-postscript" || line.type == "application/postscript";
    if (is_postscript && OnlySetsOptions(line.program, ppd)) return {};
    if (!driver.empty() || line.type == "application/vnd.cups-command") continue;
    // A printer of PDF, or of other files as they are.
    driver = line.program == "-" ? std::string(line.type) : std::string(line.program);
  }
  return driver;
}

// Copies a PPD text line by line.
class Installer {
 public:
  Installer(const Texts &texts, TextEncoding encoding, bool keeps_bytes, std::string driver)
      : texts_(texts), encoding_(encoding), keeps_bytes_(keeps_bytes), driver_(std::move(driver)) {}

  void Take(std::string_view line, bool in_value) {
    if (in_value) {
      if (!dropping_) Add(std::string(line));
      return;
    }
    const auto parts = TakeApart(line);
    if (dropping_ && line.starts_with("*End")) return;
    dropping_ = parts && !keeps_bytes_ &&
                (!TagOf(parts->keyword).empty() || parts->keyword == "cupsLanguages");
    if (dropping_ || (parts && IsOwnKeyword(parts->keyword))) return;
    if (parts && !keeps_bytes_ && parts->keyword == "LanguageEncoding") return;
    Add(keeps_bytes_ ? std::string(line) : Translated(WithSigns(DecodeLine(line)), texts_));
    if (parts && parts->keyword == "PPD-Adobe") AddOwnLines();
  }

  std::string TakeText() { return std::move(text_); }

 private:
  void Add(const std::string &line) {
    text_ += keeps_bytes_ ? line : Encoded(DecodeLine(line), encoding_);
    text_ += '\n';
  }
  static bool IsOwnKeyword(std::string_view keyword) {
    return keyword == kOtherMakerKeyword || keyword == kDriverKeyword;
  }
  void AddOwnLines() {
    if (!keeps_bytes_) {
      text_ += "*LanguageEncoding: ";
      text_ += encoding_ == TextEncoding::Latin1 ? "ISOLatin1\n" : "UTF-8\n";
    }
    text_ += std::string("*") + kOtherMakerKeyword + ": True\n";
    if (!driver_.empty()) text_ += std::string("*") + kDriverKeyword + ": \"" + driver_ + "\"\n";
  }

  const Texts &texts_;
  TextEncoding encoding_;
  bool keeps_bytes_;
  std::string driver_;
  bool dropping_ = false;
  std::string text_;
};

}  // namespace

std::optional<PpdFacts> FactsOfPpd(std::string_view ppd, PpdError *error) {
  const std::optional<PpdModel> model = ReadPpd(ppd, error);
  if (!model) return std::nullopt;
  PpdFacts facts;
  facts.printer_name = PrinterName(*model, "printer.ppd");
  const std::string_view speed = Trimmed(model->throughput);
  std::from_chars(speed.data(), speed.data() + speed.size(), facts.pages_a_minute);
  facts.pages_a_minute = std::clamp(facts.pages_a_minute, 0, 100000);
  facts.driver = DriverOf(*model, ppd);
  facts.languages.emplace_back(facts.driver.empty() ? "PostScript" : facts.driver);
  if (model->pjl) facts.languages.emplace_back("PJL");
  facts.options = static_cast<int>(model->features.size());
  return facts;
}

std::string InstalledPpd(std::string_view ppd, std::string_view language, TextEncoding encoding) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (ppd.starts_with(kByteOrderMark)) ppd.remove_prefix(kByteOrderMark.size());
  const std::string declared = DeclaredEncodingOf(ppd);
  const bool keeps_bytes = !declared.empty() && !SameKeyword(declared, "ISOLatin1") &&
                           !SameKeyword(declared, "UTF-8") && !IsValidUtf8(ppd);
  const Texts texts = keeps_bytes ? Texts() : TranslationsOf(ppd, language);
  PpdError error;
  const std::optional<PpdModel> model = ReadPpd(ppd, &error);
  const std::string driver = model ? DriverOf(*model, ppd) : std::string();
  Installer installer(texts, encoding, keeps_bytes, driver);
  ForEachPpdLine(ppd,
                 [&](std::string_view line, bool in_value) { installer.Take(line, in_value); });
  return installer.TakeText();
}

std::string InstalledPaf(std::string_view ppd, std::string_view ppd_file_name,
                         const std::string &printer_name, TextEncoding encoding) {
  PpdError error;
  std::optional<PpdModel> model = ReadPpd(ppd, &error);
  if (!model) return {};
  model->nick_name = printer_name;
  const std::string whole = PafText(*model, ppd_file_name);
  std::string paf;
  LineReader lines(whole);
  while (const std::optional<std::string> line = lines.Next()) {
    paf += Encoded(*line, encoding) + "\n";
  }
  std::string_view group;
  for (const PpdFeature &feature : model->features) {
    if (feature.installable) continue;
    if (feature.group != group) {
      group = feature.group;
      paf += Encoded(kGroupComment + feature.group, encoding) + "\n";
    }
    paf += kOptionComment + feature.keyword + "\n";
  }
  return paf;
}

}  // namespace kpx::filter
