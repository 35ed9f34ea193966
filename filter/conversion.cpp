#include "conversion.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include "pafwriter.h"
#include "ppdadaptor.h"
#include "textfile.h"

namespace kpx::filter {

std::string ConvertPpd(const std::string &ppd_path, const std::string &paf_path) {
  PpdError error;
  const std::optional<PpdModel> model = ReadPpdFile(ppd_path, &error);
  if (!model) return error.Text(ppd_path);
  const std::string file_name = ppd_path.substr(ppd_path.rfind('/') + 1);
  constexpr FileAccess kForAll{.mode = 0644};
  if (ReplaceFileDurably(paf_path, PafText(*model, file_name), kForAll)) return {};
  return paf_path + ": " + std::strerror(errno);
}

}  // namespace kpx::filter
