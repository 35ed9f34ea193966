// The program as its callers call it: the conversion at start-up, the filtering by a queue's
// interface script.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "filterrun.h"
#include "temporarydirectory.h"

namespace {

const std::string kOffice = std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd";

std::vector<std::string> NamesIn(const std::string &directory) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(Conversion, TheLastArgumentIsIgnored) {
  const TemporaryDirectory directory;
  const std::string paf = directory.Path("vek1.paf");
  const FilterRun run = Convert(kOffice, paf);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output + run.errors, "");
  EXPECT_TRUE(ContentOf(paf).starts_with("##Name:Büro 100\n##PPD:office.ppd\n"));
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"vek1.paf"});
}

TEST(Conversion, TheDescriptionIsReadableForEverybody) {
  const TemporaryDirectory directory;
  const mode_t old = umask(077);
  Convert(kOffice, directory.Path("vek1.paf"));
  umask(old);
  struct stat status {};
  ASSERT_EQ(stat(directory.Path("vek1.paf").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST(Conversion, APpdThatCannotBeReadIsAMessageAndNoFile) {
  const TemporaryDirectory directory;
  const std::string ppd =
      directory.Write("bad.ppd", "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\nbad\n");
  const FilterRun run = Convert(ppd, directory.Path("bad.paf"));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "kpxfilter: " + ppd + ": line 3: Missing asterisk in column 1\n");
  EXPECT_EQ(NamesIn(directory.Path()), std::vector<std::string>{"bad.ppd"});
}

TEST(Conversion, AnOlderDescriptionStaysWhenThePpdCannotBeRead) {
  const TemporaryDirectory directory;
  const std::string paf = directory.Write("old.paf", "##Name:Old\n");
  EXPECT_EQ(Convert(directory.Path("missing.ppd"), paf).status, 1);
  EXPECT_EQ(ContentOf(paf), "##Name:Old\n");
}

TEST(Conversion, ADirectoryThatIsNotThereIsAMessage) {
  const TemporaryDirectory directory;
  const FilterRun run = Convert(kOffice, directory.Path("none/x.paf"));
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.errors.find("No such file or directory"), std::string::npos);
}

TEST(Conversion, ADescriptionIsReplacedAsAWhole) {
  const TemporaryDirectory directory;
  const std::string other = directory.Write("other", "kept");
  ASSERT_EQ(symlink("other", directory.Path("x.paf").c_str()), 0);
  EXPECT_EQ(Convert(kOffice, directory.Path("x.paf")).status, 0);
  EXPECT_EQ(ContentOf(other), "kept");
  EXPECT_FALSE(std::filesystem::is_symlink(directory.Path("x.paf")));
}

TEST(Call, ACallForNothingIsRefused) {
  for (const std::vector<std::string> &arguments :
       {std::vector<std::string>{"kpxfilter"},
        {"kpxfilter", "--ppdfile", kOffice},
        {"kpxfilter", "--paffile", "/nonexistent/x.paf"},
        {}}) {
    const FilterRun run = RunFilter(arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.errors, "");
  }
}

TEST(Call, AnOptionWithoutItsValueLeavesTheNextOneAlone) {
  const FilterRun run = RunFilter({"kpxfilter", "", "--deffile", "-JReport", "--filter", "--type",
                                   "postscript", "--ppdfile", kOffice},
                                  "%!\nshowpage\n");
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_NE(run.output.find("JOBNAME=\"Report\""), std::string::npos) << run.output;
}

// A queue lp1 with its option files.
class Filtering : public testing::Test {
 protected:
  Filtering() {
    std::filesystem::create_directory(directory_.Path("users"));
    call_.user = getpwuid(geteuid())->pw_name;
    call_.ppd_file = kOffice;
    call_.def_file = directory_.Write("lp1.def", "*Duplex=None\n");
  }
  void WriteUserFile(const std::string &text) {
    directory_.Write("users/" + call_.user + ":lp1.def", text);
  }

  const TemporaryDirectory directory_;
  FilterCall call_;
};

TEST_F(Filtering, SettingsAreMergedFromDefaultsQueueUserAndOptions) {
  directory_.Write("lp1.def",
                   "*InputSlot=Lower\n*PageSize=Ticket\n*Duplex=DuplexTumble\n*NrCopies=2\n"
                   "*OptionDuplex=True\n*CustomPaperSize=Ticket''200''400\n");
  WriteUserFile("*Duplex=DuplexNoTumble\n*NrCopies=3\n");
  call_.options = "nobanner *NrCopies=4 finishings=3";
  const FilterRun run = Filter(call_, "%!\nshowpage\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(
      run.errors,
      "kpxfilter: \"*PageSize=Ticket\" and \"*Duplex=DuplexNoTumble\" exclude each other: the "
      "printer may leave one of them out\n");
  for (const char *code :
       {"*InputSlot Lower\n", "*CustomPageSize True\n200\n400\n", "*Duplex DuplexNoTumble\n",
        "*MediaType Plain\n", "<</NumCopies 4>>", "JOBNAME=\"Report\"", "DELIVERY=PRINT"}) {
    EXPECT_NE(run.output.find(code), std::string::npos) << code;
  }
}

TEST_F(Filtering, AMissingOrEmptyQueueFileEndsTheJobBeforeAnyData) {
  directory_.Write("lp1.def", "");
  const FilterRun empty = Filter(call_, "%!\nshowpage\n");
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.output, "");
  EXPECT_EQ(empty.errors, "kpxfilter: the queue's option file " + call_.def_file +
                              " is empty: save the queues in KPXadmin, which writes it again\n");
  std::filesystem::remove(call_.def_file);
  const FilterRun missing = Filter(call_, "%!\nshowpage\n");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.output, "");
  EXPECT_EQ(missing.errors,
            "kpxfilter: the queue's option file " + call_.def_file +
                " is missing: save the queues in KPXadmin, which writes it again\n");
}

