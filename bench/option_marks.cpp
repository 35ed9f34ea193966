// Time to recompute the marks of every option of every feature of a printer, as after each change
// of an option.
//
//   option_marks heaviest DIR      on the description of DIR with the most constraints:
//   milliseconds option_marks vs-libcups DIR    over the time libcups takes for the same:
//   cupsGetConflicts for
//                                  each choice
//   option_marks growth-options, growth-settings, growth-constraints
//                                  on made-up printers: time over that of one half as many
//   option_marks --table DIR       rows for README.md: ours, the literal walk of the constraints,
//                                  libcups, for each description of DIR
//
// DIR holds PPD files (heavy-printers writes them). Prints one line: name, value, bar, ok or
// missed, separated by tabs. The queue has the printers' defaults set.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>
#pragma GCC diagnostic pop

#include "coresupport.h"
#include "filterrun.h"
#include "linearwalk.h"
#include "must.h"
#include "optionlists.h"
#include "optionsupport.h"
#include "temporarydirectory.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

constexpr double kHeaviestBar = 0.2;         // milliseconds
constexpr double kLibcupsBar = 1.0 / 500.0;  // of libcups' time
constexpr double kGrowthBar = 2.3;           // twice as much, and noise
constexpr int kRuns = 301;
constexpr int kPairs = 61;

[[noreturn]] void Fail(const std::string &why) {
  std::fprintf(stderr, "option_marks: %s\n", why.c_str());
  std::exit(2);
}

double ThreadMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Processor time: nothing here waits, and what else the machine does hardly counts.
double Milliseconds(const std::function<void()> &body) {
  const double start = ThreadMilliseconds();
  body();
  return ThreadMilliseconds() - start;
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double MedianTime(int runs, const std::function<void()> &body) {
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) times.push_back(Milliseconds(body));
  return Median(std::move(times));
}

struct Marks {
  size_t options = 0;
  size_t marked = 0;
};

// The lists of all features of the current printer, as the window would show them.
Marks RecomputeMarks() {
  Marks marks;
  std::optional<SettingsSnapshot> snapshot;
  for (const auto [feature, record] : Pairs<CFeature>(G_PrinterFeatures_hash)) {
    const auto list = GetOptionsForFeature(G_PrinterFeatures_hash, feature, snapshot);
    for (const OptionListRow &row : list->rows) marks.marked += row.text.front() == '!' ? 1u : 0u;
    marks.options += list->rows.size();
  }
  return marks;
}

Marks WalkForMarks() {
  Marks marks;
  for (const auto [feature, record] : Pairs<CFeature>(G_PrinterFeatures_hash)) {
    for (const auto [option, text] : Pairs<CString>(fGet_Options_Function(record))) {
      ++marks.options;
      marks.marked += linearwalk::ConflictOf(feature, option) ? 1u : 0u;
    }
  }
  return marks;
}

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const { ppdClose(ppd); }
};

// One description, loaded by us and by libcups.
class HeavyPrinter {
 public:
  explicit HeavyPrinter(const std::string &path)
      : name_(std::filesystem::path(path).filename()), ppd_(ppdOpenFile(path.c_str())) {
    if (ppd_ == nullptr) Fail("libcups cannot read " + path);
    const TemporaryDirectory directory;
    const std::string paf = directory.Path("printer.paf");
    const FilterRun run = Convert(path, paf);
    if (run.status != 0) Fail("cannot convert " + path + ": " + run.errors);
    printer_ = CreatePrinter(paf.c_str());
    if (fFillFromPaf_Function(printer_.get()) == nullptr) Fail("cannot read " + paf);
  }

  const std::string &Name() const { return name_; }
  int Constraints() const { return fGetCount_CList_Function(printer_->constraints.get()); }

  void MakeCurrent() const {
    SetCurrentPrinter(printer_.get());
    SetCurrentQueue(Text("lp1"), MakeQueue());
    SetDefaults(G_PrinterFeatures_hash, G_QueueFeatures_hash);
    SetDefaults(G_PrinterInstallableOptions_hash, G_QueueInstallableOptions_hash);
    ppdMarkDefaults(ppd_.get());
  }

