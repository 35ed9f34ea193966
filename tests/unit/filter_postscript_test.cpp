// Where the settings' code goes in a PostScript job.
#include <gtest/gtest.h>

#include <ctime>

#include "featurecode.h"
#include "filterjob.h"
#include "postscript.h"

namespace {

constexpr char kUelText[] = "\033%-12345X";

class PostScriptJob : public testing::Test {
 protected:
  // The job on its way out, without the job control around it.
  std::string Document(const std::string &job, size_t step = 65536) const {
    const std::string output = RunOver(FilterPostScript, settings_, job, step);
    const std::string enter = "@PJL ENTER LANGUAGE = POSTSCRIPT \n";
    const size_t start = output.find(enter);
    const size_t end = output.rfind(std::string(kUelText) + "@PJL EOJ");
    if (start == std::string::npos || end == std::string::npos) return "no job control: " + output;
    return output.substr(start + enter.size(), end - start - enter.size());
  }

  // The keywords and comments of the document in their order, feature code as its name.
  static std::string Outline(const std::string &document) {
    std::string outline;
    size_t at = 0;
    while (at < document.size()) {
      const size_t end = std::min(document.find_first_of("\r\n", at), document.size());
      const std::string line = document.substr(at, end - at);
      if (line.starts_with("%%BeginFeature: *")) {
        outline += "[" + line.substr(17, line.find(' ', 17) - 17) + "]";
      } else if (line.find("NumCopies") != std::string::npos) {
        outline += "[copies]";
      } else if (line.starts_with("%%") && !line.starts_with("%%EndFeature")) {
        outline += line.substr(2) + ";";
      }
      at = end + 1;
    }
    return outline;
  }

  void Set(const std::vector<KeyValue> &settings) { settings_.ApplyQueue(settings); }

