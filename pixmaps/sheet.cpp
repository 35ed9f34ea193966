#include "sheet.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kpx::pixmaps {

namespace {

constexpr int L_Columns = 6;
constexpr int L_Gap = 6;    // around pictures
constexpr int L_Name = 14;  // height of a line of names
constexpr double L_FontSize = 8;

// Backgrounds of the toolkit's light and dark themes.
constexpr double L_Light = 0xF6 / 255.0;
constexpr double L_Dark = 0x2E / 255.0;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface SurfaceOf(const Image &image) {
  Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, image.width, image.height),
                  cairo_surface_destroy);
  unsigned char *data = cairo_image_surface_get_data(surface.get());
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
  for (int y = 0; y < image.height; ++y) {
    auto *row = reinterpret_cast<std::uint32_t *>(data + y * stride);
    for (int x = 0; x < image.width; ++x) {
      const auto place = static_cast<std::ptrdiff_t>(y) * image.width + x;
      const unsigned pixel = image.pixels[static_cast<size_t>(place)];
      row[x] = pixel == kTransparent ? 0 : 0xFF000000u | pixel;
    }
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

// One picture's place on the sheet.
struct Cell {
  const NamedImage *named;
  int x;
  int y;
  int width() const { return 2 * named->image.width + 4 * L_Gap; }
  int height() const { return named->image.height + 2 * L_Gap + L_Name; }
};

// Pictures of one size stand together in rows, as many in a row as fit.
std::vector<Cell> Layout(const std::vector<NamedImage> &images, int width, int *height) {
  std::vector<Cell> cells;
  int x = 0;
  int y = 0;
  int row = 0;  // its height
  for (const NamedImage &named : images) {
    Cell cell{&named, x, y};
    if (x > 0 && (x + cell.width() > width || cell.height() != row)) {
      cell.x = 0;
      cell.y = y += row;
    }
    row = cell.height();
    x = cell.x + cell.width();
    cells.push_back(cell);
  }
  *height = y + row;
  return cells;
}

void DrawCell(cairo_t *cr, const Cell &cell) {
  const Surface surface = SurfaceOf(cell.named->image);
  const int half = cell.width() / 2;
  for (const int side : {0, 1}) {
    const double grey = side == 0 ? L_Light : L_Dark;
    cairo_set_source_rgb(cr, grey, grey, grey);
    cairo_rectangle(cr, cell.x + side * half, cell.y, half, cell.height() - L_Name);
    cairo_fill(cr);
    cairo_set_source_surface(cr, surface.get(), cell.x + side * half + L_Gap, cell.y + L_Gap);
    cairo_paint(cr);
  }
  cairo_set_source_rgb(cr, 0, 0, 0);
  cairo_move_to(cr, cell.x + 2, cell.y + cell.height() - 4);
  cairo_show_text(cr, cell.named->name.c_str());
}

}  // namespace

bool WriteSheet(const std::vector<NamedImage> &images, const std::string &path) {
  const int width = L_Columns * (2 * 64 + 4 * L_Gap);
  int height = 0;
  const std::vector<Cell> cells = Layout(images, width, &height);
  const Canvas canvas(width, height);
  cairo_t *cr = canvas.context();
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  cairo_select_font_face(cr, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, L_FontSize);
  for (const Cell &cell : cells) DrawCell(cr, cell);
  return cairo_surface_write_to_png(canvas.surface(), path.c_str()) == CAIRO_STATUS_SUCCESS;
}

}  // namespace kpx::pixmaps