  // Choices that conflict, and all of them.
  Marks AskLibcups() const {
    Marks marks;
    for (int i = 0; i < ppd_->num_groups; ++i) AskGroup(ppd_->groups[i], marks);
    return marks;
  }

 private:
  static void SetDefaults(const CHash *features, CHash *settings) {
    for (const auto [id, feature] : Pairs<CFeature>(features)) {
      SetQueueValue(settings, id, TextOrNull(feature->default_option.get()));
    }
  }

  void AskGroup(const ppd_group_t &group, Marks &marks) const {
    if (std::strcmp(group.name, "InstallableOptions") == 0) return;
    for (int i = 0; i < group.num_options; ++i) {
      const ppd_option_t &option = group.options[i];
      for (int j = 0; j < option.num_choices; ++j) {
        cups_option_t *conflicts = nullptr;
        const int count =
            cupsGetConflicts(ppd_.get(), option.keyword, option.choices[j].choice, &conflicts);
        cupsFreeOptions(count, conflicts);
        ++marks.options;
        marks.marked += count > 0 ? 1u : 0u;
      }
    }
  }

  std::string name_;
  std::unique_ptr<ppd_file_t, ClosePpd> ppd_;
  Owned<CPrinter> printer_;
};

std::vector<HeavyPrinter> ReadPrinters(const std::string &directory) {
  std::vector<HeavyPrinter> printers;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() == ".ppd") printers.emplace_back(entry.path());
  }
  if (printers.empty()) Fail("no PPD files in " + directory);
  std::sort(printers.begin(), printers.end(), [](const HeavyPrinter &a, const HeavyPrinter &b) {
    return a.Constraints() > b.Constraints();
  });
  return printers;
}

int Report(const char *name, double value, double bar, int decimals) {
  const bool good = value <= bar;
  std::printf("option-marks-%s\t%.*f\t%.*f\t%s\n", name, decimals, value, decimals, bar,
              good ? "ok" : "missed");
  return good ? 0 : 1;
}

double OurTime() {
  return MedianTime(kRuns, [] { RecomputeMarks(); });
}

double LibcupsTime(const HeavyPrinter &printer) {
  return MedianTime(3, [&] { printer.AskLibcups(); });
}

int Heaviest(const std::string &directory) {
  const std::vector<HeavyPrinter> printers = ReadPrinters(directory);
  printers.front().MakeCurrent();
  const Marks marks = RecomputeMarks();
  std::fprintf(
      stderr, "option-marks-heaviest: %s, %d constraints, %zu options, %zu of them marked\n",
      printers.front().Name().c_str(), printers.front().Constraints(), marks.options, marks.marked);
  return Report("heaviest", OurTime(), kHeaviestBar, 3);
}

int VersusLibcups(const std::string &directory) {
  const std::vector<HeavyPrinter> printers = ReadPrinters(directory);
  const HeavyPrinter &printer = printers.front();
  printer.MakeCurrent();
  const double ours = OurTime();
  const double libcups = LibcupsTime(printer);
  std::fprintf(stderr,
               "option-marks-vs-libcups: %s, %.3f ms for %zu options, libcups %.1f ms for %zu\n",
               printer.Name().c_str(), ours, RecomputeMarks().options, libcups,
               printer.AskLibcups().options);
  return Report("vs-libcups", ours / libcups, kLibcupsBar, 5);
}

int Table(const std::string &directory) {
  std::printf(
      "| PPD | pairs | options | ours (ms) | literal walk (ms) | libcups (ms) "
      "| ours over libcups |\n|---|--:|--:|--:|--:|--:|--:|\n");
  for (const HeavyPrinter &printer : ReadPrinters(directory)) {
    printer.MakeCurrent();
    const double ours = OurTime();
    const Marks marks = RecomputeMarks();
    Marks walked;
    const double walk = Milliseconds([&] { walked = WalkForMarks(); });
    if (walked.marked != marks.marked) Fail(printer.Name() + ": the walk has other marks");
    const double libcups = LibcupsTime(printer);
    std::printf("| %s | %d | %zu | %.3f | %.0f | %.1f | 1/%.0f |\n", printer.Name().c_str(),
                printer.Constraints(), marks.options, ours, walk, libcups, libcups / ours);
  }
  return 0;
}

