// The XPM form of a picture.

#pragma once

#include <string>

#include "canvas.h"

namespace kpx::pixmaps {

// The text of an XPM file, whose C name is made of `name`: characters that cannot be part of one
// become "_". The same image gives the same text.
std::string XpmText(const Image &image, const std::string &name);

}  // namespace kpx::pixmaps
