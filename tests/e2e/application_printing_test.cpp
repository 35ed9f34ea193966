// What applications ask CUPS for, as the printer receives it.
#include <gtest/gtest.h>

#include "adminsession.h"
#include "applicationtest.h"
#include "filterjob.h"
#include "ghostscript.h"

namespace {

TEST_F(Applications, AreShownTheOptionsOfTheQueue) {
  Describe();
  const std::string list = RunProgram({"lpoptions", "-p", "lp1", "-l"}).output;
  EXPECT_NE(list.find("Duplex/Two-sided printing: *None DuplexNoTumble DuplexTumble"),
            std::string::npos)
      << list;
  EXPECT_NE(list.find("OptionFinisher/Finisher: False *True"), std::string::npos) << list;
  std::ofstream(kOptions) << "*Duplex=DuplexTumble\n*CustomPaperSize=Flyer''400''600\n";
  Run({kDescriptions});
  const std::string anew = RunProgram({"lpoptions", "-p", "lp1", "-l"}).output;
  EXPECT_NE(anew.find("None DuplexNoTumble *DuplexTumble"), std::string::npos) << anew;
  EXPECT_NE(anew.find(" Flyer "), std::string::npos) << anew;
}

// The twelve options of lp that are asked for most.
struct Asked {
  const char *option;
  std::vector<const char *> received;
  size_t pages = 5;
};

TEST_F(Applications, WhatLpAsksForReachesThePrinter) {
  Describe();
  const std::vector<Asked> table = {
      {"sides=two-sided-long-edge", {"*Duplex DuplexNoTumble\n"}},
      {"Duplex=DuplexTumble", {"*Duplex DuplexTumble\n"}},
      {"media=A3", {"*PageSize A3\n"}},
      {"PageSize=Letter", {"*PageSize Letter\n"}},
      {"PageSize=Custom.400x600", {"*CustomPageSize True\n400\n600\n0\n"}},
      {"InputSlot=Tray2", {"*InputSlot Tray2\n"}},
      {"MediaType=Thick", {"*MediaType Thick\n"}},
      {"output-bin=finisher-tray", {"*OutputBin FinisherTray\n"}},
      {"finishings=20", {"*StapleLocation SinglePortrait\n"}},
      {"print-quality=5", {"@PJL SET RET=DARK\n"}},
      {"Collate=True", {"*Collate True\n"}},
      {"page-ranges=2-3", {"*Duplex None\n"}, 2},
      {"number-up=4", {"*PageSize A4\n"}, 2}};
  // Each job of the table by itself, rendered.
  for (const Asked &asked : table) {
    const std::string job = Printed({"-o", asked.option, pdf_});
    for (const char *code : asked.received) {
      EXPECT_NE(job.find(code), std::string::npos) << asked.option << " lacks " << code;
    }
    const Rendering rendering = Render(job);
    EXPECT_EQ(rendering.pages.size(), asked.pages) << asked.option << rendering.messages;
  }
  EXPECT_NE(Printed({"-n", "3", pdf_}).find("<</NumCopies 3>>"), std::string::npos);
}

TEST_F(Applications, WhatAnIppClientAsksForReachesThePrinter) {
  Describe();
  const std::vector<Asked> table = {
      {"keyword media iso_a3_297x420mm", {"*PageSize A3\n"}},
      {"collection media-col { MEMBER collection media-size { MEMBER integer x-dimension 14800 "
       "MEMBER integer y-dimension 21000 } MEMBER keyword media-source tray-2 "
       "MEMBER keyword media-type cardstock }",
       {"*PageSize A5\n", "*InputSlot Tray2\n", "*MediaType CardStock\n"}},
      {"keyword sides two-sided-long-edge", {"*Duplex DuplexNoTumble\n"}},
      {"integer copies 3", {"<</NumCopies 3>>"}},
      {"keyword output-bin finisher-tray", {"*OutputBin FinisherTray\n"}},
      {"enum print-quality 3", {"@PJL SET ECONOMODE=ON\n"}},
      {"enum print-quality 5", {"@PJL SET RET=DARK\n"}},
      {"enum finishings 28", {"*StapleLocation DualPortrait\n"}},
      {"keyword multiple-document-handling separate-documents-collated-copies",
       {"*Collate True\n"}}};
  for (const Asked &asked : table) {
    PrintByIpp(std::string("ATTR ") + asked.option, pdf_);
    const std::optional<std::string> job = printed_.Next();
    ASSERT_TRUE(job) << asked.option << queue_.State();
    for (const char *code : asked.received) {
      EXPECT_NE(job->find(code), std::string::npos) << asked.option << " lacks " << code;
    }
  }
  // The page is turned, in what way is pdftopdf's.
  std::vector<std::string> pages;
  for (const char *orientation : {"3", "4", "6"}) {
    PrintByIpp(std::string("ATTR enum orientation-requested ") + orientation, pdf_);
    const Rendering rendering = Render(printed_.Next().value_or(""), "pgmraw", 18);
    ASSERT_EQ(rendering.pages.size(), 5u) << orientation << rendering.messages;
    pages.push_back(rendering.pages[0]);
  }
  EXPECT_TRUE(pages[0] != pages[1] && pages[0] != pages[2]);
}

TEST_F(Applications, JobsOfThePrintToolAreTheSameAsWithoutDescription) {
  std::vector<std::string> jobs[2];
  const auto print = [&](std::vector<std::string> *into) {
    for (const std::string &file : {ps_, files_.Write("pcl.ps",
                                                      "\033%-12345X@PJL ENTER "
                                                      "LANGUAGE=PCL\n\033E data \033E")}) {
      into->push_back(Printed({"-t", "title", "-o", "*Duplex=DuplexTumble *NrCopies=2", file}));
    }
    into->push_back(Printed({"-t", "title", "-n", "2", ps_, ps_}));
  };
  queue_.Append(Block("postscript"));
  print(&jobs[0]);
  Run({kDescriptions});
  ASSERT_NE(RunProgram({"lpoptions", "-p", "lp1", "-l"}).output, "");
  print(&jobs[1]);
  EXPECT_EQ(jobs[0], jobs[1]);
}

TEST_F(Applications, TextJobsOfThePrintToolAreTheSameToo) {
  queue_.Append(Block("text"));
  const std::string script = files_.Write("a.sh", "#!/bin/sh\necho text\n");
  const std::string source = files_.Write("a.c", "int main() { return 0; }\n");
  const std::string page = files_.Write("a.html", "<html><body>text</body></html>\n");
  std::vector<std::string> jobs[2];
  for (auto &into : jobs) {
    for (const std::string &file : {script, source, page}) {
      into.push_back(Printed({"-t", "title", "-o", "*Nup=2", file}));
    }
    Run({kDescriptions});
  }
  EXPECT_EQ(jobs[0], jobs[1]);
}

TEST_F(Applications, FilesOfSeveralKindsInOneJobComeInOrderAndOnce) {
  Describe();
  const std::string job = Printed({ps_, png_, pdf_, ps_});
  size_t at = 0;
  std::vector<size_t> pages;
  for (size_t next = 0; at != std::string::npos; at = next) {
    next = job.find("@PJL JOB", at + 1);
    const std::string document = job.substr(at, next - at);
    if (document.find("ENTER LANGUAGE") == std::string::npos) continue;
    pages.push_back(Render("\033%-12345X" + document).pages.size());
  }
  EXPECT_EQ(pages, (std::vector<size_t>{5, 1, 5, 5}));
}

TEST_F(Applications, APictureFillsAPage) {
  Describe();
  const Rendering rendering = Render(Printed({"-o", "media=A5", png_}), "pgmraw");
  ASSERT_EQ(rendering.pages.size(), 1u);
  EXPECT_NE(rendering.pages[0].find('\0'), std::string::npos) << "nothing black on it";
}

TEST_F(Applications, AWordThatNobodyKnowsIsAWarningAndTheJobIsPrinted) {
  Describe();
  SchedulerLog log;
  EXPECT_EQ(Render(Printed({"-o", "NoSuchThing=7", pdf_})).pages.size(), 5u);
  log.WaitFor("NoSuchThing\\\" is not known for this printer");
  EXPECT_EQ(log.Text().find("NoSuchThing=7\\\""), std::string::npos);
}

TEST_F(Applications, ADocumentThatCannotBeReadIsHeldAndSaysWhy) {
  Describe();
  SchedulerLog log;
  const std::string job = queue_.Print({files_.Write("bad.pdf", "%PDF-1.4\nno document\n")});
  log.WaitFor("Backend returned status 3 (hold job)");
  EXPECT_TRUE(queue_.Keeps(job));
  EXPECT_NE(queue_.State().find("the PDF document is damaged and cannot be printed"),
            std::string::npos)
      << queue_.State();
}

// A converter that tries to reach something, and fails when it does; else it does its work.
std::string Reaching(const std::string &address, const std::string &work) {
  return "#!/bin/sh\nif socat -u /dev/null " + address + " 2>/dev/null; then exit 1; fi\n" + work;
}

TEST_F(Applications, TheProgramsThatConvertADocumentReachNothing) {
  Describe();
  const std::pair<const char *, const char *> converters[] = {
      {"/usr/lib/cups/filter/pdftopdf", "cat\n"},
      {"/usr/bin/pdftops", "printf '%%!PS\\nshowpage\\n'\n"}};
  for (const auto &[program, work] : converters) {
    for (const char *address : {"TCP:127.0.0.1:2501", "UNIX-CONNECT:/run/cups/cups.sock"}) {
      const ChangedFile changed(program, Reaching(address, work));
      EXPECT_EQ(RunProgram({program}).status, 1) << address << " is not there";
      const std::string job = queue_.PrintAndWait({pdf_});
      EXPECT_FALSE(queue_.Keeps(job)) << program << " reached " << address << queue_.State();
    }
  }
}

TEST_F(Applications, JobsThatWaitWhileAnOlderQueueGetsItsOptionsArePrinted) {
  queue_.Append(Block("postscript"));
  const std::string one = queue_.Print({"-H", "hold", pdf_});
  const std::string several = queue_.Print({"-H", "hold", ps_, pdf_});
  Run({kDescriptions});
  for (const std::string &job : {one, several}) {
    Run({"lp", "-i", "lp1-" + job, "-H", "resume"});
    const std::optional<std::string> printed = printed_.Next();
    ASSERT_TRUE(printed) << queue_.State();
    EXPECT_EQ(Render(*printed).pages.size(), 5u);
    EXPECT_EQ(CountOf(*printed, "@PJL EOJ\n"), job == one ? 1u : 2u);
  }
}

TEST_F(Applications, CupsOwnTestPageIsPrinted) {
  Describe();
  const std::string page = "/usr/share/cups/data/default-testpage.pdf";
  const Rendering rendering = Render(Printed({"-t", "Test Page", page}), "pgmraw");
  ASSERT_EQ(rendering.pages.size(), 1u) << rendering.messages;
  EXPECT_NE(rendering.pages[0].find('\0'), std::string::npos) << "nothing black on it";
}

TEST_F(Applications, AGtkProgramPrintsWithTheOptionsOfTheQueue) {
  Describe();
  Run({KPX_GTKPRINT, "lp1", "3", "cups-Duplex=DuplexNoTumble", "cups-StapleLocation=SinglePortrait",
       "n-copies=2"});
  const std::optional<std::string> job = printed_.Next();
  ASSERT_TRUE(job) << queue_.State();
  for (const char *code : {"*Duplex DuplexNoTumble\n", "*StapleLocation SinglePortrait\n",
                           "<</NumCopies 2>>setpagedevice"}) {
    EXPECT_NE(job->find(code), std::string::npos) << code;
  }
  const Rendering rendering = Render(*job);
  EXPECT_EQ(rendering.pages.size(), 6u) << "not three pages twice: " << rendering.messages;
}

TEST_F(Applications, TheDialogOfAGtkProgramShowsTheOptionsAndWhichOfThemConflict) {
  Describe();
  // GTK and the session's bus have much to say.
  const std::string words = files_.Path("words");
  const CommandResult run = RunProgram(
      {"sh", "-c",
       "exec env -u NO_AT_BRIDGE -u DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR=" + files_.Path() +
           " dbus-run-session -- " KPX_PRINTDIALOG " 'Stapling?' 'no conflict'"
           " 'Output tray=Finisher tray' 'Stapling=One staple, portrait'"
           " 'Paper type=Transparencies' conflict 'Paper type=Recycled' 'no conflict'"
           " 'Two-sided=Short Edge (Flip)' Print -- " KPX_GTKPRINT " --dialog lp1 3 2>" +
           words});
  ASSERT_EQ(run.status, 0) << ContentOf(words);
  EXPECT_TRUE(
      run.output.ends_with("Off\nOne staple, portrait\nOne staple, landscape\n"
                           "Two staples, portrait\nTwo staples, landscape\n"))
      << run.output;
  const std::string job = printed_.Next().value_or("");
  for (const char *code : {"*Duplex DuplexTumble\n", "*StapleLocation SinglePortrait\n",
                           "*OutputBin FinisherTray\n", "*MediaType Recycled\n"}) {
    EXPECT_NE(job.find(code), std::string::npos) << code;
  }
  EXPECT_EQ(Render(job).pages.size(), 3u);
}

TEST_F(Applications, AQueueWithoutDescriptionPrintsAndSaysSo) {
  queue_.Append(Block("postscript"));
  const ChangedFile filter("/opt/orlan/data/nls/enu/ppds/vek41201.ppd", "not a PPD file\n");
  const CommandResult run = RunProgram({kDescriptions});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.output.find("the queue \"lp1\" prints, but print dialogs do not show its options"),
            std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("\nlp1\n"), std::string::npos) << run.output;
}

