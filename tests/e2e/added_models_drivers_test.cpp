// Models whose printers need a driver: jobs of every kind come out as the driver's data. KPX_LONG
// has the drivers of packages-long.txt too.
#include <gtest/gtest.h>

#include "adminsession.h"
#include "models.h"
#include "networkprinter.h"
#include "privateworld.h"

namespace {

constexpr char kQueue[] = "driven";
constexpr int kRawPort = 9100;
constexpr char kPage[] =
    "%!PS\n20 20 40 40 rectfill /Helvetica 72 selectfont 72 400 moveto (Page) show showpage\n";
constexpr char kBlankPage[] = "%!PS\nshowpage\n";

// A model of CUPS's, added and gone with this.
class CupsModel {
 public:
  explicit CupsModel(const std::string &cups_name) {
    const CommandResult added = Kpxctl({"model", "add", "--from-cups", cups_name, "--json"});
    name_ = ValueIn(added.output, "name");
    if (added.status != 0) throw std::runtime_error(cups_name + ": " + added.output);
  }
  ~CupsModel() { Kpxctl({"model", "remove", name_}); }
  CupsModel(const CupsModel &) = delete;
  CupsModel &operator=(const CupsModel &) = delete;
  const std::string &name() const { return name_; }

 private:
  std::string name_;
};

class Drivers : public testing::Test {
 protected:
  Drivers() : printer_(kRawPort) {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
  }

  static void MakeQueue(const std::string &type, const std::string &printer) {
    LoadCatalogues();
    LoadQueues(nullptr);
    ASSERT_TRUE(AddQueueToSession(kQueue, type, printer, "127.0.0.1"));
    ASSERT_EQ(SaveSession(), 0u);
  }
  static void DeleteQueue() {
    LoadCatalogues();
    LoadQueues(nullptr);
    DeleteQueueInSession(kQueue);
    ASSERT_EQ(SaveSession(), 0u);
  }
  static void Send(const std::string &document, const std::vector<std::string> &words) {
    std::vector<std::string> command = {"/usr/bin/lp", "-d", kQueue};
    command.insert(command.end(), words.begin(), words.end());
    const CommandResult lp = RunProgram(command, document);
    ASSERT_EQ(lp.status, 0) << lp.output;
  }
  std::string Printed(const std::string &document, const std::vector<std::string> &words = {}) {
    Send(document, words);
    return printer_.Next();
  }

  NetworkPrinter printer_;
};

std::string PdfOf(const std::string &postscript) {
  const TemporaryDirectory directory;
  const std::string from = directory.Write("page.ps", postscript), to = directory.Path("page.pdf");
  const CommandResult run =
      RunProgram({"gs", "-q", "-dSAFER", "-sDEVICE=pdfwrite", "-o", to, from});
  if (run.status != 0) throw std::runtime_error("gs: " + run.output);
  return ContentOf(to);
}

// A driver of CUPS's own, whose PCL shows what came: the resolution, the copies, the pages.
constexpr char kLaserJet[] = "drv:///sample.drv/laserjet.ppd";
constexpr char kReset[] = "\x1B\x45";

// Each page says how often it is printed.
int PagesOfPcl(const std::string &data, int copies = 1) {
  return CountOf(data, "\x1B&l" + std::to_string(copies) + "X");
}

TEST_F(Drivers, MakeTheDataOfPostScriptPdfAndTextJobs) {
  const CupsModel model(kLaserJet);
  MakeQueue("postscript", model.name());
  const std::string blank = Printed(kBlankPage);
  EXPECT_TRUE(blank.starts_with(kReset)) << blank.substr(0, 200);
  EXPECT_EQ(PagesOfPcl(blank), 1);
  const std::string page = Printed(kPage);
  EXPECT_TRUE(page.starts_with(kReset)) << page.substr(0, 200);
  EXPECT_GT(page.size(), blank.size());
  EXPECT_EQ(PagesOfPcl(page), 1);
  const std::string pdf = Printed(PdfOf(std::string(kPage) + kPage));
  EXPECT_TRUE(pdf.starts_with(kReset)) << pdf.substr(0, 200);
  EXPECT_EQ(PagesOfPcl(pdf), 2);
  EXPECT_GT(pdf.size(), page.size());
  DeleteQueue();
  MakeQueue("text", model.name());
  const std::string text = Printed("A line of text\n");
  EXPECT_TRUE(text.starts_with(kReset)) << text.substr(0, 200);
  EXPECT_GT(text.size(), blank.size());
  DeleteQueue();
}

TEST_F(Drivers, AreToldTheChoices) {
  const CupsModel model(kLaserJet);
  MakeQueue("postscript", model.name());
  const std::string resolution = "\x1B*t", duplex = "\x1B&l1S";
  const std::string usual = Printed(kPage);
  EXPECT_NE(usual.find(resolution + "300R"), std::string::npos);
  EXPECT_EQ(usual.find(duplex), std::string::npos);
  const std::string chosen =
      Printed(kPage, {"-o", "*Resolution=600dpi", "-o", "*Duplex=DuplexNoTumble"});
  EXPECT_NE(chosen.find(resolution + "600R"), std::string::npos);
  EXPECT_NE(chosen.find(duplex), std::string::npos);
  EXPECT_EQ(PagesOfPcl(Printed(kPage, {"-n", "3"}), 3), 1);
  EXPECT_EQ(PagesOfPcl(Printed(PdfOf(kPage), {"-n", "3"}), 3), 1);
  DeleteQueue();
}

TEST_F(Drivers, ThatFailHoldTheJobWithTheReason) {
  const CupsModel model(kLaserJet);
  MakeQueue("postscript", model.name());
  SchedulerLog log;
  Send("%!PS\nthere is no such operator\n", {});
  log.WaitFor("driver failed: No pages were found.; the job is held");
  printer_.Next();  // a reset
  DeleteQueue();
  MakeQueue("pcl6", model.name());
  Send("\x1B\x45 text\n", {});
  log.WaitFor("does not take PCL data");
  EXPECT_FALSE(printer_.HasMore());
  DeleteQueue();
}

// Of the packages that every installation has; those of packages-long.txt.
constexpr const char *kNames[] = {"drv:///sample.drv/epson9.ppd", "drv:///sample.drv/zebraep1.ppd"};
constexpr const char *kLongNames[] = {"drv:///brlaser.drv/br2270dw.ppd",
                                      "drv:///splix-samsung.drv/ml1610.ppd",
                                      "drv:///c2esp.drv/KESP9.ppd",
                                      "dymo:0/cups/model/lw450.ppd",
                                      "ptouch:0/ppd/ptouch-driver/Brother-PT-1500PC-ptouch-pt.ppd",
                                      "pxljr:0/ppd/pxljr/HP-Color_LaserJet_3500-pxljr.ppd",
                                      "foo2zjs:0/ppd/foo2zjs/HP-LaserJet_1020.ppd"};

TEST_F(Drivers, OfManyKindsPrint) {
  std::vector<std::string> names(std::begin(kNames), std::end(kNames));
  if (std::getenv("KPX_LONG") != nullptr) {
    names.insert(names.end(), std::begin(kLongNames), std::end(kLongNames));
  }
  for (const std::string &name : names) {
    const CupsModel model(name);
    MakeQueue("postscript", model.name());
    const std::string blank = Printed(kBlankPage), page = Printed(kPage);
    EXPECT_GT(blank.size(), 4u) << name;
    EXPECT_NE(page, blank) << name;
    DeleteQueue();
    std::printf("%s: %zu bytes, %zu for a blank page\n", name.c_str(), page.size(), blank.size());
  }
}

}  // namespace
