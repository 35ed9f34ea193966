// Pictures on a display of scale 2, which the test's environment makes of the X server's.

#include <filesystem>

#include "Pixmaps.h"
#include "guisupport.h"

namespace {

// A picture of `width` by 2 pixels, so that a test can tell pictures apart.
std::string Xpm(int width) {
  const std::string row = "\"" + std::string(static_cast<size_t>(width), '#') + "\"";
  return "/* XPM */\nstatic char *picture[] = {\n\"" + std::to_string(width) +
         " 2 1 1\",\n\"# c #102030\",\n" + row + ",\n" + row + "};\n";
}

class LargerPictures : public GuiTest {
 protected:
  LargerPictures() {
    for (const char *name : {"first", "second"}) {
      std::filesystem::create_directories(directory_.Path(std::string(name) + "/2x"));
    }
    add_pixmap_directory(directory_.Path("second").c_str());
    add_pixmap_directory(directory_.Path("first").c_str());
  }

  void SetUp() override {
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    ASSERT_EQ(2, gtk_widget_get_scale_factor(window_));
  }

  // How wide the picture is on the screen, in the toolkit's units and in the file's pixels.
  static std::pair<int, int> WidthsOf(GtkWidget *picture) {
    int wanted = 0;
    gtk_widget_get_preferred_width(picture, nullptr, &wanted);
    cairo_surface_t *surface = nullptr;
    g_object_get(picture, "surface", &surface, nullptr);
    if (surface == nullptr) {
      return {wanted, gdk_pixbuf_get_width(gtk_image_get_pixbuf(GTK_IMAGE(picture)))};
    }
    const int pixels = cairo_image_surface_get_width(surface);
    cairo_surface_destroy(surface);
    return {wanted, pixels};
  }

  std::pair<int, int> Create(const char *file) {
    GtkWidget *picture = create_pixmap(window_, file);
    gtk_container_add(GTK_CONTAINER(window_), picture);
    gtk_widget_show(picture);
    const std::pair<int, int> widths = WidthsOf(picture);
    gtk_widget_destroy(picture);
    return widths;
  }

  using Widths = std::pair<int, int>;

  TemporaryDirectory directory_;
  GtkWidget *window_ = nullptr;
};

TEST_F(LargerPictures, AreFoundFirstAndTakeTheRoomOfTheOthers) {
  directory_.Write("first/a.xpm", Xpm(10));
  directory_.Write("first/2x/a.xpm", Xpm(20));
  EXPECT_EQ(Widths(10, 20), Create("a.xpm"));
}

TEST_F(LargerPictures, NeedNotBeThere) {
  directory_.Write("first/a.xpm", Xpm(10));
  EXPECT_EQ(Widths(10, 10), Create("a.xpm"));
}

TEST_F(LargerPictures, BelongToTheDirectoryThatHasThePicture) {
  directory_.Write("first/a.xpm", Xpm(10));
  directory_.Write("second/a.xpm", Xpm(14));
  directory_.Write("second/2x/a.xpm", Xpm(28));
  EXPECT_EQ(Widths(10, 10), Create("a.xpm"));
}

TEST_F(LargerPictures, AreNoPicturesByThemselves) {
  directory_.Write("first/2x/a.xpm", Xpm(28));
  testing::internal::CaptureStderr();
  EXPECT_EQ(Widths(2, 2), Create("a.xpm"));
  EXPECT_EQ(CatalogueText("ERR_UNABLE_TO_READ_FILE", {"a.xpm"}) + "\n",
            testing::internal::GetCapturedStderr());
}

TEST_F(LargerPictures, ThatAreNoneAreToldAndTheOthersShown) {
  directory_.Write("first/a.xpm", Xpm(10));
  directory_.Write("first/2x/a.xpm", "no picture\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Widths(10, 10), Create("a.xpm"));
  EXPECT_EQ(CatalogueText("ERR_FILE_CORRUPTED", {"2x/a.xpm"}) + "\n",
            testing::internal::GetCapturedStderr());
}

TEST_F(LargerPictures, AreReplacedInPlace) {
  directory_.Write("first/a.xpm", Xpm(10));
  directory_.Write("first/2x/a.xpm", Xpm(20));
  directory_.Write("first/b.xpm", Xpm(12));
  directory_.Write("first/c.xpm", Xpm(14));
  directory_.Write("first/2x/c.xpm", Xpm(28));
  GtkWidget *picture = create_dummy_pixmap(window_);
  gtk_container_add(GTK_CONTAINER(window_), picture);
  gtk_widget_show(picture);
  EXPECT_EQ(Widths(2, 2), WidthsOf(picture));
  for (const auto &[file, widths] :
       {std::pair{"a.xpm", Widths(10, 20)}, std::pair{"b.xpm", Widths(12, 12)},
        std::pair{"c.xpm", Widths(14, 28)}, std::pair{"", Widths(2, 2)}}) {
    change_pixmap(picture, file);
    EXPECT_EQ(widths, WidthsOf(picture)) << file;
  }
}

}  // namespace
