// The file of a user's presets: what is read, what is refused and where, and that nothing is lost,
// whatever fails while it is written.
#include "presetfile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "faultinjection.h"
#include "installation.h"
#include "openfile.h"
#include "temporarydirectory.h"

namespace {

using Presets = std::vector<Preset>;

class PresetFiles : public testing::Test {
 protected:
  PresetFiles() {
    setenv("HOME", home_.Path().c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
  }

  static Presets Read(const std::string &text) {
    const auto read = ReadPresets(text);
    if (const auto *fault = std::get_if<PresetFault>(&read)) {
      ADD_FAILURE() << fault->line << ": " << fault->reason;
      return {};
    }
    return std::get<Presets>(read);
  }
  // "LINE REASON"; "" when it is read.
  static std::string FaultOf(const std::string &text) {
    const auto read = ReadPresets(text);
    const auto *fault = std::get_if<PresetFault>(&read);
    return fault == nullptr ? "" : std::to_string(fault->line) + " " + fault->reason;
  }

  std::string Path() const { return home_.Path(".config/kpx/presets"); }
  void Write(const std::string &text) const {
    std::filesystem::create_directories(home_.Path(".config/kpx"));
    home_.Write(".config/kpx/presets", text);
  }
  static std::string Keep(const Preset &preset) {
    return ChangeKeptPresets([&](Presets &presets) {
      PutPreset(presets, preset);
      return std::string();
    });
  }

  TemporaryDirectory home_;

 private:
  ProgramMessages messages_{ContentOf(kInstalledCatalogue)};
};

const Preset kReport = {"Report", {{"*Duplex", "DuplexNoTumble"}, {"*NrCopies", "3"}}};
const Preset kTicket = {"Ticket (A=B) für Gäste", {{"*PageSize", "Ticket=1"}}};

TEST_F(PresetFiles, AreReadAsTheyWereWritten) {
  const Presets presets = {kReport,
                           kTicket,
                           {"Pages", {{"*Nup", "4"}, {"*NupOrder", "Back"}}},
                           {"B", {{"*Booklet", "1"}}}};
  EXPECT_EQ(presets, Read(PresetsText(presets)));
  EXPECT_EQ(Presets{}, Read(PresetsText({})));
}

TEST_F(PresetFiles, MayHaveCommentsEmptyLinesAndNoLastLineFeed) {
  EXPECT_EQ(Presets{kReport},
            Read("## mine\n\n[Report]\n## both sides\n*NrCopies=3\n\n*Duplex=DuplexNoTumble"));
}

TEST_F(PresetFiles, AreReadAsLatin1WhereTheyAreNotUtf8) {
  EXPECT_EQ("Gästebuch", Read("[G\xE4stebuch]\n*Duplex=None\n").at(0).name);
}

TEST_F(PresetFiles, AreRefusedWithLineAndReason) {
  struct Case {
    std::string text, fault;
  };
  const std::string long_name(41, 'n');
  const std::string long_line = "*Duplex=" + std::string(1100, 'x');
  const auto words = [](const char *key, std::initializer_list<FormatArg> args) {
    return CatalogueText(key, args);
  };
  const std::vector<Case> cases = {
      {"*Duplex=None\n", "1 " + words("PRESET_LINE_BAD", {"*Duplex=None"})},
      {"[A]\nDuplex=None\n", "2 " + words("PRESET_LINE_BAD", {"Duplex=None"})},
      {"[A]\n*Duplex\n", "2 " + words("PRESET_LINE_BAD", {"*Duplex"})},
      {"[A]\n*Duplex=None\n*Duplex=None\n", "3 " + words("PRESET_LINE_BAD", {"*Duplex=None"})},
      {"[A]\n*Duplex=\n", "2 " + words("PRESET_VALUE_BAD", {"", "*Duplex"})},
      {"[A]\n*Du plex=1\n", "2 " + words("PRESET_KEY_BAD", {"*Du plex"})},
      {"[]\n", "1 " + words("PRESET_NAME_BAD", {"[]", 40})},
      {"[ A]\n", "1 " + words("PRESET_NAME_BAD", {"[ A]", 40})},
      {"[A\n", "1 " + words("PRESET_NAME_BAD", {"[A", 40})},
      {"[" + long_name + "]\n", "1 " + words("PRESET_NAME_BAD", {"[" + long_name + "]", 40})},
      {"[A\x01]\n", "1 " + words("PRESET_NAME_BAD", {"[A?]", 40})},
      {"[A]\n*Duplex=None\n[A]\n", "3 " + words("PRESET_NAME_TWICE", {"A"})},
      {"[A]\n[B]\n*Duplex=None\n", "2 " + words("PRESET_EMPTY", {"A"})},
      {"[A]\n", "1 " + words("PRESET_EMPTY", {"A"})},
      {"[A]\n*NrCopies=0\n", "2 " + words("PRESET_VALUE_BAD", {"0", "*NrCopies"})},
      {"[A]\n*NrCopies=2x\n", "2 " + words("PRESET_VALUE_BAD", {"2x", "*NrCopies"})},
      {"[A]\n*NrCopies=99999\n", "2 " + words("PRESET_VALUE_BAD", {"99999", "*NrCopies"})},
      {"[A]\n*Nup=3\n", "2 " + words("PRESET_VALUE_BAD", {"3", "*Nup"})},
      {"[A]\n*Booklet=1\n*Nup=2\n", "3 " + words("PRESET_PAGES_BAD", {"A"})},
      {"[A]\n*NupOrder=Left\n", "2 " + words("PRESET_PAGES_BAD", {"A"})},
      {"[A]\n*Nup=2\n*NupOrder=Down\n", "3 " + words("PRESET_PAGES_BAD", {"A"})},
      {"[A]\n" + long_line + "\n", "2 " + words("PRESET_LINE_LONG", {})},
      {std::string("[A]\n*Duplex=No\0ne\n", 18), "2 " + words("PRESET_LINE_BAD", {"NUL"})},
  };
  for (const Case &one : cases) EXPECT_EQ(one.fault, FaultOf(one.text)) << one.text;
}

TEST_F(PresetFiles, NeverHoldWhoPrintsAndToWhom) {
  for (const char *key : {"*DeliveryPIN", "*UserName", "*JobName", "*EmailAddress", "*EmailMessage",
                          "*EmailNotification", "*FontName", "*TextHeader", "*PageRegion"}) {
    EXPECT_EQ("2 " + CatalogueText("PRESET_KEY_BAD", {key}),
              FaultOf(std::string("[A]\n") + key + "=1234\n"));
  }
}

TEST_F(PresetFiles, HoldAHundredPresetsAtMost) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += "[" + std::to_string(i) + "]\n*Duplex=None\n";
  EXPECT_EQ(100U, Read(text).size());
  EXPECT_EQ("201 " + FormatMessage(CatalogueText("PRESET_TOO_MANY"), {100}),
            FaultOf(text + "[100]\n"));
  Write(text);
  EXPECT_EQ(FormatMessage(CatalogueText("PRESET_TOO_MANY"), {100}), Keep(kReport));
  EXPECT_EQ(text, ContentOf(Path()));
}

TEST_F(PresetFiles, TakeNamesOfFortyCharactersOfAnyLanguage) {
  std::string name;
  for (int i = 0; i < 40; ++i) name += "é";
  EXPECT_TRUE(IsPresetName(name));
  EXPECT_FALSE(IsPresetName(name + "é"));
  EXPECT_TRUE(IsPresetName("[a]=b"));
  for (const char *bad : {"", " ", "a ", "a\nb", "\xE4", "\x7F"}) EXPECT_FALSE(IsPresetName(bad));
}

TEST_F(PresetFiles, AreKeptInTheUsersConfiguration) {
  EXPECT_EQ("", ReadKeptPresets().fault);
  EXPECT_EQ("", Keep(kReport));
  EXPECT_EQ("", Keep(kTicket));
  Preset other = kReport;
  other.settings["*NrCopies"] = "4";
  EXPECT_EQ("", Keep(other));
  EXPECT_EQ((Presets{other, kTicket}), ReadKeptPresets().presets);
  struct stat status = {};
  ASSERT_EQ(0, stat(Path().c_str(), &status));
  EXPECT_EQ(0600U, status.st_mode & 0777U);
  setenv("XDG_CONFIG_HOME", home_.Path("elsewhere").c_str(), 1);
  EXPECT_EQ(Presets{}, ReadKeptPresets().presets);
  EXPECT_EQ("", Keep(kReport));
  EXPECT_TRUE(std::filesystem::exists(home_.Path("elsewhere/kpx/presets")));
}

TEST_F(PresetFiles, ThatCannotBeReadAreNotWrittenOver) {
  for (const std::string &text : {std::string("[A]\nDuplex=None\n"), std::string("\0\x01\xFF", 3),
                                  std::string("## ") + std::string(1 << 20, 'x')}) {
    Write(text);
    const KeptPresets kept = ReadKeptPresets();
    EXPECT_NE("", kept.fault);
    EXPECT_NE(std::string::npos, kept.fault.find(Path())) << kept.fault;
    EXPECT_EQ(kept.fault, Keep(kReport));
    EXPECT_EQ(text, ContentOf(Path()));
  }
  std::filesystem::rename(Path(), home_.Path("mine"));
  std::filesystem::create_symlink(home_.Path("mine"), Path());
  EXPECT_EQ(CatalogueText("PRESETS_UNREADABLE", {Path()}), Keep(kReport));
  EXPECT_TRUE(std::filesystem::is_symlink(Path()));
}

TEST_F(PresetFiles, WhatAChangeRefusesIsNotWritten) {
  EXPECT_EQ("", Keep(kReport));
  const std::string before = ContentOf(Path());
  EXPECT_EQ("no", ChangeKeptPresets([](Presets &presets) {
              presets.clear();
              return std::string("no");
            }));
  EXPECT_EQ(before, ContentOf(Path()));
  // Nor what could not be read again.
  EXPECT_NE("", Keep({"A", {{"*DeliveryPIN", "1234"}}}));
  EXPECT_EQ(FormatMessage(CatalogueText("PRESET_NAME_BAD"), {"A?B", 40}),
            Keep({"A\nB", {{"*Duplex", "None"}}}));
  EXPECT_EQ(CatalogueText("PRESET_LINE_LONG"), Keep({"A", {{"*Duplex", std::string(1100, 'x')}}}));
  EXPECT_EQ(before, ContentOf(Path()));
}

TEST_F(PresetFiles, AreNotChangedWhileAnotherProgramChangesThem) {
  EXPECT_EQ("", Keep(kReport));
  const OpenFile other(open(home_.Path(".config/kpx").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  ASSERT_EQ(0, flock(other.Descriptor(), LOCK_EX));
  EXPECT_EQ(CatalogueText("PRESETS_NOT_WRITTEN", {Path(), std::strerror(EWOULDBLOCK)}),
            Keep(kTicket));
  EXPECT_EQ(Presets{kReport}, ReadKeptPresets().presets);
  ASSERT_EQ(0, flock(other.Descriptor(), LOCK_UN));
  EXPECT_EQ("", Keep(kTicket));
}

// The program is killed at each call that changes something, or the call fails: the file holds what
// it held, or the whole of the new, and a failure is told.
TEST_F(PresetFiles, AreOldOrNewWhateverFailsWhileTheyAreWritten) {
  ASSERT_EQ("", Keep(kReport));
  const Presets old_presets = {kReport};
  const Presets new_presets = {kReport, kTicket};
  for (const CallFate &fate :
       {CallFate{CallFate::Kind::Killed, 0}, CallFate{CallFate::Kind::Failed, ENOSPC},
        CallFate{CallFate::Kind::Failed, EIO}}) {
    bool was_reached = true;
    int number = 0;
    for (; was_reached && number < 30; ++number) {
      was_reached = false;
      int seen = 0;
      const TracedEnd end = RunTraced(
          [] {}, [] { return Keep(kTicket).empty() ? 0 : 1; },
          [&](const FileCall &call) {
            const bool counts = call.changes && IsBelow(call, {home_.Path()}) &&
                                (fate.kind == CallFate::Kind::Killed || CanFail(call, fate.error));
            if (!counts || seen++ != number) return CallFate{};
            was_reached = true;
            return fate;
          });
      const Presets kept = ReadKeptPresets().presets;
      EXPECT_TRUE(kept == old_presets || kept == new_presets) << number;
      if (fate.kind == CallFate::Kind::Failed && kept == old_presets) {
        EXPECT_EQ(1, end.status);
      }
      if (!was_reached) {
        EXPECT_EQ(new_presets, kept);
      }
      ASSERT_EQ("", ChangeKeptPresets([&](Presets &presets) {
                  presets = old_presets;
                  return std::string();
                }));
    }
    EXPECT_GT(number, 3);
    EXPECT_LT(number, 30);
  }
}

TEST_F(PresetFiles, ReachTheDiskBeforeTheyTakeTheOldOnesPlaceAndThenTheirDirectoryDoes) {
  ASSERT_EQ("", Keep(kReport));
  std::vector<std::string> steps;
  const TracedEnd end = RunTraced([] {}, [] { return Keep(kTicket).empty() ? 0 : 1; },
                                  [&](const FileCall &call) {
                                    if (!IsBelow(call, {home_.Path()})) return CallFate{};
                                    if (call.number == SYS_fsync) steps.emplace_back("flush");
                                    if (call.number == SYS_rename) steps.emplace_back("rename");
                                    return CallFate{};
                                  });
  EXPECT_EQ(0, end.status);
  EXPECT_EQ((std::vector<std::string>{"flush", "rename", "flush"}), steps);
}

}  // namespace
