// PDF documents as jobs for PostScript printers: what the printer would show.
#include <gtest/gtest.h>

#include <cstdlib>

#include "filterrun.h"
#include "ghostscript.h"

namespace {

constexpr char kPpd[] = KPX_PPD_DIR "/vek41201.ppd";

// A PDF document that Ghostscript makes of PostScript.
std::string PdfOf(const std::string &postscript, const std::string &options = {}) {
  const TemporaryDirectory directory;
  const std::string input = directory.Write("in.ps", postscript);
  const std::string output = directory.Path("out.pdf");
  const std::string command = "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite " + options +
                              " -o " + output + " " + input + " >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("Ghostscript made no PDF");
  return ContentOf(output);
}

// A document of `pages` pages, of a size in points, each with its number and a frame.
std::string Pages(int pages, int width = 595, int length = 842, int first = 1) {
  const std::string w = std::to_string(width), l = std::to_string(length);
  std::string text = "%!PS\n<</PageSize[" + w + " " + l + "]>>setpagedevice\n";
  for (int page = first; page <= pages; ++page) {
    text += "/Helvetica findfont 200 scalefont setfont 100 300 moveto (" + std::to_string(page) +
            ") show 20 setlinewidth 40 40 " + std::to_string(width - 80) + " " +
            std::to_string(length - 80) + " rectstroke showpage\n";
  }
  return text;
}

FilterRun Print(const std::string &pdf, const std::string &options = {},
                const std::string &def = {}) {
  const TemporaryDirectory directory;
  FilterCall call{.options = options, .ppd_file = kPpd, .def_file = {}};
  if (!def.empty()) call.def_file = directory.Write("q.def", def);
  return Filter(call, pdf);
}

// How many dots differ, of all of two pictures of the device pgmraw; 1 when the sizes differ.
double Difference(const std::string &a, const std::string &b) {
  if (a.size() != b.size()) return 1;
  size_t different = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    const int step = std::abs(static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]));
    if (step > 96) ++different;
  }
  return static_cast<double>(different) / static_cast<double>(a.size());
}

// Edges fall on other dots when a document goes another way.
constexpr double kEdges = 0.01;

TEST(PdfJob, PrintsItsPagesAsTheyAre) {
  const Rendering before = Render(Pages(3), "pgmraw");
  const FilterRun run = Print(PdfOf(Pages(3)));
  ASSERT_EQ(run.status, 0) << run.errors;
  const Rendering after = Render(run.output, "pgmraw");
  ASSERT_EQ(after.pages.size(), 3u) << after.messages;
  for (size_t page = 0; page < 3; ++page) {
    EXPECT_LT(Difference(before.pages[page], after.pages[page]), kEdges) << page;
  }
  EXPECT_GT(Difference(before.pages[0], after.pages[1]), kEdges);
}

TEST(PdfJob, GetsTheSettingsOfAllLayers) {
  const FilterRun run =
      Print(PdfOf(Pages(2)), "sides=two-sided-long-edge *NrCopies=3", "*MediaType=Thick\n");
  ASSERT_EQ(run.status, 0) << run.errors;
  for (const char *code : {"%%BeginFeature: *Duplex DuplexNoTumble", "<</NumCopies 3>>",
                           "%%BeginFeature: *MediaType Thick", "@PJL SET USERNAME=\"anna\""}) {
    EXPECT_NE(run.output.find(code), std::string::npos) << code;
  }
}

TEST(PdfJob, ADocumentOfAnotherSizeFitsThePaper) {
  const FilterRun run = Print(PdfOf(Pages(1, 842, 1191)), {}, "*PageSize=A5\n");
  ASSERT_EQ(run.status, 0) << run.errors;
  const Rendering a5 = Render(run.output, "pgmraw");
  const Rendering whole = Render(Pages(1, 420, 595).replace(0, 0, ""), "pgmraw");
  ASSERT_EQ(a5.pages.size(), 1u);
  EXPECT_EQ(a5.pages[0].substr(0, 12), whole.pages[0].substr(0, 12)) << "not the size of A5";
  // The frame is there on all four sides: as many dark dots as in the document, by its scale.
  const Rendering a3 = Render(Pages(1, 842, 1191), "pgmraw");
  const auto dark = [](const std::string &picture) {
    return static_cast<double>(
               std::count_if(picture.begin() + 15, picture.end(),
                             [](char c) { return static_cast<unsigned char>(c) < 128; })) /
           static_cast<double>(picture.size());
  };
  EXPECT_NEAR(dark(a5.pages[0]), dark(a3.pages[0]), 0.03);
}

