// The one place that runs commands.
#include "command.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include "childprocess.h"
#include "temporarydirectory.h"

TEST(ShellWord, QuotesWhatTheShellWouldRead) {
  EXPECT_EQ("/a/b-c_d.ps", ShellWord("/a/b-c_d.ps"));
  EXPECT_EQ("'a b'", ShellWord("a b"));
  EXPECT_EQ("'it'\\''s'", ShellWord("it's"));
  EXPECT_EQ("''", ShellWord(""));
  EXPECT_EQ("'~'", ShellWord("~"));
}

TEST(RunCommand, PassesStandardOutputOnAndKeepsIt) {
  const TemporaryDirectory directory;
  const ChildResult result = RunInChild([&] {
    if (freopen(directory.Path("out").c_str(), "w", stdout) == nullptr) _exit(90);
    std::string output = "before";
    if (RunCommand("echo one; echo two >&2; exit 3", &output) != 3) _exit(91);
    if (output != "one\n") _exit(92);
    std::puts("after");
  });
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("two\n", result.errors);
  EXPECT_EQ("one\nafter\n", ContentOf(directory.Path("out")));
}

TEST(RunCommand, GoesOnWhenNobodyReadsTheOutputAnyMore) {
  const ChildResult result = RunInChild([] {
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) _exit(90);
    close(ends[0]);
    close(ends[1]);
    std::string output;
    if (RunCommand("echo one", &output) != 0 || output != "one\n") _exit(91);
  });
  EXPECT_EQ(0, result.status);
}

TEST(RunCommand, KeepsMoreThanAPipeHolds) {
  const ChildResult result = RunInChild([] {
    if (freopen("/dev/null", "w", stdout) == nullptr) _exit(90);
    std::string output;
    if (RunCommand("head -c 1000000 /dev/zero", &output) != 0) _exit(91);
    if (output.size() != 1'000'000) _exit(92);
  });
  EXPECT_EQ(0, result.status);
}

TEST(OutputOf, IsStandardOutputInThePlainLocaleWithoutTheUsersEnvironment) {
  setenv("CUPS_SERVER", "elsewhere", 1);
  const auto output =
      OutputOf({"/bin/sh", "-c", "echo \"$LC_ALL,$HOME,$CUPS_SERVER\"; echo x >&2"}, 10000);
  unsetenv("CUPS_SERVER");
  EXPECT_EQ("C,/,\n", output);
}

TEST(OutputOf, IsNothingWhenTheProgramFailsOrIsMissing) {
  EXPECT_EQ(std::nullopt, OutputOf({"/bin/sh", "-c", "echo x; exit 1"}, 10000));
  EXPECT_EQ(std::nullopt, OutputOf({"/no/such/program"}, 10000));
}

TEST(OutputOf, EndsAProgramThatTakesLonger) {
  const TemporaryDirectory directory;
  const std::string pid = directory.Path("pid");
  EXPECT_EQ(
      std::nullopt,
      OutputOf({"/bin/sh", "-c", "echo $$ >" + pid + "; echo x; exec tail -f /dev/null"}, 300));
  pid_t child = 0;
  std::ifstream(pid) >> child;
  ASSERT_GT(child, 1);
  EXPECT_EQ(-1, kill(child, 0));
  EXPECT_EQ(ESRCH, errno);
}
