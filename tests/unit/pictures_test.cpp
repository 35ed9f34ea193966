// The installed pictures are those that the printers of the installation can ask for: each is
// there, is a picture, and tells one choice from the others. Runs in the sandbox.
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "cfeature.h"
#include "optionchange.h"
#include "paths.h"
#include "pixmapnames.h"
#include "printerpicturefiles.h"
#include "privateworld.h"
#include "shippedprinter.h"

namespace {

constexpr const char *kModels[] = {"vek41201", "vek41101", "vek41051",
                                   "vek41211", "vek41001", "vek41021"};
constexpr const char *kPicturedFeatures[] = {
    "*PageSize", "*MediaType",      "*InputSlot", "*Collate",     "*Duplex",    "*OutputBin",
    "*Jog",      "*StapleLocation", "*Punch",     "*Orientation", "*EdgeToEdge"};
constexpr const char *kNup[] = {"1", "2", "4", "6", "9", "16"};
constexpr const char *kNupOrders[] = {"Left", "Right", "Down", "Back"};
constexpr int kOptionSize = 64;  // pixels, each way

using Pixbuf = std::unique_ptr<GdkPixbuf, decltype(&g_object_unref)>;

std::string PathOf(const std::string &name) { return std::string(kPixmapDir) + "/" + name; }

// The picture, or null when the file is missing or is no XPM.
Pixbuf Load(const std::string &name) {
  GdkPixbufFormat *format = gdk_pixbuf_get_file_info(PathOf(name).c_str(), nullptr, nullptr);
  if (format == nullptr) return Pixbuf(nullptr, g_object_unref);
  gchar *type = gdk_pixbuf_format_get_name(format);
  const bool is_xpm = g_strcmp0(type, "xpm") == 0;
  g_free(type);
  GdkPixbuf *picture = is_xpm ? gdk_pixbuf_new_from_file(PathOf(name).c_str(), nullptr) : nullptr;
  return Pixbuf(picture, g_object_unref);
}

// How bright the pixels are, 0 to 255; kClear where the picture is transparent.
constexpr int kClear = -1;

struct Greys {
  int width = 0;
  int height = 0;
  std::vector<int> pixels;

