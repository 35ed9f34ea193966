#include "testpage.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <variant>

#include "addedmodels.h"
#include "cfeature.h"
#include "cmessages.h"
#include "deffile.h"
#include "globals.h"
#include "jobrows.h"
#include "language.h"
#include "pafreader.h"
#include "paths.h"
#include "porting.h"
#include "ppdconversion.h"
#include "printermodels.h"
#include "queuetypes.h"
#include "scriptreader.h"
#include "settingkeys.h"
#include "textfile.h"
#include "utils.h"

namespace {

constexpr std::string_view L_TextsLine = "%KPX texts\n";

// ---- What is told

std::string LastPart(const std::string &path) { return path.substr(path.rfind('/') + 1); }

// The description of the printer in the user's language, as its PPD file's place tells it.
std::string DescriptionPath(const std::string &ppd_path) {
  const std::string name = LastPart(ppd_path);
  if (name.starts_with(kAddedModelPrefix)) {
    return AddedModelPafPath(name.substr(0, name.rfind('.')), lng_dir);
  }
  BuildPrinterPaths();
  return PathIn(paf_path, PafNameOfPpd(name));
}

std::optional<PafContent> ReadDescription(const std::string &ppd_path) {
  const std::optional<std::string> text = ReadWholeFile(DescriptionPath(ppd_path));
  if (!text) return std::nullopt;
  LineReader lines(*text);
  std::variant<PafContent, PafError> read = ReadPaf(lines);
  if (PafContent *content = std::get_if<PafContent>(&read)) return std::move(*content);
  return std::nullopt;
}

bool SaysNoColours(const std::string &ppd_path) {
  return ReadWholeFile(ppd_path).value_or("").find("\n*ColorDevice: False") != std::string::npos;
}

// The settings of the queue under those of the user, key and value.
Owned<CHash> SettingsOf(const InterfaceBlock &block) {
  Owned<CHash> settings = CreateHash();
  if (block.def_path.empty()) return settings;
  OverlayDefFile(ReadWholeFile(block.def_path).value_or(""), settings.get());
  const char *user = GetUserName(nullptr);
  const std::string own = UsersDirectoryBeside(block.def_path) + "/" +
                          UserDefFileName(user == nullptr ? "" : user, LastPart(block.def_path));
  OverlayDefFile(ReadOwnFile(own).value_or(""), settings.get());
  return settings;
}

// Each feature of the printer, with the setting or, without one, the printer's default. The region
// is the paper once more.
void AddSettings(const CHash *settings, const CHash *features, TestPageFacts *facts) {
  for (const auto [key, feature] : Pairs<CFeature>(features)) {
    if (std::string_view(key) == kPageRegionKey) continue;
    const char *setting = HashText(settings, key);
    const std::string choice =
        setting == nullptr ? TextOf(fGet_Default_Function(feature)) : std::string(setting);
    const char *text = HashText(fGet_Options_Function(feature), choice.c_str());
    facts->settings.emplace_back(TextOf(fGet_Translation_Function(feature)),
                                 text == nullptr ? choice : text);
  }
}

const char *PrinterOfModel(const std::string &model) {
  for (int number = 1; !model.empty(); ++number) {
    const PrinterModel &row = PrinterModelOfNumber(number);
    if (row.number != number) break;
    if (model == row.spooler_model) return row.display_name;
  }
  return "";
}

std::string HostName() {
  std::array<char, 256> name = {};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

// The lines above the settings.
std::vector<std::pair<std::string, std::string>> LinesOf(const TestPageFacts &facts) {
  std::vector<std::pair<std::string, std::string>> lines;
  if (!facts.printer.empty()) {
    lines.emplace_back(G_Translate("DEF_LBL_PRINTER_TITLE"), facts.printer);
  }
  if (!facts.type.empty()) {
    lines.emplace_back(G_Translate("DEF_LBL_TYPE_TITLE"), G_Translate(facts.type.c_str()));
  }
  lines.emplace_back(G_Translate("TESTPAGE_COMPUTER"), HostName());
  lines.emplace_back(G_Translate("DEF_LBL_WHEN_TITLE"), DayAndTimeText(std::time(nullptr)));
  return lines;
}

// ---- Characters

// `text` in ISO 8859-1, "?" for what that lacks.
std::string Latin1(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const auto first = static_cast<unsigned char>(text[0]);
    size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
      ++length;
    }
    if (first < 0x80) {
      bytes += first < ' ' ? '?' : text[0];
    } else if (length == 2 && first <= 0xC3) {
      bytes += static_cast<char>(((first & 0x03) << 6) | (text[1] & 0x3F));
    } else {
      bytes += text.substr(0, length) == "\u2019" ? '\'' : '?';
    }
    text.remove_prefix(length);
  }
  return bytes;
}

