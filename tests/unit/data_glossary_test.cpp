// The installed texts against the tables of docs/glossary.md: a term is not translated in two ways.
// Runs where a staged installation lies at its real place.
#include <gtest/gtest.h>

#include "installedtexts.h"

namespace {

using Strings = std::vector<std::string>;

const Strings kTranslations = {"deu", "esp", "fra", "ita", "ptb"};
constexpr char kNoBreakSpace[] = "\u00A0";

// Letters of ISO-8859-1 in UTF-8: the capitals of the second page are 0x20 before the small ones.
std::string Lower(std::string text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool is_second = i > 0 && static_cast<unsigned char>(text[i - 1]) == 0xC3;
    const bool is_capital = is_second && byte >= 0x80 && byte <= 0x9E && byte != 0x97;
    if (is_capital || (byte >= 'A' && byte <= 'Z')) text[i] = static_cast<char>(byte + 0x20);
  }
  return text;
}

std::string Trimmed(const std::string &text) {
  const size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? ""
                                    : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

Strings Parts(const std::string &text, char separator) {
  Strings parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(Trimmed(part));
  return parts;
}

// The rows of the table below a heading, without its first two.
std::vector<Strings> Table(const std::string &heading) {
  std::vector<Strings> rows;
  bool is_below = false;
  for (const std::string &line : SplitLines(ContentOf(KPX_TEST_DATA "/../docs/glossary.md"))) {
    if (line.starts_with("## ")) is_below = line == "## " + heading;
    if (is_below && line.starts_with("|")) rows.push_back(Parts(line.substr(1), '|'));
  }
  if (rows.size() > 2) rows.erase(rows.begin(), rows.begin() + 2);
  return rows;
}

// The texts in small letters and on one line each; those of the help by paragraphs, "BLOCK 2".
TextsByPlace Texts(const std::string &language) {
  TextsByPlace texts;
  for (const auto &[place, text] : AllTextsIn(language)) {
    if (place.ends_with(" default")) continue;  // an identifier
    const bool is_help = place.ends_with("_BEGIN");
    const std::string lower = Lower(text);
    int number = 0;
    std::string paragraph;
    const auto finish = [&] {
      if (!paragraph.empty()) texts[place + " " + std::to_string(++number)] = paragraph;
      paragraph.clear();
    };
    for (const std::string &line : SplitLines(lower)) {
      if (!is_help) {
        texts[place] += line;
      } else if (line.empty()) {
        finish();
      } else {
        paragraph += (paragraph.empty() ? "" : " ") + Trimmed(line);
      }
    }
    finish();
  }
  for (auto &[place, text] : texts) {
    for (size_t at = text.find(kNoBreakSpace); at != std::string::npos;
         at = text.find(kNoBreakSpace)) {
      text.replace(at, 2, " ");
    }
  }
  return texts;
}

bool IsLetter(const std::string &text, size_t at) {
  const auto byte = static_cast<unsigned char>(at < text.size() ? text[at] : ' ');
  return std::isalnum(byte) != 0 || byte >= 0x80;
}

bool HasWord(const std::string &text, const std::string &word) {
  for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    if ((at == 0 || !IsLetter(text, at - 1)) && !IsLetter(text, at + word.size())) return true;
  }
  return false;
}

// Whether the glossary says that the term is rendered otherwise there.
bool IsException(const std::string &language, const std::string &place, const std::string &term) {
  static const std::vector<Strings> rows = Table("Where a term is rendered otherwise");
  return std::any_of(rows.begin(), rows.end(), [&](const Strings &row) {
    return row.size() == 4 && row[0] == language && row[1] == place && row[2] == term;
  });
}

TEST(Glossary, NoTermIsTranslatedInTwoWays) {
  const std::vector<Strings> terms = Table("Terms");
  ASSERT_GT(terms.size(), 40u);
  const TextsByPlace english = Texts("enu");
  std::map<std::string, TextsByPlace> translated;
  for (const std::string &language : kTranslations) translated[language] = Texts(language);
  for (const Strings &row : terms) {
    ASSERT_EQ(row.size(), kTranslations.size() + 1) << row.front();
    const Strings words = Parts(Lower(row[0]), ',');
    int found = 0;
    for (const auto &[place, text] : english) {
      const auto has = [&text = text](const std::string &word) { return HasWord(text, word); };
      if (std::none_of(words.begin(), words.end(), has)) continue;
      ++found;
      for (size_t i = 0; i < kTranslations.size(); ++i) {
        const std::string &language = kTranslations[i];
        const std::string &shown = translated[language][place];
        const Strings stems = Parts(row[i + 1], ',');
        const bool is_there = std::any_of(stems.begin(), stems.end(), [&](const std::string &stem) {
          return shown.find(stem) != std::string::npos;
        });
        EXPECT_NE(is_there, IsException(language, place, words[0]))
            << language << " " << place << " \"" << words[0] << "\": " << shown;
      }
    }
    EXPECT_GT(found, 0) << row[0] << " is in no text";
  }
}

TEST(Glossary, NoTextHasAWordThatIsNotUsed) {
  const std::vector<Strings> rows = Table("Words that the texts do not have");
  ASSERT_GT(rows.size(), 10u);
  for (const Strings &row : rows) {
    ASSERT_EQ(row.size(), 3u) << row.front();
    for (const auto &[place, text] : Texts(row[0])) {
      for (const std::string &word : Parts(Lower(row[1]), ',')) {
        EXPECT_FALSE(HasWord(text, word))
            << row[0] << " " << place << ": " << word << " instead of " << row[2] << ": " << text;
      }
    }
  }
}

TEST(Glossary, TheHelpHasTheSameParagraphsInEveryLanguage) {
  const auto places = [](const std::string &language) {
    Strings names;
    for (const auto &[place, text] : Texts(language)) names.push_back(place);
    return names;
  };
  for (const std::string &language : kTranslations) EXPECT_EQ(places(language), places("enu"));
}

}  // namespace
