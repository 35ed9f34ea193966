// Jobs on their way through the spooler bridge: how the interface script is called.
#include <gtest/gtest.h>

#include <csignal>

#include "spooler.h"

namespace {

using Strings = std::vector<std::string>;

// Files to print, which the spooler's users may read.
class Files {
 public:
  Files() { std::filesystem::permissions(directory_.Path(), std::filesystem::perms(0755)); }
  std::string Write(const std::string &name, const std::string &content) const {
    return directory_.Write(name, content);
  }

 private:
  TemporaryDirectory directory_;
};

// The one call of a script that was to be called once.
ScriptCall OnlyCall(const TestQueue &queue) {
  const std::vector<ScriptCall> calls = queue.Calls();
  if (calls.size() != 1) throw std::runtime_error(std::to_string(calls.size()) + " calls, not 1");
  return calls[0];
}

// Sends `content` to the queue lp1 as a client does that compresses it.
void PrintCompressed(const std::string &content) {
  const Files files;
  const std::string path = files.Write("a", content);
  // Packed twice: the client unpacks gzip files once by itself.
  ASSERT_EQ(0, RunProgram({"gzip", path}).status);
  std::filesystem::rename(path + ".gz", path);
  ASSERT_EQ(0, RunProgram({"gzip", path}).status);
  const std::string request = files.Write(
      "print.test",
      "{ OPERATION Print-Job GROUP operation-attributes-tag\n"
      "ATTR charset attributes-charset utf-8 ATTR language attributes-natural-language en\n"
      "ATTR uri printer-uri $uri ATTR keyword compression gzip\n"
      "ATTR mimeMediaType document-format text/plain FILE \"" +
          path + ".gz\" STATUS successful-ok }\n");
  const CommandResult sent =
      RunProgram({"ipptool", "-t", "ipp://%2Frun%2Fcups%2Fcups.sock/printers/lp1", request});
  ASSERT_EQ(0, sent.status) << sent.output;
}

// The words of an options argument that begin with "*".
Strings StarWords(const std::string &options) {
  Strings words;
  size_t start = 0;
  while (start < options.size()) {
    const size_t end = std::min(options.find(' ', start), options.size());
    if (options[start] == '*') words.push_back(options.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

}  // namespace

TEST(BridgePrinting, TheScriptRunsAsTheUserLp) {
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({}, "data");
  EXPECT_EQ(0u, queue.FirstIdentity().find("uid=7(lp) gid=7(lp)")) << queue.FirstIdentity();
}

TEST(BridgePrinting, TheFilesOfAJobStayApartInOneRunOfTheScript) {
  const Files files;
  const Strings contents = {"first\n", std::string(300000, 'x'), "third, no line feed"};
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({files.Write("a", contents[0]), files.Write("b", contents[1]),
                      files.Write("c", contents[2])});
  EXPECT_EQ(contents, OnlyCall(queue).contents);
}

TEST(BridgePrinting, AHundredFilesKeepTheirOrder) {
  const Files files;
  Strings paths, contents;
  for (int i = 0; i < 100; ++i) {
    contents.push_back("file " + std::to_string(i) + "\n");
    paths.push_back(files.Write(std::to_string(i), contents.back()));
  }
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait(paths);
  EXPECT_EQ(contents, OnlyCall(queue).contents);
}

TEST(BridgePrinting, OneFileAndStandardInputAreOnePathEach) {
  const Files files;
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({files.Write("a", "a file\n")});
  queue.PrintAndWait({}, "standard input\n");
  const std::vector<ScriptCall> calls = queue.Calls();
  ASSERT_EQ(2u, calls.size());
  EXPECT_EQ(Strings{"a file\n"}, calls[0].contents);
  EXPECT_EQ(Strings{"standard input\n"}, calls[1].contents);
}

TEST(BridgePrinting, RequestIdAndUserAreThoseOfTheJob) {
  const TestQueue queue("lp1");
  queue.Record();
  const std::string job = queue.PrintAndWait({}, "data");
  EXPECT_EQ("lp1-" + job, OnlyCall(queue).request);
  EXPECT_EQ("root", OnlyCall(queue).user);
}

TEST(BridgePrinting, AnOrdinaryUsersNameReachesTheScript) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "the sandbox has them only as root";
  const TestQueue queue("lp1");
  queue.Record();
  SchedulerLog log;
  EXPECT_EQ(0, RunProgram({"/usr/bin/lp", "-d", "lp1"}, "data", "anna").status);
  log.WaitFor("Job completed.");
  EXPECT_EQ("anna", OnlyCall(queue).user);
}

TEST(BridgePrinting, OddTitlesReachTheScriptUnchanged) {
  const Strings titles = {"two  blanks ", "it's \"$HOME\" `id` $(id) \\ ;|&<>*?[x]~#!", "-n",
                          "*NrCopies=9 job-uuid=1", "Büro – 日本"};
  const TestQueue queue("lp1");
  queue.Record();
  for (const std::string &title : titles) queue.PrintAndWait({"-t", title}, "data");
  const std::vector<ScriptCall> calls = queue.Calls();
  ASSERT_EQ(titles.size(), calls.size());
  for (size_t i = 0; i < titles.size(); ++i) EXPECT_EQ(titles[i], calls[i].title);
}

TEST(BridgePrinting, AFileNameNeverBecomesAnOption) {
  const Files files;
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-o", "*NrCopies=2", "-t", "title",
                      files.Write("x *NrCopies=9 \"$(id)' \\.ps", "one\n"),
                      files.Write("y", "two")});
  const ScriptCall call = OnlyCall(queue);
  EXPECT_EQ(Strings{"*NrCopies=2"}, StarWords(call.options)) << call.options;
  EXPECT_EQ((Strings{"one\n", "two"}), call.contents);
}

