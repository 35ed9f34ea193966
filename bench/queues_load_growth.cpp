// Time to load a queue list of 20,000 queues over that of one half as long: an insertion that walks
// the list would make it 4, n log n makes it 2.15.
//
// Prints one line: name, ratio of the shortest times, bar, ok or missed, separated by tabs. Both
// lists are read in turn, each time by a new process, because what the heap has been through before
// weighs as much as the reading.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <string>

#include "childprocess.h"
#include "cprintqueues.h"
#include "must.h"
#include "queuesupport.h"
#include "temporarydirectory.h"

namespace {

constexpr int kQueues = 10000;
constexpr int kRuns = 9;
constexpr double kBar = 2.3;

// The settings of a queue for a printer with a finisher.
constexpr const char *kSettings[][2] = {
    {"*PageSize", "A4"},       {"*MediaType", "Plain"},
    {"*InputSlot", "Auto"},    {"*Duplex", "DuplexNoTumble"},
    {"*Collate", "True"},      {"*OutputBin", "FinStacker"},
    {"*Jog", "None"},          {"*StapleLocation", "None"},
    {"*Punch", "None"},        {"*Orientation", "Portrait"},
    {"*EdgeToEdge", "False"},  {"*Resolution", "600x600dpi"},
    {"*OutputMode", "Normal"}, {"*HalfTone", "Detail"},
    {"*Delivery", "PrintNow"},
};

void WriteList(const std::string &path, int count) {
  const Owned<CPrintQueues> list = CreatePrintQueues(path.c_str());
  list->queues = CreateHash();
  for (int i = 0; i < count; ++i) {
    // The last digits first, so that the names do not come in the order of the table.
    std::string name = std::to_string(1000000 + i);
    std::reverse(name.begin(), name.end());
    Owned<CPrintQueue> queue = MakeFullQueue({.name = "lp" + name});
    for (const auto &[key, value] : kSettings) Must(HashPutText(queue->Options.get(), key, value));
    Must(HashPut(list->queues.get(), ("lp" + name).c_str(), std::move(queue)));
  }
  if (fWriteToPaf_Function(list.get()) == 0) std::exit(2);
}

// Prints the milliseconds that loading the list takes, to standard error.
void PrintLoadTime(const std::string &path, int count) {
  const Owned<CPrintQueues> list = CreatePrintQueues(path.c_str());
  const auto start = std::chrono::steady_clock::now();
  Must(fFillFromPaf_Function_(list.get(), 0));
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  if (Keys(fGetPrintQueues_Function(list.get())).size() != static_cast<size_t>(count)) std::exit(2);
  std::fprintf(stderr, "%f\n", elapsed.count());
  std::_Exit(0);  // taking the list down is not measured
}

// What the child says, or the end of the program when it fails.
std::string InChild(const std::function<void()> &body) {
  const ChildResult result = RunInChild(body);
  if (result.status == 0) return result.errors;
  std::fprintf(stderr, "queues-load-growth: %s\n", result.errors.c_str());
  std::exit(2);
}

double LoadTime(const std::string &path, int count) {
  return std::stod(InChild([&] { PrintLoadTime(path, count); }));
}

}  // namespace

int main() {
  const TemporaryDirectory directory;
  const std::string small = directory.Path("small.paf");
  const std::string large = directory.Path("large.paf");
  InChild([&] { WriteList(small, kQueues); });
  InChild([&] { WriteList(large, 2 * kQueues); });
  double small_time = std::numeric_limits<double>::max();
  double large_time = small_time;
  for (int run = 0; run < kRuns; ++run) {
    small_time = std::min(small_time, LoadTime(small, kQueues));
    large_time = std::min(large_time, LoadTime(large, 2 * kQueues));
  }
  const double ratio = large_time / small_time;
  std::fprintf(stderr,
               "queues-load-growth: %.1f ms for %d queues, %.1f ms for %d (shortest of %d)\n",
               small_time, kQueues, large_time, 2 * kQueues, kRuns);
  std::printf("queues-load-growth\t%.2f\t%.2f\t%s\n", ratio, kBar, ratio <= kBar ? "ok" : "missed");
  return ratio <= kBar ? 0 : 1;
}
