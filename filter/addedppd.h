// What the PPD file of another maker's printer becomes when its model is added.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ppdadaptor.h"

namespace kpx::filter {

// What a PPD file says of its printer as a whole.
struct PpdFacts {
  std::string printer_name;  // as PrinterName has it; never empty
  int pages_a_minute = 0;    // 0: not said
  std::vector<std::string>
      languages;  // that the printer takes ("PostScript", "PJL"), or its driver
  // Set when the printer takes no PostScript: the program that makes its data, or the kind of file
  // that it takes.
  std::string driver;
  int options = 0;  // features, those of its parts included
};

// The facts of the PPD text `ppd`; nothing, and `error` filled, when it cannot be read.
[[nodiscard]] std::optional<PpdFacts> FactsOfPpd(std::string_view ppd, PpdError *error);

enum class TextEncoding { Utf8, Latin1 };

// `ppd` as it is installed for a language ("de", "pt_BR"): the texts that it has in that language
// are its only ones, in the encoding; kOtherMakerKeyword says that it was added, and kDriverKeyword
// names the driver of a printer that takes no PostScript. Lines that
// ISO-8859-1 cannot hold stay UTF-8. Texts in an encoding that is neither of the two stay as they
// are, with their declaration.
std::string InstalledPpd(std::string_view ppd, std::string_view language, TextEncoding encoding);

// The PAF file of an installed PPD file `ppd_file_name` (no directory) for a printer that is to be
// called `printer_name`, in the encoding; comments at its end name the options in the order of the
// PPD file, group by group. Empty when the PPD cannot be read.
std::string InstalledPaf(std::string_view ppd, std::string_view ppd_file_name,
                         const std::string &printer_name, TextEncoding encoding);

}  // namespace kpx::filter
