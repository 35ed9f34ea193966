#include "language.h"

#include <cstdlib>
#include <string_view>

#include "debug.h"
#include "globals.h"
#include "paths.h"

namespace {

constexpr TranslatedLanguage L_Languages[] = {
#include "languages.inc"
};

const TranslatedLanguage *FindLanguage(std::string_view name) {
  for (const TranslatedLanguage &language : L_Languages) {
    for (const std::string_view beginning : language.beginnings) {
      if (name.starts_with(beginning)) return &language;
    }
  }
  return nullptr;
}

std::string NlsPath(const char *root, const char *leaf) {
  return std::string(root) + "/" + lng_dir + "/" + leaf;
}

}  // namespace

std::span<const TranslatedLanguage> TranslatedLanguages() { return L_Languages; }

std::string G_GetNlsDirFromLang() {
  const LogScope log("G_GetNlsDirFromLang");
  const char *lang = std::getenv("LANG");
  const std::string_view name = lang == nullptr ? "" : lang;
  const TranslatedLanguage *language = FindLanguage(name);
  if (language == nullptr) return "enu";
  const bool utf8 = name.find("UTF-8") != std::string_view::npos;
  return std::string(language->directory) + (utf8 ? "/utf8" : "");
}

void BuildMessagesPath() { msg_path = NlsPath(kNlsDir, "pafs/messages.paf"); }

void BuildHelpPath() { hlp_path = NlsPath(kHelpNlsDir, "KPX.help"); }

void BuildPrinterPaths() {
  ppd_path = NlsPath(kNlsDir, "ppds");
  paf_path = NlsPath(kNlsDir, "pafs");
}

void BuildQueuesPath() { queues_path = kQueuesFile; }
