// The shipped message catalogues hold every text that the program asks for, in a form it can use.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "cmessages.h"
#include "data_files.h"
#include "data_message_keys.h"
#include "textformat.h"

namespace {

using Texts = std::map<std::string, std::string>;

Texts Catalogue(const std::filesystem::path &path) {
  const Owned<CMessages> messages = CreateMessages(path.c_str());
  fFillFromPaf_Function(messages.get());
  Texts texts;
  for (const auto [key, value] : Pairs<CString>(messages->messages.get())) {
    texts[key] = fGet_CString_Value_Function(value);
  }
  return texts;
}

// The placeholders of a text in the form of the table: "s", "d"; "?" for one that is not filled.
std::string Placeholders(const std::string &text) {
  std::string kinds;
  for (size_t i = text.find('%'); i != std::string::npos; i = text.find('%', i + 2)) {
    const char kind = i + 1 < text.size() ? text[i + 1] : '\0';
    if (kind == '%') continue;
    kinds += kind == 's' ? 's' : kind == 'd' || kind == 'i' ? 'd' : '?';
  }
  return kinds;
}

class ShippedCatalogue : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(ShippedCatalogue, HoldsExactlyTheKeysOfTheTable) {
  const Texts texts = Catalogue(GetParam());
  std::set<std::string> known;
  for (const MessageKey &row : kMessageKeys) {
    known.insert(row.key);
    EXPECT_TRUE(texts.contains(row.key)) << row.key << " is missing";
  }
  for (const auto &[key, text] : texts) {
    EXPECT_TRUE(known.contains(key)) << key << " is not in data_message_keys.h";
  }
}

TEST_P(ShippedCatalogue, HasThePlaceholdersThatTheProgramFills) {
  const Texts texts = Catalogue(GetParam());
  for (const MessageKey &row : kMessageKeys) {
    const auto found = texts.find(row.key);
    if (found == texts.end()) continue;
    EXPECT_EQ(Placeholders(found->second), row.placeholders) << row.key << ": " << found->second;
  }
}

TEST_P(ShippedCatalogue, HasTextsThatFitALineAndAreNotEmpty) {
  for (const std::string &line : FileLines(GetParam())) {
    EXPECT_LE(line.size(), 1000u) << line;
    EXPECT_EQ(line.find('\r'), std::string::npos) << line;
  }
  for (const auto &[key, text] : Catalogue(GetParam())) EXPECT_FALSE(text.empty()) << key;
}

// One pair of features fills a message for two texts with one of them.
TEST_P(ShippedCatalogue, HasConstraintMessagesThatAreWholeSentencesThoughATextIsMissing) {
  for (const auto &[key, text] : Catalogue(GetParam())) {
    if (!key.starts_with("CONSTR_Dlg_Message_")) continue;
    const std::string shown = FormatMessage(text, {"ONE"});
    EXPECT_TRUE(shown.ends_with(".")) << key << ": " << shown;
    EXPECT_EQ(shown.find(" ."), std::string::npos) << key << ": " << shown;
    EXPECT_EQ(shown.find(" ,"), std::string::npos) << key << ": " << shown;
  }
}

TEST_P(ShippedCatalogue, EndsInALineFeedAndDefinesNoKeyTwice) {
  EXPECT_EQ(FileText(GetParam()).back(), '\n');
  std::set<std::string> seen;
  for (const std::string &line : FileLines(GetParam())) {
    const bool is_key = line.starts_with("#") && !line.starts_with("##") && line.size() > 1;
    EXPECT_TRUE(!is_key || seen.insert(line).second) << line << " stands twice";
  }
}

TEST_P(ShippedCatalogue, TellsTheFourQueueTypesApart) {
  const Texts texts = Catalogue(GetParam());
  std::set<std::string> types;
  for (const char *key : {"postscript", "text", "pcl6", "raw"}) types.insert(texts.at(key));
  EXPECT_EQ(types.size(), 4u);
}

TEST_P(ShippedCatalogue, NamesItsLanguage) {
  const Owned<CMessages> messages = CreateMessages(GetParam().c_str());
  fFillFromPaf_Function(messages.get());
  ASSERT_NE(messages->language, nullptr);
  EXPECT_STRNE(fGet_CString_Value_Function(messages->language.get()), "");
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedCatalogue,
                         testing::ValuesIn(LanguageFiles("messages.paf")),
                         [](const auto &row) { return LanguageOf(row.param); });

TEST(SourceKeys, EveryKeyThatTheSourcesNameIsInTheTable) {
  std::set<std::string> known;
  for (const MessageKey &row : kMessageKeys) known.insert(row.key);
  std::vector<std::string> asked = SourceMatches(
      "\"((?:DEF_(?:WND|BTN|LBL|TAB|STR)|ERR|WARN|SAVE|(?:CONSTR|DCPS|DCMT)_Dlg)_[A-Za-z0-9_]*"
      "[A-Za-z0-9]|MSG[0-9]+|KPXadminWarn[0-9]+|ErrDest[A-Za-z0-9]+|[A-Za-z]+Error)\"");
  for (const char *call : {"G_(?:Translate|Message)\\(\\s*\"([^\"]*)\"",
                           "G_(?:Report|Fatal)\\([^,;\"]*,\\s*\"([^\"]*)\""}) {
    for (const std::string &key : SourceMatches(call)) asked.push_back(key);
  }
  EXPECT_GT(asked.size(), 20u);
  for (const std::string &key : asked) EXPECT_TRUE(known.contains(key)) << key;
}

}  // namespace
