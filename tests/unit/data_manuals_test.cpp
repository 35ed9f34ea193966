// The manual pages of the two programs in their other languages: nothing of the English page is
// forgotten, left in English or called otherwise than in the windows.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "data_files.h"

namespace {

using Strings = std::vector<std::string>;
using Names = std::set<std::string>;

struct Language {
  const char *locale;
  const char *catalogue;
};

const std::vector<Language> kTranslations = {
    {"de", "deu"}, {"es", "esp"}, {"fr", "fra"}, {"it", "ita"}, {"pt_BR", "ptb"}};

std::string ManualDirectory() { return KPX_TEST_DATA "/../docs/man/"; }

// The texts of buttons by their keys, without the dots that announce another window.
std::map<std::string, std::string> Buttons(const std::string &catalogue) {
  std::map<std::string, std::string> buttons;
  std::string key;
  for (std::string line : FileLines(KPX_TEST_DATA "/../data/nls/" + catalogue + "/messages.paf")) {
    if (key.starts_with("#DEF_BTN_")) {
      if (line.ends_with("...")) line.resize(line.size() - 3);
      buttons[key] = line;
    }
    key = line;
  }
  return buttons;
}

// The words of a request's line; those in quotes are one.
Strings Words(const std::string &line) {
  static const std::regex kWord("\"([^\"]*)\"|(\\S+)");
  Strings words;
  for (std::sregex_iterator i(line.begin(), line.end(), kWord), end; i != end; ++i) {
    words.push_back((*i)[1].matched ? (*i)[1] : (*i)[2]);
  }
  return words;
}

// What a line of the page's source has that is the same in every language: programs, pages,
// options, values, and files without the parts that stand for something. Names of buttons too.
Names NamesIn(const std::string &line) {
  const Strings words = Words(line);
  if (words.size() < 2) return {};
  const std::string &request = words[0];
  if (request == ".B") return {words[1]};
  if (request == ".RB") return {words.at(2)};
  if (request == ".BI") return {words[1]};
  if (request == ".BR") {
    const bool is_page = words.size() > 2 && words[2].starts_with("(");
    return {words[1] + (is_page ? words[2].substr(0, 3) : "")};
  }
  Names names;
  if (request == ".I" || request == ".IR") {
    for (size_t i = 1; i < words.size(); ++i) {
      if (words[i].find_first_of("/.") != std::string::npos) names.insert(words[i]);
    }
  }
  return names;
}

// The names of each section.
std::vector<Names> NamesBySection(const Strings &page) {
  std::vector<Names> sections(1);
  for (const std::string &line : page) {
    if (line.starts_with(".SH")) sections.emplace_back();
    sections.back().merge(NamesIn(line));
  }
  return sections;
}

// The requests that begin a section, a paragraph, an entry of a list or a line, in their order.
Strings Skeleton(const Strings &page) {
  const Names kRequests = {".TH", ".SH", ".SS", ".PP", ".TP", ".br", ".nf", ".fi"};
  Strings requests;
  for (const std::string &line : page) {
    const std::string request = line.substr(0, line.find(' '));
    if (kRequests.contains(request)) requests.push_back(request);
  }
  return requests;
}

class Manual : public testing::TestWithParam<std::tuple<Language, const char *>> {
 protected:
  Strings English() const { return FileLines(ManualDirectory() + std::get<1>(GetParam())); }
  Strings Translated() const {
    return FileLines(ManualDirectory() + std::get<0>(GetParam()).locale + "/" +
                     std::get<1>(GetParam()));
  }
  // The names of a section of the English page, with the buttons as the translation calls them.
  Names InTranslation(const Names &names) const {
    const auto english = Buttons("enu");
    const auto translated = Buttons(std::get<0>(GetParam()).catalogue);
    Names result = names;
    for (const auto &[key, text] : english) {
      if (result.erase(text) > 0) result.insert(translated.at(key));
    }
    return result;
  }
};

TEST_P(Manual, HasTheParagraphsOfEnglish) {
  EXPECT_EQ(Skeleton(Translated()), Skeleton(English()));
}

TEST_P(Manual, NamesTheSameOptionsFilesAndButtonsInEachSection) {
  const std::vector<Names> english = NamesBySection(English());
  const std::vector<Names> translated = NamesBySection(Translated());
  ASSERT_EQ(translated.size(), english.size());
  for (size_t i = 0; i < english.size(); ++i) {
    EXPECT_EQ(translated[i], InTranslation(english[i])) << "section " << i;
  }
}

TEST_P(Manual, HasNoTextInEnglish) {
  const Strings english = English();
  for (const std::string &line : Translated()) {
    if (line.starts_with(".") || line.find(' ') == std::string::npos) continue;
    EXPECT_EQ(std::find(english.begin(), english.end(), line), english.end()) << line;
  }
}

TEST_P(Manual, IsAsOldAsTheEnglishOne) {
  EXPECT_EQ(Words(Translated().at(0)).at(3), Words(English().at(0)).at(3));
}

INSTANTIATE_TEST_SUITE_P(Pages, Manual,
                         testing::Combine(testing::ValuesIn(kTranslations),
                                          testing::Values("KPXadmin.8", "KPXtool.1", "KPXjobs.1")),
                         [](const auto &row) {
                           const std::string page = std::get<1>(row.param);
                           return std::get<0>(row.param).locale +
                                  ("_" + page.substr(0, page.find('.')));
                         });

}  // namespace
