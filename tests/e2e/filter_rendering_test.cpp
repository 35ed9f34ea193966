// What an interpreter makes of filtered jobs: the pages of the job itself, on the paper and in the
// number of copies that the settings ask for.
#include <gtest/gtest.h>

#include <sstream>

#include "filterrun.h"
#include "ghostscript.h"

namespace {

const std::string kOffice = std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd";

constexpr char kMark[] = "100 100 moveto 200 300 lineto 20 setlinewidth stroke\n";

FilterCall Call(const std::string &options = "") {
  FilterCall call;
  call.options = options;
  call.ppd_file = kOffice;
  return call;
}

// A document with `body` on its one page.
std::string Document(const std::string &body) {
  return "%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%BeginProlog\n%%EndProlog\n%%BeginSetup\n"
         "%%EndSetup\n%%Page: 1 1\n" +
         body + "showpage\n%%Trailer\n%%EOF\n";
}

void ExpectSamePages(const std::string &job) {
  const Rendering plain = Render(job);
  ASSERT_EQ(plain.status, 0) << plain.messages;
  const FilterRun run = Filter(Call(), job);
  ASSERT_EQ(run.status, 0) << run.errors;
  const Rendering filtered = Render(run.output);
  EXPECT_EQ(filtered.status, 0);
  EXPECT_EQ(filtered.messages, plain.messages);
  EXPECT_FALSE(plain.pages.empty());
  EXPECT_TRUE(filtered.pages == plain.pages);
}

// A document of three pages, written by Ghostscript itself.
std::string MadeDocument() {
  const TemporaryDirectory directory;
  const std::string command =
      "gs -q -dBATCH -dNOPAUSE -sDEVICE=ps2write -sPAPERSIZE=a4 -o " + directory.Path("out.ps") +
      " -c '" + kMark + "showpage 300 300 100 0 360 arc fill showpage 9 9 99 99 rectfill showpage'";
  EXPECT_EQ(std::system(command.c_str()), 0);
  return ContentOf(directory.Path("out.ps"));
}

TEST(RenderedJob, AConformingDocumentHasItsPages) { ExpectSamePages(MadeDocument()); }

TEST(RenderedJob, AJobThatDoesNotConformHasItsPages) {
  ExpectSamePages("%!\n" + std::string(kMark) + "showpage\nshowpage\n");
}

TEST(RenderedJob, AnEpsFileIsShownOnce) {
  const std::string head = "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 300 400\n%%EndComments\n";
  const Rendering page = Render("%!\n" + std::string(kMark) + "showpage\n");
  for (const char *end :
       {"", "showpage\n", "%%Trailer\n%%EOF\n", "showpage\n%%EOF\n", "showpage restore\n%%EOF\n"}) {
    const bool saves = std::string(end).find("restore") != std::string::npos;
    const Rendering filtered =
        Render(Filter(Call(), head + (saves ? "save\n" : "") + kMark + end).output);
    EXPECT_EQ(filtered.messages, "") << end;
    EXPECT_TRUE(filtered.pages == page.pages) << end << filtered.pages.size();
  }
}

TEST(RenderedJob, AnIncludedEpsFileIsDrawnOnce) {
  ExpectSamePages(
      Document("save /showpage {} def\n%%BeginDocument: a.eps\n"
               "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 300 400\n%%EndComments\n"
               "%%BeginSetup\n%%EndSetup\n%%Page: 1 1\n" +
               std::string(kMark) + "showpage\n%%EndDocument\nrestore\n"));
}

// A figure that draws, and then imports a picture whose own marks could be taken for the figure's.
TEST(RenderedJob, AFigureWithAnImportedPictureIsDrawnWhole) {
  const std::string picture =
      "%%BeginDocument: picture.eps\n%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 100 100\n"
      "%%EndComments\n%%BeginProlog\n%%EndProlog\n%%Page: 1 1\n0 0 100 100 rectfill\n%%EOF\n"
      "%%EndDocument\n";
  for (const char *prolog : {"", "%%BeginProlog\n/x 1 def\n%%EndProlog\n"}) {
    ExpectSamePages("%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 400 500\n%%EndComments\n" +
                    std::string(prolog) + "save\n50 50 translate\n" + kMark +
                    "gsave 100 300 translate\n" + picture + "grestore\n200 0 translate\n" + kMark +
                    "restore\nshowpage\n%%EOF\n");
  }
}

TEST(RenderedJob, ABinarySectionIsRead) {
  std::string image;
  for (int i = 0; i < 256; ++i) image += static_cast<char>(i);
  const std::string section =
      "16 16 8 [16 0 0 16 0 0] { currentfile s readstring pop } bind image\n" + image + "\n";
  ExpectSamePages(
      Document("/s 256 string def gsave 100 100 translate 300 300 scale\n"
               "%%BeginBinary: " +
               std::to_string(section.size()) + "\n" + section + "%%EndBinary\ngrestore\n"));
}

TEST(RenderedJob, AnErrorInAnOptionsCodeDoesNotHarmTheJob) {
  const TemporaryDirectory directory;
  std::string ppd = ContentOf(kOffice);
  const std::string good = "\"<</Duplex false>>setpagedevice\"";
  ppd.replace(ppd.find(good), good.size(), "\"1 2 3 nosuchoperator\"");
  FilterCall call = Call();
  call.ppd_file = directory.Write("broken.ppd", ppd);
  const std::string job = Document(kMark);
  const FilterRun run = Filter(call, job);
  ASSERT_NE(run.output.find("nosuchoperator"), std::string::npos);
  EXPECT_TRUE(Render(run.output).pages == Render(job).pages);
}

TEST(RenderedJob, CopiesAreMade) {
  EXPECT_EQ(Render(Filter(Call("*NrCopies=2"), MadeDocument()).output).pages.size(), 6u);
  EXPECT_EQ(Render(Filter(Call("*NrCopies=3"), "%!\nshowpage\n").output).pages.size(), 3u);
}

TEST(RenderedJob, CopiesAreMadeOfAJobWhosePrologNeverEnds) {
  for (const std::string begin : {"%%BeginProlog\n", "%%BeginProcSet: x\n"}) {
    const FilterRun run = Filter(Call("*NrCopies=2"), "%!PS-Adobe-3.0 EPSF-3.0\n%%EndComments\n" +
                                                          begin + "/x 1 def\nshowpage\n%%EOF\n");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(Render(run.output).pages.size(), 2u);
  }
}

TEST(RenderedJob, OptionsReachThePageDevice) {
  const std::string show =
      "%!\ncurrentpagedevice dup /PageSize get == /NumCopies get == showpage\n";
  EXPECT_EQ(Render(Filter(Call("*PageSize=Letter *NrCopies=2"), show).output).messages,
            "[612 792]\n2\n");
}

TEST(RenderedJob, ACustomPaperReachesThePageDevice) {
  const TemporaryDirectory directory;
  FilterCall call = Call();
  call.def_file =
      directory.Write("lp1.def", "*PageSize=Ticket\n*CustomPaperSize=Ticket''200''400\n");
  EXPECT_EQ(Render(Filter(call, "%!\ncurrentpagedevice /PageSize get ==\n").output).messages,
            "[200 400]\n");
}

TEST(RenderedText, ReadsAsWritten) {
  FilterCall call = Call();
  call.type = "text";
  const std::string text = "Grüße (\\) für 5 €\n  indented\n\nlast\n";
  const Rendering page = Render(Filter(call, text + "\fsecond page").output, "txtwrite");
  ASSERT_EQ(page.pages.size(), 2u) << page.messages;
  for (const char *part : {"Grüße (\\) für 5 €", "indented", "last"}) {
    EXPECT_NE(page.pages[0].find(part), std::string::npos) << page.pages[0];
  }
  EXPECT_NE(page.pages[1].find("second page"), std::string::npos) << page.pages[1];
}

TEST(RenderedText, IsInCourier) {
  FilterCall call = Call();
  call.type = "text";
  const std::string output = Filter(call, "x").output;
  EXPECT_NE(output.find("/F /Courier E Z makefont def"), std::string::npos);
}

TEST(RenderedText, IsInTheChosenFont) {
  FilterCall call = Call("*FontName=Times-BoldItalic *FontSize=18");
  call.type = "text";
  const Rendering page = Render(Filter(call, "Hello").output);
  const Rendering expected = Render(
      "%!\n/Times-BoldItalic findfont 18 scalefont setfont 36 788 moveto (Hello) show showpage\n");
  EXPECT_EQ(page.messages, "");
  EXPECT_FALSE(page.pages.empty());
  EXPECT_TRUE(page.pages == expected.pages);
}

class RenderedTextInFont : public testing::TestWithParam<const char *> {};

INSTANTIATE_TEST_SUITE_P(Fonts, RenderedTextInFont,
                         testing::Values("Courier", "Helvetica-Bold", "Bookman-Demi"));

// The box that the text of one page fills, in whole points.
struct TextBox {
  int left = 0, bottom = 0, right = 0, top = 0;
};

TextBox BoxOf(const std::string &job) {
  const Rendering page = Render(job, "bbox", 720);
  TextBox box;
  const size_t at = page.messages.find("%%BoundingBox: ");
  EXPECT_NE(at, std::string::npos) << page.messages;
  if (at == std::string::npos) return box;
  EXPECT_EQ(std::sscanf(page.messages.c_str() + at, "%%%%BoundingBox: %d %d %d %d", &box.left,
                        &box.bottom, &box.right, &box.top),
            4);
  return box;
}

TEST_P(RenderedTextInFont, WordsWithGlyphsByNameHoldTogether) {
  FilterCall call = Call(std::string("*FontName=") + GetParam());
  call.type = "text";
  const Rendering page = Render(Filter(call, "WWWüWWW Grüße\tnext column\n").output, "txtwrite");
  ASSERT_EQ(page.pages.size(), 1u) << page.messages;
  EXPECT_NE(page.pages[0].find("WWWüWWW Grüße"), std::string::npos) << page.pages[0];
  EXPECT_NE(page.pages[0].find("next column"), std::string::npos) << page.pages[0];
}

TEST_P(RenderedTextInFont, StaysInsideThePrintableArea) {
  FilterCall call = Call(std::string("*PageSize=Letter *FontName=") + GetParam());
  call.type = "text";
  std::string text;
  for (int i = 0; i < 50; ++i) text += std::string(200, 'W') + "\n";
  std::string mixed;
  for (int i = 0; i < 100; ++i) mixed += "Wü";
  const TextBox box = BoxOf(Filter(call, text + mixed + "\n").output);
  // A "W" is a hair wider than its column.
  EXPECT_GE(box.left, 17);
  EXPECT_GE(box.bottom, 36);
  EXPECT_LE(box.right, 595);
  EXPECT_LE(box.top, 756);
}

// The box of the text on page `page` (from 0) of a job whose other pages are empty.
TextBox BoxOfPage(const std::string &options, int page) {
  FilterCall call = Call(options);
  call.type = "text";
  std::string text(static_cast<size_t>(page), '\f');
  for (int i = 0; i < 64; ++i) text += "Page\n";
  return BoxOf(Filter(call, text).output);
}

TEST(RenderedText, EveryScriptOfAnInstalledFontReadsAsWritten) {
  FilterCall call = Call();
  call.type = "text";
  const Rendering page = Render(Filter(call, "Привет Ελλάδα Łódź → ∞ ┌─┐ €\n").output, "txtwrite");
  ASSERT_EQ(page.pages.size(), 1u) << page.messages;
  EXPECT_NE(page.pages[0].find("Привет Ελλάδα Łódź → ∞ ┌─┐ €"), std::string::npos) << page.pages[0];
}

TEST(RenderedText, EightyColumnsFitOnALine) {
  FilterCall call = Call("*PageSize=A4");
  call.type = "text";
  const std::string line(80, '0');
  for (const char *size : {"A4", "Letter"}) {
    call.options = "*PageSize=" + std::string(size);
    const Rendering page = Render(Filter(call, line + "\n").output, "txtwrite");
    ASSERT_EQ(page.pages.size(), 1u) << page.messages;
    EXPECT_NE(page.pages[0].find(line), std::string::npos) << size << page.pages[0];
  }
}

// The printers of the family can turn their pages.
TEST(RenderedText, LandscapeHasItsLinesAlongThePaper) {
  const TemporaryDirectory directory;
  std::string ppd = ContentOf(kOffice);
  ppd +=
      "*OpenUI *Orientation/Orientation: PickOne\n*DefaultOrientation: Portrait\n"
      "*OrderDependency: 10 JCLSetup *Orientation\n"
      "*Orientation Portrait/Portrait: \"\"\n*Orientation Landscape/Landscape: \"\"\n"
      "*Orientation RotLandscape/Rotated: \"\"\n*CloseUI: *Orientation\n";
  FilterCall call = Call();
  call.ppd_file = directory.Write("turning.ppd", ppd);
  call.type = "text";
  const auto box = [&](const std::string &options) {
    call.options = options;
    return BoxOf(Filter(call, std::string(100, 'H') + "\nH\n").output);
  };
  const TextBox left = box("*Orientation=Landscape");
  EXPECT_LT(left.right, 100) << "the first line stands at the left edge";
  EXPECT_LT(left.bottom, 60) << "and reads upwards";
  EXPECT_GT(left.top, 700);
  const TextBox right = box("*Orientation=RotLandscape");
  EXPECT_GT(right.left, 500);
  EXPECT_GT(right.top, 780);
  EXPECT_LT(right.bottom, 120);
  const TextBox two = box("*Orientation=Landscape *Nup=2");
  EXPECT_GT(two.bottom, 421) << "two lying pages stand upright above each other";
  EXPECT_GT(two.right, 400);
}

TEST(RenderedText, ProportionalFontsWrapBetweenWords) {
  FilterCall call = Call("*FontName=Helvetica");
  call.type = "text";
  std::string text;
  for (int i = 0; i < 40; ++i) text += "wordy ";
  const Rendering page = Render(Filter(call, text + "\n").output, "txtwrite");
  ASSERT_EQ(page.pages.size(), 1u) << page.messages;
  std::istringstream lines(page.pages[0]);
  size_t count = 0;
  for (std::string word; lines >> word; ++count) EXPECT_EQ(word, "wordy");
  EXPECT_EQ(count, 40u);
}

TEST(RenderedSheet, FourPagesStandInTheQuartersOfTheirOrder) {
  const TextBox first = BoxOfPage("*Nup=4 *NupOrder=Back", 0);
  EXPECT_GT(first.left, 297);
  EXPECT_GT(first.bottom, 421);
  const TextBox second = BoxOfPage("*Nup=4 *NupOrder=Back", 1);
  EXPECT_GT(second.left, 297);
  EXPECT_LT(second.top, 421);
  EXPECT_GT(second.bottom, 12);
  const TextBox third = BoxOfPage("*Nup=4 *NupOrder=Back", 2);
  EXPECT_LT(third.right, 297);
  EXPECT_GT(third.bottom, 421);
}

TEST(RenderedSheet, TwoPagesReadAcrossThePaper) {
  // The first lines stand at the paper's left edge, and each page begins at its lower end.
  const TextBox left = BoxOfPage("*Nup=2", 0);
  EXPECT_LT(left.top, 100);
  EXPECT_LT(left.left, 60);
  EXPECT_GT(left.right, 500);
  const TextBox right = BoxOfPage("*Nup=2", 1);
  EXPECT_GT(right.bottom, 421);
  EXPECT_LT(right.top, 521);
}

class RenderedSheets : public testing::TestWithParam<size_t> {};

INSTANTIATE_TEST_SUITE_P(Pages, RenderedSheets, testing::Values(1, 2, 4, 6, 9, 16));

TEST_P(RenderedSheets, HoldAllPages) {
  constexpr size_t kPages = 17;
  FilterCall call = Call("*Nup=" + std::to_string(GetParam()));
  call.type = "text";
  std::string text;
  for (size_t i = 0; i < kPages; ++i) text += "page" + std::to_string(100 + i) + "x\f";
  const Rendering sheets = Render(Filter(call, text).output, "txtwrite");
  EXPECT_EQ(sheets.messages, "");
  ASSERT_EQ(sheets.pages.size(), (kPages + GetParam() - 1) / GetParam());
  for (size_t i = 0; i < kPages; ++i) {
    const std::string &sheet = sheets.pages[i / GetParam()];
    EXPECT_NE(sheet.find("page" + std::to_string(100 + i) + "x"), std::string::npos) << sheet;
  }
}

TEST(RenderedSheet, ABookletFoldsIntoItsPages) {
  FilterCall call = Call("*Booklet=1");
  call.type = "text";
  const Rendering sides = Render(Filter(call, "one\ftwo\fthree\ffour\ffive\f").output, "txtwrite");
  ASSERT_EQ(sides.pages.size(), 4u) << sides.messages;
  const std::vector<std::vector<std::string>> expected = {
      {"one"}, {"two"}, {"three"}, {"four", "five"}};
  for (size_t i = 0; i < expected.size(); ++i) {
    for (const char *word : {"one", "two", "three", "four", "five"}) {
      const bool wanted = std::count(expected[i].begin(), expected[i].end(), word) > 0;
      EXPECT_EQ(sides.pages[i].find(word) != std::string::npos, wanted) << i << word;
    }
  }
}

}  // namespace
