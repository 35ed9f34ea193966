#include "xpm.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <map>
#include <vector>

namespace kpx::pixmaps {

namespace {

// Every printable character but the quote and the backslash, which C strings treat specially, and
// the question mark, two of which begin a trigraph.
constexpr std::string_view L_Characters =
    " .+@#$%&*=-;>,')!~{]^/(_:<[}|1234567890abcdefghijklmnopqrstuvwxyz"
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ`";

std::string CName(const std::string &name) {
  std::string c_name;
  for (const char character : name) {
    c_name += std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
  }
  return c_name;
}

std::string ColourText(unsigned colour) {
  if (colour == kTransparent) return "None";
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%06X", colour & 0xFFFFFFu);
  return text.data();
}

std::string Code(size_t index, size_t length) {
  std::string code;
  for (; length > 0; --length, index /= L_Characters.size()) {
    code += L_Characters[index % L_Characters.size()];
  }
  return code;
}

}  // namespace

std::string XpmText(const Image &image, const std::string &name) {
  std::map<unsigned, size_t> order;  // colours as they first appear
  for (const unsigned pixel : image.pixels) order.emplace(pixel, order.size());
  std::vector<unsigned> colours(order.size());
  for (const auto &[colour, index] : order) colours[index] = colour;
  const size_t code_length = colours.size() > L_Characters.size() ? 2 : 1;

  std::string text = "/* XPM */\nstatic const char *" + CName(name) + "_xpm[] = {\n\"" +
                     std::to_string(image.width) + " " + std::to_string(image.height) + " " +
                     std::to_string(colours.size()) + " " + std::to_string(code_length) + "\"";
  for (size_t i = 0; i < colours.size(); ++i) {
    text += ",\n\"" + Code(i, code_length) + " c " + ColourText(colours[i]) + "\"";
  }
  const size_t width = static_cast<size_t>(image.width);
  for (size_t i = 0; i < image.pixels.size(); ++i) {
    if (i % width == 0) text += ",\n\"";
    text += Code(order[image.pixels[i]], code_length);
    if (i % width == width - 1) text += "\"";
  }
  return text + "\n};\n";
}

}  // namespace kpx::pixmaps
