// What a printer says about itself when it is asked over the network (SNMP).
#pragma once

#include <optional>
#include <string>
#include <string_view>

struct PrinterStatus {
  std::string reasons;   // keywords as IPP has them, with blanks between; empty when all is well
  bool hinders = false;  // it prints nothing until somebody has put that right

  bool operator==(const PrinterStatus &) const = default;
};

// Of the printer at the numeric address; nothing when it does not say, and on a host without
// snmpget. Waits for three seconds at most. Uses nothing of the process that others change.
[[nodiscard]] std::optional<PrinterStatus> AskPrinterStatus(const std::string &address);

// Of a printer's detected error state (hrPrinterDetectedErrorState), bytes in hexadecimal digits as
// snmpget prints them; nothing for anything else.
[[nodiscard]] std::optional<PrinterStatus> PrinterStatusIn(std::string_view answer);

// The first community in the text of CUPS's snmp.conf; "public" when there is none.
[[nodiscard]] std::string CommunityIn(const std::string &text);