  const PpdModel model_ = TestPpd("office.ppd");
  JobSettings settings_{model_};
};

constexpr char kSetupCode[] = "[InputSlot][MediaType][Duplex][PageSize]";

TEST_F(PostScriptJob, CodeGoesBehindTheBeginningOfPrologAndSetup) {
  Set({{"*Overlay", "True"}, {"*NrCopies", "2"}});
  EXPECT_EQ(
      Outline(Document("%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%BeginProlog\n/x 1 def\n"
                       "%%EndProlog\n%%BeginSetup\n%%EndSetup\n%%Page: 1 1\nshowpage\n%%EOF\n")),
      "Pages: 1;EndComments;BeginProlog;[Overlay]EndProlog;BeginSetup;" + std::string(kSetupCode) +
          "[copies]EndSetup;Page: 1 1;EOF;");
}

TEST_F(PostScriptJob, CodeIsGuardedAgainstErrors) {
  Set({{"*InputSlot", "Lower"}});
  EXPECT_NE(Document("%!PS-Adobe-3.0\n%%EndComments\n%%Page: 1 1\n")
                .find("[{\n%%BeginFeature: *InputSlot Lower\n<</MediaPosition 1>>setpagedevice\n"
                      "%%EndFeature\n} stopped cleartomark\n"),
            std::string::npos);
}

TEST_F(PostScriptJob, ASetupSectionIsMadeWhereTheJobHasNone) {
  Set({{"*Overlay", "True"}});
  EXPECT_EQ(Outline(Document("%!PS-Adobe-3.0\n%%EndComments\n%%Page: 1 1\nshowpage\n")),
            "EndComments;BeginProlog;[Overlay]EndProlog;BeginSetup;" + std::string(kSetupCode) +
                "EndSetup;Page: 1 1;");
}

TEST_F(PostScriptJob, ThePrologOfAnOlderDocumentStaysInFrontOfTheSetup) {
  EXPECT_EQ(Outline(Document("%!PS-Adobe-1.0\n%%Creator: x\n/x 1 def\n%%EndProlog\n%%Page: 1 1\n")),
            "Creator: x;EndProlog;BeginSetup;" + std::string(kSetupCode) + "EndSetup;Page: 1 1;");
}

TEST_F(PostScriptJob, ResourcesInFrontOfTheSetupStayThere) {
  EXPECT_EQ(Outline(Document("%!PS-Adobe-3.0\n%%EndComments\n%%BeginDefaults\nx\n%%EndDefaults\n"
                             "%%BeginResource: font A\n/A 1 def\n%%EndResource\n%%EndProlog\n"
                             "%%Page: 1 1\n")),
            "EndComments;BeginDefaults;EndDefaults;BeginResource: font A;EndResource;EndProlog;"
            "BeginSetup;" +
                std::string(kSetupCode) + "EndSetup;Page: 1 1;");
}

TEST_F(PostScriptJob, AConformingHeaderWithNothingBehindItGetsTheCodeBeforeTheFirstLine) {
  const std::string document = Document("%!PS-Adobe-3.0\n%%EndComments\n\nshowpage\n");
  EXPECT_EQ(Outline(document), "EndComments;BeginSetup;" + std::string(kSetupCode) + "EndSetup;");
  EXPECT_TRUE(document.ends_with("%%EndSetup\nshowpage\n"));
}

TEST_F(PostScriptJob, AJobThatDoesNotConformGetsTheCodeBehindItsFirstLine) {
  Set({{"*NrCopies", "3"}, {"*Stamp", "Draft"}});
  const std::string document = Document("%!\n100 100 moveto\nshowpage\n");
  EXPECT_TRUE(document.starts_with("%!\n[{\n%%BeginFeature"));
  EXPECT_EQ(Outline(document), std::string(kSetupCode) + "[copies][Stamp]");
  EXPECT_TRUE(document.ends_with("cleartomark\n100 100 moveto\nshowpage\n"));
}

TEST_F(PostScriptJob, AJobWithoutAMarkGetsOne) {
  EXPECT_TRUE(Document("showpage").starts_with("%!\n[{"));
  EXPECT_TRUE(Document("showpage").ends_with("cleartomark\nshowpage"));
}

TEST_F(PostScriptJob, PageSetupCodeIsPutIntoEveryPage) {
  Set({{"*Stamp", "Draft"}});
  EXPECT_EQ(Outline(Document("%!PS-Adobe-3.0\n%%EndComments\n%%BeginSetup\n%%EndSetup\n"
                             "%%Page: 1 1\n%%PageBoundingBox: 0 0 1 1\n%%BeginPageSetup\n"
                             "%%EndPageSetup\nshowpage\n%%Page: 2 2\nshowpage\n")),
            "EndComments;BeginSetup;" + std::string(kSetupCode) +
                "EndSetup;Page: 1 1;PageBoundingBox: 0 0 1 1;BeginPageSetup;[Stamp]EndPageSetup;"
                "Page: 2 2;BeginPageSetup;[Stamp]EndPageSetup;");
}

TEST_F(PostScriptJob, IncludedDocumentsGetNoCode) {
  const std::string included =
      "%%BeginDocument: a.eps\n%!PS-Adobe-3.0\n%%BeginSetup\n%%EndSetup\n%%Page: 1 1\n"
      "%%BeginDocument: b.eps\n%%BeginProlog\n%%EndDocument\n%%BeginPageSetup\n%%EndDocument\n";
  Set({{"*Stamp", "Draft"}});
  const std::string document = Document(
      "%!PS-Adobe-3.0\n%%EndComments\n%%BeginSetup\n%%EndSetup\n"
      "%%Page: 1 1\nsave\n" +
      included + "restore showpage\n");
  EXPECT_NE(document.find("save\n" + included + "restore"), std::string::npos);
  EXPECT_EQ(CountOf(document, "*Stamp"), 1u);
}

TEST_F(PostScriptJob, MarksOfWhatIsIncludedDoNotMakeThePageAProlog) {
  for (const std::string included :
       {"%%BeginDocument: a.eps\n%%EndProlog\n%%Page: 1 1\n%%EndDocument\n",
        "%%BeginBinary: 12\n%%EndProlog\n\n%%EndBinary\n",
        "%%BeginData: 1 Hex Lines\n%%Page: 1 1\n%%EndData\n"}) {
    const std::string body = "save 50 50 translate\n" + included + "restore showpage\n";
    const std::string document = Document("%!PS-Adobe-3.0\n%%EndComments\n" + body);
    EXPECT_TRUE(document.ends_with("%%EndSetup\n" + body)) << document;
  }
}

TEST_F(PostScriptJob, MarksOfTheNextDocumentDoNotMakeThePageAProlog) {
  const std::string enter = std::string(kUelText) + "@PJL ENTER LANGUAGE=POSTSCRIPT\n";
  const std::string output = RunOver(FilterPostScript, settings_,
                                     "%!PS-Adobe-3.0\n%%EndComments\nfirst showpage\n" + enter +
                                         "%!PS-Adobe-3.0\n%%EndProlog\n%%Page: 1 1\n");
  EXPECT_NE(output.find("%%EndSetup\nfirst showpage\n"), std::string::npos);
}

TEST_F(PostScriptJob, AMarkRightBehindTheFirstLineEndsTheProlog) {
  for (const std::string mark : {"%%EndProlog\n", "%%BeginSetup\n", "%%Page: 1 1\n"}) {
    const std::string start = "%!PS-Adobe-1.0\n%%Creator: x\n/x 1 def\n" + mark;
    EXPECT_LT(Document(start).find("/x 1 def\n"), Document(start).find("*InputSlot")) << mark;
  }
}

// What the job's filtering has to say.
std::string WarningOf(const JobSettings &settings, const std::string &job) {
  return WarningsOver(FilterPostScript, settings, job);
}

TEST_F(PostScriptJob, APrologOrBlockThatNeverEndsGetsTheCodeBeforeIt) {
  Set({{"*NrCopies", "2"}, {"*Overlay", "True"}, {"*Stamp", "Draft"}});
  for (const std::string body :
       {"%%BeginProlog\n/x 1 def\n%%EndDocumentx\n0 0 moveto showpage\n%%Trailer\n%%EOF\n",
        "%%BeginProcSet: x\n/x 1 def\nshowpage\n%%EOF\n",
        "%%BeginProcSet: x\n%%BeginFile: y\n%%EndFile\nshowpage\n"}) {
    const std::string job = "%!PS-Adobe-3.0\n%%EndComments\n" + body;
    const std::string document = Document(job);
    EXPECT_TRUE(
        Outline(document).starts_with("EndComments;BeginProlog;[Overlay]EndProlog;"
                                      "BeginSetup;" +
                                      std::string(kSetupCode) + "[copies]EndSetup;[Stamp]"))
        << document;
    EXPECT_TRUE(document.ends_with("cleartomark\n" + body)) << document;
    EXPECT_EQ(WarningOf(settings_, job), "");
    EXPECT_EQ(RunOver(FilterPostScript, settings_, job, 1),
              RunOver(FilterPostScript, settings_, job));
  }
}

TEST_F(PostScriptJob, ABlockEndsAtItsOwnMarkInAnyCaseOrWithTheProlog) {
  for (const std::string block :
       {"%%BeginProcSet: x\n/x 1 def\n%%EndProcset\n",
        "%%BeginProcSet: x\n%%BeginBinary: 3\nabc\n%%EndBinary\n/x 1 def\n%%EndProcSet\n",
        "%%BeginProcSet: x\n/x 1 def\n%%EndProlog\n"}) {
    const std::string start = "%!PS-Adobe-3.0\n%%EndComments\n" + block;
    const std::string document = Document(start + "showpage\n%%EOF\n");
    EXPECT_TRUE(document.starts_with(start + "%%BeginSetup\n")) << document;
    EXPECT_TRUE(document.ends_with("%%EndSetup\nshowpage\n%%EOF\n")) << document;
  }
}

TEST_F(PostScriptJob, ALongOneWhoseEndNeverComesIsAWarning) {
  const std::string lines = std::string(100000, '\n');
  for (const std::string begin : {"%%BeginProlog\n", "%%BeginProcSet: x\n"}) {
    const std::string start = "%!PS-Adobe-3.0\n%%EndComments\n" + begin + lines;
    EXPECT_EQ(WarningOf(settings_, start + "showpage\n%%EOF\n"),
              "the job's prolog is not marked as ended: options and copies may not count\n");
    EXPECT_EQ(WarningOf(settings_, start + "%%EndProlog\n%%Page: 1 1\nshowpage\n%%EOF\n"), "");
    const PpdModel plain;
    EXPECT_EQ(WarningOf(JobSettings(plain), start + "showpage\n%%EOF\n"), "");
  }
}

// The processor time that a document of the conventions takes with `preamble`.
std::clock_t TimeOf(const JobSettings &settings, const std::string &preamble) {
  const std::clock_t start = std::clock();
  WarningOf(settings, "%!PS-Adobe-3.0\n%%EndComments\n" + preamble + "showpage\n%%EOF\n");
  return std::clock() - start;
}

TEST_F(PostScriptJob, ManyBlocksTakeTheTimeOfOtherLines) {
  constexpr int kLines = 40000;
  std::string comments, open, crossed, different;
  for (int i = 0; i < kLines; ++i) {
    comments += "%%Remark\n%%Remark\n";
    open += "%%BeginX\n%%BeginX\n";
    crossed += "%%BeginX\n%%EndY\n";
    different += "%%BeginX" + std::to_string(i) + "\n%%EndY\n";
  }
  // Far above what is measured (5 times), far below a look of 32 KiB from each line (1000 times).
  const std::clock_t most = 100 * std::max<std::clock_t>(TimeOf(settings_, comments), 2000);
  EXPECT_LT(TimeOf(settings_, open), most);
  EXPECT_LT(TimeOf(settings_, crossed), most);
  EXPECT_LT(TimeOf(settings_, different), most);
}

TEST_F(PostScriptJob, ManyBlocksOfALongPrologWithoutFrameAreAllRecognised) {
  std::string blocks;
  for (int i = 0; i < 1000; ++i) {
    blocks += "%%BeginProcSet: a\n%%BeginResource: b\n" + std::string(2000, '%') +
              "\n%%EndResource\n%%EndProcSet\n";
  }
  const std::string start = "%!PS-Adobe-3.0\n%%EndComments\n" + blocks;
  const std::string body = "%%BeginProcSet: x\nshowpage\n%%EOF\n";
  const std::string document = Document(start + body);
  EXPECT_TRUE(document.starts_with(start + "%%BeginSetup\n"));
  EXPECT_TRUE(document.ends_with("%%EndSetup\n" + body));
}

TEST_F(PostScriptJob, PageSetupCodeInFrontOfTheDocumentCountsForItsFirstPage) {
  Set({{"*Stamp", "Draft"}});
  const std::string header = "%!PS-Adobe-3.0\n%%EndComments\n";
  std::string definitions;
  while (definitions.size() < 40000) definitions += "/x 1 def\n";
  for (const std::string &start :
       {header + definitions + "%%EndProlog\n",
        header + "%%BeginDocument: a.eps\n%%Page: 1 1\n%%EndDocument\n",
        header + "%%BeginData: 1 ASCII Lines\nshowpage\n%%EndData\n" + definitions,
        header + "save\n%%BeginBinary: 3\nabc\n%%EndBinary\n", std::string("%!\n")}) {
    const std::string document = Document(
        start + "%%Page: 1 1\n%%BeginPageSetup\n%%EndPageSetup\nshowpage\n%%Page: 2 2\nshowpage\n");
    const std::string stamp = "*Stamp";
    const size_t first = document.find("\n%%Page: 1 1\n%%BeginPageSetup\n");
    EXPECT_LT(document.find(stamp), first) << document;
    EXPECT_EQ(document.find(stamp, first), document.rfind(stamp));
    EXPECT_GT(document.rfind(stamp), document.find("\n%%Page: 2 2\n"));
    EXPECT_EQ(CountOf(document, stamp), 2u);
  }
  const std::string document = Document(header + definitions + "showpage\n");
  EXPECT_EQ(CountOf(document, "*Stamp"), 1u);
}

TEST_F(PostScriptJob, CountedDataThatMayBeAPageGetsTheCodeBeforeIt) {
  const std::string program = "100 100 moveto showpage\n";
  const std::string marked = "%%EndProlog\n%%Page: 1 1\r\nshowpage\n";
  const std::string lines = std::string(40000, '\n');
  for (const std::string header :
       {"%!PS-Adobe-3.0\n", "%!PS-Adobe-3.0\n%%EndComments\n",
        "%!PS-Adobe-3.0\n%%EndComments\n%%BeginProcSet: x\n/x 1 def\n%%EndProcSet\n"}) {
    for (const std::string &data :
         {"%%BeginData: 1 ASCII Lines\n" + program + "%%EndData\n%%EOF\n",
          "%%BeginData: 3 ASCII Lines\n" + marked + "%%EndData\n%%EOF\n",
          "%%BeginBinary: " + std::to_string(marked.size()) + "\n" + marked + "%%EndBinary\n",
          "%%BeginBinary: 24\n" + program,
          "%%BeginBinary: 40000\n" + lines + "%%EndBinary\n%%Page: 1 1\n",
          "%%BeginData: 40000 ASCII Lines\n" + lines + "%%EndData\n%%Page: 1 1\n"}) {
      const std::string document = Document(header + data);
      EXPECT_TRUE(document.starts_with(header + "%%BeginSetup\n")) << document;
      EXPECT_TRUE(document.ends_with("%%EndSetup\n" + data)) << document;
      EXPECT_EQ(WarningOf(settings_, header + data), "");
      EXPECT_EQ(Document(header + data, 1), document);
    }
  }
}

TEST_F(PostScriptJob, CountedDataInFrontOfTheMarkOfAPrologStaysInFrontOfTheSetup) {
  for (const std::string data :
       {"%%BeginData: 2 ASCII Lines\n%%BeginDocument: x\r\n/x 1 def\n%%EndData\n",
        "%%BeginBinary: 12\n%%BeginDataX%%EndBinary\n", "%%BeginBinary: x\n%%EndBinary\n"}) {
    const std::string start = "%!PS-Adobe-3.0\n%%EndComments\n" + data + "%%BeginSetup\n";
    EXPECT_TRUE(Document(start + "%%EndSetup\n").starts_with(start + "[{\n")) << data;
  }
}

TEST_F(PostScriptJob, CountedDataThatTakesTheWholeJobIsAWarning) {
  const std::string start = "%!PS-Adobe-3.0\n%%EndComments\n%%BeginBinary: ";
  const std::string rest = "\nabcdef\n%%EndBinary\n%%Page: 1 1\nshowpage\n%%EOF\n";
  EXPECT_EQ(WarningOf(settings_, start + "6" + rest), "");
  EXPECT_NE(WarningOf(settings_, start + "99999" + rest), "");
}

TEST_F(PostScriptJob, BinarySectionsGoThroughByteForByte) {
  std::string bytes = "%%EndBinary\n%%Page: 9 9\n%%BeginSetup\n" + std::string(kUelText);
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  const std::string section =
      "%%BeginBinary: " + std::to_string(bytes.size()) + "\n" + bytes + "\n%%EndBinary\n";
  const std::string document =
      Document("%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n" + section + "%%EndProlog\n" +
               "%%BeginSetup\n%%EndSetup\n%%Page: 1 1\n" + section + "showpage\n");
  EXPECT_EQ(CountOf(document, section), 2u);
  EXPECT_EQ(CountOf(document, "*InputSlot"), 1u);
}

TEST_F(PostScriptJob, DataSectionsAreCountedInBytesOrLines) {
  const std::string data =
      "%%BeginData: 2 Hex Lines\n%%BeginDocument: x\n%%Page: 7 7\n%%EndData\n"
      "%%BeginData: 12 Binary Bytes\n%%BeginDocu\n\n%%EndData\n";
  const std::string document =
      Document("%!PS-Adobe-3.0\n%%EndComments\n" + data + "%%BeginSetup\n%%EndSetup\n");
  EXPECT_NE(document.find(data), std::string::npos);
  EXPECT_EQ(CountOf(document, "*InputSlot"), 1u);
}

TEST_F(PostScriptJob, LineEndsOfEveryKindAreKept) {
  for (const std::string end : {"\r", "\r\n", "\n"}) {
    std::string job;
    for (const char *line : {"%!PS-Adobe-3.0", "%%EndComments", "%%BeginSetup", "%%EndSetup",
                             "%%Page: 1 1", "showpage"}) {
      job += line + end;
    }
    const std::string document = Document(job);
    EXPECT_NE(document.find("%%BeginSetup" + end + "[{\n"), std::string::npos);
    EXPECT_TRUE(document.ends_with("%%EndSetup" + end + "%%Page: 1 1" + end + "showpage" + end));
  }
}

TEST_F(PostScriptJob, ReadsOfOneByteGiveTheSame) {
  Set({{"*Stamp", "Draft"}, {"*Overlay", "True"}});
  const std::string job =
      "\004%!PS-Adobe-3.0\r\n%%EndComments\r\n%%BeginProlog\r\n%%EndProlog\r\n%%Page: 1 1\r\n"
      "%%BeginBinary: 3\r\nabc\r\n%%EndBinary\r\nshowpage\r\n" +
      std::string(kUelText);
  EXPECT_EQ(Document(job, 1), Document(job));
}

TEST_F(PostScriptJob, VeryLongLinesGoThroughWhole) {
  const std::string line = "% " + std::string(300000, 'x') + "%%BeginSetup";
  const std::string document =
      Document("%!PS-Adobe-3.0\n%%EndComments\n%%Page: 1 1\n" + line + "\n");
  EXPECT_TRUE(document.ends_with("%%Page: 1 1\n" + line + "\n"));
}

TEST_F(PostScriptJob, AFeatureThatTheJobAsksForIsPutThere) {
  EXPECT_NE(Document("%!PS-Adobe-3.0\n%%EndComments\n%%BeginSetup\n"
                     "%%IncludeFeature: *Duplex DuplexTumble\n%%EndSetup\n")
                .find("%%IncludeFeature: *Duplex DuplexTumble\n[{\n%%BeginFeature: *Duplex "
                      "DuplexTumble\n"),
            std::string::npos);
}

TEST_F(PostScriptJob, TheJobsOwnJobControlIsMergedIntoThePrinters) {
  const std::string job = std::string(kUelText) + "@PJL JOB\r\n@PJL SET RESOLUTION=600\r\n" +
                          "@PJL ENTER LANGUAGE=POSTSCRIPT\r\n%!PS\nshowpage\n" + kUelText +
                          "@PJL EOJ\r\n" + kUelText;
  const std::string output = RunOver(FilterPostScript, settings_, job);
  EXPECT_EQ(CountOf(output, "@PJL JOB"), 1u);
  EXPECT_EQ(CountOf(output, "@PJL EOJ"), 1u);
  EXPECT_EQ(CountOf(output, "ENTER LANGUAGE"), 1u);
  EXPECT_LT(output.find("@PJL SET RESOLUTION=600\n"), output.find("@PJL SET DELIVERY=PRINT"));
  EXPECT_TRUE(output.ends_with("showpage\n" + std::string(kUelText) + "@PJL EOJ \n" + kUelText));
}

TEST_F(PostScriptJob, APrinterWithoutJobControlGetsNone) {
  const PpdModel plain;
  const JobSettings settings(plain);
  const std::string job =
      std::string(kUelText) + "@PJL ENTER LANGUAGE=POSTSCRIPT\n%!PS\nshowpage\n" + kUelText;
  EXPECT_EQ(RunOver(FilterPostScript, settings, job), "%!PS\nshowpage\n");
}

TEST_F(PostScriptJob, DocumentsWithJobControlBetweenThemAllGetTheCode) {
  const std::string enter = std::string(kUelText) + "@PJL ENTER LANGUAGE=POSTSCRIPT\n";
  const std::string output = RunOver(FilterPostScript, settings_,
                                     enter + "%!PS\nfirst\n" + enter + "%!PS\nsecond\n" + kUelText);
  EXPECT_EQ(CountOf(output, "*InputSlot Upper"), 2u);
  EXPECT_EQ(CountOf(output, "ENTER LANGUAGE"), 2u);
}

TEST_F(PostScriptJob, AJobInAnotherLanguageGoesThroughAsItIs) {
  const std::string data = "\033E\033&l0O%%BeginSetup\n\033E";
  const std::string output = RunOver(FilterPostScript, settings_,
                                     std::string(kUelText) + "@PJL ENTER LANGUAGE=PCL\n" + data);
  EXPECT_NE(output.find("@PJL ENTER LANGUAGE=PCL\n" + data + kUelText), std::string::npos);
}

// A document of one page without any mark, and one with all of them.
constexpr char kCover[] = "%!PS-Adobe-3.0\n%%EndComments\n(cover) show showpage\n%%EOF\n";
constexpr char kMarked[] =
    "%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n/x 1 "
    "def\n%%EndProlog\n%%BeginSetup\n%%EndSetup\n"
    "%%Page: 1 1\nshowpage\n%%Trailer\n%%EOF\n";

TEST_F(PostScriptJob, EachOfSeveralDocumentsGetsTheCode) {
  Set({{"*NrCopies", "2"}, {"*Overlay", "True"}, {"*Stamp", "Draft"}});
  for (const std::string between : {"", "\n\r\n", "\004", "\004\r\n\004"}) {
    for (const std::string first : {kCover, kMarked}) {
      for (const std::string second : {kCover, kMarked}) {
        EXPECT_EQ(Document(first + between + second), Document(first) + between + Document(second))
            << first << between << second;
        EXPECT_EQ(WarningOf(settings_, first + between + second), "");
      }
    }
  }
}

TEST_F(PostScriptJob, BehindADocumentsEndNoPlaceForItsCodeIsLookedFor) {
  Set({{"*NrCopies", "2"}});
  const std::string document = Document(kCover + std::string("%!PS\n%%EndProlog\nshowpage\n"));
  EXPECT_LT(document.find("NumCopies"), document.find("(cover)"));
}

TEST_F(PostScriptJob, ADocumentWithoutEndIsFollowedByOneThatHidesNoPlaceOfIts) {
  Set({{"*NrCopies", "2"}});
  const std::string cover = "%!PS-Adobe-3.0\n%%EndComments\n(cover) show showpage\n";
  const std::string document = Document(cover + kMarked);
  EXPECT_LT(document.find("NumCopies"), document.find("(cover)"));
  EXPECT_EQ(CountOf(document, "NumCopies"), 1u) << "the second may be included in the first";
  const std::string apart = Document(cover + "\004" + kMarked);
  EXPECT_EQ(CountOf(apart, "NumCopies"), 2u);
}

TEST_F(PostScriptJob, AnIncludedDocumentGetsNoCode) {
  Set({{"*NrCopies", "2"}});
  const std::string marked =
      "%!PS-Adobe-3.0\n%%EndComments\n%%EndProlog\n%%Page: 1 1\n%%BeginDocument: x\n" +
      std::string(kMarked) + kMarked + "%%EndDocument\nshowpage\n%%EOF\n";
  EXPECT_EQ(CountOf(Document(marked), "NumCopies"), 1u);
  const std::string unmarked = "%!PS-Adobe-3.0\n%%EndComments\n%%EndProlog\n%%Page: 1 1\nsave\n" +
                               std::string(kMarked) + "restore\nsave\n" + kMarked +
                               "restore showpage\n%%EOF\n";
  EXPECT_EQ(CountOf(Document(unmarked), "NumCopies"), 1u);
}

TEST_F(PostScriptJob, AFirstPageWithoutMarkBehindThePrologGetsTheCode) {
  Set({{"*NrCopies", "2"}});
  const std::string document = Document(
      "%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n%%EndProlog\n(one) show showpage\n"
      "%%Page: 2 2\nshowpage\n%%EOF\n");
  EXPECT_LT(document.find("NumCopies"), document.find("(one)"));
  EXPECT_GT(document.find("NumCopies"), document.find("%%EndProlog"));
}

TEST_F(PostScriptJob, AnEmptyJobGivesNothing) {
  for (const std::string &job :
       {std::string(), std::string("\004"), kUelText + std::string("@PJL EOJ")}) {
    EXPECT_EQ(RunOver(FilterPostScript, settings_, job), "");
  }
}

TEST_F(PostScriptJob, CodeFollowsTheOrderNumbers) {
  const auto codes = CodeOfSection(settings_, PpdSection::Document);
  std::string order;
  for (const FeatureCode &code : codes) order += code.keyword + " ";
  EXPECT_EQ(order, "InputSlot MediaType Duplex PageSize ");
}

TEST_F(PostScriptJob, PageRegionTakesThePlaceOfPageSizeOnlyWhereTheTrayAsksForIt) {
  Set({{"*PageSize", "Letter"}, {"*PageRegion", "A4"}});
  EXPECT_EQ(CountOf(Document("%!\n"), "region"), 0u);
  Set({{"*InputSlot", "Lower"}});
  const std::string document = Document("%!\n");
  EXPECT_EQ(CountOf(document, "*PageSize"), 0u);
  EXPECT_EQ(CountOf(document, "%%BeginFeature: *PageRegion Letter\n"), 1u);
}

TEST_F(PostScriptJob, ATrayEndsNoFeedingByHand) {
  PpdModel model = model_;
  PpdFeature &manual = model.features.emplace_back();
  manual.keyword = "ManualFeed";
  manual.section = PpdSection::Document;
  manual.default_choice = "False";
  manual.choices = {{"False", "No", "by trays"}, {"True", "Yes", "by hand"}};
  JobSettings settings(model);
  settings.Apply({{"*InputSlot", "Lower"}, {"*ManualFeed", "True"}});
  const std::string job = RunOver(FilterPostScript, settings, "%!\nx\n");
  EXPECT_EQ(CountOf(job, "*ManualFeed True"), 1u);
  EXPECT_EQ(CountOf(job, "*InputSlot"), 0u);
  settings.Apply({{"*ManualFeed", "False"}});
  EXPECT_EQ(CountOf(RunOver(FilterPostScript, settings, "%!\nx\n"), "*InputSlot Lower"), 1u);
}

TEST_F(PostScriptJob, ACustomPaperUsesThePpdsCodeAndItsParameters) {
  Set({{"*CustomPaperSize", "Ticket''200''400.5"}, {"*PageSize", "Ticket"}});
  const std::string document = Document("%!\n");
  EXPECT_NE(document.find("%%BeginFeature: *CustomPageSize True\n200\n400.5\n0\n0\n1\n"
                          "pop pop pop <</PageSize[5 -2 roll]>>setpagedevice\n"),
            std::string::npos);
  EXPECT_EQ(CountOf(document, "*PageSize"), 0u);
}

TEST_F(PostScriptJob, ACustomMediaTypeOfAPrinterWithoutCodeForItSetsThePageDevice) {
  Set({{"*CustomMediaType", "Gl(oss::Gl(oss"}, {"*MediaType", "Gl(oss"}});
  EXPECT_NE(Document("%!\n").find("*CustomMediaType True\n<</MediaType(Gl\\(oss)>>setpagedevice\n"),
            std::string::npos);
}

TEST_F(PostScriptJob, ALevelOnePrinterGetsItsOwnFormOfCopies) {
  PpdModel old;
  old.language_level = 1;
  JobSettings settings(old);
  settings.Apply({{"*NrCopies", "4"}});
  EXPECT_EQ(RunOver(FilterPostScript, settings, "%!\nx\n"),
            "%!\n[{\n/#copies 4 def\n} stopped cleartomark\nx\n");
}

}  // namespace
