// The language directory and the paths built from it.
#include "language.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "globals.h"

namespace {

struct Case {
  const char *lang;
  const char *directory;
};

class Language : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    const char *lang = std::getenv("LANG");
    before_ = lang == nullptr ? "" : lang;
  }
  void TearDown() override { setenv("LANG", before_.c_str(), 1); }

 private:
  std::string before_;
};

}  // namespace

TEST_P(Language, NameGivesTheDirectory) {
  setenv("LANG", GetParam().lang, 1);
  EXPECT_EQ(G_GetNlsDirFromLang(), GetParam().directory) << "LANG=" << GetParam().lang;
}

INSTANTIATE_TEST_SUITE_P(
    Names, Language,
    testing::Values(Case{"de_DE.UTF-8", "deu/utf8"}, Case{"de", "deu"}, Case{"De_AT", "deu"},
                    Case{"german", "deu"}, Case{"es_ES", "esp"}, Case{"Es", "esp"},
                    Case{"spanish.UTF-8", "esp/utf8"}, Case{"fr_FR.UTF-8", "fra/utf8"},
                    Case{"Fr_CA.ISO8859-1", "fra"}, Case{"french", "fra"}, Case{"it_IT", "ita"},
                    Case{"It", "ita"}, Case{"Italian", "ita"}, Case{"italian", "ita"},
                    Case{"pt_BR.UTF-8", "ptb/utf8"}, Case{"Pt", "ptb"}, Case{"portuguese", "ptb"},
                    Case{"en_US.UTF-8", "enu"}, Case{"C", "enu"}, Case{"", "enu"},
                    Case{"xde", "enu"}, Case{"DE", "enu"}, Case{"German", "enu"},
                    Case{"de_DE.utf8", "deu"}, Case{"de_DE.UTF8", "deu"}, Case{"UTF-8", "enu"},
                    Case{"deUTF-8@euro", "deu/utf8"}));

TEST_F(Language, IsEnglishWhenTheVariableIsUnset) {
  unsetenv("LANG");
  EXPECT_EQ(G_GetNlsDirFromLang(), "enu");
}

TEST(LanguagePaths, AreJoinedFromRootAndLanguage) {
  lng_dir = "deu/utf8";
  BuildMessagesPath();
  BuildHelpPath();
  BuildPrinterPaths();
  BuildQueuesPath();
  EXPECT_EQ(msg_path, "/opt/orlan/data/nls/deu/utf8/pafs/messages.paf");
  EXPECT_EQ(hlp_path, "/opt/orlan/docs/nls/deu/utf8/KPX.help");
  EXPECT_EQ(ppd_path, "/opt/orlan/data/nls/deu/utf8/ppds");
  EXPECT_EQ(paf_path, "/opt/orlan/data/nls/deu/utf8/pafs");
  EXPECT_EQ(queues_path, "/opt/orlan/data/queues.paf");
  EXPECT_EQ(xpm_path, "");
}
