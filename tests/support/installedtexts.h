// The texts of the installation in one of its languages, as tests compare them. Only inside the
// sandbox.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "cfeature.h"
#include "chelp.h"
#include "childprocess.h"
#include "cmessages.h"
#include "coresupport.h"
#include "pafreader.h"
#include "paths.h"
#include "temporarydirectory.h"
#include "textencoding.h"

using TextsByPlace = std::map<std::string, std::string>;

inline const std::vector<std::string> kModels = {"vek41201", "vek41101", "vek41051",
                                                 "vek41211", "vek41001", "vek41021"};

inline std::string InstalledPaf(const std::string &language, const std::string &name) {
  return std::string(kNlsDir) + "/" + language + "/pafs/" + name + ".paf";
}
inline std::string InstalledPpd(const std::string &language, const std::string &name) {
  return std::string(kNlsDir) + "/" + language + "/ppds/" + name + ".ppd";
}
inline std::string InstalledHelp(const std::string &language) {
  return std::string(kHelpNlsDir) + "/" + language + "/KPX.help";
}

inline TextsByPlace TextsOf(const CHash *hash) {
  TextsByPlace texts;
  for (const auto [key, text] : Pairs<CString>(hash)) {
    texts[key] = fGet_CString_Value_Function(text);
  }
  return texts;
}

// By their keys.
inline TextsByPlace MessagesIn(const std::string &language) {
  const std::string path = InstalledPaf(language, "messages");
  const Owned<CMessages> messages = CreateMessages(path.c_str());
  fFillFromPaf_Function(messages.get());
  return TextsOf(messages->messages.get());
}

// By the names of their blocks.
inline TextsByPlace HelpIn(const std::string &language) {
  const Owned<CHelp> help = CreateHelp(InstalledHelp(language).c_str());
  help->helps = CreateHash();
  const std::string text = ContentOf(InstalledHelp(language));
  LineReader lines(text);
  EXPECT_EQ(ReadHelp(help.get(), lines), std::nullopt) << language;
  return TextsOf(help->helps.get());
}

// Of a printer's description, by where they stand: "*Duplex", "*Duplex None"; the default option's
// identifier at "*Duplex default".
inline TextsByPlace PrinterTextsIn(const std::string &language, const std::string &model) {
  const std::string text = ContentOf(InstalledPaf(language, model));
  LineReader lines(text);
  auto read = ReadPaf(lines);
  TextsByPlace texts;
  const auto *content = std::get_if<PafContent>(&read);
  EXPECT_NE(content, nullptr) << language << " " << model;
  if (content == nullptr) return texts;
  for (const CHash *table : {content->features.get(), content->installable_options.get()}) {
    for (const auto [name, feature] : Pairs<CFeature>(table)) {
      texts[name] = fGet_CString_Value_Function(feature->translation.get());
      texts[std::string(name) + " default"] =
          fGet_CString_Value_Function(feature->default_option.get());
      for (const auto &[option, display] : TextsOf(feature->options.get())) {
        texts[std::string(name) + " " + option] = display;
      }
    }
  }
  return texts;
}

// All of them. Equal places of two languages hold the same text.
inline TextsByPlace AllTextsIn(const std::string &language) {
  TextsByPlace texts = MessagesIn(language);
  texts.merge(HelpIn(language));
  for (const std::string &model : kModels) texts.merge(PrinterTextsIn(language, model));
  return texts;
}

// Whether the text is the English one on purpose: a name, a unit, a word that both languages share.
// The list has "@PROJECT_VERSION@" for the program's version, as the sources of the texts have it.
inline bool IsSameOnPurpose(const std::string &language, std::string text) {
  const size_t version = text.find(KPX_PROJECT_VERSION);
  if (version != std::string::npos) {
    text.replace(version, std::string_view(KPX_PROJECT_VERSION).size(), "@PROJECT_VERSION@");
  }
  static const std::vector<std::string> lines =
      SplitLines(ContentOf(KPX_TEST_DATA "/data/same_in_translation.txt"));
  const auto has = [](const std::string &line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  };
  return has("* " + text) || has(language + " " + text);
}

inline bool HasLetters(const std::string &text) {
  return std::any_of(text.begin(), text.end(),
                     [](unsigned char c) { return std::isalpha(c) != 0; });
}
