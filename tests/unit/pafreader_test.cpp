// The PAF format: what each line does, what is refused and where, and that any bytes can be read.
#include "pafreader.h"

#include <gtest/gtest.h>

#include <cctype>

#include "pafsupport.h"

namespace {

using std::string;

const string kHeader = kPafHeader;
constexpr char kHeaderText[] = "name <Vek Norvel 4120>\nppd <vek41201.ppd>\n";

struct Case {
  const char *rule;
  string input;
  string expected;  // of ReadAsText
};

void PrintTo(const Case &row, std::ostream *out) { *out << row.rule; }

// The rule as a test's name.
string Name(const testing::TestParamInfo<Case> &row) {
  string name;
  bool start = true;
  for (const char c : string(row.param.rule)) {
    const bool letter = std::isalnum(static_cast<unsigned char>(c)) != 0;
    if (letter) name += start ? static_cast<char>(std::toupper(c)) : c;
    start = !letter;
  }
  return name;
}

class Paf : public testing::TestWithParam<Case> {};

TEST_P(Paf, ReadsAsExpected) {
  EXPECT_EQ(ReadAsText(GetParam().input), GetParam().expected) << GetParam().rule << "; input:\n"
                                                               << GetParam().input;
}

string Feature(const string &start, const string &id, const string &middle = "") {
  return start + "\n#id\n" + id + "\n#translation\nText\n#default\nD\n#type\nPickOne\n" + middle +
         "#end_ui\n";
}

string Option(const string &id, const string &text) {
  return "#_option\n#id\n" + id + "\n#translation\n" + text + "\n#end_option\n";
}

string Ends(const string &f1, const string &o1, const string &f2, const string &o2) {
  return "#ccc\n#f1\n" + f1 + "\n#o1\n" + o1 + "\n#f2\n" + f2 + "\n#o2\n" + o2 + "\n#end_ccc\n";
}

string Limits(const string &end) {
  return "#cps\n#MinWidth\n1\n#MaxWidth\n2\n#MinLength\n3\n#MaxLength\n4\n" + end + "\n";
}

const string kLimitsText = "custom MaxLength=<4> MaxWidth=<2> MinLength=<3> MinWidth=<1>\n";

// A feature without options, as Feature() writes it.
string FeatureText(const string &kind, const string &id) {
  return kind + " <" + id + "> <Text> <D> <PickOne> (no options)\n";
}

INSTANTIATE_TEST_SUITE_P(
    Header, Paf,
    testing::Values(
        Case{"a complete description", kFullPaf, kFullText},
        Case{"name and PPD alone: empty tables and no custom paper", kHeader, kHeaderText},
        Case{"the header may stand anywhere, in any order",
             Feature("#uio", "*A") + "##PPD:b.ppd\n##Name:B\n",
             "name <B>\nppd <b.ppd>\n" + FeatureText("feature", "*A")},
        Case{"without a PPD line it is corrupt at the end of the file",
             "##Name:A\n" + Feature("#uio", "*A"), "corrupt 11 "},
        Case{"without a name line it is corrupt at the end of the file", "##PPD:a.ppd\n",
             "corrupt 1 "},
        Case{"an empty file is corrupt", "", "corrupt 0 "},
        Case{"a name ends at its second colon, and so does a PPD name",
             "##Name:Vek: Norvel\n##PPD:a.ppd:b\n", "name <Vek>\nppd <a.ppd>\n"},
        Case{"a blank after the colon belongs to the name", "##Name: Vek \n##PPD: a.ppd\n",
             "name < Vek >\nppd < a.ppd>\n"},
        Case{"an empty name or PPD name is seen", "##Name:\n##PPD:\n", "name <>\nppd <>\n"},
        Case{"a colon at once after the first ends an empty name", "##Name::A\n##PPD::b\n",
             "name <>\nppd <>\n"},
        Case{"the last of several header lines counts", "##Name:A\n##Name:B\n##PPD:a\n##PPD:b\n",
             "name <B>\nppd <b>\n"},
        Case{"a header keyword in other letters, or without its colon, is a comment",
             "##name:A\n##Name B\n##PPDs:C\n" + kHeader, kHeaderText}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    Feature, Paf,
    testing::Values(
        Case{"the four kinds of block go to two tables",
             kHeader + Feature("#uio", "*A") + Feature("#uip", "*B") + Feature("#uij", "*C") +
                 Feature("#uiio", "*D") + Feature("#uio", "*E"),
             kHeaderText + FeatureText("feature", "*A") + FeatureText("feature", "*B") +
                 FeatureText("feature", "*C") + FeatureText("feature", "*E") +
                 FeatureText("installable", "*D")},
        Case{"a feature that replaces an unfinished installable one is an ordinary one",
             kHeader + "#uiio\n" + Feature("#uio", "*A"),
             kHeaderText + FeatureText("feature", "*A")},
        Case{"of two blocks with one identifier the later stays",
             kHeader + Feature("#uio", "*A", "#default\nfirst\n") +
                 Feature("#uio", "*A", "#default\nsecond\n"),
             string(kHeaderText) + "feature <*A> <Text> <second> <PickOne> (no options)\n"},
        Case{"a feature with an empty option list has one",
             kHeader + Feature("#uio", "*A", "#_options\n#end_options\n"),
             string(kHeaderText) + "feature <*A> <Text> <D> <PickOne>\n"},
        Case{"of two options with one identifier the later stays",
             kHeader +
                 Feature("#uio", "*A",
                         "#_options\n" + Option("x", "1") + Option("x", "2") + "#end_options\n"),
             string(kHeaderText) + "feature <*A> <Text> <D> <PickOne> x=<2>\n"},
        Case{"a second value line replaces the first",
             kHeader + Feature("#uio", "*A", "#default\none\ntwo\n"),
             string(kHeaderText) + "feature <*A> <Text> <two> <PickOne> (no options)\n"},
        Case{"values where none is expected are ignored",
             kHeader + "stray\n#uio\nstray\n#id\n*A\n#translation\nText\n#default\nD\n#type\n"
                       "PickOne\n#_options\nstray\n#_option\nstray\n#id\nx\n#translation\n1\n"
                       "#end_option\nstray\n#end_options\n#end_ui\nstray\n#cps\nstray\n#ccc\n"
                       "stray\n",
             string(kHeaderText) + "feature <*A> <Text> <D> <PickOne> x=<1>\n"},
        Case{"a value that begins with an unknown keyword is a value",
             kHeader + Feature("#uio", "*A", "#default\n#red\n"),
             string(kHeaderText) + "feature <*A> <Text> <#red> <PickOne> (no options)\n"},
        Case{"a blank line after #id loses its value, and the translation is corrupt",
             kHeader + "#uio\n#id\n\n*A\n#translation\nText\n", "corrupt 7 #translation"},
        Case{"a comment after #id does the same",
             kHeader + "#uio\n#id\n## comment\n*A\n#translation\nText\n", "corrupt 7 #translation"},
        Case{"#translation at once after #uio is corrupt", kHeader + "#uio\n#translation\n",
             "corrupt 4 #translation"},
        Case{"#translation after another value is corrupt",
             kHeader + "#uio\n#id\n*A\n#default\nD\n#translation\n", "corrupt 8 #translation"},
        Case{"#id outside a feature or option is corrupt", kHeader + "#id\n", "corrupt 3 #id"},
        Case{"a second #id is corrupt", kHeader + "#uio\n#id\n*A\n#id\n", "corrupt 6 #id"},
        Case{"#id in an option list but outside an option is corrupt",
             kHeader + "#uio\n#_options\n#id\n", "corrupt 5 #id"},
        Case{"a feature without default is corrupt at its end",
             kHeader + "#uio\n#id\n*A\n#translation\nText\n#type\nPickOne\n#end_ui\n",
             "corrupt 10 #end_ui"},
        Case{"a feature without type is corrupt at its end",
             kHeader + "#uio\n#id\n*A\n#translation\nText\n#default\nD\n#end_ui\n",
             "corrupt 10 #end_ui"},
        Case{"a feature without translation is corrupt at its end",
             kHeader + "#uio\n#id\n*A\n#default\nD\n#type\nPickOne\n#end_ui\n",
             "corrupt 10 #end_ui"},
        Case{"a feature without the value of its #id is corrupt at its end",
             kHeader + Feature("#uio", "*A") +
                 "#uio\n#id\n#translation\nText\n#default\nD\n#type\nPickOne\n#end_ui\n",
             "corrupt 21 #end_ui"},
        Case{"an empty value line is no value",
             kHeader + "#uio\n#id\n*A\n#translation\n\n#default\nD\n#type\nPickOne\n#end_ui\n",
             "corrupt 12 #end_ui"},
        Case{"#end_ui without a feature is corrupt", kHeader + "#end_ui\n", "corrupt 3 #end_ui"},
        Case{"#end_ui twice is corrupt", kHeader + Feature("#uio", "*A") + "#end_ui\n",
             "corrupt 13 #end_ui"},
        Case{"a default without a feature is corrupt", kHeader + "#default\nD\n", "corrupt 4 D"},
        Case{"a type without a feature is corrupt", kHeader + "#type\nT\n", "corrupt 4 T"}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    Option, Paf,
    testing::Values(
        Case{"#end_option without a list is corrupt",
             kHeader + "#uio\n#_option\n#id\nx\n#translation\n1\n#end_option\n",
             "corrupt 9 #end_option"},
        Case{"an option without identifier is corrupt",
             kHeader + "#uio\n#_options\n#_option\n#end_option\n", "corrupt 6 #end_option"},
        Case{"an option without translation is corrupt",
             kHeader + "#uio\n#_options\n#_option\n#id\nx\n#end_option\n", "corrupt 8 #end_option"},
        Case{"an option does not inherit what the one before it had",
             kHeader + "#uio\n#_options\n" + Option("x", "1") + "#_option\n#id\ny\n#end_option\n",
             "corrupt 14 #end_option"},
        Case{"#end_options without a list is corrupt", kHeader + "#uio\n#end_options\n",
             "corrupt 4 #end_options"},
        Case{"#end_options twice is corrupt",
             kHeader + "#uio\n#_options\n#end_options\n#end_options\n", "corrupt 6 #end_options"},
        Case{"#end_options without a feature is corrupt", kHeader + "#_options\n#end_options\n",
             "corrupt 4 #end_options"},
        Case{"a second #_options begins the list anew",
             kHeader + Feature("#uio", "*A",
                               "#_options\n" + Option("x", "1") + "#_options\n" + Option("y", "2") +
                                   "#end_options\n"),
             string(kHeaderText) + "feature <*A> <Text> <D> <PickOne> y=<2>\n"}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    CustomPaper, Paf,
    testing::Values(
        Case{"the limits in any order, as they are written",
             kHeader + "#cps\n#MaxLength\n4.50\n#MinWidth\n-1\n#MinLength\nthree\n#MaxWidth\n 2\n"
                       "#end_cps\n",
             string(kHeaderText) +
                 "custom MaxLength=<4.50> MaxWidth=< 2> MinLength=<three> MinWidth=<-1>\n"},
        Case{"a block that does not end leaves no limits", kHeader + Limits("##"), kHeaderText},
        Case{"#end_cps and a blank does not end the block", kHeader + Limits("#end_cps "),
             kHeaderText},
        Case{"#end_cps and a blank is the value that is expected",
             kHeader + Limits("#end_cps ") + "#end_cps\n",
             string(kHeaderText) +
                 "custom MaxLength=<#end_cps > MaxWidth=<2> MinLength=<3> MinWidth=<1>\n"},
        Case{"a correct #end_cps stores the pending limits",
             kHeader + Limits("##") + "#end_cps \n#end_cps\n", kHeaderText + kLimitsText},
        Case{"a block without one limit is corrupt",
             kHeader + "#cps\n#MinWidth\n1\n#MaxWidth\n2\n#MinLength\n3\n#end_cps\n",
             "corrupt 10 #end_cps"},
        Case{"#end_cps without a block is corrupt",
             kHeader + "#MinWidth\n1\n#MaxWidth\n2\n#MinLength\n3\n#MaxLength\n4\n#end_cps\n",
             "corrupt 11 #end_cps"},
        Case{
            "a second block replaces the first and keeps what it does not name",
            kHeader + Limits("#end_cps") + "#cps\n#MaxWidth\n9\n#end_cps\n",
            string(kHeaderText) + "custom MaxLength=<4> MaxWidth=<9> MinLength=<3> MinWidth=<1>\n"},
        Case{"a second block that does not end leaves the first",
             kHeader + Limits("#end_cps") + "#cps\n#MaxWidth\n9\n", kHeaderText + kLimitsText}),
    Name);

INSTANTIATE_TEST_SUITE_P(
    Constraint, Paf,
    testing::Values(
        Case{"constraints are kept in file order, repeated ones too",
             kHeader + Ends("*B", "b", "*A", "a") + Ends("*A", "a", "*B", "b") +
                 Ends("*B", "b", "*A", "a"),
             string(kHeaderText) + "constraint <*B> <b> <*A> <a>\nconstraint <*A> <a> <*B> <b>\n"
                                   "constraint <*B> <b> <*A> <a>\n"},
        Case{"a block that lacks a value takes it from the one before",
             kHeader + Ends("*A", "a", "*B", "b") + "#ccc\n#f1\n*C\n#o1\nc\n#f2\n*D\n#end_ccc\n",
             string(kHeaderText) + "constraint <*A> <a> <*B> <b>\nconstraint <*C> <c> <*D> <b>\n"},
        Case{"the first block must have all four",
             kHeader + "#ccc\n#f1\n*A\n#o1\na\n#f2\n*B\n#end_ccc\n", "corrupt 10 #end_ccc"},
        Case{"#end_ccc without a block is corrupt", kHeader + "#end_ccc\n", "corrupt 3 #end_ccc"},
        Case{"#end_ccc twice is corrupt", kHeader + Ends("*A", "a", "*B", "b") + "#end_ccc\n",
             "corrupt 13 #end_ccc"},
        Case{"a block that does not end is left out",
             kHeader + "#ccc\n#f1\n*A\n#o1\na\n#f2\n*B\n#o2\nb\n", kHeaderText}),
    Name);

// The keywords of kFullPaf, in no order.
constexpr const char *kKeywords[] = {
    "#uio",      "#uiio",        "#id",          "#default",    "#type",   "#_options",
    "#_option",  "#translation", "#end_options", "#end_option", "#end_ui", "#cps",
    "#MinWidth", "#MaxWidth",    "#MinLength",   "#MaxLength",  "#ccc",    "#f1",
    "#o1",       "#f2",          "#o2",          "#end_ccc"};

TEST(PafKeyword, IsRecognisedWhateverFollowsIt) {
  for (const char *tail : {" ", " text", "xyz", "\r", ":"}) {
    string input = kFullPaf;
    for (const char *keyword : kKeywords) {
      const string line = "\n" + string(keyword) + "\n";
      for (size_t at = 0; (at = input.find(line, at)) != string::npos; at += line.size()) {
        input.insert(at + line.size() - 1, tail);
      }
    }
    EXPECT_EQ(ReadAsText(input), kFullText) << input;
  }
}

struct KeywordCase {
  const char *line;
  bool is_value;
};

// The line stands where a value is expected: it becomes the value or it does not.
class PafLine : public testing::TestWithParam<KeywordCase> {};

TEST_P(PafLine, IsAValueOnlyWhenNoKeywordMatches) {
  const string line = GetParam().line;
  const string got =
      ReadAsText(kHeader + "#uio\n#id\n*A\n#translation\nText\n#type\nT\n#default\nD\n" + line +
                 "\n#_option\n#end_ui\n");
  EXPECT_EQ(got == string(kHeaderText) + "feature <*A> <Text> <" + line + "> <T> (no options)\n",
            GetParam().is_value)
      << line << "\n"
      << got;
}

INSTANTIATE_TEST_SUITE_P(
    Length, PafLine,
    testing::Values(
        KeywordCase{"#\xC3\xA9", true}, KeywordCase{"#", true}, KeywordCase{"##", false},
        KeywordCase{" ##", true}, KeywordCase{"#ui", true}, KeywordCase{"#uio", false},
        KeywordCase{"#uip", false}, KeywordCase{"#uij", false}, KeywordCase{"#uia", true},
        KeywordCase{"#uii", true}, KeywordCase{"#uiio", false}, KeywordCase{"#UIO", true},
        KeywordCase{"#i", true}, KeywordCase{"#id", false}, KeywordCase{"#defaul", true},
        KeywordCase{"#default", false}, KeywordCase{"#typ", true}, KeywordCase{"#type", false},
        KeywordCase{"#_optio", true}, KeywordCase{"#_option", false}, KeywordCase{"#transla", true},
        KeywordCase{"#translat", false}, KeywordCase{"#translated", false},
        KeywordCase{"#end_optio", true}, KeywordCase{"#end_option", false},
        KeywordCase{"#end_u", true}, KeywordCase{"#end_ui", false},
        KeywordCase{"#end_options", false}, KeywordCase{"#_options", false},
        KeywordCase{"#cp", true}, KeywordCase{"#cps", false}, KeywordCase{"#MinWidt", true},
        KeywordCase{"#MinWidth", false}, KeywordCase{"#MaxWidt", true},
        KeywordCase{"#MaxWidth", false}, KeywordCase{"#MinLengt", true},
        KeywordCase{"#MinLength", false}, KeywordCase{"#MaxLengt", true},
        KeywordCase{"#MaxLength", false}, KeywordCase{"#end_cp", true},
        KeywordCase{"#end_cps", false}, KeywordCase{"#end_cps ", true}, KeywordCase{"#cc", true},
        KeywordCase{"#ccc", false}, KeywordCase{"#f", true}, KeywordCase{"#f1", false},
        KeywordCase{"#f3", true}, KeywordCase{"#o1", false}, KeywordCase{"#f2", false},
        KeywordCase{"#o2", false}, KeywordCase{"#end_cc", true}, KeywordCase{"#end_ccc", false},
        KeywordCase{"#end", true}));

TEST(PafBytes, LinesUpTo1023CharactersAreOneLineAndTheRestIsTheNext) {
  const struct {
    size_t length;
    size_t value_length;  // of the last piece, which replaces the ones before it
  } rows[] = {{1022, 1022}, {1023, 1023}, {1024, 1}, {1025, 2}, {2046, 1023}, {2047, 1}};
  for (const auto &row : rows) {
    const string value(row.length, 'x');
    EXPECT_EQ(ReadAsText(kHeader + Feature("#uio", "*A", "#default\n" + value + "\n")),
              kHeaderText + ("feature <*A> <Text> <" + value.substr(0, row.value_length)) +
                  "> <PickOne> (no options)\n")
        << row.length;
  }
}

TEST(PafBytes, TheRestOfAnOverLongLineCanBeAKeyword) {
  const string comment = "##" + string(1021, '-');
  EXPECT_EQ(ReadAsText(kHeader + comment + "#end_ccc\n"), "corrupt 3 #end_ccc");
  EXPECT_EQ(ReadAsText(kHeader + comment + "-#end_ccc\n"), kHeaderText);
}

TEST(PafBytes, ACarriageReturnIsPartOfTheLine) {
  EXPECT_EQ(ReadAsText("##Name:A\r\n##PPD:a.ppd\r\n"), "name <A\r>\nppd <a.ppd\r>\n");
  EXPECT_EQ(ReadAsText(kHeader + Limits("##\r") + "#end_cps\r\n"), kHeaderText);
  // It makes a line that looks empty a value.
  EXPECT_EQ(ReadAsText(kHeader + "#uio\r\n#id\r\n\r\n#translation\r\nT\r\n#default\r\nD\r\n"
                                 "#type\r\nY\r\n#end_ui\r\n"),
            string(kHeaderText) + "feature <\r> <T\r> <D\r> <Y\r> (no options)\n");
}

TEST(PafBytes, ALineEndsAtANulByte) {
  const string nul(1, '\0');
  EXPECT_EQ(ReadAsText("##Name:A" + nul + "B\n##PPD:a" + nul + "\n"), "name <A>\nppd <a>\n");
  // A line that begins with one is empty, so it ends the value state.
  EXPECT_EQ(ReadAsText(kHeader + "#uio\n#id\n" + nul + "*A\n#translation\n"),
            "corrupt 6 #translation");
}

TEST(PafBytes, TheLastLineNeedsNoLineFeed) {
  EXPECT_EQ(ReadAsText("##Name:A\n##PPD:a.ppd"), "name <A>\nppd <a.ppd>\n");
  string full = kFullPaf;
  full.pop_back();
  EXPECT_EQ(ReadAsText(full), kFullText);
  EXPECT_EQ(ReadAsText(kHeader + "#uio"), kHeaderText);
}

TEST(PafBytes, ALineThatIsNotUtf8IsReadAsLatin1) {
  EXPECT_EQ(ReadAsText("##Name:B\xFCro\n##PPD:b\xC3\xBCro.ppd\n"),
            "name <B\xC3\xBCro>\nppd <b\xC3\xBCro.ppd>\n");
}

TEST(PafReader, GoesOnInTheStateInWhichTheDescriptionBeforeEnded) {
  const string rest = kHeader + "#ccc\n#o1\n1\n#f2\n*B\n#o2\n2\n#end_ccc\n";
  EXPECT_EQ(ReadAsText(kHeader + "#ccc\n#f1"), kHeaderText);
  EXPECT_EQ(ReadAsText("*Kept\n" + rest),
            kHeaderText + string("constraint <*Kept> <1> <*B> <2>\n"));
  EXPECT_EQ(ReadAsText("*Lost\n" + rest), "corrupt 11 #end_ccc");
}

TEST(PafReader, TakesOnlyTheStateFromOneDescriptionToTheNext) {
  EXPECT_EQ(ReadAsText(kHeader + "#ccc\n#f1\n*A\n#o1\n1\n#f2\n*B\n#o2\n2"), kHeaderText);
  EXPECT_EQ(ReadAsText("#end_ccc\n" + kHeader), "corrupt 1 #end_ccc");
  EXPECT_EQ(ReadAsText(kHeader + "#uio\n#id"), kHeaderText);
  EXPECT_EQ(ReadAsText("#translation\nT\n" + kHeader), "corrupt 2 T");
}

TEST(PafReader, BeginsAnewAfterAnError) {
  EXPECT_EQ(ReadAsText(kHeader + "#uio\n#id\n*A\n#translation\n#end_ui\n#default\n"),
            "corrupt 7 #end_ui");
  EXPECT_EQ(ReadAsText("#type\n"), "corrupt 1 ");
  EXPECT_EQ(ReadAsText("*A\n" + kHeader), kHeaderText);
}

TEST(PafReader, TellsTheReasonOfAnError) {
  const string input = kHeader + "#end_ui\n";
  LineReader lines(input);
  const auto result = ReadPaf(lines);
  ASSERT_TRUE(std::holds_alternative<PafError>(result));
  EXPECT_EQ(std::get<PafError>(result).reason, "#end_ui without a feature");
}

TEST(PafHeaderLine, HasTheTextBetweenTheFirstTwoColons) {
  EXPECT_EQ(PafHeaderText("##PPD:a.ppd"), "a.ppd");
  EXPECT_EQ(PafHeaderText("##PPD:a:b:c"), "a");
  EXPECT_EQ(PafHeaderText("##PPD:"), "");
  EXPECT_EQ(PafHeaderText("##PPD"), "");
}

}  // namespace