TEST(PdfJob, WordsForPagesArePagesASheetAndRanges) {
  const std::string pdf = PdfOf(Pages(8));
  EXPECT_EQ(Render(Print(pdf, "page-ranges=2-4").output).pages.size(), 3u);
  EXPECT_EQ(Render(Print(pdf, "number-up=4").output).pages.size(), 2u);
  EXPECT_EQ(Render(Print(pdf, "page-set=even").output).pages.size(), 4u);
}

TEST(PdfJob, RangesAreThoseOfTheDocumentOnSheetsToo) {
  const std::string pdf = PdfOf(Pages(8));
  const auto same = [&](const std::string &words, const std::string &def,
                        const std::string &chosen) {
    const Rendering sheets = Render(Print(pdf, words, def).output, "pgmraw");
    const Rendering expected = Render(Print(chosen, "number-up=2").output, "pgmraw");
    ASSERT_EQ(sheets.pages.size(), expected.pages.size()) << words;
    EXPECT_LT(Difference(sheets.pages.at(0), expected.pages.at(0)), kEdges) << words;
  };
  const std::string from_third = PdfOf(Pages(8, 595, 842, 3));
  same("page-ranges=3- number-up=2", {}, from_third);
  same("page-ranges=3-", "*Nup=2\n", from_third);
}

TEST(PdfJob, ASelectionOfNothingIsOneSentence) {
  const FilterRun run = Print(PdfOf(Pages(2)), "page-ranges=7-");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "kpxfilter: \"page-ranges=7-\" selects none of the document's pages\n");
  EXPECT_EQ(Print(PdfOf(Pages(2)), "page-ranges=x").status, 1);
}

TEST(PdfJob, TheSettingsPagesASheetCountWhereTheJobSaysNothing) {
  const std::string pdf = PdfOf(Pages(8));
  EXPECT_EQ(Render(Print(pdf, {}, "*Nup=2\n").output).pages.size(), 4u);
  EXPECT_EQ(Render(Print(pdf, "number-up=1", "*Nup=2\n").output).pages.size(), 4u);
  EXPECT_EQ(Render(Print(pdf, "number-up=4", "*Nup=2\n").output).pages.size(), 2u);
  const Rendering left = Render(Print(pdf, {}, "*Nup=4\n*NupOrder=Left\n").output, "pgmraw");
  const Rendering back = Render(Print(pdf, {}, "*Nup=4\n*NupOrder=Back\n").output, "pgmraw");
  EXPECT_GT(Difference(left.pages.at(0), back.pages.at(0)), 0.005);
}

TEST(PdfJob, ABookletIsPrintedOnBothSides) {
  const FilterRun run = Print(PdfOf(Pages(7)), {}, "*Booklet=1\n");
  ASSERT_EQ(run.status, 0) << run.errors;
  EXPECT_NE(run.output.find("%%BeginFeature: *Duplex DuplexTumble"), std::string::npos);
  EXPECT_EQ(Render(run.output).pages.size(), 4u);
}

TEST(PdfJob, WhatCannotBePrintedIsOneSentenceAndNothingForThePrinter) {
  const auto expect = [](const std::string &pdf, const std::string &words) {
    const FilterRun run = Print(pdf);
    EXPECT_EQ(run.status, 1) << words;
    EXPECT_EQ(run.output, "") << words;
    EXPECT_EQ(run.errors, "kpxfilter: " + words + "\n");
  };
  const std::string good = PdfOf(Pages(2));
  expect("%PDF-1.4\nnothing of it\n", "the PDF document is damaged and cannot be printed");
  expect(PdfOf(Pages(2), "-sOwnerPassword=o -sUserPassword=u -dEncryptionR=3 -dKeyLength=128"),
         "the PDF document is protected with a password: print it from the program that opens it");
  expect(
      "%PDF-1.4\n1 0 obj\n<</Type/Catalog/Pages 2 0 R>>\nendobj\n2 0 obj\n"
      "<</Type/Pages/Kids[]/Count 0>>\nendobj\ntrailer\n<</Root 1 0 R>>\n",
      "the PDF document has no pages to print");
}

TEST(PdfJob, APasswordThatOnlyTheOwnerNeedsDoesNotHinder) {
  const std::string pdf =
      PdfOf(Pages(2), "-sOwnerPassword=o -dEncryptionR=3 -dKeyLength=128 -dPermissions=-44");
  EXPECT_EQ(Render(Print(pdf).output).pages.size(), 2u);
}

TEST(PdfJob, OnOtherQueuesIsRefusedInWords) {
  FilterCall call;
  call.type = "text";
  call.ppd_file = kPpd;
  const FilterRun run = Filter(call, PdfOf(Pages(1)));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors,
            "kpxfilter: the file is a PDF document, but this queue prints only plain text\n");
}

}  // namespace