TEST(BridgePrinting, OptionWordsAreCarriedUnchanged) {
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-o", "*NrCopies=2", "-o", "*Duplex=DuplexNoTumble", "-o", "*Nup=4"}, "data");
  EXPECT_EQ((Strings{"*Duplex=DuplexNoTumble", "*NrCopies=2", "*Nup=4"}),
            StarWords(OnlyCall(queue).options));
}

TEST(BridgePrinting, BlanksAndQuotesInAnOptionStayOneEscapedWord) {
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-o", "*One='a job-x=\"b\" $HOME'", "-o", "*Two=`id`"}, "data");
  const std::string options = OnlyCall(queue).options;
  EXPECT_EQ(0u, options.find("*One=a\\ job-x=\\\"b\\\"\\ $HOME *Two=`id` ")) << options;
}

TEST(BridgePrinting, WhatTheSchedulerSaysAboutTheJobIsNoOption) {
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-o", "job-priority=60", "-o", "*Key=1"}, "data");
  const std::string options = OnlyCall(queue).options;
  for (const char *name : {"job-", "time-at-", "document-name"}) {
    EXPECT_EQ(std::string::npos, options.find(name)) << options;
  }
}

TEST(BridgePrinting, CopiesBecomeAnOptionUnlessTheOptionsNameThem) {
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-n", "3"}, "data");
  queue.PrintAndWait({"-n", "3", "-o", "*NrCopies=2"}, "data");
  queue.PrintAndWait({}, "data");
  const std::vector<ScriptCall> calls = queue.Calls();
  ASSERT_EQ(3u, calls.size());
  EXPECT_EQ("3", calls[0].copies);
  EXPECT_EQ(Strings{"*NrCopies=3"}, StarWords(calls[0].options));
  EXPECT_EQ(Strings{"*NrCopies=2"}, StarWords(calls[1].options));
  EXPECT_EQ("1", calls[2].copies);
  EXPECT_EQ(Strings{}, StarWords(calls[2].options));
}

TEST(BridgePrinting, CopiesNamedInsideAnotherOptionDoNotCount) {
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-n", "3", "-o", "*JobName='a *NrCopies=9'"}, "data");
  const std::string options = OnlyCall(queue).options;
  EXPECT_TRUE(options.ends_with(" *NrCopies=3")) << options;
}

TEST(BridgePrinting, CopiesNeverRepeatTheFiles) {
  const Files files;
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-n", "2", files.Write("a", "one\n"), files.Write("b", "two\n")});
  EXPECT_EQ((Strings{"one\n", "two\n"}), OnlyCall(queue).contents);
}

TEST(BridgePrinting, AnyKindOfFileIsTakenAndNothingIsConverted) {
  const Files files;
  std::string bytes;
  for (int i = 0; i < 2048; ++i) bytes += static_cast<char>(i * 7);
  const Strings contents = {bytes,
                            "%PDF-1.4\nno real one",
                            "\x89PNG\r\n\x1A\n",
                            "%!PS-Adobe-3.0\nshowpage\n",
                            "\x1B%-12345X@PJL\r\n",
                            std::string(1, '\0')};
  Strings paths;
  for (const std::string &content : contents) {
    paths.push_back(files.Write(std::to_string(paths.size()), content));
  }
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait(paths);
  EXPECT_EQ(contents, OnlyCall(queue).contents);
  queue.PrintAndWait({paths[0]});
  EXPECT_EQ(Strings{bytes}, queue.Calls().back().contents);
}

