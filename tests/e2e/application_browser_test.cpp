// A page that a browser prints by itself, as the printer receives it.
#include "applicationtest.h"
#include "observedjobs.h"
#include "printedwords.h"
#include "processgroup.h"

namespace {

using Browser = Applications;

TEST_F(Browser, APageIsPrintedAsTheQueueHasIt) {
  std::ofstream(kOptions) << "*Duplex=DuplexNoTumble\n*OptionFinisher=True\n";
  Describe();
  Run({"/usr/sbin/lpadmin", "-d", "lp1"});
  // Without margins the browser adds no lines of its own.
  const std::string page = files_.Write(
      "page.html",
      "<style>@page { margin: 0 } body { margin: 0 }</style><body onload=\"print()\">"
      "<p style=\"position: absolute; left: 216pt; top: 288pt; margin: 0\">Browser</p>");
  const std::string said = files_.Path("said");
  // To the default queue, without its dialog. Root's browser has no sandbox of its own.
  const ProcessGroup browser(
      {"chromium", "--kiosk-printing", "--no-sandbox", "--no-first-run", "--disable-gpu",
       "--user-data-dir=" + files_.Path("profile"), "file://" + page},
      said);
  const std::optional<std::string> job = printed_.Next();
  ASSERT_TRUE(job) << queue_.State() << ContentOf(said);
  const ObservedJob observed = Observe({*job}).at(0);
  EXPECT_EQ(observed.pages, 1);
  EXPECT_EQ(observed.paper, "595x842");
  EXPECT_EQ(observed.sides, "long edge");
  EXPECT_EQ(observed.copies, "1 collated");
  EXPECT_EQ(observed.finishing, "none");
  // Its fonts reach the printer without the names of letters: the word is seen by its place.
  const PrintedPage printed = PrintedPagesOf({*job}).at(0).at(0);
  ASSERT_EQ(printed.words.size(), 1u);
  EXPECT_EQ(printed.words[0].text.size(), std::string("Browser").size());
  EXPECT_NEAR(printed.words[0].left, 216, 3);
  EXPECT_NEAR(printed.words[0].top, 288, 6);
}

}  // namespace
