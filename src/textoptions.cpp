#include "textoptions.h"

#include <algorithm>
#include <cstdlib>

#include "debug.h"
#include "fontmap.h"
#include "globals.h"
#include "optionstate.h"
#include "settingkeys.h"

namespace {

constexpr long L_SmallestSize = 4;
constexpr long L_LargestSize = 72;

std::string ValueOr(const char *feature, const char *otherwise) {
  const char *value = HashText(G_QueueFeatures_hash, feature);
  return value == nullptr ? otherwise : value;
}

long SizeOf(const std::string &text) { return std::strtol(text.c_str(), nullptr, 10); }

bool IsFontSize(const std::string &text) {
  return SizeOf(text) >= L_SmallestSize && SizeOf(text) <= L_LargestSize;
}

}  // namespace

std::vector<std::string> FontNames() {
  const Owned<CList> fonts = GetAllFontGuiName();
  std::vector<std::string> names;
  for (const CString *font : Elements<CString>(fonts.get())) {
    names.emplace_back(fGet_CString_Value_Function(font));
  }
  return names;
}

std::vector<std::string> FontStyles(const std::string &font) {
  std::vector<std::string> names;
  const CHash *styles = HashValue<CHash>(G_Fonts_hash.get(), font.c_str());
  for (const auto [style, afm_name] : Pairs<CString>(styles)) names.emplace_back(style);
  return names;
}

std::string WantedFontName() { return ValueOr(kFontNameKey, kDefaultFontName); }

std::string WantedFontSize() { return ValueOr(kFontSizeKey, kDefaultFontSize); }

std::string ClampedFontSize(const std::string &text) {
  return std::to_string(std::clamp(SizeOf(text), L_SmallestSize, L_LargestSize));
}

bool StoreTextOptions(const std::string &font, const std::string &style, const std::string &size) {
  const LogScope log("StoreTextOptions");
  const char *afm_name = GetAfmFontName(font.c_str(), style.c_str());
  if (afm_name == nullptr) return false;
  SetQueueValue(G_QueueFeatures_hash, kFontNameKey, afm_name);
  SetQueueValue(G_QueueFeatures_hash, kFontSizeKey,
                IsFontSize(size) ? size : ClampedFontSize(size));
  return true;
}