// A printer of 60 features; some of them are set, and its constraints join options that are as good
// as random. About every seventh option is marked, as on the heaviest printers.
struct Size {
  int options = 20;  // of each feature; constraints name the first 20
  int settings = 30;
  int constraints = 4000;
};
constexpr int kFeatures = 60;
constexpr int kConstrainedOptions = 20;

class MadeUpPrinter {
 public:
  explicit MadeUpPrinter(const Size &size) : printer_(CreatePrinter("/nowhere/vek9.paf")) {
    printer_->features = CreateHash();
    printer_->installable_options = CreateHash();
    printer_->constraints = CreateList();
    queue_ = MakeQueue();
    for (int i = 0; i < kFeatures; ++i) AddFeature(i, size);
    unsigned number = 1;
    const auto next = [&number](int count) {
      number = number * 1664525U + 1013904223U;  // Numerical Recipes, 7.1
      return static_cast<int>((number >> 8) % static_cast<unsigned>(count));
    };
    for (int i = 0; i < size.constraints; ++i) {
      const std::string texts[] = {FeatureName(next(kFeatures)), Option(next(kConstrainedOptions)),
                                   FeatureName(next(kFeatures)), Option(next(kConstrainedOptions))};
      Must(fAddTail_CList_Function(
          printer_->constraints.get(),
          MakeConstraint(texts[0].c_str(), texts[1].c_str(), texts[2].c_str(), texts[3].c_str())));
    }
  }

  // Median of the times of some runs.
  double Time() {
    SetCurrentPrinter(printer_.get());
    SetCurrentQueue(Text("lp1"), std::move(queue_));
    RecomputeMarks();
    const double time = MedianTime(9, [] { RecomputeMarks(); });
    queue_ = std::move(G_CurrentQueue);
    return time;
  }

 private:
  static std::string FeatureName(int number) { return "*Feature" + std::to_string(number); }
  static std::string Option(int number) { return "Option" + std::to_string(number); }

  void AddFeature(int number, const Size &size) {
    FeatureValues values{FeatureName(number), Option(0), {}};
    for (int i = 0; i < size.options; ++i) values.options.emplace_back(Option(i), "Text of it");
    Must(HashPut(printer_->features.get(), values.id.c_str(), MakeFeature(values)));
    if (number < size.settings) {
      Must(HashPutText(queue_->Options.get(), values.id.c_str(), Option(0).c_str()));
    }
  }

  Owned<CPrinter> printer_;
  Owned<CPrintQueue> queue_;
};

int Growth(const char *name, const Size &large_size) {
  MadeUpPrinter small(Size{});
  MadeUpPrinter large(large_size);
  std::vector<double> ratios;
  std::vector<double> times;
  for (int i = 0; i < kPairs; ++i) {
    const double time = small.Time();
    times.push_back(time);
    ratios.push_back(large.Time() / time);
  }
  const double ratio = Median(std::move(ratios));
  std::fprintf(stderr, "option-marks-%s: %.3f ms, twice as many take %.2f times as long\n", name,
               Median(std::move(times)), ratio);
  return Report(name, ratio, kGrowthBar, 2);
}

}  // namespace

int main(int argc, char **argv) {
  const ProgramMessages messages(ContentOf(KPX_MESSAGES));
  const std::string what = argc > 1 ? argv[1] : "";
  if (argc == 3 && what == "heaviest") return Heaviest(argv[2]);
  if (argc == 3 && what == "vs-libcups") return VersusLibcups(argv[2]);
  if (argc == 3 && what == "--table") return Table(argv[2]);
  if (argc == 2 && what == "growth-options") return Growth("growth-options", {.options = 40});
  if (argc == 2 && what == "growth-settings") return Growth("growth-settings", {.settings = 60});
  if (argc == 2 && what == "growth-constraints") {
    return Growth("growth-constraints", {.constraints = 8000});
  }
  Fail("wrong arguments");
}
