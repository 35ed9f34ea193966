// A drawing surface for one picture.

#pragma once

#include <cairo.h>

#include <memory>
#include <vector>

namespace kpx::pixmaps {

// The pixels of a finished picture: 0xRRGGBB, or kTransparent.
inline constexpr unsigned kTransparent = 0xFF000000;

struct Image {
  int width = 0;
  int height = 0;
  std::vector<unsigned> pixels;  // rows from the top
};

class Canvas {
 public:
  // Drawing is in units of the picture; the canvas has `scale` pixels a unit each way.
  Canvas(int width, int height, int scale = 1);

  cairo_t *context() const { return context_.get(); }

  // What was drawn. Pixels are opaque or transparent; around all that is opaque there is a
  // light rim of one unit, which sets dark outlines off from a dark background and is not seen on a
  // light one.
  Image Finish() const;

  // Makes no rim inside the rectangle (units), for pictures that are shown over another one.
  void LeaveRimOff(const cairo_rectangle_int_t &rectangle) {
    rimless_ = {rectangle.x * scale_, rectangle.y * scale_, rectangle.width * scale_,
                rectangle.height * scale_};
  }

  // As it is, without rim: 0xAARRGGBB with premultiplied colours. For the contact sheet.
  cairo_surface_t *surface() const { return surface_.get(); }

 private:
  struct Destroy {
    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t *context) const { cairo_destroy(context); }
  };
  std::unique_ptr<cairo_surface_t, Destroy> surface_;
  std::unique_ptr<cairo_t, Destroy> context_;
  int scale_;
  cairo_rectangle_int_t rimless_{0, 0, 0, 0};
};

}  // namespace kpx::pixmaps
