// An office program's document, as the printer receives it.
#include "applicationtest.h"
#include "observedjobs.h"

namespace {

using Office = Applications;

TEST_F(Office, ADocumentThatItExportsIsPrintedAsItIsAskedFor) {
  Describe();
  std::string text;
  for (int line = 1; line <= 150; ++line) text += "Line " + std::to_string(line) + "\n";
  const std::string source = files_.Write("words.txt", text);
  Run({"soffice", "-env:UserInstallation=file://" + files_.Path("profile"), "--headless",
       "--convert-to", "pdf", "--outdir", files_.Path("out"), source});
  const ObservedJob job = Observe({Printed({"-n", "2", "-o", "sides=two-sided-long-edge", "-o",
                                            "StapleLocation=DualPortrait", "-o", "media=A4",
                                            files_.Path("out/words.pdf")})})
                              .at(0);
  EXPECT_GE(job.pages, 3);
  EXPECT_EQ(job.paper, "595x842");
  EXPECT_EQ(job.sides, "long edge");
  EXPECT_EQ(job.copies, "2");
  EXPECT_EQ(job.finishing, "staple DualPortrait");
  EXPECT_FALSE(job.has_blank_page);
}

}  // namespace
