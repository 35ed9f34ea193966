#include "language.h"

#include <array>
#include <cstdlib>
#include <string_view>

#include "debug.h"
#include "globals.h"
#include "paths.h"

namespace {

struct Language {
  const char *directory;
  std::array<std::string_view, 3> prefixes;
};

constexpr Language L_Languages[] = {
    {"deu", {"de", "De", "german"}},     {"esp", {"es", "Es", "spanish"}},
    {"fra", {"fr", "Fr", "french"}},     {"ita", {"it", "It", "italian"}},
    {"ptb", {"pt", "Pt", "portuguese"}},
};

const Language *FindLanguage(std::string_view name) {
  for (const Language &language : L_Languages) {
    for (const std::string_view prefix : language.prefixes) {
      if (name.starts_with(prefix)) return &language;
    }
  }
  return nullptr;
}

std::string NlsPath(const char *root, const char *leaf) {
  return std::string(root) + "/" + lng_dir + "/" + leaf;
}

}  // namespace

std::string G_GetNlsDirFromLang() {
  const LogScope log("G_GetNlsDirFromLang");
  const char *lang = std::getenv("LANG");
  const std::string_view name = lang == nullptr ? "" : lang;
  const Language *language = FindLanguage(name);
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
