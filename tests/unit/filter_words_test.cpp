// The words of applications as settings of the printer.
#include <gtest/gtest.h>

#include "applicationwords.h"
#include "filterjob.h"
#include "textfile.h"

namespace {

class Words : public testing::Test {
 protected:
  // The settings that the words make, and the warnings, a line each.
  std::string Made(const std::string &words, PageWords pages = PageWords::kDocument) {
    const QueuePpd ppd = MakeQueuePpd({*text_, "postscript", queue_, {}});
    made_ = SettingsOfWords(WordsOfApplications(words, false), ppd, pages);
    std::string text;
    for (const KeyValue &setting : made_.settings) text += setting.key + "=" + setting.value + "\n";
    for (const std::string &warning : made_.warnings) text += warning + "\n";
    return text;
  }

  const std::optional<std::string> text_ = ReadWholeFile(KPX_PPD_DIR "/vek41201.ppd");
  std::vector<KeyValue> queue_;
  ApplicationSettings made_;
};

constexpr char kUnknown[] = " is not known for this printer, or not with that value; ignored\n";

TEST_F(Words, WhatThePrinterOffersIsASetting) {
  EXPECT_EQ(Made("Duplex=DuplexNoTumble"), "*Duplex=DuplexNoTumble\n");
  EXPECT_EQ(Made("PageSize=A3"), "*PageSize=A3\n");
  EXPECT_EQ(Made("duplex=duplextumble"), "*Duplex=DuplexTumble\n");
  EXPECT_EQ(Made("OutputBin=FinisherTray Jog=EndOfJob"),
            "*OutputBin=FinisherTray\n*Jog=EndOfJob\n");
}

TEST_F(Words, AttributesOfTheInternetPrintingProtocolAreSettings) {
  EXPECT_EQ(Made("sides=two-sided-long-edge"), "*Duplex=DuplexNoTumble\n");
  EXPECT_EQ(Made("sides=two-sided-short-edge"), "*Duplex=DuplexTumble\n");
  EXPECT_EQ(Made("media=iso_a3_297x420mm"), "*PageSize=A3\n");
  EXPECT_EQ(Made("media=A5,Tray2"), "*PageSize=A5\n*InputSlot=Tray2\n");
  EXPECT_EQ(Made("media=A5,tray-2,cardstock"),
            "*PageSize=A5\n*MediaType=CardStock\n*InputSlot=Tray2\n");
  EXPECT_EQ(Made("output-bin=finisher-tray"), "*OutputBin=FinisherTray\n");
  EXPECT_EQ(Made("print-quality=5"), "*OutputMode=High\n");
  EXPECT_EQ(Made("print-quality=3"), "*OutputMode=Draft\n");
  // So the spooler hands on what a client asks for.
  EXPECT_EQ(Made("print-quality=3 cupsPrintQuality=Draft"), "*OutputMode=Draft\n");
  EXPECT_EQ(Made("print-quality=5 job-id=1 cupsPrintQuality=High x-a=1"), "*OutputMode=High\n");
  EXPECT_EQ(Made("finishings=28"), "*StapleLocation=DualPortrait\n");
  EXPECT_EQ(Made("printer-resolution=1200dpi"), "*Resolution=1200dpi\n");
  EXPECT_EQ(Made("copies=3"), "*NrCopies=3\n");
  EXPECT_EQ(Made("multiple-document-handling=separate-documents-collated-copies"),
            "*Collate=True\n");
}

TEST_F(Words, ACustomSizeIsAPaperOfTheJobsOwn) {
  EXPECT_EQ(Made("PageSize=Custom.400x600"), "*PageSize=Custom.400x600\n");
  ASSERT_EQ(made_.papers.size(), 1u);
  EXPECT_DOUBLE_EQ(made_.papers[0].size.width, 400);
  EXPECT_DOUBLE_EQ(made_.papers[0].size.length, 600);
  Made("media=Custom.100x200mm");
  ASSERT_EQ(made_.papers.size(), 1u);
  EXPECT_NEAR(made_.papers[0].size.width, 100 / 25.4 * 72, 0.01);
}

TEST_F(Words, ACustomTypeIsATypeOfTheJobsOwn) {
  EXPECT_EQ(Made("MediaType=Custom.Gold"), "*MediaType=Gold\n");
  EXPECT_EQ(made_.medias, std::vector<std::string>{"Gold"});
}

TEST_F(Words, SizesAndTypesOfTheQueueAreChoices) {
  queue_ = {{"*CustomPaperSize", "Flyer''400''600"},
            {"*CustomPaperSize", "Zweiter Zettel/2''300''500"},
            {"*CustomMediaType", "Gold::Gold paper"}};
  EXPECT_EQ(Made("PageSize=Flyer"), "*PageSize=Flyer\n");
  EXPECT_EQ(Made("PageSize=OwnSize1"), "*PageSize=Zweiter Zettel/2\n");
  EXPECT_EQ(Made("MediaType=Gold"), "*MediaType=Gold\n");
}

TEST_F(Words, WhatTheSpoolerGivesEveryJobSaysNothing) {
  EXPECT_EQ(Made("finishings=3 number-up=1 print-color-mode=monochrome job-uuid=urn:uuid:1 "
                 "job-originating-host-name=localhost date-time-at-creation= "
                 "document-name-supplied=a.ps ColorModel=Gray cupsPrintQuality=Normal"),
            "");
}

TEST_F(Words, SettingsOfOursAreNotAmongThem) {
  EXPECT_EQ(Made("*Duplex=DuplexTumble *NrCopies=4 nobanner"), "");
}

TEST_F(Words, AWordThatNothingKnowsIsOneWarningWithoutItsValue) {
  EXPECT_EQ(Made("foo=secret"), std::string("the option \"foo\"") + kUnknown);
  EXPECT_EQ(Made("Duplex=Sideways"), std::string("the option \"Duplex\"") + kUnknown);
  EXPECT_EQ(Made("media=no-such-paper"), std::string("the option \"InputSlot\"") + kUnknown);
}

TEST_F(Words, TheSpoolersWordsForTextsAreSettingsOfTextJobs) {
  EXPECT_EQ(Made("prettyprint nowrap columns=2 cpi=12 lpi=8 page-left=72 page-right=40 page-top=50 "
                 "page-bottom=60",
                 PageWords::kText),
            "*TextColumns=2\n*TextCPI=12\n*TextLPI=8\n*TextBottom=60\n*TextLeft=72\n*TextRight=40\n"
            "*TextTop=50\n*TextHeader=true\n*TextWrap=false\n")
      << "sorted by libcups";
  EXPECT_EQ(Made("landscape", PageWords::kText), "*Orientation=Landscape\n");
  EXPECT_EQ(Made("orientation-requested=4", PageWords::kText), "*Orientation=Landscape\n");
  EXPECT_EQ(Made("orientation-requested=5", PageWords::kText), "*Orientation=RotLandscape\n");
  EXPECT_EQ(Made("landscape=false orientation-requested=3", PageWords::kText), "");
  EXPECT_EQ(Made("prettyprint"), "the option \"prettyprint\"" + std::string(kUnknown));
  EXPECT_EQ(Made("scaling=50", PageWords::kText),
            "the option \"scaling\" works with PDF and pictures only; ignored\n");
}

TEST_F(Words, WordsForPagesOfADocumentLaidOutElsewhereAreNoSettings) {
  EXPECT_EQ(Made("number-up=2 page-ranges=1-3 booklet=yes", PageWords::kConverter), "");
  EXPECT_EQ(Made("orientation-requested=3 mirror=false page-set=all"), "");
}

TEST_F(Words, PagesASheetAndBookletsOfApplicationsAreSettings) {
  EXPECT_EQ(Made("number-up=2 page-ranges=1-3"), "*Nup=2\n*NupOrder=Left\n");
  EXPECT_EQ(Made("number-up-layout=btrl number-up=6"), "*Nup=6\n*NupOrder=Left\n*NupOrder=btrl\n");
  EXPECT_EQ(Made("booklet=yes number-up=1"), "*Booklet=1\n");
  EXPECT_EQ(Made("booklet=off"), "*Booklet=0\n");
  EXPECT_EQ(Made("number-up=1 number-up-layout=lrtb"), "") << "every job has them";
}

TEST_F(Words, WordsForPagesThatNobodyHeedsAreWarnings) {
  EXPECT_EQ(Made("number-up=3"),
            "the option \"number-up\" does not work with that value; ignored\n");
  EXPECT_EQ(Made("mirror=true scaling=50"),
            "the option \"mirror\" works with PDF and pictures only; ignored\n"
            "the option \"scaling\" works with PDF and pictures only; ignored\n");
  EXPECT_EQ(Made("number-up=2 page-ranges=1-3 outputorder=reverse", PageWords::kNobody),
            "the option \"number-up\" does not work with PCL jobs; ignored\n"
            "the option \"outputorder\" does not work with PCL jobs; ignored\n");
}

TEST_F(Words, NoBookletLeavesThePagesASheetOfTheUser) {
  PpdError error;
  const PpdModel model = ReadPpd(*text_, &error).value();
  JobSettings settings(model);
  settings.Apply({{"*Nup", "4"}});
  Made("booklet=no");
  settings.ApplyWords(made_);
  EXPECT_EQ(settings.Other("*Nup"), "4");
}

TEST_F(Words, AreAppliedOverOtherSettings) {
  PpdError error;
  const PpdModel model = ReadPpd(*text_, &error).value();
  JobSettings settings(model);
  settings.Apply({{"*Duplex", "DuplexTumble"}});
  Made("sides=two-sided-long-edge PageSize=Custom.400x600 MediaType=Custom.Gold");
  settings.ApplyWords(made_);
  EXPECT_EQ(settings.Chosen("Duplex")->keyword, "DuplexNoTumble");
  ASSERT_TRUE(settings.Paper());
  EXPECT_DOUBLE_EQ(settings.Paper()->length, 600);
  EXPECT_EQ(settings.MediaName(), "Gold");
  EXPECT_TRUE(settings.Warnings().empty());
}

TEST_F(Words, ACustomSizeBeyondThePrintersLimitsIsRefused) {
  PpdError error;
  const PpdModel model = ReadPpd(*text_, &error).value();
  JobSettings settings(model);
  Made("PageSize=Custom.40x60");
  settings.ApplyWords(made_);
  EXPECT_FALSE(settings.Paper());
  ASSERT_EQ(settings.Warnings().size(), 1u);
  EXPECT_NE(settings.Warnings()[0].find("beyond the printer's limits"), std::string::npos);
}

}  // namespace
