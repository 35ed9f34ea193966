// Keeping PAF files in step with PPD files: which are converted, how the filter is run, and how the
// process ends when that cannot be done.
#include "ppdconversion.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "childprocess.h"
#include "coresupport.h"
#include "standinfilter.h"
#include "temporarydirectory.h"

namespace {

using std::string;

constexpr char kMessages[] =
    "#ERR_UNABLE_TO_READ_DIR\nno directory <%s>\n"
    "#ERR_UNABLE_TO_EXEC_FILE\nno program <%s>\n"
    "#ERR_FORK\nno process\n";

string Repeated(const string &line, size_t times) {
  string text;
  while (times-- > 0) text += line;
  return text;
}

TEST(FileName, IsAPpdOrPafNameByItsSecondPiece) {
  const struct {
    const char *name;
    int kind;
    int expected;
  } rows[] = {
      {"vek41201.ppd", kPpdFile, 1},
      {"vek41201.ppd", kPafFile, 0},
      {"vek41201.paf", kPafFile, 1},
      {"vek41201.paf", kPpdFile, 0},
      {"vek41201.ppd.gz", kPpdFile, 1},
      {"vek41201.ppd.paf", kPafFile, 0},
      {"vek41201.old.ppd", kPpdFile, 0},
      {"vek41201..ppd", kPpdFile, 1},
      {".vek41201.ppd", kPpdFile, 1},
      {"vek41201.ppd.", kPpdFile, 1},
      {"vek41201.PPD", kPpdFile, 0},
      {"vek41201.ppds", kPpdFile, 0},
      {"vek41201.pp", kPpdFile, 0},
      {"vek41201", kPpdFile, 0},
      {"vek41201.", kPpdFile, 0},
      {".ppd", kPpdFile, 0},
      {"ppd", kPpdFile, 0},
      {"...", kPpdFile, 0},
      {"", kPpdFile, 0},
      {"vek41201.ppd", 0, 0},
      {"vek41201.ppd", 3, 0},
      {"vek41201.paf", -1, 0},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(CheckIfPpdOrPaf(row.name, row.kind), row.expected) << row.name << " " << row.kind;
  }
}

TEST(FileName, OfAPafHasItsPpdsLastFourCharactersReplaced) {
  EXPECT_EQ(PafNameOfPpd("vek41201.ppd"), "vek41201.paf");
  EXPECT_EQ(PafNameOfPpd("vek41201.ppd.gz"), "vek41201.pp.paf");
}

TEST(PafFile, IsCurrentWhenItsPpdLineNamesExactlyThePpd) {
  const TemporaryDirectory directory;
  const struct {
    const char *rule;
    string text;
    int expected;
  } rows[] = {
      {"the name", "##Name:A\n##PPD:a.ppd\n", 1},
      {"the name anywhere", "#uio\n\n##PPD:a.ppd\n##Name:A\n", 1},
      {"the name in the last line without line feed", "##Name:A\n##PPD:a.ppd", 1},
      {"only the text up to the second colon counts", "##PPD:a.ppd:b.ppd\n", 1},
      {"another name", "##PPD:b.ppd\n", 0},
      {"another case", "##PPD:A.ppd\n", 0},
      {"a blank before it", "##PPD: a.ppd\n", 0},
      {"a carriage return behind it", "##PPD:a.ppd\r\n", 0},
      {"the first of two lines counts", "##PPD:b.ppd\n##PPD:a.ppd\n", 0},
      {"no such line", "##Name:A\n##ppd:a.ppd\n", 0},
      {"an empty value", "##PPD:\n", 0},
      {"an empty file", "", 0},
      {"behind an over-long line", string(3000, 'x') + "\n##PPD:a.ppd\n", 1},
      {"behind many lines", Repeated("#uio\n", 10000) + "##PPD:a.ppd\n", 1},
      {"another name behind many lines", Repeated("#uio\n", 10000) + "##PPD:b.ppd\n", 0},
  };
  for (const auto &row : rows) {
    const string path = directory.Write("a.paf", row.text);
    EXPECT_EQ(VerifyPafFile("a.ppd", path), row.expected) << row.rule;
  }
}

TEST(PafFile, IsCurrentWhereverTheLineStands) {
  const TemporaryDirectory directory;
  // Around the size of any block that a reader may take at once.
  for (const size_t block : {1024U, 2048U, 4096U, 16384U}) {
    for (size_t before = block - 16; before < block + 4; ++before) {
      string text = Repeated("12345678901234\n", before / 15);
      text += string(before - text.size(), '\n') + "##PPD:a.ppd\n##PPD:b.ppd\n";
      const string path = directory.Write("a.paf", text);
      EXPECT_EQ(VerifyPafFile("a.ppd", path), 1) << before;
    }
  }
}

TEST(PafFile, IsNotCurrentWhenItCannotBeRead) {
  const TemporaryDirectory directory;
  EXPECT_EQ(VerifyPafFile("a.ppd", directory.Path("absent.paf")), 0);
  EXPECT_EQ(VerifyPafFile("a.ppd", directory.Path()), 0);
}

class Conversion : public testing::Test {
 protected:
  Conversion() {
    filter_.PutText(kCopyingFilter);
    setenv("KPX_CONVERTED", files_.Path("converted").c_str(), 1);
  }

