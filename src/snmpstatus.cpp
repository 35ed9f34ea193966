#include "snmpstatus.h"

#include <sys/stat.h>

#include <cctype>
#include <charconv>
#include <vector>

#include "command.h"
#include "textencoding.h"
#include "textfile.h"

namespace {

constexpr char L_Snmpget[] = "/usr/bin/snmpget";
constexpr char L_Configuration[] = "/etc/cups/snmp.conf";
constexpr char L_ErrorState[] = ".1.3.6.1.2.1.25.3.5.1.2.1";
constexpr int L_Milliseconds = 3000;  // two tries of a second each, and the program's own start

// The bits of the two bytes, the highest of the first one first (RFC 2790).
struct Bit {
  unsigned mask;
  const char *keyword;
  bool hinders;
};
constexpr Bit L_Bits[] = {
    {0x4004, "media-empty", true},        // in one tray at least
    {0x8000, "media-low", false},         //
    {0x1000, "toner-empty", true},        //
    {0x2000, "toner-low", false},         //
    {0x0800, "door-open", true},          //
    {0x0400, "media-jam", true},          //
    {0x0200, "offline", true},            //
    {0x0008, "output-area-full", true},   //
    {0x01E0, "service-requested", true},  // a tray or a cartridge is missing, for example
};

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '"'; }

// What only some may read, the commands that others see running must not show.
bool IsSecret(const char *path) {
  struct stat file = {};
  return stat(path, &file) == 0 && (file.st_mode & S_IROTH) == 0;
}

}  // namespace

std::optional<PrinterStatus> PrinterStatusIn(std::string_view answer) {
  if (answer.size() < 3 || answer.front() != '"') return std::nullopt;
  std::string digits;
  for (const char c : answer) {
    if (std::isxdigit(static_cast<unsigned char>(c)) != 0) {
      digits += c;
    } else if (!IsBlank(c)) {
      return std::nullopt;
    }
  }
  digits.resize(4, '0');  // bytes that a printer leaves out are zero
  unsigned bits = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
  PrinterStatus status;
  for (const Bit &bit : L_Bits) {
    if ((bits & bit.mask) == 0) continue;
    if (!status.reasons.empty()) status.reasons += ' ';
    status.reasons += bit.keyword;
    status.hinders = status.hinders || bit.hinders;
  }
  return status;
}

std::string CommunityIn(const std::string &text) {
  constexpr std::string_view kKeyword = "Community";
  LineReader lines(text);
  while (const std::optional<std::string> line = lines.Next()) {
    if (!line->starts_with(kKeyword)) continue;
    size_t start = kKeyword.size();
    while (start < line->size() && IsBlank((*line)[start])) ++start;
    size_t end = line->size();
    while (end > start && IsBlank((*line)[end - 1])) --end;
    if (start > kKeyword.size() && end > start) return line->substr(start, end - start);
  }
  return "public";
}

std::optional<PrinterStatus> AskPrinterStatus(const std::string &address) {
  if (IsSecret(L_Configuration)) return std::nullopt;
  const std::string community = CommunityIn(ReadWholeFile(L_Configuration).value_or(""));
  const bool is_v6 = address.find(':') != std::string::npos;
  const std::string agent = is_v6 ? "udp6:[" + address + "]" : "udp:" + address;
  // CUPS asks in version 1 too, which every printer speaks.
  const std::optional<std::string> answer =
      OutputOf({L_Snmpget, "-v1", "-c", community, "-m", "", "-t", "1", "-r", "1", "-Oqvx", agent,
                L_ErrorState},
               L_Milliseconds);
  return answer ? PrinterStatusIn(*answer) : std::nullopt;
}