TEST_F(Applications, RawQueuesHaveNoOptionsToShow) {
  Describe("raw");
  EXPECT_EQ(RunProgram({"lpoptions", "-p", "lp1", "-l"}).output.find("Duplex"), std::string::npos);
}

TEST_F(Applications, QueuesOfOneModelAreShownTheirOwnSettings) {
  queue_.Append(Block("postscript"));
  const TestQueue other("lp2"), text("lp3"), alike("lp4");
  other.Append(Block("postscript"));
  text.Append(Block("text"));
  alike.Append(Block("postscript"));
  const std::string data = "/opt/orlan/data/";
  const ChangedFile settings(data + "lp2.def", "*Duplex=DuplexTumble\n");
  const ChangedFile of_text(data + "lp3.def", ContentOf(kOptions));
  const ChangedFile of_alike(data + "lp4.def", ContentOf(kOptions));
  Run({kDescriptions});
  const auto duplex = [](const char *queue) {
    const std::string list = RunProgram({"lpoptions", "-p", queue, "-l"}).output;
    const size_t at = std::min(list.find("Duplex/"), list.size());
    return list.substr(at, list.find('\n', at) - at);
  };
  const std::string none = "Duplex/Two-sided printing: *None DuplexNoTumble DuplexTumble";
  EXPECT_EQ(duplex("lp1"), none);
  EXPECT_EQ(duplex("lp2"), "Duplex/Two-sided printing: None DuplexNoTumble *DuplexTumble");
  EXPECT_EQ(duplex("lp4"), none);
  const auto description = [](const char *queue) {
    return ContentOf(std::string("/etc/cups/ppd/") + queue + ".ppd");
  };
  EXPECT_EQ(description("lp1"), description("lp4"));
  EXPECT_EQ(description("lp3").find("application/vnd.cups-pdf"), std::string::npos)
      << "a queue for text takes no PDF documents";
}