TEST(BridgePrinting, AFileThatIsSentCompressedReachesTheScriptUnpacked) {
  const std::string content(100000, 'z');
  const TestQueue queue("lp1");
  queue.Record();
  SchedulerLog log;
  PrintCompressed(content);
  log.WaitFor("Job completed.");
  EXPECT_EQ(Strings{content}, OnlyCall(queue).contents);
  EXPECT_EQ(Strings{}, NamesIn("/var/spool/cups/tmp"));
}

TEST(BridgePrinting, WhatAKilledBackendUnpackedGoesWithTheNextJob) {
  const TestQueue queue("lp1");
  const std::string hold = "/run/kpx/hold";
  std::filesystem::remove_all(hold);
  std::filesystem::create_directory(hold);
  std::filesystem::permissions(hold, std::filesystem::perms(0777));
  queue.Record("[ -e " + hold + "/free ] || { echo $$ $PPID >" + hold +
               "/pids; echo waiting >&2; exec sleep 1000; }");
  SchedulerLog log;
  PrintCompressed("secret");
  log.WaitFor("Set job-printer-state-message to \"waiting\"");
  const std::string started = "Started backend /usr/lib/cups/backend/kpxlp (PID ";
  const std::string text = log.Text();
  ASSERT_EQ(0, kill(std::stoi(text.substr(text.rfind(started) + started.size())), SIGKILL));
  log.WaitFor("was terminated normally with signal 9");
  std::ifstream pids(hold + "/pids");
  for (pid_t process = 0; pids >> process;) kill(process, SIGKILL);
  log.WaitFor("Job completed.");  // which is how the scheduler takes it
  EXPECT_EQ(1u, NamesIn("/var/spool/cups/tmp").size());

  std::ofstream(hold + "/free") << std::flush;
  SchedulerLog next;
  PrintCompressed("next");
  next.WaitFor("Job completed.");
  EXPECT_EQ(Strings{"next"}, queue.Calls().back().contents);
  EXPECT_EQ(Strings{}, NamesIn("/var/spool/cups/tmp"));
}

TEST(BridgePrinting, PackedDataOnStandardInputStaysAsItIs) {
  const Files files;
  const std::string path = files.Write("a", "packed\n");
  ASSERT_EQ(0, RunProgram({"gzip", "-k", path}).status);
  const std::string packed = ContentOf(path + ".gz");
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({}, packed);
  EXPECT_EQ(Strings{packed}, OnlyCall(queue).contents);
}

TEST(BridgePrinting, BannerPagesAreNoFilesOfTheJob) {
  const Files files;
  const TestQueue queue("lp1");
  queue.Record();
  queue.PrintAndWait({"-o", "job-sheets=standard,standard", files.Write("a", "text\n")});
  EXPECT_EQ(Strings{"text\n"}, OnlyCall(queue).contents);
}

TEST(BridgePrinting, AJobToAClassKeepsTheClassInItsRequestId) {
  const TestQueue queue("lp1");
  queue.Record();
  ASSERT_EQ(0, RunProgram({"/usr/sbin/lpadmin", "-p", "lp1", "-c", "all"}).status);
  ASSERT_EQ(0, RunProgram({"/usr/bin/accept", "all"}).status);
  ASSERT_EQ(0, RunProgram({"/usr/bin/enable", "all"}).status);
  SchedulerLog log;
  const CommandResult printed = RunProgram({"/usr/bin/lp", "-d", "all"}, "data");
  ASSERT_EQ(0u, printed.output.find("request id is all-")) << printed.output;
  log.WaitFor("Job completed.");
  EXPECT_EQ(0u, OnlyCall(queue).request.find("all-"));
  EXPECT_EQ(0, RunProgram({"/usr/sbin/lpadmin", "-x", "all"}).status);
}

TEST(BridgePrinting, TheScriptsWordsBecomeTheStateMessageAndNeverAnOrder) {
  const TestQueue queue("lp1");
  queue.Complete("echo 'warming up' >&2\necho 'STATE: +offline' >&2\nprintf unfinished >&2\n");
  SchedulerLog log;
  queue.PrintAndWait({}, "data");
  for (const char *words : {"warming up", "STATE: +offline", "unfinished"}) {
    EXPECT_NE(std::string::npos,
              log.Text().find("Set job-printer-state-message to \"" + std::string(words)))
        << words;
  }
  const std::string state = RunProgram({"lpstat", "-l", "-p", "lp1"}).output;
  EXPECT_NE(std::string::npos, state.find("Alerts: none")) << state;
}
