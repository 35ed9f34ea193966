// The installed languages beside each other: the same keys, blocks, features and options in each,
// texts of its own, and the same content in both character sets. Runs where a staged installation
// lies at its real place.
#include <gtest/gtest.h>

#include <set>

#include "data_files.h"
#include "installedtexts.h"
#include "language.h"

namespace {

std::vector<std::string> Translations() {
  std::vector<std::string> directories;
  for (const TranslatedLanguage &language : TranslatedLanguages()) {
    directories.emplace_back(language.directory);
  }
  return directories;
}

std::vector<std::string> KeysOf(const TextsByPlace &texts) {
  std::vector<std::string> keys;
  for (const auto &[key, text] : texts) keys.push_back(key);
  return keys;
}

class Translation : public testing::TestWithParam<std::string> {
 protected:
  // Fails for each text that is the English one.
  void ExpectTranslated(const TextsByPlace &english, const TextsByPlace &translated) {
    for (const auto &[key, text] : english) {
      if (key.ends_with(" default") || !HasLetters(text)) continue;
      const auto found = translated.find(key);
      if (found == translated.end() || found->second != text) continue;
      EXPECT_TRUE(IsSameOnPurpose(GetParam(), text)) << key << ": " << text;
    }
  }
};

TEST_P(Translation, HasTheMessagesOfEnglish) {
  const TextsByPlace english = MessagesIn("enu");
  const TextsByPlace translated = MessagesIn(GetParam());
  EXPECT_EQ(KeysOf(translated), KeysOf(english));
  ExpectTranslated(english, translated);
}

TEST_P(Translation, HasTheHelpBlocksOfEnglish) {
  const TextsByPlace english = HelpIn("enu");
  const TextsByPlace translated = HelpIn(GetParam());
  EXPECT_EQ(KeysOf(translated), KeysOf(english));
  ExpectTranslated(english, translated);
}

TEST_P(Translation, HasThePrintersOfEnglishWithTextsOfItsOwn) {
  for (const std::string &model : kModels) {
    const TextsByPlace english = PrinterTextsIn("enu", model);
    const TextsByPlace translated = PrinterTextsIn(GetParam(), model);
    EXPECT_EQ(KeysOf(translated), KeysOf(english)) << model;
    for (const auto &[key, text] : english) {
      if (!key.ends_with(" default")) continue;
      EXPECT_EQ(translated.at(key), text) << model << " " << key;
    }
    ExpectTranslated(english, translated);
  }
}

TEST_P(Translation, TellsTheOptionsOfAFeatureApart) {
  for (const std::string &model : kModels) {
    std::set<std::string> seen;
    for (const auto &[key, text] : PrinterTextsIn(GetParam(), model)) {
      const size_t blank = key.find(' ');
      if (blank == std::string::npos || key.ends_with(" default")) continue;
      EXPECT_TRUE(seen.insert(key.substr(0, blank) + " " + text).second) << model << " " << key;
    }
  }
}

TEST_P(Translation, IsTheSameInBothCharacterSets) {
  const std::string utf8 = GetParam() + "/utf8";
  std::vector<std::pair<std::string, std::string>> files = {
      {InstalledHelp(GetParam()), InstalledHelp(utf8)},
      {InstalledPaf(GetParam(), "messages"), InstalledPaf(utf8, "messages")}};
  for (const std::string &model : kModels) {
    files.emplace_back(InstalledPaf(GetParam(), model), InstalledPaf(utf8, model));
  }
  for (const auto &[latin1_path, utf8_path] : files) {
    const std::string in_latin1 = FileText(latin1_path);
    const std::string in_utf8 = FileText(utf8_path);
    EXPECT_TRUE(IsValidUtf8(in_utf8)) << utf8_path;
    EXPECT_FALSE(IsValidUtf8(in_latin1)) << latin1_path;
    EXPECT_EQ(Utf8FromLatin1(in_latin1), in_utf8) << latin1_path;
  }
}

TEST_P(Translation, HasPpdFilesThatTellTheirCharacterSetAndPassTheSpoolersTest) {
  for (const std::string &model : kModels) {
    const std::string latin1 = InstalledPpd(GetParam(), model);
    const std::string utf8 = InstalledPpd(GetParam() + "/utf8", model);
    EXPECT_NE(FileText(latin1).find("\n*LanguageEncoding: ISOLatin1\n"), std::string::npos);
    EXPECT_NE(FileText(utf8).find("\n*LanguageEncoding: UTF-8\n"), std::string::npos);
    EXPECT_EQ(FileText(latin1).find("\n*LanguageVersion: English\n"), std::string::npos);
    EXPECT_EQ(OutputOf("cupstestppd -q " + latin1), "");
    EXPECT_EQ(OutputOf("cupstestppd -q " + utf8), "");
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, Translation, testing::ValuesIn(Translations()),
                         [](const auto &row) { return row.param; });

}  // namespace