// ---- PostScript

std::string PostScriptString(std::string_view text) {
  std::string string = "(";
  for (const char c : Latin1(text)) {
    if (c == '(' || c == ')' || c == '\\') {
      string += std::string("\\") + c;
    } else if (static_cast<unsigned char>(c) < 0x80) {
      string += c;
    } else {
      std::array<char, 8> octal = {};
      std::snprintf(octal.data(), octal.size(), "\\%03o", static_cast<unsigned char>(c));
      string += octal.data();
    }
  }
  return string + ")";
}

void Define(std::string *code, const char *name, const std::string &value) {
  *code += std::string("/") + name + " " + value + " def\n";
}

std::string PostScriptPairs(const std::vector<std::pair<std::string, std::string>> &pairs) {
  std::string array = "[\n";
  for (const auto &[name, value] : pairs) {
    array += "[" + PostScriptString(name) + " " + PostScriptString(value) + "]\n";
  }
  return array + "]";
}

std::optional<std::string> PostScriptPage(const TestPageFacts &facts) {
  std::optional<std::string> page = ReadWholeFile(kTestPageFile);
  if (!page) return std::nullopt;
  std::string code;
  Define(&code, "Title", PostScriptString(G_Translate("DEF_BTN_TESTPAGE_TITLE")));
  Define(&code, "Queue", PostScriptString(facts.queue));
  Define(&code, "Facts", PostScriptPairs(LinesOf(facts)));
  Define(&code, "Settings", PostScriptPairs(facts.settings));
  Define(&code, "HasColours", facts.has_colours ? "true" : "false");
  constexpr std::pair<const char *, const char *> kTexts[] = {
      {"SettingsTitle", "TESTPAGE_SETTINGS"},
      {"Area", "TESTPAGE_MARGINS"},
      {"Ruler", "TESTPAGE_RULER"},
      {"Greys", "TESTPAGE_GREYS"},
      {"Colours", "TESTPAGE_COLOURS"},
      {"Lines", "TESTPAGE_LINES"},
      {"Fonts", "TESTPAGE_FONTS"}};
  for (const auto &[name, key] : kTexts) Define(&code, name, PostScriptString(G_Translate(key)));
  const size_t place = page->find(L_TextsLine);
  if (place != std::string::npos) page->replace(place, L_TextsLine.size(), code);
  return page;
}

// ---- PCL 5, at 300 units an inch. A4 and Letter both have room for it.

constexpr int L_PclWidth = 2250;
constexpr int L_PclHeight = 2900;
constexpr int L_PclLeft = 60;

std::string PclAt(int x, int y) {
  return "\033*p" + std::to_string(x) + "x" + std::to_string(y) + "Y";
}

// A filled box: `grey` in percent, 100 is black.
std::string PclBox(int x, int y, int width, int height, int grey) {
  return PclAt(x, y) + "\033*c" + std::to_string(width) + "a" + std::to_string(height) + "b" +
         std::to_string(grey) + "g2P";
}

// The faces of PCL 5: a proportional one, upright or bold.
std::string PclText(int x, int y, int points, bool bold, std::string_view text) {
  return PclAt(x, y) + "\033(0N\033(s1p" + std::to_string(points) + "v0s" + (bold ? "3" : "0") +
         "b4148T" + Latin1(text);
}

std::string PclFrame() {
  return PclBox(0, 0, L_PclWidth, 3, 100) + PclBox(0, L_PclHeight, L_PclWidth, 3, 100) +
         PclBox(0, 0, 3, L_PclHeight, 100) + PclBox(L_PclWidth, 0, 3, L_PclHeight, 100);
}

