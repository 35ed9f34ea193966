// kpxdraw: draws the pictures of the program from their description, while it is built.
//
//   kpxdraw DESCRIPTION DIRECTORY        writes NAME.xpm of every picture there, and removes other
//                                        .xpm files
//   kpxdraw --sheet DESCRIPTION FILE     writes a PNG file that shows them all
//
// Ends with 0, or with 1 and one line on standard error.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>

#include "description.h"
#include "elements.h"
#include "sheet.h"
#include "xpm.h"

namespace {

std::string ContentOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  if (!file) throw std::runtime_error("cannot be read");
  return content.str();
}

std::vector<NamedImage> DrawAll(const std::string &path) {
  const Description description = ReadDescription(ContentOf(path));
  std::vector<NamedImage> images;
  for (const Picture &picture : description.pictures) {
    images.push_back({picture.name, Draw(picture, description.colours)});
  }
  return images;
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
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool is_sheet = arguments.size() == 3 && arguments[0] == "--sheet";
  if (!is_sheet && arguments.size() != 2) {
    std::cerr << "usage: kpxdraw DESCRIPTION DIRECTORY | --sheet DESCRIPTION FILE\n";
    return 1;
  }
  const std::string &description = arguments[arguments.size() - 2];
  try {
    const std::vector<NamedImage> images = DrawAll(description);
    if (!is_sheet) {
      WritePictures(images, arguments[1]);
    } else if (!WriteSheet(images, arguments[2])) {
      throw std::runtime_error(arguments[2] + " cannot be written");
    }
  } catch (const std::exception &error) {
    std::cerr << "kpxdraw: " << description << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
