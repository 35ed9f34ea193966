// The test page: what arrives at the printer, for each type of queue.
#include "changedfile.h"
#include "ghostscript.h"
#include "jobstest.h"
#include "keyboard.h"
#include "paths.h"
#include "printerjobs.h"

namespace {

constexpr char kModel[] = "Vek Norvel 4110ES";

class TestPage : public Jobs {
 protected:
  static void MakeQueue(const std::string &name, const std::string &type) {
    ASSERT_EQ(0, RunProgram({KPX_MAKEQUEUES, name + "=" + type + "=" + kModel}).status);
  }

  static void RemoveQueue(const std::string &name) { RunProgram({"/usr/lib/lpadmin", "-x", name}); }

  // What the printer gets of the page of the selected queue.
  std::string Printed(JobsApp &app, const std::string &queue) {
    app.WaitRow("QueuesClist", queue);
    app.Select("QueuesClist", queue);
    app.WaitUntil("Test page", [&] { return app.IsSensitive("TestPageButton"); });
    app.Click("TestPageButton");
    return jobs_.Next();
  }

  PrinterJobs jobs_;
};

// The words on the only page of a PostScript job.
std::string WordsOf(const std::string &job) {
  const Rendering rendering = Render(job, "txtwrite");
  EXPECT_EQ(0, rendering.status) << rendering.messages;
  EXPECT_EQ(1U, rendering.pages.size());
  return rendering.pages.empty() ? "" : rendering.pages[0];
}

void ExpectWord(const std::string &words, const std::string &word) {
  EXPECT_NE(std::string::npos, words.find(word)) << word << " is not among:\n" << words;
}

TEST_F(TestPage, OfAPostScriptQueueNamesItItsModelAndItsSettings) {
  MakeQueue("page-ps", "postscript");
  {
    JobsApp app;
    const std::string words = WordsOf(Printed(app, "page-ps"));
    for (const char *word : {"page-ps", kModel, "Paper size: A4", "Resolution: 600"}) {
      ExpectWord(words, word);
    }
    ExpectWord(words, CatalogueText("TESTPAGE_GREYS"));
    ExpectWord(words, CatalogueText("TESTPAGE_MARGINS"));
    app.WaitCell("JobsClist", CatalogueText("DEF_BTN_TESTPAGE_TITLE"), 5,
                 CatalogueText("JOB_PRINTED"));
    EXPECT_EQ("", app.Stderr());
  }
  RemoveQueue("page-ps");
}

TEST_F(TestPage, OfATextQueueIsText) {
  MakeQueue("page-text", "text");
  {
    JobsApp app;
    const std::string words = WordsOf(Printed(app, "page-text"));
    for (const char *word : {"page-text", kModel, "Paper size: A4"}) ExpectWord(words, word);
  }
  RemoveQueue("page-text");
}

TEST_F(TestPage, OfAPclQueueIsPcl) {
  MakeQueue("page-pcl", "pcl6");
  {
    JobsApp app;
    const std::string data = Printed(app, "page-pcl");
    ExpectWord(data, "@PJL ENTER LANGUAGE=PCL\n");
    for (const char *word : {"page-pcl", kModel, "Paper size: A4"}) ExpectWord(data, word);
    EXPECT_EQ(std::string::npos, data.find("%!PS"));
  }
  RemoveQueue("page-pcl");
}

// Nothing is added to raw data: the page is PostScript as it is, without settings.
TEST_F(TestPage, OfARawQueueIsPostScript) {
  MakeQueue("page-raw", "raw");
  {
    JobsApp app;
    const std::string data = Printed(app, "page-raw");
    EXPECT_TRUE(data.starts_with("%!PS-Adobe")) << data.substr(0, 80);
    const std::string words = WordsOf(data);
    for (const char *word : {"page-raw", kModel}) ExpectWord(words, word);
    EXPECT_EQ(std::string::npos, words.find(CatalogueText("TESTPAGE_SETTINGS")));
  }
  RemoveQueue("page-raw");
}

TEST_F(TestPage, IsPrintedByKeysOnSeveralQueues) {
  MakeQueue("page-a", "postscript");
  MakeQueue("page-b", "postscript");
  {
    JobsApp app;
    Keyboard keys(app);
    app.WaitRow("QueuesClist", "page-b");
    keys.GoTo(CatalogueText("DEF_LBL_QUEUES"), "QueuesClist");
    keys.Key("Down");
    keys.Key("shift+End");
    app.WaitUntil("Test page", [&] { return app.IsSensitive("TestPageButton"); });
    keys.Press(CatalogueText("DEF_BTN_TESTPAGE_TITLE"));
    const std::string words = WordsOf(jobs_.Next()) + WordsOf(jobs_.Next());
    ExpectWord(words, "page-a");
    ExpectWord(words, "page-b");
  }
  RemoveQueue("page-a");
  RemoveQueue("page-b");
}

TEST_F(TestPage, WithoutItsTemplateSaysSo) {
  MakeQueue("page-none", "postscript");
  {
    JobsApp app;
    const ChangedFile gone(kTestPageFile, std::nullopt);
    app.WaitRow("QueuesClist", "page-none");
    app.Select("QueuesClist", "page-none");
    app.Click("TestPageButton");
    app.WaitWindow("KPXErrorWarningDialog");
    EXPECT_EQ(CatalogueText("ERR_UNABLE_TO_READ_FILE", {kTestPageFile}) + "\n",
              app.Text("ErrorWarningText"));
  }
  RemoveQueue("page-none");
}

}  // namespace
