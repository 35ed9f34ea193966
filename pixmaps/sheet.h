// The contact sheet: every picture with its name.

#pragma once

#include <string>
#include <vector>

#include "canvas.h"

namespace kpx::pixmaps {

struct NamedImage {
  std::string name;
  Image image;
};

// Writes a PNG file that shows each picture on a light and on a dark background, its name below;
// false when the file cannot be written.
[[nodiscard]] bool WriteSheet(const std::vector<NamedImage> &images, const std::string &path);

}  // namespace kpx::pixmaps
