// The printers that programs of this host find on the network: what runs, what their lines say, and
// which model fits.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct FoundPrinter {
  std::string address;  // host name or IP address, as an address entry takes it
  std::string model;    // make and model, UTF-8; may be empty
  std::string place;    // what else it says of itself; may be empty

  bool operator==(const FoundPrinter &) const = default;
};

// How a program tells of printers, a line each.
enum class SearchFormat {
  CupsBackend,  // as a backend of CUPS lists its devices
  Avahi,        // as avahi-browse -p
};
struct PrinterSearch {
  std::vector<std::string> command;  // its path first
  SearchFormat format;
};

// All of them; a program that this host lacks is simply not there.
const std::vector<PrinterSearch> &PrinterSearches();

// The printer of a line; nothing for a line that names none, or names it in a way that our
// transports cannot use. Takes any bytes.
[[nodiscard]] std::optional<FoundPrinter> FoundPrinterIn(std::string_view line,
                                                         SearchFormat format);

// Adds the printer, or what it says beyond an earlier one of that address: true when that changes
// something.
[[nodiscard]] bool AddFoundPrinter(const FoundPrinter &printer,
                                   std::vector<FoundPrinter> *printers);

// The one of `names` that is meant by `model`: one has all the words of the other, whatever their
// case, and more of them than the others have. Empty without one.
std::string FittingModel(std::string_view model, const std::vector<std::string> &names);
