// The windows in the toolkit's light, dark and high-contrast themes, with texts of the usual and of
// larger size: every text and picture stands out from its background on the screen, and nothing is
// cut off.
#include <cmath>
#include <map>

#include "admindriver.h"
#include "administration.h"
#include "keyboard.h"
#include "propertiesdriver.h"
#include "tooldriver.h"
#include "xinput.h"

namespace {

using Strings = std::vector<std::string>;

// What the Web Content Accessibility Guidelines (2.1, 1.4.3 and 1.4.11) ask of texts and of
// pictures; of what is insensitive they ask nothing, but it should be made out. The toolkit's light
// theme shows selected texts in white on a blue of 3.8.
const std::map<std::string, double> kLeast = {
    {"text", 4.5}, {"picture", 3}, {"chosen", 3.5}, {"dead", 2}};

double Luminance(unsigned long colour) {
  const auto channel = [&](int shift) {
    const double value = static_cast<double>(colour >> shift & 0xFF) / 255;
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * channel(16) + 0.7152 * channel(8) + 0.0722 * channel(0);
}

// 1 for the same brightness, 21 for black on white.
double Contrast(unsigned long a, unsigned long b) {
  const double light = std::max(Luminance(a), Luminance(b));
  const double dark = std::min(Luminance(a), Luminance(b));
  return (light + 0.05) / (dark + 0.05);
}

// How often the colours occur in an area of the screen.
std::map<unsigned long, int> ColoursIn(const ScreenPixels &screen, const ScreenArea &area) {
  std::map<unsigned long, int> colours;
  const int bottom = std::min(area.y + area.height, screen.height);
  const int right = std::min(area.x + area.width, screen.width);
  for (int y = std::max(0, area.y); y < bottom; ++y) {
    for (int x = std::max(0, area.x); x < right; ++x) ++colours[screen.At(x, y)];
  }
  return colours;
}

unsigned long MostFrequent(const std::map<unsigned long, int> &colours) {
  unsigned long found = 0;
  int most = 0;
  for (const auto &[colour, count] : colours) {
    if (count <= most) continue;
    found = colour;
    most = count;
  }
  return found;
}

// The best contrast in the area against its background; that of a picture is what its left edge
// shows, beside the sheet in its middle.
double BestContrast(const ScreenPixels &screen, const SeenArea &seen) {
  const std::map<unsigned long, int> colours = ColoursIn(screen, seen.area);
  ScreenArea ground = seen.area;
  if (seen.state == "picture") ground.width = 1;
  const unsigned long background = MostFrequent(ColoursIn(screen, ground));
  double best = 1;
  for (const auto &[colour, count] : colours) best = std::max(best, Contrast(colour, background));
  return best;
}

struct Look {
  std::string theme;
  int text_size = 100;  // per cent
};
void PrintTo(const Look &look, std::ostream *out) { *out << look.theme << " " << look.text_size; }

class Themes : public AdministrationTest, public testing::WithParamInterface<Look> {
 protected:
  Themes() {
    PutQueues(std::vector<QueueValues>{
        {.name = "lp1"}, {.name = "txt1", .printer = "Vek Norvel 4105", .language = "text"}});
    XInputMove(0, 0);
  }

  static GuiAppOptions Options(const char *program = kAdmin) {
    return {.program = program,
            .environment = {"GTK_THEME=" + GetParam().theme,
                            "GDK_DPI_SCALE=" + std::to_string(GetParam().text_size / 100.0)}};
  }

  void ExpectReadable(GuiApp &app, const std::string &window) {
    app.WaitWindow(window);
    EXPECT_EQ(Strings{}, app.ClippedTexts()) << window;
    app.WaitDrawn();
    const ScreenPixels screen = XInputPixels();
    const std::vector<SeenArea> areas = app.SeenAreas();
    EXPECT_FALSE(areas.empty());
    for (const SeenArea &seen : areas) {
      const double least = kLeast.at(seen.state);
      EXPECT_GE(BestContrast(screen, seen), least)
          << seen.state << " of " << seen.widget << " at " << seen.area.x << "," << seen.area.y;
    }
    Picture(app, window);
  }

 private:
  // For whoever wants to look at them.
  void Picture(GuiApp &app, const std::string &window) {
    const char *directory = std::getenv("KPX_PICTURES");
    if (directory == nullptr) return;
    std::string name = GetParam().theme;
    std::replace(name.begin(), name.end(), ':', '_');
    Screenshot(app, std::string(directory) + "/" + name + "-" +
                        std::to_string(GetParam().text_size) + "-" + window + "-" +
                        std::to_string(++pictures_) + ".png");
  }

  int pictures_ = 0;
};

TEST_P(Themes, AreReadableInTheAdministrationWindows) {
  AdminApp app(Options());
  app.SelectQueues({0});
  ExpectReadable(app, "AdminWindow");
  FillNewQueue(app, {"lp1", kLp1Printer, 0, "192.0.2.1"});
  ExpectReadable(app, "AddQueueWindow");
  app.Click("AddQueueWindow/OKButton");
  ExpectReadable(app, "ErrorDialog");
  app.Key("Return");
  app.WaitGone("ErrorDialog");
  app.Click("AboutButton");
  ExpectReadable(app, "dialogAbout");
  app.Key("F1");
}

TEST_P(Themes, AreReadableOnEveryTabOfAQueue) {
  AdminApp app(Options());
  app.SelectQueues({0});
  OpenProperties(app);
  ShowTab(app, "Setup");
  ChooseOption(app, "Duplex", "Two-sided, long edge");
  ChooseOption(app, "PaperType", "Transparencies");
  for (const std::string &tab : kAdminTabs) {
    ShowTab(app, tab);
    ExpectReadable(app, "PropertiesWindow");
    if (tab != "Customs") continue;
    app.Click("CpsButtonAdd");
    ExpectReadable(app, "CpsParamWindow");
    app.Key("Escape");
    app.WaitGone("CpsParamWindow");
  }
  PressProperties(app, "OK");
  ExpectReadable(app, "ErrorDialog");
}

TEST_P(Themes, AreReadableInThePrintToolAndShowWhereTheFocusIs) {
  GuiApp app(Options("/usr/bin/KPXtool"));
  ExpectReadable(app, "ToolWindow");
  ChooseQueue(app, "txt1");
  ExpectEveryTabStopSeen(app, "ToolWindow");
  app.Click("LprCommandButton");
  ExpectReadable(app, "LprCmdDialog");
  ExpectEveryTabStopSeen(app, "LprCmdDialog");
  app.Key("Escape");
  app.WaitGone("LprCmdDialog");
  app.Key("F1");
  ExpectReadable(app, "KPXHelpDialog");
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
  OpenProperties(app);
  ShowTab(app, "Options");
  app.Click("Nup4Radiobutton");
  app.WaitUntil("the orders", [&] { return app.HasWidget("NupBackRadiobutton"); });
  for (const std::string &tab : kToolTabs) {
    ShowTab(app, tab);
    ExpectReadable(app, "PropertiesWindow");
  }
}

std::vector<Look> Looks() {
  std::vector<Look> looks;
  for (const char *theme : {"Adwaita", "Adwaita:dark", "HighContrast", "HighContrastInverse"}) {
    for (const int size : {100, 150, 200}) looks.push_back({theme, size});
  }
  return looks;
}

INSTANTIATE_TEST_SUITE_P(, Themes, testing::ValuesIn(Looks()), [](const auto &row) {
  std::string name = row.param.theme + "_" + std::to_string(row.param.text_size);
  std::replace(name.begin(), name.end(), ':', '_');
  return name;
});

}  // namespace
