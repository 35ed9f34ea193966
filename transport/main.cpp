// kpxnbtrans ADDRESS PORT [PARAMETER]: sends standard input to a printer. PARAMETER is the
// printer's speed in pages a minute. See kpxnbtrans(1) for the exit statuses.
#include <fcntl.h>
#include <signal.h>
#include <sysexits.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "job.h"
#include "stop.h"

using namespace kpx::transport;

namespace {

// A decimal number from 1 to `greatest`, or nothing.
std::optional<int> NumberUpTo(std::string_view text, int greatest) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  if (number < 1 || number > greatest) return std::nullopt;
  return number;
}

// The address without the brackets that an IPv6 address has where a port follows it.
std::string_view Address(std::string_view argument) {
  if (argument.size() < 2 || argument.front() != '[' || argument.back() != ']') return argument;
  return argument.substr(1, argument.size() - 2);
}

// What is wrong with the arguments, or an empty text when nothing is.
std::string Mistake(int count, char **arguments) {
  if (count < 3 || count > 4) return "two or three arguments are needed";
  const std::string_view address = Address(arguments[1]);
  if (address.empty()) return "the address is empty";
  // Left out in a script, the address would be the port's number, which the resolver takes for
  // a short form of an IPv4 address.
  if (address.find_first_not_of("0123456789") == std::string_view::npos) {
    return "\"" + std::string(address) + "\" is not an address";
  }
  constexpr int kGreatestPort = 65535;
  if (!NumberUpTo(arguments[2], kGreatestPort)) {
    return "\"" + std::string(arguments[2]) + "\" is not a port number";
  }
  if (count == 4 && *arguments[3] != '\0' && !NumberUpTo(arguments[3], kGreatestSpeed)) {
    return "\"" + std::string(arguments[3]) + "\" is not a speed in pages per minute";
  }
  return {};
}

// Fills gaps among the three standard descriptors, so that no socket gets their numbers.
// False when standard input was missing.
bool FillStandardDescriptors() {
  const bool has_input = fcntl(STDIN_FILENO, F_GETFD) >= 0;
  int opened = 0;
  do {
    opened = open("/dev/null", O_RDWR | O_CLOEXEC);
  } while (opened >= 0 && opened <= STDERR_FILENO);
  if (opened >= 0) close(opened);
  return has_input;
}

}  // namespace

int main(int count, char **arguments) {
  const bool has_input = FillStandardDescriptors();
  const Report report(STDERR_FILENO);
  if (const std::string mistake = Mistake(count, arguments); !mistake.empty()) {
    report.Say(mistake + "; usage: kpxnbtrans ADDRESS PORT [PAGES-A-MINUTE]");
    return EX_USAGE;
  }
  if (!has_input) {
    report.Say("standard input is not open");
    return EX_IOERR;
  }
  signal(SIGPIPE, SIG_IGN);
  const StopSignals signals;
  const std::optional<int> speed =
      count == 4 ? NumberUpTo(arguments[3], kGreatestSpeed) : std::nullopt;
  Limits limits;
  limits.usual_pause = UsualPause(speed.value_or(kDefaultSpeed));
  const Destination destination{std::string(Address(arguments[1])), arguments[2]};
  return static_cast<int>(
      CarryJob(destination, STDIN_FILENO, limits, report, signals.descriptor()));
}
