// The print command: what is run, and what is shown.
#include "printcommand.h"

#include <gtest/gtest.h>

#include "childprocess.h"
#include "command.h"
#include "coresupport.h"
#include "cselection.h"
#include "debug.h"
#include "must.h"
#include "queuesupport.h"
#include "temporarydirectory.h"
#include "textencoding.h"

namespace {

using Strings = std::vector<std::string>;

Owned<CList> Files(const Strings &paths) {
  Owned<CList> files = CreateList();
  for (const std::string &path : paths) {
    Must(fAddTail_CList_Function(files.get(), CreateSelection(path.c_str(), 0)));
  }
  return files;
}

Owned<CHash> Options(const std::vector<std::pair<const char *, const char *>> &pairs) {
  Owned<CHash> options = CreateHash();
  for (const auto &[key, value] : pairs) Must(HashPutText(options.get(), key, value));
  return options;
}

}  // namespace

TEST(PrintCommand, IsProgramQueueCopiesAndFilesSeparatedByOneBlank) {
  EXPECT_EQ(PrintCommandText("lp1", "1", false, Files({"/home/a/x.ps"}).get()),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" /home/a/x.ps");
}

TEST(PrintCommand, LetsTheSpoolerCopyTheFilesWhenStandardInputIsAmongThem) {
  EXPECT_EQ(PrintCommandText("lp1", "2", true, Files({"/a", "/b"}).get()),
            "/usr/bin/lp -c -d lp1 -o \"*NrCopies=2\" /a /b");
}

TEST(PrintCommand, NamesFilesSelectedOrNotAndTheSameFileTwice) {
  const Owned<CList> files = Files({"/a", "/a"});
  Must(fAddTail_CList_Function(files.get(), CreateSelection("/b", 1)));
  EXPECT_EQ(PrintCommandText("lp1", "1", false, files.get()),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" /a /a /b");
}

TEST(PrintCommand, NamesOfPlainCharactersStandAsTheyAre) {
  const std::string name = "/home/a-b/x_1@%+=:,./Z9.ps";
  EXPECT_EQ(PrintCommandText("lp1", "1", false, Files({name}).get()),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" " + name);
}

TEST(PrintCommand, AnyOtherNameIsOneWordInSingleQuotes) {
  EXPECT_EQ(PrintCommandText("lp1", "1", false, Files({"/a b", "/$c;d", "/it's", "/e\nf"}).get()),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" '/a b' '/$c;d' '/it'\\''s' '/e\nf'");
}

TEST(PrintCommand, ANameThatBeginsWithAMinusIsNoOption) {
  EXPECT_EQ(PrintCommandText("lp1", "1", false, Files({"-d", "- x"}).get()),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" ./-d './- x'");
}

TEST(DisplayedCommand, QuotesNamesAsTheCommandThatIsRun) {
  const Owned<CList> files = Files({"/My report.ps", "/b\xC3\xBCro.ps", "-x"});
  EXPECT_EQ(DisplayedCommandText("lp1", nullptr, false, files.get()),
            PrintCommandText("lp1", "1", false, files.get()));
}

// What the shell makes of the words of a command, each ended by a NUL.
TEST(DisplayedCommand, CopiedToATerminalItMeansTheSameFilesWhateverTheirBytes) {
  const Strings names = {"/caf\xE9.ps",       "/\xFF\xFE'$(exit)\\n", "\xA0",
                         "/tab\tand\nline\n", "/b\xC3\xBCro",         "/\"q\" `x` *"};
  const std::string command = DisplayedCommandText("lp1", nullptr, false, Files(names).get());
  EXPECT_TRUE(IsValidUtf8(command));
  const TemporaryDirectory directory;
  const std::string words = directory.Path("words");
  const std::string start = "/usr/bin/lp -d lp1 -o \"*NrCopies=1\"";
  ASSERT_TRUE(command.starts_with(start));
  ASSERT_EQ(0, RunCommand("printf '%s\\0'" + command.substr(start.size()) + " >" + words));
  std::string expected;
  for (const std::string &name : names) expected += name + '\0';
  EXPECT_EQ(expected, ContentOf(words));
}

TEST(PrintCommand, AFormatInANameIsText) {
  EXPECT_EQ(PrintCommandText("%s", "%n", false, Files({"/%s%n"}).get()),
            "/usr/bin/lp -d %s -o \"*NrCopies=%n\" /%s%n");
}

TEST(PrintCommand, ThousandsOfFilesAreNotTruncated) {
  Strings paths;
  std::string expected = "/usr/bin/lp -d lp1 -o \"*NrCopies=1\"";
  for (int i = 0; i < 5000; ++i) {
    paths.push_back("/home/anna/documents/file" + std::to_string(i));
    expected += " " + paths.back();
  }
  EXPECT_EQ(PrintCommandText("lp1", "1", false, Files(paths).get()), expected);
}

TEST(PrintCommand, GrowsInStepsThatTheLogShows) {
  const Owned<CList> files = Files(Strings(300, "/" + std::string(99, 'x')));
  const ChildResult result = RunInChild([&] {
    unsetenv("KPXDEBUG");
    G_DebugLevel = 4;
    PrintCommandText("lp1", "1", false, files.get());
  });
  Strings grown;
  for (const std::string &line : SplitLines(result.errors)) {
    if (line.starts_with("realloc")) grown.push_back(line);
  }
  // 36 + 300 * 101 = 30336 characters: two steps more than the first 10240.
  EXPECT_EQ(grown,
            (Strings{"realloc'ed lpr_cmd, now >>20480<<", "realloc'ed lpr_cmd, now >>30720<<"}));
}

