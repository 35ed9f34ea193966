// The shipped help files hold every block that a window asks for, short enough to be shown.
#include <gtest/gtest.h>

#include <set>

#include "chelp.h"
#include "data_files.h"

namespace {

// The window joins help blocks in a text of this many characters.
constexpr size_t kMaxHelp = 10240;

// What each help button shows, as the windows join it.
const std::vector<std::vector<const char *>> kShown = {
    {"KPX_ABOUT_BEGIN"},
    {"KPX_ADMIN_BEGIN"},
    {"KPX_ADMIN_ADDQUEUE_BEGIN", "KPX_ABOUT_BTN_BEGIN", "KPX_ADMIN_ADDQUEUE_BTNS_BEGIN"},
    {"KPX_ADMIN_GEN_TAB_BEGIN", "KPX_ABOUT_BTN_BEGIN", "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_TOOL_GEN_TAB_BEGIN", "KPX_TOOL_GEN_TAB_FTRS_BEGIN", "KPX_ABOUT_BTN_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_ADMIN_SETUP_TAB_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_TOOL_SETUP_TAB_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_OUTPUT_TAB_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_OPTIONS_TAB_BEGIN", "KPX_MULTIPLE_UP_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_DESTINATION_TAB_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_ADMIN_FEATURES_TAB_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN",
     "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_ADMIN_CUSTOMS_TAB_BEGIN", "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_FONTS_TAB_BEGIN", "KPX_PROPERTIES_DEFAULTS_BUTTON_BEGIN", "KPX_PROPERTIES_BUTTONS_BEGIN"},
    {"KPX_CPS_PARAMS_BEGIN"},
    {"KPX_CMT_PARAMS_BEGIN"},
    {"KPX_PRESETS_BEGIN"},
    {"KPX_JOBS_BEGIN"},
    {"KPX_TOOL_BEGIN"},
};

class ShippedHelp : public testing::TestWithParam<std::filesystem::path> {
 protected:
  void SetUp() override {
    text_ = FileText(GetParam());
    help_ = CreateHelp(GetParam().c_str());
    help_->helps = CreateHash();
    LineReader lines(text_);
    const std::optional<HelpError> error = ReadHelp(help_.get(), lines);
    ASSERT_FALSE(error.has_value()) << "line " << error->line << ", block " << error->block;
  }

  std::string Block(const char *name) {
    const char *text = HashText(help_->helps.get(), name);
    return text == nullptr ? "" : text;
  }

  std::string text_;
  Owned<CHelp> help_;
};

TEST_P(ShippedHelp, HoldsEveryBlockAndNothingElse) {
  std::set<std::string> asked;
  for (const auto &blocks : kShown) asked.insert(blocks.begin(), blocks.end());
  for (const std::string &name : asked) EXPECT_NE(Block(name.c_str()), "") << name;
  for (const auto [name, text] : Pairs<CString>(help_->helps.get())) {
    EXPECT_TRUE(asked.contains(name)) << name << " is shown nowhere";
  }
}

TEST_P(ShippedHelp, FitsItsWindowHoweverBlocksAreJoined) {
  for (const auto &blocks : kShown) {
    std::string shown;
    for (const char *name : blocks) shown += Block(name);
    EXPECT_LT(shown.size(), kMaxHelp) << blocks.front();
  }
}

TEST_P(ShippedHelp, BreaksItsLinesForTheHelpWindow) {
  for (const std::string &line : FileLines(GetParam())) {
    const auto is_start = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    if (line.starts_with("##")) continue;
    EXPECT_LE(std::count_if(line.begin(), line.end(), is_start), 68) << line;
  }
}

TEST_P(ShippedHelp, AboutNamesProgramVersionAndLicence) {
  const std::string about = Block("KPX_ABOUT_BEGIN");
  EXPECT_TRUE(about.starts_with("KPX\n")) << about;
  EXPECT_NE(about.find("@PROJECT_VERSION@"), std::string::npos) << "for the build to fill in";
  EXPECT_NE(about.find("Apache"), std::string::npos);
}

TEST_P(ShippedHelp, NamesItsLanguage) {
  ASSERT_NE(help_->language, nullptr);
  EXPECT_STRNE(fGet_CString_Value_Function(help_->language.get()), "");
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedHelp, testing::ValuesIn(LanguageFiles("KPX.help")),
                         [](const auto &row) { return LanguageOf(row.param); });

TEST(SourceHelpBlocks, EveryBlockThatTheSourcesNameIsShipped) {
  std::set<std::string> asked;
  for (const auto &blocks : kShown) asked.insert(blocks.begin(), blocks.end());
  for (const std::string &name : SourceMatches("\"(KPX_[A-Z_]+_BEGIN)\"")) {
    EXPECT_TRUE(asked.contains(name)) << name;
  }
}

}  // namespace
