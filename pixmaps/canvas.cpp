#include "canvas.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

namespace kpx::pixmaps {

namespace {

constexpr unsigned L_Rim = 0xEEEEEE;
constexpr unsigned L_Opaque = 0x80;  // the least alpha of a pixel that counts as drawn

// The pixels as cairo keeps them: 0xAARRGGBB with premultiplied colours.
std::vector<std::uint32_t> Drawn(cairo_surface_t *surface, int width, int height) {
  cairo_surface_flush(surface);
  const unsigned char *data = cairo_image_surface_get_data(surface);
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface);
  std::vector<std::uint32_t> pixels;
  pixels.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (int y = 0; y < height; ++y) {
    const auto *row = reinterpret_cast<const std::uint32_t *>(data + y * stride);
    pixels.insert(pixels.end(), row, row + width);
  }
  return pixels;
}

// The drawn pixel over the rim, each channel on one of 16 levels, so that a picture needs few
// colours.
unsigned OverRim(std::uint32_t pixel) {
  const unsigned transparency = 255 - (pixel >> 24);
  unsigned result = 0;
  for (const unsigned shift : {16u, 8u, 0u}) {
    const unsigned rim = ((L_Rim >> shift) & 0xFF) * transparency / 255;
    const unsigned value = std::min(255u, ((pixel >> shift) & 0xFF) + rim);
    result |= (value + 8) / 17 * 17 << shift;
  }
  return result;
}

}  // namespace

Canvas::Canvas(int width, int height, int scale)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width * scale, height * scale)),
      context_(cairo_create(surface_.get())),
      scale_(scale) {
  if (cairo_status(context_.get()) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
  cairo_scale(context_.get(), scale, scale);
  cairo_set_line_join(context_.get(), CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_ROUND);
}

Image Canvas::Finish() const {
  const int width = cairo_image_surface_get_width(surface_.get());
  const int height = cairo_image_surface_get_height(surface_.get());
  const std::vector<std::uint32_t> drawn = Drawn(surface_.get(), width, height);
  const auto at = [&](int x, int y) {
    return drawn[static_cast<size_t>(static_cast<std::ptrdiff_t>(y) * width + x)];
  };
  const auto is_opaque = [&](int x, int y) {
    return x >= 0 && x < width && y >= 0 && y < height && at(x, y) >> 24 >= L_Opaque;
  };
  const auto is_shown = [&](int x, int y) {
    const int left = x - rimless_.x;
    const int top = y - rimless_.y;
    if (left >= 0 && left < rimless_.width && top >= 0 && top < rimless_.height) {
      return is_opaque(x, y);
    }
    for (int dy = -scale_; dy <= scale_; ++dy) {
      for (int dx = -scale_; dx <= scale_; ++dx) {
        if (is_opaque(x + dx, y + dy)) return true;
      }
    }
    return false;
  };
  Image image{width, height, {}};
  image.pixels.reserve(drawn.size());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      image.pixels.push_back(is_shown(x, y) ? OverRim(at(x, y)) : kTransparent);
    }
  }
  return image;
}

}  // namespace kpx::pixmaps
