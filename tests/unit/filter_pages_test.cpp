// Pages of a job: which are printed, in which order, and what becomes of those of PostScript
// documents.
#include <gtest/gtest.h>

#include "documentpages.h"
#include "filterjob.h"
#include "pageselection.h"
#include "pcljob.h"
#include "postscript.h"
#include "textjob.h"

namespace {

PageSelection Selection(const std::vector<ApplicationOption> &words) {
  PageSelection selection;
  EXPECT_EQ(ReadPageSelection(words, &selection), "");
  return selection;
}

// The pages on the sides, from 1; a dot for a place that stays empty, a stroke between sides.
std::string Sides(const std::vector<ApplicationOption> &words, SideRequest request) {
  const PageSelection selection = Selection(words);
  request.is_reversed = selection.is_reversed;
  const SideList sides(selection, request);
  std::string text;
  for (size_t side = 0; side < sides.Count(); ++side) {
    if (side > 0) text += "|";
    for (const auto page : sides.PagesOf(side)) {
      text += page ? std::to_string(*page + 1) + " " : ". ";
    }
  }
  return text;
}

TEST(Selection, RangesAreThoseOfTheSpooler) {
  const SideRequest ten{.pages = 10};
  EXPECT_EQ(Sides({{"page-ranges", "2-4"}}, ten), "2 |3 |4 ");
  EXPECT_EQ(Sides({{"page-ranges", "9-"}}, ten), "9 |10 ");
  EXPECT_EQ(Sides({{"page-ranges", "-2"}}, ten), "1 |2 ");
  EXPECT_EQ(Sides({{"page-ranges", "4,1-2,2"}}, ten), "1 |2 |4 ");
  EXPECT_EQ(Sides({{"page-ranges", "9-18446744073709551615"}}, ten), "9 |10 ");
  EXPECT_EQ(Sides({{"page-ranges", "11-12"}}, ten), "");
}

TEST(Selection, WhatIsNoneIsAProblem) {
  for (const char *ranges : {"abc", "0", "0-3", "5-3", "-", "1,,2", "1-2-3", "1.5", "-1-",
                             "99999999999999999999", ","}) {
    PageSelection selection;
    EXPECT_NE(ReadPageSelection({{"page-ranges", ranges}}, &selection), "") << ranges;
  }
  PageSelection selection;
  EXPECT_NE(ReadPageSelection({{"page-set", "some"}}, &selection), "");
}

TEST(Selection, OddAndEvenArePagesOrSides) {
  EXPECT_EQ(Sides({{"page-set", "odd"}}, {.pages = 5}), "1 |3 |5 ");
  EXPECT_EQ(Sides({{"page-set", "even"}}, {.pages = 5}), "2 |4 ");
  EXPECT_EQ(Sides({{"page-set", "even"}, {"page-ranges", "3-6"}}, {.pages = 9}), "4 |6 ");
  EXPECT_EQ(Sides({{"page-set", "even"}}, {.pages = 1}), "");
  EXPECT_EQ(Sides({{"page-set", "even"}}, {.pages = 9, .places = 2}), "3 4 |7 8 ");
  EXPECT_EQ(Sides({{"page-set", "odd"}}, {.pages = 9, .places = 2}), "1 2 |5 6 |9 . ");
}

TEST(Selection, ReverseTurnsTheSidesRound) {
  const std::vector<ApplicationOption> reverse = {{"outputorder", "reverse"}};
  EXPECT_EQ(Sides(reverse, {.pages = 3}), "3 |2 |1 ");
  EXPECT_EQ(Sides(reverse, {.pages = 5, .places = 2}), "5 . |3 4 |1 2 ");
  // Printed on both sides, the pages of a sheet stay together.
  EXPECT_EQ(Sides(reverse, {.pages = 3, .fills_sheets = true}), ". |3 |2 |1 ");
}

TEST(Selection, ABookletIsMadeOfTheChosenPages) {
  const SideRequest booklet{.pages = 9, .places = 2, .is_booklet = true};
  EXPECT_EQ(Sides({{"page-ranges", "3-6"}}, booklet), "6 3 |4 5 ");
}

constexpr char kHead[] = "%!PS-Adobe-3.0\n%%Pages: 3\n%%EndComments\n%%BeginProlog\n%%EndProlog\n";
constexpr char kPages[] =
    "%%Page: i 1\n(1) show showpage\n%%Page: ii 2\n(2) show showpage\n%%Page: iii 3\n(3) show "
    "showpage\n";
constexpr char kEnd[] = "%%Trailer\nend\n%%EOF\n";

std::string Document() { return std::string(kHead) + kPages + kEnd; }

// The document taken apart, its parts between strokes, or its problem.
std::string Apart(const std::string &text, size_t step = 65536) {
  JobSource source = TextSource(text, step);
  DocumentPages pages;
  pages.Read(&source);
  if (!pages.Problem().empty()) return pages.Problem();
  std::string result;
  for (size_t part = 0; part < pages.Parts(); ++part) {
    JobSink sink([&result](std::string_view bytes) {
      result += bytes;
      return true;
    });
    JobSource bytes = pages.Part(part);
    bytes.CopyRest(&sink);
    sink.Flush();
    result += "|";
  }
  return result;
}

TEST(Pages, ADocumentIsTakenApartAtItsMarks) {
  const std::string expected =
      std::string(kHead) +
      "|%%Page: i 1\n(1) show showpage\n|%%Page: ii 2\n(2) show showpage\n|"
      "%%Page: iii 3\n(3) show showpage\n|" +
      kEnd + "|";
  EXPECT_EQ(Apart(Document()), expected);
  EXPECT_EQ(Apart(Document(), 1), expected);
}

TEST(Pages, MarksOfIncludedDocumentsAndOfDataAreNone) {
  const std::string included =
      "%!PS-Adobe-3.0\n%%Page: 1 1\n%%BeginDocument: a.eps\n%!PS-Adobe-3.0 EPSF-3.0\n"
      "%%Page: 1 1\n%%Trailer\n%%EOF\n%%EndDocument\n%%BeginData: 2 Hex Lines\n%%Page: 7 7\n%%EOF\n"
      "%%EndData\nshowpage\n%%EOF\n";
  EXPECT_EQ(Apart(included),
            "%!PS-Adobe-3.0\n|" + included.substr(15, included.size() - 15 - 6) + "|%%EOF\n|");
}

TEST(Pages, WhatCannotBeTakenApartSaysWhy) {
  EXPECT_EQ(Apart("%!\nshowpage\n"), "it does not mark its pages");
  EXPECT_EQ(Apart("%!PS-Adobe-3.0\nshowpage\n%%EOF\n"), "it does not mark its pages");
  EXPECT_EQ(Apart("%!PS-Adobe-3.0\n%%Pages: 2\n%%EndComments\nshowpage\n%%Page: 2 2\nshowpage\n"),
            "it marks 1 of its 2 pages");
  EXPECT_EQ(Apart("%!PS-Adobe-3.0\n%%Page: 1 1\n%!PS-Adobe-3.0 EPSF-3.0\n%%EOF\nshowpage\n"),
            "it includes other documents without marking them");
  EXPECT_EQ(Apart("%!PS-Adobe-3.0\n%%Page: 1 1\n%%BeginDocument: a\nshowpage\n"),
            "it includes other documents without marking them");
  EXPECT_EQ(Apart("%!PS-Adobe-3.0\n%%Page: 1 1\n%%Trailer\n%%Page: 2 2\nshowpage\n"),
            "its pages go on behind its end");
}

class LaidOut : public testing::Test {
 protected:
  void Choose(const std::vector<ApplicationOption> &words) { settings_.Select(Selection(words)); }
  std::string Made(const std::string &job) { return RunOver(FilterPostScript, settings_, job); }
  std::string Failed(const std::string &job) {
    const FilteredJob made = ResultOver(FilterPostScript, settings_, job);
    EXPECT_EQ(made.output, "");
    return made.result.failure;
  }