std::string PclGreys(int y) {
  constexpr int kSteps = 10, kStep = 190;
  std::string data;
  for (int i = 0; i <= kSteps; ++i) {
    data += PclBox(L_PclLeft + i * kStep, y, kStep, 110, 100 * i / kSteps);
    data += PclText(L_PclLeft + i * kStep, y + 150, 7, false, std::to_string(i * 10) + "%");
  }
  return data;
}

std::string PclPage(const TestPageFacts &facts) {
  constexpr int kValues = 500, kLine = 60, kSmallLine = 46;
  std::string data = "\033E\033&u300D\033&l0O" + PclFrame();
  int y = 140;
  data += PclText(L_PclLeft, y, 24, true, G_Translate("DEF_BTN_TESTPAGE_TITLE"));
  data += PclText(L_PclLeft, y += 110, 18, true, facts.queue);
  y += kLine / 2;
  for (const auto &[name, value] : LinesOf(facts)) {
    data += PclText(L_PclLeft, y += kLine, 10, false, name);
    data += PclText(L_PclLeft + kValues, y, 10, false, value);
  }
  const auto heading = [&](const char *key) {
    data += PclText(L_PclLeft, y += 110, 9, true, G_Translate(key));
  };
  if (!facts.settings.empty()) heading("TESTPAGE_SETTINGS");
  for (const auto &[name, value] : facts.settings) {
    data += PclText(L_PclLeft, y += kSmallLine, 8, false, name + ": " + value);
  }
  heading("TESTPAGE_GREYS");
  data += PclGreys(y += 30);
  y += 170;
  heading("TESTPAGE_FONTS");
  for (const int points : {6, 8, 10, 13}) {
    data += PclText(L_PclLeft, y += 30 + points * 4, points, false,
                    "ABCDEFGHIJ abcdefghij 0123456789 ÄÖÜ äöüß àçèéñõ");
  }
  return data + "\f\033E";
}

// ---- Text

std::string TextPage(const TestPageFacts &facts) {
  const std::string rule(72, '-');
  std::string text = std::string(G_Translate("DEF_BTN_TESTPAGE_TITLE")) + "\n" + rule + "\n" +
                     G_Translate("DEF_LBL_QUEUE_TITLE") + ": " + facts.queue + "\n";
  for (const auto &[name, value] : LinesOf(facts)) text += name + ": " + value + "\n";
  if (!facts.settings.empty()) {
    text += std::string("\n") + G_Translate("TESTPAGE_SETTINGS") + "\n" + rule + "\n";
  }
  for (const auto &[name, value] : facts.settings) text += name + ": " + value + "\n";
  text += std::string("\n") + G_Translate("TESTPAGE_FONTS") + "\n" + rule + "\n";
  text += "ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz 0123456789\n";
  text += "ÄÖÜ äöüß ÀÂÇÉÈÊ àâçéèê ÁÍÓÚ áíóú Ññ Ãã Õõ € £ ¿ ¡ « » ( ) [ ] { }\n";
  for (int column = 10; column <= 70; column += 10) {
    text += std::string(8, ' ') + std::to_string(column);
  }
  return text + "\n" + std::string(70, '=') + "\n";
}

}  // namespace

TestPageFacts TestPageFactsOf(const std::string &queue) {
  TestPageFacts facts{.queue = queue};
  const QueueScript script = LookAtScript(queue.c_str());
  const BlockReading reading = ReadInterfaceBlock(script.text);
  if (reading.state != BlockState::Whole) return facts;
  facts.type = reading.block.queue_type;
  facts.printer = PrinterOfModel(ModelOfScript(script.text));
  if (reading.block.ppd_path.empty()) return facts;
  facts.has_colours = !SaysNoColours(reading.block.ppd_path);
  const std::optional<PafContent> printer = ReadDescription(reading.block.ppd_path);
  if (!printer) return facts;
  facts.printer = TextOf(printer->name.get());
  AddSettings(SettingsOf(reading.block).get(), printer->features.get(), &facts);
  return facts;
}

std::optional<std::string> TestPageData(const TestPageFacts &facts) {
  if (facts.type == kPclType) return PclPage(facts);
  if (facts.type == kTextType) return TextPage(facts);
  return PostScriptPage(facts);
}
