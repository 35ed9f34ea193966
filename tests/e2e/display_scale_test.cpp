// The windows on a display of scale 2: texts are whole there, and pictures are as fine as they are.
#include <fstream>
#include <map>

#include "administration.h"
#include "propertiesdriver.h"
#include "xinput.h"

namespace {

using Strings = std::vector<std::string>;

// A picture as its file has it: 0xRRGGBB, kClear where it is transparent.
constexpr unsigned long kClear = 0xFF000000;
struct Xpm {
  int width = 0;
  int height = 0;
  std::vector<unsigned long> pixels;
};

// The texts between quotation marks.
Strings QuotedIn(const std::string &content) {
  Strings texts;
  for (size_t open = content.find('"'); open != std::string::npos; open = content.find('"', open)) {
    const size_t close = content.find('"', open + 1);
    texts.push_back(content.substr(open + 1, close - open - 1));
    open = close + 1;
  }
  return texts;
}

Xpm ReadXpm(const std::string &path) {
  const Strings texts = QuotedIn(ContentOf(path));
  Xpm xpm;
  size_t colours = 0;
  size_t code = 0;
  std::istringstream(texts.at(0)) >> xpm.width >> xpm.height >> colours >> code;
  std::map<std::string, unsigned long> meaning;
  for (size_t i = 1; i <= colours; ++i) {
    const std::string value = texts.at(i).substr(code + 3);
    meaning[texts.at(i).substr(0, code)] =
        value == "None" ? kClear : std::stoul(value.substr(1), nullptr, 16);
  }
  for (size_t row = colours + 1; row < texts.size(); ++row) {
    for (size_t i = 0; i < texts[row].size(); i += code) {
      xpm.pixels.push_back(meaning.at(texts[row].substr(i, code)));
    }
  }
  return xpm;
}

// The share of the picture's own pixels that the screen has there, each as it is in the file.
double ShareSeen(const Xpm &xpm, const ScreenPixels &screen, int left, int top) {
  int drawn = 0;
  int seen = 0;
  for (int y = 0; y < xpm.height; ++y) {
    for (int x = 0; x < xpm.width; ++x) {
      const unsigned long pixel = xpm.pixels.at(static_cast<size_t>(y * xpm.width + x));
      if (pixel == kClear) continue;
      ++drawn;
      if (screen.At(left + x, top + y) == pixel) ++seen;
    }
  }
  return static_cast<double>(seen) / drawn;
}

class DisplayScale : public AdministrationTest {
 protected:
  DisplayScale() { PutQueues(Strings{"first"}); }

  static GuiAppOptions Scaled(int scale) {
    return {.program = kAdmin, .environment = {"GDK_SCALE=" + std::to_string(scale)}};
  }

  static std::string Picture(int scale, const std::string &name) {
    return std::string(kPixmapDir) + (scale == 2 ? "/2x/" : "/") + name + ".xpm";
  }

  // In the middle of the picture widget's area stands exactly that picture.
  static void ExpectSeen(GuiApp &app, const std::string &widget, const std::string &path) {
    app.WaitDrawn();
    const ScreenArea area = app.Geometry(widget);
    const Xpm xpm = ReadXpm(path);
    EXPECT_EQ(1.0, ShareSeen(xpm, XInputPixels(), area.x + (area.width - xpm.width) / 2,
                             area.y + (area.height - xpm.height) / 2))
        << path;
  }
};

TEST_F(DisplayScale, APictureIsSeenPixelByPixel) {
  for (const int scale : {1, 2}) {
    AdminApp app(Scaled(scale));
    EXPECT_EQ(Strings{}, app.ClippedTexts()) << scale;
    app.SelectQueues({0});
    OpenProperties(app);
    ShowTab(app, "Setup");
    EXPECT_EQ(Strings{}, app.ClippedTexts()) << scale;
    ExpectSeen(app, "DuplexPixmap", Picture(scale, "Duplex_NoneP"));
    ChooseOption(app, "Duplex", "Two-sided, long edge");
    ExpectSeen(app, "DuplexPixmap", Picture(scale, "Duplex_DuplexNoTumbleP"));
    app.Key("Escape");
    app.WaitGone("PropertiesWindow");
    app.OpenAddQueue();
    app.Click("AboutButton");
    app.WaitWindow("dialogAbout");
    ExpectSeen(app, "AboutPixmap", Picture(scale, "np_vek"));
    if (const char *directory = std::getenv("KPX_PICTURES")) {
      Screenshot(app, std::string(directory) + "/scale" + std::to_string(scale) + ".png");
    }
  }
}

TEST_F(DisplayScale, EveryPictureHasALargerOneOfTwiceItsSize) {
  int pictures = 0;
  for (const auto &entry : std::filesystem::directory_iterator(kPixmapDir)) {
    if (entry.path().extension() != ".xpm") continue;
    ++pictures;
    const std::string name = entry.path().stem();
    const Xpm usual = ReadXpm(Picture(1, name));
    const Xpm larger = ReadXpm(Picture(2, name));
    EXPECT_EQ(2 * usual.width, larger.width) << name;
    EXPECT_EQ(2 * usual.height, larger.height) << name;
  }
  EXPECT_GT(pictures, 100);
}

}  // namespace
