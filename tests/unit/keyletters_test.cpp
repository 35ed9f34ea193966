// The letters that texts get as access keys.
#include "keyletters.h"

#include <gtest/gtest.h>

namespace {

using Strings = std::vector<std::string>;

// The texts with "_" before their letters.
Strings Marked(const KeyedTexts &part) {
  Strings marked;
  for (size_t i = 0; i < part.texts.size(); ++i) {
    std::string text = part.texts[i];
    if (part.letters[i] != std::string::npos) text.insert(part.letters[i], "_");
    marked.push_back(text);
  }
  return marked;
}

Strings Chosen(const Strings &texts) {
  KeyedWindow window{{texts}, {}, {}};
  ChooseKeyLetters(window);
  return Marked(window.always);
}

TEST(KeyLetters, ATextGetsItsFirstLetter) {
  EXPECT_EQ(Chosen({"Add...", "<< Remove", "16 pages"}),
            (Strings{"_Add...", "<< _Remove", "_16 pages"}));
}

TEST(KeyLetters, NoTwoTextsGetTheSameOneInWhateverCase) {
  EXPECT_EQ(Chosen({"Save", "saw"}), (Strings{"_Save", "s_aw"}));
  EXPECT_EQ(Chosen({"\u00C9", "\u00E9t\u00E9"}), (Strings{"_\u00C9", "\u00E9_t\u00E9"}));
}

TEST(KeyLetters, BeginningsOfWordsComeBeforeOtherLetters) {
  EXPECT_EQ(Chosen({"Paper size", "Paper", "Paper type"}),
            (Strings{"Paper _size", "_Paper", "Paper _type"}));
}

TEST(KeyLetters, AllGetOneWhereThatIsPossible) {
  EXPECT_EQ(Chosen({"abc", "ab", "a"}), (Strings{"ab_c", "a_b", "_a"}));
  EXPECT_EQ(Chosen({"a", "ab", "abc"}), (Strings{"_a", "a_b", "ab_c"}));
}

TEST(KeyLetters, ATextForWhichNothingIsLeftGetsNone) {
  EXPECT_EQ(Chosen({"a", "a", "...", "", "\u2026"}), (Strings{"_a", "a", "...", "", "\u2026"}));
}

TEST(KeyLetters, LettersBeyondAsciiAreTheLastResort) {
  EXPECT_EQ(Chosen({"\u00DCber"}), (Strings{"\u00DC_ber"}));
  EXPECT_EQ(Chosen({"Gi\u00F9", "g", "i"}), (Strings{"Gi_\u00F9", "_g", "_i"}));
}

TEST(KeyLetters, PagesShareLettersWithEachOtherButNotWithWhatIsAlwaysShown) {
  KeyedWindow window{{{"Fonts"}}, {{{"Font", "Style"}}, {{"Fax", "Send"}}}, {}};
  ChooseKeyLetters(window);
  EXPECT_EQ(Marked(window.always), Strings{"_Fonts"});
  EXPECT_EQ(Marked(window.pages[0]), (Strings{"Fo_nt", "_Style"}));
  EXPECT_EQ(Marked(window.pages[1]), (Strings{"F_ax", "_Send"}));
}

// Two rows of buttons on one page need every letter of the short text.
TEST(KeyLetters, WhatIsAlwaysShownGivesWayToAPage) {
  KeyedWindow window{{{"Apply", "Destination"}}, {{{"Add", "Add"}}}, {}};
  ChooseKeyLetters(window);
  EXPECT_EQ(Marked(window.pages[0]), (Strings{"_Add", "A_dd"}));
  EXPECT_EQ(Marked(window.always).front().find("_A"), std::string::npos);
  EXPECT_EQ(Marked(window.always).back().find("_D"), std::string::npos);
}

TEST(KeyLetters, TheSpareTextsGetWhatNoPageWants) {
  KeyedWindow window{{{"Apply"}}, {{{"Help", "OK"}}}, {{"OK", "Help", "H"}}};
  ChooseKeyLetters(window);
  EXPECT_EQ(Marked(window.spare), (Strings{"O_K", "H_elp", "H"}));
}

}  // namespace