  int At(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return kClear;
    return pixels[static_cast<size_t>(y * width + x)];
  }
};

Greys GreysOf(const std::string &name) {
  const Pixbuf picture = Load(name);
  if (picture == nullptr) return {};
  Greys greys{gdk_pixbuf_get_width(picture.get()), gdk_pixbuf_get_height(picture.get()), {}};
  const bool has_alpha = gdk_pixbuf_get_has_alpha(picture.get()) != FALSE;
  const int channels = gdk_pixbuf_get_n_channels(picture.get());
  const int stride = gdk_pixbuf_get_rowstride(picture.get());
  const guchar *data = gdk_pixbuf_get_pixels(picture.get());
  for (int y = 0; y < greys.height; ++y) {
    for (int x = 0; x < greys.width; ++x) {
      const guchar *pixel = data + y * stride + x * channels;
      const bool is_clear = has_alpha && pixel[3] == 0;
      greys.pixels.push_back(is_clear ? kClear
                                      : (299 * pixel[0] + 587 * pixel[1] + 114 * pixel[2]) / 1000);
    }
  }
  return greys;
}

std::vector<std::string> OptionsOf(const char *feature) {
  const CFeature *found = PrinterFeature(feature);
  return found == nullptr ? std::vector<std::string>() : Keys(found->options.get());
}

// One thing that can be set, and what its picture is called in the state that is current.
struct Asked {
  std::string feature;
  std::string option;
  std::string picture;
};

// All that can be asked for while the current settings stay as they are.
std::vector<Asked> AskAll() {
  std::vector<Asked> all;
  const auto ask = [&all](const char *feature, const std::string &option) {
    all.push_back({feature, option, G_GetPixmapNameFor(feature, option)});
  };
  for (const char *feature : kPicturedFeatures) {
    for (const std::string &option : OptionsOf(feature)) ask(feature, option);
  }
  for (const char *pages : kNup) ask("*Nup", pages);
  ask("*Booklet", "1");
  const std::string pages = QueueFeatureValue("*Nup");
  if (pages != "2" && pages != "4") return all;  // no order then, and no picture of one
  for (const char *order : kNupOrders) ask("*NupOrder", order);
  return all;
}

// Calls `visit` for every model with every orientation, punch unit and number of pages a sheet.
void ForEveryState(const std::function<void(const std::string &state)> &visit) {
  for (const char *model : kModels) {
    const CurrentPrinterAndQueue current(std::string(kInstalledPafs) + model + ".paf");
    G_CurrentQueue->PpdFile = Text(std::string(model) + ".ppd");
    for (const std::string &orientation : OptionsOf("*Orientation")) {
      for (const std::string &unit : OptionsOf("*OptionPunch")) {
        for (const char *pages : kNup) {
          CurrentPrinterAndQueue::Set("*Orientation", orientation.c_str());
          CurrentPrinterAndQueue::Install("*OptionPunch", unit.c_str());
          CurrentPrinterAndQueue::Set("*Nup", pages);
          visit(std::string(model) + " " + orientation + " " + unit + " " + pages + "-up");
        }
      }
    }
  }
}

std::string FallbackOf(const std::string &feature) { return feature.substr(1) + ".xpm"; }

// Pictures with a fixed name: about box, paper size and paper type of the administrator's own.
std::set<std::string> FixedPictures() {
  return {"np_vek.xpm", PictureOfChoice("*PageSize", "Mine", true),
          PictureOfChoice("*MediaType", "Mine", true)};
}

std::set<std::string> Fallbacks() {
  std::set<std::string> names = {FallbackOf("*Nup"), FallbackOf("*NupOrder"),
                                 FallbackOf("*Booklet")};
  for (const char *feature : kPicturedFeatures) names.insert(FallbackOf(feature));
  return names;
}

std::set<std::string> OptionPictures() {
  std::set<std::string> names;
  ForEveryState([&names](const std::string &) {
    for (const Asked &asked : AskAll()) names.insert(asked.picture);
  });
  return names;
}

constexpr const char *kPrinterOptions[] = {"*OptionHCF", "*OptionFinisher", "*OptionTray4",
                                           "*OptionBypassTray"};

// Calls `visit` for every model with everything that can be installed and not.
void ForEveryInstallation(const std::function<void(const std::string &state)> &visit) {
  for (const char *model : kModels) {
    const CurrentPrinterAndQueue current(std::string(kInstalledPafs) + model + ".paf");
    for (unsigned installed = 0; installed < 1u << std::size(kPrinterOptions); ++installed) {
      std::string state = model;
      for (size_t i = 0; i < std::size(kPrinterOptions); ++i) {
        const bool is_there = (installed >> i & 1) != 0;
        CurrentPrinterAndQueue::Install(kPrinterOptions[i], is_there ? "True" : "False");
        if (is_there) state += std::string(" ") + kPrinterOptions[i];
      }
      visit(state);
    }
  }
}

// Everything the picture of the printer is made of, on any model.
std::set<std::string> PrinterPictures() {
  std::set<std::string> names;
  ForEveryInstallation([&names](const std::string &) {
    const PrinterPictureFiles picture = CurrentPrinterPictureFiles();
    names.insert(picture.base);
    for (const std::string &overlay : picture.overlays) {
      if (!overlay.empty()) names.insert(overlay);
    }
  });
  // While no model was met
  names.insert(CurrentPrinterPictureFiles().base);
  return names;
}

class Pictures : public testing::Test {
 protected:
  static void SetUpTestSuite() { RequirePrivateWorld(); }
};

TEST_F(Pictures, EveryPrinterHasEveryPicturedFeature) {
  for (const char *model : kModels) {
    const CurrentPrinterAndQueue current(std::string(kInstalledPafs) + model + ".paf");
    for (const char *feature : kPicturedFeatures) {
      EXPECT_GE(OptionsOf(feature).size(), 2u) << model << " " << feature;
    }
    EXPECT_GE(OptionsOf("*OptionPunch").size(), 3u) << model;
  }
}

TEST_F(Pictures, EveryOptionHasAPictureOfItsOwnInEveryState) {
  size_t count = 0;
  ForEveryState([&count](const std::string &state) {
    for (const Asked &asked : AskAll()) {
      EXPECT_NE(asked.picture, FallbackOf(asked.feature))
          << state << ": no picture for " << asked.feature << " " << asked.option;
      EXPECT_TRUE(std::filesystem::is_regular_file(PathOf(asked.picture)))
          << state << ": " << asked.picture << " for " << asked.feature << " " << asked.option;
      ++count;
    }
  });
  EXPECT_GT(count, 10000u);
}

TEST_F(Pictures, OptionPicturesAndTheirFallbacksAreXpmFilesOfOneSize) {
  std::set<std::string> names = OptionPictures();
  names.merge(Fallbacks());
  names.insert({"cps.xpm", "cmt.xpm"});
  for (const std::string &name : names) {
    const Greys picture = GreysOf(name);
    EXPECT_EQ(picture.width, kOptionSize) << name;
    EXPECT_EQ(picture.height, kOptionSize) << name;
    const auto clear = std::count(picture.pixels.begin(), picture.pixels.end(), kClear);
    EXPECT_GT(clear, kOptionSize) << name << " has no transparent background";
    EXPECT_LT(clear, kOptionSize * kOptionSize * 4 / 5) << name << " shows next to nothing";
  }
}

TEST_F(Pictures, TheTitlePictureFitsTheAboutBox) {
  const Greys picture = GreysOf("np_vek.xpm");
  EXPECT_EQ(picture.width, 328);
  EXPECT_EQ(picture.height, 117);
}

TEST_F(Pictures, AnOptionThatNoPrinterHasShowsTheFeaturesPicture) {
  const CurrentPrinterAndQueue current(std::string(kInstalledPafs) + "vek41201.paf");
  for (const char *feature : kPicturedFeatures) {
    EXPECT_EQ(G_GetPixmapNameFor(feature, "Unheard"), FallbackOf(feature));
    EXPECT_TRUE(std::filesystem::is_regular_file(PathOf(FallbackOf(feature)))) << feature;
  }
}

TEST_F(Pictures, EveryModelHasAPictureAndOneOfEachInstalledOption) {
  std::set<std::string> bases;
  ForEveryInstallation([&bases](const std::string &state) {
    const PrinterPictureFiles picture = CurrentPrinterPictureFiles();
    bases.insert(picture.base);
    EXPECT_NE(picture.base, "Printer.xpm") << state;
    for (size_t group = 0; group < kPrinterOptionGroups; ++group) {
      EXPECT_EQ(picture.overlays[group].empty(), InstalledOfGroup(group).empty())
          << state << ", group " << group;
    }
  });
  EXPECT_EQ(bases.size(), std::size(kModels));
}

TEST_F(Pictures, PartsOfThePrinterLieOverEachOther) {
  const Greys base = GreysOf("Printer.xpm");
  ASSERT_GT(base.width, 2 * kOptionSize);
  for (const std::string &name : PrinterPictures()) {
    const Greys part = GreysOf(name);
    EXPECT_EQ(part.width, base.width) << name;
    EXPECT_EQ(part.height, base.height) << name;
    const auto clear = std::count(part.pixels.begin(), part.pixels.end(), kClear);
    EXPECT_GT(clear, base.width * base.height / 2) << name;
    EXPECT_LT(clear, base.width * base.height * 49 / 50) << name << " shows next to nothing";
  }
}

// Pixels that are clearly brighter or darker in one picture than in the other.
int Difference(const Greys &one, const Greys &other) {
  constexpr int kClearly = 48;
  int different = 0;
  for (size_t i = 0; i < one.pixels.size(); ++i) {
    if (std::abs(one.pixels[i] - other.pixels[i]) >= kClearly) ++different;
  }
  return different;
}

TEST_F(Pictures, OptionsOfAFeatureDifferInMoreThanColour) {
  static constexpr int kSeen = 24;  // pixels
  std::set<std::pair<std::string, std::string>> compared;
  ForEveryState([&compared](const std::string &state) {
    const std::vector<Asked> all = AskAll();
    for (const Asked &one : all) {
      for (const Asked &other : all) {
        // Two pages a sheet leave no difference between rows and columns.
        if (one.feature == "*NupOrder" && QueueFeatureValue("*Nup") == "2") continue;
        if (one.feature != other.feature || one.option >= other.option) continue;
        if (!compared.emplace(one.picture, other.picture).second) continue;
        const Greys first = GreysOf(one.picture);
        const Greys second = GreysOf(other.picture);
        ASSERT_EQ(first.pixels.size(), second.pixels.size()) << one.picture;
        EXPECT_GE(Difference(first, second), kSeen)
            << state << ": " << one.picture << " and " << other.picture << " look alike";
      }
    }
  });
  EXPECT_GT(compared.size(), 200u);
}

TEST_F(Pictures, AThinLightRimSetsTheOutlinesOffFromADarkBackground) {
  constexpr int kLight = 0x70;
  for (const std::string &name : OptionPictures()) {
    const Greys picture = GreysOf(name);
    int dark = 0;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const bool is_edge = picture.At(x - 1, y) == kClear || picture.At(x + 1, y) == kClear ||
                             picture.At(x, y - 1) == kClear || picture.At(x, y + 1) == kClear;
        if (picture.At(x, y) != kClear && is_edge && picture.At(x, y) < kLight) ++dark;
      }
    }
    EXPECT_EQ(dark, 0) << name;
  }
}

TEST_F(Pictures, NoPictureIsInstalledThatNothingAsksFor) {
  std::set<std::string> asked = OptionPictures();
  asked.merge(Fallbacks());
  asked.merge(FixedPictures());
  asked.merge(PrinterPictures());
  // Those for displays of scale 2 have the same names.
  for (const std::string &directory : {PathOf(""), PathOf("2x")}) {
    for (const std::string &name : NamesIn(directory)) {
      EXPECT_TRUE(asked.contains(name) || PathOf(name) == PathOf("2x"))
          << directory << "/" << name << " is installed, but nothing asks for it";
    }
  }
}

}  // namespace
