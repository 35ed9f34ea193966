// The installation holds all that the programs need to start, in every language. Runs where a
// staged installation lies at its real place.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "data_files.h"
#include "language.h"
#include "paths.h"
#include "privateworld.h"

namespace {

// The language directories that start-up can choose.
std::vector<std::string> LanguageDirectories() {
  std::vector<std::string> directories = {"enu"};
  for (const TranslatedLanguage &language : TranslatedLanguages()) {
    directories.emplace_back(language.directory);
    directories.push_back(std::string(language.directory) + "/utf8");
  }
  return directories;
}

const std::vector<std::string> kModels = {"vek41201", "vek41101", "vek41051",
                                          "vek41211", "vek41001", "vek41021"};

TEST(Installation, HasTheTextsOfEveryLanguage) {
  for (const std::string &language : LanguageDirectories()) {
    const std::string data = std::string(kNlsDir) + "/" + language;
    const std::string help = std::string(kHelpNlsDir) + "/" + language + "/KPX.help";
    EXPECT_TRUE(std::filesystem::is_regular_file(data + "/pafs/messages.paf")) << language;
    ASSERT_TRUE(std::filesystem::is_regular_file(help)) << language;
    EXPECT_EQ(FileText(help).find("@PROJECT_VERSION@"), std::string::npos) << language;
  }
}

TEST(Installation, HasTheDescriptionsOfEveryModelInEveryLanguage) {
  for (const std::string &language : LanguageDirectories()) {
    for (const std::string &model : kModels) {
      const std::string data = std::string(kNlsDir) + "/" + language;
      EXPECT_TRUE(std::filesystem::is_regular_file(data + "/ppds/" + model + ".ppd"))
          << language << " " << model;
      EXPECT_TRUE(std::filesystem::is_regular_file(data + "/pafs/" + model + ".paf"))
          << language << " " << model;
    }
  }
}

TEST(Installation, HasFontMapAndTitlePicture) {
  EXPECT_TRUE(std::filesystem::is_regular_file(kFontmapFile));
  EXPECT_TRUE(std::filesystem::is_regular_file(std::string(kPixmapDir) + "/np_vek.xpm"));
}

TEST(Installation, LetsUsersKeepOptionFilesThatTheSpoolerReads) {
  struct stat status {};
  ASSERT_EQ(stat(kUsersDir, &status), 0);
  EXPECT_EQ(status.st_mode & 07777u, 03777u);
  if (!HasOrdinaryUsers()) return;  // only root can give it to the spooler's group
  const struct group *lp = getgrnam("lp");
  ASSERT_NE(lp, nullptr);
  EXPECT_EQ(status.st_gid, lp->gr_gid);
}

}  // namespace
