#include "inputfile.h"

#include <iostream>
#include <iterator>

#include "textfile.h"

namespace kpx::ctl {

std::optional<std::string> TextOfFile(const std::string &path) {
  if (path != kStandardInput) return ReadWholeFile(path);
  return std::string(std::istreambuf_iterator<char>(std::cin), {});
}

}  // namespace kpx::ctl