TEST(PrintCommand, GrowsWhenTextAndNameReachTheCapacity) {
  const size_t start = PrintCommandText("lp1", "1", false, nullptr).size();
  const auto grows = [&](size_t name) {
    const Owned<CList> files = Files({std::string(name, 'x')});
    return RunInChild([&] {
             G_DebugLevel = 3;
             PrintCommandText("lp1", "1", false, files.get());
           }).errors.find("now >>20480<<") != std::string::npos;
  };
  EXPECT_FALSE(grows(10239 - start));
  EXPECT_TRUE(grows(10240 - start));
}

TEST(DisplayedCommand, IsTheCommandWhenThereAreOnlyCopies) {
  EXPECT_EQ(
      DisplayedCommandText("lp1", Options({{"*NrCopies", "2"}}).get(), false, Files({"/a"}).get()),
      "/usr/bin/lp -d lp1 -o \"*NrCopies=2\" /a");
}

TEST(DisplayedCommand, KeepsTheCommaBeforeFurtherOptionsInKeyOrder) {
  EXPECT_EQ(
      DisplayedCommandText(
          "lp1", Options({{"*PageSize", "A4"}, {"*NrCopies", "2"}, {"*Duplex", "None"}}).get(),
          true, Files({"/a", "/b"}).get()),
      "/usr/bin/lp -c -d lp1 -o \"*NrCopies=2, *Duplex=None *PageSize=A4\" /a /b");
}

TEST(DisplayedCommand, ShowsOneCopyWhenNoneIsSetAndChangesNothing) {
  const Owned<CHash> options = Options({{"*Duplex", "None"}});
  EXPECT_EQ(DisplayedCommandText("lp1", options.get(), false, Files({"/a"}).get()),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1, *Duplex=None\" /a");
  EXPECT_EQ(Keys(options.get()), Strings{"*Duplex"});
}

TEST(DisplayedCommand, DropsACommaAtTheEndOfTheLastOption) {
  EXPECT_EQ(DisplayedCommandText("lp1", Options({{"*X", "a,"}}).get(), false, nullptr),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1, *X=a\"");
}

TEST(DisplayedCommand, WorksWithoutOptionsAndFiles) {
  EXPECT_EQ(DisplayedCommandText("lp1", nullptr, false, nullptr),
            "/usr/bin/lp -d lp1 -o \"*NrCopies=1\"");
}

TEST(CopiesToPrint, AreThoseOfTheQueue) {
  const Owned<CHash> options = Options({{"*NrCopies", "7"}});
  EXPECT_EQ(CopiesToPrint(options.get()), "7");
}

TEST(CopiesToPrint, AreAddedAsOneAndLoggedWhenTheQueueHasNone) {
  const Owned<CHash> options = CreateHash();
  EXPECT_EQ(CopiesToPrint(options.get()), "1");
  EXPECT_STREQ(HashText(options.get(), "*NrCopies"), "1");
  const ChildResult result = RunInChild([] {
    unsetenv("KPXDEBUG");
    G_DebugLevel = 2;
    CopiesToPrint(CreateHash().get());
  });
  EXPECT_EQ(result.errors,
            "The NRCOPIES feature was not founded in the features_hash. Put it with default 1\n");
}

TEST(CopiesToPrint, OfNoTableAreOne) { EXPECT_EQ(CopiesToPrint(nullptr), "1"); }

TEST(QueueEntry, HasFourBlanksAroundThePrinterInBrackets) {
  EXPECT_EQ(QueueEntry("lp1", "Vek Norvel 4110ES", "PostScript"),
            "lp1    [ Vek Norvel 4110ES ]    PostScript");
  EXPECT_EQ(QueueEntry("lp1", nullptr, nullptr), "lp1    [  ]    ");
}

TEST(QueueEntry, NamesTheQueueUpToItsFirstBlank) {
  EXPECT_EQ(QueueNameFromEntry("lp1    [ Vek ]    PostScript"), "lp1");
  EXPECT_EQ(QueueNameFromEntry("lp1"), "lp1");
  EXPECT_EQ(QueueNameFromEntry(" lp1"), "");
  EXPECT_EQ(QueueNameFromEntry(""), "");
}

namespace {

class Queues : public testing::Test {
 protected:
  void SetUp() override {
    G_FilesList = Files({"/a"});
    Must(HashPut(queues_.get(), "b", MakeQueue({.name = "b", .language = "text"})));
    Must(HashPut(queues_.get(), "a", MakeFullQueue({.name = "a"})));
    G_Queues_hash = queues_.get();
  }
  void TearDown() override {
    G_Queues_hash = nullptr;
    G_FilesList.reset();
  }

  const ProgramMessages messages_{"#postscript\nPostScript\n#text\nPlain text\n"};
  const Owned<CHash> queues_ = CreateHash();
};

}  // namespace

TEST_F(Queues, AreEntriesInKeyOrderWithTheirLanguageTranslated) {
  EXPECT_EQ(QueueEntries(), (Strings{"a    [ Vek Norvel 4110ES ]    PostScript",
                                     "b    [ Vek Norvel 4110ES ]    Plain text"}));
}

TEST_F(Queues, AreNoEntriesWhileThereAreNone) {
  G_Queues_hash = nullptr;
  EXPECT_EQ(QueueEntries(), Strings{});
}

TEST_F(Queues, TheDisplayedCommandShowsTheQueuesOptions) {
  EXPECT_EQ(DisplayedPrintCommand("a"),
            "/usr/bin/lp -d a -o \"*NrCopies=1, *Duplex=DuplexNoTumble *PageSize=A4\" /a");
  EXPECT_EQ(DisplayedPrintCommand("unknown"), "/usr/bin/lp -d unknown -o \"*NrCopies=1\" /a");
}