TEST_F(Applications, ASecondRunChangesNothing) {
  Describe();
  const auto before = std::filesystem::last_write_time("/etc/cups/ppd/lp1.ppd");
  SchedulerLog log;
  Run({kDescriptions});
  EXPECT_EQ(log.Text().find("CUPS-Add-Modify-Printer"), std::string::npos);
  EXPECT_EQ(std::filesystem::last_write_time("/etc/cups/ppd/lp1.ppd"), before);
}

TEST_F(Applications, ANewVersionMakesTheDescriptionsAnew) {
  Describe();
  const std::string path = "/opt/orlan/data/nls/enu/ppds/vek41201.ppd";
  std::string model = ContentOf(path);
  const std::string text = "Two-sided printing";
  ASSERT_NE(model.find(text), std::string::npos);
  const ChangedFile changed(path, model.replace(model.find(text), text.size(), "Both sides"));
  Run({kDescriptions, "-a"});
  const std::string list = RunProgram({"lpoptions", "-p", "lp1", "-l"}).output;
  EXPECT_NE(list.find("Duplex/Both sides:"), std::string::npos) << list;
}

// A save of KPXadmin, by the functions of its core.
class Saves : public testing::Test {
 protected:
  Saves() {
    LoadCatalogues();
    const Owned<CList> messages = CreateList();
    LoadQueues(messages.get());
  }
  ~Saves() override {
    DeleteQueueInSession("dialogs");
    SaveSession();
  }
};

