// What a new queue costs a save, and that beside CUPS's own lpadmin, which makes a queue with the
// same printer description.
//
// usage: queue_save queue-save-time|queue-save-vs-cups
// Runs in the sandbox. Prints one line: name, milliseconds a queue or the ratio, bar, ok or missed,
// separated by tabs. Saves and lpadmin take turns; the shortest times count.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>

#include "adminsession.h"
#include "command.h"
#include "cprintqueue.h"

namespace {

constexpr int kRounds = 5;
constexpr int kQueues = 20;  // a round
constexpr double kTimeBar = 60;
constexpr double kRatioBar = 3;

std::string NameOf(int round, int number) {
  return "q" + std::to_string(round) + "_" + std::to_string(number);
}

// The milliseconds a queue that `work` takes for all queues of a round.
double TimeOf(const auto &work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  return elapsed.count() / kQueues;
}

double SaveNew(int round) {
  for (int number = 0; number < kQueues; ++number) {
    if (!AddQueueToSession(NameOf(round, number), "postscript", "Vek Norvel 4120ES", "127.0.0.1")) {
      std::exit(2);
    }
  }
  return TimeOf([] {
    if (SaveSession() != 0) std::exit(2);
  });
}

double MakeWithCups(int round) {
  return TimeOf([round] {
    for (int number = 0; number < kQueues; ++number) {
      const std::string name = NameOf(round, number);
      const std::string command = "/usr/sbin/lpadmin -p peer_" + name +
                                  " -E -v socket://127.0.0.1 -P /etc/cups/ppd/" + name +
                                  ".ppd >/dev/null 2>&1";
      if (RunCommand(command) != 0) std::exit(2);
    }
  });
}

}  // namespace

int main(int argc, char **argv) {
  const std::string_view name = argc == 2 ? argv[1] : "";
  const bool is_ratio = name == "queue-save-vs-cups";
  if (!is_ratio && name != "queue-save-time") {
    std::fprintf(stderr, "usage: queue_save queue-save-time|queue-save-vs-cups\n");
    return 2;
  }
  LoadCatalogues();
  LoadQueues(nullptr);
  double ours = std::numeric_limits<double>::max();
  double theirs = ours;
  for (int round = 0; round < kRounds; ++round) {
    ours = std::min(ours, SaveNew(round));
    theirs = std::min(theirs, MakeWithCups(round));
  }
  std::fprintf(stderr, "a queue of a save %.1f ms, one of lpadmin %.1f ms\n", ours, theirs);
  const double value = is_ratio ? ours / theirs : ours;
  const double bar = is_ratio ? kRatioBar : kTimeBar;
  std::printf("%s\t%.*f\t%.0f\t%s\n", argv[1], is_ratio ? 2 : 1, value, bar,
              value <= bar ? "ok" : "missed");
  return value <= bar ? 0 : 1;
}
