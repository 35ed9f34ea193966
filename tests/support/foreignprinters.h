// Ten printers that others described, as descriptions that the catalogue takes for its maker's own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "temporarydirectory.h"

inline constexpr size_t kForeignPrinters = 10;

// Copies their PPD files into `directory`, under names that the catalogue loads. Throws
// std::runtime_error when they cannot be had.
inline void CopyForeignPpds(const TemporaryDirectory &directory) {
  const TemporaryDirectory archive;
  const std::string unpack = std::string("python3 ") + KPX_TEST_DATA +
                             "/support/extract_ppds.py /usr/lib/cups/driver/postscript-hp " +
                             archive.Path();
  if (std::system(unpack.c_str()) != 0) throw std::runtime_error(unpack + " failed");
  std::vector<std::string> sources;
  for (const char *name : {"HP_LaserJet_5000_Series", "HP_Business_Inkjet_2500C_Series",
                           "HP_LaserJet_6P", "HP_ColorLaserJet_5-5M"}) {
    sources.push_back("/usr/share/ppd/hp-ppd/HP/" + std::string(name) + ".ppd");
  }
  for (const char *name :
       {"hp-designjet_z5400-postscript", "hp-laserjet_9065mfp-ps", "hp-color_laserjet_8550-ps",
        "hp-color_laserjet_9500_mfp-ps", "hp-laserjet_9050-ps", "hp-designjet_t7200-ps"}) {
    sources.push_back(archive.Path(std::string(name) + ".ppd"));
  }
  for (size_t i = 0; i < sources.size(); ++i) {
    std::filesystem::copy_file(sources[i], directory.Path("vek9" + std::to_string(i) + ".ppd"));
  }
}
