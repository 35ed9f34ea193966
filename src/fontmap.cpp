#include "fontmap.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "cmessages.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "paths.h"
#include "textfile.h"
#include "textscan.h"

namespace {

// The three values of a line, where given.
struct Entry {
  std::optional<std::string> font;
  std::optional<std::string> style;
  std::optional<std::string> afm_name;
};

struct Field {
  std::string_view keyword;
  std::optional<std::string> Entry::*value;
};

// GUI_Font:Courier|GUI_Style:Bold|AFM_FontName:Courier-Bold
constexpr Field L_Fields[] = {
    {"GUI_Font", &Entry::font},
    {"GUI_Style", &Entry::style},
    {"AFM_FontName", &Entry::afm_name},
};

void TakeField(std::string_view text, Entry &entry) {
  for (const Field &field : L_Fields) {
    if (!text.starts_with(field.keyword)) continue;
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
      Log(4, "corrupted line found");
    } else {
      entry.*field.value = text.substr(colon + 1);
    }
    return;
  }
}

Entry ParseLine(std::string_view line) {
  Entry entry;
  while (!line.empty()) {
    const std::string_view field = line.substr(0, line.find('|'));
    TakeField(Trimmed(field, " \t"), entry);
    line.remove_prefix(std::min(line.size(), field.size() + 1));
  }
  return entry;
}

void AddEntry(CHash *fonts, const Entry &entry) {
  if (!entry.font || !entry.style || !entry.afm_name) return;
  CHash *styles = HashValue<CHash>(fonts, entry.font->c_str());
  if (styles == nullptr) {
    Owned<CHash> fresh = CreateHash();
    styles = fresh.get();
    IgnoreResult(HashPut(fonts, entry.font->c_str(), std::move(fresh)), "the dictionary is there");
  }
  if (HashFind(styles, entry.style->c_str()) != nullptr) return;
  IgnoreResult(HashPutText(styles, entry.style->c_str(), entry.afm_name->c_str()),
               "the dictionary is there");
}

void LogTable(const CHash *fonts) {
  Log(4, "****************** Debuging fonts_hash ****************");
  for (const auto [font, styles] : Pairs<CHash>(fonts)) {
    Log(4, FormatMessage("GUI_font >>%s<<", {font}));
    for (const auto [style, afm_name] : Pairs<CString>(styles)) {
      Log(4, FormatMessage("        GUI_Style >>%s<< -> AFM_Font_Name >>%s<<",
                           {style, fGet_CString_Value_Function(afm_name)}));
    }
  }
  Log(4, "****************** End Debuging fonts_hash ****************");
}

}  // namespace

Owned<CHash> ReadFontmap(LineReader &lines) {
  Owned<CHash> fonts = CreateHash();
  while (const std::optional<std::string> line = lines.Next()) {
    if (!line->starts_with("#")) AddEntry(fonts.get(), ParseLine(*line));
  }
  LogTable(fonts.get());
  return fonts;
}

Owned<CHash> ParseFontmap() {
  const LogScope log("ParseFontmap");
  const std::optional<std::string> content = ReadWholeFile(kFontmapFile);
  if (!content) {
    PrintErrorLine(G_Message("ERR_UNABLE_TO_READ_FILE", {kFontmapFile}));
    return nullptr;
  }
  LineReader lines(*content);
  return ReadFontmap(lines);
}

Owned<CList> GetAllFontGuiName() {
  const LogScope log("GetAllFontGuiName");
  return fGetKeys_CHash_Function(G_Fonts_hash.get());
}

int GetGuiFont(const char *afm_name, std::string *font, std::string *style) {
  const LogScope log("GetGuiFont");
  if (G_Fonts_hash == nullptr || afm_name == nullptr || font == nullptr || style == nullptr) {
    return 0;
  }
  for (const auto [font_name, styles] : Pairs<CHash>(G_Fonts_hash.get())) {
    for (const auto [style_name, value] : Pairs<CString>(styles)) {
      if (value->value.View() != afm_name) continue;
      *font = font_name;
      *style = style_name;
      return 1;
    }
  }
  font->clear();
  style->clear();
  return 0;
}

const char *GetAfmFontName(const char *font, const char *style) {
  const LogScope log("GetAfmFontName");
  return HashText(HashValue<CHash>(G_Fonts_hash.get(), font), style);
}
