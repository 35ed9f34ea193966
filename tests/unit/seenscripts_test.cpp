// Interface scripts that are looked at more than once: read once, and never stale.
#include "seenscripts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include "openfile.h"
#include "porting.h"
#include "temporarydirectory.h"

namespace {

const std::string kBeginning = "#!/bin/sh\n# a model\n";
const std::string kMark = kMarkerLine;

std::string Script(const std::string &address) {
  return kBeginning + kMark + "\nNETWORK_ADDRESS=" + address + "\n";
}

class SeenScriptsTest : public ::testing::Test {
 protected:
  std::string Write(const std::string &text) const { return directory_.Write("lp1", text); }
  std::optional<std::string> Read() const {
    bool is_file = false;
    std::optional<std::string> text = ReadScript(directory_.Path("lp1"), kMark, &is_file);
    EXPECT_TRUE(is_file);
    return text;
  }
  // Waits until the clock that the times of files come from has moved on.
  void Settle() const {
    const auto time_of = [](const std::string &path) {
      struct stat file = {};
      stat(path.c_str(), &file);
      return std::pair(file.st_ctim.tv_sec, file.st_ctim.tv_nsec);
    };
    do directory_.Write("clock", "");
    while (time_of(directory_.Path("clock")) <= time_of(directory_.Path("lp1")));
  }

  TemporaryDirectory directory_;
};

// Tells whether files of a directory are opened.
class OpenedFiles {
 public:
  explicit OpenedFiles(const std::string &directory)
      : events_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    EXPECT_NE(-1, inotify_add_watch(events_.Descriptor(), directory.c_str(), IN_OPEN));
  }
  // Whether there were any since it was asked last.
  bool Were() const {
    char buffer[4096];
    bool were = false;
    while (read(events_.Descriptor(), buffer, sizeof buffer) > 0) were = true;
    return were;
  }

 private:
  OpenFile events_;
};

TEST_F(SeenScriptsTest, OneThatStaysAsItIsIsReadOnce) {
  Write(Script("10.0.0.1"));
  Settle();
  const OpenedFiles opened(directory_.Path());
  const SeenScripts seen(0);
  for (const bool is_first : {true, false, false}) {
    EXPECT_EQ(Script("10.0.0.1"), Read());
    EXPECT_EQ(is_first, opened.Were());
  }
}

TEST_F(SeenScriptsTest, WhatEndsWithinAnotherOneForgetsNothing) {
  Write(Script("10.0.0.1"));
  Settle();
  const OpenedFiles opened(directory_.Path());
  {
    const SeenScripts seen(0);
    {
      const SeenScripts within;
      EXPECT_EQ(Script("10.0.0.1"), Read());
    }
    EXPECT_TRUE(opened.Were());
    EXPECT_EQ(Script("10.0.0.1"), Read());
    EXPECT_FALSE(opened.Were());
  }
  EXPECT_EQ(Script("10.0.0.1"), Read());
  EXPECT_TRUE(opened.Were()) << "nothing is held any more";
}

TEST_F(SeenScriptsTest, OneThatHasChangedIsReadAnew) {
  const std::string path = Write(Script("10.0.0.1"));
  Settle();
  struct stat before = {};
  stat(path.c_str(), &before);
  const SeenScripts seen(0);
  EXPECT_EQ(Script("10.0.0.1"), Read());
  Write(Script("10.0.0.2"));
  const timespec times[] = {before.st_atim, before.st_mtim};
  utimensat(AT_FDCWD, path.c_str(), times, 0);
  EXPECT_EQ(Script("10.0.0.2"), Read()) << "of the same size and, as it says, time";
  directory_.Write("new", Script("10.0.0.3"));
  std::filesystem::rename(directory_.Path("new"), path);
  EXPECT_EQ(Script("10.0.0.3"), Read());
  std::filesystem::remove(path);
  bool is_file = false;
  EXPECT_EQ(std::nullopt, ReadScript(path, kMark, &is_file));
}

TEST_F(SeenScriptsTest, OneThatHasJustChangedIsReadAnewBecauseItsTimeMayNotTell) {
  Write(Script("10.0.0.1"));
  const OpenedFiles opened(directory_.Path());
  const SeenScripts seen(3600);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Script("10.0.0.1"), Read());
    EXPECT_TRUE(opened.Were());
  }
}

TEST_F(SeenScriptsTest, ScriptsThatHaveNothingInCommonStayWhatTheyAre) {
  using namespace std::string_literals;
  const SeenScripts seen(0);
  for (const std::string &text : {Script("10.0.0.1"), "other"s + kMark + "\n", kMark, "no mark"s,
                                  ""s, "a\0b"s + kMark + "\nc\0d"s, kBeginning + kMark + "\0"s}) {
    Write(text);
    Settle();
    EXPECT_EQ(text, Read());
    EXPECT_EQ(text, Read());
  }
}

}  // namespace
