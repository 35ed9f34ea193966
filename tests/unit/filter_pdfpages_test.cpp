// Which PDF documents need no layout.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "converter.h"
#include "pdfpages.h"
#include "temporarydirectory.h"

using kpx::filter::Descriptor;
using kpx::filter::FillPaper;

namespace {

constexpr char kWhole[] = "/MediaBox[0 0 595 842]";

// Whether a document with those pages fills a sheet of A4. `more` goes into its catalogue.
bool Fills(const std::vector<std::string> &pages, const std::string &more = {}) {
  std::string text = "%PDF-1.4\n1 0 obj\n<</Type/Catalog/Pages 2 0 R" + more + ">>\nendobj\n";
  std::string kids;
  for (size_t i = 0; i < pages.size(); ++i) {
    const std::string number = std::to_string(i + 3);
    kids += number + " 0 R ";
    text += number + " 0 obj\n<</Type/Page/Parent 2 0 R" + pages[i] + ">>\nendobj\n";
  }
  text += "2 0 obj\n<</Type/Pages/Count " + std::to_string(pages.size()) + "/Kids[" + kids +
          "]>>\nendobj\ntrailer\n<</Root 1 0 R>>\n%%EOF\n";
  const TemporaryDirectory directory;
  const Descriptor file(open(directory.Write("document.pdf", text).c_str(), O_RDONLY | O_CLOEXEC));
  return FillPaper(file.Number(), {.width = 595, .length = 842});
}

TEST(PdfPages, OfThePapersSizeFillIt) {
  EXPECT_TRUE(Fills({kWhole}));
  EXPECT_TRUE(Fills({kWhole, kWhole, kWhole}));
  // What most programs take A4 for.
  EXPECT_TRUE(Fills({"/MediaBox[0 0 595.276 841.89]"}));
  EXPECT_TRUE(Fills({"/MediaBox[0 0 596 842]/CropBox[0 0 595 842]/Rotate 0"}));
}

TEST(PdfPages, AreLaidOutWhenOneDiffers) {
  for (const char *page :
       {"/MediaBox[0 0 612 792]", "/MediaBox[0 0 842 595]", "/MediaBox[0 0 595 842]/Rotate 90",
        "/MediaBox[0 0 595 842]/Rotate 180", "/MediaBox[10 0 605 842]", "/MediaBox[0 -9 595 833]",
        "/MediaBox[0 0 595 842]/CropBox[50 50 545 792]",
        "/MediaBox[0 0 595 842]/TrimBox[9 9 586 833]"}) {
    EXPECT_FALSE(Fills({page})) << page;
    EXPECT_FALSE(Fills({kWhole, kWhole, page})) << page;
  }
}

TEST(PdfPages, AreLaidOutWhereSomethingIsFilledIn) {
  EXPECT_FALSE(Fills({kWhole}, "/AcroForm<</Fields[]/NeedAppearances true>>"));
}

TEST(PdfPages, OfWhatIsNoDocumentFillNothing) {
  const TemporaryDirectory directory;
  const Descriptor file(open(directory.Write("text", "text\n").c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(FillPaper(file.Number(), {.width = 595, .length = 842}));
  EXPECT_FALSE(FillPaper(-1, {.width = 595, .length = 842}));
  EXPECT_FALSE(Fills({}));
}

}  // namespace
