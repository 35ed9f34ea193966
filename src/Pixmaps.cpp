#include "Pixmaps.h"

#include <array>
#include <deque>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "cmessages.h"
#include "debug.h"
#include "paths.h"
#include "textencoding.h"

namespace {

constexpr std::string_view L_XpmStart = "/* XPM */";

// Where the pictures for displays of that scale and higher lie, below the directory of the others.
constexpr std::string_view L_LargerDir = "2x/";
constexpr int L_LargerScale = 2;
constexpr char L_FileKey[] = "kpx-picture-file";

std::deque<std::string> L_Directories;

// Two transparent pixels: it takes no room to speak of and shows nothing.
const char *L_PlaceholderXpm[] = {"2 1 1 1", ". c None", ".."};

GdkPixbuf *Placeholder() {
  GdkPixbuf *pixbuf = gdk_pixbuf_new_from_xpm_data(L_PlaceholderXpm);
  if (pixbuf == nullptr) g_warning("Couldn't create replacement pixmap.");
  return pixbuf;
}

std::string LargerName(const std::string &file) { return std::string(L_LargerDir) + file; }

// A picture's files; empty ones are not there.
struct PictureFiles {
  std::string usual;
  std::string larger;  // of twice the width and height
};

// Those of the first directory that has the picture; a larger one alone is none.
PictureFiles FindPicture(const std::string &file, int scale) {
  std::vector<std::string> directories(L_Directories.begin(), L_Directories.end());
  directories.emplace_back(kFallbackPixmapDir);
  for (const std::string &dir : directories) {
    const std::string path = check_file_exists(dir, file);
    if (path.empty()) continue;
    return {path, scale < L_LargerScale ? "" : check_file_exists(dir, LargerName(file))};
  }
  return {};
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

// The picture of that path, null without one; `file` names it when it cannot be read.
GdkPixbuf *Load(const std::string &path, const std::string &file) {
  if (path.empty()) return nullptr;
  GdkPixbuf *pixbuf = LoadXpm(path);
  if (pixbuf == nullptr) PrintErrorLine(G_Message("ERR_FILE_CORRUPTED", {file}));
  return pixbuf;
}

void ShowPixbuf(GtkWidget *picture, GdkPixbuf *pixbuf) {
  gtk_image_set_from_pixbuf(GTK_IMAGE(picture), pixbuf);
  if (pixbuf != nullptr) g_object_unref(pixbuf);
}

// Takes as much room as the usual picture does.
void ShowLarger(GtkWidget *picture, GdkPixbuf *pixbuf) {
  cairo_surface_t *surface = gdk_cairo_surface_create_from_pixbuf(pixbuf, L_LargerScale, nullptr);
  gtk_image_set_from_surface(GTK_IMAGE(picture), surface);
  cairo_surface_destroy(surface);
  g_object_unref(pixbuf);
}

// Shows the picture of that file, or the placeholder.
void Show(GtkWidget *picture, const std::string &file) {
  if (file.empty()) return ShowPixbuf(picture, Placeholder());
  const PictureFiles files = FindPicture(file, gtk_widget_get_scale_factor(picture));
  if (files.usual.empty()) {
    PrintErrorLine(G_Message("ERR_UNABLE_TO_READ_FILE", {file}));
    return ShowPixbuf(picture, Placeholder());
  }
  GdkPixbuf *larger = Load(files.larger, LargerName(file));
  if (larger != nullptr) return ShowLarger(picture, larger);
  GdkPixbuf *pixbuf = Load(files.usual, file);
  ShowPixbuf(picture, pixbuf == nullptr ? Placeholder() : pixbuf);
}

// The window may come to a display of another scale.
void ShowAgain(GtkWidget *picture, GParamSpec *, gpointer) {
  const auto *file = static_cast<const char *>(g_object_get_data(G_OBJECT(picture), L_FileKey));
  if (file != nullptr) Show(picture, file);
}

void ShowFile(GtkWidget *picture, const char *file) {
  const char *name = file == nullptr ? "" : file;
  g_object_set_data_full(G_OBJECT(picture), L_FileKey, g_strdup(name), g_free);
  Show(picture, name);
}

GtkWidget *NewPicture(const char *file) {
  GtkWidget *picture = gtk_image_new();
  ShowFile(picture, file);
  g_signal_connect(picture, "notify::scale-factor", G_CALLBACK(ShowAgain), nullptr);
  return picture;
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
  return NewPicture(file);
}

void change_pixmap(GtkWidget *picture, const char *file) {
  const LogScope log("change_pixmap");
  ShowFile(picture, file);
}

GtkWidget *create_dummy_pixmap(GtkWidget *) {
  const LogScope log("create_dummy_pixmap");
  return NewPicture(nullptr);
}