TEST_F(Filtering, AWaitingRequestHasItsOwnSettingsInsteadOfTheUsersForTheQueue) {
  WriteUserFile("*NrCopies=3\n*Duplex=DuplexTumble\n");
  std::filesystem::create_directory(directory_.Path("users/" + call_.user));
  directory_.Write("users/" + call_.user + "/lp1-7", "*NrCopies=5\n");
  ASSERT_EQ(setenv("KPX_REQUEST", "lp1-7", 1), 0);
  const FilterRun own = Filter(call_, "%!\nshowpage\n");
  ASSERT_EQ(setenv("KPX_REQUEST", "lp1-8", 1), 0);
  const FilterRun other = Filter(call_, "%!\nshowpage\n");
  ASSERT_EQ(unsetenv("KPX_REQUEST"), 0);
  EXPECT_EQ(own.errors + other.errors, "");
  EXPECT_NE(own.output.find("<</NumCopies 5>>"), std::string::npos);
  EXPECT_NE(own.output.find("*Duplex None\n"), std::string::npos);
  EXPECT_NE(other.output.find("<</NumCopies 3>>"), std::string::npos);
  EXPECT_NE(other.output.find("*Duplex DuplexTumble\n"), std::string::npos);
}

TEST_F(Filtering, AnEmptyOptionsArgumentIsNone) {
  call_.options = "";
  EXPECT_EQ(Filter(call_, "%!\nshowpage\n").status, 0);
}

TEST_F(Filtering, ThePinIsInTheJobAloneAndNotInTheMessages) {
  directory_.Write("lp1.def", "*Delivery=HoldJobUntilYouEnterPIN\n*Duplex=Wrong\n");
  WriteUserFile("*DeliveryPIN=4711\n");
  const FilterRun run = Filter(call_, "%!\nshowpage\n");
  EXPECT_NE(run.output.find("DELIVERYPIN=\"4711\""), std::string::npos);
  EXPECT_NE(run.errors.find("*Duplex=Wrong"), std::string::npos);
  EXPECT_EQ(run.errors.find("4711"), std::string::npos);
}

TEST_F(Filtering, ADeliveryThatWaitsForAMissingPinEndsTheJobBeforeAnyData) {
  directory_.Write("lp1.def", "*Delivery=HoldJobUntilYouEnterPIN\n");
  WriteUserFile("*DeliveryPIN=47119\n");
  const FilterRun run = Filter(call_, "%!\nshowpage\n");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_NE(run.errors.find("needs a PIN of four digits"), std::string::npos) << run.errors;
  EXPECT_EQ(run.errors.find("4711"), std::string::npos);
}

