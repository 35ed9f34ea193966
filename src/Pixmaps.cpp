#include "Pixmaps.h"

#include <array>
#include <deque>
#include <fstream>
#include <string_view>

#include "cmessages.h"
#include "debug.h"
#include "paths.h"
#include "textencoding.h"

namespace {

constexpr std::string_view L_XpmStart = "/* XPM */";

std::deque<std::string> L_Directories;

// Two transparent pixels: it takes no room to speak of and shows nothing.
const char *L_PlaceholderXpm[] = {"2 1 1 1", ". c None", ".."};

GdkPixbuf *Placeholder() {
  GdkPixbuf *pixbuf = gdk_pixbuf_new_from_xpm_data(L_PlaceholderXpm);
  if (pixbuf == nullptr) g_warning("Couldn't create replacement pixmap.");
  return pixbuf;
}

std::string FindPicture(const char *file) {
  for (const std::string &dir : L_Directories) {
    std::string path = check_file_exists(dir, file);
    if (!path.empty()) return path;
  }
  return check_file_exists(kFallbackPixmapDir, file);
}

// Looks at the start alone: asking gdk-pixbuf for the format would read the picture twice.
bool IsXpm(const std::string &path) {
  std::array<char, L_XpmStart.size()> start{};
  std::ifstream file(path, std::ios::binary);
  return file.read(start.data(), start.size()) &&
         std::string_view(start.data(), start.size()) == L_XpmStart;
}

GdkPixbuf *LoadXpm(const std::string &path) {
  return IsXpm(path) ? gdk_pixbuf_new_from_file(path.c_str(), nullptr) : nullptr;
}

// The picture for `file`, or the placeholder; the caller drops the reference.
GdkPixbuf *PictureFor(const char *file) {
  if (file == nullptr || *file == '\0') return Placeholder();
  const std::string path = FindPicture(file);
  if (path.empty()) {
    PrintErrorLine(G_Message("ERR_UNABLE_TO_READ_FILE", {file}));
    return Placeholder();
  }
  GdkPixbuf *pixbuf = LoadXpm(path);
  if (pixbuf != nullptr) return pixbuf;
  PrintErrorLine(G_Message("ERR_FILE_CORRUPTED", {file}));
  return Placeholder();
}

void ShowPixbuf(GtkWidget *picture, GdkPixbuf *pixbuf) {
  gtk_image_set_from_pixbuf(GTK_IMAGE(picture), pixbuf);
  if (pixbuf != nullptr) g_object_unref(pixbuf);
}

}  // namespace

void add_pixmap_directory(const char *dir) {
  const LogScope log("add_pixmap_directory");
  L_Directories.emplace_front(dir);
}

std::string check_file_exists(const std::string &dir, const std::string &file) {
  const LogScope log("check_file_exists");
  std::string path = dir + "/" + file;
  return g_file_test(path.c_str(), G_FILE_TEST_IS_REGULAR) != FALSE ? path : std::string();
}

GtkWidget *create_pixmap(GtkWidget *, const char *file) {
  const LogScope log("create_pixmap");
  GtkWidget *picture = gtk_image_new();
  ShowPixbuf(picture, PictureFor(file));
  return picture;
}

void change_pixmap(GtkWidget *picture, const char *file) {
  const LogScope log("change_pixmap");
  ShowPixbuf(picture, PictureFor(file));
}

GtkWidget *create_dummy_pixmap(GtkWidget *) {
  const LogScope log("create_dummy_pixmap");
  GtkWidget *picture = gtk_image_new();
  ShowPixbuf(picture, Placeholder());
  return picture;
}
