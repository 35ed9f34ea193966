// Loading printer descriptions from their PAF files beside libcups opening the PPD files that they
// were made from.
//
//   printers_load printers-load-time DIR    processor time to read them all, over that of libcups
//   printers_load printers-load-memory DIR  heap bytes that they all hold, over those of libcups
//
// DIR holds PPD files (heavy-printers writes them). Prints one line: name, ratio, bar, ok or
// missed, separated by tabs, and the figures of each printer to standard error. The time is the
// median of the ratios of pairs measured in turn. What is held is measured in a new process each.
#include <malloc.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "childprocess.h"
#include "conversion.h"
#include "cprinter.h"
#include "must.h"
#include "temporarydirectory.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

using namespace kpx::filter;

namespace {

constexpr int kPairs = 41;
constexpr double kBar = 1.0;

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const { ppdClose(ppd); }
};
using PpdFile = std::unique_ptr<ppd_file_t, ClosePpd>;

[[noreturn]] void Fail(const std::string &why) {
  std::fprintf(stderr, "printers_load: %s\n", why.c_str());
  std::exit(2);
}

struct Paths {
  std::string ppd;
  std::string paf;
};

std::vector<Paths> ConvertAll(const std::string &directory, const TemporaryDirectory &out) {
  std::vector<Paths> all;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() != ".ppd") continue;
    const Paths paths{entry.path(), out.Path(entry.path().stem().string() + ".paf")};
    const std::string error = ConvertPpd(paths.ppd, paths.paf);
    if (!error.empty()) Fail(error);
    all.push_back(paths);
  }
  if (all.empty()) Fail("no PPD files in " + directory);
  std::sort(all.begin(), all.end(), [](const Paths &a, const Paths &b) { return a.ppd < b.ppd; });
  return all;
}

Owned<CPrinter> LoadOurs(const Paths &paths) {
  Owned<CPrinter> printer = CreatePrinter(paths.paf.c_str());
  Must(fFillFromPaf_Function(printer.get()) != nullptr);
  return printer;
}

PpdFile LoadTheirs(const Paths &paths) {
  PpdFile ppd(ppdOpenFile(paths.ppd.c_str()));
  if (ppd == nullptr) Fail("libcups does not read " + paths.ppd);
  return ppd;
}

double ProcessorMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Processor time of one load, reading the file included; giving the result up again is not in it.
template <class Load>
double Milliseconds(Load load, const Paths &paths) {
  const double start = ProcessorMilliseconds();
  const auto result = load(paths);
  return ProcessorMilliseconds() - start;
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The ratio for all together; each printer's median times go to standard error.
double TimeRatio(const std::vector<Paths> &all) {
  std::vector<double> ratios;
  std::vector<std::vector<double>> ours(all.size());
  std::vector<std::vector<double>> theirs(all.size());
  for (int pair = 0; pair < kPairs; ++pair) {
    double our_sum = 0;
    double their_sum = 0;
    for (size_t i = 0; i < all.size(); ++i) {
      our_sum += ours[i].emplace_back(Milliseconds(LoadOurs, all[i]));
      their_sum += theirs[i].emplace_back(Milliseconds(LoadTheirs, all[i]));
    }
    ratios.push_back(our_sum / their_sum);
  }
  for (size_t i = 0; i < all.size(); ++i) {
    std::fprintf(stderr, "%s: %.2f ms, libcups %.2f ms\n",
                 std::filesystem::path(all[i].ppd).filename().c_str(), Median(ours[i]),
                 Median(theirs[i]));
  }
  return Median(ratios);
}

size_t HeapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;  // what lies in the heaps and in mappings of its own
}

// What the descriptions of `all` hold, loaded by a new process.
template <class Load>
size_t BytesHeld(Load load, const std::vector<Paths> &all) {
  const ChildResult result = RunInChild([&] {
    load(all.front()).reset();  // what is set up once for the process belongs to no printer
    const size_t before = HeapBytes();
    std::vector<decltype(load(all.front()))> loaded;
    for (const Paths &paths : all) loaded.push_back(load(paths));
    std::fprintf(stderr, "%zu\n",
                 HeapBytes() - before - loaded.capacity() * sizeof(loaded.front()));
    std::_Exit(0);  // taking down is not measured
  });
  if (result.status != 0) Fail(result.errors);
  return std::stoul(result.errors);
}

double MemoryRatio(const std::vector<Paths> &all) {
  for (const Paths &paths : all) {
    std::fprintf(stderr, "%s: %zu bytes, libcups %zu\n",
                 std::filesystem::path(paths.ppd).filename().c_str(), BytesHeld(LoadOurs, {paths}),
                 BytesHeld(LoadTheirs, {paths}));
  }
  return static_cast<double>(BytesHeld(LoadOurs, all)) /
         static_cast<double>(BytesHeld(LoadTheirs, all));
}

}  // namespace

int main(int argc, char **argv) {
  const std::string figure = argc == 3 ? argv[1] : "";
  if (figure != "printers-load-time" && figure != "printers-load-memory") {
    Fail("usage: printers_load printers-load-time|printers-load-memory DIR");
  }
  const TemporaryDirectory out;
  const std::vector<Paths> all = ConvertAll(argv[2], out);
  const double ratio = figure == "printers-load-time" ? TimeRatio(all) : MemoryRatio(all);
  std::printf("%s\t%.2f\t%.2f\t%s\n", figure.c_str(), ratio, kBar, ratio < kBar ? "ok" : "missed");
  return ratio < kBar ? 0 : 1;
}