  const PpdModel model_{};
  JobSettings settings_{model_};
};

TEST_F(LaidOut, ASelectionIsTheDocumentWithoutTheOtherPages) {
  Choose({{"page-ranges", "2-3"}});
  EXPECT_EQ(Made(Document()),
            "%!PS-Adobe-3.0\n%%Pages: 2\n%%EndComments\n%%BeginProlog\n%%EndProlog\n%%Page: ii 1\n"
            "(2) show showpage\n%%Page: iii 2\n(3) show showpage\n" +
                std::string(kEnd));
}

TEST_F(LaidOut, TheSameWhateverTheReadsAre) {
  Choose({{"page-set", "odd"}});
  settings_.Apply({{"*Nup", "2"}});
  EXPECT_EQ(RunOver(FilterPostScript, settings_, Document(), 1), Made(Document()));
}

TEST_F(LaidOut, ADescendingDocumentIsNumberedAsItIsRead) {
  std::string job = Document();
  job.insert(job.find("%%EndComments"), "%%PageOrder: Descend\n");
  Choose({{"page-ranges", "3"}});
  EXPECT_NE(Made(job).find("(1) show"), std::string::npos);
  Choose({{"page-ranges", "1-2"}});
  const std::string made = Made(job);
  EXPECT_LT(made.find("(2) show"), made.find("(3) show"));
  EXPECT_EQ(made.find("(1) show"), std::string::npos);
}

TEST_F(LaidOut, ASelectionThatCannotBeMadePrintsNothing) {
  Choose({{"page-ranges", "2"}});
  const std::string begin =
      "the pages of \"page-ranges=2\" cannot be told from the others in this job: ";
  EXPECT_EQ(Failed("%!\nshowpage showpage\n"), begin + "it does not mark its pages");
  EXPECT_EQ(Failed(Document() + Document()), begin + "it holds several documents");
  std::string special = Document();
  special.insert(special.find("%%EndComments"), "%%PageOrder: Special\n");
  EXPECT_EQ(Failed(special), begin + "its pages need each other in their order");
  Choose({{"page-ranges", "7"}});
  EXPECT_EQ(Failed(Document()), "\"page-ranges=7\" selects none of the job's 3 pages");
}

TEST_F(LaidOut, WhatElseCannotBeMadeIsOneWarningAndTheJobAsItIs) {
  const std::string job = "%!\nshowpage\n%%EOF\n";
  const auto expect = [&](const std::string &words) {
    EXPECT_EQ(Made(job), job);
    EXPECT_EQ(WarningsOver(FilterPostScript, settings_, job),
              "the pages of this job " + words +
                  ", because it does not mark its pages: it is printed as it is\n");
  };
  settings_.Apply({{"*Nup", "4"}});
  expect("cannot be put 4 on a side");
  settings_.Apply({{"*Booklet", "1"}});
  expect("cannot be made a booklet");
  settings_.Apply({{"*Booklet", "0"}});
  Choose({{"outputorder", "reverse"}});
  expect("cannot be printed in reverse order");
}

TEST_F(LaidOut, DocumentsBehindEachOtherBeginOnASheetEach) {
  settings_.Apply({{"*Nup", "4"}});
  EXPECT_EQ(CountOf(Made(Document() + "\004" + Document()), "ship end\n"), 2u);
}

TEST_F(LaidOut, AJobOfAnotherLanguageHasNoPagesToChoose) {
  Choose({{"page-ranges", "2"}});
  const FilteredJob pcl = ResultOver(FilterPcl, settings_, "\033E text \033E");
  EXPECT_EQ(pcl.output, "");
  EXPECT_EQ(pcl.result.failure,
            "\"page-ranges=2\" cannot be printed: nobody knows where a page of a PCL job ends");
  EXPECT_NE(Failed("\033%-12345X@PJL ENTER LANGUAGE=PCL\n\033E text"), "");
}

TEST_F(LaidOut, PagesOfATextAreChosen) {
  Choose({{"page-ranges", "2,4"}, {"outputorder", "reverse"}});
  const std::string made = RunOver(FilterText, settings_, "one\ftwo\fthree\ffour\n");
  EXPECT_EQ(made.find("(one)"), std::string::npos);
  EXPECT_EQ(made.find("(three)"), std::string::npos);
  EXPECT_LT(made.find("(four)"), made.find("(two)"));
  EXPECT_NE(made.find("%%Pages: 2\n"), std::string::npos);
  Choose({{"page-ranges", "5"}});
  const FilteredJob none = ResultOver(FilterText, settings_, "one\ftwo\n");
  EXPECT_EQ(none.output, "");
  EXPECT_EQ(none.result.failure, "\"page-ranges=5\" selects none of the job's 2 pages");
}

}  // namespace
