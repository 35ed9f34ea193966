// The picture of the printer with its installed options: which files it is made of.

#pragma once

#include <array>
#include <string>

// The options that have a place in the picture: the feeder, the finisher, and one tray or both.
inline constexpr size_t kPrinterOptionGroups = 3;

struct PrinterPictureFiles {
  std::string base;
  // By group; empty when nothing of the group is installed or there is no file for it.
  std::array<std::string, kPrinterOptionGroups> overlays;
};

// The names, without directory, for the current printer model and what the queue has installed. The
// base is named even when there is no such file.
PrinterPictureFiles CurrentPrinterPictureFiles();

// The display texts of what is installed of the group (from 0), with commas between them.
std::string InstalledOfGroup(size_t group);

// Whether the installable option has a place in the picture.
[[nodiscard]] bool IsInPrinterPicture(const std::string &feature);
