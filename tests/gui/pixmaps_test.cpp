// Finding and loading XPM pictures.

#include "Pixmaps.h"

#include <filesystem>

#include "guisupport.h"

namespace {

// A picture of `width` by 1 pixels, so that a test can tell pictures apart.
std::string Xpm(int width) {
  return "/* XPM */\nstatic char *picture[] = {\n\"" + std::to_string(width) +
         " 1 1 1\",\n\"# c #102030\",\n\"" + std::string(static_cast<size_t>(width), '#') +
         "\"};\n";
}

constexpr int kPlaceholderWidth = 2;

int WidthOf(GtkWidget *picture) {
  return gdk_pixbuf_get_width(gtk_image_get_pixbuf(GTK_IMAGE(picture)));
}

class Pixmaps : public GuiTest {
 protected:
  void SetUp() override {
    before_ = std::filesystem::current_path();
    std::filesystem::create_directories(directory_.Path("work"));
    std::filesystem::create_directories(directory_.Path("pixmaps"));
    std::filesystem::create_directories(directory_.Path("installed"));
    // "../pixmaps" is then directory_'s.
    std::filesystem::current_path(directory_.Path("work"));
    add_pixmap_directory(directory_.Path("installed").c_str());
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  }

  void TearDown() override {
    std::filesystem::current_path(before_);
    GuiTest::TearDown();
  }

  // Width of the picture made for `file`, and what went to standard error meanwhile.
  std::pair<int, std::string> Create(const char *file) {
    testing::internal::CaptureStderr();
    GtkWidget *picture = create_pixmap(window_, file);
    g_object_ref_sink(picture);
    const int width = WidthOf(picture);
    gtk_widget_destroy(picture);
    g_object_unref(picture);
    return {width, testing::internal::GetCapturedStderr()};
  }

  using Outcome = std::pair<int, std::string>;

  TemporaryDirectory directory_;
  std::filesystem::path before_;
  GtkWidget *window_ = nullptr;
};

}  // namespace

TEST_F(Pixmaps, TheInstalledDirectoryGoesBeforeThePixmapsFolder) {
  directory_.Write("installed/a.xpm", Xpm(3));
  directory_.Write("pixmaps/a.xpm", Xpm(4));
  EXPECT_EQ(Outcome(3, ""), Create("a.xpm"));
}

TEST_F(Pixmaps, ThePixmapsFolderStandsInForTheInstalledDirectory) {
  directory_.Write("pixmaps/a.xpm", Xpm(4));
  EXPECT_EQ(Outcome(4, ""), Create("a.xpm"));
}

TEST_F(Pixmaps, TheDirectoryAddedLastIsSearchedFirst) {
  directory_.Write("installed/a.xpm", Xpm(3));
  directory_.Write("later.xpm", Xpm(5));
  std::filesystem::create_directories(directory_.Path("later"));
  directory_.Write("later/a.xpm", Xpm(5));
  add_pixmap_directory(directory_.Path("later").c_str());
  EXPECT_EQ(Outcome(5, ""), Create("a.xpm"));
}

TEST_F(Pixmaps, ADirectoryOfThePicturesNameIsNotFound) {
  std::filesystem::create_directories(directory_.Path("installed/folder.xpm"));
  EXPECT_EQ(
      Outcome(kPlaceholderWidth, CatalogueText("ERR_UNABLE_TO_READ_FILE", {"folder.xpm"}) + "\n"),
      Create("folder.xpm"));
}

TEST_F(Pixmaps, ADirectoryOfThePicturesNameDoesNotHideThePicture) {
  std::filesystem::create_directories(directory_.Path("installed/a.xpm"));
  directory_.Write("pixmaps/a.xpm", Xpm(4));
  EXPECT_EQ(Outcome(4, ""), Create("a.xpm"));
}

TEST_F(Pixmaps, AMissingPictureIsReportedAndReplaced) {
  EXPECT_EQ(
      Outcome(kPlaceholderWidth, CatalogueText("ERR_UNABLE_TO_READ_FILE", {"missing.xpm"}) + "\n"),
      Create("missing.xpm"));
}

TEST_F(Pixmaps, AFileThatIsNoXpmIsReportedAndReplaced) {
  directory_.Write("installed/text.xpm", "no picture\n");
  EXPECT_EQ(Outcome(kPlaceholderWidth, CatalogueText("ERR_FILE_CORRUPTED", {"text.xpm"}) + "\n"),
            Create("text.xpm"));
}

TEST_F(Pixmaps, ATruncatedXpmIsReportedAndReplaced) {
  directory_.Write("installed/cut.xpm", Xpm(40).substr(0, 30));
  EXPECT_EQ(Outcome(kPlaceholderWidth, CatalogueText("ERR_FILE_CORRUPTED", {"cut.xpm"}) + "\n"),
            Create("cut.xpm"));
}

TEST_F(Pixmaps, NoNameGivesThePlaceholderSilently) {
  EXPECT_EQ(Outcome(kPlaceholderWidth, ""), Create(nullptr));
  EXPECT_EQ(Outcome(kPlaceholderWidth, ""), Create(""));
}

TEST_F(Pixmaps, APictureIsReplacedInPlace) {
  directory_.Write("installed/a.xpm", Xpm(3));
  directory_.Write("installed/b.xpm", Xpm(7));
  GtkWidget *picture = create_pixmap(window_, "a.xpm");
  gtk_container_add(GTK_CONTAINER(window_), picture);
  change_pixmap(picture, "b.xpm");
  EXPECT_EQ(7, WidthOf(picture));
  testing::internal::CaptureStderr();
  change_pixmap(picture, "gone.xpm");
  EXPECT_EQ(CatalogueText("ERR_UNABLE_TO_READ_FILE", {"gone.xpm"}) + "\n",
            testing::internal::GetCapturedStderr());
  EXPECT_EQ(kPlaceholderWidth, WidthOf(picture));
}

TEST_F(Pixmaps, AFileIsLookedForInOneDirectory) {
  const std::string path = directory_.Write("installed/a.xpm", Xpm(3));
  EXPECT_EQ(path, check_file_exists(directory_.Path("installed"), "a.xpm"));
  EXPECT_EQ("", check_file_exists(directory_.Path("pixmaps"), "a.xpm"));
  EXPECT_EQ("", check_file_exists(directory_.Path(), "installed"));
}

TEST_F(Pixmaps, TransparentPixelsStayTransparent) {
  directory_.Write("installed/hole.xpm",
                   "/* XPM */\nstatic char *p[] = {\n\"2 1 2 1\",\n\". c None\",\n"
                   "\"# c #000000\",\n\".#\"};\n");
  GtkWidget *picture = create_pixmap(window_, "hole.xpm");
  gtk_container_add(GTK_CONTAINER(window_), picture);
  const GdkPixbuf *pixbuf = gtk_image_get_pixbuf(GTK_IMAGE(picture));
  ASSERT_TRUE(gdk_pixbuf_get_has_alpha(pixbuf));
  const guint8 *pixels = gdk_pixbuf_read_pixels(pixbuf);
  EXPECT_EQ(0, pixels[3]);
  EXPECT_EQ(255, pixels[7]);
}
