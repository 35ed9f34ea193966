// Job control around the data, and the PCL jobs that have nothing else.
#include <gtest/gtest.h>

#include "filterjob.h"
#include "pcljob.h"
#include "postscript.h"
#include "temporarydirectory.h"

namespace {

constexpr char kUelText[] = "\033%-12345X";

class JobControlText : public testing::Test {
 protected:
  std::string Header(const JobIdentity &identity = {"Title", "Event", "anna"}) const {
    return JobControlHeader(settings_, identity, "", "POSTSCRIPT");
  }
  void Set(const std::vector<KeyValue> &settings) { settings_.Apply(settings); }

  PpdModel model_ = TestPpd("office.ppd");
  JobSettings settings_{model_};
};

TEST_F(JobControlText, NamesJobAndOwnerThenTheOptionsInTheirOrder) {
  Set({{"*EmailNotification", "JobCompleted"}, {"*EmailAddress", "a@b.cd"}});
  EXPECT_EQ(Header(), std::string(kUelText) +
                          "@PJL JOB\n@PJL SET JOBNAME=\"Title\"\n@PJL SET USERNAME=\"anna\"\n"
                          "@PJL SET EMAILADDRESS=\"a@b.cd\"\n@PJL SET EMAILSUBJECT=\"Event\"\n"
                          "@PJL SET EMAILNOTIFY=COMPLETED\n@PJL SET DELIVERY=PRINT\n"
                          "@PJL ENTER LANGUAGE = POSTSCRIPT \n");
}

TEST_F(JobControlText, TheQueuesOwnNamesWin) {
  Set({{"*JobName", "Fixed"}, {"*UserName", "Office"}});
  EXPECT_NE(Header().find("JOBNAME=\"Fixed\"\n@PJL SET USERNAME=\"Office\"\n"), std::string::npos);
}

TEST_F(JobControlText, UseAppSettingMeansTheJobsTitle) {
  Set({{"*JobName", "UseAppSetting"}});
  EXPECT_NE(Header().find("JOBNAME=\"Title\""), std::string::npos);
}

TEST_F(JobControlText, ThePinGoesOnlyWithADeliveryThatAsksForIt) {
  Set({{"*DeliveryPIN", "4711"}});
  EXPECT_EQ(Header().find("4711"), std::string::npos);
  Set({{"*Delivery", "HoldJobUntilYouEnterPIN"}});
  EXPECT_NE(Header().find("@PJL SET DELIVERYPIN=\"4711\"\n"), std::string::npos);
}

TEST_F(JobControlText, APinThatIsNoneIsNotSent) {
  Set({{"*Delivery", "HoldJobUntilYouEnterPIN"}, {"*DeliveryPIN", "47\"1"}});
  EXPECT_EQ(Header().find("PIN="), std::string::npos);
}

TEST_F(JobControlText, ADeliveryThatWaitsForAPinNeedsOneOfFourDigits) {
  constexpr char kProblem[] =
      "the delivery \"Hold\" needs a PIN of four digits, which is missing: set one on the page "
      "Destination of the properties, or choose another delivery";
  Set({{"*DeliveryPIN", "12345"}});
  EXPECT_EQ(DeliveryProblem(settings_), "");
  Set({{"*Delivery", "HoldJobUntilYouEnterPIN"}});
  for (const char *pin : {"12345", "", "123", "12a4", " 1234", "１２３４"}) {
    Set({{"*DeliveryPIN", pin}});
    EXPECT_EQ(DeliveryProblem(settings_), kProblem) << pin;
  }
  Set({{"*DeliveryPIN", "0000"}});
  EXPECT_EQ(DeliveryProblem(settings_), "");
  Set({{"*DeliveryPIN", "1"}, {"*Delivery", "PrintImmediately"}});
  EXPECT_EQ(DeliveryProblem(settings_), "");
}

TEST_F(JobControlText, AnArchivedJobMayHaveNoPinButNoWrongOne) {
  for (PpdFeature &feature : model_.features) {
    if (feature.keyword != "Delivery") continue;
    feature.choices.push_back(
        {"ArchiveToDocumentServer", "Archive", "@PJL SET DELIVERY=ARCHIVE\n"});
  }
  Set({{"*Delivery", "ArchiveToDocumentServer"}});
  EXPECT_EQ(DeliveryProblem(settings_), "");
  Set({{"*DeliveryPIN", "471"}});
  EXPECT_NE(DeliveryProblem(settings_), "");
  EXPECT_EQ(DeliveryProblem(settings_).find("471"), std::string::npos);
}

TEST_F(JobControlText, ADeliveryWithAPinThatCannotBeSentIsNotLeftOut) {
  Set({{"*Delivery", "HoldJobUntilYouEnterPIN"}, {"*DeliveryPIN", "4711"}});
  model_.pjl = false;
  EXPECT_EQ(
      DeliveryProblem(settings_),
      "the delivery \"Hold\" cannot be asked for: the printer description has no job commands "
      "(PJL) to send the PIN with");
  Set({{"*Delivery", "ArchiveToDocumentServer"}});
  const std::string unknown =
      "the delivery \"ArchiveToDocumentServer\" cannot be asked for: the printer description has "
      "no "
      "delivery of that name";
  EXPECT_EQ(DeliveryProblem(settings_), unknown);
  Set({{"*Delivery", "PrintImmediately"}});
  EXPECT_EQ(DeliveryProblem(settings_), "");
  const PpdModel plain;
  JobSettings settings(plain);
  settings.Apply({{"*Delivery", "ArchiveToDocumentServer"}});
  EXPECT_EQ(DeliveryProblem(settings), unknown);
}

TEST_F(JobControlText, MailTextsGoOnlyWithANotification) {
  Set({{"*EmailAddress", "a@b.cd"}, {"*EmailMessage", "Hello"}});
  EXPECT_EQ(Header().find("EMAIL"), std::string::npos);
}

TEST_F(JobControlText, TextsCannotBreakOutOfTheirQuotes) {
  const std::string header = Header({"a\"b\n@PJL RESET\033\r", "", "Jürgen"});
  EXPECT_NE(header.find("JOBNAME=\"a'b@PJL RESET\"\n"), std::string::npos);
  EXPECT_NE(header.find("USERNAME=\"J?rgen\"\n"), std::string::npos);
  model_.pjl_utf8 = true;
  EXPECT_NE(Header({"", "", "Jürgen"}).find("USERNAME=\"Jürgen\"\n"), std::string::npos);
}

TEST_F(JobControlText, LongTextsEndWithAWholeCharacter) {
  std::string title = "x";
  for (int i = 0; i < 200; ++i) title += "é";
  const auto name_in = [](const std::string &header) {
    const size_t start = header.find("JOBNAME=\"") + 9;
    return header.substr(start, header.find('"', start) - start);
  };
  EXPECT_EQ(name_in(Header({title, "", ""})), "x" + std::string(200, '?'));
  EXPECT_EQ(name_in(Header({title + title, "", ""})).size(), 255u);
  model_.pjl_utf8 = true;
  EXPECT_EQ(name_in(Header({title, "", ""})), title.substr(0, 255));
  EXPECT_EQ(name_in(Header({"x" + title, "", ""})), "x" + title.substr(0, 253));
}

TEST_F(JobControlText, CopiesArePostScriptsBusinessInAPostScriptJob) {
  Set({{"*NrCopies", "2"}});
  EXPECT_EQ(Header().find("COPIES"), std::string::npos);
  EXPECT_NE(JobControlHeader(settings_, {}, "", "PCLXL").find("@PJL SET COPIES=2\n"),
            std::string::npos);
}

TEST_F(JobControlText, APpdWithAFeatureForCopiesUsesIt) {
  PpdFeature copies;
  copies.keyword = "JCLCopies";
  copies.section = PpdSection::Jcl;
  copies.choices = {{"1", "1", "@PJL SET QTY=1\n"}, {"2", "2", "@PJL SET QTY=2\n"}};
  copies.custom = PpdCustom{"@PJL SET QTY=\\1\n", {{"Copies", false, 1, 999}}, {}};
  model_.features.push_back(copies);
  Set({{"*NrCopies", "2"}});
  EXPECT_NE(Header().find("@PJL SET QTY=2\n"), std::string::npos);
  EXPECT_EQ(CountOf(Header(), "QTY"), 1u);
  EXPECT_EQ(RunOver(FilterPostScript, settings_, "%!\nx\n").find("NumCopies"), std::string::npos);
  Set({{"*NrCopies", "17"}});
  EXPECT_NE(Header().find("@PJL SET QTY=17\n"), std::string::npos);
}

TEST(JobControlReading, TakesSettingsAndLanguageAndLeavesTheFrame) {
  const std::string start = std::string("\004") + kUelText +
                            "@PJL JOB NAME=\"x\"\r\n@PJL\r\n@pjl set copies=3\r\n@PJL COMMENT y\n"
                            "@PJL ENTER LANGUAGE = PostScript \r\n%!PS";
  const JobControl control = ReadJobControl(start, true);
  EXPECT_EQ(start.substr(control.length), "%!PS");
  EXPECT_EQ(control.settings, "@pjl set copies=3\n@PJL COMMENT y\n");
  EXPECT_EQ(control.language, "POSTSCRIPT");
}

TEST(JobControlReading, TakesEmptyLinesInFrontOfPostScriptOnly) {
  const std::string enter = std::string(kUelText) + "@PJL ENTER LANGUAGE=";
  const std::string job = enter + "POSTSCRIPT\r\n\r\n\n%!PS-Adobe-3.0\n";
  EXPECT_EQ(job.substr(ReadJobControl(job, true).length), "%!PS-Adobe-3.0\n");
  const std::string pcl = enter + "PCL\r\n\r\n\033E";
  EXPECT_EQ(pcl.substr(ReadJobControl(pcl, true).length), "\r\n\033E");
  EXPECT_EQ(ReadJobControl(enter + "POSTSCRIPT\n\n", true).length, enter.size() + 12);
}

TEST(JobControlReading, AJobWithoutHasNone) {
  EXPECT_EQ(ReadJobControl("%!PS\n@PJL SET A=B\n", true).length, 0u);
  EXPECT_EQ(ReadJobControl("@PJL SET A=B\n", true).length, 0u);
  EXPECT_EQ(ReadJobControl("", true).length, 0u);
}

TEST(JobControlReading, AnUnfinishedLineIsLeftUntilTheRestIsThere) {
  const std::string start = std::string(kUelText) + "@PJL SET A=";
  EXPECT_EQ(ReadJobControl(start, false).length, 9u);
  EXPECT_EQ(ReadJobControl(start, true).length, start.size());
}

TEST_F(JobControlText, PclDataIsUnchangedBetweenHeaderAndTrailer) {
  std::string data = ") HP-PCL XL;2;0\n";
  for (int i = 0; i < 256; ++i) data += static_cast<char>(i);
  data += kUelText;
  data += "still data\r\n";
  Set({{"*NrCopies", "2"}});
  const std::string output = RunOver(FilterPcl, settings_, data, 7);
  EXPECT_NE(output.find("@PJL SET COPIES=2\n"), std::string::npos);
  EXPECT_NE(output.find("@PJL ENTER LANGUAGE=PCLXL\n" + data + kUelText + "@PJL EOJ \n"),
            std::string::npos);
}

TEST_F(JobControlText, ThePclJobsOwnLanguageAndCommandsStay) {
  const std::string output =
      RunOver(FilterPcl, settings_,
              std::string(kUelText) + "@PJL SET TONER=1\n@PJL ENTER LANGUAGE=PCL\n\033Edata");
  EXPECT_NE(output.find("@PJL SET TONER=1\n"), std::string::npos);
  EXPECT_NE(output.find("@PJL ENTER LANGUAGE=PCL\n\033Edata"), std::string::npos);
  EXPECT_EQ(CountOf(output, "ENTER LANGUAGE"), 1u);
}

TEST_F(JobControlText, APostScriptJobOfAPclQueueGetsTheCodeOfOne) {
  Set({{"*NrCopies", "2"}});
  const std::string job = std::string(kUelText) +
                          "@PJL SET TONER=1\r\n@PJL ENTER LANGUAGE=POSTSCRIPT\r\n"
                          "%!PS-Adobe-3.0\n%%EndComments\n%%Page: 1 1\nshowpage\n";
  const std::string output = RunOver(FilterPcl, settings_, job);
  EXPECT_EQ(output, RunOver(FilterPostScript, settings_, job));
  EXPECT_NE(output.find("<</NumCopies 2>>"), std::string::npos);
}

TEST(PclJob, OneCopyOnlyIsAWarningWhereThePrinterKnowsNoPjl) {
  const PpdModel plain;
  JobSettings settings(plain);
  const auto warning = [&settings] { return WarningsOver(FilterPcl, settings, "data"); };
  EXPECT_EQ(warning(), "");
  settings.Apply({{"*NrCopies", "2"}});
  EXPECT_EQ(warning(),
            "printing one copy only: the printer description has no way to ask for more\n");
}

// A printer that has job commands for the sides and the collation.
class PclSettings : public testing::Test {
 protected:
  PclSettings() {
    std::string ppd = ContentOf(std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd");
    ppd +=
        "\n*KPXPJLDuplex None: \"DUPLEX=OFF\"\n"
        "*KPXPJLDuplex DuplexNoTumble: \"DUPLEX=ON  BINDING=LONGEDGE bad =x\"\n"
        "*KPXPJLNothing Any: \"X=Y\"\n*KPXPJLDuplex Sideways: \"X=Y\"\n";
    PpdError error;
    model_ = ReadPpd(ppd, &error).value();
  }
  std::string Output(const std::string &job = "data") const {
    return RunOver(FilterPcl, settings_, job);
  }

  PpdModel model_;
  JobSettings settings_{model_};
};

TEST_F(PclSettings, AreSentAsJobCommands) {
  EXPECT_NE(Output().find("@PJL SET DUPLEX=OFF\n"), std::string::npos);
  settings_.Apply({{"*Duplex", "DuplexNoTumble"}});
  EXPECT_NE(Output().find("@PJL SET DUPLEX=ON\n@PJL SET BINDING=LONGEDGE\n@PJL "),
            std::string::npos);
  EXPECT_EQ(Output().find("bad"), std::string::npos);
  EXPECT_EQ(Output().find("=x"), std::string::npos);
  EXPECT_EQ(WarningsOver(FilterPcl, settings_, "data"), "");
}

TEST_F(PclSettings, WhatTheJobItselfSetsIsItsOwnBusiness) {
  settings_.Apply({{"*Duplex", "DuplexNoTumble"}});
  const std::string output =
      Output(std::string(kUelText) + "@PJL JOB\n@pjl set Duplex = off\n@PJL ENTER LANGUAGE=PCL\nx");
  EXPECT_EQ(CountOf(output, "DUPLEX"), 0u) << output;
  EXPECT_NE(output.find("@PJL SET BINDING=LONGEDGE\n"), std::string::npos);
}

TEST_F(PclSettings, APostScriptJobHasNone) {
  settings_.Apply({{"*Duplex", "DuplexNoTumble"}});
  EXPECT_EQ(RunOver(FilterPostScript, settings_, "%!\n").find("BINDING"), std::string::npos);
}

TEST_F(PclSettings, WithoutAJobCommandAreNamedInOneWarning) {
  settings_.ApplyQueue({{"*CustomPaperSize", "Ticket''200''400"},
                        {"*PageSize", "Ticket"},
                        {"*InputSlot", "Lower"},
                        {"*Duplex", "DuplexTumble"},
                        {"*MediaType", "Plain"}});
  EXPECT_EQ(WarningsOver(FilterPcl, settings_, "data"),
            "not sent with a PCL job, because the printer description has no job command for it: "
            "\"*PageSize=Ticket\", \"*InputSlot=Lower\", \"*Duplex=DuplexTumble\"\n");
  settings_.Apply({{"*PageSize", "A4"}, {"*InputSlot", "Upper"}, {"*Duplex", "None"}});
  EXPECT_EQ(WarningsOver(FilterPcl, settings_, "data"), "");
}

TEST_F(PclSettings, CollatedCopiesAreWholeSets) {
  PpdFeature collate;
  collate.keyword = "Collate";
  collate.choices = {{"False", "No", "a"}, {"True", "Yes", "b"}};
  model_.features.push_back(collate);
  settings_.Apply({{"*NrCopies", "3"}});
  EXPECT_NE(Output().find("@PJL SET COPIES=3\n"), std::string::npos);
  settings_.Apply({{"*Collate", "True"}});
  EXPECT_NE(Output().find("@PJL SET QTY=3\n"), std::string::npos);
  EXPECT_EQ(Output().find("COPIES"), std::string::npos);
  EXPECT_EQ(WarningsOver(FilterPcl, settings_, "data"), "");
}

TEST_F(PclSettings, AJobHasOneFrame) {
  const std::string data = "\033E" + std::string(70000, 'x') + "\033E";
  const std::string plain = Output(data);
  for (const char *end : {"\033%-12345X@PJL EOJ\r\n\033%-12345X",
                          "\033%-12345X@PJL EOJ NAME=\"x\"\n\033%-12345X\r\n"}) {
    const std::string job =
        std::string(kUelText) + "@PJL JOB\n@PJL ENTER LANGUAGE=PCL\n" + data + end;
    EXPECT_EQ(Output(job), plain);
    EXPECT_EQ(RunOver(FilterPcl, settings_, job, 1), plain);
  }
  EXPECT_EQ(CountOf(plain, "EOJ"), 1u);
  // What else stands behind is the job's.
  EXPECT_NE(Output("x\033%-12345X@PJL RESET\n").find("@PJL RESET\n"), std::string::npos);
  EXPECT_NE(Output("x\033%-12345X@PJL EOJ\nmore").find("@PJL EOJ\nmore"), std::string::npos);
}

TEST(PclJob, GoesUnchangedToAPrinterWithoutPjl) {
  const PpdModel plain;
  const JobSettings settings(plain);
  const std::string data = std::string(kUelText) + "@PJL ENTER LANGUAGE=PCLXL\n) HP-PCL XL;x";
  EXPECT_EQ(RunOver(FilterPcl, settings, data), data);
}

}  // namespace