  // The PPD files that the filter was given, sorted.
  std::vector<string> Converted() const {
    std::vector<string> paths = SplitLines(ContentOf(files_.Path("converted")));
    std::sort(paths.begin(), paths.end());
    return paths;
  }

  ProgramMessages messages_{kMessages};
  StandInFilter filter_;
  TemporaryDirectory files_;
  TemporaryDirectory ppds_;
  TemporaryDirectory pafs_;
};

using Strings = std::vector<string>;

TEST_F(Conversion, OfEmptyDirectoriesDoesNothing) {
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  EXPECT_EQ(Converted(), Strings{});
  EXPECT_EQ(NamesIn(pafs_.Path()), Strings{});
}

TEST_F(Conversion, ConvertsEveryPpdWithoutPafWhateverItsNameBeginsWith) {
  ppds_.Write("vek1.ppd", "##PPD:vek1.ppd\n");
  ppds_.Write("other.ppd", "##PPD:other.ppd\n");
  ppds_.Write("README", "no printer");
  ppds_.Write("vek2.PPD", "no printer");
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  EXPECT_EQ(Converted(), (Strings{ppds_.Path("other.ppd"), ppds_.Path("vek1.ppd")}));
  EXPECT_EQ(NamesIn(pafs_.Path()), (Strings{"other.paf", "vek1.paf"}));
}

TEST_F(Conversion, LeavesACurrentPafAloneAlsoWhenThePpdIsNewer) {
  pafs_.Write("vek1.paf", "##PPD:vek1.ppd\n");
  std::filesystem::last_write_time(pafs_.Path("vek1.paf"), {});
  ppds_.Write("vek1.ppd", "##PPD:vek1.ppd\n## changed\n");
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  EXPECT_EQ(Converted(), Strings{});
  EXPECT_EQ(ContentOf(pafs_.Path("vek1.paf")), "##PPD:vek1.ppd\n");
}

TEST_F(Conversion, RebuildsAPafOfAnotherPpdAtEveryStart) {
  ppds_.Write("vek1.ppd", "##PPD:vek9.ppd\n");
  pafs_.Write("vek1.paf", "##PPD:vek9.ppd\n");
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  EXPECT_EQ(Converted(), (Strings{ppds_.Path("vek1.ppd"), ppds_.Path("vek1.ppd")}));
}

TEST_F(Conversion, GoesOnAfterAFilterThatWritesNothing) {
  filter_.PutText("#!/bin/sh\necho \"$2\" >>\"$KPX_CONVERTED\"\nexit 3\n");
  ppds_.Write("vek1.ppd", "");
  ppds_.Write("vek2.ppd", "");
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  EXPECT_EQ(Converted(), (Strings{ppds_.Path("vek1.ppd"), ppds_.Path("vek2.ppd")}));
  EXPECT_EQ(NamesIn(pafs_.Path()), Strings{});
}

TEST_F(Conversion, WithoutPpdDirectoryEndsTheProcess) {
  const string ppd_file = files_.Write("file", "");
  for (const string &path : {ppds_.Path("absent"), ppd_file}) {
    const ChildResult result = RunInChild([&] { CheckPafFiles(path, pafs_.Path()); });
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.errors, "no directory <" + path + ">\n");
  }
}