TEST_F(Saves, GivePrintDialogsTheOptionsOfTheQueues) {
  ASSERT_TRUE(AddQueueToSession("dialogs", "postscript", "Vek Norvel 4120ES", "127.0.0.1"));
  EXPECT_EQ(SaveSession(), 0u);
  const std::string list = RunProgram({"lpoptions", "-p", "dialogs", "-l"}).output;
  EXPECT_NE(list.find("Duplex/Two-sided printing:"), std::string::npos) << list;
}

TEST_F(Saves, GiveQueuesOfAnOlderVersionTheirOptionsWhileJobsWait) {
  ASSERT_TRUE(AddQueueToSession("dialogs", "postscript", "Vek Norvel 4120ES", "127.0.0.1"));
  EXPECT_EQ(SaveSession(), 0u);
  // As the bridge made them before print dialogs knew their options.
  const std::string raw =
      "/usr/sbin/lpadmin -x dialogs && /usr/sbin/lpadmin -p dialogs -E -v kpxlp:/interface";
  ASSERT_EQ(RunProgram({"sh", "-c", raw}).status, 0);
  const auto options = [] { return RunProgram({"lpoptions", "-p", "dialogs", "-l"}).output; };
  ASSERT_EQ(options().find("Duplex"), std::string::npos) << options();
  const std::string held = RunProgram({"lp", "-d", "dialogs", "-H", "hold"}, Pages(2)).output;
  ASSERT_TRUE(held.starts_with("request id is dialogs-")) << held;
  EXPECT_EQ(SaveSession(), 0u);
  EXPECT_NE(options().find("Duplex/Two-sided printing:"), std::string::npos) << options();
  PrintedJobs printed;
  const std::string job = held.substr(14, held.find(' ', 14) - 14);
  ASSERT_EQ(RunProgram({"lp", "-i", job, "-H", "resume"}).status, 0);
  EXPECT_EQ(Render(printed.Next().value_or("")).pages.size(), 2u);
}

TEST_F(Saves, SayWhichQueueShowsNoOptions) {
  const ChangedFile model("/opt/orlan/data/nls/enu/ppds/vek41051.ppd", "not a PPD file\n");
  ASSERT_TRUE(AddQueueToSession("dialogs", "postscript", "Vek Norvel 4105", "127.0.0.1"));
  EXPECT_EQ(SaveSession(), 1u);
  EXPECT_TRUE(std::filesystem::exists(std::string(kBridgeInterfaces) + "/dialogs"));
}

}  // namespace