TEST_F(Filtering, TheQueuesUserNameLosesToTheSpoolersUser) {
  directory_.Write("lp1.def", "*UserName=root\n");
  call_.user = "anna";
  EXPECT_NE(Filter(call_, "%!\nshowpage\n").output.find("USERNAME=\"anna\""), std::string::npos);
}

TEST_F(Filtering, AUserFileThatIsALinkIsIgnoredWithAMessage) {
  directory_.Write("elsewhere", "*NrCopies=9\n");
  const std::string path = directory_.Path("users/" + call_.user + ":lp1.def");
  ASSERT_EQ(symlink("../elsewhere", path.c_str()), 0);
  const FilterRun run = Filter(call_, "%!\nshowpage\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, "kpxfilter: " + path + ": ignored: it is a symbolic link\n");
  EXPECT_EQ(run.output.find("NumCopies"), std::string::npos);
}

TEST_F(Filtering, APpdThatCannotBeReadEndsTheJobBeforeAnyData) {
  call_.ppd_file = directory_.Path("missing.ppd");
  const FilterRun run = Filter(call_, "%!\nshowpage\n");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_NE(run.errors.find("missing.ppd: No such file or directory"), std::string::npos);
}

TEST_F(Filtering, AnUnknownPrinterHasNoPpdAndStillPrints) {
  // Its interface script names no file behind "--ppdfile".
  const FilterRun run =
      RunFilter({"kpxfilter", "*NrCopies=2", "-Jt", "-et", "-Lanna", "--filter", "--type",
                 "postscript", "--ppdfile", "--deffile", call_.def_file},
                "%!\nshowpage\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "%!\n[{\n<</NumCopies 2>>setpagedevice\n} stopped cleartomark\nshowpage\n");
}

TEST_F(Filtering, AJobThatShowsNoPlaceForTheOptionsIsPrintedWithAWarning) {
  const std::string job = "%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n" +
                          std::string(100000, '\n') + "showpage\n%%EOF\n";
  const FilterRun run = Filter(call_, job);
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.output.find("showpage\n%%EOF\n"), std::string::npos);
  EXPECT_EQ(
      run.errors,
      "kpxfilter: the job's prolog is not marked as ended: options and copies may not count\n");
}

TEST_F(Filtering, AFileOfAnotherKindGivesOneSentenceAndNoData) {
  const std::string png = std::string("\x89PNG\r\n\x1A\n") + std::string(5000, '\0');
  for (const char *type : {"postscript", "text", "pcl6"}) {
    call_.type = type;
    const FilterRun run = Filter(call_, png);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(
        run.errors.starts_with("kpxfilter: the file is a PNG picture, but this queue prints "
                               "only "))
        << run.errors;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1);
  }
  call_.type = "postscript";
  const FilterRun text = Filter(call_, "Dear Sir,\nI remain yours\n");
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.output, "");
  EXPECT_EQ(text.errors,
            "kpxfilter: the file is plain text, but this queue prints only PostScript\n");
}

TEST_F(Filtering, OptionsThatLookLikeAnArgumentAreOptions) {
  for (const char *options : {"--ppdfile", "--type", "--deffile", "--filter", "-Jx"}) {
    call_.options = options;
    const FilterRun run = Filter(call_, "%!\nshowpage\n");
    EXPECT_EQ(run.status, 0) << options << ": " << run.errors;
    EXPECT_NE(run.output.find("JOBNAME=\"Report\""), std::string::npos) << options;
  }
}

TEST_F(Filtering, AnUnknownTypeIsAnError) {
  call_.type = "raw";
  const FilterRun run = Filter(call_, "x");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "kpxfilter: \"raw\" is not a job type (postscript, text, pcl6)\n");
}

TEST_F(Filtering, AReaderThatGoesAwayIsAnError) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  const std::string job = directory_.Write("job", "%!\n" + std::string(1 << 20, 'x'));
  std::FILE *input = std::fopen(job.c_str(), "re");
  EXPECT_EQ(WaitFor(StartFilter(FilterArgumentsOf(call_), fileno(input), ends[1])), 1);
  std::fclose(input);
  close(ends[1]);
}

}  // namespace
