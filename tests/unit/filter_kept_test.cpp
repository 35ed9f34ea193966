// What somebody chose for a job beside what the producing program wrote into it by default.
#include <gtest/gtest.h>

#include "filterjob.h"
#include "postscript.h"

namespace {

class Kept : public testing::Test {
 protected:
  void Choose(const std::vector<KeyValue> &choices) { settings_.Apply(choices); }
  std::string Made(const std::string &job) { return RunOver(FilterPostScript, settings_, job); }
  std::string Warnings(const std::string &job) {
    return WarningsOver(FilterPostScript, settings_, job);
  }

  const PpdModel model_ = TestPpd("office.ppd");
  JobSettings settings_{model_};
};

constexpr char kAgain[] = "currentpagedevice /";

// A document with `setup` in its set-up.
std::string Document(const std::string &setup) {
  return "%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%BeginProlog\n%%EndProlog\n%%BeginSetup\n" +
         setup + "%%EndSetup\n%%Page: 1 1\nshowpage\n%%EOF\n";
}

TEST_F(Kept, ComesBehindTheSetUpOfAJobThatSetsTheSame) {
  Choose({{"*NrCopies", "2"}, {"*Duplex", "DuplexTumble"}});
  const std::string made = Made(Document("<</NumCopies 1 /Duplex false>> setpagedevice\n"));
  const size_t own = made.find("<</NumCopies 1 /Duplex false>>");
  const size_t copies = made.find("currentpagedevice /NumCopies");
  const size_t sides = made.find("currentpagedevice /Duplex");
  EXPECT_LT(own, copies);
  EXPECT_LT(copies, sides);
  EXPECT_LT(sides, made.find("%%EndSetup\n%%Page:"));
}

TEST_F(Kept, SaysNothingInAJobThatDoesNotSetIt) {
  Choose({{"*NrCopies", "2"}, {"*Duplex", "DuplexTumble"}});
  for (const char *setup : {"", "<</MediaType (Plain)>> setpagedevice\n", "% NumCopies Duplex\n"}) {
    EXPECT_EQ(Made(Document(setup)).find(kAgain), std::string::npos) << setup;
  }
  const std::string in_page =
      "%!PS-Adobe-3.0\n%%EndComments\n%%Page: 1 1\n/NumCopies pop\nshowpage\n";
  EXPECT_EQ(Made(in_page).find(kAgain), std::string::npos);
}

TEST_F(Kept, TheQueuesOwnSettingsDoNotCount) {
  const std::string job = Document("<</NumCopies 1 /Duplex false>> setpagedevice\n");
  settings_.ApplyQueue({{"*Duplex", "DuplexTumble"}, {"*NrCopies", "2"}});
  EXPECT_EQ(Made(job).find(kAgain), std::string::npos);
  settings_.ApplyUser({{"*Duplex", "DuplexNoTumble"}});
  EXPECT_NE(Made(job).find("currentpagedevice /Duplex"), std::string::npos);
}

TEST_F(Kept, WhatIsUsualIsNoChoiceAgainstTheJob) {
  Choose({{"*NrCopies", "1"}, {"*Duplex", "None"}});
  EXPECT_EQ(Made(Document("<</NumCopies 3 /Duplex true>> setpagedevice\n")).find(kAgain),
            std::string::npos);
}

TEST_F(Kept, ASettingOfTheProceduresCountsToo) {
  Choose({{"*NrCopies", "2"}});
  std::string job = Document("one\n");
  job.insert(job.find("%%EndProlog"), "/one { <</NumCopies 1>> setpagedevice } def\n");
  EXPECT_NE(Made(job).find(kAgain), std::string::npos);
}

TEST_F(Kept, WithoutASetUpItComesBeforeTheFirstPage) {
  Choose({{"*NrCopies", "2"}});
  const std::string job =
      "%!PS-Adobe-3.0\n%%EndComments\n<</NumCopies 1>> setpagedevice\n%%EndProlog\n%%Page: 1 1\n"
      "showpage\n";
  const std::string made = Made(job);
  EXPECT_LT(made.find("<</NumCopies 1>>"), made.find(kAgain));
  EXPECT_LT(made.find(kAgain), made.find("%%Page:"));
}

TEST_F(Kept, WhereItHasNoPlaceIsAWarning) {
  Choose({{"*NrCopies", "2"}});
  EXPECT_EQ(Warnings("%!\n<</NumCopies 1>> setpagedevice\nshowpage\n"),
            "the job itself sets the number of copies, and does not mark where its set-up ends: "
            "what was chosen may not count\n");
  EXPECT_EQ(Warnings("%!\nshowpage\n"), "");
}

TEST_F(Kept, EachDocumentOfAJobIsLookedAt) {
  Choose({{"*NrCopies", "2"}});
  const std::string one = Document("<</NumCopies 1>> setpagedevice\n");
  EXPECT_EQ(CountOf(Made(one + one), kAgain), 2u);
}

TEST_F(Kept, IsTheSameWhateverTheReadsAre) {
  Choose({{"*NrCopies", "2"}, {"*Duplex", "DuplexTumble"}});
  const std::string job = Document("<</NumCopies 1 /Duplex false>> setpagedevice\n");
  EXPECT_EQ(RunOver(FilterPostScript, settings_, job, 1), Made(job));
}

}  // namespace
