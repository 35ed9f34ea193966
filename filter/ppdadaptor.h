// Reads PPD files. The one module that knows the PPD functions of libcups.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ppdmodel.h"

namespace kpx::filter {

// Why a PPD file could not be read. `line` is 0 when no line is to blame.
struct PpdError {
  int line = 0;
  std::string reason;

  // "file: line 12: reason", or "file: reason".
  std::string Text(std::string_view file) const;
};

// The model of the PPD text `bytes`; nothing, and `error` filled, when it cannot be read. Takes any
// bytes. Messages of libcups follow the process's locale.
[[nodiscard]] std::optional<PpdModel> ReadPpd(std::string_view bytes, PpdError *error);

// The same for the file `path`, which may also not be readable at all.
[[nodiscard]] std::optional<PpdModel> ReadPpdFile(const std::string &path, PpdError *error);

// An open descriptor on `text` without a file in any directory; -1 with errno. The caller closes
// it.
[[nodiscard]] int DescriptorOfText(std::string_view text);

}  // namespace kpx::filter
