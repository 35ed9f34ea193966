// kpxdraw: draws the pictures of the program from their description, while it is built.
//
//   kpxdraw DIRECTORY DESCRIPTION...     writes NAME.xpm of every picture there, and removes other
//                                        .xpm files
//   kpxdraw --double DIRECTORY ...       the same, twice as wide and high
//   kpxdraw --sheet FILE DESCRIPTION...  writes a PNG file that shows them all
//
// Ends with 0, or with 1 and one line on standard error.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "description.h"
#include "elements.h"
#include "sheet.h"
#include "xpm.h"

using namespace kpx::pixmaps;

namespace {

std::string ContentOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  if (!file) throw std::runtime_error("cannot be read");
  return content.str();
}

// Reads one more file and draws its pictures.
void DrawFile(const std::string &path, int scale, Description *description,
              std::vector<NamedImage> *images) {
  const size_t before = description->pictures.size();
  try {
    ReadDescription(ContentOf(path), description);
    for (size_t i = before; i < description->pictures.size(); ++i) {
      const Picture &picture = description->pictures[i];
      images->push_back({picture.name, Draw(picture, description->colours, scale)});
    }
  } catch (const std::exception &error) {
    throw std::runtime_error(path + ": " + error.what());
  }
}

void WritePictures(const std::vector<NamedImage> &images, const std::filesystem::path &directory) {
  std::filesystem::create_directories(directory);
  std::set<std::filesystem::path> written;
  for (const NamedImage &named : images) {
    const std::filesystem::path path = directory / (named.name + ".xpm");
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << XpmText(named.image, named.name);
    file.close();
    if (!file) throw std::runtime_error(path.string() + " cannot be written");
    written.insert(path);
  }
  // A picture that was taken out of the description must not be installed any more.
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() == ".xpm" && !written.contains(entry.path())) {
      std::filesystem::remove(entry.path());
    }
  }
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool is_sheet = !arguments.empty() && arguments[0] == "--sheet";
  const bool is_double = !arguments.empty() && arguments[0] == "--double";
  if (is_sheet || is_double) arguments.erase(arguments.begin());
  if (arguments.size() < 2) {
    std::cerr
        << "usage: kpxdraw [--double] DIRECTORY DESCRIPTION... | --sheet FILE DESCRIPTION...\n";
    return 1;
  }
  const std::string &target = arguments[0];
  try {
    Description description;
    std::vector<NamedImage> images;
    for (size_t i = 1; i < arguments.size(); ++i) {
      DrawFile(arguments[i], is_double ? 2 : 1, &description, &images);
    }
    if (!is_sheet) {
      WritePictures(images, target);
    } else if (!WriteSheet(images, target)) {
      throw std::runtime_error(target + " cannot be written");
    }
  } catch (const std::exception &error) {
    std::cerr << "kpxdraw: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
