// The quotation marks and the spaces of the installed texts, as each language sets them. Runs where
// a staged installation lies at its real place.
#include <gtest/gtest.h>

#include "installedtexts.h"

namespace {

constexpr std::string_view kNoBreakSpace = "\u00A0";
constexpr std::string_view kLeft = "\u00AB";   // points to the left
constexpr std::string_view kRight = "\u00BB";  // points to the right
constexpr std::string_view kStraight = "\"";

struct Marks {
  const char *language;
  std::string_view open;
  std::string_view close;
  bool french;  // no-break spaces inside the marks and before : ; ? !
};

void PrintTo(const Marks &marks, std::ostream *out) { *out << marks.language; }

// Whether `part` begins at `at`, or ends there when `before`.
bool Stands(const std::string &text, size_t at, std::string_view part, bool before = false) {
  if (before) return at >= part.size() && text.compare(at - part.size(), part.size(), part) == 0;
  return text.compare(at, part.size(), part) == 0;
}

class Typography : public testing::TestWithParam<Marks> {
 protected:
  // Fails where `mark` stands without `space` on its inner side, or with any blank there when
  // `space` is empty.
  static void ExpectInside(const std::string &text, size_t mark_begin, size_t mark_end, bool opens,
                           const std::string &place) {
    const size_t inside = opens ? mark_end : mark_begin;
    if (GetParam().french) {
      EXPECT_TRUE(Stands(text, inside, kNoBreakSpace, !opens)) << place << ": " << text;
    } else {
      EXPECT_FALSE(Stands(text, inside, " ", !opens)) << place << ": " << text;
      EXPECT_FALSE(Stands(text, inside, kNoBreakSpace, !opens)) << place << ": " << text;
    }
  }
};

TEST_P(Typography, QuotesAreInPairsOfItsMarks) {
  const Marks &marks = GetParam();
  int pairs = 0;
  for (const auto &[place, text] : AllTextsIn(marks.language)) {
    bool is_open = false;
    for (size_t at = 0; at < text.size(); ++at) {
      for (const std::string_view mark : {kLeft, kRight, kStraight}) {
        if (!Stands(text, at, mark)) continue;
        EXPECT_EQ(mark, is_open ? marks.close : marks.open) << place << ": " << text;
        if (mark != kStraight) ExpectInside(text, at, at + mark.size(), !is_open, place);
        is_open = !is_open;
        pairs += is_open ? 1 : 0;
      }
    }
    EXPECT_FALSE(is_open) << place << ": " << text;
  }
  EXPECT_GT(pairs, 50);
}

TEST_P(Typography, NoBlankStandsBeforePunctuationWhereALineMayBreak) {
  for (const auto &[place, text] : AllTextsIn(GetParam().language)) {
    for (const char *sign : {":", ";", "?", "!", ",", "."}) {
      for (const char *blank : {" ", "\n"}) {
        const size_t at = text.find(std::string(blank) + sign);
        EXPECT_EQ(at, std::string::npos) << place << ": " << text;
      }
    }
  }
}

// A sign inside a word, as in the name of a file, is no punctuation.
TEST_P(Typography, ANoBreakSpaceStandsBeforeHighPunctuationInFrenchAlone) {
  int signs = 0;
  for (const auto &[place, text] : AllTextsIn(GetParam().language)) {
    for (size_t at = text.find_first_of(":;?!"); at != std::string::npos;
         at = text.find_first_of(":;?!", at + 1)) {
      const bool ends_word = at + 1 == text.size() || Stands(text, at + 1, " ") ||
                             Stands(text, at + 1, "\n") || Stands(text, at + 1, kNoBreakSpace);
      if (!ends_word) continue;
      ++signs;
      EXPECT_EQ(Stands(text, at, kNoBreakSpace, true), GetParam().french) << place << ": " << text;
    }
  }
  EXPECT_GT(signs, 50);
}

INSTANTIATE_TEST_SUITE_P(
    Languages, Typography,
    testing::Values(Marks{"enu", kStraight, kStraight, false}, Marks{"deu", kRight, kLeft, false},
                    Marks{"esp", kLeft, kRight, false}, Marks{"fra", kLeft, kRight, true},
                    Marks{"ita", kLeft, kRight, false}, Marks{"ptb", kStraight, kStraight, false}),
    [](const auto &row) { return std::string(row.param.language); });

}  // namespace
