// Writes a PPD model in the PAF format.
#pragma once

#include <string>
#include <string_view>

#include "ppdmodel.h"

namespace kpx::filter {

// The PAF file of `model`, which was read from the PPD file `ppd_file_name` (no directory). What
// the format cannot carry is made safe: see pafformat.h for texts; a choice whose keyword would be
// read as a keyword of the format, and a feature without any choice, are left out.
std::string PafText(const PpdModel &model, std::string_view ppd_file_name);

// The printer's name: *NickName, else *ModelName, up to the first ":"; the PPD's file name without
// its extension where both say nothing.
std::string PrinterName(const PpdModel &model, std::string_view ppd_file_name);

}  // namespace kpx::filter
