// The user's language and the places of its files.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

// A language beside English (data/nls/languages.inc).
struct TranslatedLanguage {
  const char *directory;  // of its texts; its sub-directory "utf8" has them in UTF-8
  const char *manuals;    // its directory of manual pages
  const char *locale;     // one of its locales, without a character set
  std::array<std::string_view, 3> beginnings;  // of the values of LANG that choose it
};
std::span<const TranslatedLanguage> TranslatedLanguages();

// The language directory for the environment variable LANG, such as "deu" or "deu/utf8"; "enu" for
// every language that has none of its own.
std::string G_GetNlsDirFromLang();

// Fill msg_path, hlp_path, ppd_path with paf_path, and queues_path from lng_dir.
void BuildMessagesPath();
void BuildHelpPath();
void BuildPrinterPaths();
void BuildQueuesPath();
