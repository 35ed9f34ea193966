// E-mail addresses: one, and several separated by blanks.
#include "emailaddress.h"

#include <gtest/gtest.h>

namespace {

// The result of IsValidEmailAddresses and what it makes of the text.
struct Outcome {
  int length;
  std::string text;
  bool operator==(const Outcome &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Outcome &outcome) {
  return out << outcome.length << " >>" << outcome.text << "<<";
}

Outcome Check(std::string text, bool fix) {
  const int length = IsValidEmailAddresses(text, fix);
  return {length, text};
}

// An address of that many characters.
std::string AddressOf(size_t length) { return std::string(length - 5, 'a') + "@b.cd"; }

}  // namespace

TEST(OneAddress, IsLocalPartAtAndADomainWithADot) {
  EXPECT_EQ(IsValidEmailAddress("a@b.cd"), 6);
  EXPECT_EQ(IsValidEmailAddress("first.last+x@mail.example.com"), 29);
  EXPECT_EQ(IsValidEmailAddress("a@b..cd"), 7) << "only the part behind the last dot is measured";
}

TEST(OneAddress, NeedsALocalPart) {
  EXPECT_EQ(IsValidEmailAddress("@b.cd"), 0);
  EXPECT_EQ(IsValidEmailAddress("  @b.cd"), 0);
  EXPECT_EQ(IsValidEmailAddress("a @b.cd"), 0);
  EXPECT_EQ(IsValidEmailAddress("b.cd"), 0);
  EXPECT_EQ(IsValidEmailAddress(""), 0);
  EXPECT_EQ(IsValidEmailAddress("   "), 0);
}

TEST(OneAddress, NeedsADomainThatDoesNotBeginWithADot) {
  EXPECT_EQ(IsValidEmailAddress("a@"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@ b.cd"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@.b.cd"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@.cd"), 0);
}

TEST(OneAddress, NeedsADotInTheDomainAndTwoCharactersBehindTheLast) {
  EXPECT_EQ(IsValidEmailAddress("a@bcd"), 0);
  EXPECT_EQ(IsValidEmailAddress("a.b@cd"), 0) << "the dot of the local part does not count";
  EXPECT_EQ(IsValidEmailAddress("a@b.c"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@b.cd.e"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@b."), 0);
  EXPECT_EQ(IsValidEmailAddress("a@b.cd."), 0);
}

TEST(OneAddress, HasNoSecondAt) {
  EXPECT_EQ(IsValidEmailAddress("a@b.cd@"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@b.cd@e.fg"), 0);
  EXPECT_EQ(IsValidEmailAddress("a@@b.cd"), 0);
}

TEST(OneAddress, EndsAtABlank) {
  EXPECT_EQ(IsValidEmailAddress("a@b.cd nonsense"), 6);
  EXPECT_EQ(IsValidEmailAddress("a@b.cd @"), 6);
}

TEST(OneAddress, CountsItsLeadingBlanks) {
  EXPECT_EQ(IsValidEmailAddress("  a@b.cd  "), 8);
  EXPECT_EQ(IsValidEmailAddress(" " + AddressOf(63)), 64);
  EXPECT_EQ(IsValidEmailAddress(" " + AddressOf(64)), 0);
}

TEST(OneAddress, HasAtMostSixtyFourCharacters) {
  EXPECT_EQ(IsValidEmailAddress(AddressOf(64)), 64);
  EXPECT_EQ(IsValidEmailAddress(AddressOf(65)), 0);
}

TEST(OneAddress, IsMeasuredInCharactersNotBytes) {
  EXPECT_EQ(IsValidEmailAddress("\u00e4@b.cd"), 6);
  EXPECT_EQ(IsValidEmailAddress("a@b.\u00e4"), 0) << "one character behind the last dot";
  EXPECT_EQ(IsValidEmailAddress("\u00e4" + AddressOf(63)), 64);
  EXPECT_EQ(IsValidEmailAddress("\u00e4" + AddressOf(64)), 0);
}

TEST(ValidChars, RejectsNothing) {
  std::string text = "a/\\,;:'`=\t@@";
  EXPECT_EQ(IsValidChars(text, false), 12);
  EXPECT_EQ(IsValidChars(text, true), 12);
}

TEST(ValidChars, RemovesTheBlanksAroundTheTextOnlyWhenItMayFix) {
  std::string text = "  a b  ";
  EXPECT_EQ(IsValidChars(text, false), 7);
  EXPECT_EQ(text, "  a b  ");
  EXPECT_EQ(IsValidChars(text, true), 3);
  EXPECT_EQ(text, "a b");
}

TEST(ValidChars, LeavesNothingOfATextOfBlanks) {
  std::string text = "   ";
  EXPECT_EQ(IsValidChars(text, true), 0);
  EXPECT_EQ(text, "");
  EXPECT_EQ(IsValidChars(text, true), 0);
}

TEST(SeveralAddresses, AreTidiedToOneBlankBetweenThem) {
  EXPECT_EQ(Check("  a@b.cd    e@f.gh  ", true), (Outcome{13, "a@b.cd e@f.gh"}));
  EXPECT_EQ(Check("a@b.cd e@f.gh   i@j.kl", true), (Outcome{20, "a@b.cd e@f.gh i@j.kl"}));
  EXPECT_EQ(Check("a@b.cd", true), (Outcome{6, "a@b.cd"}));
  EXPECT_EQ(Check("a@b.cd   ", true), (Outcome{6, "a@b.cd"}));
}

TEST(SeveralAddresses, StayAsTheyAreWithoutTheFix) {
  EXPECT_EQ(Check("  a@b.cd    e@f.gh  ", false), (Outcome{20, "  a@b.cd    e@f.gh  "}));
}

TEST(SeveralAddresses, AreAllInvalidWhenOneIs) {
  for (const bool fix : {false, true}) {
    EXPECT_EQ(Check("a@b.cd nonsense", fix), (Outcome{0, "a@b.cd nonsense"}));
    EXPECT_EQ(Check("a@b.cd e@f.gh@", fix), (Outcome{0, "a@b.cd e@f.gh@"}));
    EXPECT_EQ(Check("a@b.c e@f.gh", fix), (Outcome{0, "a@b.c e@f.gh"}));
  }
}

TEST(SeveralAddresses, AreTidiedAsFarAsTheyWereRead) {
  EXPECT_EQ(Check("  a@b.cd   x   y  ", true), (Outcome{0, "a@b.cd x   y"}));
}

TEST(SeveralAddresses, AreNotNone) {
  EXPECT_EQ(Check("", false), (Outcome{0, ""}));
  EXPECT_EQ(Check("", true), (Outcome{0, ""}));
  EXPECT_EQ(Check("   ", false), (Outcome{0, "   "}));
  EXPECT_EQ(Check("   ", true), (Outcome{0, ""}));
}

TEST(SeveralAddresses, MayEachHaveSixtyFourCharactersWithoutTheBlanksBefore) {
  const std::string longest = AddressOf(64);
  for (const bool fix : {false, true}) {
    EXPECT_EQ(Check(longest + " " + longest, fix).length, 129);
    EXPECT_EQ(Check(longest + " " + AddressOf(65), fix).length, 0);
  }
  EXPECT_EQ(Check(longest + "     " + longest, false).length, 133);
}

TEST(SeveralAddresses, CountTheBlanksBeforeTheFirstUnlessTheyAreRemoved) {
  EXPECT_EQ(Check(" " + AddressOf(64), false).length, 0);
  EXPECT_EQ(Check(" " + AddressOf(64), true).length, 64);
}