TEST_F(Conversion, WithoutPafDirectoryEndsTheProcessBeforeAnyConversion) {
  ppds_.Write("vek1.ppd", "##PPD:vek1.ppd\n");
  for (const string &path : {pafs_.Path("absent"), files_.Write("file", "")}) {
    const ChildResult result = RunInChild([&] { CheckPafFiles(ppds_.Path(), path); });
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.errors, "no directory <" + path + ">\n");
  }
  EXPECT_EQ(Converted(), Strings{});
  EXPECT_FALSE(std::filesystem::exists(pafs_.Path("absent")));
}

TEST_F(Conversion, OfThePpdDirectoryComesFirstWhenBothAreMissing) {
  const ChildResult result = RunInChild([] { CheckPafFiles("/absent/ppds", "/absent/pafs"); });
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "no directory </absent/ppds>\n");
}

TEST_F(Conversion, RunsTheFilterWithTheExactArguments) {
  filter_.PutProgram(KPX_ARGUMENT_RECORDER);
  setenv("KPX_ARGUMENTS", files_.Path("arguments").c_str(), 1);
  EXPECT_EQ(BuildPafFromPpd("/ppds/a b.ppd", "/pafs/a b.paf"), 1);
  EXPECT_EQ(SplitLines(ContentOf(files_.Path("arguments"))),
            (Strings{"DEF_KPXFILTER", "--ppdfile", "/ppds/a b.ppd", "--paffile", "/pafs/a b.paf",
                     "2>&1 & >/dev/null"}));
}

TEST_F(Conversion, WaitsForTheFilterWhoseStatusDoesNotMatter) {
  for (const char *status : {"exit 0", "exit 1", "kill -9 $$"}) {
    filter_.PutText("#!/bin/sh\necho $$ >\"$4\"\n" + string(status) + "\n");
    EXPECT_EQ(BuildPafFromPpd("a.ppd", files_.Path("a.paf")), 1);
    const pid_t filter = std::stoi(ContentOf(files_.Path("a.paf")));
    EXPECT_EQ(kill(filter, 0), -1) << "the filter still runs";
  }
}

TEST_F(Conversion, WithAFilterThatIsNotExecutableEndsTheProcess) {
  filter_.PutText(kCopyingFilter, 0644);
  const auto build = [] { BuildPafFromPpd("a.ppd", "a.paf"); };
  const ChildResult result = RunInChild(build);
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "no program </opt/orlan/bin/kpxfilter>\n");

  std::filesystem::remove(kFilterProgram);
  EXPECT_EQ(RunInChild(build).status, 7);
}

TEST_F(Conversion, WithoutFilterEndsOnlyWhenThereIsSomethingToConvert) {
  std::filesystem::remove(kFilterProgram);
  ppds_.Write("vek1.ppd", "");
  pafs_.Write("vek1.paf", "##PPD:vek1.ppd\n");
  CheckPafFiles(ppds_.Path(), pafs_.Path());
  ppds_.Write("vek2.ppd", "");
  EXPECT_EQ(RunInChild([this] { CheckPafFiles(ppds_.Path(), pafs_.Path()); }).status, 7);
}

TEST_F(Conversion, WithAFilterThatIsNoProgramGoesOn) {
  filter_.PutText("neither a program nor a script");
  const ChildResult result =
      RunInChild([] { _exit(BuildPafFromPpd("a.ppd", "a.paf") == 1 ? 0 : 1); });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
}

// The leak check of an instrumented build needs a process of its own when the program ends.
void MakeRoomForProcesses() {
  rlimit processes = {};
  getrlimit(RLIMIT_NPROC, &processes);
  processes.rlim_cur = processes.rlim_max;
  setrlimit(RLIMIT_NPROC, &processes);
  prctl(PR_SET_DUMPABLE, 1);
}

TEST_F(Conversion, WithoutRoomForAProcessEndsTheProcess) {
  const ChildResult result = RunInChild([] {
    // The limit does not hold for the superuser.
    if (setuid(65534) != 0 && std::getenv("KPX_OUTSIDE_UID") == string("0")) _exit(125);
    rlimit processes = {};
    getrlimit(RLIMIT_NPROC, &processes);
    processes.rlim_cur = 0;
    setrlimit(RLIMIT_NPROC, &processes);
    std::atexit(MakeRoomForProcesses);
    BuildPafFromPpd("a.ppd", "a.paf");
  });
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "no process\n");
}

}  // namespace
