// The windows with longer and larger texts: what a translation that is 40 % longer than English,
// and a user who has set 150 or 200 % text size, see. Nothing may be cut off or covered, and the
// screen holds the windows.
#include <cmath>

#include "administration.h"
#include "textencoding.h"

namespace {

using Strings = std::vector<std::string>;

// The English catalogue, its labels, buttons and titles longer by 40 %.
std::string LongerCatalogue() {
  std::string longer;
  bool is_label = false;
  const std::string content = ContentOf(kInstalledCatalogue);
  for (const std::string &line : SplitLines(content)) {
    longer += line;
    if (is_label)
      longer += " " + line.substr(0, static_cast<size_t>(std::ceil(0.4 * double(line.size()))));
    longer += '\n';
    is_label = line.starts_with("#DEF_");
  }
  return longer;
}

struct Appearance {
  const char *name;
  bool longer;
  std::vector<std::string> environment;
};

class LargeTexts : public AdministrationTest, public testing::WithParamInterface<Appearance> {
 protected:
  LargeTexts() {
    if (GetParam().longer) catalogue_.emplace(kInstalledCatalogue, LongerCatalogue());
    PutQueues(Strings{"lp1", "lp2", "lp3"});
  }

  static GuiAppOptions Options(const char *program) {
    return {.program = program, .environment = GetParam().environment};
  }

  static void ExpectWhole(GuiApp &app, const std::string &window) {
    app.WaitWindow(window);
    EXPECT_EQ(Strings{}, app.ClippedTexts()) << window;
    const ScreenArea area = app.Geometry(window);
    EXPECT_LE(area.width, 1280) << window;
    EXPECT_LE(area.height, 1024) << window;
    if (const char *directory = std::getenv("KPX_PICTURES")) {
      app.WaitDrawn();
      Screenshot(std::string(directory) + "/" + GetParam().name + "-" + window + ".png", area);
    }
  }

 private:
  std::optional<ChangedFile> catalogue_;
};

TEST_P(LargeTexts, AreWholeInTheAdministrationWindows) {
  AdminApp app(Options(kAdmin));
  ExpectWhole(app, "AdminWindow");
  app.OpenAddQueue();
  ExpectWhole(app, "AddQueueWindow");
  app.Click("AboutButton");
  ExpectWhole(app, app.Windows().front());
}

TEST_P(LargeTexts, AreWholeInTheSecondAdministratorsErrorBox) {
  AdminApp first(Options(kAdmin));
  GuiApp second(Options(kAdmin));
  ExpectWhole(second, "ErrorDialog");
}

TEST_P(LargeTexts, AreWholeInTheListOfAFailedSave) {
  AdminApp app(Options(kAdmin));
  std::filesystem::rename("/usr/lib/lpadmin", "/usr/lib/lpadmin.away");
  app.SelectQueues({0});
  app.Click("DeleteButton");
  app.Click("SaveButton");
  ExpectWhole(app, "KPXErrorWarningDialog");
  std::filesystem::rename("/usr/lib/lpadmin.away", "/usr/lib/lpadmin");
}

TEST_P(LargeTexts, AreWholeInThePrintToolsWindows) {
  GuiApp app(Options("/usr/bin/KPXtool"));
  ExpectWhole(app, "ToolWindow");
  app.Click("LprCommandButton");
  ExpectWhole(app, "LprCmdDialog");
  app.Key("Escape");
  app.WaitGone("LprCmdDialog");
  app.Key("F1");
  ExpectWhole(app, "KPXHelpDialog");
}

INSTANTIATE_TEST_SUITE_P(, LargeTexts,
                         testing::Values(Appearance{"longer", true, {}},
                                         Appearance{"larger", false, {"GDK_DPI_SCALE=1.5"}},
                                         Appearance{"largest", false, {"GDK_DPI_SCALE=2"}},
                                         Appearance{"both", true, {"GDK_DPI_SCALE=1.5"}}),
                         [](const auto &appearance) { return appearance.param.name; });

}  // namespace
