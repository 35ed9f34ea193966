// The installation that a test of the shipped programs runs with: its texts, and changes to its
// files that last for one test. Only inside the sandbox.
#pragma once

#include <stdexcept>
#include <string>

#include "changedfile.h"
#include "coresupport.h"
#include "temporarydirectory.h"

inline constexpr char kInstalledCatalogue[] = "/opt/orlan/data/nls/enu/pafs/messages.paf";
inline constexpr char kInstalledHelp[] = "/opt/orlan/docs/nls/enu/KPX.help";

// A text of the installed English catalogue, as the program shows it.
inline std::string CatalogueText(const std::string &key) {
  static const Owned<CMessages> catalogue = [] {
    Owned<CMessages> read = CreateMessages(kInstalledCatalogue);
    const std::string content = ContentOf(kInstalledCatalogue);
    LineReader lines(content);
    ReadMessages(read.get(), lines);
    return read;
  }();
  const char *text = fTranslateMessage_Function(catalogue.get(), key.c_str());
  if (text == nullptr || key == text) throw std::runtime_error("no text " + key);
  return text;
}

// The same, its "%s" replaced by the arguments.
inline std::string CatalogueText(const std::string &key, std::initializer_list<FormatArg> args) {
  return FormatMessage(CatalogueText(key), args);
}
