// The names that makers have for what the tabs show, against thousands of PPD files: each name of
// the table is in use, and a name in use that looks like one of theirs is in the table, or here
// with the reason why it is not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>

#include "featuretable.h"
#include "moreoptions.h"

namespace {

constexpr int kFewFiles = 5;    // of a name in the table
constexpr int kManyFiles = 10;  // of a name that is to be in it

// What the names of such options hold, in small letters.
constexpr const char *kParts[] = {"staple",  "stapling",  "punch",      "duplex",
                                  "collate", "outputbin", "resolution", "quality"};

struct Other {
  const char *name, *what;
};
constexpr Other kOthers[] = {
    {"RICollateKind", "how the sets are laid off, beside Collate"},
    {"KCCollate", "where the printer stores the job"},
    {"KMCollate", "where the printer stores the job"},
    {"KMRotateCollate", "sets turned against each other, beside Collate"},
    {"KMStapleCount", "after how many sheets, beside KMStapleMode"},
    {"JCLStaplePosition", "on which side, beside the other one"},
    {"JCLPunchPosition", "on which side, beside JCLPunchLocation"},
    {"RIRingPunch", "the holes of a ring binding, beside RIPunch"},
    {"SECReverseDuplex", "which side comes first, beside Duplex"},
    {"CMAndResolution", "the colours"},
    {"BRPrintQuality", "the colours"},
    {"HPPrintQualityPreset", "settings of others in one"},
    {"JobPrintQualitySettings", "settings of others in one"},
    {"JobOutputBin", "beside OutputBin"},
};

std::map<std::string, int> ReadFilesOfOptions() {
  const std::string command = std::string("python3 ") + KPX_TEST_DATA +
                              "/support/option_names.py /usr/lib/cups/driver/openprinting-ppds "
                              "/usr/lib/cups/driver/postscript-hp /usr/share/ppd/hp-ppd";
  std::map<std::string, int> files;
  const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
  std::string text;
  for (char buffer[4096]; const size_t count = fread(buffer, 1, sizeof buffer, pipe.get());) {
    text.append(buffer, count);
  }
  std::istringstream lines(text);
  int count = 0;
  for (std::string name; lines >> count >> name;) files[name] = count;
  return files;
}

const std::map<std::string, int> &FilesOfOptions() {
  static const std::map<std::string, int> files = ReadFilesOfOptions();
  return files;
}

bool LooksLikeOne(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::any_of(std::begin(kParts), std::end(kParts),
                     [&name](const char *part) { return name.find(part) != std::string::npos; });
}

bool HasRow(const std::string &name) {
  const std::string key = "*" + name;
  const auto &listed = ListedFeatures();
  const auto &others = MakersNames();
  return std::any_of(listed.begin(), listed.end(),
                     [&](const auto &row) { return key == row.feature; }) ||
         std::any_of(others.begin(), others.end(),
                     [&](const auto &row) { return key == row.name; });
}

TEST(MakersNames, AreInUse) {
  const auto &files = FilesOfOptions();
  ASSERT_GT(files.size(), 500u);
  for (const MakersName &name : MakersNames()) {
    const auto found = files.find(name.name + 1);
    EXPECT_TRUE(found != files.end() && found->second >= kFewFiles) << name.name;
  }
}

TEST(MakersNames, AreAllThatManyFilesHave) {
  for (const auto &[name, count] : FilesOfOptions()) {
    if (count < kManyFiles || !LooksLikeOne(name)) continue;
    const bool known =
        std::any_of(std::begin(kOthers), std::end(kOthers),
                    [&name = name](const Other &other) { return name == other.name; });
    EXPECT_NE(HasRow(name), known) << name << ", in " << count << " files";
  }
}

}  // namespace
