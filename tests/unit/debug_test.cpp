// The diagnostics log, each case in a process of its own because its form is decided only once.
#include "debug.h"

#include <gtest/gtest.h>

#include <clocale>

#include "childprocess.h"

namespace {

// What `body` logs at -verbose `level` with KPXDEBUG set to `form` (null: unset).
std::string Logged(int level, const char *form, const std::function<void()> &body) {
  const ChildResult result = RunInChild([&] {
    if (form == nullptr) {
      unsetenv("KPXDEBUG");
    } else {
      setenv("KPXDEBUG", form, 1);
    }
    G_DebugLevel = level;
    body();
  });
  EXPECT_EQ(result.status, 0);
  return result.errors;
}

void LogAt(int level) {
  debugout("../src/x.cpp", 7, level, ("level " + std::to_string(level)).c_str());
}

void LogText(const char *text) { debugout("../src/x.cpp", 7, 1, text); }

}  // namespace

TEST(Log, IsSilentAtLevel0) {
  EXPECT_EQ(Logged(0, "TRUE", [] { LogAt(1); }), "");
}

TEST(Log, ANegativeLevelPrintsNothing) {
  EXPECT_EQ(Logged(-3, nullptr,
                   [] {
                     LogAt(1);
                     LogAt(-3);
                   }),
            "");
}

TEST(Log, AtLevel2OnlyLevels1And2Appear) {
  EXPECT_EQ(Logged(2, nullptr,
                   [] {
                     for (int level = 1; level <= 4; ++level) LogAt(level);
                   }),
            "level 1\nlevel 2\n");
}

TEST(Log, ALevelAbove4CountsAs4) {
  EXPECT_EQ(Logged(4, nullptr, [] { LogAt(7); }), "level 7\n");
  EXPECT_EQ(Logged(3, nullptr, [] { LogAt(7); }), "");
}

TEST(Log, ALevelOf0OrBelowCountsAs1) {
  EXPECT_EQ(Logged(1, nullptr,
                   [] {
                     LogAt(0);
                     LogAt(-3);
                   }),
            "level 0\nlevel -3\n");
}

TEST(Log, OnlyTheExactWordChoosesTheTracedForm) {
  EXPECT_EQ(Logged(1, "TRUE", [] { LogText("m"); }), "../src/x.cpp[7]: m\n");
  for (const char *form : {"true", "TRUE ", "", "1", "True"}) {
    EXPECT_EQ(Logged(1, form, [] { LogText("m"); }), "m\n") << "KPXDEBUG=" << form;
  }
}

TEST(Log, TheFormIsDecidedOnceByTheFirstCallThatIsNotSilent) {
  EXPECT_EQ(Logged(0, nullptr,
                   [] {
                     LogText("silent");
                     setenv("KPXDEBUG", "TRUE", 1);
                     G_DebugLevel = 1;
                     LogText("a");
                     unsetenv("KPXDEBUG");
                     LogText("b");
                   }),
            "../src/x.cpp[7]: a\n../src/x.cpp[7]: b\n");
}

TEST(Log, BeginAndEndIndentWhatIsBetweenThem) {
  EXPECT_EQ(Logged(4, "TRUE",
                   [] {
                     LogText("BEGIN a");
                     LogText("BEGIN b");
                     LogText("x");
                     LogText("END   b");
                     LogText("END   a");
                     LogText("y");
                   }),
            "../src/x.cpp[7]: BEGIN a\n"
            "  ../src/x.cpp[7]: BEGIN b\n"
            "    ../src/x.cpp[7]: x\n"
            "  ../src/x.cpp[7]: END   b\n"
            "../src/x.cpp[7]: END   a\n"
            "../src/x.cpp[7]: y\n");
}

TEST(Log, AnEndWithoutBeginDoesNotIndentBelowZero) {
  EXPECT_EQ(Logged(4, "TRUE",
                   [] {
                     LogText("END   a");
                     LogText("BEGIN b");
                     LogText("x");
                   }),
            "../src/x.cpp[7]: END   a\n../src/x.cpp[7]: BEGIN b\n  ../src/x.cpp[7]: x\n");
}

TEST(Log, AnyMessageThatStartsWithTheWordsMovesTheIndentation) {
  EXPECT_EQ(Logged(4, "TRUE",
                   [] {
                     LogText("BEGINNING");
                     LogText("ENDING");
                   }),
            "../src/x.cpp[7]: BEGINNING\n../src/x.cpp[7]: ENDING\n");
}

TEST(Log, MessagesThatAreNotShownDoNotIndent) {
  EXPECT_EQ(Logged(1, "TRUE",
                   [] {
                     debugout("f", 1, 4, "BEGIN hidden");
                     LogText("x");
                   }),
            "../src/x.cpp[7]: x\n");
}

TEST(Log, TheTerseFormDoesNotIndent) {
  EXPECT_EQ(Logged(4, nullptr,
                   [] {
                     LogText("BEGIN a");
                     LogText("x");
                   }),
            "BEGIN a\nx\n");
}

TEST(Log, AFormatInTheMessageIsText) {
  EXPECT_EQ(Logged(1, nullptr, [] { LogText("%s%n%d"); }), "%s%n%d\n");
}

TEST(LogScope, WritesEntryAndExitAtLevel4WithTheCallersPlace) {
  const auto body = [] {
    const LogScope log("Outer");
    Log(1, "inside");
  };
  EXPECT_EQ(Logged(4, nullptr, body), "BEGIN Outer() function\ninside\nEND   Outer() function\n");
  EXPECT_EQ(Logged(3, nullptr, body), "inside\n");
  const std::vector<std::string> lines = SplitLines(Logged(4, "TRUE", body));
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_TRUE(lines[0].starts_with("../tests/unit/debug_test.cpp[")) << lines[0];
  EXPECT_TRUE(lines[1].starts_with("  ../tests/unit/debug_test.cpp[")) << lines[1];
}

TEST(Log, WhatWasLoggedIsThereWhenTheProcessCrashes) {
  const ChildResult result = RunInChild([] {
    G_DebugLevel = 1;
    LogText("last words");
    _exit(9);
  });
  EXPECT_EQ(result.status, 9);
  EXPECT_EQ(result.errors, "last words\n");
}

TEST(Log, WritesTheLocalesCharacterSet) {
  const auto body = [] {
    setlocale(LC_ALL, "C");
    LogText("Gr\u00F6\u00DFe");
  };
  EXPECT_EQ(Logged(1, nullptr, body), "Gr??e\n");
  EXPECT_EQ(Logged(1, "TRUE", body), "../src/x.cpp[7]: Gr??e\n");
}
