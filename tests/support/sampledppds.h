// PPD files of many makers, drawn at random and always the same ones, and what libcups reads in
// them.
#pragma once

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "privateworld.h"
#include "temporarydirectory.h"

// `few` files; 300 with KPX_LONG. With KPX_ONLY, the name of one of them, that one alone.
class SampledPpds {
 public:
  explicit SampledPpds(int few) {
    const int count = std::getenv("KPX_LONG") == nullptr ? few : 300;
    const std::string draw = std::string("python3 ") + KPX_TEST_DATA +
                             "/support/sample_ppds.py 16 " + std::to_string(count) + " " +
                             files_.Path() +
                             " /usr/lib/cups/driver/openprinting-ppds"
                             " /usr/lib/cups/driver/postscript-hp /usr/share/ppd/hp-ppd";
    if (std::system(draw.c_str()) != 0) throw std::runtime_error(draw + " failed");
  }

  // "<number>-<maker>.ppd", sorted.
  std::vector<std::string> Names() const {
    const char *only = std::getenv("KPX_ONLY");
    return only == nullptr ? NamesIn(files_.Path()) : std::vector<std::string>{only};
  }
  std::string Path(const std::string &name) const { return files_.Path(name); }
  static std::string MakerOf(const std::string &name) { return name.substr(name.find('-') + 1); }

 private:
  TemporaryDirectory files_;
};

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    ppdClose(ppd);
#pragma GCC diagnostic pop
  }
};
using PpdFile = std::unique_ptr<ppd_file_t, ClosePpd>;
